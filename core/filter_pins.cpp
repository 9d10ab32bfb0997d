#include "core/filter_pins.h"

#include <algorithm>

#include "core/filter.h"

namespace {

constexpr std::int64_t kMostBufferBytes = INT32_MAX;

}  // namespace

// --- input -------------------------------------------------------------------------------------

CFilterInputPin::CFilterInputPin(CFilter* filter, CCritSec* lock, HRESULT* phr)
    : CBaseInputPin(L"Input pin", filter, lock, phr, L"Input"), m_instance(filter) {}

CFilterInputPin::~CFilterInputPin() = default;

HRESULT CFilterInputPin::CheckMediaType(const CMediaType& type) {
  return m_instance->CheckAudioType(type, PINDIR_INPUT);
}

HRESULT CFilterInputPin::SetMediaType(const CMediaType& type) {
  m_instance->SetInputFormat(*type.WaveFormatPtr());  // checked before it is set
  if (CMediaParams* params = m_instance->MediaParams())
    params->SetSampleRate(static_cast<std::int32_t>(
        std::min<std::uint32_t>(type.WaveFormatPtr()->nSamplesPerSec, INT32_MAX)));
  return CBaseInputPin::SetMediaType(type);
}

HRESULT CFilterInputPin::CompleteConnect(IPin* receivePin) {
  const HRESULT hr = CBaseInputPin::CompleteConnect(receivePin);
  if (SUCCEEDED(hr)) m_instance->ReconnectUnfitOutputs();
  return hr;
}

HRESULT CFilterInputPin::Receive(IMediaSample* sample) {
  const HRESULT hr = CBaseInputPin::Receive(sample);
  return hr == S_OK ? m_instance->ReceiveAudio(sample) : hr;
}

HRESULT CFilterInputPin::EndOfStream() {
  CAutoLock lock(*m_lock);
  return m_instance->EndAudioStream();
}

HRESULT CFilterInputPin::BeginFlush() {
  CAutoLock lock(*m_lock);
  CBaseInputPin::BeginFlush();
  return m_instance->ForEachConnectedOutput([](CFilterOutputPin& pin) {
    return pin.DeliverBeginFlush();
  });
}

HRESULT CFilterInputPin::EndFlush() {
  CAutoLock lock(*m_lock);
  CBaseInputPin::EndFlush();
  return m_instance->ForEachConnectedOutput([](CFilterOutputPin& pin) {
    return pin.DeliverEndFlush();
  });
}

HRESULT CFilterInputPin::NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {
  CAutoLock lock(*m_lock);
  CBaseInputPin::NewSegment(start, stop, rate);
  return m_instance->ForEachConnectedOutput([&](CFilterOutputPin& pin) {
    return pin.DeliverNewSegment(start, stop, rate);
  });
}

HRESULT CFilterInputPin::AllocatorProperties(ALLOCATOR_PROPERTIES* properties) {
  CAutoLock lock(*m_lock);
  return m_allocator ? m_allocator->GetProperties(properties) : VFW_E_NO_ALLOCATOR;
}

CPositionPassThrough& CFilterInputPin::PositionPassThrough() {
  CAutoLock lock(*m_lock);
  if (!m_position)
    m_position = std::make_unique<CPositionPassThrough>(m_filter->GetOwner(), *this);
  return *m_position;
}

// --- outputs -----------------------------------------------------------------------------------

CFilterOutputPin::CFilterOutputPin(CFilter* filter, CCritSec* lock, HRESULT* phr,
                                   const wchar_t* name, std::uint32_t id)
    : CBaseOutputPin(L"Output pin", filter, lock, phr, name), m_instance(filter), m_id(id) {}

HRESULT CFilterOutputPin::NonDelegatingQueryInterface(REFIID iid, void** object) {
  if (object && (iid == IID_IMediaPosition || iid == IID_IMediaSeeking))
    return m_instance->InputPin().PositionPassThrough().NonDelegatingQueryInterface(iid, object);
  return CBaseOutputPin::NonDelegatingQueryInterface(iid, object);
}

ULONG CFilterOutputPin::NonDelegatingAddRef() {
  m_filter->AddRef();
  return ++m_refs;
}

// Only the last release takes the pin's lock: the others come from neighbours that may hold
// locks of their own, and taking ours under theirs would invert the order of a connection. The
// filter goes last, as it may go with this release.
ULONG CFilterOutputPin::NonDelegatingRelease() {
  CBaseFilter* filter = m_filter;
  const ULONG left = --m_refs;
  if (left == 0) {
    CAutoLock lock(*m_lock);  // the filter's lock: the reference below keeps it
    delete this;
  }
  filter->Release();
  return left;
}

void CFilterOutputPin::ReleaseListReference() {
  if (--m_refs == 0) delete this;
}

HRESULT CFilterOutputPin::CheckConnect(IPin* pin) {
  if (!m_instance->InputPin().IsConnected()) return VFW_E_NOT_CONNECTED;
  return CBaseOutputPin::CheckConnect(pin);
}

HRESULT CFilterOutputPin::CheckMediaType(const CMediaType& type) {
  HRESULT hr = m_instance->CheckAudioType(type, PINDIR_OUTPUT);
  if (hr != S_OK || !m_instance->InputPin().IsConnected()) return hr;
  const WaveFormat input = *m_instance->GetInputFormat();
  const WaveFormat output = *type.WaveFormatPtr();
  if (input.nSamplesPerSec != output.nSamplesPerSec) return VFW_E_TYPE_NOT_ACCEPTED;
  return m_instance->IsValidTransform(input, output);
}

HRESULT CFilterOutputPin::SetMediaType(const CMediaType& type) {
  m_instance->SetOutputFormat(*type.WaveFormatPtr());  // checked before it is set
  return CBaseOutputPin::SetMediaType(type);
}

HRESULT CFilterOutputPin::GetMediaType(std::int32_t position, CMediaType* type) {
  if (!type) return E_POINTER;
  if (!m_instance->InputPin().IsConnected()) return E_UNEXPECTED;
  if (position != 0) return VFW_S_NO_MORE_ITEMS;
  WaveFormat format = *m_instance->GetInputFormat();
  const HRESULT hr = m_instance->SuggestOutputFormat(format);
  if (FAILED(hr)) return hr;
  *type = AudioMediaType(format);
  return S_OK;
}

HRESULT CFilterOutputPin::EnumMediaTypes(IEnumMediaTypes** types) {
  if (!types) return E_POINTER;
  ComPtr<IPin> upstream;
  if (FAILED(m_instance->InputPin().ConnectedTo(upstream.Receive()))) {
    *types = nullptr;
    return VFW_E_NOT_CONNECTED;
  }
  return upstream->EnumMediaTypes(types);
}

HRESULT CFilterOutputPin::DecideBufferSize(IMemAllocator* allocator,
                                           ALLOCATOR_PROPERTIES* request) {
  ALLOCATOR_PROPERTIES input{};
  HRESULT hr = m_instance->InputPin().AllocatorProperties(&input);
  if (FAILED(hr)) return hr;
  const WaveFormat* output = CurrentMediaType().WaveFormatPtr();
  const bool monoToStereo =
      m_instance->GetInputFormat()->nChannels == 1 && output && output->nChannels == 2;
  const std::int64_t bytes = std::int64_t{input.cbBuffer} * (monoToStereo ? 2 : 1);
  if (bytes > kMostBufferBytes) return E_OUTOFMEMORY;
  request->cBuffers = input.cBuffers;
  request->cbBuffer = static_cast<std::int32_t>(bytes);
  ALLOCATOR_PROPERTIES actual{};
  hr = allocator->SetProperties(request, &actual);
  if (FAILED(hr)) return hr;
  return actual.cBuffers < request->cBuffers || actual.cbBuffer < request->cbBuffer ? E_FAIL
                                                                                    : S_OK;
}
