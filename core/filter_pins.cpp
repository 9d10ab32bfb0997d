#include "core/filter_pins.h"

#include "core/filter.h"

CFilterInputPin::CFilterInputPin(CFilter* filter, CCritSec* lock, HRESULT* phr)
    : CBaseInputPin(L"Input pin", filter, lock, phr, L"Input"), m_filter(filter) {}

// Which formats pass, and streaming itself, arrive with the audio path.
HRESULT CFilterInputPin::CheckMediaType(const CMediaType&) { return E_NOTIMPL; }

HRESULT CFilterInputPin::EndOfStream() {
  CAutoLock lock(*m_pLock);
  if (m_filter->ConnectedOutputCount() == 0) return S_OK;
  return E_NOTIMPL;
}

CFilterOutputPin::CFilterOutputPin(CFilter* filter, CCritSec* lock, HRESULT* phr,
                                   const wchar_t* name, std::uint32_t id)
    : CBaseOutputPin(L"Output pin", filter, lock, phr, name), m_id(id) {}

ULONG CFilterOutputPin::NonDelegatingAddRef() { return CUnknown::NonDelegatingAddRef(); }

ULONG CFilterOutputPin::NonDelegatingRelease() {
  CAutoLock lock(*m_pLock);
  return CUnknown::NonDelegatingRelease();
}

HRESULT CFilterOutputPin::CheckMediaType(const CMediaType&) { return E_NOTIMPL; }

HRESULT CFilterOutputPin::DecideBufferSize(IMemAllocator*, ALLOCATOR_PROPERTIES*) {
  return E_NOTIMPL;
}
