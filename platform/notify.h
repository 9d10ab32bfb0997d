// Notify targets: a window that receives posted messages, or its portable stand-in. A target is
// known to posters only by its handle; posting to a handle whose target has gone does nothing and
// says so, as posting to a destroyed window does. So a worker may hold a stale handle safely.
//
// A target belongs to the thread that registered it: posts wait in that thread's queue and reach
// the target when the thread delivers them (its message loop on Windows, where a handle is a
// message-only window; DeliverQueuedNotifications wherever no loop runs), and that thread must
// unregister. A post never runs a handler and never waits for one. Post numbers from WM_USER
// (0x400) up: those below belong to the system.
#pragma once

#include <cstdint>

using NotifyHandle = std::uintptr_t;  // 0 is no target
using WPARAM_T = std::uintptr_t;
using LPARAM_T = std::intptr_t;
using MessageId = std::uint32_t;

class CNotifyTarget {
 public:
  // [owner thread] Takes a posted message, while the owner delivers its queue.
  virtual void OnPosted(MessageId message, WPARAM_T wParam, LPARAM_T lParam) = 0;

 protected:
  ~CNotifyTarget() = default;
};

// [owner thread] Makes `target` reachable through the returned handle; 0 if the system refuses.
NotifyHandle RegisterNotifyTarget(CNotifyTarget& target);
// [owner thread] Makes the handle dead. When this returns, no post to it is running or will run.
void UnregisterNotifyTarget(NotifyHandle handle);
// [any thread] Queues the message for the target's thread; false when the handle is 0 or dead,
// or the thread's queue is full.
bool PostNotify(NotifyHandle handle, MessageId message, WPARAM_T wParam, LPARAM_T lParam);
// [owner thread] Hands the posts waiting for the calling thread's targets to them, as a message
// loop would; returns at once when none wait.
void DeliverQueuedNotifications();
