// The fake host: one fake of each host interface, shared by every test. A FakeHostContext
// offers any chosen subset of the tempo map, the time converter, the pin observer and the MIDI
// ports (with or without their second version), as a host's context object does.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "interfaces/host_interfaces.h"
#include "interfaces/host_midi_ports.h"
#include "interfaces/media_params.h"
#include "interfaces/mfx_interfaces.h"
#include "tests/support/fake_unknown.h"

using FakeClock = std::chrono::steady_clock;

// A constant tempo: `msPerQuarter` milliseconds per quarter of `ticksPerQuarter` ticks.
class FakeTempoMap final : public FakeUnknown<IHostTempoMap> {
 public:
  explicit FakeTempoMap(std::int32_t ticksPerQuarter = 480, std::int32_t msPerQuarter = 500)
      : m_tpq(ticksPerQuarter), m_msPerQuarter(msPerQuarter) {}
  std::int32_t STDMETHODCALLTYPE TicksToMsecs(std::int32_t ticks) override;
  std::int32_t STDMETHODCALLTYPE MsecsToTicks(std::int32_t msecs) override;
  std::int32_t STDMETHODCALLTYPE GetTicksPerQuarter() override { return m_tpq; }

  void SetTicksPerQuarter(std::int32_t tpq) { m_tpq = tpq; }

 private:
  std::int32_t m_tpq;
  std::int32_t m_msPerQuarter;
};

// Converts at a fixed number of samples per tick.
class FakeTimeConverter final : public FakeUnknown<IHostTimeConverter> {
 public:
  explicit FakeTimeConverter(std::int64_t samplesPerTick = 100) : m_samplesPerTick(samplesPerTick) {}
  HRESULT STDMETHODCALLTYPE ConvertTime(HostTimeValue* time, std::uint32_t format) override;

 private:
  std::int64_t m_samplesPerTick;
};

// Records each announcement of a pin count change; refuses phase 1 on request.
class FakePinObserver final : public FakeUnknown<IHostPinObserver> {
 public:
  struct Call {
    std::int32_t phase;
    std::int32_t count;
  };
  HRESULT STDMETHODCALLTYPE OnPinCountChange(std::int32_t phase, IUnknown* filter,
                                             std::int32_t count) override;

  void RefuseChanges(bool refuse) { m_refuse = refuse; }
  std::vector<Call> Calls() const;

 private:
  mutable std::mutex m_mutex;
  std::vector<Call> m_calls;
  bool m_refuse = false;
};

// The host's ports. Every send is recorded with its arrival time; sends fail on request; output
// port N has handle N + 1 unless set otherwise, so a zero handle is a deliberate choice. On
// request the outputs are looped back: what is sent arrives on chosen instances' inputs.
class FakeMidiPorts final : public FakeUnknown<IHostMidiPorts2> {
 public:
  FakeMidiPorts();
  ~FakeMidiPorts();
  FakeMidiPorts(const FakeMidiPorts&) = delete;
  FakeMidiPorts& operator=(const FakeMidiPorts&) = delete;

  struct Sent {
    FakeClock::time_point at;
    MidiPortHandle handle;
    bool sysex;
    std::uint32_t message;            // short messages
    std::vector<std::uint8_t> bytes;  // sysex blocks
  };

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
  std::int32_t STDMETHODCALLTYPE GetInputPortCount() override;
  HRESULT STDMETHODCALLTYPE Reserved() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetInputPortName(std::int32_t index, wchar_t* name,
                                             std::uint32_t capacity) override;
  std::int32_t STDMETHODCALLTYPE GetOutputPortCount() override;
  HRESULT STDMETHODCALLTYPE GetOutputPortHandle(std::int32_t index, MidiPortHandle* handle) override;
  HRESULT STDMETHODCALLTYPE GetOutputPortName(std::int32_t index, wchar_t* name,
                                              std::uint32_t capacity) override;
  HRESULT STDMETHODCALLTYPE SendShortMsg(MidiPortHandle handle, std::uint32_t message) override;
  HRESULT STDMETHODCALLTYPE SendSysexMsg(MidiPortHandle handle, const std::uint8_t* bytes,
                                         std::uint32_t length) override;
  HRESULT STDMETHODCALLTYPE GetInputPortId(std::int32_t index, std::int32_t* id) override;
  HRESULT STDMETHODCALLTYPE GetOutputPortId(std::int32_t index, std::int32_t* id) override;
  HRESULT STDMETHODCALLTYPE UseInputPort(std::int32_t id) override;
  HRESULT STDMETHODCALLTYPE UseOutputPort(std::int32_t id) override;

  // --- set-up ---
  void SetOutputs(std::vector<std::wstring> names);
  void SetInputs(std::vector<std::wstring> names);
  void SetOutputHandle(std::int32_t index, MidiPortHandle handle);
  void OfferVersion2(bool offer) { m_offerVersion2 = offer; }
  // Replaces the default ids of one list: port i has ids[i], and no id (the query fails) where
  // that is empty or the list is shorter.
  void SetPortIds(bool input, std::vector<std::optional<std::int32_t>> ids);
  void FailShortSends(bool fail) { m_failShort = fail; }
  void FailSysexSends(bool fail) { m_failSysex = fail; }
  // As a device unplugged while its list is walked: right after the next count of either list,
  // each list keeps only its first `keep` ports, so names and ids asked for past them fail.
  void VanishAfterNextCount(std::size_t keep);
  // Each send stays this long inside the port, as with a slow driver, before it is recorded.
  void BlockSends(std::chrono::milliseconds time);
  // Hands each short send to `hook` alone, recording nothing: benchmarks measure the instance,
  // not this fake's lock and allocation. Null goes back to recording.
  // While held, a handle query waits (2 s at most) for the release: the worker stays in the
  // batch it took, and what is posted meanwhile queues up for one later batch.
  void HoldHandleQueries(bool hold);
  void SetShortSendHook(void (*hook)(void* context, std::uint32_t message), void* context);

  // --- what happened ---
  std::vector<Sent> Sends() const;
  std::size_t SendCount() const;
  // Waits until at least `count` sends arrived; false after `timeoutMs`.
  bool WaitForSends(std::size_t count, int timeoutMs) const;
  // Waits until at least `count` sends have begun, blocked or not; false after `timeoutMs`.
  bool WaitForSendsBegun(std::size_t count, int timeoutMs) const;
  // How often the output handle was asked for. The worker asks once per batch, after taking it
  // from the queue: a test knows a batch is in hand without guessing how long that takes. A
  // query takes no lock unless it is held or waited for, so it costs the worker next to nothing.
  std::size_t HandleQueries() const;
  // Waits until the handle was asked for at least `count` times; false after `timeoutMs`.
  bool WaitForHandleQueries(std::size_t count, int timeoutMs) const;
  std::vector<std::int32_t> UsedInputIds() const;
  std::vector<std::int32_t> UsedOutputIds() const;

  // --- loopback, as a MIDI cable from the outputs back to the inputs ---
  // Every short message sent from now on (still recorded) arrives on each of `listeners`
  // through OnInput, from a thread of this fake's own, as a host's input thread delivers it.
  // An empty list delivers what is on its way, then ends the loop and its thread: call it
  // before any listener goes.
  void LoopBackTo(std::vector<IMfxSoftSynth2*> listeners);
  // While held, sent messages wait on the wire; releasing delivers them.
  void HoldLoopback(bool hold);
  // Waits until everything sent so far was delivered (none is held); false after `timeoutMs`.
  bool WaitForLoopbackIdle(int timeoutMs) const;

  // Input and output ids are 100 + index and 200 + index.
  static constexpr std::int32_t kInputIdBase = 100;
  static constexpr std::int32_t kOutputIdBase = 200;

 private:
  void Record(Sent sent);
  // [set-up, m_mutex] Makes m_handles what queries read from now on.
  void PublishHandles();
  // Counts the send as begun, then blocks it as asked.
  void Begin();
  // [m_mutex] Drops the ports past the count asked for by VanishAfterNextCount.
  void VanishIfAsked();
  static HRESULT CopyName(const std::vector<std::wstring>& names, std::int32_t index,
                          wchar_t* name, std::uint32_t capacity);

  mutable std::mutex m_mutex;
  mutable std::condition_variable m_cv;
  std::vector<std::wstring> m_inputs;
  std::vector<std::wstring> m_outputs{L"Out A"};
  std::vector<MidiPortHandle> m_handles{1};
  // What queries read, without the lock: every published copy of m_handles stays until the end.
  std::vector<std::unique_ptr<const std::vector<MidiPortHandle>>> m_publishedHandles;
  std::atomic<const std::vector<MidiPortHandle>*> m_queryHandles{nullptr};
  std::atomic<std::size_t> m_handleQueries{0};
  mutable std::atomic<int> m_queryWaiters{0};  // threads in WaitForHandleQueries
  std::atomic<bool> m_holdQueries{false};
  std::vector<Sent> m_sent;
  std::size_t m_sendCount = 0;
  std::size_t m_sendsBegun = 0;
  std::chrono::milliseconds m_block{0};
  std::optional<std::size_t> m_vanishKeep;
  std::vector<std::int32_t> m_usedInputs, m_usedOutputs;
  bool m_offerVersion2 = true;
  std::optional<std::vector<std::optional<std::int32_t>>> m_inputIds, m_outputIds;
  std::atomic<bool> m_failShort{false};
  std::atomic<bool> m_failSysex{false};
  void (*m_hook)(void*, std::uint32_t) = nullptr;
  void* m_hookContext = nullptr;

  void DeliverLoop();
  std::vector<IMfxSoftSynth2*> m_loopListeners;
  std::deque<std::uint32_t> m_onWire;
  bool m_delivering = false;
  bool m_loopHeld = false;
  bool m_loopEnding = false;
  std::thread m_loopThread;
};

// The host's sink: records every record handed to it, and fails on request.
class FakeInputSink final : public FakeUnknown<IHostInputSink> {
 public:
  HRESULT STDMETHODCALLTYPE OnSinkEvent(IMfxInputPort* sender, const HostEventRecord* record) override;

  void Fail(bool fail) { m_fail = fail; }
  std::vector<HostEventRecord> Records() const;
  std::vector<IMfxInputPort*> Senders() const;
  bool WaitForRecords(std::size_t count, int timeoutMs) const;

 private:
  mutable std::mutex m_mutex;
  mutable std::condition_variable m_cv;
  std::vector<HostEventRecord> m_records;
  std::vector<IMfxInputPort*> m_senders;
  std::atomic<bool> m_fail{false};
};

// The host's automation callback: records each call in order and answers a chosen result.
class FakeParamsUICallback final : public FakeUnknown<IMediaParamsUICallback> {
 public:
  enum class Kind { kBeginCapture, kChanged, kEndCapture };
  struct Call {
    Kind kind;
    std::vector<std::uint32_t> indices;
    std::vector<MP_DATA> values;  // ParamsChanged only
  };
  HRESULT STDMETHODCALLTYPE ParamsBeginCapture(const std::uint32_t* indices,
                                               std::uint32_t count) override;
  HRESULT STDMETHODCALLTYPE ParamsChanged(const std::uint32_t* indices, std::uint32_t count,
                                          const MP_DATA* values) override;
  HRESULT STDMETHODCALLTYPE ParamsEndCapture(const std::uint32_t* indices,
                                             std::uint32_t count) override;

  void Answer(HRESULT result) { m_answer = result; }
  std::vector<Call> Calls() const;

 private:
  HRESULT Record(Kind kind, const std::uint32_t* indices, std::uint32_t count,
                 const MP_DATA* values);

  mutable std::mutex m_mutex;
  std::vector<Call> m_calls;
  HRESULT m_answer = S_OK;
};

// The context object a host passes to Connect. It answers only the interfaces it was given.
class FakeHostContext final : public FakeUnknown<IUnknown> {
 public:
  FakeTempoMap* tempoMap = nullptr;
  FakeTimeConverter* timeConverter = nullptr;
  FakePinObserver* pinObserver = nullptr;
  FakeMidiPorts* midiPorts = nullptr;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
};

// A list of records handed to OnEvents or OnInput; fails at a chosen index on request.
template <class Interface, class Record>
class FakeRecordList final : public FakeUnknown<Interface> {
 public:
  explicit FakeRecordList(std::vector<Record> records = {}) : m_records(std::move(records)) {}
  HRESULT STDMETHODCALLTYPE Unused() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetItemCount(std::int32_t* count) override {
    if (m_countResult < 0) return m_countResult;
    *count = static_cast<std::int32_t>(m_records.size());
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetItem(std::int32_t index, Record* record) override {
    if (index == m_failAt) return E_FAIL;
    if (index < 0 || static_cast<std::size_t>(index) >= m_records.size()) return E_INVALIDARG;
    *record = m_records[static_cast<std::size_t>(index)];
    return S_OK;
  }
  void FailAt(std::int32_t index) { m_failAt = index; }
  void FailCount(HRESULT result) { m_countResult = result; }

 private:
  std::vector<Record> m_records;
  std::int32_t m_failAt = -1;
  HRESULT m_countResult = S_OK;
};
using FakeEventList = FakeRecordList<IHostEventList, HostEventRecord>;
using FakeDataList = FakeRecordList<IHostDataList, HostDataRecord>;
