#include "platform/event.h"

#include <chrono>

struct CAutoResetEvent::Waiter {
  std::mutex mutex;
  std::condition_variable cv;
  bool woken = false;
};

namespace {

using Clock = std::chrono::steady_clock;

Clock::time_point DeadlineAfter(std::int64_t timeoutMs) {
  return timeoutMs < 0 ? Clock::time_point::max()
                       : Clock::now() + std::chrono::milliseconds(timeoutMs);
}

}  // namespace

void CAutoResetEvent::Set() {
  // A burst of posts finds the event still set: nothing to do, and no lock to take for it.
  if (m_signalled.load(std::memory_order_acquire)) return;
  {
    std::lock_guard lock(m_mutex);
    // Already set: every waiter was woken then, or will find it set. Waking again would only
    // cost a system call per post while the worker is on its way.
    if (m_signalled.exchange(true, std::memory_order_acq_rel)) return;
    // The mutex, held while the waiters are woken, keeps each from unlinking meanwhile.
    for (WaitLink* link = m_links; link; link = link->next) {
      {
        std::lock_guard waiterLock(link->waiter->mutex);
        link->waiter->woken = true;
      }
      link->waiter->cv.notify_one();
    }
  }
  m_cv.notify_one();  // outside the lock, so a single waiter does not wake into it
}

void CAutoResetEvent::Link(WaitLink& link) {
  std::lock_guard lock(m_mutex);
  link.next = m_links;
  m_links = &link;
}

void CAutoResetEvent::Unlink(WaitLink& link) {
  std::lock_guard lock(m_mutex);
  for (WaitLink** at = &m_links; *at; at = &(*at)->next) {
    if (*at == &link) {
      *at = link.next;
      return;
    }
  }
}

bool CAutoResetEvent::Wait(std::int64_t timeoutMs) {
  std::unique_lock lock(m_mutex);
  const auto deadline = DeadlineAfter(timeoutMs);
  while (!TryConsume()) {
    if (deadline == Clock::time_point::max()) {
      m_cv.wait(lock);
    } else if (m_cv.wait_until(lock, deadline) == std::cv_status::timeout) {
      return TryConsume();
    }
  }
  return true;
}

int WaitForEither(CAutoResetEvent& first, CAutoResetEvent& second, std::int64_t timeoutMs) {
  // A worker that comes back from a batch usually finds more work set: take it without linking.
  if (first.TryConsume()) return 0;
  if (second.TryConsume()) return 1;
  if (timeoutMs == 0) return -1;

  CAutoResetEvent::Waiter waiter;
  CAutoResetEvent::WaitLink firstLink{&waiter, nullptr};
  CAutoResetEvent::WaitLink secondLink{&waiter, nullptr};
  first.Link(firstLink);
  second.Link(secondLink);

  const auto deadline = DeadlineAfter(timeoutMs);
  int result = -1;
  for (;;) {
    {
      std::lock_guard lock(waiter.mutex);
      waiter.woken = false;
    }
    // A Set() after these checks flags the waiter, so the wait below cannot miss it.
    if (first.TryConsume()) { result = 0; break; }
    if (second.TryConsume()) { result = 1; break; }
    std::unique_lock lock(waiter.mutex);
    if (deadline == Clock::time_point::max()) {
      waiter.cv.wait(lock, [&] { return waiter.woken; });
    } else if (!waiter.cv.wait_until(lock, deadline, [&] { return waiter.woken; })) {
      break;
    }
  }
  first.Unlink(firstLink);
  second.Unlink(secondLink);
  return result;
}
