#include "frame/base_pin.h"

#include <cstring>

#include "frame/enumerators.h"

CBasePin::CBasePin(const wchar_t* objectName, CBaseFilter* filter, CCritSec* lock, HRESULT* /*phr*/,
                   const wchar_t* pinName, PIN_DIRECTION dir)
    : CUnknown(objectName, nullptr),
      m_filter(filter),
      m_lock(lock),
      m_name(pinName ? pinName : L""),
      m_dir(dir) {}

CBasePin::~CBasePin() = default;

HRESULT CBasePin::NonDelegatingQueryInterface(REFIID iid, void** object) {
  if (object && iid == IID_IPin) return GetInterface(static_cast<IPin*>(this), object);
  return CUnknown::NonDelegatingQueryInterface(iid, object);
}

ULONG CBasePin::NonDelegatingAddRef() { return m_filter->AddRef(); }
ULONG CBasePin::NonDelegatingRelease() { return m_filter->Release(); }

HRESULT CBasePin::CanConnectNow() const {
  if (IsConnected()) return VFW_E_ALREADY_CONNECTED;
  if (!IsStopped()) return VFW_E_NOT_STOPPED;
  return S_OK;
}

HRESULT CBasePin::Connect(IPin* receiver, const CMediaType* type) {
  if (!receiver) return E_POINTER;
  CAutoLock lock(*m_lock);
  const HRESULT hr = CanConnectNow();
  return FAILED(hr) ? hr : AgreeMediaType(receiver, type);
}

HRESULT CBasePin::AgreeMediaType(IPin* receiver, const CMediaType* type) {
  if (type && !type->IsPartiallySpecified()) return AttemptConnection(receiver, *type);
  ComPtr<IEnumMediaTypes> theirs;
  if (SUCCEEDED(receiver->EnumMediaTypes(theirs.Receive())) && theirs &&
      TryMediaTypes(receiver, type, theirs.Get()) == S_OK)
    return S_OK;
  ComPtr<IEnumMediaTypes> ours;
  if (SUCCEEDED(EnumMediaTypes(ours.Receive())) &&
      TryMediaTypes(receiver, type, ours.Get()) == S_OK)
    return S_OK;
  return VFW_E_NO_ACCEPTABLE_TYPES;
}

HRESULT CBasePin::TryMediaTypes(IPin* receiver, const CMediaType* pattern, IEnumMediaTypes* types) {
  CMediaType candidate;
  std::uint32_t fetched = 0;
  while (types->Next(1, &candidate, &fetched) == S_OK && fetched == 1) {
    if (pattern && !candidate.MatchesPartial(*pattern)) continue;
    if (AttemptConnection(receiver, candidate) == S_OK) return S_OK;
  }
  return VFW_E_NO_ACCEPTABLE_TYPES;
}

HRESULT CBasePin::AttemptConnection(IPin* receiver, const CMediaType& type) {
  HRESULT hr = TakeConnection(receiver, type);
  if (FAILED(hr)) return hr;
  hr = receiver->ReceiveConnection(this, &type);
  if (SUCCEEDED(hr)) {
    hr = CompleteConnect(receiver);
    if (SUCCEEDED(hr)) return S_OK;
    receiver->Disconnect();
  }
  DropConnection();
  return hr;
}

HRESULT CBasePin::TakeConnection(IPin* peer, const CMediaType& type) {
  HRESULT hr = CheckConnect(peer);
  if (SUCCEEDED(hr)) {
    hr = CheckMediaType(type);
    if (SUCCEEDED(hr) && hr != S_OK) hr = VFW_E_TYPE_NOT_ACCEPTED;
  }
  if (SUCCEEDED(hr)) {
    SetPeer(peer);
    hr = SetMediaType(type);
  }
  if (FAILED(hr)) DropConnection();
  return hr;
}

void CBasePin::DropConnection() {
  BreakConnect();
  SetPeer(nullptr);
  m_mt = CMediaType();
}

void CBasePin::SetPeer(IPin* peer) {
  ComPtr<IPin> replaced(peer);
  std::lock_guard lock(m_peerLock);
  m_connected.Swap(replaced);
}

HRESULT CBasePin::ReceiveConnection(IPin* connector, const CMediaType* type) {
  if (!connector || !type) return E_POINTER;
  CAutoLock lock(*m_lock);
  HRESULT hr = CanConnectNow();
  if (SUCCEEDED(hr)) hr = TakeConnection(connector, *type);
  if (FAILED(hr)) return hr;
  hr = CompleteConnect(connector);
  if (FAILED(hr)) DropConnection();
  return hr;
}

HRESULT CBasePin::Disconnect() {
  CAutoLock lock(*m_lock);
  if (!IsStopped()) return VFW_E_NOT_STOPPED;
  if (!IsConnected()) return S_FALSE;
  DropConnection();
  return S_OK;
}

HRESULT CBasePin::ConnectedTo(IPin** pin) {
  if (!pin) return E_POINTER;
  std::lock_guard lock(m_peerLock);
  *pin = ComPtr<IPin>(m_connected).Detach();
  return *pin ? S_OK : VFW_E_NOT_CONNECTED;
}

HRESULT CBasePin::ConnectionMediaType(CMediaType* type) {
  if (!type) return E_POINTER;
  CAutoLock lock(*m_lock);
  *type = IsConnected() ? m_mt : CMediaType();
  return IsConnected() ? S_OK : VFW_E_NOT_CONNECTED;
}

HRESULT CBasePin::QueryPinInfo(PIN_INFO* info) {
  if (!info) return E_POINTER;
  info->pFilter = ComPtr<IBaseFilter>(m_filter).Detach();
  info->dir = m_dir;
  CopyName(info->achName, m_name.c_str());
  return S_OK;
}

HRESULT CBasePin::QueryDirection(PIN_DIRECTION* direction) {
  if (!direction) return E_POINTER;
  *direction = m_dir;
  return S_OK;
}

HRESULT CBasePin::QueryId(wchar_t** id) {
  if (!id) return E_POINTER;
  const std::size_t bytes = (m_name.size() + 1) * sizeof(wchar_t);
  *id = static_cast<wchar_t*>(CoTaskMemAlloc(bytes));
  if (!*id) return E_OUTOFMEMORY;
  std::memcpy(*id, m_name.c_str(), bytes);
  return S_OK;
}

HRESULT CBasePin::QueryAccept(const CMediaType* type) {
  if (!type) return E_POINTER;
  return CheckMediaType(*type) == S_OK ? S_OK : S_FALSE;
}

HRESULT CBasePin::EnumMediaTypes(IEnumMediaTypes** types) {
  if (!types) return E_POINTER;
  return CEnumMediaTypes::Create(*this, types);
}

HRESULT CBasePin::QueryInternalConnections(IPin** /*pins*/, std::uint32_t* /*count*/) {
  return E_NOTIMPL;
}

HRESULT CBasePin::EndOfStream() { return S_OK; }

HRESULT CBasePin::NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {
  m_tStart = start;
  m_tStop = stop;
  m_dRate = rate;
  return S_OK;
}

HRESULT CBasePin::SetMediaType(const CMediaType& type) {
  m_mt = type;
  return S_OK;
}

HRESULT CBasePin::GetMediaType(std::int32_t /*position*/, CMediaType* /*type*/) {
  return VFW_S_NO_MORE_ITEMS;
}

HRESULT CBasePin::CheckConnect(IPin* pin) {
  PIN_DIRECTION theirs{};
  const HRESULT hr = pin->QueryDirection(&theirs);
  if (FAILED(hr)) return hr;
  return theirs == m_dir ? VFW_E_INVALID_DIRECTION : S_OK;
}

HRESULT CBasePin::CompleteConnect(IPin* /*receivePin*/) { return S_OK; }
HRESULT CBasePin::BreakConnect() { return S_OK; }
HRESULT CBasePin::Active() { return S_OK; }
HRESULT CBasePin::Inactive() { return S_OK; }
