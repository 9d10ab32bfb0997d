#include <atomic>
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "platform/event.h"
#include "platform/lock.h"
#include "platform/thread.h"

namespace {

TEST(AutoResetEvent, ReleasesOneWaitThenClearsItselfAndTimesOut) {
  CAutoResetEvent e;
  e.Set();
  e.Set();  // setting twice is still one signal
  EXPECT_TRUE(e.Wait(0));
  const auto t0 = std::chrono::steady_clock::now();
  EXPECT_FALSE(e.Wait(20));
  EXPECT_GE(std::chrono::steady_clock::now() - t0, std::chrono::milliseconds(20));
}

TEST(WaitForEither, FirstWinsWhenBothAreSetAndSecondStaysSet) {
  CAutoResetEvent stop, wake;
  wake.Set();
  stop.Set();
  EXPECT_EQ(WaitForEither(stop, wake, 0), 0);
  EXPECT_EQ(WaitForEither(stop, wake, 0), 1);
  EXPECT_EQ(WaitForEither(stop, wake, 0), -1);
}

TEST(WaitForEither, NoWakeIsLostUnderRepeatedHandOffs) {
  CAutoResetEvent stop, wake, ack;
  constexpr int kRounds = 2000;
  std::atomic<int> received{0};
  CThread consumer;
  consumer.Start(
      [&] {
        while (WaitForEither(stop, wake) == 1) {
          ++received;
          ack.Set();
        }
      },
      ThreadPriority::Normal);
  for (int i = 0; i < kRounds; ++i) {
    wake.Set();
    ASSERT_TRUE(ack.Wait(5000)) << "round " << i;
  }
  stop.Set();
  consumer.Join();
  EXPECT_EQ(received.load(), kRounds);
}

// A wait that began on an event alone follows it when the event is paired meanwhile.
TEST(WaitForEither, AWaitAsleepBeforeThePairingStillWakes) {
  CAutoResetEvent stop, wake;
  std::atomic<bool> woke{false};
  CThread sleeper;
  sleeper.Start([&] { woke = wake.Wait(5000); }, ThreadPriority::Normal);
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  EXPECT_EQ(WaitForEither(stop, wake, 1), -1);  // pairs them while the other thread sleeps
  wake.Set();
  sleeper.Join();
  EXPECT_TRUE(woke.load());
}

// Paired events sleep together, yet a set of one never ends a wait on the other.
TEST(WaitForEither, ASetOfOnePartnerLeavesTheOthersWaitAsleep) {
  CAutoResetEvent stop, wake;
  EXPECT_EQ(WaitForEither(stop, wake, 0), -1);
  EXPECT_EQ(WaitForEither(stop, wake, 1), -1);
  std::atomic<int> state{0};
  CThread sleeper;
  sleeper.Start([&] { state = wake.Wait(5000) ? 1 : 2; }, ThreadPriority::Normal);
  stop.Set();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(state.load(), 0);
  EXPECT_TRUE(stop.Wait(0));  // the signal stayed where it was set
  wake.Set();
  sleeper.Join();
  EXPECT_EQ(state.load(), 1);
}

// An event paired with one partner can still be waited on with another.
TEST(WaitForEither, AnEventPairedElsewhereIsStillWaitedOn) {
  CAutoResetEvent a, b, c, d;
  EXPECT_EQ(WaitForEither(a, b, 1), -1);
  EXPECT_EQ(WaitForEither(c, d, 1), -1);
  std::atomic<int> seen{-2};
  CThread waiter;
  waiter.Start([&] { seen = WaitForEither(a, c, 5000); }, ThreadPriority::Normal);
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  c.Set();
  waiter.Join();
  EXPECT_EQ(seen.load(), 1);
  b.Set();  // the first pairing still works
  EXPECT_EQ(WaitForEither(a, b, 100), 1);
}

TEST(CritSec, IsReentrant) {
  CCritSec lock;
  CAutoLock outer(lock);
  CAutoLock inner(lock);  // would deadlock on a plain mutex
  SUCCEED();
}

}  // namespace
