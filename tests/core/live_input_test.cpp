// Live input from the host reaches the port and the sink through the worker, counted and shown.
#include <thread>

#include <gtest/gtest.h>

#include "core/activity.h"
#include "tests/support/test_instance.h"

namespace {

HostDataRecord Live(std::uint8_t status, std::uint8_t d1, std::uint8_t d2) {
  return {0, ShortMessage::FromBytes(status, d1, d2).message};
}

std::uint32_t Received(ConnectedRig& rig) {
  std::uint32_t in = 0, out = 0;
  rig.instance->GetEventCounters(&in, &out, 0);
  return in;
}

TEST(LiveInput, ReachesPortAndSinkRechannelledInOrderCountedAndShown) {
  ConnectedRig rig;
  rig.EnableOutput();
  rig.UseSink();
  rig.instance->SetOutputRechannel(2);
  rig.Start();
  FakeDataList list({Live(0x90, 60, 3), Live(0x80, 60, 0), Live(0xE0, 0, 64)});
  std::thread host([&] { EXPECT_EQ(rig.instance->OnInput(0, &list), S_OK); });
  host.join();
  ASSERT_TRUE(rig.ports.WaitForSends(3, 2000));
  ASSERT_TRUE(rig.sink.WaitForRecords(3, 2000));
  const auto sent = rig.ports.Sends();
  EXPECT_EQ(sent[0].message, ShortMessage::FromBytes(0x91, 60, 3).message);
  EXPECT_EQ(sent[1].message, ShortMessage::FromBytes(0x81, 60, 0).message);
  EXPECT_EQ(sent[2].message, ShortMessage::FromBytes(0xE1, 0, 64).message);
  EXPECT_EQ(rig.sink.Records()[2].Message(), sent[2].message);
  EXPECT_EQ(Received(rig), 3u);
  ASSERT_TRUE(rig.window.WaitForCount(6, 2000));
  EXPECT_EQ(rig.window.Messages(InputActivityMessage()).size(), 3u);
  EXPECT_EQ(rig.window.Messages(OutputActivityMessage()).size(), 3u);
  rig.Stop();
}

TEST(LiveInput, LevelsComeFromVelocityWithAFloorOfTen) {
  ConnectedRig rig;
  rig.Start();
  FakeDataList list({Live(0x90, 60, 3), Live(0x90, 60, 100), Live(0xC0, 5, 0)});
  rig.instance->OnInput(0, &list);
  std::vector<WPARAM_T> levels;
  for (const auto& p : rig.window.Messages(InputActivityMessage())) levels.push_back(p.wParam);
  EXPECT_EQ(levels, (std::vector<WPARAM_T>{10, 100, 10}));
  rig.Stop();
}

TEST(LiveInput, AnswersForBadListsAndMissingHosts) {
  TestInstance unconnected;
  FakeDataList list({Live(0x90, 1, 1)});
  EXPECT_EQ(unconnected->OnInput(0, nullptr), E_POINTER);
  EXPECT_EQ(unconnected->OnInput(0, &list), E_UNEXPECTED);

  ConnectedRig rig;
  FakeDataList failing({Live(0x90, 1, 1), Live(0x90, 2, 2), Live(0x90, 3, 3)});
  failing.FailAt(1);
  EXPECT_EQ(rig.instance->OnInput(0, &failing), E_FAIL);
  EXPECT_EQ(Received(rig), 1u) << "items before the failure stay handled";
  FakeDataList empty;
  EXPECT_EQ(rig.instance->OnInput(0, &empty), S_OK);
}

// The worker is woken once a list is over, however it ends: what was handled before a failing
// item goes out, and the next list is not held up behind it.
TEST(LiveInput, WhatPrecedesAFailingItemGoesOutInOrder) {
  ConnectedRig rig;
  rig.EnableOutput();
  rig.Start();
  FakeDataList failing({Live(0x90, 1, 1), Live(0x90, 2, 2), Live(0x90, 3, 3)});
  failing.FailAt(2);
  EXPECT_EQ(rig.instance->OnInput(0, &failing), E_FAIL);
  ASSERT_TRUE(rig.ports.WaitForSends(2, 2000));
  FakeDataList next({Live(0x80, 1, 0)});
  EXPECT_EQ(rig.instance->OnInput(0, &next), S_OK);
  ASSERT_TRUE(rig.ports.WaitForSends(3, 2000));
  const auto sent = rig.ports.Sends();
  EXPECT_EQ(sent[0].message, Live(0x90, 1, 1).message);
  EXPECT_EQ(sent[1].message, Live(0x90, 2, 2).message);
  EXPECT_EQ(sent[2].message, Live(0x80, 1, 0).message);
  rig.Stop();
}

}  // namespace
