#include "platform/thread.h"
#include "platform/windows/system.h"

bool SetCurrentThreadPriority(ThreadPriority priority) noexcept {
  const int level =
      priority == ThreadPriority::Highest ? THREAD_PRIORITY_HIGHEST : THREAD_PRIORITY_NORMAL;
  return SetThreadPriority(GetCurrentThread(), level) != 0;
}
