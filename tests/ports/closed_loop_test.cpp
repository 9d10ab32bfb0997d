// The closed-loop wiring test over real instances whose outputs are looped back to inputs, its
// timers ticked by a manual clock: a run of many seconds takes milliseconds.
#include "ports/closed_loop_test.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "core/activity.h"
#include "ports/instance_tracker.h"
#include "tests/support/fake_loop_instance.h"
#include "tests/support/test_instance.h"

namespace {

// The owner as a dialog would be, with timers on a clock that moves only when told. After each
// tick the instances are let settle: the workers put out what was queued and the loopback hands
// it back, as they do between real ticks.
class ManualOwner final : public IClosedLoopTestOwner {
 public:
  void WalkInstances(const std::function<void(IMyFilter*)>& visit) override {
    WalkRegisteredInstances(visit);
  }
  void StartTimer(std::uint32_t id, std::uint32_t periodMs) override {
    m_timers[id] = {periodMs, m_now + periodMs};
  }
  void StopTimer(std::uint32_t id) override { m_timers.erase(id); }
  void ShowStatus(const std::wstring& text) override { statuses.push_back(text); }
  void EnableButtons(bool start, bool stop) override {
    startEnabled = start;
    stopEnabled = stop;
  }
  void Refresh(const ClosedLoopNumbers& shown) override { numbers = shown; }

  // Fires every timer that falls due within `ms`, in time order.
  void Advance(std::int64_t ms) {
    const std::int64_t end = m_now + ms;
    for (;;) {
      auto next = std::min_element(m_timers.begin(), m_timers.end(), [](auto& a, auto& b) {
        return a.second.due < b.second.due;
      });
      if (next == m_timers.end() || next->second.due > end) break;
      const std::uint32_t id = next->first;
      m_now = next->second.due;
      next->second.due += next->second.period;
      test->OnTimer(id);
      if (afterTick) afterTick(id);
    }
    m_now = end;
  }
  // Advances tick by tick until the status reads `text`; false when it never does in `ms`.
  bool AdvanceUntil(const wchar_t* text, std::int64_t ms) {
    for (std::int64_t t = 0; t < ms; t += 100) {
      if (Status() == text) return true;
      Advance(100);
    }
    return Status() == text;
  }
  bool Running(std::uint32_t id) const { return m_timers.count(id) != 0; }
  std::wstring Status() const { return statuses.empty() ? L"" : statuses.back(); }

  ClosedLoopTest* test = nullptr;
  std::function<void(std::uint32_t)> afterTick;
  std::vector<std::wstring> statuses;
  bool startEnabled = true;
  bool stopEnabled = false;
  ClosedLoopNumbers numbers;

 private:
  struct Timer {
    std::int64_t period;
    std::int64_t due;
  };
  std::map<std::uint32_t, Timer> m_timers;
  std::int64_t m_now = 0;
};

// Instances with running workers and enabled output, wired by the loopback, with a test over
// them. The wiring ends before any instance goes.
class ClosedLoop : public ::testing::Test {
 protected:
  ~ClosedLoop() override {
    test.reset();
    for (auto& rig : rigs) rig->ports.LoopBackTo({});
  }

  // `count` instances, each output heard by every instance or each only by its own, and the
  // test started over them.
  void Start(int count, bool eachHearsAll) {
    std::vector<IMfxSoftSynth2*> all;
    for (int i = 0; i < count; ++i) {
      rigs.push_back(std::make_unique<ConnectedRig>());
      rigs.back()->EnableOutput();
      rigs.back()->Start();
      all.push_back(&rigs.back()->instance.filter());
    }
    for (auto& rig : rigs) {
      const std::vector<IMfxSoftSynth2*> own{&rig->instance.filter()};
      rig->ports.LoopBackTo(eachHearsAll ? all : own);
    }
    test = std::make_unique<ClosedLoopTest>(owner, &rigs.front()->instance.filter());
    owner.test = test.get();
    owner.afterTick = [this](std::uint32_t) { Settle(); };
    test->OnStart();
  }
  // One instance wired to itself, stopped after three ticks of sending with the loopback held,
  // so that the last messages are on the wire at the Stop.
  void StopWhileTheLastMessagesAreOnTheWire() {
    Start(1, false);
    owner.Advance(1000);
    EXPECT_EQ(owner.Status(), kClosedLoopTesting);
    rigs[0]->ports.HoldLoopback(true);
    held = true;
    owner.Advance(300);
    test->OnStop();
  }
  // Every instance is under test and gets the same share of each tick, so each port puts out
  // its share of what the run queued; then the loopback hands it all back unless it is held.
  void Settle() {
    const std::uint32_t number = test->MessageNumber();
    m_queued += number >= m_lastNumber ? number - m_lastNumber : number;
    m_lastNumber = number;
    for (auto& rig : rigs) {
      ASSERT_TRUE(rig->ports.WaitForSends(m_queued / rigs.size(), 5000));
      // A send is counted just after the port call returns, and shown just after that.
      ASSERT_TRUE(WaitForOutputActivity(*rig, m_queued / rigs.size()));
      if (!held) {
        ASSERT_TRUE(rig->ports.WaitForLoopbackIdle(5000));
      }
    }
  }

  static bool WaitForOutputActivity(ConnectedRig& rig, std::size_t count) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (rig.window.Messages(OutputActivityMessage()).size() < count) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
  }

  std::vector<std::unique_ptr<ConnectedRig>> rigs;
  ManualOwner owner;
  std::unique_ptr<ClosedLoopTest> test;
  bool held = false;

 private:
  std::size_t m_queued = 0;
  std::uint32_t m_lastNumber = 0;
};

}  // namespace

namespace {

HostDataRecord Stray() { return {0, 0x00403C90}; }  // a key pressed on some keyboard

TEST_F(ClosedLoop, OneInstanceWiredToItselfPassesAndStartsAgain) {
  Start(1, false);
  EXPECT_FALSE(owner.startEnabled);
  EXPECT_TRUE(owner.stopEnabled);
  EXPECT_EQ(owner.Status(), kClosedLoopWaiting);

  ASSERT_TRUE(owner.AdvanceUntil(kClosedLoopRestarting, 20000));
  EXPECT_EQ(owner.statuses, (std::vector<std::wstring>{kClosedLoopWaiting, kClosedLoopTesting,
                                                        kClosedLoopFinishing,
                                                        kClosedLoopRestarting}));
  EXPECT_EQ(owner.numbers.instanceCount, 1u);
  EXPECT_EQ(owner.numbers.sent, 640u);
  EXPECT_EQ(owner.numbers.received, 640u);
  EXPECT_EQ(owner.numbers.difference, 0);
  EXPECT_EQ(owner.numbers.outputRange, 640u);
  EXPECT_TRUE(owner.Running(QuiesceTimer));

  // The totals of the last run make the first waiting tick clear them; the second starts.
  owner.Advance(1000);
  EXPECT_EQ(owner.Status(), kClosedLoopRestarting);
  owner.Advance(1000);
  EXPECT_EQ(owner.Status(), kClosedLoopTesting);
  EXPECT_FALSE(owner.startEnabled);
}

TEST_F(ClosedLoop, SeparateLoopsStandOnFinishingUntilStopThenShowTheMismatch) {
  Start(2, false);
  ASSERT_TRUE(owner.AdvanceUntil(kClosedLoopFinishing, 20000));
  owner.Advance(60000);  // no time-out
  EXPECT_EQ(owner.Status(), kClosedLoopFinishing);
  EXPECT_TRUE(owner.Running(DrainTimer));
  EXPECT_EQ(owner.numbers.sent, 1280u);
  EXPECT_EQ(owner.numbers.received, 1280u);
  EXPECT_EQ(owner.numbers.difference, 1280);

  test->OnStop();
  EXPECT_EQ(owner.Status(), kClosedLoopUserStop);
  EXPECT_TRUE(owner.startEnabled);
  EXPECT_FALSE(owner.stopEnabled);
  owner.Advance(200);
  EXPECT_EQ(owner.Status(), kClosedLoopMismatch);
  EXPECT_FALSE(owner.Running(QuiesceTimer) || owner.Running(SendTimer) ||
               owner.Running(DrainTimer) || owner.Running(EndTimer));
}

TEST_F(ClosedLoop, StrayInputDuringTheWaitPostponesTheStart) {
  Start(1, false);
  for (int second = 0; second < 5; ++second) {
    FakeDataList list({Stray()});
    rigs[0]->instance->OnInput(0, &list);
    owner.Advance(1000);
    EXPECT_EQ(owner.Status(), kClosedLoopWaiting);
    EXPECT_FALSE(owner.Running(SendTimer));
  }
  // Heard but not sent on: the flag keeps the test's input off the wire.
  EXPECT_EQ(rigs[0]->ports.SendCount(), 0u);
  owner.Advance(1000);
  EXPECT_EQ(owner.Status(), kClosedLoopTesting);
}

TEST_F(ClosedLoop, StopDuringSendingFinishesWhenTheLastEventsReturnBeforeTheOutcome) {
  StopWhileTheLastMessagesAreOnTheWire();
  EXPECT_EQ(owner.Status(), kClosedLoopUserStop);
  EXPECT_TRUE(owner.Running(EndTimer));
  EXPECT_FALSE(owner.Running(SendTimer));

  rigs[0]->ports.HoldLoopback(false);
  held = false;
  ASSERT_TRUE(rigs[0]->ports.WaitForLoopbackIdle(5000));
  owner.Advance(200);
  EXPECT_EQ(owner.Status(), kClosedLoopFinished);
  EXPECT_EQ(owner.numbers.sent, 30u);
  EXPECT_EQ(owner.numbers.received, 30u);
}

TEST_F(ClosedLoop, StopDuringSendingIsAMismatchWhenTheLastEventsReturnLate) {
  StopWhileTheLastMessagesAreOnTheWire();
  owner.Advance(200);
  EXPECT_EQ(owner.Status(), kClosedLoopMismatch);
  EXPECT_EQ(owner.numbers.difference, 30);
  EXPECT_TRUE(owner.startEnabled);
}

TEST_F(ClosedLoop, MessagesCountAcrossInstancesAsControllerAndValue) {
  Start(2, true);
  owner.Advance(1000 + 700);  // seven ticks of sending: numbers 0 to 139
  ASSERT_EQ(test->MessageNumber(), 140u);

  // Ten numbers for each instance in registry order, which is the order of the facets.
  IMyFilter* a = &rigs[0]->instance.filter();
  IMyFilter* b = &rigs[1]->instance.filter();
  ConnectedRig& lower = *rigs[std::less<IMyFilter*>{}(a, b) ? 0 : 1];
  const auto sends = lower.ports.Sends();
  ASSERT_EQ(sends.size(), 70u);
  EXPECT_EQ(sends[0].message & 0xFFFFFFu, 0x0000B0u);
  EXPECT_EQ(sends[9].message & 0xFFFFFFu, 0x0009B0u);
  EXPECT_EQ(sends[10].message & 0xFFFFFFu, 0x0014B0u);  // the other instance had 10 to 19
  // Number 128 is controller 0 with value 1; the lower instance sends it in the seventh tick.
  EXPECT_EQ(sends[68].message & 0xFFFFFFu, 0x0100B0u);
}

}  // namespace

namespace {

// An instance reduced to what the test calls, registered as a real one is: it records its
// messages and flag, and its counters stay at zero, so that a run never ends by itself.
class RecordingFilter final : public FakeLoopInstance {
 public:
  explicit RecordingFilter(bool active) : FakeLoopInstance(active, false) {}

 private:
  CMultiInstanceTracker m_tracker{this};
};

TEST(ClosedLoopNumbering, MessageNumbersStartOverAfter16384) {
  RecordingFilter filter(true);
  ManualOwner owner;
  {
    ClosedLoopTest test(owner, &filter);
    owner.test = &test;
    test.OnStart();
    owner.Advance(1000);
    owner.Advance(100 * 1639);
  }
  ASSERT_GE(filter.messages.size(), 16390u);
  EXPECT_EQ(filter.messages[127], 0x007FB0u);
  EXPECT_EQ(filter.messages[128], 0x0100B0u);
  EXPECT_EQ(filter.messages[16383], 0x7F7FB0u);
  EXPECT_EQ(filter.messages[16384], 0x0000B0u);
  EXPECT_EQ(filter.messages[16385], 0x0001B0u);
}

TEST(ClosedLoopFlags, OnlyActiveInstancesAreTakenInButClosingClearsEveryFlag) {
  RecordingFilter active(true), idle(false);
  ManualOwner owner;
  {
    ClosedLoopTest test(owner, &active);
    EXPECT_EQ(test.Numbers().instanceCount, 1u);
    EXPECT_EQ(active.flags, (std::vector<std::uint8_t>{1}));
    EXPECT_TRUE(idle.flags.empty());
  }
  EXPECT_EQ(active.flags, (std::vector<std::uint8_t>{1, 0}));
  EXPECT_EQ(idle.flags, (std::vector<std::uint8_t>{0}));
}

}  // namespace
