#include "frame/input_pin.h"

#include "frame/allocator.h"

CBaseInputPin::CBaseInputPin(const wchar_t* objectName, CBaseFilter* filter, CCritSec* lock,
                             HRESULT* phr, const wchar_t* pinName)
    : CBasePin(objectName, filter, lock, phr, pinName, PINDIR_INPUT) {}

CBaseInputPin::~CBaseInputPin() = default;

HRESULT CBaseInputPin::NonDelegatingQueryInterface(REFIID iid, void** object) {
  if (object && iid == IID_IMemInputPin)
    return GetInterface(static_cast<IMemInputPin*>(this), object);
  return CBasePin::NonDelegatingQueryInterface(iid, object);
}

HRESULT CBaseInputPin::GetAllocator(IMemAllocator** allocator) {
  if (!allocator) return E_POINTER;
  CAutoLock lock(*m_lock);
  if (!m_allocator) m_allocator = CMemAllocator::Create();
  *allocator = ComPtr<IMemAllocator>(m_allocator).Detach();
  return S_OK;
}

HRESULT CBaseInputPin::NotifyAllocator(IMemAllocator* allocator, std::int32_t readOnly) {
  if (!allocator) return E_POINTER;
  CAutoLock lock(*m_lock);
  m_allocator = ComPtr<IMemAllocator>(allocator);
  m_bReadOnly = readOnly != 0;
  return S_OK;
}

HRESULT CBaseInputPin::GetAllocatorRequirements(ALLOCATOR_PROPERTIES* /*properties*/) {
  return E_NOTIMPL;
}

HRESULT CBaseInputPin::Receive(IMediaSample* sample) {
  if (!sample) return E_POINTER;
  const HRESULT hr = CheckStreaming();
  if (hr != S_OK) return hr;
  if (sample->GetMediaType(&m_sampleType) == S_OK && CheckMediaType(m_sampleType) != S_OK)
    return VFW_E_INVALIDMEDIATYPE;
  return S_OK;
}

HRESULT CBaseInputPin::ReceiveMultiple(IMediaSample** samples, std::int32_t count,
                                       std::int32_t* processed) {
  if (!samples || !processed) return E_POINTER;
  *processed = 0;
  HRESULT hr = S_OK;
  while (*processed < count && (hr = Receive(samples[*processed])) == S_OK) ++*processed;
  return hr;
}

HRESULT CBaseInputPin::ReceiveCanBlock() { return S_OK; }

HRESULT CBaseInputPin::BeginFlush() {
  CAutoLock lock(*m_lock);
  m_bFlushing = true;
  return S_OK;
}

HRESULT CBaseInputPin::EndFlush() {
  CAutoLock lock(*m_lock);
  m_bFlushing = false;
  return S_OK;
}

HRESULT CBaseInputPin::Inactive() {
  m_bFlushing = false;
  return m_allocator ? m_allocator->Decommit() : S_OK;
}

HRESULT CBaseInputPin::BreakConnect() {
  m_allocator.Reset();
  m_bReadOnly = false;
  return CBasePin::BreakConnect();
}

HRESULT CBaseInputPin::CheckStreaming() {
  if (!IsConnected()) return VFW_E_NOT_CONNECTED;
  if (IsStopped()) return VFW_E_WRONG_STATE;
  if (m_bFlushing) return S_FALSE;
  return S_OK;
}
