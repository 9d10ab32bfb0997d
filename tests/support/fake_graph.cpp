#include "tests/support/fake_graph.h"

#include <algorithm>

FakeGraph::FakeGraph(bool offersEventSink) : m_offersEventSink(offersEventSink) {}

FakeGraph::~FakeGraph() {
  while (!m_filters.empty()) RemoveFilter(m_filters.back().Get());
}

HRESULT FakeGraph::QueryInterface(REFIID iid, void** object) {
  if (!object) return E_POINTER;
  if (iid == IID_IUnknown || iid == IID_IFilterGraph)
    *object = static_cast<IFilterGraph*>(this);
  else if (iid == IID_IMediaEventSink && m_offersEventSink)
    *object = static_cast<IMediaEventSink*>(this);
  else {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

ULONG FakeGraph::AddRef() { return ++m_refs; }
ULONG FakeGraph::Release() { return --m_refs; }

HRESULT FakeGraph::AddFilter(IBaseFilter* filter, const wchar_t* name) {
  if (!filter) return E_POINTER;
  const HRESULT hr = filter->JoinFilterGraph(this, name);
  if (FAILED(hr)) return hr;
  std::lock_guard lock(m_mutex);
  m_filters.emplace_back(filter);
  return S_OK;
}

HRESULT FakeGraph::RemoveFilter(IBaseFilter* filter) {
  ComPtr<IBaseFilter> leaving;
  {
    std::lock_guard lock(m_mutex);
    const auto it = std::find_if(m_filters.begin(), m_filters.end(),
                                 [&](const ComPtr<IBaseFilter>& m) { return m.Get() == filter; });
    if (it == m_filters.end()) return VFW_E_NOT_FOUND;
    leaving = std::move(*it);
    m_filters.erase(it);
  }
  leaving->JoinFilterGraph(nullptr, nullptr);
  return S_OK;
}

HRESULT FakeGraph::EnumFilters(IEnumFilters** filters) {
  if (filters) *filters = nullptr;
  return E_NOTIMPL;
}

HRESULT FakeGraph::FindFilterByName(const wchar_t*, IBaseFilter** filter) {
  if (filter) *filter = nullptr;
  return E_NOTIMPL;
}

HRESULT FakeGraph::Reconnect(IPin* pin) {
  if (!pin) return E_POINTER;
  std::lock_guard lock(m_mutex);
  m_reconnects.push_back(pin);
  return S_OK;
}


HRESULT FakeGraph::Notify(std::int32_t code, std::intptr_t param1, std::intptr_t param2) {
  std::lock_guard lock(m_mutex);
  m_events.push_back({code, param1, param2});
  return S_OK;
}

std::vector<FakeGraph::Event> FakeGraph::Events() const {
  std::lock_guard lock(m_mutex);
  return m_events;
}

std::vector<IPin*> FakeGraph::Reconnects() const {
  std::lock_guard lock(m_mutex);
  return m_reconnects;
}
