// MIDI clock from the audio stream: its interval, one clock per buffer at most, backward jumps,
// and its way out through the worker to the sink, never rechannelled.
#include <gtest/gtest.h>

#include "core/activity.h"
#include "tests/support/test_instance.h"

namespace {

constexpr std::uint32_t kClock = 0xF8;
constexpr std::uint32_t kMark = 0xFE;  // posted after each buffer, to tell buffers apart

// An instance with MIDI sync on whose host converts exactly: ConnectedRig::kSamplesPerTick samples
// a tick. The sink sees everything that goes out, in order.
class MidiClock : public ::testing::Test {
 protected:
  void SetUp() override {
    rig.EnableOutput();
    rig.UseSink();
    rig.instance->SetMIDISync(1);
    rig.instance->SetOutputRechannel(3);
    rig.Start();
  }
  void TearDown() override { rig.Stop(); }

  // For each buffer start (in ticks), whether it sent a clock.
  std::vector<bool> ClocksAt(const std::vector<std::int32_t>& ticks) {
    for (const std::int32_t tick : ticks) {
      rig.instance->SendClockIfDue(std::int64_t{tick} * ConnectedRig::kSamplesPerTick);
      rig.instance->PostToWorker(CStoredEvent::FromMessage({0, kMark}));
    }
    return Pattern(ticks.size());
  }
  // Reads the sink's next records into one flag per mark.
  std::vector<bool> Pattern(std::size_t marks) {
    std::vector<bool> clocked;
    bool pending = false;
    while (clocked.size() < marks && rig.sink.WaitForRecords(consumed + 1, 2000)) {
      const std::uint32_t message = rig.sink.Records()[consumed++].Message();
      if (message == kClock) pending = true;
      if (message == kMark) clocked.push_back(std::exchange(pending, false));
    }
    return clocked;
  }
  static std::vector<std::int32_t> Every(std::int32_t step, std::int32_t count,
                                         std::int32_t from = 0) {
    std::vector<std::int32_t> ticks;
    for (std::int32_t i = 0; i < count; ++i) ticks.push_back(from + i * step);
    return ticks;
  }

  ConnectedRig rig{true, true};
  std::size_t consumed = 0;
};

TEST_F(MidiClock, ComesEveryFourthBufferOfFiveTicksAt480TicksPerQuarter) {
  const auto clocked = ClocksAt(Every(5, 13));
  EXPECT_EQ(clocked, (std::vector<bool>{false, false, false, false, true, false, false, false,
                                        true, false, false, false, true}));
  const auto records = rig.sink.Records();
  EXPECT_EQ(records[4].Message(), kClock) << "a system message is never rechannelled";
  ASSERT_TRUE(rig.ports.WaitForSends(records.size(), 2000));
  for (const auto& posted : rig.window.Messages(OutputActivityMessage()))
    EXPECT_EQ(posted.wParam, 10u);
}

TEST_F(MidiClock, LongBuffersSendOneClockEachSoTheRateFalls) {
  const auto clocked = ClocksAt(Every(50, 25));
  EXPECT_FALSE(clocked[0]);
  EXPECT_EQ(std::count(clocked.begin(), clocked.end(), true), 24) << "24 clocks took 1200 ticks";

  rig.tempoMap.SetTicksPerQuarter(12);  // an interval of 0: a clock with every buffer
  EXPECT_EQ(ClocksAt({1200, 1200}), (std::vector<bool>{true, true}));
}

TEST_F(MidiClock, AfterALoopBackToZeroCountsAgainFromThere) {
  EXPECT_EQ(ClocksAt({9600, 0, 10, 19, 20}), (std::vector<bool>{true, false, false, false, true}));
}

TEST_F(MidiClock, NeedsOutputEnabledSyncAndAHost) {
  rig.instance->SetOutputEnabled(0);
  EXPECT_EQ(ClocksAt({100}), std::vector<bool>{false});
  rig.instance->SetOutputEnabled(1);
  rig.instance->SetMIDISync(0);
  EXPECT_EQ(ClocksAt({200}), std::vector<bool>{false});
  rig.instance->SetMIDISync(1);
  rig.instance->Disconnect();
  rig.UseSink();
  EXPECT_EQ(ClocksAt({300}), std::vector<bool>{false});
}

TEST(MidiClockStream, EachReceivedBufferClocksAtItsStartPosition) {
  AudioRig rig(MakeWaveFormat(WAVE_FORMAT_IEEE_FLOAT_TAG, 1, 48000, 32), {}, {}, true);
  rig.host.EnableOutput();
  rig.host.instance->SetMIDISync(1);
  ASSERT_EQ(rig.Connect(), S_OK);
  rig.Pause();
  const std::vector<float> fiveTicks(5 * ConnectedRig::kSamplesPerTick);
  for (int i = 0; i < 5; ++i) rig.source.PushFloats(fiveTicks);
  rig.host.instance->SendTestMessage(kMark);
  ASSERT_TRUE(rig.host.ports.WaitForSends(2, 2000));
  EXPECT_EQ(rig.host.ports.Sends()[0].message, kClock) << "the fifth buffer starts at tick 20";
  EXPECT_EQ(rig.host.ports.Sends()[1].message, kMark);
}

}  // namespace
