// What an instance holds of its host between Connect and Disconnect: the tempo map, the time
// converter, the pin observer, the ports and the sink. Host threads change it under the instance
// lock; the output worker reads the ports and the sink through references of its own (see
// CHostRefReader), so a Disconnect never frees what the worker is calling.
#pragma once

#include <cstdint>

#include "core/shared_host_ref.h"
#include "interfaces/host_interfaces.h"
#include "interfaces/host_midi_ports.h"
#include "platform/com_ptr.h"

class CHostConnection {
 public:
  CHostConnection() = default;
  // Releases what is still held in the order a Disconnect does.
  ~CHostConnection() { ReleaseAll(); }
  CHostConnection(const CHostConnection&) = delete;
  CHostConnection& operator=(const CHostConnection&) = delete;

  // [host thread, instance lock] Takes the tempo map, which must be there, then the converter,
  // the pin observer and the ports, each where offered. E_UNEXPECTED while connected; the tempo
  // map's query result when it is missing. Does not release `context`: the caller does.
  HRESULT Connect(IUnknown* context);
  // [host thread, instance lock] Releases the tempo map, the converter, the sink, the observer
  // and the ports, in that order, and clears the connection.
  void Disconnect();

  // [instance lock] True between Connect and Disconnect.
  bool IsConnected() const noexcept { return m_connected; }
  // [instance lock] The tempo map, null when not connected.
  IHostTempoMap* TempoMap() const noexcept { return m_tempoMap.Get(); }

  // [instance lock] Through the converter, else the tempo map at `rate` samples a second, else
  // 0. No position, however far, overflows on the way.
  std::int64_t TicksToSamples(std::int32_t ticks, std::uint32_t rate) const;
  std::int32_t SamplesToTicks(std::int64_t samples, std::uint32_t rate) const;

  // [instance lock] Tells the observer of a change of the output pin count: phase 1 before,
  // which a negative answer refuses, phase 2 after. S_OK while not connected; E_FAIL when
  // connected to a host without an observer.
  HRESULT AnnouncePinCountChange(std::int32_t phase, IUnknown* filter, std::int32_t count) const;

  // [host thread, instance lock] Replaces the sink; null is allowed.
  void SetSink(IHostInputSink* sink) { m_sink.Set(ComPtr<IHostInputSink>(sink)); }
  // [any thread] The sink and the ports, each with a reference of the caller's own.
  ComPtr<IHostInputSink> Sink() const { return m_sink.Get(); }
  ComPtr<IHostMidiPorts> Ports() const { return m_ports.Get(); }
  // [output worker] What the worker's readers follow.
  const CSharedHostRef<IHostInputSink>& SharedSink() const noexcept { return m_sink; }
  const CSharedHostRef<IHostMidiPorts>& SharedPorts() const noexcept { return m_ports; }

 private:
  void ReleaseAll();

  ComPtr<IHostTempoMap> m_tempoMap;
  ComPtr<IHostTimeConverter> m_timeConverter;
  CSharedHostRef<IHostInputSink> m_sink;
  ComPtr<IHostPinObserver> m_pinObserver;
  CSharedHostRef<IHostMidiPorts> m_ports;
  bool m_connected = false;
};
