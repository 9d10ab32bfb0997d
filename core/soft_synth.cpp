#include "core/soft_synth.h"

#include <algorithm>
#include <cwchar>
#include <new>

#include "core/activity.h"
#include "core/output_worker.h"
#include "platform/codepage.h"

CSoftSynth::CSoftSynth()
    : CMultiInstanceTracker(static_cast<IMyFilter*>(this)),
      m_instrument(new (std::nothrow) CInstrument()) {}

// Workers are ended by the most derived class, while the instance lock still stands.
CSoftSynth::~CSoftSynth() = default;

// --- connection ---------------------------------------------------------------------------

HRESULT CSoftSynth::Connect(IUnknown* context) {
  HRESULT hr = E_UNEXPECTED;
  {
    CAutoLock lock(InstanceLock());
    if (!m_connected) {
      hr = m_tempoMap.QueryFrom(context, IID_IHostTempoMap);
      if (SUCCEEDED(hr)) {
        m_timeConverter.QueryFrom(context, IID_IHostTimeConverter);
        m_connected = 1;
        m_pinObserver.QueryFrom(context, IID_IHostPinObserver);
        ComPtr<IHostMidiPorts> ports;
        ports.QueryFrom(context, IID_IHostMidiPorts);
        m_midiPorts.Set(std::move(ports));
      }
    }
  }
  // Hosts lend the context and count on this release; it is part of the contract.
  if (context) context->Release();
  return hr;
}

HRESULT CSoftSynth::Disconnect() {
  CAutoLock lock(InstanceLock());
  m_tempoMap.Reset();
  m_timeConverter.Reset();
  m_inputSink.Set(nullptr);
  m_pinObserver.Reset();
  m_midiPorts.Set(nullptr);
  m_connected = 0;
  return S_OK;
}

HRESULT CSoftSynth::AnnouncePinCountChange(std::int32_t phase, IUnknown* filter,
                                           std::int32_t count) {
  CAutoLock lock(InstanceLock());
  if (!m_connected) return S_OK;
  if (!m_pinObserver) return E_FAIL;
  return m_pinObserver->OnPinCountChange(phase, filter, count);
}

// --- time conversion ------------------------------------------------------------------------

std::int64_t CSoftSynth::TicksToSamples(std::int32_t ticks) {
  CAutoLock lock(InstanceLock());
  if (m_timeConverter) {
    // A tick value fills only the low word.
    HostTimeValue time{HostTimeValue::kTicks, 0, static_cast<std::uint32_t>(ticks)};
    m_timeConverter->ConvertTime(&time, HostTimeValue::kSamples);
    return time.value;
  }
  if (m_tempoMap) {
    const std::int64_t ms = m_tempoMap->TicksToMsecs(ticks);
    return ms * m_dxi->GetInputFormat()->nSamplesPerSec / 1000;
  }
  return 0;
}

std::int32_t CSoftSynth::SamplesToTicks(std::int64_t samples) {
  CAutoLock lock(InstanceLock());
  if (m_timeConverter) {
    HostTimeValue time{HostTimeValue::kSamples, 0, samples};
    m_timeConverter->ConvertTime(&time, HostTimeValue::kTicks);
    return static_cast<std::int32_t>(time.value);
  }
  const std::uint32_t rate = m_dxi->GetInputFormat()->nSamplesPerSec;
  if (!m_tempoMap || rate == 0) return 0;  // no rate before a format is set: no time at all
  // Split so that no position, however far, overflows on its way to milliseconds.
  const std::int64_t ms = samples / rate * 1000 + samples % rate * 1000 / rate;
  return m_tempoMap->MsecsToTicks(static_cast<std::int32_t>(ms));
}

// --- IMfxInputPort ------------------------------------------------------------------------

HRESULT CSoftSynth::SetInputSink(IHostInputSink* sink) {
  CAutoLock lock(InstanceLock());
  m_inputSink.Set(ComPtr<IHostInputSink>(sink));
  return S_OK;
}

HRESULT CSoftSynth::GetInputSink(IHostInputSink** sink) {
  if (!sink) return E_POINTER;
  CAutoLock lock(InstanceLock());
  *sink = m_inputSink.Get().Detach();
  return *sink ? S_OK : S_FALSE;
}

// --- IMyFilter: output settings -----------------------------------------------------------

HRESULT CSoftSynth::SetEditorWindow(IEditorWindow* editor) {
  m_editor = editor;
  const NotifyHandle window = editor ? editor->WindowHandle() : 0;
  m_editorWindow = window;
  m_worker.m_notifyWindow = window;
  return S_OK;
}

HRESULT CSoftSynth::GetPorts(IHostMidiPorts** ports) {
  if (!ports) return E_POINTER;
  *ports = m_midiPorts.Get().Detach();
  return *ports ? S_OK : E_POINTER;
}

HRESULT CSoftSynth::SetOutputRechannel(std::uint32_t channel) {
  m_rechannel = channel;
  return S_OK;
}

HRESULT CSoftSynth::GetInputPortIndex(std::int32_t* index) {
  if (!index) return E_POINTER;
  if (m_inputPortIndex == -1) return E_FAIL;
  *index = m_inputPortIndex;
  return S_OK;
}

HRESULT CSoftSynth::GetOutputPortIndex(std::int32_t* index) {
  if (!index) return E_POINTER;
  const std::int32_t current = m_outputPortIndex;
  if (current == -1) return E_FAIL;
  *index = current;
  return S_OK;
}

HRESULT CSoftSynth::GetOutputRechannel(std::uint32_t* channel) {
  if (!channel) return E_POINTER;
  *channel = m_rechannel;
  return S_OK;
}

HRESULT CSoftSynth::SetOutputEnabled(std::int32_t enabled) {
  m_outputEnabled = enabled != 0;
  if (!enabled) {
    m_outputPortName.clear();
    m_outputPortIndex = -1;
  }
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
  *count = static_cast<std::uint32_t>(m_events.size());
  return S_OK;
}

HRESULT CSoftSynth::GetEvent(std::uint32_t index, CStoredEvent** event) {
  if (!event) return E_POINTER;
  if (index >= m_events.size()) return E_FAIL;
  *event = &m_events[index];
  return S_OK;
}

HRESULT CSoftSynth::InsertEvent(std::uint32_t index, const CStoredEvent* event) {
  if (!event) return E_POINTER;
  if (index > m_events.size()) return E_FAIL;
  m_events.insert(m_events.begin() + index, *event);
  return S_OK;
}

HRESULT CSoftSynth::RemoveEvent(std::uint32_t index) {
  if (index >= m_events.size()) return E_FAIL;
  m_events.erase(m_events.begin() + index);
  return S_OK;
}

HRESULT CSoftSynth::GetInstrumentObject(CInstrument** instrument) {
  if (!instrument) return E_POINTER;
  *instrument = m_instrument.Get();
  return S_OK;
}

HRESULT CSoftSynth::SendEvent(const CStoredEvent* event) {
  if (!event) return E_POINTER;
  return PostToWorker(*event);
}

// --- IMyFilter: sysex prefix ---------------------------------------------------------------

// Callers are trusted with the index, but a bad one answers E_INVALIDARG instead of reading
// past the prefix.
HRESULT CSoftSynth::GetSysexPrefixByte(std::uint8_t* value, std::int32_t index) {
  if (!value) return E_POINTER;
  const auto prefix = SysexPrefixSnapshot();
  if (!prefix || index < 0 || static_cast<std::size_t>(index) >= prefix->size()) return E_INVALIDARG;
  *value = (*prefix)[static_cast<std::size_t>(index)];
  return S_OK;
}

HRESULT CSoftSynth::GetSysexPrefixLength(std::uint32_t* length) {
  if (!length) return E_POINTER;
  const auto prefix = SysexPrefixSnapshot();
  *length = prefix ? static_cast<std::uint32_t>(prefix->size()) : 0;
  return S_OK;
}

HRESULT CSoftSynth::AssignSysexPrefix(std::vector<std::uint8_t> bytes) {
  ReplaceSysexPrefix(std::move(bytes));
  return S_OK;
}

// The new bytes are copied before the old prefix goes, so `bytes` may point into it.
HRESULT CSoftSynth::SetSysexPrefix(const std::uint8_t* bytes, std::uint32_t count) {
  if (count && !bytes) return E_POINTER;
  ReplaceSysexPrefix(std::vector<std::uint8_t>(bytes, bytes + count));
  return S_OK;
}

// --- IMyFilter: traffic and the closed-loop test -------------------------------------------

HRESULT CSoftSynth::OpenClosedLoopTest(NotifyHandle) { return S_OK; }

HRESULT CSoftSynth::IsOutputActive(std::uint8_t* active) {
  if (!active) return E_POINTER;
  bool running;
  {
    CAutoLock lock(m_queueLock);
    running = m_worker.run != nullptr;
  }
  *active = running && m_outputEnabled ? 1 : 0;
  return S_OK;
}

HRESULT CSoftSynth::GetEventCounters(std::uint32_t* received, std::uint32_t* sent,
                                     std::uint8_t clear) {
  if (!received || !sent) return E_POINTER;
  CAutoLock lock(CounterLock);
  *received = m_inputCount;
  *sent = m_outputCount;
  if (clear) m_inputCount = m_outputCount = 0;
  return S_OK;
}

HRESULT CSoftSynth::SendTestMessage(std::uint32_t message) {
  if (!m_outputEnabled) return E_FAIL;
  return PostToWorker(CStoredEvent::FromMessage({0, message}));
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
  PostToWorker(event);  // a post while stopped is lost, quietly
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
  if (!CopyWithTerminator(m_outputPortName, port, portCapacity)) return E_FAIL;
  *rechannel = m_rechannel;
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
