// The sequenced line: which timed events a window takes, how the mixing state adjusts them, how
// note-offs close open notes, and what the transport drops.
#include <gtest/gtest.h>

#include "tests/support/test_instance.h"

namespace {

constexpr std::uint32_t kOpen = 0xFFFFFFFF;
constexpr std::int32_t kKey = 7;  // the channel key the events come with

HostEventRecord Note(std::int32_t tick, std::uint8_t key, std::uint8_t velocity,
                     std::uint32_t duration) {
  HostEventRecord r{};
  r.time = tick;
  r.kind = HostEventRecord::kNote;
  r.channel = 3;
  r.key = key;
  r.velocity = velocity;
  r.duration = duration;
  return r;
}

HostEventRecord Message(std::int32_t tick, std::uint32_t message) {
  HostEventRecord r{};
  r.time = tick;
  r.kind = HostEventRecord::kShortMessage;
  r.SetMessage(message);
  return r;
}

// An instance whose host converts exactly: one tick is ConnectedRig::kSamplesPerTick samples.
class EventWindow : public ::testing::Test {
 protected:
  static constexpr std::int32_t kTick = ConnectedRig::kSamplesPerTick;

  HRESULT Send(std::vector<HostEventRecord> records, std::int32_t channelKey = kKey) {
    FakeEventList list(std::move(records));
    return rig.instance->OnEvents(0, 0, channelKey, &list);
  }
  void Notify(std::uint32_t kind, std::int32_t channelKey, std::uint8_t value,
              std::uint8_t mask = 0) {
    const ChannelStateMessage m{kind, channelKey, value, mask};
    EXPECT_EQ(rig.instance->OnNotify(&m), S_OK);
  }
  std::vector<std::uint32_t> Times(const std::vector<HostEventRecord>& records) {
    std::vector<std::uint32_t> ticks;
    for (const HostEventRecord& r : records) ticks.push_back(static_cast<std::uint32_t>(r.time));
    return ticks;
  }

  ConnectedRig rig{true, true};
};

TEST_F(EventWindow, TakesFromItsStartUpToButNotIncludingItsEndKeepingTheRestInOrder) {
  ASSERT_EQ(Send({Note(5, 60, 1, kOpen), Note(0, 61, 1, kOpen), Note(7, 62, 1, kOpen),
                  Message(4, 0x00407F90)}),
            S_OK);
  ASSERT_EQ(rig.instance->RunEventWindow(5 * kTick), S_OK);
  EXPECT_EQ(Times(rig.instance->Voices()), (std::vector<std::uint32_t>{0, 4}));
  EXPECT_EQ(Times(rig.instance->PendingEvents()), (std::vector<std::uint32_t>{5, 7}));

  const HostEventRecord taken = rig.instance->Voices()[0];
  EXPECT_EQ(std::int32_t{taken.channelKey}, kKey);
  EXPECT_EQ(std::int64_t{taken.sampleTime}, 0);
  EXPECT_EQ(std::uint32_t{taken.flagsLow}, 0u);
  EXPECT_EQ(std::uint32_t{taken.flagsHigh}, 2u);
  EXPECT_EQ(taken.channel, 15) << "every event that passes gets channel 15, not its own 3";
  EXPECT_EQ(rig.instance->Voices()[1].Message(), 0x00407F90u);
  EXPECT_EQ(rig.instance->ChannelStateOf(kKey)->channel, 15);
}

TEST_F(EventWindow, EventsBehindTheStreamStayPendingUntilStartOrStop) {
  rig.instance->OnStart(10);  // the stream starts at tick 10: tick 0 lies behind it for ever
  Send({Note(0, 60, 1, kOpen)});
  rig.instance->RunEventWindow(100 * kTick);
  EXPECT_TRUE(rig.instance->Voices().empty());
  EXPECT_EQ(rig.instance->PendingEvents().size(), 1u);
  rig.instance->OnStop(0);
  EXPECT_TRUE(rig.instance->PendingEvents().empty());

  rig.instance->OnLoop(20, 0);  // from tick 20 back to 0: later events move 20 ticks earlier
  Send({Note(30, 60, 1, kOpen)});
  rig.instance->RunEventWindow(1);
  EXPECT_EQ(rig.instance->Voices().size(), 1u) << "30 - 20 - 10 puts it at the stream's start";
  rig.instance->OnStart(0);
  EXPECT_TRUE(rig.instance->Voices().empty());
}

TEST_F(EventWindow, OffsetsAreSignedAndClampKeyAndVelocityIncludingNoteOffs) {
  Notify(ChannelStateMessage::kKeyOffset1, 1, 5);
  Notify(ChannelStateMessage::kKeyOffset2, 1, 5);
  Notify(ChannelStateMessage::kVelocityOffset1, 1, 0xFF);  // -1
  Notify(ChannelStateMessage::kKeyOffset1, 2, 0xFB);       // -5
  Notify(ChannelStateMessage::kVelocityOffset2, 2, 127);
  Send({Note(0, 120, 100, kOpen), Note(0, 50, 1, kOpen), Note(1, 120, 0, 0)}, 1);
  Send({Note(0, 3, 100, 480)}, 2);
  rig.instance->RunEventWindow(10 * kTick);

  const auto voices = rig.instance->Voices();
  ASSERT_EQ(voices.size(), 3u) << "the note-off was adjusted to 127 too, so it matched";
  EXPECT_EQ(voices[0].key, 127);
  EXPECT_EQ(voices[0].velocity, 99);
  EXPECT_EQ(std::uint32_t{voices[0].duration}, 0u);
  EXPECT_EQ(voices[1].key, 60);
  EXPECT_EQ(std::uint32_t{voices[1].duration}, kOpen);
  EXPECT_EQ(voices[2].key, 0);
  EXPECT_EQ(voices[2].velocity, 127);
}

TEST_F(EventWindow, MuteBitEightDropsNotesButLetsOtherEventsThrough) {
  Notify(ChannelStateMessage::kMuteBits, kKey, 8, 0xFF);
  Send({Note(0, 60, 100, kOpen), Message(0, 0x00407FB0)});
  rig.instance->RunEventWindow(kTick);
  ASSERT_EQ(rig.instance->Voices().size(), 1u);
  EXPECT_EQ(std::uint32_t{rig.instance->Voices()[0].kind}, HostEventRecord::kShortMessage);

  HostEventRecord unmute{};
  unmute.time = 0;
  unmute.kind = HostEventRecord::kMuteMask;
  unmute.channel = 8;  // the bits to clear
  Send({unmute, Note(0, 61, 100, kOpen)});
  rig.instance->RunEventWindow(kTick);
  EXPECT_EQ(rig.instance->ChannelStateOf(kKey)->muteBits, 0);
  EXPECT_EQ(rig.instance->Voices().back().key, 61) << "unmuted by the event before it";
}

TEST_F(EventWindow, ANoteOffClosesOneOpenNoteOfItsKeyPerPassOldestFirst) {
  Send({Note(0, 60, 1, kOpen), Note(0, 60, 2, kOpen), Note(0, 61, 3, kOpen), Note(0, 60, 0, 0)});
  rig.instance->RunEventWindow(kTick);
  auto voices = rig.instance->Voices();
  ASSERT_EQ(voices.size(), 3u);
  EXPECT_EQ(std::uint32_t{voices[0].duration}, 0u) << "the older note closes first";
  EXPECT_EQ(std::uint32_t{voices[1].duration}, kOpen);
  EXPECT_EQ(std::uint32_t{voices[2].duration}, kOpen) << "another key is left alone";

  rig.instance->RunEventWindow(kTick);
  voices = rig.instance->Voices();
  ASSERT_EQ(voices.size(), 2u);
  EXPECT_EQ(voices[0].velocity, 2);
  EXPECT_EQ(std::uint32_t{voices[0].duration}, 0u)
      << "the closed note closes the next one in the next pass";

  rig.instance->RunEventWindow(kTick);
  ASSERT_EQ(rig.instance->Voices().size(), 1u);
  EXPECT_EQ(rig.instance->Voices()[0].key, 61);
}

TEST_F(EventWindow, AFailingListKeepsWhatCameBeforeAndMissingHostsAreRefused) {
  FakeEventList failing({Note(0, 1, 1, kOpen), Note(0, 2, 1, kOpen), Note(0, 3, 1, kOpen)});
  failing.FailAt(2);
  EXPECT_EQ(rig.instance->OnEvents(0, 0, kKey, &failing), E_FAIL);
  EXPECT_EQ(rig.instance->PendingEvents().size(), 2u);
  EXPECT_EQ(rig.instance->OnEvents(0, 0, kKey, nullptr), E_POINTER);
  FakeEventList noCount;
  noCount.FailCount(E_OUTOFMEMORY);
  EXPECT_EQ(rig.instance->OnEvents(0, 0, kKey, &noCount), E_OUTOFMEMORY);

  TestInstance unconnected;
  FakeEventList list({Note(0, 1, 1, kOpen)});
  EXPECT_EQ(unconnected->OnEvents(0, 0, kKey, &list), E_UNEXPECTED);
}

TEST_F(EventWindow, NotifyIgnoresUnknownKindsAndSetsChannelAndMuteThroughTheMask) {
  Notify(6, 1, 9);
  EXPECT_FALSE(rig.instance->ChannelStateOf(1).has_value());
  Notify(ChannelStateMessage::kChannel, 1, 9);
  EXPECT_EQ(rig.instance->ChannelStateOf(1)->channel, 9);
  Notify(ChannelStateMessage::kMuteBits, 1, 0x05, 0xFF);
  Notify(ChannelStateMessage::kMuteBits, 1, 0x02, 0x01);
  EXPECT_EQ(rig.instance->ChannelStateOf(1)->muteBits, 0x06);
  EXPECT_EQ(rig.instance->OnNotify(nullptr), S_OK);
}

}  // namespace
