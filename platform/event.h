// Auto-reset events: a set event releases exactly one wait and clears itself. A thread can wait
// on two at once, where the first wins when both are set (a stop request before more work).
//
// Each event sleeps its waiters on a mutex and condition variable of its own. The first wait on
// two events together moves both onto one shared pair for good, so that waking the waiter of a
// pair costs what waking a thread on a bare condition variable costs: one lock, one notify. A set
// that finds no waiter asleep takes no lock at all.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>

class CAutoResetEvent {
 public:
  CAutoResetEvent() = default;
  // Must not be waited on or set any more.
  ~CAutoResetEvent();
  CAutoResetEvent(const CAutoResetEvent&) = delete;
  CAutoResetEvent& operator=(const CAutoResetEvent&) = delete;

  // [any thread] Signals the event; wakes one waiter or stays set until one comes.
  void Set();
  // [any thread] Whether the event is set now; a snapshot, for a setter that can spare its set.
  bool IsSet() const noexcept { return m_signalled.load(std::memory_order_acquire); }
  // [any thread] Waits until set, then clears it. Returns false after `timeoutMs` without it;
  // a negative timeout waits for ever.
  bool Wait(std::int64_t timeoutMs = -1);

 private:
  friend int WaitForEither(CAutoResetEvent& first, CAutoResetEvent& second, std::int64_t timeoutMs);
  struct Hub;

  // Takes the signal if set. Lock-free, so the fast paths need no lock at all. Sequentially
  // consistent, as the pairing of a wait's sleeper mark with a set's look for sleepers needs.
  bool TryConsume() noexcept { return m_signalled.exchange(false); }
  // Locks the hub this event sleeps on now: a Set or a Wait that raced with a move onto a shared
  // hub follows it there.
  std::unique_lock<std::mutex> LockHub(Hub*& hub);
  // Puts both events on one shared hub and returns it, or null when each already shares one
  // with another partner.
  static Hub* Bind(CAutoResetEvent& first, CAutoResetEvent& second);
  // Moves this event, still on its own hub, onto `shared`.
  void MoveTo(Hub* shared);

  struct Hub {
    std::mutex mutex;
    std::condition_variable cv;
    std::atomic<int> members{0};   // events on a shared hub; the last one to go frees it
    std::atomic<int> sleepers{0};  // waits that may sleep here: a set wakes only while some do
  };

  Hub m_own;
  std::atomic<Hub*> m_hub{&m_own};  // changes at most once, from m_own to a shared hub
  std::atomic<bool> m_signalled{false};
};

// [any thread] Waits for either event and consumes the one that ends the wait: 0 for `first`,
// 1 for `second`, -1 on time-out. When both are set `first` is taken and `second` stays set.
// Events are meant to be waited on in one pairing for their life (a worker's stop and wake).
// An event already paired with another partner is still waited on correctly, by looking again
// each millisecond.
int WaitForEither(CAutoResetEvent& first, CAutoResetEvent& second, std::int64_t timeoutMs = -1);
