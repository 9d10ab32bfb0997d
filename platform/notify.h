// Notify targets: the portable stand-in for a window that receives posted messages. A target is
// known to posters only by its handle; posting to a handle whose target has gone does nothing and
// says so, as posting to a destroyed window does. So a worker may hold a stale handle safely.
#pragma once

#include <cstdint>

using NotifyHandle = std::uintptr_t;  // 0 is no target
using WPARAM_T = std::uintptr_t;
using LPARAM_T = std::intptr_t;
using MessageId = std::uint32_t;

class CNotifyTarget {
 public:
  // [any thread] Takes a posted message. Must not block: queue it for the owner's thread.
  virtual void OnPosted(MessageId message, WPARAM_T wParam, LPARAM_T lParam) = 0;

 protected:
  ~CNotifyTarget() = default;
};

// [any thread] Makes `target` reachable through the returned handle, never 0.
NotifyHandle RegisterNotifyTarget(CNotifyTarget& target);
// [any thread] Makes the handle dead. When this returns, no post to it is running or will run.
void UnregisterNotifyTarget(NotifyHandle handle);
// [any thread] Hands the message to the target; false when the handle is 0 or dead.
bool PostNotify(NotifyHandle handle, MessageId message, WPARAM_T wParam, LPARAM_T lParam);
