// The filter base: identity, state machine, pins by index, graph membership and events. A
// derived filter owns its pins and answers GetPinCount/GetPin; everything else is here.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "interfaces/graph_interfaces.h"
#include "frame/unknown.h"
#include "platform/com_ptr.h"
#include "platform/lock.h"

class CBasePin;

class CBaseFilter : public CUnknown, public IBaseFilter {
 public:
  DECLARE_IUNKNOWN

  // `lock` is the filter lock, shared with the pins and owned by the derived object; it must
  // outlive this one. `clsid` is what GetClassID answers.
  CBaseFilter(const wchar_t* name, IUnknown* outer, CCritSec* lock, const CLSID& clsid);
  ~CBaseFilter() override;

  // Answers IBaseFilter, IMediaFilter and IPersist (all the same face), then CUnknown's.
  HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID iid, void** object) override;

  // IPersist
  HRESULT STDMETHODCALLTYPE GetClassID(CLSID* classId) override;

  // IMediaFilter. Stop calls Inactive on every connected pin, Pause from stopped calls Active on
  // every connected pin; both go on through all pins and answer the first failure, and the new
  // state holds either way, so a Stop after a failed Pause undoes it. Run pauses first (through
  // the virtual Pause) when stopped, then runs; a failed Pause is the answer and the state stays
  // paused.
  HRESULT STDMETHODCALLTYPE Stop() override;
  HRESULT STDMETHODCALLTYPE Pause() override;
  HRESULT STDMETHODCALLTYPE Run(REFERENCE_TIME start) override;
  HRESULT STDMETHODCALLTYPE GetState(std::uint32_t timeoutMs, FILTER_STATE* state) override;
  HRESULT STDMETHODCALLTYPE SetSyncSource(IReferenceClock* clock) override;
  HRESULT STDMETHODCALLTYPE GetSyncSource(IReferenceClock** clock) override;

  // IBaseFilter
  HRESULT STDMETHODCALLTYPE EnumPins(IEnumPins** pins) override;
  HRESULT STDMETHODCALLTYPE FindPin(const wchar_t* id, IPin** pin) override;
  HRESULT STDMETHODCALLTYPE QueryFilterInfo(FILTER_INFO* info) override;
  // Keeps `graph` without a reference, asks it for IMediaEventSink and keeps that, too, without
  // a reference (the graph owns both). A graph without a sink leaves events unreported.
  HRESULT STDMETHODCALLTYPE JoinFilterGraph(IFilterGraph* graph, const wchar_t* name) override;
  HRESULT STDMETHODCALLTYPE QueryVendorInfo(wchar_t** info) override;

  // [any thread; the caller holds the filter lock] The number of pins and the pin at index `n`
  // (0-based), or null for an index out of range, negative ones included. No reference is added.
  virtual std::int32_t GetPinCount() = 0;
  virtual CBasePin* GetPin(std::int32_t n) = 0;

  // [any thread] Grows whenever the set of pins changes, so enumerators notice; a derived filter
  // that adds or removes pins calls IncrementPinVersion.
  std::int32_t GetPinVersion() const noexcept { return m_pinVersion.load(); }
  void IncrementPinVersion() noexcept { ++m_pinVersion; }

  // [any thread] Reports an event to the graph's sink and answers the sink's result. Outside a
  // graph, or in one without a sink, there is nobody to tell and the answer is S_OK.
  HRESULT NotifyEvent(std::int32_t code, std::intptr_t param1, std::intptr_t param2);

  // [any thread]
  bool IsStopped() const noexcept { return m_state == State_Stopped; }
  bool IsActive() const noexcept { return m_state != State_Stopped; }
  // [any thread, filter lock] The graph the filter is in, without a reference, or null.
  IFilterGraph* GetFilterGraph() const noexcept { return m_graph; }
  // The filter lock.
  CCritSec* GetLock() const noexcept { return m_lock; }

 protected:
  std::atomic<FILTER_STATE> m_state{State_Stopped};  // written under the filter lock
  CCritSec* const m_lock;
  IFilterGraph* m_graph = nullptr;  // weak: the graph owns us
  REFERENCE_TIME m_tStart = 0;       // stream time of the last Run
  ComPtr<IReferenceClock> m_clock;

 private:
  // Calls Active or Inactive on every connected pin; the first failure.
  HRESULT ForEachConnectedPin(HRESULT (CBasePin::*step)());

  const CLSID m_clsid;
  std::wstring m_name;                             // name in the graph
  std::atomic<IMediaEventSink*> m_sink{nullptr};  // weak, like m_graph
  std::atomic<std::int32_t> m_pinVersion{1};
};
