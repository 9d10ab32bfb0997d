// What reaches the port and the sink, in which order, and what is counted and shown.
#include <chrono>
#include <initializer_list>
#include <thread>

#include <gtest/gtest.h>

#include "core/activity.h"
#include "tests/support/test_instance.h"

namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;

CStoredEvent Sysex(Bytes bytes) {
  CStoredEvent e;
  e.SetSysex(std::move(bytes));
  return e;
}

CStoredEvent Wait(std::uint32_t ms) {
  CStoredEvent e;
  e.SetWait(ms);
  return e;
}

CStoredEvent Message(std::uint8_t status, std::uint8_t d1, std::uint8_t d2) {
  return CStoredEvent::FromMessage(ShortMessage::FromBytes(status, d1, d2));
}

// Posts `events` so that the worker takes them as one batch, and returns once it has taken it
// (the sink and the port are then chosen). Meanwhile the worker is held in a batch of its own,
// so a busy machine cannot split them.
void PostAsOneBatch(ConnectedRig& rig, std::initializer_list<CStoredEvent> events) {
  const std::size_t batches = rig.ports.HandleQueries();
  rig.ports.HoldHandleQueries(true);
  rig.instance->PostToWorker(Wait(0));
  const bool held = rig.ports.WaitForHandleQueries(batches + 1, 2000);
  for (const CStoredEvent& event : events) rig.instance->PostToWorker(event);
  rig.ports.HoldHandleQueries(false);
  ASSERT_TRUE(held && rig.ports.WaitForHandleQueries(batches + 2, 2000)) << "never taken";
}

std::uint32_t Packed(std::uint8_t status, std::uint8_t d1, std::uint8_t d2) {
  return ShortMessage::FromBytes(status, d1, d2).message;
}

class Worker : public ::testing::Test {
 protected:
  void SetUp() override {
    rig.EnableOutput();
    rig.Start();
  }
  void TearDown() override { rig.Stop(); }

  // The count moves just after the port call returns, so a reader waits for it.
  std::uint32_t SentCountOnceSettledAt(std::uint32_t expected) {
    std::uint32_t in = 0, out = 0;
    for (int i = 0; i < 200; ++i) {
      rig.instance->GetEventCounters(&in, &out, 0);
      if (out >= expected) break;
      std::this_thread::sleep_for(5ms);
    }
    std::this_thread::sleep_for(10ms);
    rig.instance->GetEventCounters(&in, &out, 0);
    return out;
  }
  // Posts `e` and waits until the worker has drained the batch it went in.
  void PostAndDrain(const CStoredEvent& e, std::size_t sendsExpected) {
    ASSERT_EQ(rig.instance->PostToWorker(e), S_OK);
    ASSERT_TRUE(rig.ports.WaitForSends(sendsExpected, 2000));
  }

  ConnectedRig rig;
};

TEST_F(Worker, KeepsOrderAcrossKindsAndHonoursAPause) {
  rig.instance->PostToWorker(Sysex({0xF0, 0x7E, 0xF7}));
  rig.instance->PostToWorker(Wait(500));
  rig.instance->PostToWorker(Message(0x90, 60, 100));
  ASSERT_TRUE(rig.ports.WaitForSends(2, 3000));
  const auto sent = rig.ports.Sends();
  ASSERT_TRUE(sent[0].sysex);
  ASSERT_FALSE(sent[1].sysex);
  EXPECT_EQ(sent[1].message, Packed(0x90, 60, 100));
  EXPECT_GE(sent[1].at - sent[0].at, 500ms);
}

TEST_F(Worker, OverlaysAPrefixStartingWithF0WithoutChangingTheLength) {
  const Bytes prefix{0xF0, 0x43, 0x10, 0x4C};
  rig.instance->SetSysexPrefix(prefix.data(), 4);
  PostAndDrain(Sysex({0xF0, 0x7E, 0xF7}), 1);
  PostAndDrain(Sysex({0xF0, 0x01, 0x02, 0x03, 0x04, 0x05, 0xF7}), 2);
  const auto sent = rig.ports.Sends();
  EXPECT_EQ(sent[0].bytes, (Bytes{0xF0, 0x43, 0xF7}));
  EXPECT_EQ(sent[1].bytes, (Bytes{0xF0, 0x43, 0x10, 0x4C, 0x04, 0x05, 0xF7}));

  const Bytes notF0{0x43, 0x10};
  rig.instance->SetSysexPrefix(notF0.data(), 2);
  PostAndDrain(Sysex({0xF0, 0x7E, 0x00, 0xF7}), 3);
  EXPECT_EQ(rig.ports.Sends()[2].bytes, (Bytes{0xF0, 0x7E, 0x00, 0xF7})) << "no F0: no effect";
}

TEST_F(Worker, RechannelsChannelMessagesOnlyForOneToSixteen) {
  struct Case {
    std::uint32_t rechannel;
    std::uint32_t in, out;
  } cases[] = {
      {16, Packed(0x90, 0x3C, 0x40), Packed(0x9F, 0x3C, 0x40)},
      {1, Packed(0xB5, 7, 100), Packed(0xB0, 7, 100)},
      {16, Packed(0xF8, 0, 0), Packed(0xF8, 0, 0)},  // system messages keep their bytes
      {17, Packed(0x93, 0x3C, 0x40), Packed(0x93, 0x3C, 0x40)},
      {0, Packed(0x93, 0x3C, 0x40), Packed(0x93, 0x3C, 0x40)},
  };
  std::size_t n = 0;
  for (const Case& c : cases) {
    rig.instance->SetOutputRechannel(c.rechannel);
    PostAndDrain(CStoredEvent::FromMessage({0, c.in}), ++n);
    EXPECT_EQ(rig.ports.Sends().back().message, c.out) << "rechannel " << c.rechannel;
  }
}

TEST_F(Worker, SendsOnlyTheSysexOfAnEventThatAlsoHasMessagesAndAPause) {
  CStoredEvent e;
  e.SetWait(1500);
  e.SetMessages({ShortMessage::FromBytes(0xC0, 1, 0)});  // keeps the pause
  e.SetSysex({0xF0, 0x01, 0xF7});                        // keeps both
  const auto t0 = FakeClock::now();
  PostAndDrain(e, 1);
  PostAndDrain(Message(0x80, 1, 0), 2);
  const auto sent = rig.ports.Sends();
  EXPECT_TRUE(sent[0].sysex);
  EXPECT_FALSE(sent[1].sysex);
  EXPECT_LT(sent[1].at - t0, 750ms) << "the event's pause was slept";
}

TEST_F(Worker, AnUnframedSysexWithNothingElseSendsNothing) {
  PostAndDrain(Sysex({0xF0, 0x00}), 0);
  PostAndDrain(Message(0x80, 1, 0), 1);  // a marker: the first event had its turn
  EXPECT_EQ(rig.ports.SendCount(), 1u);
  EXPECT_EQ(SentCountOnceSettledAt(1), 1u);
}

TEST_F(Worker, HandsRechannelledMessagesToTheSinkButNeverSysex) {
  rig.UseSink();
  rig.instance->SetOutputRechannel(3);
  rig.instance->PostToWorker(Sysex({0xF0, 0x01, 0xF7}));
  rig.instance->PostToWorker(Message(0x90, 0x3C, 0x40));
  ASSERT_TRUE(rig.sink.WaitForRecords(1, 2000));
  ASSERT_TRUE(rig.ports.WaitForSends(2, 2000));
  const auto records = rig.sink.Records();
  ASSERT_EQ(records.size(), 1u);
  // Fields of a packed record are copied out before comparing: no reference to a misaligned one.
  EXPECT_EQ(std::uint32_t{records[0].kind}, HostEventRecord::kShortMessage);
  EXPECT_EQ(int{records[0].port}, 0);
  EXPECT_EQ(int{records[0].channel}, 0);
  EXPECT_EQ(records[0].Message(), Packed(0x92, 0x3C, 0x40));
  IMfxInputPort* facet = &rig.instance.filter();
  EXPECT_EQ(rig.sink.Senders()[0], facet);
}

TEST_F(Worker, ShowsOutputActivityWithTheMessagesLevel) {
  PostAndDrain(Message(0x90, 60, 0), 1);
  PostAndDrain(Message(0x90, 60, 10), 2);
  PostAndDrain(Message(0x90, 60, 11), 3);
  PostAndDrain(Message(0xB0, 7, 127), 4);
  PostAndDrain(Message(0xE0, 0, 127), 5);
  PostAndDrain(Sysex({0xF0, 0xF7}), 6);
  ASSERT_TRUE(rig.window.WaitForCount(6, 2000));
  std::vector<WPARAM_T> levels;
  for (const auto& p : rig.window.Messages(OutputActivityMessage())) levels.push_back(p.wParam);
  EXPECT_EQ(levels, (std::vector<WPARAM_T>{10, 10, 11, 127, 10, 10}));
}

TEST(WorkerTargets, WithNeitherSinkNorPortABatchIsDroppedPausesIncluded) {
  ConnectedRig rig;
  rig.Start();  // output stays disabled and there is no sink
  const auto t0 = std::chrono::steady_clock::now();
  PostAsOneBatch(rig, {Wait(5000), Message(0x90, 1, 1)});
  // The next batch begins only once that one is over, dropped at once or slept through; the
  // sink comes only then, as the worker looks for it while it works through a batch.
  const std::size_t batches = rig.ports.HandleQueries();
  rig.instance->PostToWorker(Wait(0));
  ASSERT_TRUE(rig.ports.WaitForHandleQueries(batches + 1, 5000));
  EXPECT_LT(std::chrono::steady_clock::now() - t0, 4000ms) << "the dropped pause was slept";
  rig.UseSink();
  rig.instance->PostToWorker(Message(0x80, 1, 0));
  ASSERT_TRUE(rig.sink.WaitForRecords(1, 5000));
  EXPECT_EQ(rig.sink.Records().size(), 1u);
  rig.Stop();
}

TEST(WorkerTargets, WithASinkAndNoPortHandleThePauseIsHonoured) {
  ConnectedRig rig;
  rig.EnableOutput();
  rig.ports.SetOutputHandle(0, 0);  // the port cannot be written now
  rig.UseSink();
  rig.Start();
  const auto t0 = std::chrono::steady_clock::now();
  rig.instance->PostToWorker(Sysex({0xF0, 0x01, 0xF7}));
  rig.instance->PostToWorker(Wait(200));
  rig.instance->PostToWorker(Message(0x90, 1, 1));
  ASSERT_TRUE(rig.sink.WaitForRecords(1, 2000));
  EXPECT_GE(std::chrono::steady_clock::now() - t0, 200ms);
  EXPECT_EQ(rig.ports.SendCount(), 0u);
  rig.Stop();
}

// Which sends count: the port's answer replaces the sink's; sysex counts whatever happens.
TEST(WorkerCounting, FollowsTheLastAnswerOfEachMessage) {
  struct Case {
    bool port, sinkFails, portFails;
    std::uint32_t counted;
  } cases[] = {
      {false, true, false, 0},  // sink fails, port absent
      {true, true, false, 1},   // sink fails, port succeeds
      {true, false, true, 0},   // port fails, sink succeeded
      {false, false, false, 1}, // sink alone succeeds
  };
  for (const Case& c : cases) {
    ConnectedRig rig;
    if (c.port) rig.EnableOutput();
    rig.UseSink();
    rig.sink.Fail(c.sinkFails);
    rig.ports.FailShortSends(c.portFails);
    rig.Start();
    const std::size_t batches = rig.ports.HandleQueries();
    rig.instance->PostToWorker(Message(0x90, 1, 1));
    ASSERT_TRUE(rig.sink.WaitForRecords(1, 2000));
    rig.instance->PostToWorker(Wait(1));  // the next batch starts only after this one
    ASSERT_TRUE(rig.ports.WaitForHandleQueries(batches + 2, 2000));
    std::uint32_t in = 0, out = 0;
    rig.instance->GetEventCounters(&in, &out, 1);
    EXPECT_EQ(out, c.counted) << c.port << c.sinkFails << c.portFails;
    rig.Stop();
  }
}

TEST_F(Worker, CountsAFailedSysexSendAllTheSame) {
  rig.ports.FailSysexSends(true);
  rig.instance->PostToWorker(Sysex({0xF0, 0xF7}));
  PostAndDrain(Message(0x80, 1, 0), 1);
  EXPECT_EQ(SentCountOnceSettledAt(2), 2u);
}

TEST(WorkerLife, APostWhileStoppedIsLostAndStopWhenStoppedIsHarmless) {
  ConnectedRig rig;
  rig.EnableOutput();
  EXPECT_EQ(rig.instance->PostToWorker(Message(0x90, 1, 1)), E_FAIL);
  EXPECT_EQ(rig.instance->StopWorker(), S_OK);
  rig.Start();
  rig.Stop();
  EXPECT_EQ(rig.instance->PostToWorker(Message(0x90, 1, 1)), E_FAIL);
  EXPECT_EQ(rig.ports.SendCount(), 0u);
}

TEST_F(Worker, StopReturnsAtOnceAndTheSleeperFinishesItsBatch) {
  // Margins are wide so that a loaded machine cannot blur "waited for the pause" and "did not".
  PostAsOneBatch(rig, {Wait(1500), Message(0x90, 2, 2)});
  std::this_thread::sleep_for(20ms);  // the worker is asleep in the pause
  const auto t0 = std::chrono::steady_clock::now();
  rig.Stop();
  EXPECT_LT(std::chrono::steady_clock::now() - t0, 750ms);
  EXPECT_EQ(rig.ports.SendCount(), 0u);
  ASSERT_TRUE(rig.ports.WaitForSends(1, 5000)) << "the batch in hand is finished";
  EXPECT_EQ(rig.ports.Sends()[0].message, Packed(0x90, 2, 2));
}

// A graph stopped and started again while the old worker sleeps in a pause: what was posted to
// the new worker still goes out after the old batch, as it was posted after it.
TEST_F(Worker, AfterAStopAndAStartTheOldBatchStillGoesOutFirst) {
  PostAsOneBatch(rig, {Wait(300), Message(0x90, 1, 1)});
  std::this_thread::sleep_for(20ms);  // the worker is asleep in the pause
  rig.Stop();
  rig.Start();
  ASSERT_EQ(rig.instance->PostToWorker(Message(0x90, 2, 2)), S_OK);
  ASSERT_TRUE(rig.ports.WaitForSends(2, 5000));
  EXPECT_EQ(rig.ports.Sends()[0].message, Packed(0x90, 1, 1));
  EXPECT_EQ(rig.ports.Sends()[1].message, Packed(0x90, 2, 2));
}

TEST_F(Worker, SendEnabledEventsPostsOnlyEnabledOnesInListOrder) {
  CStoredEvent a = Message(0xC0, 1, 0), b = Message(0xC0, 2, 0), c = Message(0xC0, 3, 0);
  b.SetEnabled(false);
  rig.instance->InsertEvent(0, &a);
  rig.instance->InsertEvent(1, &b);
  rig.instance->InsertEvent(2, &c);
  EXPECT_EQ(rig.instance->SendEnabledEvents(), S_OK);
  ASSERT_TRUE(rig.ports.WaitForSends(2, 2000));
  std::this_thread::sleep_for(20ms);
  const auto sent = rig.ports.Sends();
  ASSERT_EQ(sent.size(), 2u);
  EXPECT_EQ(sent[0].message, Packed(0xC0, 1, 0));
  EXPECT_EQ(sent[1].message, Packed(0xC0, 3, 0));
}

}  // namespace
