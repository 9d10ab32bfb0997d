// The output worker's own state, private to the core: what one run owns, and its thread.
#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "core/soft_synth.h"
#include "platform/event.h"
#include "platform/thread.h"

// What one run of the worker owns. Shared between the instance and the thread, so a worker that
// outlives StopWorker still touches nothing freed.
struct WorkerRun {
  CAutoResetEvent stopEvent;
  CAutoResetEvent wakeEvent;
  CAutoResetEvent drainedEvent;   // set after each batch, for waiters that want to know
  CAutoResetEvent abortEvent;     // set only when the instance goes: cuts a pause short
  std::atomic<bool> aborted{false};
  std::atomic<bool> finished{false};
  std::vector<CStoredEvent> batch;          // reused, so a batch allocates nothing
  std::vector<std::uint8_t> sysexScratch;   // the overlaid copy of a sysex block, reused
};

class WorkerThread {
 public:
  WorkerThread(CSoftSynth& owner, std::shared_ptr<WorkerRun> run) : m_run(std::move(run)) {
    m_thread.Start([&owner, r = m_run] { owner.WorkerLoop(*r); }, ThreadPriority::Highest);
  }
  // Ends the worker at its next wake and cuts any pause short, then waits for it.
  void End() {
    m_run->aborted = true;
    m_run->abortEvent.Set();
    m_run->stopEvent.Set();
    m_thread.Join();
  }
  bool Finished() const { return m_run->finished.load(); }

 private:
  std::shared_ptr<WorkerRun> m_run;
  CThread m_thread;
};
