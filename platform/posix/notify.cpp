#include "platform/notify.h"

#include <mutex>
#include <unordered_map>

namespace {

struct Registry {
  std::mutex mutex;
  std::unordered_map<NotifyHandle, CNotifyTarget*> targets;
  NotifyHandle next = 1;
};

Registry& TheRegistry() {
  static Registry registry;
  return registry;
}

}  // namespace

NotifyHandle RegisterNotifyTarget(CNotifyTarget& target) {
  Registry& r = TheRegistry();
  std::lock_guard lock(r.mutex);
  const NotifyHandle handle = r.next++;
  r.targets.emplace(handle, &target);
  return handle;
}

void UnregisterNotifyTarget(NotifyHandle handle) {
  Registry& r = TheRegistry();
  std::lock_guard lock(r.mutex);
  r.targets.erase(handle);
}

// The post runs under the registry lock so that unregistering waits for it: a target may be
// destroyed as soon as UnregisterNotifyTarget returns.
bool PostNotify(NotifyHandle handle, MessageId message, WPARAM_T wParam, LPARAM_T lParam) {
  if (handle == 0) return false;
  Registry& r = TheRegistry();
  std::lock_guard lock(r.mutex);
  const auto it = r.targets.find(handle);
  if (it == r.targets.end()) return false;
  it->second->OnPosted(message, wParam, lParam);
  return true;
}

void DeliverQueuedNotifications() {}
