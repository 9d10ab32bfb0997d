// A host reference that host threads replace (SetInputSink, Disconnect) while the output worker
// reads it without the instance lock. A change takes effect between two events, as it would with
// a plain pointer, but the worker holds its own reference while it uses one, so a release on the
// host's thread never frees what the worker is calling.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

#include "platform/com_ptr.h"

template <class T>
class CSharedHostRef {
 public:
  // [host thread] Replaces the reference; the old one is released outside the lock.
  void Set(ComPtr<T> ref) {
    {
      std::lock_guard lock(m_mutex);
      m_ref.Swap(ref);
      m_present.store(static_cast<bool>(m_ref));
      m_version.fetch_add(1, std::memory_order_release);
    }
  }
  // [any thread] The current reference, with a reference of the caller's own. While there is
  // none, no lock is taken: a host without a sink costs the worker nothing for it.
  ComPtr<T> Get() const {
    if (!m_present.load()) return {};
    std::lock_guard lock(m_mutex);
    return m_ref;
  }
  // [any thread] Changes with every Set, so a reader can keep its copy until it moves.
  std::uint32_t Version() const noexcept { return m_version.load(std::memory_order_acquire); }

 private:
  mutable std::mutex m_mutex;
  ComPtr<T> m_ref;
  std::atomic<bool> m_present{false};  // whether m_ref is set, readable without the lock
  std::atomic<std::uint32_t> m_version{0};
};

// The worker's copy of a shared reference, refreshed only when the shared one has changed: one
// atomic load per event in the steady state.
template <class T>
class CHostRefReader {
 public:
  explicit CHostRefReader(const CSharedHostRef<T>& shared) : m_shared(shared) { Refresh(); }
  T* Current() {
    if (m_stale || m_shared.Version() != m_version) Refresh();
    return m_ref.Get();
  }
  // Lets go of the copy until the next Current(), as before a long wait.
  void Release() {
    m_ref.Reset();
    m_stale = true;
  }

 private:
  void Refresh() {
    m_version = m_shared.Version();
    m_ref = m_shared.Get();
    m_stale = false;
  }
  const CSharedHostRef<T>& m_shared;
  ComPtr<T> m_ref;
  std::uint32_t m_version = 0;
  bool m_stale = false;
};
