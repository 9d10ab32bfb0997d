// The host's own parts apart from a run: the context's tempo and time conversion, the sink
// record, the ring that carries input off the real-time thread, and rack files read back as
// written or refused with the reason.
#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "host/context/host_context.h"
#include "host/midi/message_ring.h"
#include "host/midi/virtual_midi_ports.h"
#include "host/rack/rack_file.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

struct CNoListener final : CMidiPortListener {
  void OnPortSend(std::int32_t, std::span<const std::uint8_t>) override {}
};

class HostContextTest : public ::testing::Test {
 protected:
  CNoListener m_listener;
  CVirtualMidiPorts m_ports{2, m_listener};
  ComPtr<CHostContext> m_context = CHostContext::Create(
      std::make_shared<CHostTempo>(HostTiming{120.0, 48000}), &m_ports);
};

TEST_F(HostContextTest, TempoMapAndConverterAgreeAtTheRunsTempoAndRate) {
  EXPECT_EQ(m_context->GetTicksPerQuarter(), 480);
  EXPECT_EQ(m_context->TicksToMsecs(480), 500);  // a quarter at 120 bpm
  EXPECT_EQ(m_context->MsecsToTicks(1000), 960);
  EXPECT_EQ(m_context->TicksToMsecs(-480), -500);

  HostTimeValue time{HostTimeValue::kSamples, 0, 48000};
  ASSERT_EQ(m_context->ConvertTime(&time, HostTimeValue::kTicks), S_OK);
  EXPECT_EQ(time.format, HostTimeValue::kTicks);
  EXPECT_EQ(time.value, 960);
  ASSERT_EQ(m_context->ConvertTime(&time, HostTimeValue::kSamples), S_OK);
  EXPECT_EQ(time.value, 48000);

  EXPECT_EQ(m_context->ConvertTime(&time, 7), E_INVALIDARG);
  EXPECT_EQ(m_context->ConvertTime(nullptr, HostTimeValue::kTicks), E_POINTER);
}

TEST_F(HostContextTest, PassesPortsAndSinkRecordsThrough) {
  wchar_t name[kPortNameCapacity];
  ASSERT_EQ(m_context->GetOutputPortName(1, name, kPortNameCapacity), S_OK);
  EXPECT_STREQ(name, L"Virtual Out 2");
  std::int32_t id = 0;
  EXPECT_EQ(m_context->GetInputPortId(0, &id), S_OK);
  EXPECT_EQ(id, 1000);

  HostEventRecord record{};
  record.SetMessage(0x00643AB0);
  EXPECT_EQ(m_context->OnSinkEvent(nullptr, &record), S_OK);
  EXPECT_EQ(m_context->SinkMessages(), std::vector<std::uint32_t>{0x00643AB0});
}

TEST_F(HostContextTest, ATempoChangeGoesOnFromTheTickReachedAndNotesTheInputInUse) {
  auto tempo = std::make_shared<CHostTempo>(HostTiming{120.0, 48000});
  ComPtr<CHostContext> context = CHostContext::Create(tempo, &m_ports);
  tempo->Change(60.0, 48000);  // one second in: tick 960
  HostTimeValue time{HostTimeValue::kSamples, 0, 96000};
  ASSERT_EQ(context->ConvertTime(&time, HostTimeValue::kTicks), S_OK);
  EXPECT_EQ(time.value, 960 + 480);  // then half as fast
  EXPECT_EQ(context->TicksToMsecs(480), 1000);
  ASSERT_EQ(context->ConvertTime(&time, HostTimeValue::kSamples), S_OK);
  EXPECT_EQ(time.value, 96000);

  EXPECT_FALSE(context->InputPortId());
  context->UseInputPort(1001);
  EXPECT_EQ(context->InputPortId(), 1001);
}

std::vector<std::uint8_t> Message(std::size_t length, std::uint8_t first) {
  std::vector<std::uint8_t> bytes(length);
  for (std::size_t i = 0; i < length; ++i) bytes[i] = static_cast<std::uint8_t>(first + i);
  return bytes;
}

TEST(MessageRing, MessagesComeOutWholeAndInOrderAcrossTheWrap) {
  CMessageRing ring(64);
  std::vector<std::uint8_t> out;
  std::int64_t time = 0;
  for (std::uint8_t round = 0; round < 20; ++round) {  // 20 x 23 bytes: the ring wraps often
    ASSERT_TRUE(ring.Push(Message(3, round), round));
    ASSERT_TRUE(ring.Push(Message(10, round), -round));
    ASSERT_TRUE(ring.Pop(out, time));
    EXPECT_EQ(out, Message(3, round));
    EXPECT_EQ(time, round);
    ASSERT_TRUE(ring.Pop(out, time));
    EXPECT_EQ(out, Message(10, round));
    EXPECT_EQ(time, -round);
  }
  EXPECT_FALSE(ring.Pop(out, time));
  EXPECT_EQ(ring.Dropped(), 0u);
}

TEST(MessageRing, WhatDoesNotFitIsCountedNotCut) {
  CMessageRing ring(64);
  ASSERT_TRUE(ring.Push(Message(40, 0), 1));
  EXPECT_FALSE(ring.Push(Message(20, 0), 2));  // 30 bytes with its header; 14 are free
  EXPECT_TRUE(ring.Push(Message(4, 9), 3));
  EXPECT_FALSE(ring.Push(Message(CMessageRing::kMaxMessage + 1, 0), 4));
  EXPECT_EQ(ring.Dropped(), 2u);
  std::vector<std::uint8_t> out;
  std::int64_t time = 0;
  ASSERT_TRUE(ring.Pop(out, time));
  EXPECT_EQ(out.size(), 40u);
  ASSERT_TRUE(ring.Pop(out, time));
  EXPECT_EQ(out, Message(4, 9));
  EXPECT_FALSE(ring.Pop(out, time));
}

TEST(MessageRing, AProducerAndAConsumerOnTwoThreadsSeeEveryMessageOnce) {
  CMessageRing ring(256);
  constexpr std::int64_t kCount = 20000;
  std::thread producer([&] {
    for (std::int64_t i = 0; i < kCount;) {
      const auto length = static_cast<std::size_t>(1 + i % 7);
      if (ring.Push(Message(length, static_cast<std::uint8_t>(i)), i)) ++i;
    }
  });
  std::vector<std::uint8_t> out;
  std::int64_t time = 0;
  for (std::int64_t expected = 0; expected < kCount;) {
    if (!ring.Pop(out, time)) continue;
    ASSERT_EQ(time, expected);
    ASSERT_EQ(out, Message(static_cast<std::size_t>(1 + expected % 7),
                           static_cast<std::uint8_t>(expected)));
    ++expected;
  }
  producer.join();
}

// A host that runs for hours must not keep every message it was handed.
TEST_F(HostContextTest, TheSinkCountsEverythingAndKeepsOnlyTheLatest) {
  HostEventRecord record{};
  const std::size_t total = CHostContext::kSinkKept + 5;
  for (std::uint32_t i = 0; i < total; ++i) {
    record.SetMessage(0x90 | i << 8);
    ASSERT_EQ(m_context->OnSinkEvent(nullptr, &record), S_OK);
  }
  EXPECT_EQ(m_context->SinkCount(), static_cast<std::int64_t>(total));
  const auto kept = m_context->SinkMessages();
  ASSERT_EQ(kept.size(), CHostContext::kSinkKept);
  EXPECT_EQ(kept.front(), 0x90u | 5u << 8);
  EXPECT_EQ(kept.back(), 0x90u | (total - 1) << 8);
}

class RackFileTest : public ::testing::Test {
 protected:
  fs::path Write(const std::string& text) { return m_folder.Write("rack.json", text); }
  fs::path RackPath() const { return m_folder.Path() / "rack.json"; }
  TempFolder m_folder;
};

TEST_F(RackFileTest, SavedRackReadsBackWithEverySettingAndStateByte) {
  Rack rack;
  rack.settings = {44100, 256, 98.5, 4, "virtual", "offline"};
  std::vector<std::uint8_t> bytes(256);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i);
  rack.instances = {{"Lead \"one\"", "{D8DF3849-A01D-4254-A57D-5515BF9E3886}", bytes, {}, {}, {}},
                    {"Empty", "{D8DF3849-A01D-4254-A57D-5515BF9E3886}", {}, {}, {}, {}}};
  std::string error;
  ASSERT_TRUE(SaveRackFile(RackPath(), rack, error)) << error;
  const auto loaded = LoadRackFile(RackPath(), error);
  ASSERT_TRUE(loaded) << error;
  EXPECT_EQ(loaded->settings.sampleRate, 44100);
  EXPECT_EQ(loaded->settings.bufferFrames, 256);
  EXPECT_EQ(loaded->settings.beatsPerMinute, 98.5);
  EXPECT_EQ(loaded->settings.midiPorts, 4);
  ASSERT_EQ(loaded->instances.size(), 2u);
  EXPECT_EQ(loaded->instances[0].name, "Lead \"one\"");
  EXPECT_EQ(loaded->instances[0].state, bytes);
  EXPECT_TRUE(loaded->instances[1].state.empty());
  EXPECT_FALSE(fs::exists(m_folder.Path() / "rack.json.saving"));
}

TEST_F(RackFileTest, SettingsOutOfRangeOrOfTheWrongTypeRefuseTheFile) {
  const std::string head = R"({"format":"tarn-rack","version":1,"instances":[],"settings":)";
  const std::pair<const char*, const char*> cases[] = {
      {R"({"sampleRate":100})", "\"sampleRate\" must lie between 8000 and 384000"},
      {R"({"bufferFrames":0})", "\"bufferFrames\" must lie between 16 and 65536"},
      {R"({"bpm":0})", "\"bpm\" must lie between 1 and 1000"},
      {R"({"midiPorts":1000})", "\"midiPorts\" must lie between 1 and 64"},
      {R"({"bpm":"fast"})", "type must be number"},
      {R"({"sampleRate":44E100})", "\"sampleRate\" must be a whole number"},
      {R"({"midiPorts":2.5})", "\"midiPorts\" must be a whole number"},
      {R"({"bufferFrames":4294967552})", "\"bufferFrames\" must be a whole number"},
  };
  for (const auto& [settings, why] : cases) {
    std::string error;
    EXPECT_FALSE(LoadRackFile(Write(head + settings + "}"), error));
    EXPECT_NE(error.find(why), std::string::npos) << error;
    EXPECT_EQ(error.rfind("rack file " + RackPath().string() + " is not valid: ", 0),
              0u);
  }
}

TEST_F(RackFileTest, AFaultyEntryIsMarkedAndTheOthersKept) {
  std::string error;
  const auto rack = LoadRackFile(Write(R"({"format":"tarn-rack","version":1,"instances":[
      7, {"name":"NoClass"}, {"class":"{X}","state":"abc"}, {"class":"{X}","state":"0aFF"}]})"),
                                 error);
  ASSERT_TRUE(rack) << error;
  ASSERT_EQ(rack->instances.size(), 4u);
  EXPECT_EQ(rack->instances[0].problem, "the entry is not an object");
  EXPECT_EQ(rack->instances[1].problem, "the entry has no \"class\"");
  EXPECT_EQ(rack->instances[2].problem, "its \"state\" is not hex text");
  EXPECT_EQ(rack->instances[3].problem, "");
  EXPECT_EQ(rack->instances[3].state, (std::vector<std::uint8_t>{0x0A, 0xFF}));
}

TEST_F(RackFileTest, AVersionThatIsNotTheWholeNumberOneRefusesTheFile) {
  for (const char* version : {"1444444444444444.4", "1.5", "\"1\"", "2"}) {
    std::string error;
    EXPECT_FALSE(LoadRackFile(Write(std::string(R"({"format":"tarn-rack","version":)") + version +
                                    R"(,"instances":[]})"),
                              error));
    EXPECT_NE(error.find("its \"version\" is not 1"), std::string::npos) << error;
  }
}

TEST_F(RackFileTest, AnEnvelopeValueNoParameterCanHoldMarksItsEntry) {
  std::string error;
  const auto rack = LoadRackFile(Write(R"({"format":"tarn-rack","version":1,"instances":[
      {"class":"{X}","envelopes":[{"param":0,"segments":[
        {"start":0,"end":1,"from":1e300,"to":0}]}]}]})"),
                                 error);
  ASSERT_TRUE(rack) << error;
  EXPECT_EQ(rack->instances[0].problem,
            "its envelopes are not valid: envelope 1 segment 1 has \"from\" out of range");
}

}  // namespace
