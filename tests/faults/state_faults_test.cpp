// A host's stream that fails while a state is read: at every byte of the frame, the load
// answers the stream's failure and the instance keeps the state it had.
#include <gtest/gtest.h>

#include "platform/streams.h"
#include "tests/faults/fault_tally.h"
#include "tests/support/fake_stream.h"
#include "tests/support/test_instance.h"

namespace {

std::vector<std::uint8_t> Saved(CFilter& instance) {
  auto stream = ComPtr<CMemoryStream>::Attach(CMemoryStream::Create());
  EXPECT_EQ(instance.Save(stream.Get(), 1), S_OK);
  return stream->Bytes();
}

// An instance with something in every part of its state.
void Furnish(ConnectedRig& rig, std::uint8_t note) {
  rig.ports.SetOutputs({L"Out A", L"Out B"});
  rig.instance->SelectOutputPort(note % 2 ? L"Out A" : L"Out B");
  rig.instance->SetOutputEnabled(1);
  rig.instance->SetOutputRechannel(note % 16);
  rig.instance->SetMIDISync(note % 2);
  const std::uint8_t prefix[] = {0xF0, 0x43, note};
  rig.instance->SetSysexPrefix(prefix, sizeof prefix);
  for (std::uint8_t i = 0; i < 3; ++i) {
    CStoredEvent event = CStoredEvent::FromMessage(ShortMessage::FromBytes(0x90, note, i));
    rig.instance->InsertEvent(i, &event);
  }
}

TEST(StateFaults, AReadFailingAtAnyByteLeavesTheEarlierState) {
  ConnectedRig source, target;
  Furnish(source, 61);
  Furnish(target, 40);
  const std::vector<std::uint8_t> incoming = Saved(source.instance.filter());
  const std::vector<std::uint8_t> earlier = Saved(target.instance.filter());
  ASSERT_NE(incoming, earlier);
  for (std::uint64_t at = 0; at < incoming.size(); ++at) {
    FakeStream stream(incoming);
    stream.FailReadsAt(at, STG_E_READFAULT);
    EXPECT_EQ(target.instance->Load(&stream), STG_E_READFAULT) << "read failing at byte " << at;
    ASSERT_EQ(Saved(target.instance.filter()), earlier) << "read failing at byte " << at;
  }
  CountFaults(static_cast<long>(incoming.size()));
  FakeStream whole(incoming);
  EXPECT_EQ(target.instance->Load(&whole), S_OK);
  EXPECT_EQ(Saved(target.instance.filter()), incoming);
}

}  // namespace
