// The host's filter graph as a filter sees it: owns the filters added to it, tells them so, and
// records what they ask of it. Lives on the test's stack; its own reference count is only
// checked, never used to free it.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
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
  HRESULT STDMETHODCALLTYPE EnumFilters(IEnumFilters** filters) override;  // E_NOTIMPL
  HRESULT STDMETHODCALLTYPE FindFilterByName(const wchar_t* name, IBaseFilter** filter) override;
  HRESULT STDMETHODCALLTYPE ConnectDirect(IPin* output, IPin* input,
                                          const CMediaType* type) override;
  // Records the pin and answers S_OK; reconnecting is left to the test.
  HRESULT STDMETHODCALLTYPE Reconnect(IPin* pin) override;
  HRESULT STDMETHODCALLTYPE Disconnect(IPin* pin) override;
  HRESULT STDMETHODCALLTYPE SetDefaultSyncSource() override;

  // Records the event and answers S_OK.
  HRESULT STDMETHODCALLTYPE Notify(std::int32_t code, std::intptr_t param1,
                                   std::intptr_t param2) override;

  // [any thread] What was recorded, in order.
  std::vector<Event> Events() const;
  std::vector<IPin*> Reconnects() const;
  // References held on the graph by others; 0 when all were given back.
  ULONG OutsideReferences() const noexcept { return m_refs.load(); }

 private:
  struct Member {
    ComPtr<IBaseFilter> filter;
    std::wstring name;
  };

  const bool m_offersEventSink;
  std::atomic<ULONG> m_refs{0};
  mutable std::mutex m_mutex;
  std::vector<Member> m_filters;
  std::vector<Event> m_events;
  std::vector<IPin*> m_reconnects;
};
