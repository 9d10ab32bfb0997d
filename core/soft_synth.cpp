#include "core/soft_synth.h"

#include <cstring>
#include <cwchar>
#include <new>

#include "platform/codepage.h"

CSoftSynth::CSoftSynth()
    : CMultiInstanceTracker(static_cast<IMyFilter*>(this)),
      m_worker(m_connection, m_ports, static_cast<IMfxInputPort*>(this)),
      m_instrument(new (std::nothrow) CInstrument()) {}

// Workers are ended by the most derived class, while the instance lock still stands. The host
// references go before the instrument, in the order a Disconnect releases them.
CSoftSynth::~CSoftSynth() {
  m_connection.Disconnect();
  m_instrument.Reset();
}

void CSoftSynth::BindProcessing(CExternalHardwareProxyDXi& processing) noexcept {
  m_dxi = &processing;
  m_eventLine.Bind(processing);
}

// --- output worker ----------------------------------------------------------------------------

HRESULT CSoftSynth::PostToWorker(const CStoredEvent& event) { return m_worker.Post(event); }

HRESULT CSoftSynth::StartWorker() {
  CAutoLock lock(InstanceLock());
  m_worker.Start(m_editorWindow.load());
  return S_OK;
}

HRESULT CSoftSynth::StopWorker() {
  CAutoLock lock(InstanceLock());
  m_worker.Stop();
  return S_OK;
}

HRESULT CSoftSynth::SendEnabledEvents() {
  m_events.ForEachEnabled([this](const CStoredEvent& event) { m_worker.Post(event); });
  return S_OK;
}

// --- connection ---------------------------------------------------------------------------

HRESULT CSoftSynth::Connect(IUnknown* context) {
  HRESULT hr;
  {
    CAutoLock lock(InstanceLock());
    hr = m_connection.Connect(context);
  }
  // Hosts lend the context and count on this release; it is part of the contract.
  if (context) context->Release();
  return hr;
}

HRESULT CSoftSynth::Disconnect() {
  CAutoLock lock(InstanceLock());
  m_connection.Disconnect();
  return S_OK;
}

HRESULT CSoftSynth::AnnouncePinCountChange(std::int32_t phase, IUnknown* filter,
                                           std::int32_t count) {
  CAutoLock lock(InstanceLock());
  return m_connection.AnnouncePinCountChange(phase, filter, count);
}

std::int64_t CSoftSynth::TicksToSamples(std::int32_t ticks) {
  CAutoLock lock(InstanceLock());
  return m_connection.TicksToSamples(ticks, SampleRate());
}

std::int32_t CSoftSynth::SamplesToTicks(std::int64_t samples) {
  CAutoLock lock(InstanceLock());
  return m_connection.SamplesToTicks(samples, SampleRate());
}

// --- transport and the sequenced line ---------------------------------------------------------

HRESULT CSoftSynth::OnStart(std::int32_t tick) {
  CAutoLock lock(InstanceLock());
  m_eventLine.Start(TicksToSamples(tick));
  m_lastClockTick = 0;
  return S_OK;
}

HRESULT CSoftSynth::OnLoop(std::int32_t from, std::int32_t to) {
  CAutoLock lock(InstanceLock());
  m_eventLine.Loop(TicksToSamples(to) - TicksToSamples(from));
  return S_OK;
}

HRESULT CSoftSynth::OnStop(std::uint32_t) {
  CAutoLock lock(InstanceLock());
  m_eventLine.Stop();
  return S_OK;
}

HRESULT CSoftSynth::OnEvents(std::uint32_t, std::uint32_t, std::int32_t channelKey,
                             IHostEventList* list) {
  CAutoLock lock(InstanceLock());
  if (!m_connection.TempoMap()) return E_UNEXPECTED;
  if (!list) return E_POINTER;
  std::int32_t count = 0;
  HRESULT hr = list->GetItemCount(&count);
  if (FAILED(hr)) return hr;
  for (std::int32_t i = 0; i < count; ++i) {
    HostEventRecord record{};
    hr = list->GetItem(i, &record);
    if (FAILED(hr)) return hr;
    hr = m_eventLine.Queue(record, TicksToSamples(record.time), channelKey);
    if (FAILED(hr)) return hr;
  }
  return S_OK;
}

HRESULT CSoftSynth::OnNotify(const void* message) {
  if (!message) return S_OK;
  ChannelStateMessage m;
  std::memcpy(&m, message, sizeof m);  // the host's record need not be aligned
  if (m.kind > ChannelStateMessage::kKeyOffset2) return S_OK;
  CAutoLock lock(InstanceLock());
  m_eventLine.Notify(m);
  return S_OK;
}

HRESULT CSoftSynth::RunEventWindow(std::int32_t frames) {
  CAutoLock lock(InstanceLock());
  return m_eventLine.WindowPass(frames);
}

HRESULT CSoftSynth::FlushVoices(std::int32_t force) {
  CAutoLock lock(InstanceLock());
  return m_eventLine.FlushPass(force);
}

HRESULT CSoftSynth::RunSegment(std::int64_t position, AudioBuffer* input, AudioBuffer* outputs,
                               std::int32_t outputCount, std::int32_t frames,
                               HRESULT& processed) {
  CAutoLock lock(InstanceLock());
  const HRESULT hr = m_eventLine.WindowPass(frames);
  if (FAILED(hr)) return hr;
  processed = m_eventLine.Process(position, input, outputs, outputCount);
  m_eventLine.Advance(frames);
  return m_eventLine.FlushPass(0);
}

HRESULT CSoftSynth::ProcessAt(std::int64_t position, AudioBuffer* input, AudioBuffer* outputs,
                              std::int32_t outputCount) {
  CAutoLock lock(InstanceLock());
  return m_eventLine.Process(position, input, outputs, outputCount);
}

void CSoftSynth::AdvanceStream(std::int32_t frames) {
  CAutoLock lock(InstanceLock());
  m_eventLine.Advance(frames);
}

std::vector<HostEventRecord> CSoftSynth::PendingEvents() {
  CAutoLock lock(InstanceLock());
  return m_eventLine.PendingEvents();
}

std::vector<HostEventRecord> CSoftSynth::Voices() {
  CAutoLock lock(InstanceLock());
  return m_eventLine.Voices();
}

std::optional<ChannelState> CSoftSynth::ChannelStateOf(std::int32_t channelKey) {
  CAutoLock lock(InstanceLock());
  return m_eventLine.ChannelStateOf(channelKey);
}

// --- IMfxInputPort ------------------------------------------------------------------------

HRESULT CSoftSynth::SetInputSink(IHostInputSink* sink) {
  CAutoLock lock(InstanceLock());
  m_connection.SetSink(sink);
  return S_OK;
}

HRESULT CSoftSynth::GetInputSink(IHostInputSink** sink) {
  if (!sink) return E_POINTER;
  CAutoLock lock(InstanceLock());
  *sink = m_connection.Sink().Detach();
  return *sink ? S_OK : S_FALSE;
}

// --- IMyFilter: output settings -----------------------------------------------------------

HRESULT CSoftSynth::SetEditorWindow(IEditorWindow* editor) {
  m_editor = editor;
  const NotifyHandle window = editor ? editor->WindowHandle() : 0;
  m_editorWindow = window;
  m_worker.SetNotifyWindow(window);
  return S_OK;
}

HRESULT CSoftSynth::GetPorts(IHostMidiPorts** ports) {
  if (!ports) return E_POINTER;
  *ports = m_connection.Ports().Detach();
  return *ports ? S_OK : E_POINTER;
}

HRESULT CSoftSynth::SelectPort(CPortChoice::Direction direction, const std::wstring& name) {
  return m_ports.Select(m_connection.Ports().Get(), direction, name);
}

HRESULT CSoftSynth::SelectInputPort(std::wstring name) {
  return SelectPort(CPortChoice::Direction::Input, name);
}

HRESULT CSoftSynth::SelectOutputPort(std::wstring name) {
  return SelectPort(CPortChoice::Direction::Output, name);
}

HRESULT CSoftSynth::SetOutputRechannel(std::uint32_t channel) {
  m_worker.SetRechannel(channel);
  return S_OK;
}

HRESULT CSoftSynth::GetInputPortIndex(std::int32_t* index) {
  if (!index) return E_POINTER;
  const std::int32_t current = m_ports.InputIndex();
  if (current == -1) return E_FAIL;
  *index = current;
  return S_OK;
}

HRESULT CSoftSynth::GetOutputPortIndex(std::int32_t* index) {
  if (!index) return E_POINTER;
  const std::int32_t current = m_ports.OutputIndex();
  if (current == -1) return E_FAIL;
  *index = current;
  return S_OK;
}

HRESULT CSoftSynth::GetOutputRechannel(std::uint32_t* channel) {
  if (!channel) return E_POINTER;
  *channel = m_worker.Rechannel();
  return S_OK;
}

HRESULT CSoftSynth::SetOutputEnabled(std::int32_t enabled) {
  m_ports.SetOutputEnabled(enabled != 0);
  return S_OK;
}

HRESULT CSoftSynth::SetMIDISync(std::int32_t enabled) {
  m_midiSync = enabled != 0;
  return S_OK;
}

HRESULT CSoftSynth::GetMIDISync(std::int32_t* enabled) {
  if (!enabled) return E_POINTER;
  *enabled = m_midiSync ? 1 : 0;
  return S_OK;
}

// --- IMyFilter: the stored event list -------------------------------------------------------

HRESULT CSoftSynth::GetEventCount(std::uint32_t* count) {
  if (!count) return E_POINTER;
  *count = static_cast<std::uint32_t>(m_events.Count());
  return S_OK;
}

HRESULT CSoftSynth::GetEvent(std::uint32_t index, CStoredEvent** event) {
  if (!event) return E_POINTER;
  CStoredEvent* found = m_events.At(index);
  if (!found) return E_FAIL;
  *event = found;
  return S_OK;
}

HRESULT CSoftSynth::InsertEvent(std::uint32_t index, const CStoredEvent* event) {
  if (!event) return E_POINTER;
  return m_events.Insert(index, *event) ? S_OK : E_FAIL;
}

HRESULT CSoftSynth::RemoveEvent(std::uint32_t index) {
  return m_events.Remove(index) ? S_OK : E_FAIL;
}

HRESULT CSoftSynth::GetInstrumentObject(CInstrument** instrument) {
  if (!instrument) return E_POINTER;
  *instrument = m_instrument.Get();
  return S_OK;
}

HRESULT CSoftSynth::SendEvent(const CStoredEvent* event) {
  if (!event) return E_POINTER;
  return m_worker.Post(*event);
}

// --- IMyFilter: sysex prefix ---------------------------------------------------------------

// Callers are trusted with the index, but a bad one answers E_INVALIDARG instead of reading
// past the prefix.
HRESULT CSoftSynth::GetSysexPrefixByte(std::uint8_t* value, std::int32_t index) {
  if (!value) return E_POINTER;
  const auto prefix = m_worker.Prefix();
  if (!prefix || index < 0 || static_cast<std::size_t>(index) >= prefix->size())
    return E_INVALIDARG;
  *value = (*prefix)[static_cast<std::size_t>(index)];
  return S_OK;
}

HRESULT CSoftSynth::GetSysexPrefixLength(std::uint32_t* length) {
  if (!length) return E_POINTER;
  const auto prefix = m_worker.Prefix();
  *length = prefix ? static_cast<std::uint32_t>(prefix->size()) : 0;
  return S_OK;
}

HRESULT CSoftSynth::AssignSysexPrefix(std::vector<std::uint8_t> bytes) {
  m_worker.SetPrefix(std::move(bytes));
  return S_OK;
}

// The new bytes are copied before the old prefix goes, so `bytes` may point into it.
HRESULT CSoftSynth::SetSysexPrefix(const std::uint8_t* bytes, std::uint32_t count) {
  if (count && !bytes) return E_POINTER;
  m_worker.SetPrefix(std::vector<std::uint8_t>(bytes, bytes + count));
  return S_OK;
}

// --- IMyFilter: traffic and the closed-loop test -------------------------------------------

HRESULT CSoftSynth::OpenClosedLoopTest(NotifyHandle) { return S_OK; }

HRESULT CSoftSynth::IsOutputActive(std::uint8_t* active) {
  if (!active) return E_POINTER;
  *active = m_worker.IsRunning() && m_ports.OutputEnabled() ? 1 : 0;
  return S_OK;
}

HRESULT CSoftSynth::GetEventCounters(std::uint32_t* received, std::uint32_t* sent,
                                     std::uint8_t clear) {
  if (!received || !sent) return E_POINTER;
  m_worker.Counters(*received, *sent, clear != 0);
  return S_OK;
}

HRESULT CSoftSynth::SendTestMessage(std::uint32_t message) {
  if (!m_ports.OutputEnabled()) return E_FAIL;
  return m_worker.Post(CStoredEvent::FromMessage({0, message}));
}

HRESULT CSoftSynth::SetClosedLoopTest(std::uint8_t running) {
  m_closedLoopTest = running != 0;
  return S_OK;
}

// --- IExternalDeviceProxy3 -------------------------------------------------------------------

HRESULT CSoftSynth::SendSysexData(std::uint32_t, const std::uint8_t* bytes, std::uint32_t length) {
  if (length && !bytes) return E_POINTER;
  CStoredEvent event;
  event.SetSysex(std::vector<std::uint8_t>(bytes, bytes + length));
  m_worker.Post(event);  // a post while stopped is lost, quietly
  return S_OK;
}

namespace {

// Copies `text` with its terminator when it fits `capacity`.
bool CopyWithTerminator(std::wstring_view text, wchar_t* buffer, std::int32_t capacity) {
  if (static_cast<std::int64_t>(text.size()) >= capacity) return false;
  std::wmemcpy(buffer, text.data(), text.size());
  buffer[text.size()] = L'\0';
  return true;
}

}  // namespace

HRESULT CSoftSynth::ConsumeInstrumentChanged(std::int32_t* changed) {
  if (!changed) return E_POINTER;
  *changed = m_instrument && m_instrument->ConsumeChanged() ? 1 : 0;
  return S_OK;
}

HRESULT CSoftSynth::GetDeviceSummary(wchar_t* name, std::int32_t nameCapacity, wchar_t* port,
                                     std::int32_t portCapacity, std::uint32_t* rechannel) {
  if (!name || !port || !rechannel) return E_POINTER;
  char device[260];
  if (m_instrument && SUCCEEDED(m_instrument->GetInstrumentName(device, sizeof device)) &&
      !CopyWithTerminator(NarrowToWide(device), name, nameCapacity))
    return E_FAIL;
  if (!CopyWithTerminator(m_ports.OutputName(), port, portCapacity)) return E_FAIL;
  *rechannel = m_worker.Rechannel();
  return S_OK;
}

// --- IMfxSoftSynth2: the instrument's names -------------------------------------------------

HRESULT CSoftSynth::GetBanks(std::int32_t** banks, std::int32_t* count) {
  CAutoLock lock(InstanceLock());
  return m_instrument ? m_instrument->GetBanks(banks, count) : E_FAIL;
}

HRESULT CSoftSynth::QueryPatchFalse(std::int32_t bank, std::int32_t patch) {
  CAutoLock lock(InstanceLock());
  return m_instrument ? m_instrument->QueryPatchFalse(bank, patch) : E_FAIL;
}

HRESULT CSoftSynth::QueryPatchTrue(std::int32_t bank, std::int32_t patch) {
  CAutoLock lock(InstanceLock());
  return m_instrument ? m_instrument->QueryPatchTrue(bank, patch) : E_FAIL;
}

HRESULT CSoftSynth::GetPatchNames(std::int32_t bank, IMfxNameList** names) {
  CAutoLock lock(InstanceLock());
  return m_instrument ? m_instrument->GetPatchNames(bank, names) : E_FAIL;
}

HRESULT CSoftSynth::ReservedQuery(std::int32_t a, std::int32_t b, void* c) {
  CAutoLock lock(InstanceLock());
  return m_instrument ? m_instrument->ReservedQuery(a, b, c) : E_FAIL;
}

HRESULT CSoftSynth::GetControllerNames(IMfxNameList** names) {
  CAutoLock lock(InstanceLock());
  return m_instrument ? m_instrument->GetControllerNames(names) : E_FAIL;
}

HRESULT CSoftSynth::ReservedListA(void* a) {
  CAutoLock lock(InstanceLock());
  return m_instrument ? m_instrument->ReservedListA(a) : E_FAIL;
}

HRESULT CSoftSynth::ReservedListB(void* a) {
  CAutoLock lock(InstanceLock());
  return m_instrument ? m_instrument->ReservedListB(a) : E_FAIL;
}

HRESULT CSoftSynth::GetInstrumentInterface(std::uint32_t, IMfxInstrument** instrument) {
  if (!instrument) return E_POINTER;
  CAutoLock lock(InstanceLock());
  *instrument = ComPtr<IMfxInstrument>(m_instrument.Get()).Detach();
  return *instrument ? S_OK : E_FAIL;
}
