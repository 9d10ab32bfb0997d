// The soft-synth side of an instance: the face that the host and the editor see, over parts that
// each own one concern and its locking: the host connection, the event line, the output worker,
// the port choice and the stored event list. CFilter composes it with the processing class and
// the filter frame.
//
// Threads: host threads call the Mfx interfaces under the instance lock; the streaming thread
// runs the event window and the clock under it; the output worker sends without it; the editor
// thread calls IMyFilter, which takes no instance lock.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "core/dxi.h"
#include "core/event_line.h"
#include "core/host_connection.h"
#include "core/output_worker.h"
#include "documents/stored_event_list.h"
#include "instruments/instrument.h"
#include "documents/settings_stream.h"
#include "interfaces/mfx_interfaces.h"
#include "interfaces/my_filter.h"
#include "platform/com_ptr.h"
#include "platform/lock.h"
#include "platform/notify.h"
#include "ports/instance_tracker.h"
#include "ports/port_choice.h"

// The tracker is the first base so that it is built first and destroyed last.
class CSoftSynth : public CMultiInstanceTracker,
                   public CDXiSynthContext,
                   public IMfxSoftSynth2,
                   public IMfxNotify,
                   public IMfxInputPort,
                   public IMyFilter,
                   public IExternalDeviceProxy3,
                   public ISettingsSubject {
 public:
  CSoftSynth();
  ~CSoftSynth() override;
  CSoftSynth(const CSoftSynth&) = delete;
  CSoftSynth& operator=(const CSoftSynth&) = delete;

  // --- output worker ---------------------------------------------------------------------
  // [any thread] Queues a deep copy and wakes the worker. E_FAIL, and the event is lost, while
  // the worker does not run.
  HRESULT PostToWorker(const CStoredEvent& event);
  // [graph thread, instance lock] Empties the queue and starts a worker at the highest
  // priority.
  HRESULT StartWorker();
  // [graph thread, instance lock] Drops what is queued and asks the worker to end. Returns at
  // once: a worker inside a batch finishes that batch, pauses included, then ends.
  HRESULT StopWorker();
  // [any thread] Posts every enabled stored event, in list order; always 0.
  HRESULT SendEnabledEvents();

  // --- IMfxSoftSynth2 ----------------------------------------------------------------------
  HRESULT STDMETHODCALLTYPE Connect(IUnknown* context) override;
  HRESULT STDMETHODCALLTYPE Disconnect() override;
  HRESULT STDMETHODCALLTYPE OnStart(std::int32_t tick) override;
  HRESULT STDMETHODCALLTYPE OnLoop(std::int32_t from, std::int32_t to) override;
  HRESULT STDMETHODCALLTYPE OnStop(std::uint32_t unread) override;
  HRESULT STDMETHODCALLTYPE OnEvents(std::uint32_t unread1, std::uint32_t unread2,
                                     std::int32_t channelKey, IHostEventList* list) override;
  HRESULT STDMETHODCALLTYPE OnInput(std::uint32_t unread, IHostDataList* list) override;
  // [host thread] The eight name operations forward, under the instance lock, to the
  // instrument's operation of the same name; E_FAIL when the instrument could not be made.
  HRESULT STDMETHODCALLTYPE GetBanks(std::int32_t** banks, std::int32_t* count) override;
  HRESULT STDMETHODCALLTYPE QueryPatchFalse(std::int32_t bank, std::int32_t patch) override;
  HRESULT STDMETHODCALLTYPE QueryPatchTrue(std::int32_t bank, std::int32_t patch) override;
  HRESULT STDMETHODCALLTYPE GetPatchNames(std::int32_t bank, IMfxNameList** names) override;
  HRESULT STDMETHODCALLTYPE ReservedQuery(std::int32_t a, std::int32_t b, void* c) override;
  HRESULT STDMETHODCALLTYPE GetControllerNames(IMfxNameList** names) override;
  HRESULT STDMETHODCALLTYPE ReservedListA(void* a) override;
  HRESULT STDMETHODCALLTYPE ReservedListB(void* a) override;
  // [host thread] The instrument with a reference added. E_POINTER for null, E_FAIL when the
  // instrument could not be made.
  HRESULT STDMETHODCALLTYPE GetInstrumentInterface(std::uint32_t unread,
                                                   IMfxInstrument** instrument) override;

  // --- IMfxNotify, IMfxInputPort -------------------------------------------------------------
  HRESULT STDMETHODCALLTYPE OnNotify(const void* message) override;
  HRESULT STDMETHODCALLTYPE SetInputSink(IHostInputSink* sink) override;
  HRESULT STDMETHODCALLTYPE GetInputSink(IHostInputSink** sink) override;

  // --- IMyFilter -----------------------------------------------------------------------------
  HRESULT STDMETHODCALLTYPE SetEditorWindow(IEditorWindow* editor) override;
  HRESULT STDMETHODCALLTYPE GetPorts(IHostMidiPorts** ports) override;
  // [editor thread or load] Takes the first port of that exact name and announces its id to a
  // host that offers ids. No match: E_FAIL with the choice unchanged, and a warning box unless
  // the name is empty. Needs a connection with ports.
  HRESULT STDMETHODCALLTYPE SelectInputPort(std::wstring name) override;
  HRESULT STDMETHODCALLTYPE SelectOutputPort(std::wstring name) override;
  HRESULT STDMETHODCALLTYPE SetOutputRechannel(std::uint32_t channel) override;
  HRESULT STDMETHODCALLTYPE GetInputPortIndex(std::int32_t* index) override;
  HRESULT STDMETHODCALLTYPE GetOutputPortIndex(std::int32_t* index) override;
  HRESULT STDMETHODCALLTYPE GetOutputRechannel(std::uint32_t* channel) override;
  HRESULT STDMETHODCALLTYPE SetOutputEnabled(std::int32_t enabled) override;
  HRESULT STDMETHODCALLTYPE SetMIDISync(std::int32_t enabled) override;
  HRESULT STDMETHODCALLTYPE GetMIDISync(std::int32_t* enabled) override;
  HRESULT STDMETHODCALLTYPE GetEventCount(std::uint32_t* count) override;
  HRESULT STDMETHODCALLTYPE GetEvent(std::uint32_t index, CStoredEvent** event) override;
  HRESULT STDMETHODCALLTYPE InsertEvent(std::uint32_t index, const CStoredEvent* event) override;
  HRESULT STDMETHODCALLTYPE RemoveEvent(std::uint32_t index) override;
  HRESULT STDMETHODCALLTYPE GetInstrumentObject(CInstrument** instrument) override;
  HRESULT STDMETHODCALLTYPE SendEvent(const CStoredEvent* event) override;
  HRESULT STDMETHODCALLTYPE GetSysexPrefixByte(std::uint8_t* value, std::int32_t index) override;
  HRESULT STDMETHODCALLTYPE GetSysexPrefixLength(std::uint32_t* length) override;
  HRESULT STDMETHODCALLTYPE AssignSysexPrefix(std::vector<std::uint8_t> bytes) override;
  HRESULT STDMETHODCALLTYPE SetSysexPrefix(const std::uint8_t* bytes, std::uint32_t count) override;
  HRESULT STDMETHODCALLTYPE OpenClosedLoopTest(NotifyHandle window) override;
  HRESULT STDMETHODCALLTYPE IsOutputActive(std::uint8_t* active) override;
  HRESULT STDMETHODCALLTYPE GetEventCounters(std::uint32_t* received, std::uint32_t* sent,
                                             std::uint8_t clear) override;
  HRESULT STDMETHODCALLTYPE SendTestMessage(std::uint32_t message) override;
  HRESULT STDMETHODCALLTYPE SetClosedLoopTest(std::uint8_t running) override;

  // --- IExternalDeviceProxy3 -----------------------------------------------------------------
  HRESULT STDMETHODCALLTYPE SendSysexData(std::uint32_t unread, const std::uint8_t* bytes,
                                          std::uint32_t length) override;
  HRESULT STDMETHODCALLTYPE ConsumeInstrumentChanged(std::int32_t* changed) override;
  HRESULT STDMETHODCALLTYPE GetDeviceSummary(wchar_t* name, std::int32_t nameCapacity,
                                             wchar_t* port, std::int32_t portCapacity,
                                             std::uint32_t* rechannel) override;
  HRESULT STDMETHODCALLTYPE SetConfigXml(const wchar_t* text) override;
  HRESULT STDMETHODCALLTYPE GetConfigXmlSize(std::uint32_t* size,
                                             std::int32_t includePorts) override;
  HRESULT STDMETHODCALLTYPE GetConfigXml(wchar_t* buffer, std::uint32_t capacity,
                                         std::int32_t includePorts) override;

  // --- ISettingsSubject: what the saved state reads and restores (documented there) ----------
  CCritSec& SettingsLock() override { return InstanceLock(); }
  ComPtr<IHostMidiPorts> SettingsPorts() override;
  PortChoice SavedPort(PortDirection direction) override;
  std::uint32_t SavedRechannel() override;
  bool SavedMidiSync() override;
  std::vector<std::uint8_t> SavedSysexPrefix() override;
  void ForEachSavedEvent(const std::function<void(const CStoredEvent&)>& visit) override;
  void WriteCurrentDevice(TiXmlNode& parent) override;
  void ReadDevices(const TiXmlNode& parent, std::vector<std::wstring>& names) override;
  HRESULT SelectDevice(const std::wstring& name) override;
  HRESULT RestorePort(PortDirection direction, std::wstring name) override;
  void RestoreOutputEnabled(bool enabled) override;
  void RestoreRechannel(std::uint32_t channel) override;
  void RestoreSysexPrefix(std::vector<std::uint8_t> bytes) override;
  void RestoreMidiSync(bool enabled) override;
  void RestoreEvents(std::vector<CStoredEvent> events) override;
  void ReloadEditorLists() override;
  HRESULT SendEventsAfterLoad() override;

  // --- CDXiSynthContext: time conversion ---------------------------------------------------
  std::int64_t TicksToSamples(std::int32_t ticks) override;
  std::int32_t SamplesToTicks(std::int64_t samples) override;

  // --- the sequenced line: kept, adjusted and dropped in due time, never sent --------------
  // [streaming thread or host thread, instance lock] Takes every pending event whose sample time
  // lies in [stream position, stream position + frames) out of the pending list (the others
  // keep their order), adjusts it by its key's mixing state, and appends it to the voice queue.
  // Then each note-off in the queue leaves it and closes the oldest open note of its key: one
  // note per note-off per pass. The processing class's first negative answer, else 0.
  HRESULT RunEventWindow(std::int32_t frames);
  // [streaming thread or host thread, instance lock] Drops from the voice queue what is not a
  // note once the stream has passed its time, and the notes that the processing class lets go.
  // Its first negative answer stops the walk and is the result; else 0.
  HRESULT FlushVoices(std::int32_t force);
  // [streaming thread] Posts one MIDI clock when the host's tempo says that at least a clock
  // interval (ticks per quarter / 24) has passed since the last, at the tick of sample
  // `position`. A jump backwards restarts the count there. Only with output enabled, MIDI sync
  // on and a host connected; at most one clock per call.
  void SendClockIfDue(std::int64_t position);

  // [any thread] Copies taken under the instance lock, for whoever must see the sequenced line:
  // the pending events in order, the voice queue in order, and the mixing state of a key.
  std::vector<HostEventRecord> PendingEvents();
  std::vector<HostEventRecord> Voices();
  std::optional<ChannelState> ChannelStateOf(std::int32_t channelKey);

 protected:
  // The instance lock: the processing class's critical section.
  CCritSec& InstanceLock() noexcept { return *m_dxi; }
  // [construction] The processing part of the same object, once CFilter has built it.
  void BindProcessing(CExternalHardwareProxyDXi& processing) noexcept;
  // False when the device store could not be made, which fails the construction.
  bool HasInstrument() const noexcept { return static_cast<bool>(m_instrument); }
  // [instance lock] See CHostConnection::AnnouncePinCountChange.
  HRESULT AnnouncePinCountChange(std::int32_t phase, IUnknown* filter, std::int32_t count);
  // [destruction] Stops the worker and waits for every worker thread, cutting pauses short.
  // The most derived class calls it first thing in its destructor, while every member stands.
  void EndAllWorkers() { m_worker.EndAll(); }
  // [streaming thread] One segment of `frames` frames from sample `position`, under one hold of
  // the instance lock: the event window, Process (its answer in `processed`), the stream
  // position moved on, a flush of the voices. The window's or the flush's failure, else 0.
  HRESULT RunSegment(std::int64_t position, AudioBuffer* input, AudioBuffer* outputs,
                     std::int32_t outputCount, std::int32_t frames, HRESULT& processed);
  // [streaming thread, instance lock] The processing class's Process at the current stream
  // position, with the voice queue.
  HRESULT ProcessAt(std::int64_t position, AudioBuffer* input, AudioBuffer* outputs,
                    std::int32_t outputCount);
  // [streaming thread, instance lock] Moves the stream position on by `frames`.
  void AdvanceStream(std::int32_t frames);

 private:
  HRESULT SelectPort(CPortChoice::Direction direction, const std::wstring& name);
  // The sample rate that time conversion goes by: the input format's.
  std::uint32_t SampleRate() { return m_dxi->GetInputFormat()->nSamplesPerSec; }

  CExternalHardwareProxyDXi* m_dxi = nullptr;
  CHostConnection m_connection;
  CPortChoice m_ports;
  // After the connection and the ports, which its threads read: it ends them first.
  COutputWorker m_worker;
  CEventLine m_eventLine;  // [instance lock]
  CStoredEventList m_events;
  ComPtr<CInstrument> m_instrument;
  std::atomic<IEditorWindow*> m_editor{nullptr};
  std::atomic<NotifyHandle> m_editorWindow{0};  // the editor's handle, read by StartWorker
  std::int32_t m_lastClockTick = 0;             // [instance lock]
  std::atomic<bool> m_midiSync{false};
  std::atomic<bool> m_closedLoopTest{false};
};
