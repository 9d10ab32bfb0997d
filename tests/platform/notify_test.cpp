#include <atomic>
#include <chrono>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/notify.h"
#include "tests/support/recorders.h"

namespace {

TEST(Notify, PostsReachTheTargetUntilItUnregisters) {
  NotifyHandle stale = 0;
  {
    NotifyRecorder target;
    stale = target.Handle();
    EXPECT_TRUE(PostNotify(stale, 0xC001, 42, 0));
    ASSERT_EQ(target.Messages().size(), 1u);
    EXPECT_EQ(target.Messages()[0].wParam, 42u);
  }
  EXPECT_FALSE(PostNotify(stale, 0xC001, 1, 0)) << "a gone target must be a dead handle";
  EXPECT_FALSE(PostNotify(0, 0xC001, 1, 0));
}

// Notes the thread each post is handled on; its handler waits while `hold` is set.
class ThreadNotingTarget final : public CNotifyTarget {
 public:
  explicit ThreadNotingTarget(const std::atomic<bool>& hold) : m_hold(hold) {}
  ~ThreadNotingTarget() { UnregisterNotifyTarget(m_handle); }
  void OnPosted(MessageId, WPARAM_T, LPARAM_T) override {
    {
      std::lock_guard lock(m_mutex);
      m_threads.push_back(std::this_thread::get_id());
    }
    while (m_hold) std::this_thread::yield();
  }
  NotifyHandle Handle() const { return m_handle; }
  std::vector<std::thread::id> Threads() {
    std::lock_guard lock(m_mutex);
    return m_threads;
  }

 private:
  const std::atomic<bool>& m_hold;
  std::mutex m_mutex;
  std::vector<std::thread::id> m_threads;
  NotifyHandle m_handle = RegisterNotifyTarget(*this);
};

TEST(Notify, APostOnlyQueuesAndTheTargetsOwnThreadHandlesIt) {
  const std::atomic<bool> hold{false};
  ThreadNotingTarget target(hold);
  std::thread poster([&] { EXPECT_TRUE(PostNotify(target.Handle(), 0x8001, 1, 0)); });
  poster.join();
  EXPECT_TRUE(target.Threads().empty()) << "the handler ran on the poster's thread";
  DeliverQueuedNotifications();
  ASSERT_EQ(target.Threads().size(), 1u);
  EXPECT_EQ(target.Threads()[0], std::this_thread::get_id());
}

// A worker posts activity for every message it sends: a slow page must never hold it up.
TEST(Notify, APostNeverWaitsForAHandlerThatIsBusy) {
  std::atomic<bool> hold{true};
  std::atomic<bool> done{false};
  std::promise<NotifyHandle> registered;
  std::thread owner([&] {
    ThreadNotingTarget target(hold);
    registered.set_value(target.Handle());
    while (!done) DeliverQueuedNotifications();
  });
  const NotifyHandle handle = registered.get_future().get();
  auto post = [handle] { return PostNotify(handle, 0x8001, 1, 0); };
  auto first = std::async(std::launch::async, post);
  auto second = std::async(std::launch::async, post);
  EXPECT_EQ(first.wait_for(std::chrono::seconds(2)), std::future_status::ready);
  EXPECT_EQ(second.wait_for(std::chrono::seconds(2)), std::future_status::ready);
  hold = false;
  done = true;
  owner.join();
}

}  // namespace
