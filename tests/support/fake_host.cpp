#include "tests/support/fake_host.h"

#include <algorithm>
#include <cwchar>
#include <utility>

// --- tempo map and time converter -------------------------------------------------------------

std::int32_t FakeTempoMap::TicksToMsecs(std::int32_t ticks) {
  return static_cast<std::int32_t>(std::int64_t{ticks} * m_msPerQuarter / m_tpq);
}

std::int32_t FakeTempoMap::MsecsToTicks(std::int32_t msecs) {
  return static_cast<std::int32_t>(std::int64_t{msecs} * m_tpq / m_msPerQuarter);
}

HRESULT FakeTimeConverter::ConvertTime(HostTimeValue* time, std::uint32_t format) {
  if (time->format == format) return S_OK;
  if (format == HostTimeValue::kSamples) {
    const auto ticks = static_cast<std::int32_t>(time->value);  // only the low word counts
    time->value = ticks * m_samplesPerTick;
  } else {
    time->value = static_cast<std::uint32_t>(time->value / m_samplesPerTick);
  }
  time->format = format;
  return S_OK;
}

// --- pin observer ---------------------------------------------------------------------------

HRESULT FakePinObserver::OnPinCountChange(std::int32_t phase, IUnknown*, std::int32_t count) {
  std::lock_guard lock(m_mutex);
  m_calls.push_back({phase, count});
  return phase == 1 && m_refuse ? E_FAIL : S_OK;
}

std::vector<FakePinObserver::Call> FakePinObserver::Calls() const {
  std::lock_guard lock(m_mutex);
  return m_calls;
}

// --- ports ------------------------------------------------------------------------------------

// A host may offer the ports without their second version.
HRESULT FakeMidiPorts::QueryInterface(REFIID iid, void** out) {
  if (!m_offerVersion2 && iid == IID_IHostMidiPorts2) {
    if (out) *out = nullptr;
    return out ? E_NOINTERFACE : E_POINTER;
  }
  return FakeUnknown::QueryInterface(iid, out);
}

std::int32_t FakeMidiPorts::GetInputPortCount() {
  std::lock_guard lock(m_mutex);
  const auto count = static_cast<std::int32_t>(m_inputs.size());
  VanishIfAsked();
  return count;
}

std::int32_t FakeMidiPorts::GetOutputPortCount() {
  std::lock_guard lock(m_mutex);
  const auto count = static_cast<std::int32_t>(m_outputs.size());
  VanishIfAsked();
  return count;
}

void FakeMidiPorts::VanishIfAsked() {
  if (!m_vanishKeep) return;
  const std::size_t keep = *std::exchange(m_vanishKeep, std::nullopt);
  if (m_inputs.size() > keep) m_inputs.resize(keep);
  if (m_outputs.size() > keep) m_outputs.resize(keep);
  if (m_handles.size() > keep) {
    m_handles.resize(keep);
    PublishHandles();
  }
}

void FakeMidiPorts::VanishAfterNextCount(std::size_t keep) {
  std::lock_guard lock(m_mutex);
  m_vanishKeep = keep;
}

void FakeMidiPorts::BlockSends(std::chrono::milliseconds time) {
  std::lock_guard lock(m_mutex);
  m_block = time;
}

void FakeMidiPorts::Begin() {
  std::chrono::milliseconds block{0};
  {
    std::lock_guard lock(m_mutex);
    ++m_sendsBegun;
    block = m_block;
  }
  m_cv.notify_all();
  if (block.count() > 0) std::this_thread::sleep_for(block);
}

bool FakeMidiPorts::WaitForSendsBegun(std::size_t count, int timeoutMs) const {
  std::unique_lock lock(m_mutex);
  return m_cv.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                       [&] { return m_sendsBegun >= count; });
}

HRESULT FakeMidiPorts::CopyName(const std::vector<std::wstring>& names, std::int32_t index,
                                wchar_t* name, std::uint32_t capacity) {
  if (!name || capacity == 0) return E_POINTER;
  if (index < 0 || static_cast<std::size_t>(index) >= names.size()) return E_INVALIDARG;
  const std::wstring& n = names[static_cast<std::size_t>(index)];
  const std::size_t length = std::min<std::size_t>(n.size(), capacity - 1);
  std::wmemcpy(name, n.data(), length);
  name[length] = L'\0';
  return S_OK;
}

HRESULT FakeMidiPorts::GetInputPortName(std::int32_t index, wchar_t* name, std::uint32_t capacity) {
  std::lock_guard lock(m_mutex);
  return CopyName(m_inputs, index, name, capacity);
}

HRESULT FakeMidiPorts::GetOutputPortName(std::int32_t index, wchar_t* name, std::uint32_t capacity) {
  std::lock_guard lock(m_mutex);
  return CopyName(m_outputs, index, name, capacity);
}

FakeMidiPorts::FakeMidiPorts() { PublishHandles(); }

// The count goes up before the waiters are looked for, and a waiter counts itself before it
// reads the count: one of the two sees the other, so no wake is lost.
HRESULT FakeMidiPorts::GetOutputPortHandle(std::int32_t index, MidiPortHandle* handle) {
  m_handleQueries.fetch_add(1);
  if (m_queryWaiters.load() > 0 || m_holdQueries.load()) {
    std::unique_lock lock(m_mutex);
    m_cv.notify_all();
    m_cv.wait_for(lock, std::chrono::seconds(2), [&] { return !m_holdQueries.load(); });
  }
  if (!handle) return E_POINTER;
  const std::vector<MidiPortHandle>& handles = *m_queryHandles.load();
  if (index < 0 || static_cast<std::size_t>(index) >= handles.size()) {
    *handle = 0;
    return E_INVALIDARG;
  }
  *handle = handles[static_cast<std::size_t>(index)];
  return S_OK;
}

void FakeMidiPorts::PublishHandles() {
  m_publishedHandles.push_back(std::make_unique<const std::vector<MidiPortHandle>>(m_handles));
  m_queryHandles.store(m_publishedHandles.back().get());
}

void FakeMidiPorts::Record(Sent sent) {
  {
    std::lock_guard lock(m_mutex);
    ++m_sendCount;
    m_sent.push_back(std::move(sent));
  }
  m_cv.notify_all();
}

HRESULT FakeMidiPorts::SendShortMsg(MidiPortHandle handle, std::uint32_t message) {
  if (m_hook) {
    m_hook(m_hookContext, message);
    return S_OK;
  }
  // Decided as the send begins: a test that saw it begin may change the answer for the next.
  const bool fail = m_failShort;
  Begin();
  if (fail) return E_FAIL;
  {
    std::lock_guard lock(m_mutex);
    if (!m_loopListeners.empty()) m_onWire.push_back(message);
  }
  Record({FakeClock::now(), handle, false, message, {}});
  return S_OK;
}

HRESULT FakeMidiPorts::SendSysexMsg(MidiPortHandle handle, const std::uint8_t* bytes,
                                    std::uint32_t length) {
  const bool fail = m_failSysex;
  Begin();
  if (fail) return E_FAIL;
  Record({FakeClock::now(), handle, true, 0, std::vector<std::uint8_t>(bytes, bytes + length)});
  return S_OK;
}

namespace {

HRESULT IdOf(const std::optional<std::vector<std::optional<std::int32_t>>>& ids,
             std::int32_t base, std::int32_t index, std::size_t ports, std::int32_t* id) {
  if (!id) return E_POINTER;
  if (index < 0 || static_cast<std::size_t>(index) >= ports) return E_INVALIDARG;
  if (!ids) {
    *id = base + index;
    return S_OK;
  }
  if (index < 0 || static_cast<std::size_t>(index) >= ids->size() ||
      !(*ids)[static_cast<std::size_t>(index)])
    return E_FAIL;
  *id = *(*ids)[static_cast<std::size_t>(index)];
  return S_OK;
}

}  // namespace

HRESULT FakeMidiPorts::GetInputPortId(std::int32_t index, std::int32_t* id) {
  std::lock_guard lock(m_mutex);
  return IdOf(m_inputIds, kInputIdBase, index, m_inputs.size(), id);
}

HRESULT FakeMidiPorts::GetOutputPortId(std::int32_t index, std::int32_t* id) {
  std::lock_guard lock(m_mutex);
  return IdOf(m_outputIds, kOutputIdBase, index, m_outputs.size(), id);
}

void FakeMidiPorts::SetPortIds(bool input, std::vector<std::optional<std::int32_t>> ids) {
  std::lock_guard lock(m_mutex);
  (input ? m_inputIds : m_outputIds) = std::move(ids);
}

HRESULT FakeMidiPorts::UseInputPort(std::int32_t id) {
  std::lock_guard lock(m_mutex);
  m_usedInputs.push_back(id);
  return S_OK;
}

HRESULT FakeMidiPorts::UseOutputPort(std::int32_t id) {
  std::lock_guard lock(m_mutex);
  m_usedOutputs.push_back(id);
  return S_OK;
}

void FakeMidiPorts::SetOutputs(std::vector<std::wstring> names) {
  std::lock_guard lock(m_mutex);
  m_outputs = std::move(names);
  m_handles.resize(m_outputs.size());
  for (std::size_t i = 0; i < m_handles.size(); ++i) m_handles[i] = i + 1;
  PublishHandles();
}

void FakeMidiPorts::SetInputs(std::vector<std::wstring> names) {
  std::lock_guard lock(m_mutex);
  m_inputs = std::move(names);
}

void FakeMidiPorts::SetOutputHandle(std::int32_t index, MidiPortHandle handle) {
  std::lock_guard lock(m_mutex);
  m_handles.at(static_cast<std::size_t>(index)) = handle;
  PublishHandles();
}

void FakeMidiPorts::SetShortSendHook(void (*hook)(void*, std::uint32_t), void* context) {
  m_hook = hook;
  m_hookContext = context;
}

std::vector<FakeMidiPorts::Sent> FakeMidiPorts::Sends() const {
  std::lock_guard lock(m_mutex);
  return m_sent;
}

std::size_t FakeMidiPorts::SendCount() const {
  std::lock_guard lock(m_mutex);
  return m_sendCount;
}

void FakeMidiPorts::HoldHandleQueries(bool hold) {
  {
    std::lock_guard lock(m_mutex);
    m_holdQueries = hold;
  }
  m_cv.notify_all();
}

std::size_t FakeMidiPorts::HandleQueries() const { return m_handleQueries.load(); }

bool FakeMidiPorts::WaitForHandleQueries(std::size_t count, int timeoutMs) const {
  m_queryWaiters.fetch_add(1);
  bool reached = false;
  {
    std::unique_lock lock(m_mutex);
    reached = m_cv.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                            [&] { return m_handleQueries.load() >= count; });
  }
  m_queryWaiters.fetch_sub(1);
  return reached;
}

bool FakeMidiPorts::WaitForSends(std::size_t count, int timeoutMs) const {
  std::unique_lock lock(m_mutex);
  return m_cv.wait_for(lock, std::chrono::milliseconds(timeoutMs), [&] { return m_sendCount >= count; });
}

std::vector<std::int32_t> FakeMidiPorts::UsedInputIds() const {
  std::lock_guard lock(m_mutex);
  return m_usedInputs;
}

std::vector<std::int32_t> FakeMidiPorts::UsedOutputIds() const {
  std::lock_guard lock(m_mutex);
  return m_usedOutputs;
}

FakeMidiPorts::~FakeMidiPorts() { LoopBackTo({}); }

void FakeMidiPorts::LoopBackTo(std::vector<IMfxSoftSynth2*> listeners) {
  std::unique_lock lock(m_mutex);
  if (!listeners.empty()) {
    m_loopListeners = std::move(listeners);
    m_loopEnding = false;
    if (!m_loopThread.joinable()) m_loopThread = std::thread([this] { DeliverLoop(); });
    return;
  }
  if (!m_loopThread.joinable()) return;
  m_loopEnding = true;
  m_loopHeld = false;
  m_cv.notify_all();
  lock.unlock();
  m_loopThread.join();
  lock.lock();
  m_loopListeners.clear();
  m_onWire.clear();
}

void FakeMidiPorts::HoldLoopback(bool hold) {
  {
    std::lock_guard lock(m_mutex);
    m_loopHeld = hold;
  }
  m_cv.notify_all();
}

bool FakeMidiPorts::WaitForLoopbackIdle(int timeoutMs) const {
  std::unique_lock lock(m_mutex);
  return m_cv.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                       [&] { return m_onWire.empty() && !m_delivering; });
}

// Hands over what is on the wire as one list per listener, outside the lock, so that a listener
// may send again into this fake.
void FakeMidiPorts::DeliverLoop() {
  std::unique_lock lock(m_mutex);
  for (;;) {
    m_cv.wait(lock, [&] { return m_loopEnding || (!m_loopHeld && !m_onWire.empty()); });
    if (m_onWire.empty()) return;
    std::vector<HostDataRecord> records;
    for (std::uint32_t message : m_onWire) records.push_back({0, message});
    m_onWire.clear();
    const std::vector<IMfxSoftSynth2*> listeners = m_loopListeners;
    m_delivering = true;
    lock.unlock();
    for (IMfxSoftSynth2* listener : listeners) {
      FakeDataList list(records);
      listener->OnInput(0, &list);
    }
    lock.lock();
    m_delivering = false;
    m_cv.notify_all();
  }
}

// --- sink ------------------------------------------------------------------------------------

HRESULT FakeInputSink::OnSinkEvent(IMfxInputPort* sender, const HostEventRecord* record) {
  HRESULT answer;
  {
    // The answer is fixed before the record shows, so a test that changes Fail after seeing
    // a record never changes that record's answer.
    std::lock_guard lock(m_mutex);
    answer = m_fail ? E_FAIL : S_OK;
    m_records.push_back(*record);
    m_senders.push_back(sender);
  }
  m_cv.notify_all();
  return answer;
}

std::vector<HostEventRecord> FakeInputSink::Records() const {
  std::lock_guard lock(m_mutex);
  return m_records;
}

std::vector<IMfxInputPort*> FakeInputSink::Senders() const {
  std::lock_guard lock(m_mutex);
  return m_senders;
}

bool FakeInputSink::WaitForRecords(std::size_t count, int timeoutMs) const {
  std::unique_lock lock(m_mutex);
  return m_cv.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                       [&] { return m_records.size() >= count; });
}

// --- context ----------------------------------------------------------------------------------

HRESULT FakeHostContext::QueryInterface(REFIID iid, void** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  if (iid == IID_IUnknown) return FakeUnknown::QueryInterface(iid, out);
  if (iid == IID_IHostTempoMap && tempoMap) return tempoMap->QueryInterface(iid, out);
  if (iid == IID_IHostTimeConverter && timeConverter) return timeConverter->QueryInterface(iid, out);
  if (iid == IID_IHostPinObserver && pinObserver) return pinObserver->QueryInterface(iid, out);
  if ((iid == IID_IHostMidiPorts || iid == IID_IHostMidiPorts2) && midiPorts)
    return midiPorts->QueryInterface(iid, out);
  return E_NOINTERFACE;
}

// --- automation callback --------------------------------------------------------------------------

HRESULT FakeParamsUICallback::Record(Kind kind, const std::uint32_t* indices,
                                     std::uint32_t count, const MP_DATA* values) {
  std::lock_guard lock(m_mutex);
  Call call{kind, std::vector<std::uint32_t>(indices, indices + count), {}};
  if (values) call.values.assign(values, values + count);
  m_calls.push_back(std::move(call));
  return m_answer;
}

HRESULT FakeParamsUICallback::ParamsBeginCapture(const std::uint32_t* indices,
                                                 std::uint32_t count) {
  return Record(Kind::kBeginCapture, indices, count, nullptr);
}

HRESULT FakeParamsUICallback::ParamsChanged(const std::uint32_t* indices, std::uint32_t count,
                                            const MP_DATA* values) {
  return Record(Kind::kChanged, indices, count, values);
}

HRESULT FakeParamsUICallback::ParamsEndCapture(const std::uint32_t* indices,
                                               std::uint32_t count) {
  return Record(Kind::kEndCapture, indices, count, nullptr);
}

std::vector<FakeParamsUICallback::Call> FakeParamsUICallback::Calls() const {
  std::lock_guard lock(m_mutex);
  return m_calls;
}
