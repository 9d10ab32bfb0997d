// Audio through the instance: bytes and marks pass untouched, silence is kept or made real, the
// stream ends twice, types and buffers are negotiated as documented, flushes, segments and
// position requests reach their neighbours, and the sequenced line never reaches a port.
#include <cstring>
#include <numeric>

#include <gtest/gtest.h>

#include "core/segments.h"
#include "tests/support/fake_graph.h"
#include "tests/support/test_instance.h"

namespace {

constexpr std::uint32_t kRate = 48000;

WaveFormat Float(std::uint16_t channels, std::uint32_t rate = kRate) {
  return MakeWaveFormat(WAVE_FORMAT_IEEE_FLOAT_TAG, channels, rate, 32);
}

// Distinct values, with bit patterns no arithmetic would keep: any change shows.
std::vector<float> Pattern(std::size_t count, float seed) {
  std::vector<float> values(count);
  for (std::size_t i = 0; i < count; ++i) values[i] = seed + static_cast<float>(i) * 0.37f;
  if (count > 1) values[1] = -0.0f;
  return values;
}

std::vector<std::uint8_t> Bytes(const std::vector<float>& values) {
  std::vector<std::uint8_t> bytes(values.size() * sizeof(float));
  std::memcpy(bytes.data(), values.data(), bytes.size());
  return bytes;
}

FakeSource::Options Buffers(std::int32_t bytes, bool offerSilence = false) {
  FakeSource::Options options;
  options.bufferBytes = bytes;
  options.samplesOfferSilence = offerSilence;
  return options;
}

CFilterOutputPin& OutputPin(AudioRig& rig) {
  return *static_cast<CFilterOutputPin*>(rig.host.instance->GetPin(1));
}

TEST(AudioPath, PassesBytesThroughUnchangedInMonoAndStereoAtEverySize) {
  for (const std::uint16_t channels : {std::uint16_t{1}, std::uint16_t{2}}) {
    AudioRig rig(Float(channels), Buffers(8192));
    ASSERT_EQ(rig.Connect(), S_OK);
    rig.Pause();
    for (const std::size_t frames : {1u, 64u, 500u, 1024u}) {
      const auto values = Pattern(frames * channels, static_cast<float>(frames));
      ASSERT_EQ(rig.source.PushFloats(values), S_OK);
      const ReceivedSample out = rig.sink.Samples().back();
      EXPECT_EQ(out.bytes, Bytes(values)) << channels << " channels, " << frames << " frames";
      EXPECT_EQ(out.actualLength, static_cast<std::int32_t>(frames * channels * 4));
    }
  }
}

TEST(AudioPath, CopiesMarksAndGivesADiscontinuityItsStartTime) {
  AudioRig rig(Float(2));
  ASSERT_EQ(rig.Connect(), S_OK);
  rig.Pause();
  SampleMarks marks;
  marks.start = 10'000'000;
  marks.stop = 10'000'100;
  marks.discontinuity = marks.syncPoint = marks.preroll = true;
  rig.source.PushFloats(Pattern(8, 1), marks);
  rig.source.PushFloats(Pattern(8, 1), SampleMarks{.start = 20'000'000});

  const auto out = rig.sink.Samples();
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(out[0].timeResult, VFW_S_NO_STOP_TIME) << "the start only";
  EXPECT_EQ(out[0].start, 10'000'000);
  EXPECT_TRUE(out[0].discontinuity && out[0].syncPoint && out[0].preroll);
  EXPECT_EQ(out[1].timeResult, VFW_E_SAMPLE_TIME_NOT_SET) << "only a discontinuity's time is kept";
  EXPECT_FALSE(out[1].discontinuity || out[1].syncPoint || out[1].preroll);
}

TEST(AudioPath, SilentInputIsPassedAsSilenceOrWrittenAsZeros) {
  const auto loud = Pattern(64, 5);
  {
    FakeSink::Options sink;
    sink.samplesOfferSilence = true;
    AudioRig rig(Float(1), Buffers(4096, true), sink);
    ASSERT_EQ(rig.Connect(), S_OK);
    rig.Pause();
    rig.source.PushFloats(loud, SampleMarks{.silent = true});
    rig.source.PushFloats(loud);
    const auto out = rig.sink.Samples();
    EXPECT_EQ(out[0].silent, std::optional<bool>(true));
    EXPECT_EQ(out[1].silent, std::optional<bool>(false));
    EXPECT_EQ(out[1].bytes, Bytes(loud));
  }
  {
    AudioRig rig(Float(2), Buffers(4096, true));
    ASSERT_EQ(rig.Connect(), S_OK);
    rig.Pause();
    rig.source.PushFloats(loud);  // leaves loud bytes in the buffer that comes back next
    rig.source.PushFloats(loud, SampleMarks{.silent = true});
    const ReceivedSample out = rig.sink.Samples().back();
    EXPECT_FALSE(out.silent.has_value());
    EXPECT_EQ(out.bytes, std::vector<std::uint8_t>(loud.size() * 4, 0));
  }
}

TEST(AudioPath, EndOfStreamReachesEachConnectedOutputTwiceEvenWithoutAnInput) {
  AudioRig rig(Float(2));
  ASSERT_EQ(rig.Connect(), S_OK);
  rig.Pause();
  EXPECT_EQ(rig.source.EndOfStream(), S_OK);
  EXPECT_EQ(rig.sink.EndOfStreams(), 2);
  EXPECT_TRUE(rig.sink.Samples().empty());

  rig.Stop();
  rig.source.Disconnect();
  rig.Pause();  // an unconnected input still ends the outputs' stream
  EXPECT_EQ(rig.sink.EndOfStreams(), 4);
}

TEST(AudioPath, TakesOnlyFloatingPointAudioOfOneOrTwoChannels) {
  TestInstance instance;
  CBasePin* input = instance->GetPin(0);
  EXPECT_EQ(input->CheckMediaType(AudioMediaType(Float(1))), S_OK);
  EXPECT_EQ(input->CheckMediaType(AudioMediaType(Float(2))), S_OK);
  CMediaType compressed = AudioMediaType(Float(2));
  compressed.bTemporalCompression = 1;
  CMediaType shortFormat = AudioMediaType(Float(2));
  shortFormat.SetFormat(shortFormat.Format(), 16);
  WaveFormat badAlign = Float(2);
  badAlign.nBlockAlign = 4;
  CMediaType video = AudioMediaType(Float(2));
  video.majortype = MakeGuid(0x73646976, 0, 0x10, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71);
  for (const CMediaType& refused :
       {AudioMediaType(MakeWaveFormat(WAVE_FORMAT_PCM_TAG, 2, kRate, 16)),
        AudioMediaType(MakeWaveFormat(WAVE_FORMAT_IEEE_FLOAT_TAG, 3, kRate, 32)),
        AudioMediaType(MakeWaveFormat(WAVE_FORMAT_IEEE_FLOAT_TAG, 2, kRate, 16)),
        compressed, shortFormat, video})
    EXPECT_EQ(input->CheckMediaType(refused), VFW_E_TYPE_NOT_ACCEPTED);
  // The block align is the host's word: copies are bounded by the samples whatever it says.
  EXPECT_EQ(input->CheckMediaType(AudioMediaType(badAlign)), S_OK);
}

TEST(AudioPath, OutputsOfferAndFollowTheInputOnly) {
  AudioRig rig(Float(2));
  CBasePin& output = OutputPin(rig);
  CMediaType offered;
  EXPECT_EQ(output.GetMediaType(0, &offered), E_UNEXPECTED);
  IEnumMediaTypes* types = nullptr;
  EXPECT_EQ(output.EnumMediaTypes(&types), VFW_E_NOT_CONNECTED);
  const CMediaType stereo = AudioMediaType(Float(2));
  EXPECT_EQ(output.Connect(rig.sink.Input(), &stereo), VFW_E_NOT_CONNECTED);

  ASSERT_EQ(rig.Connect(), S_OK);
  EXPECT_EQ(output.GetMediaType(0, &offered), S_OK);
  EXPECT_EQ(offered, AudioMediaType(Float(2)));
  EXPECT_EQ(output.GetMediaType(1, &offered), VFW_S_NO_MORE_ITEMS);
  ASSERT_EQ(output.EnumMediaTypes(&types), S_OK);
  std::uint32_t fetched = 0;
  EXPECT_EQ(types->Next(1, &offered, &fetched), S_OK);
  EXPECT_EQ(offered, rig.source.Type()) << "the upstream pin's own list";
  types->Release();
  EXPECT_EQ(output.CheckMediaType(AudioMediaType(Float(2, 44100))), VFW_E_TYPE_NOT_ACCEPTED);
  EXPECT_EQ(output.CheckMediaType(AudioMediaType(Float(1))), S_OK);
}

TEST(AudioPath, OutputBuffersFollowTheInputsAndDoubleFromMonoToStereo) {
  for (const std::uint16_t outChannels : {std::uint16_t{1}, std::uint16_t{2}}) {
    FakeSink::Options sink;
    sink.preferred = {AudioMediaType(Float(outChannels))};
    AudioRig rig(Float(1), Buffers(3000), sink);
    ASSERT_EQ(rig.Connect(), S_OK);
    ALLOCATOR_PROPERTIES properties{};
    OutputPin(rig).Allocator()->GetProperties(&properties);
    EXPECT_EQ(properties.cBuffers, 4);
    EXPECT_EQ(properties.cbBuffer, 3000 * outChannels);
  }
}

TEST(AudioPath, ReconnectingTheInputAsksTheGraphToReconnectOutputsThatNoLongerFit) {
  AudioRig rig(Float(2));
  FakeGraph graph;
  graph.AddFilter(&rig.host.instance.filter(), L"Tarn");
  ASSERT_EQ(rig.Connect(), S_OK);
  rig.source.Disconnect();
  FakeSource sameRate(Float(2));
  ASSERT_EQ(sameRate.ConnectTo(rig.Input()), S_OK);
  EXPECT_TRUE(graph.Reconnects().empty());
  sameRate.Disconnect();
  FakeSource otherRate(Float(2, 44100));
  ASSERT_EQ(otherRate.ConnectTo(rig.Input()), S_OK);
  ASSERT_EQ(graph.Reconnects().size(), 1u);
  EXPECT_EQ(graph.Reconnects()[0], rig.Output());
  otherRate.Disconnect();
}

TEST(AudioPath, FlushesAndSegmentsGoOnToTheOutputs) {
  AudioRig rig(Float(2));
  ASSERT_EQ(rig.Connect(), S_OK);
  EXPECT_EQ(rig.source.BeginFlush(), S_OK);
  EXPECT_EQ(rig.source.EndFlush(), S_OK);
  EXPECT_EQ(rig.source.NewSegment(10, 20, 1.5), S_OK);
  EXPECT_EQ(rig.sink.BeginFlushes(), 1);
  EXPECT_EQ(rig.sink.EndFlushes(), 1);
  ASSERT_EQ(rig.sink.Segments().size(), 1u);
  EXPECT_EQ(rig.sink.Segments()[0].stop, 20);
  EXPECT_EQ(rig.sink.Segments()[0].rate, 1.5);
}

TEST(AudioPath, OutputsPassPositionRequestsUpstream) {
  FakeSource::Options seekable;
  seekable.offersSeeking = true;
  AudioRig rig(Float(2), seekable);
  ComPtr<IMediaSeeking> seeking;
  ComPtr<IMediaPosition> position;
  ASSERT_EQ(seeking.QueryFrom(rig.Output(), IID_IMediaSeeking), S_OK);
  ASSERT_EQ(position.QueryFrom(rig.Output(), IID_IMediaPosition), S_OK);
  std::int64_t duration = 0;
  EXPECT_EQ(seeking->GetDuration(&duration), VFW_E_NOT_CONNECTED);

  ASSERT_EQ(rig.Connect(), S_OK);
  EXPECT_EQ(seeking->GetDuration(&duration), S_OK);
  EXPECT_EQ(duration, FakeSeeking::kDuration);
  EXPECT_EQ(seeking->SetRate(2.0), S_OK);
  EXPECT_EQ(rig.source.Seeking().rates, std::vector<double>{2.0});
  REFTIME seconds = 0;
  EXPECT_EQ(position->get_Duration(&seconds), E_NOTIMPL) << "upstream offers no IMediaPosition";
}

TEST(AudioPath, ConnectedOutputPinsAreNotRemoved) {
  AudioRig rig(Float(2));
  CFilter& filter = rig.host.instance.filter();
  std::uint32_t second = 0, third = 0;
  ASSERT_EQ(filter.AddOutputPin(nullptr, &second), S_OK);
  ASSERT_EQ(filter.AddOutputPin(nullptr, &third), S_OK);
  ASSERT_EQ(rig.source.ConnectTo(rig.Input()), S_OK);
  ASSERT_EQ(filter.FindOutputPin(second)->Connect(rig.sink.Input(), nullptr), S_OK);

  EXPECT_EQ(filter.RemoveOutputPin(second), E_UNEXPECTED);
  EXPECT_EQ(filter.GetOutputPinCount(), 3);
  EXPECT_EQ(filter.RemoveAllOutputPins(), E_UNEXPECTED);
  EXPECT_EQ(filter.GetOutputPinCount(), 2) << "the first went, the connected second stopped it";
  EXPECT_EQ(filter.GetOutputPinId(0), static_cast<std::int32_t>(second));
}

TEST(AudioPath, NoteVoicesStayQueuedWhileOtherEventsLeaveOnceThePassIsOver) {
  AudioRig rig(Float(1), {}, {}, true);
  ASSERT_EQ(rig.Connect(), S_OK);
  rig.Pause();
  HostEventRecord note{};
  note.kind = HostEventRecord::kNote;
  note.duration = 480;
  HostEventRecord message{};
  message.kind = HostEventRecord::kShortMessage;
  message.time = 4;  // 400 samples: inside the first buffer of 500 frames
  FakeEventList list({note, message});
  rig.host.instance->OnEvents(0, 0, 0, &list);
  rig.source.PushFloats(Pattern(500, 0));
  rig.source.PushFloats(Pattern(500, 0));
  ASSERT_EQ(rig.host.instance->Voices().size(), 1u);
  EXPECT_EQ(std::uint32_t{rig.host.instance->Voices()[0].kind}, HostEventRecord::kNote);
}

TEST(AudioPath, NothingFromTheSequencedLineEverReachesAPortOrTheSink) {
  AudioRig rig(Float(2), {}, {}, true);
  rig.host.EnableOutput();
  rig.host.UseSink();
  ASSERT_EQ(rig.Connect(), S_OK);
  rig.Pause();
  HostEventRecord note{};
  note.kind = HostEventRecord::kNote;
  note.key = 60;
  note.velocity = 100;
  note.duration = 0xFFFFFFFF;
  HostEventRecord off = note;
  off.time = 2;
  off.duration = 0;
  HostEventRecord control{};
  control.kind = HostEventRecord::kShortMessage;
  control.SetMessage(0x00407FB0);
  FakeEventList list({note, control, off});
  ASSERT_EQ(rig.host.instance->OnEvents(0, 0, 0, &list), S_OK);
  for (int i = 0; i < 4; ++i) rig.source.PushFloats(Pattern(256, 0));
  rig.host.instance->OnStop(0);

  ASSERT_EQ(rig.host.instance->SendTestMessage(0x000000FE), S_OK);  // goes through the queue last
  ASSERT_TRUE(rig.host.ports.WaitForSends(1, 2000));
  ASSERT_TRUE(rig.host.sink.WaitForRecords(1, 2000));
  EXPECT_EQ(rig.host.ports.SendCount(), 1u);
  EXPECT_EQ(rig.host.ports.Sends()[0].message, 0x000000FEu);
  EXPECT_EQ(rig.host.sink.Records().size(), 1u);
}

// --- segments ----------------------------------------------------------------------------------

struct RecordedSteps {
  std::vector<std::int64_t> applied;
  std::vector<std::pair<std::int32_t, std::int64_t>> segments;
  HRESULT processResult = S_OK;
  HRESULT last = S_OK;

  HRESULT Apply(std::int64_t position) {
    applied.push_back(position);
    return S_OK;
  }
  HRESULT Segment(std::int32_t frames, std::int64_t from) {
    segments.emplace_back(frames, from);
    last = processResult;
    return S_OK;
  }
  bool LastFailed() const { return FAILED(last); }
};

using Segments = std::vector<std::pair<std::int32_t, std::int64_t>>;

TEST(AudioSegments, ChangesCutSegmentsToTheFramesLeftAndSkipEmptyOnes) {
  RecordedSteps atStart;
  const std::int64_t now[] = {1000};
  EXPECT_EQ(CutAtChanges(now, 1000, 64, atStart), S_OK);
  EXPECT_EQ(atStart.segments, (Segments{{64, 1000}})) << "a change at the start: the rest, whole";
  EXPECT_EQ(atStart.applied, (std::vector<std::int64_t>{1000, 1000}));

  RecordedSteps steps;
  const std::int64_t changes[] = {10, 10, 60};
  EXPECT_EQ(CutAtChanges(changes, 0, 40, steps), S_OK);
  EXPECT_EQ(steps.segments, (Segments{{10, 0}, {30, 10}}));
  EXPECT_EQ(steps.applied, (std::vector<std::int64_t>{0, 10, 10}));

  RecordedSteps failing;
  failing.processResult = E_FAIL;
  const std::int64_t one[] = {16};
  EXPECT_EQ(CutAtChanges(one, 0, 40, failing), S_OK);
  EXPECT_EQ(failing.segments, (Segments{{16, 0}})) << "a failed segment skips the rest";
}

}  // namespace
