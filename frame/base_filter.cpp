#include "frame/base_filter.h"

#include <cwchar>

#include "frame/base_pin.h"
#include "frame/enumerators.h"

CBaseFilter::CBaseFilter(const wchar_t* name, IUnknown* outer, CCritSec* lock, const CLSID& clsid)
    : CUnknown(name, outer), m_lock(lock), m_clsid(clsid) {}

CBaseFilter::~CBaseFilter() = default;

HRESULT CBaseFilter::NonDelegatingQueryInterface(REFIID iid, void** object) {
  if (object && (iid == IID_IBaseFilter || iid == IID_IMediaFilter || iid == IID_IPersist))
    return GetInterface(static_cast<IBaseFilter*>(this), object);
  return CUnknown::NonDelegatingQueryInterface(iid, object);
}

HRESULT CBaseFilter::GetClassID(CLSID* classId) {
  if (!classId) return E_POINTER;
  *classId = m_clsid;
  return S_OK;
}

HRESULT CBaseFilter::ForEachConnectedPin(HRESULT (CBasePin::*step)()) {
  HRESULT first = S_OK;
  const std::int32_t count = GetPinCount();
  for (std::int32_t i = 0; i < count; ++i) {
    CBasePin* pin = GetPin(i);
    if (!pin || !pin->IsConnected()) continue;
    const HRESULT hr = (pin->*step)();
    if (FAILED(hr) && SUCCEEDED(first)) first = hr;
  }
  return first;
}

HRESULT CBaseFilter::Stop() {
  CAutoLock lock(*m_lock);
  HRESULT hr = S_OK;
  if (m_state != State_Stopped) hr = ForEachConnectedPin(&CBasePin::Inactive);
  m_state = State_Stopped;
  return hr;
}

HRESULT CBaseFilter::Pause() {
  CAutoLock lock(*m_lock);
  HRESULT hr = S_OK;
  if (m_state == State_Stopped) hr = ForEachConnectedPin(&CBasePin::Active);
  m_state = State_Paused;
  return hr;
}

HRESULT CBaseFilter::Run(REFERENCE_TIME start) {
  CAutoLock lock(*m_lock);
  m_tStart = start;
  if (m_state == State_Stopped) {
    const HRESULT hr = Pause();
    if (FAILED(hr)) return hr;
  }
  m_state = State_Running;
  return S_OK;
}

HRESULT CBaseFilter::GetState(std::uint32_t /*timeoutMs*/, FILTER_STATE* state) {
  if (!state) return E_POINTER;
  *state = m_state;
  return S_OK;
}

HRESULT CBaseFilter::SetSyncSource(IReferenceClock* clock) {
  CAutoLock lock(*m_lock);
  m_clock = ComPtr<IReferenceClock>(clock);
  return S_OK;
}

HRESULT CBaseFilter::GetSyncSource(IReferenceClock** clock) {
  if (!clock) return E_POINTER;
  CAutoLock lock(*m_lock);
  *clock = ComPtr<IReferenceClock>(m_clock).Detach();
  return S_OK;
}

HRESULT CBaseFilter::EnumPins(IEnumPins** pins) {
  if (!pins) return E_POINTER;
  return CEnumPins::Create(*this, pins);
}

HRESULT CBaseFilter::FindPin(const wchar_t* id, IPin** pin) {
  if (!pin) return E_POINTER;
  *pin = nullptr;
  if (!id) return E_POINTER;
  CAutoLock lock(*m_lock);
  const std::int32_t count = GetPinCount();
  for (std::int32_t i = 0; i < count; ++i) {
    CBasePin* candidate = GetPin(i);
    if (candidate && std::wcscmp(candidate->Name(), id) == 0) {
      candidate->AddRef();
      *pin = candidate;
      return S_OK;
    }
  }
  return VFW_E_NOT_FOUND;
}

HRESULT CBaseFilter::QueryFilterInfo(FILTER_INFO* info) {
  if (!info) return E_POINTER;
  CAutoLock lock(*m_lock);
  CopyName(info->achName, m_name.c_str());
  info->pGraph = ComPtr<IFilterGraph>(m_graph).Detach();
  return S_OK;
}

HRESULT CBaseFilter::JoinFilterGraph(IFilterGraph* graph, const wchar_t* name) {
  CAutoLock lock(*m_lock);
  m_graph = graph;
  m_name = name ? name : L"";
  ComPtr<IMediaEventSink> sink;
  // The graph owns the sink as it owns us: keep it without the reference the query added.
  m_sink = graph && SUCCEEDED(sink.QueryFrom(graph, IID_IMediaEventSink)) ? sink.Get() : nullptr;
  return S_OK;
}

HRESULT CBaseFilter::QueryVendorInfo(wchar_t** info) {
  if (!info) return E_POINTER;
  *info = nullptr;
  return E_NOTIMPL;
}

HRESULT CBaseFilter::NotifyEvent(std::int32_t code, std::intptr_t param1, std::intptr_t param2) {
  IMediaEventSink* sink = m_sink.load();
  return sink ? sink->Notify(code, param1, param2) : S_OK;
}
