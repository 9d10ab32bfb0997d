// Locks. `CCritSec` is re-entrant, like the platform's critical section: the instance lock is
// taken again by code that already holds it (pins, time conversion under a host call).
#pragma once

#include <mutex>

class CCritSec {
 public:
  CCritSec() = default;
  CCritSec(const CCritSec&) = delete;
  CCritSec& operator=(const CCritSec&) = delete;

  void Lock() { m_mutex.lock(); }
  void Unlock() { m_mutex.unlock(); }

 private:
  std::recursive_mutex m_mutex;
};

// Holds a lock for the life of a scope.
class CAutoLock {
 public:
  explicit CAutoLock(CCritSec& lock) : m_lock(lock) { m_lock.Lock(); }
  ~CAutoLock() { m_lock.Unlock(); }
  CAutoLock(const CAutoLock&) = delete;
  CAutoLock& operator=(const CAutoLock&) = delete;

 private:
  CCritSec& m_lock;
};
