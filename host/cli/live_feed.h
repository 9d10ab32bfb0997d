// Live input that the host plays itself, as a keyboard on an input port would: note-ons and
// note-offs, one after the other, at a steady rate, handed to every instance listening on that
// port. For soak runs; nothing else of the host needs it.
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>

class CLiveRack;

class CLiveFeed {
 public:
  // [host thread] Starts feeding the input with id `port` of `live` at `perSecond` messages a
  // second, from a thread of its own; `live` outlives the feed.
  CLiveFeed(CLiveRack& live, std::int32_t port, double perSecond);
  // Stops the feed.
  ~CLiveFeed();
  CLiveFeed(const CLiveFeed&) = delete;
  CLiveFeed& operator=(const CLiveFeed&) = delete;

  // [host thread] Ends the feed; no message is handed over after it returns.
  void Stop();
  // [any thread] Messages handed over so far.
  std::int64_t Fed() const noexcept { return m_fed.load(); }

 private:
  void Feed(CLiveRack& live, std::int32_t port, double perSecond);

  std::atomic<bool> m_stopping{false};
  std::atomic<std::int64_t> m_fed{0};
  std::thread m_thread;  // last, so it starts after everything it uses
};

// [any thread] The memory this process holds resident, in kilobytes; 0 when the system cannot
// say.
std::int64_t ResidentKilobytes();
