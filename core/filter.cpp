#include "core/filter.h"

#include <algorithm>
#include <atomic>
#include <cwchar>
#include <new>

CUnknown* CFilter::CreateInstance(IUnknown* outer, HRESULT* phr) {
  HRESULT ignored = S_OK;
  HRESULT& hr = phr ? *phr : ignored;
  auto* filter = new (std::nothrow) CFilter(outer, &hr);
  return filter;  // CFilter is a CUnknown through the filter frame
}

// Each step runs only while the result so far is not negative.
CFilter::CFilter(IUnknown* outer, HRESULT* phr)
    : CExternalHardwareProxyDXi(this),
      CBaseFilter(L"Tarn", outer, static_cast<CDXi*>(this), CLSID_TarnFilter) {
  BindProcessing(*this);
  HRESULT& hr = *phr;
  if (SUCCEEDED(hr) && !HasInstrument()) hr = E_OUTOFMEMORY;
  if (FAILED(hr)) return;
  m_inputPin.reset(new (std::nothrow) CFilterInputPin(this, m_lock, &hr));
  if (!m_inputPin) hr = E_OUTOFMEMORY;
  if (FAILED(hr)) return;
  hr = CMediaParams::Create(GetOwner(), &m_mediaParams);
  if (FAILED(hr)) return;
  hr = AddOutputPin(nullptr, nullptr);
  if (FAILED(hr)) return;
  hr = Initialize();
}

CFilter::~CFilter() {
  EndAllWorkers();  // before any member goes: a worker may still be finishing a batch
  if (m_mediaParams) m_mediaParams->ReleaseOwnerReference();
}

HRESULT CFilter::NonDelegatingQueryInterface(REFIID iid, void** object) {
  if (!object) return E_POINTER;
  if (iid == IID_IDispatch) return GetInterface(static_cast<IDispatch*>(this), object);
  if (iid == IID_ISpecifyPropertyPages)
    return GetInterface(static_cast<ISpecifyPropertyPages*>(this), object);
  if (iid == IID_IPersistStream) return GetInterface(static_cast<IPersistStream*>(this), object);
  if (iid == IID_IAMovieSetup) return GetInterface(static_cast<IAMovieSetup*>(this), object);
  if (iid == IID_IMfxSoftSynth2 || iid == IID_IMfxSoftSynth)
    return GetInterface(static_cast<IMfxSoftSynth2*>(this), object);
  if (iid == IID_IMfxNotify) return GetInterface(static_cast<IMfxNotify*>(this), object);
  if (iid == IID_IMfxInputPort) return GetInterface(static_cast<IMfxInputPort*>(this), object);
  if (iid == IID_IMyFilter) return GetInterface(static_cast<IMyFilter*>(this), object);
  if (iid == IID_IExternalDeviceProxy3 || iid == IID_IExternalDeviceProxy2 ||
      iid == IID_IExternalDeviceProxy)
    return GetInterface(static_cast<IExternalDeviceProxy3*>(this), object);
  if (m_mediaParams && CMediaParams::IsFacet(iid)) return m_mediaParams->QueryFacet(iid, object);
  return CBaseFilter::NonDelegatingQueryInterface(iid, object);
}

// --- output pins ------------------------------------------------------------------------------

void CFilter::ReportGraphChanged() {
  IncrementPinVersion();
  if (GetFilterGraph()) NotifyEvent(EC_GRAPH_CHANGED, 0, 0);
}

HRESULT CFilter::AddOutputPin(const wchar_t* name, std::uint32_t* id) {
  CAutoLock lock(InstanceLock());
  const auto newCount = static_cast<std::int32_t>(m_outputPins.Count()) + 1;
  IUnknown* self = static_cast<IBaseFilter*>(this);
  HRESULT hr = AnnouncePinCountChange(1, self, newCount);
  if (FAILED(hr)) return hr;

  wchar_t defaultName[32];
  if (!name) {
    std::swprintf(defaultName, std::size(defaultName), L"Output %d", newCount);
    name = defaultName;
  }
  const std::uint32_t pinId = COutputPinList::NextId();
  hr = S_OK;
  auto* pin = new (std::nothrow) CFilterOutputPin(this, m_lock, &hr, name, pinId);
  if (!pin) return E_OUTOFMEMORY;
  if (FAILED(hr)) {
    delete pin;
    return hr;
  }
  m_outputPins.Append(*pin);
  if (id) *id = pinId;
  ReportGraphChanged();
  return AnnouncePinCountChange(2, self, newCount);
}

HRESULT CFilter::RemoveOutputPin(std::uint32_t id) {
  CAutoLock lock(InstanceLock());
  if (m_outputPins.Count() == 0) return E_FAIL;
  const CFilterOutputPin* pin = m_outputPins.Find(id);
  if (!pin) return E_INVALIDARG;
  if (pin->IsConnected()) return E_UNEXPECTED;

  const auto newCount = static_cast<std::int32_t>(m_outputPins.Count()) - 1;
  IUnknown* self = static_cast<IBaseFilter*>(this);
  HRESULT hr = AnnouncePinCountChange(1, self, newCount);
  if (FAILED(hr)) return hr;
  m_outputPins.Remove(id);
  ReportGraphChanged();
  return AnnouncePinCountChange(2, self, newCount);
}

HRESULT CFilter::RemoveAllOutputPins() {
  CAutoLock lock(InstanceLock());
  IUnknown* self = static_cast<IBaseFilter*>(this);
  HRESULT hr = AnnouncePinCountChange(1, self, 0);
  if (FAILED(hr)) return hr;
  HRESULT result = S_OK;
  bool removed = false;
  for (const CFilterOutputPin* first = m_outputPins.At(0); first; first = m_outputPins.At(0)) {
    if (first->IsConnected()) {
      result = E_UNEXPECTED;
      break;
    }
    m_outputPins.RemoveFirst();
    removed = true;
  }
  // The graph and the observer hear only of an actual change.
  if (!removed) return result;
  ReportGraphChanged();
  hr = AnnouncePinCountChange(2, self, static_cast<std::int32_t>(m_outputPins.Count()));
  return FAILED(result) ? result : hr;
}

CBasePin* CFilter::FindOutputPin(std::uint32_t id) {
  CAutoLock lock(InstanceLock());
  return m_outputPins.Find(id);
}

std::int32_t CFilter::GetOutputPinCount() {
  CAutoLock lock(InstanceLock());
  return static_cast<std::int32_t>(m_outputPins.Count());
}

std::int32_t CFilter::GetOutputPinId(std::int32_t index) {
  CAutoLock lock(InstanceLock());
  const CFilterOutputPin* pin =
      index < 0 ? nullptr : m_outputPins.At(static_cast<std::size_t>(index));
  return pin ? static_cast<std::int32_t>(pin->Id()) : -1;
}

// --- filter frame -------------------------------------------------------------------------------

std::int32_t CFilter::GetPinCount() { return GetOutputPinCount() + 1; }

CBasePin* CFilter::GetPin(std::int32_t n) {
  CAutoLock lock(InstanceLock());
  if (n == 0) return m_inputPin.get();
  if (n < 0) return nullptr;
  return m_outputPins.At(static_cast<std::size_t>(n) - 1);
}

HRESULT CFilter::Pause() {
  CAutoLock lock(InstanceLock());
  if (m_state == State_Paused) return S_OK;
  const bool wasStopped = m_state == State_Stopped;
  if (wasStopped) StartWorker();
  m_inputSample = 0;
  HRESULT hr = CBaseFilter::Pause();
  // With no audio input the outputs still learn that the stream has ended.
  if (!m_inputPin->IsConnected()) m_inputPin->EndOfStream();
  if (wasStopped && SUCCEEDED(hr)) hr = AllocateResources();
  return hr;
}

HRESULT CFilter::Run(REFERENCE_TIME start) {
  CAutoLock lock(InstanceLock());
  CBaseFilter::Run(start);
  if (!m_inputPin->IsConnected()) m_inputPin->EndOfStream();
  return S_OK;
}

HRESULT CFilter::Stop() {
  CAutoLock lock(InstanceLock());
  if (m_state == State_Stopped) return S_OK;
  StopWorker();
  const HRESULT hr = CBaseFilter::Stop();
  return FAILED(hr) ? hr : FreeResources();
}

HRESULT CFilter::GetClassID(CLSID* classId) { return CBaseFilter::GetClassID(classId); }

HRESULT CFilter::GetPages(CAUUID* pages) {
  if (!pages) return E_POINTER;
  pages->cElems = 1;
  pages->pElems = static_cast<GUID*>(CoTaskMemAlloc(sizeof(GUID)));
  if (!pages->pElems) {
    pages->cElems = 0;
    return E_OUTOFMEMORY;
  }
  pages->pElems[0] = CLSID_TarnPropertyPage;
  return S_OK;
}
