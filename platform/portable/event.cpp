#include "platform/event.h"

#include <algorithm>
#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;

// A waiter on two events that each share a hub with someone else looks again this often.
constexpr auto kLookAgain = std::chrono::milliseconds(1);
// Counts a wait as a possible sleeper of its hub while it holds the hub's lock or sleeps there.
// It counts itself before its last look at the signals, and a set raises its signal before it
// looks for sleepers: so either the wait sees the signal or the set sees the wait and wakes it.
template <class Hub>
class SleeperMark {
 public:
  explicit SleeperMark(Hub& hub) noexcept : m_hub(hub) { m_hub.sleepers.fetch_add(1); }
  ~SleeperMark() { m_hub.sleepers.fetch_sub(1); }
  SleeperMark(const SleeperMark&) = delete;
  SleeperMark& operator=(const SleeperMark&) = delete;

 private:
  Hub& m_hub;
};

Clock::time_point DeadlineAfter(std::int64_t timeoutMs) {
  return timeoutMs < 0 ? Clock::time_point::max()
                       : Clock::now() + std::chrono::milliseconds(timeoutMs);
}

// Pairing is rare (once per pair), so one lock for all of it keeps two pairings apart.
std::mutex& BindMutex() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace

CAutoResetEvent::~CAutoResetEvent() {
  Hub* hub = m_hub.load(std::memory_order_acquire);
  if (hub != &m_own && hub->members.fetch_sub(1, std::memory_order_acq_rel) == 1) delete hub;
}

std::unique_lock<std::mutex> CAutoResetEvent::LockHub(Hub*& hub) {
  for (;;) {
    hub = m_hub.load();
    std::unique_lock lock(hub->mutex);
    if (m_hub.load() == hub) return lock;
  }
}

void CAutoResetEvent::Set() {
  // A burst of posts finds the event still set: nothing to do.
  if (m_signalled.load(std::memory_order_acquire) || m_signalled.exchange(true)) return;
  // No wait may sleep on the hub: the next one sees the signal, and no lock is needed.
  if (m_hub.load()->sleepers.load() == 0) return;
  Hub* hub = nullptr;
  {
    // A wait that counted itself holds this lock until it sleeps: taking it once makes sure
    // that the notify below finds it asleep.
    const auto lock = LockHub(hub);
  }
  // Outside the lock, so the waiter does not wake into it. The hub outlives this call: it is
  // our own, or a shared one that this event keeps alive.
  if (hub == &m_own) {
    hub->cv.notify_one();
  } else {
    hub->cv.notify_all();  // the partner's waiters sleep here too and must not take our wake
  }
}

bool CAutoResetEvent::Wait(std::int64_t timeoutMs) {
  if (TryConsume()) return true;
  if (timeoutMs == 0) return false;
  const auto deadline = DeadlineAfter(timeoutMs);
  for (;;) {
    Hub* hub = nullptr;
    auto lock = LockHub(hub);
    const SleeperMark mark(*hub);
    while (m_hub.load() == hub) {
      if (TryConsume()) return true;
      if (deadline == Clock::time_point::max()) {
        hub->cv.wait(lock);
      } else if (hub->cv.wait_until(lock, deadline) == std::cv_status::timeout) {
        return TryConsume();
      }
    }
    // Moved onto a shared hub while asleep: follow it.
  }
}

void CAutoResetEvent::MoveTo(Hub* shared) {
  shared->members.fetch_add(1, std::memory_order_acq_rel);
  {
    std::lock_guard lock(m_own.mutex);
    m_hub.store(shared);
  }
  m_own.cv.notify_all();  // waits asleep on the own hub follow the event
}

CAutoResetEvent::Hub* CAutoResetEvent::Bind(CAutoResetEvent& first, CAutoResetEvent& second) {
  // Once shared, a hub is permanent: the usual wait gets here without the lock.
  Hub* const firstHub = first.m_hub.load(std::memory_order_acquire);
  if (firstHub == second.m_hub.load(std::memory_order_acquire)) return firstHub;

  std::lock_guard lock(BindMutex());
  Hub* const a = first.m_hub.load(std::memory_order_acquire);
  Hub* const b = second.m_hub.load(std::memory_order_acquire);
  if (a == b) return a;
  const bool firstAlone = a == &first.m_own;
  const bool secondAlone = b == &second.m_own;
  if (firstAlone && secondAlone) {
    Hub* const shared = new Hub;
    first.MoveTo(shared);
    second.MoveTo(shared);
    return shared;
  }
  if (firstAlone) {
    first.MoveTo(b);
    return b;
  }
  if (secondAlone) {
    second.MoveTo(a);
    return a;
  }
  return nullptr;
}

int WaitForEither(CAutoResetEvent& first, CAutoResetEvent& second, std::int64_t timeoutMs) {
  // A worker that comes back from a batch usually finds more work set: take it without a lock.
  if (first.TryConsume()) return 0;
  if (second.TryConsume()) return 1;
  if (timeoutMs == 0) return -1;

  const auto deadline = DeadlineAfter(timeoutMs);
  CAutoResetEvent::Hub* const shared = CAutoResetEvent::Bind(first, second);
  // Without a shared hub a Set on `second` wakes nobody here; the waits below are cut short.
  CAutoResetEvent::Hub* const hub = shared ? shared : first.m_hub.load();
  std::unique_lock lock(hub->mutex);
  const SleeperMark mark(*hub);
  for (;;) {
    // A set of either event that this look misses sees the mark and wakes the wait below.
    if (first.TryConsume()) return 0;
    if (second.TryConsume()) return 1;
    const auto until = shared ? deadline : std::min(deadline, Clock::now() + kLookAgain);
    if (until == Clock::time_point::max()) {
      hub->cv.wait(lock);
    } else if (hub->cv.wait_until(lock, until) == std::cv_status::timeout &&
               Clock::now() >= deadline) {
      if (first.TryConsume()) return 0;
      if (second.TryConsume()) return 1;
      return -1;
    }
  }
}
