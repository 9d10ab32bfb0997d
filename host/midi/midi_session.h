// The MIDI side of a run: the chosen back end, the monitor that prints every message reaching a
// port, and the road of live input to the rack's instances. Input that arrives before the rack
// is open is held, so that an instance sending on load reaches a listener loaded after it;
// after Close nothing more is delivered.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "host/looptest/loop_latency.h"
#include "host/midi/midi_back_end.h"
#include "host/midi/port_traffic.h"

class CLiveRack;

struct MidiSessionOptions {
  std::string backEnd = "virtual";  // "virtual", "jack" or "alsa"
  std::int32_t ports = 2;           // the host's own ports in each direction
  std::string clientName = "tarn-host";  // the name the host's ports go by on a server
  bool monitor = true;              // show each message that reaches a port
  // Where the monitor's lines go, on the traffic thread; standard output when empty.
  std::function<void(const std::string&)> monitorSink;
};

class CMidiSession final : public CMidiPortListener {
 public:
  // [host thread] The back end up and its own ports open; null with `error` saying why not (an
  // unknown back end, no server, no sequencer).
  static std::unique_ptr<CMidiSession> Open(const MidiSessionOptions& options,
                                            std::string& error);
  ~CMidiSession();
  CMidiSession(const CMidiSession&) = delete;
  CMidiSession& operator=(const CMidiSession&) = delete;

  // [any thread] The ports the instances are given.
  CMidiBackEnd& Ports() { return *m_ports; }
  // [host thread, before OpenTo] Test messages going out and coming back are handed to
  // `latency` as well, which must outlive the session.
  void Observe(CLoopLatency* latency) { m_latency = latency; }
  // [host thread] Delivers what was held, then every message as it arrives.
  void OpenTo(CLiveRack& live);
  // [host thread] Waits until what was sent so far is shown and delivered; then lets nothing
  // more through.
  void Close();
  // [host thread, after Close] What failed, one line each.
  std::vector<std::string> Faults() { return m_ports->Faults(); }
  // [host thread, after Close] The latency report, with the ports' names.
  std::string LatencyReport() const;

 private:
  explicit CMidiSession(const MidiSessionOptions& options);
  // [the sender's thread] One message went out at a port: noted for the latency report at
  // once, then shown and (on the virtual wire) delivered on the traffic thread.
  void OnPortSend(std::int32_t port, std::span<const std::uint8_t> bytes) override;
  // [traffic thread]
  void OnSent(const PortMessage& message);
  // [input thread] One short message reached an input port.
  void OnArrived(const MidiArrival& arrival);
  void Route(std::int32_t inputId, std::uint32_t packed);

  const MidiSessionOptions m_options;
  std::atomic<CLoopLatency*> m_latency{nullptr};  // read on the back end's threads
  std::mutex m_routeMutex;
  CLiveRack* m_live = nullptr;
  bool m_closed = false;
  std::vector<std::pair<std::int32_t, std::uint32_t>> m_held;
  std::unique_ptr<CMidiBackEnd> m_ports;
  CPortTraffic m_traffic;  // after the ports, so that its thread ends while they are there
};
