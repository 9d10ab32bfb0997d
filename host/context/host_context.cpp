#include "host/context/host_context.h"

#include <cmath>

namespace {

std::int32_t Clamped(double value) {
  const double rounded = std::nearbyint(value);
  if (!(rounded > INT32_MIN)) return INT32_MIN;  // also NaN
  if (rounded > INT32_MAX) return INT32_MAX;
  return static_cast<std::int32_t>(rounded);
}

}  // namespace

ComPtr<CHostContext> CHostContext::Create(std::shared_ptr<const CHostTempo> tempo,
                                          CMidiBackEnd* ports) {
  return ComPtr<CHostContext>(new CHostContext(std::move(tempo), ports));
}

std::int32_t CHostContext::TicksToMsecs(std::int32_t ticks) {
  return Clamped(ticks * 60000.0 / (m_tempo->BeatsPerMinute() * HostTiming::kTicksPerQuarter));
}

std::int32_t CHostContext::MsecsToTicks(std::int32_t msecs) {
  return Clamped(msecs * m_tempo->BeatsPerMinute() * HostTiming::kTicksPerQuarter / 60000.0);
}

std::int32_t CHostContext::GetTicksPerQuarter() { return HostTiming::kTicksPerQuarter; }

HRESULT CHostContext::ConvertTime(HostTimeValue* time, std::uint32_t format) {
  if (!time) return E_POINTER;
  const bool known = [](std::uint32_t f) {
    return f == HostTimeValue::kSamples || f == HostTimeValue::kTicks;
  }(format);
  if (!known || (time->format != HostTimeValue::kSamples && time->format != HostTimeValue::kTicks))
    return E_INVALIDARG;
  if (time->format == HostTimeValue::kSamples && format == HostTimeValue::kTicks) {
    // Ticks travel in the low 32 bits only.
    time->value = static_cast<std::uint32_t>(Clamped(m_tempo->SamplesToTicks(time->value)));
  } else if (time->format == HostTimeValue::kTicks && format == HostTimeValue::kSamples) {
    const auto ticks = static_cast<std::int32_t>(static_cast<std::uint32_t>(time->value));
    time->value = static_cast<std::int64_t>(std::llround(m_tempo->TicksToSamples(ticks)));
  }
  time->format = format;
  return S_OK;
}

HRESULT CHostContext::OnPinCountChange(std::int32_t phase, IUnknown*, std::int32_t count) {
  if (phase == 2) m_pinCount = count;
  return S_OK;
}

std::int32_t CHostContext::GetInputPortCount() { return m_ports->GetInputPortCount(); }
HRESULT CHostContext::GetInputPortName(std::int32_t index, wchar_t* name, std::uint32_t capacity) {
  return m_ports->GetInputPortName(index, name, capacity);
}
std::int32_t CHostContext::GetOutputPortCount() { return m_ports->GetOutputPortCount(); }
HRESULT CHostContext::GetOutputPortHandle(std::int32_t index, MidiPortHandle* handle) {
  return m_ports->OutputHandle(index, Noted(m_outputPortId), handle);
}
HRESULT CHostContext::GetOutputPortName(std::int32_t index, wchar_t* name,
                                        std::uint32_t capacity) {
  return m_ports->GetOutputPortName(index, name, capacity);
}
HRESULT CHostContext::SendShortMsg(MidiPortHandle handle, std::uint32_t message) {
  return m_ports->SendShortMsg(handle, message);
}
HRESULT CHostContext::SendSysexMsg(MidiPortHandle handle, const std::uint8_t* bytes,
                                   std::uint32_t length) {
  return m_ports->SendSysexMsg(handle, bytes, length);
}
HRESULT CHostContext::GetInputPortId(std::int32_t index, std::int32_t* id) {
  return m_ports->GetInputPortId(index, id);
}
HRESULT CHostContext::GetOutputPortId(std::int32_t index, std::int32_t* id) {
  return m_ports->GetOutputPortId(index, id);
}
HRESULT CHostContext::UseInputPort(std::int32_t id) {
  m_inputPortId = id;
  return m_ports->UseInputPort(id);
}
HRESULT CHostContext::UseOutputPort(std::int32_t id) {
  m_outputPortId = id;
  return m_ports->UseOutputPort(id);
}

HRESULT CHostContext::OnSinkEvent(IMfxInputPort*, const HostEventRecord* record) {
  if (!record) return E_POINTER;
  std::lock_guard lock(m_sinkMutex);
  if (m_sink.size() == kSinkKept) m_sink.pop_front();
  m_sink.push_back(record->Message());
  ++m_sinkCount;
  return S_OK;
}

std::optional<std::int32_t> CHostContext::Noted(const std::atomic<std::int64_t>& id) {
  const std::int64_t value = id.load();
  if (value == kNone) return std::nullopt;
  return static_cast<std::int32_t>(value);
}

std::optional<std::int32_t> CHostContext::InputPortId() const { return Noted(m_inputPortId); }

std::vector<std::uint32_t> CHostContext::SinkMessages() const {
  std::lock_guard lock(m_sinkMutex);
  return {m_sink.begin(), m_sink.end()};
}

std::int64_t CHostContext::SinkCount() const {
  std::lock_guard lock(m_sinkMutex);
  return m_sinkCount;
}
