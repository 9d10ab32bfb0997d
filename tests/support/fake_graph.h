// The host's filter graph as a filter sees it: owns the filters added to it, tells them so, and
// records what they ask of it. Lives on the test's stack; its own reference count is only
// checked, never used to free it.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

#include "interfaces/graph_interfaces.h"
#include "platform/com_ptr.h"

class FakeGraph final : public IFilterGraph, public IMediaEventSink {
 public:
  struct Event {
    std::int32_t code;
    std::intptr_t param1;
    std::intptr_t param2;
  };

  // Without `offersEventSink` the graph answers no IMediaEventSink, as a bare graph may not.
  explicit FakeGraph(bool offersEventSink = true);
  // Removes every filter still in the graph.
  ~FakeGraph();
  FakeGraph(const FakeGraph&) = delete;
  FakeGraph& operator=(const FakeGraph&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;

  // Holds a reference on the filter and calls its JoinFilterGraph; RemoveFilter undoes both.
  HRESULT STDMETHODCALLTYPE AddFilter(IBaseFilter* filter, const wchar_t* name) override;
  HRESULT STDMETHODCALLTYPE RemoveFilter(IBaseFilter* filter) override;
  // Records the pin and answers S_OK; reconnecting is left to the test.
  HRESULT STDMETHODCALLTYPE Reconnect(IPin* pin) override;
  // Nothing under test asks the graph for these: E_NOTIMPL.
  HRESULT STDMETHODCALLTYPE EnumFilters(IEnumFilters** filters) override;
  HRESULT STDMETHODCALLTYPE FindFilterByName(const wchar_t* name, IBaseFilter** filter) override;
  HRESULT STDMETHODCALLTYPE ConnectDirect(IPin*, IPin*, const CMediaType*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Disconnect(IPin*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetDefaultSyncSource() override { return E_NOTIMPL; }

  // Records the event and answers S_OK.
  HRESULT STDMETHODCALLTYPE Notify(std::int32_t code, std::intptr_t param1,
                                   std::intptr_t param2) override;

  // [any thread] What was recorded, in order.
  std::vector<Event> Events() const;
  std::vector<IPin*> Reconnects() const;
  // References held on the graph by others; 0 when all were given back.
  ULONG OutsideReferences() const noexcept { return m_refs.load(); }

 private:
  const bool m_offersEventSink;
  std::atomic<ULONG> m_refs{0};
  mutable std::mutex m_mutex;
  std::vector<ComPtr<IBaseFilter>> m_filters;
  std::vector<Event> m_events;
  std::vector<IPin*> m_reconnects;
};
