#include "core/host_connection.h"

HRESULT CHostConnection::Connect(IUnknown* context) {
  if (m_connected) return E_UNEXPECTED;
  const HRESULT hr = m_tempoMap.QueryFrom(context, IID_IHostTempoMap);
  if (FAILED(hr)) return hr;
  m_timeConverter.QueryFrom(context, IID_IHostTimeConverter);
  m_connected = true;
  m_pinObserver.QueryFrom(context, IID_IHostPinObserver);
  ComPtr<IHostMidiPorts> ports;
  ports.QueryFrom(context, IID_IHostMidiPorts);
  m_ports.Set(std::move(ports));
  return hr;
}

void CHostConnection::Disconnect() {
  ReleaseAll();
  m_connected = false;
}

void CHostConnection::ReleaseAll() {
  m_tempoMap.Reset();
  m_timeConverter.Reset();
  m_sink.Set(nullptr);
  m_pinObserver.Reset();
  m_ports.Set(nullptr);
}

std::int64_t CHostConnection::TicksToSamples(std::int32_t ticks, std::uint32_t rate) const {
  if (m_timeConverter) {
    // A tick value fills only the low word.
    HostTimeValue time{HostTimeValue::kTicks, 0, static_cast<std::uint32_t>(ticks)};
    m_timeConverter->ConvertTime(&time, HostTimeValue::kSamples);
    return time.value;
  }
  if (m_tempoMap) {
    // Split like the way back, so that no tempo or rate overflows.
    const std::int64_t ms = m_tempoMap->TicksToMsecs(ticks);
    return ms / 1000 * rate + ms % 1000 * rate / 1000;
  }
  return 0;
}

std::int32_t CHostConnection::SamplesToTicks(std::int64_t samples, std::uint32_t rate) const {
  if (m_timeConverter) {
    HostTimeValue time{HostTimeValue::kSamples, 0, samples};
    m_timeConverter->ConvertTime(&time, HostTimeValue::kTicks);
    return static_cast<std::int32_t>(time.value);
  }
  if (!m_tempoMap || rate == 0) return 0;  // no rate before a format is set: no time at all
  // Split so that no position, however far, overflows on its way to milliseconds.
  const std::int64_t ms = samples / rate * 1000 + samples % rate * 1000 / rate;
  return m_tempoMap->MsecsToTicks(static_cast<std::int32_t>(ms));
}

HRESULT CHostConnection::AnnouncePinCountChange(std::int32_t phase, IUnknown* filter,
                                                std::int32_t count) const {
  if (!m_connected) return S_OK;
  if (!m_pinObserver) return E_FAIL;
  return m_pinObserver->OnPinCountChange(phase, filter, count);
}
