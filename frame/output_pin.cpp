#include "frame/output_pin.h"

#include "frame/allocator.h"

CBaseOutputPin::CBaseOutputPin(const wchar_t* objectName, CBaseFilter* filter, CCritSec* lock,
                               HRESULT* phr, const wchar_t* pinName)
    : CBasePin(objectName, filter, lock, phr, pinName, PINDIR_OUTPUT) {}

CBaseOutputPin::~CBaseOutputPin() = default;

HRESULT CBaseOutputPin::CheckConnect(IPin* pin) {
  const HRESULT hr = CBasePin::CheckConnect(pin);
  return FAILED(hr) ? hr : m_inputPin.QueryFrom(pin, IID_IMemInputPin);
}

HRESULT CBaseOutputPin::CompleteConnect(IPin* /*receivePin*/) {
  return DecideAllocator(m_inputPin.Get(), m_allocator.Receive());
}

HRESULT CBaseOutputPin::BreakConnect() {
  if (m_allocator) m_allocator->Decommit();
  m_allocator.Reset();
  m_inputPin.Reset();
  return CBasePin::BreakConnect();
}

HRESULT CBaseOutputPin::Active() {
  return m_allocator ? m_allocator->Commit() : VFW_E_NO_ALLOCATOR;
}

HRESULT CBaseOutputPin::Inactive() {
  return m_allocator ? m_allocator->Decommit() : VFW_E_NO_ALLOCATOR;
}

HRESULT CBaseOutputPin::EndOfStream() { return E_UNEXPECTED; }
HRESULT CBaseOutputPin::BeginFlush() { return E_UNEXPECTED; }
HRESULT CBaseOutputPin::EndFlush() { return E_UNEXPECTED; }

HRESULT CBaseOutputPin::DecideAllocator(IMemInputPin* pin, IMemAllocator** allocator) {
  if (!pin || !allocator) return E_POINTER;
  *allocator = nullptr;
  ALLOCATOR_PROPERTIES request{};
  if (FAILED(pin->GetAllocatorRequirements(&request))) request = {};
  if (request.cbAlign == 0) request.cbAlign = 1;

  ComPtr<IMemAllocator> chosen;
  HRESULT hr = pin->GetAllocator(chosen.Receive());
  if (SUCCEEDED(hr)) hr = TryAllocator(pin, chosen.Get(), request);
  if (FAILED(hr)) {
    hr = InitAllocator(chosen.Receive());
    if (SUCCEEDED(hr)) hr = TryAllocator(pin, chosen.Get(), request);
  }
  if (SUCCEEDED(hr)) *allocator = chosen.Detach();
  return hr;
}

HRESULT CBaseOutputPin::TryAllocator(IMemInputPin* pin, IMemAllocator* allocator,
                                     const ALLOCATOR_PROPERTIES& request) {
  if (!allocator) return E_POINTER;
  ALLOCATOR_PROPERTIES properties = request;
  const HRESULT hr = DecideBufferSize(allocator, &properties);
  return FAILED(hr) ? hr : pin->NotifyAllocator(allocator, 0);
}

HRESULT CBaseOutputPin::InitAllocator(IMemAllocator** allocator) {
  if (!allocator) return E_POINTER;
  *allocator = CMemAllocator::Create().Detach();
  return S_OK;
}

HRESULT CBaseOutputPin::GetDeliveryBuffer(IMediaSample** sample, REFERENCE_TIME* start,
                                          REFERENCE_TIME* stop, std::uint32_t flags) {
  if (!sample) return E_POINTER;
  *sample = nullptr;
  return m_allocator ? m_allocator->GetBuffer(sample, start, stop, flags) : VFW_E_NO_ALLOCATOR;
}

HRESULT CBaseOutputPin::Deliver(IMediaSample* sample) {
  return m_inputPin ? m_inputPin->Receive(sample) : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverEndOfStream() {
  return m_connected ? m_connected->EndOfStream() : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverBeginFlush() {
  return m_connected ? m_connected->BeginFlush() : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverEndFlush() {
  return m_connected ? m_connected->EndFlush() : VFW_E_NOT_CONNECTED;
}

HRESULT CBaseOutputPin::DeliverNewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {
  return m_connected ? m_connected->NewSegment(start, stop, rate) : VFW_E_NOT_CONNECTED;
}
