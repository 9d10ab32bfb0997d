// Posts wait in a queue of the thread that registered their target, as window messages wait in
// the queue of the window's thread, until that thread delivers them. A post only appends under a
// short lock: it never runs a handler and never waits for one.
#include "platform/notify.h"

#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

namespace {

// As many posts as a thread's queue holds before a post fails, as a full message queue does.
constexpr std::size_t kQueueLimit = 10000;

struct Posted {
  NotifyHandle handle;
  MessageId message;
  WPARAM_T wParam;
  LPARAM_T lParam;
};

struct Target {
  CNotifyTarget* target;
  std::thread::id owner;
};

struct Registry {
  std::mutex mutex;
  std::unordered_map<NotifyHandle, Target> targets;
  std::unordered_map<std::thread::id, std::vector<Posted>> queues;
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
  const std::thread::id owner = std::this_thread::get_id();
  r.targets.emplace(handle, Target{&target, owner});
  r.queues[owner].reserve(256);  // so that posts in the steady state allocate nothing
  return handle;
}

// Runs on the owner's thread, which is the only one that delivers to the target: once this
// returns no post to it runs, and those still queued are dropped when they come up.
void UnregisterNotifyTarget(NotifyHandle handle) {
  Registry& r = TheRegistry();
  std::lock_guard lock(r.mutex);
  r.targets.erase(handle);
}

bool PostNotify(NotifyHandle handle, MessageId message, WPARAM_T wParam, LPARAM_T lParam) {
  if (handle == 0) return false;
  Registry& r = TheRegistry();
  std::lock_guard lock(r.mutex);
  const auto it = r.targets.find(handle);
  if (it == r.targets.end()) return false;
  std::vector<Posted>& queue = r.queues[it->second.owner];
  if (queue.size() >= kQueueLimit) return false;
  queue.push_back({handle, message, wParam, lParam});
  return true;
}

void DeliverQueuedNotifications() {
  thread_local std::vector<Posted> taken;
  Registry& r = TheRegistry();
  {
    std::lock_guard lock(r.mutex);
    const auto queue = r.queues.find(std::this_thread::get_id());
    if (queue == r.queues.end() || queue->second.empty()) return;
    taken.swap(queue->second);  // both keep their capacity for the next round
  }
  for (const Posted& posted : taken) {
    CNotifyTarget* target = nullptr;
    {
      std::lock_guard lock(r.mutex);
      const auto it = r.targets.find(posted.handle);
      if (it != r.targets.end()) target = it->second.target;
    }
    // Without the lock: a handler may post, register or unregister in turn.
    if (target) target->OnPosted(posted.message, posted.wParam, posted.lParam);
  }
  taken.clear();
}
