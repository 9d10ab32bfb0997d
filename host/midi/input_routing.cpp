#include "host/midi/input_routing.h"

#include "host/rack/live_rack.h"

void CInputRouting::Route(const PortMessage& message) {
  if (message.bytes.empty() || message.bytes.size() > 3 || message.bytes[0] == 0xF0) return;
  std::uint32_t packed = 0;
  for (std::size_t i = 0; i < message.bytes.size(); ++i)
    packed |= static_cast<std::uint32_t>(message.bytes[i]) << (8 * i);
  std::lock_guard lock(m_mutex);
  if (m_live)
    m_live->DeliverInput(message.port, packed);
  else if (!m_closed)
    m_held.emplace_back(message.port, packed);
}

void CInputRouting::Open(CLiveRack& live) {
  std::lock_guard lock(m_mutex);
  m_live = &live;
  for (const auto& [port, packed] : m_held) live.DeliverInput(port, packed);
  m_held.clear();
}

void CInputRouting::Close() {
  std::lock_guard lock(m_mutex);
  m_live = nullptr;
  m_closed = true;
}
