#include "host/midi/midi_session.h"

#include <cstdio>

#include "host/midi/rtmidi_ports.h"
#include "host/midi/virtual_midi_ports.h"
#include "host/rack/live_rack.h"

CMidiSession::CMidiSession(const MidiSessionOptions& options)
    : m_options(options), m_traffic([this](const PortMessage& message) { OnSent(message); }) {}

CMidiSession::~CMidiSession() = default;

std::unique_ptr<CMidiSession> CMidiSession::Open(const MidiSessionOptions& options,
                                                 std::string& error) {
  std::unique_ptr<CMidiSession> session(new CMidiSession(options));
  if (options.backEnd == "virtual") {
    session->m_ports = std::make_unique<CVirtualMidiPorts>(options.ports, *session);
    return session;
  }
  if (options.backEnd == "jack" || options.backEnd == "alsa") {
    const RtMidiPortsOptions server{
        options.backEnd == "jack" ? MidiServer::Jack : MidiServer::Alsa, options.clientName,
        options.ports};
    CMidiSession* raw = session.get();
    session->m_ports = CRtMidiPorts::Open(
        server, *session, [raw](const MidiArrival& arrival) { raw->OnArrived(arrival); },
        error);
    return session->m_ports ? std::move(session) : nullptr;
  }
  error = "there is no MIDI back end \"" + options.backEnd + "\" (virtual, jack or alsa)";
  return nullptr;
}

void CMidiSession::OnPortSend(std::int32_t port, std::span<const std::uint8_t> bytes) {
  if (CLoopLatency* latency = m_latency)
    latency->OnSent(port, bytes, std::chrono::steady_clock::now());
  m_traffic.OnPortSend(port, bytes);
}

void CMidiSession::OnSent(const PortMessage& message) {
  if (m_options.monitor) {
    const std::string line = MonitorLine(message, m_ports->SentPortName(message.port));
    if (m_options.monitorSink)
      m_options.monitorSink(line);
    else
      std::printf("%s\n", line.c_str());
  }
  // The virtual wire: output N comes back at input N, short messages only.
  if (m_options.backEnd != "virtual" || message.bytes.empty() || message.bytes.size() > 3 ||
      message.bytes[0] == 0xF0)
    return;
  std::uint32_t packed = 0;
  for (std::size_t i = 0; i < message.bytes.size(); ++i)
    packed |= static_cast<std::uint32_t>(message.bytes[i]) << (8 * i);
  OnArrived({CVirtualMidiPorts::InputId(message.port), packed, std::chrono::steady_clock::now()});
}

std::string CMidiSession::LatencyReport() const {
  const CLoopLatency* latency = m_latency;
  if (!latency) return {};
  return latency->Report({[this](std::int32_t port) { return m_ports->SentPortName(port); },
                            [this](std::int32_t id) { return m_ports->InputPortName(id); }});
}

void CMidiSession::OnArrived(const MidiArrival& arrival) {
  if (CLoopLatency* latency = m_latency)
    latency->OnArrived(arrival.inputId, arrival.packed, arrival.time);
  Route(arrival.inputId, arrival.packed);
}

void CMidiSession::Route(std::int32_t inputId, std::uint32_t packed) {
  std::lock_guard lock(m_routeMutex);
  if (m_live)
    m_live->DeliverInput(inputId, packed);
  else if (!m_closed)
    m_held.emplace_back(inputId, packed);
}

void CMidiSession::OpenTo(CLiveRack& live) {
  std::lock_guard lock(m_routeMutex);
  m_live = &live;
  for (const auto& [inputId, packed] : m_held) live.DeliverInput(inputId, packed);
  m_held.clear();
}

void CMidiSession::Close() {
  m_traffic.Drain();
  std::lock_guard lock(m_routeMutex);
  m_live = nullptr;
  m_closed = true;
}
