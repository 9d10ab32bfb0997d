// The host's side failing under an instance: ports that refuse sends, vanish while their list
// is walked or block inside a send, a sink that refuses, a host that goes in the middle of a
// batch. Each gives its documented result, and what worked before goes on working after.
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "platform/streams.h"
#include "tests/faults/fault_tally.h"
#include "tests/support/test_instance.h"

namespace {

using namespace std::chrono_literals;

CStoredEvent Message(std::uint8_t status, std::uint8_t d1, std::uint8_t d2) {
  return CStoredEvent::FromMessage(ShortMessage::FromBytes(status, d1, d2));
}

std::uint32_t Packed(std::uint8_t status, std::uint8_t d1, std::uint8_t d2) {
  return ShortMessage::FromBytes(status, d1, d2).message;
}

std::uint32_t Sent(ConnectedRig& rig) {
  std::uint32_t received = 0, sent = 0;
  rig.instance->GetEventCounters(&received, &sent, 0);
  return sent;
}

template <class Predicate>
bool Eventually(Predicate done) {
  const auto deadline = std::chrono::steady_clock::now() + 5s;
  while (!done()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(1ms);
  }
  return true;
}

TEST(PortFaults, RefusedSendsAreNotCountedAndTheNextOnesGoOut) {
  ConnectedRig rig;
  rig.EnableOutput();
  rig.UseSink();
  rig.Start();
  rig.ports.FailShortSends(true);
  rig.ports.FailSysexSends(true);
  CountFaults(4);
  rig.instance->PostToWorker(Message(0x90, 1, 1));
  rig.instance->PostToWorker(Message(0x90, 2, 2));
  const std::uint8_t block[] = {0xF0, 0x01, 0xF7};
  rig.instance->SendSysexData(0, block, sizeof block);
  rig.instance->PostToWorker(Message(0x90, 3, 3));
  ASSERT_TRUE(rig.ports.WaitForSendsBegun(4, 5000));
  ASSERT_TRUE(rig.sink.WaitForRecords(3, 5000));
  EXPECT_TRUE(Eventually([&] { return Sent(rig) == 1; })) << "only the sysex counts";
  EXPECT_EQ(rig.ports.SendCount(), 0u);

  rig.ports.FailShortSends(false);
  rig.instance->PostToWorker(Message(0x90, 4, 4));
  ASSERT_TRUE(rig.ports.WaitForSends(1, 5000));
  EXPECT_EQ(rig.ports.Sends()[0].message, Packed(0x90, 4, 4));
  EXPECT_TRUE(Eventually([&] { return Sent(rig) == 2; }));
  rig.Stop();
}

TEST(PortFaults, ASinkThatRefusesWithNoPortCountsNothingUntilItTakesAgain) {
  ConnectedRig rig(false);  // a host without ports: the sink is the only target
  rig.UseSink();
  rig.Start();
  rig.sink.Fail(true);
  CountFaults(2);
  rig.instance->PostToWorker(Message(0x90, 1, 1));
  rig.instance->PostToWorker(Message(0x90, 2, 2));
  ASSERT_TRUE(rig.sink.WaitForRecords(2, 5000));
  rig.sink.Fail(false);
  rig.instance->PostToWorker(Message(0x90, 3, 3));
  ASSERT_TRUE(rig.sink.WaitForRecords(3, 5000));
  EXPECT_TRUE(Eventually([&] { return Sent(rig) == 1; }));
  rig.Stop();
  EXPECT_EQ(Sent(rig), 1u);
}

// The list is shorter by the time its names are read: the port looked for is not found, a box
// says so, and the earlier choice stands.
TEST(PortFaults, PortsThatVanishWhileTheListIsWalkedLeaveTheEarlierChoice) {
  ConnectedRig rig;
  MessageBoxRecorder boxes;
  rig.ports.SetOutputs({L"Out A", L"Out B"});
  rig.ports.SetInputs({L"In A", L"In B"});
  ASSERT_EQ(rig.instance->SelectOutputPort(L"Out A"), S_OK);
  ASSERT_EQ(rig.instance->SelectInputPort(L"In A"), S_OK);
  rig.instance->SetOutputEnabled(1);

  rig.ports.VanishAfterNextCount(1);
  EXPECT_EQ(rig.instance->SelectOutputPort(L"Out B"), E_FAIL);
  rig.ports.SetInputs({L"In A", L"In B"});
  rig.ports.VanishAfterNextCount(1);
  EXPECT_EQ(rig.instance->SelectInputPort(L"In B"), E_FAIL);
  CountFaults(2);
  EXPECT_EQ(boxes.Boxes().size(), 2u);
  std::int32_t index = -1;
  EXPECT_EQ(rig.instance->GetOutputPortIndex(&index), S_OK);
  EXPECT_EQ(index, 0);
  EXPECT_EQ(rig.instance->GetInputPortIndex(&index), S_OK);
  EXPECT_EQ(index, 0);

  // A saved state that names "Out B" by its id: the id walk meets the vanished port, finds
  // nothing, and leaves the choice quietly.
  ConnectedRig saver;
  saver.ports.SetOutputs({L"Out A", L"Out B"});
  ASSERT_EQ(saver.instance->SelectOutputPort(L"Out B"), S_OK);
  saver.instance->SetOutputEnabled(1);
  auto state = ComPtr<CMemoryStream>::Attach(CMemoryStream::Create());
  ASSERT_EQ(saver.instance->Save(state.Get(), 1), S_OK);
  auto load = ComPtr<CMemoryStream>::Attach(
      CMemoryStream::Create(state->Bytes().data(), state->Bytes().size()));
  rig.ports.SetOutputs({L"Out A", L"Out B"});
  rig.ports.VanishAfterNextCount(1);
  CountFaults();
  EXPECT_EQ(rig.instance->Load(load.Get()), S_OK);
  EXPECT_EQ(rig.instance->GetOutputPortIndex(&index), S_OK);
  EXPECT_EQ(index, 0);
  EXPECT_EQ(boxes.Boxes().size(), 2u);
}

// A slow driver holds one send for a while. Stop still returns at once, what was posted meanwhile
// is neither lost nor reordered, and another instance's sends wait their turn at the shared port
// lock instead of overtaking or failing.
TEST(PortFaults, ASendThatBlocksDelaysButLosesNothing) {
  ConnectedRig slow, other;
  slow.EnableOutput();
  other.EnableOutput();
  slow.ports.BlockSends(300ms);
  CountFaults(3);
  slow.Start();
  other.Start();
  slow.instance->PostToWorker(Message(0x90, 1, 1));
  ASSERT_TRUE(slow.ports.WaitForSendsBegun(1, 5000));
  slow.instance->PostToWorker(Message(0x90, 2, 2));
  slow.instance->PostToWorker(Message(0x90, 3, 3));
  other.instance->PostToWorker(Message(0x80, 9, 0));
  ASSERT_TRUE(other.ports.WaitForSends(1, 5000));
  ASSERT_TRUE(slow.ports.WaitForSends(3, 5000));
  const auto sends = slow.ports.Sends();
  EXPECT_EQ(sends[0].message, Packed(0x90, 1, 1));
  EXPECT_EQ(sends[1].message, Packed(0x90, 2, 2));
  EXPECT_EQ(sends[2].message, Packed(0x90, 3, 3));

  // Margins are wide so that a loaded machine cannot blur "waited for the send" and "did not".
  slow.ports.BlockSends(1500ms);
  slow.instance->PostToWorker(Message(0x90, 4, 4));
  ASSERT_TRUE(slow.ports.WaitForSendsBegun(4, 5000));
  const auto t0 = std::chrono::steady_clock::now();
  slow.Stop();
  EXPECT_LT(std::chrono::steady_clock::now() - t0, 750ms) << "Stop waited for the send";
  ASSERT_TRUE(slow.ports.WaitForSends(4, 5000)) << "the send in hand is finished";
  EXPECT_TRUE(Eventually([&] { return Sent(slow) == 4; }));
  slow.instance.Destroy();  // with the worker ended, nothing is left to wait for
  other.Stop();
}

// The host disconnects while the worker is inside a send of a batch: that send finishes, the
// rest of the batch goes nowhere, and no reference of the host is kept.
TEST(PortFaults, AHostThatDisconnectsDuringABatchIsLetGoAndTheRestGoesNowhere) {
  ConnectedRig rig;
  rig.EnableOutput();
  rig.UseSink();
  rig.ports.BlockSends(200ms);
  rig.Start();
  rig.ports.HoldHandleQueries(true);  // the three posts below make one batch
  rig.instance->PostToWorker(Message(0x90, 1, 1));
  ASSERT_TRUE(rig.ports.WaitForHandleQueries(1, 5000));
  rig.instance->PostToWorker(Message(0x90, 2, 2));
  rig.instance->PostToWorker(Message(0x90, 3, 3));
  rig.ports.HoldHandleQueries(false);
  ASSERT_TRUE(rig.ports.WaitForHandleQueries(2, 5000));
  ASSERT_TRUE(rig.ports.WaitForSendsBegun(2, 5000));  // the second batch's first send
  rig.instance->Disconnect();
  CountFaults();
  EXPECT_TRUE(Eventually([&] { return rig.ports.RefCount() == 0 && rig.sink.RefCount() == 0; }))
      << "ports held " << rig.ports.RefCount() << " times, the sink " << rig.sink.RefCount();
  ASSERT_TRUE(rig.ports.WaitForSends(2, 5000)) << "the send in hand is finished";
  std::this_thread::sleep_for(300ms);
  EXPECT_EQ(rig.ports.SendCount(), 2u) << "the batch went on to a host that was gone";
  rig.Stop();
}

}  // namespace
