#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/thread.h"

// "Highest" is a raised priority within the normal class, as on Windows, not a real-time class:
// a worker that spins by mistake must not be able to starve the host. On Linux a thread's nice
// value is its own, addressed by thread id.
bool SetCurrentThreadPriority(ThreadPriority priority) noexcept {
  const int nice = priority == ThreadPriority::Highest ? -10 : 0;
  const auto tid = static_cast<id_t>(syscall(SYS_gettid));
  return setpriority(PRIO_PROCESS, tid, nice) == 0;
}
