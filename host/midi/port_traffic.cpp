#include "host/midi/port_traffic.h"

#include <cstdio>

#include "platform/codepage.h"

CPortTraffic::CPortTraffic(Handler handler)
    : m_handler(std::move(handler)), m_thread([this] { Deliver(); }) {}

CPortTraffic::~CPortTraffic() {
  {
    std::lock_guard lock(m_mutex);
    m_stopping = true;
  }
  m_changed.notify_all();
  m_thread.join();
}

void CPortTraffic::OnPortSend(std::int32_t port, std::span<const std::uint8_t> bytes) {
  PortMessage message{std::chrono::steady_clock::now() - m_start, port,
                      {bytes.begin(), bytes.end()}};
  {
    std::lock_guard lock(m_mutex);
    m_queue.push_back(std::move(message));
    ++m_queued;
  }
  m_changed.notify_all();
}

void CPortTraffic::Drain() {
  std::unique_lock lock(m_mutex);
  const std::int64_t target = m_queued;
  m_changed.wait(lock, [&] { return m_handled >= target; });
}

std::int64_t CPortTraffic::Handled() const {
  std::lock_guard lock(m_mutex);
  return m_handled;
}

void CPortTraffic::Deliver() {
  std::unique_lock lock(m_mutex);
  for (;;) {
    m_changed.wait(lock, [&] { return m_stopping || !m_queue.empty(); });
    if (m_queue.empty()) return;  // stopping, and everything delivered
    PortMessage message = std::move(m_queue.front());
    m_queue.pop_front();
    lock.unlock();
    m_handler(message);
    lock.lock();
    ++m_handled;
    m_changed.notify_all();
  }
}

std::string MonitorLine(const PortMessage& message, const std::wstring& portName) {
  const double ms = std::chrono::duration<double, std::milli>(message.time).count();
  char time[32];
  std::snprintf(time, sizeof time, "%10.3f ms  ", ms);
  std::string line = time + WideToNarrow(portName) + " ";
  for (const std::uint8_t b : message.bytes) {
    char hex[4];
    std::snprintf(hex, sizeof hex, " %02X", b);
    line += hex;
  }
  return line;
}
