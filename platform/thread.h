// Threads with a scheduling priority. The worker asks for the highest; where the system refuses
// (no real-time rights), the thread runs at normal priority and nothing else changes.
#pragma once

#include <functional>
#include <thread>

enum class ThreadPriority { Normal, Highest };

class CThread {
 public:
  CThread() = default;
  ~CThread();  // joins, so no thread outlives its owner
  CThread(const CThread&) = delete;
  CThread& operator=(const CThread&) = delete;

  // Starts `body` on a new thread. Returns false if a thread is already running here.
  bool Start(std::function<void()> body, ThreadPriority priority);
  // Waits for the thread to end; does nothing when none was started.
  void Join();
  bool Joinable() const noexcept { return m_thread.joinable(); }

 private:
  std::thread m_thread;
};

// Asks the system to run the calling thread at `priority`; returns whether it agreed.
bool SetCurrentThreadPriority(ThreadPriority priority) noexcept;
