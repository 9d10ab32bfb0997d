// Auto-reset events: a set event releases exactly one wait and clears itself. A thread can wait
// on two at once, where the first wins when both are set (a stop request before more work).
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>

class CAutoResetEvent {
 public:
  CAutoResetEvent() = default;
  CAutoResetEvent(const CAutoResetEvent&) = delete;
  CAutoResetEvent& operator=(const CAutoResetEvent&) = delete;

  // [any thread] Signals the event; wakes one waiter or stays set until one comes.
  void Set();
  // [any thread] Waits until set, then clears it. Returns false after `timeoutMs` without it;
  // a negative timeout waits for ever.
  bool Wait(std::int64_t timeoutMs = -1);

 private:
  friend int WaitForEither(CAutoResetEvent& first, CAutoResetEvent& second, std::int64_t timeoutMs);
  struct Waiter;
  struct WaitLink {
    Waiter* waiter;
    WaitLink* next;
  };

  // Takes the signal if set. Lock-free, so a woken waiter never queues behind the Set() that
  // woke it, which still holds the mutex while it walks its waiters.
  bool TryConsume() noexcept { return m_signalled.exchange(false, std::memory_order_acq_rel); }
  void Link(WaitLink& link);
  void Unlink(WaitLink& link);

  std::mutex m_mutex;
  std::condition_variable m_cv;
  std::atomic<bool> m_signalled{false};
  WaitLink* m_links = nullptr;  // multi-event waits in progress, each link on its waiter's stack
};

// [any thread] Waits for either event and consumes the one that ends the wait: 0 for `first`,
// 1 for `second`, -1 on time-out. When both are set `first` is taken and `second` stays set.
int WaitForEither(CAutoResetEvent& first, CAutoResetEvent& second, std::int64_t timeoutMs = -1);
