#include "host/cli/live_feed.h"

#include <chrono>
#include <fstream>
#include <string>

#include "host/rack/live_rack.h"

CLiveFeed::CLiveFeed(CLiveRack& live, std::int32_t port, double perSecond)
    : m_thread([this, &live, port, perSecond] { Feed(live, port, perSecond); }) {}

CLiveFeed::~CLiveFeed() { Stop(); }

void CLiveFeed::Stop() {
  m_stopping = true;
  if (m_thread.joinable()) m_thread.join();
}

// Each message has its own due time from the start, so a late one does not push back the rest.
void CLiveFeed::Feed(CLiveRack& live, std::int32_t port, double perSecond) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  const std::chrono::duration<double> interval(1.0 / perSecond);
  for (std::int64_t i = 0; !m_stopping; ++i) {
    const auto due = std::chrono::duration_cast<Clock::duration>(interval * static_cast<double>(i));
    std::this_thread::sleep_until(start + due);
    const auto note = static_cast<std::uint32_t>(36 + (i / 2) % 48);
    const std::uint32_t message = i % 2 == 0 ? 0x90 | note << 8 | 100u << 16 : 0x80 | note << 8;
    live.DeliverInput(port, message);
    ++m_fed;
  }
}

std::int64_t ResidentKilobytes() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.rfind("VmRSS:", 0) == 0) return std::stoll(line.substr(6));
  return 0;
}
