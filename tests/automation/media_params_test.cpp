// The automation object as a host meets it: the one parameter and its odd second row, the
// records and the text block, time formats, identity and references, the user-interface
// callbacks, and where the processing loop is told to cut a buffer.
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "automation/media_params.h"
#include "tests/support/fake_host.h"

namespace {

constexpr std::int64_t kSecond = 10'000'000;
constexpr std::uint32_t kOne[] = {0};

using ParamText = std::basic_string<ParamChar>;
ParamText Text(std::u16string_view text) { return ParamText(text.begin(), text.end()); }

// An object owned by a fake context, which stands in for the instance and counts references.
struct Params {
  FakeTempoMap tempoMap;
  FakeHostContext owner;
  CMediaParams* params = nullptr;

  Params() {
    owner.tempoMap = &tempoMap;
    EXPECT_EQ(CMediaParams::Create(&owner, &params), S_OK);
  }
  ~Params() { params->ReleaseOwnerReference(); }
  CMediaParams* operator->() { return params; }
  float Get(std::uint32_t index = 0) {
    MP_DATA value = -7.0f;
    EXPECT_EQ(params->GetParam(index, &value), S_OK);
    return value;
  }
  HRESULT Add(std::vector<MP_ENVELOPE_SEGMENT> segments, std::uint32_t index = 0) {
    return params->AddEnvelope(index, static_cast<std::uint32_t>(segments.size()),
                               segments.data());
  }
};

MP_ENVELOPE_SEGMENT Linear(std::int64_t start, std::int64_t end, float from, float to) {
  return MP_ENVELOPE_SEGMENT{start, end, from, to, MP_CURVE_LINEAR, 0};
}

TEST(MediaParams, SecondRowIsReadAndSetButNeverDescribed) {
  Params params;
  std::uint32_t count = 0;
  EXPECT_EQ(params->GetParamCount(&count), S_OK);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(params->SetParam(1, 0.3f), S_OK);
  MP_DATA value = 0;
  EXPECT_EQ(params->GetParam(1, &value), S_OK);
  MP_PARAMINFO info{};
  EXPECT_EQ(params->GetParamInfo(1, &info), E_INVALIDARG);
  ParamChar* text = nullptr;
  EXPECT_EQ(params->GetParamText(1, &text), E_INVALIDARG);
  EXPECT_EQ(params->GetParam(2, &value), E_INVALIDARG);
  EXPECT_EQ(params->SetParam(2, 0.0f), E_INVALIDARG);
  EXPECT_EQ(params.Get(0), 1.0f) << "setting row 1 leaves Enabled alone";
  EXPECT_EQ(params->GetParam(0, nullptr), E_POINTER);
}

TEST(MediaParams, EnvelopesGoToEnabledByIndexZeroOrAll) {
  Params params;
  const std::vector<MP_ENVELOPE_SEGMENT> one{Linear(0, kSecond, 0, 1)};
  EXPECT_EQ(params.Add(one, 1), E_INVALIDARG);
  EXPECT_EQ(params.Add(one, kAllParams), S_OK);
  EXPECT_EQ(params->Envelope(0).SegmentCount(), 1u);
  EXPECT_EQ(params->Envelope(1).SegmentCount(), 0u);
  EXPECT_EQ(params->AddEnvelope(0, 0, nullptr), S_OK) << "no segments: nothing to read";
  EXPECT_EQ(params->AddEnvelope(0, 1, nullptr), E_POINTER);

  EXPECT_EQ(params->FlushEnvelope(1, 0, kSecond), E_INVALIDARG);
  EXPECT_EQ(params->FlushEnvelope(0, kSecond, 0), E_INVALIDARG);
  EXPECT_EQ(params->FlushEnvelope(kAllParams, 0, kSecond), S_OK);
  EXPECT_EQ(params->Envelope(0).SegmentCount(), 0u);
}

TEST(MediaParams, DescribesEnabledInExactly148Bytes) {
  Params params;
  unsigned char bytes[sizeof(MP_PARAMINFO) + 4];
  std::memset(bytes, 0xAB, sizeof bytes);
  auto* info = reinterpret_cast<MP_PARAMINFO*>(bytes);
  ASSERT_EQ(params->GetParamInfo(0, info), S_OK);
  EXPECT_EQ(info->mopCaps, 0x0Fu);
  EXPECT_EQ(ParamText(info->szLabel, info->szLabel + 7), Text(u"Enabled"));
  EXPECT_EQ(info->szLabel[7], 0);
  EXPECT_EQ(info->szUnitText[0], 0);
  EXPECT_EQ(bytes[148], 0xAB) << "nothing is written past the record";
  EXPECT_EQ(params->GetParamInfo(0, nullptr), E_POINTER);
}

TEST(MediaParams, TextBlockHoldsLabelAndUnitEachTerminated) {
  Params params;
  ParamChar* text = nullptr;
  ASSERT_EQ(params->GetParamText(0, &text), S_OK);
  ASSERT_NE(text, nullptr);
  // The label, its terminator, the empty unit and its terminator.
  EXPECT_EQ(ParamText(text, text + 9), Text(std::u16string_view(u"Enabled\0", 9)));
  CoTaskMemFree(text);
  EXPECT_EQ(params->GetParamText(0, nullptr), E_POINTER);
}

TEST(MediaParams, OffersOnlyReferenceTime) {
  Params params;
  std::uint32_t count = 0;
  EXPECT_EQ(params->GetNumTimeFormats(&count), S_OK);
  EXPECT_EQ(count, 1u);
  GUID format{};
  EXPECT_EQ(params->GetSupportedTimeFormat(1, &format), E_INVALIDARG);
  std::uint32_t data = 0xDEADBEEF;
  EXPECT_EQ(params->GetCurrentTimeFormat(&format, &data), S_OK);
  EXPECT_EQ(format, GUID_TIME_REFERENCE);
  EXPECT_EQ(data, 0xDEADBEEFu) << "the format's word is not written";
  EXPECT_EQ(params->SetTimeFormat(IID_IMediaParams, 0), E_INVALIDARG);
}

TEST(MediaParams, QueriesGoToTheOwnerAndEveryHeldFacetHoldsIt) {
  Params params;
  EXPECT_EQ(params->RefCount(), 1u);
  void* object = nullptr;
  ASSERT_EQ(params->QueryInterface(IID_IUnknown, &object), S_OK);
  EXPECT_EQ(object, static_cast<IMediaParams*>(params.params));
  EXPECT_EQ(params.owner.RefCount(), 1);
  EXPECT_EQ(params->RefCount(), 2u);
  static_cast<IUnknown*>(object)->Release();
  EXPECT_EQ(params.owner.RefCount(), 0);
  EXPECT_EQ(params->RefCount(), 1u);

  ASSERT_EQ(params->QueryInterface(IID_IHostTempoMap, &object), S_OK) << "the owner's answer";
  EXPECT_EQ(object, static_cast<IHostTempoMap*>(&params.tempoMap));
  static_cast<IUnknown*>(object)->Release();
  EXPECT_EQ(params->QueryInterface(IID_IMediaParams, &object), E_NOINTERFACE)
      << "this owner does not answer the facets";
  EXPECT_EQ(params->QueryInterface(IID_IUnknown, nullptr), E_POINTER);

  for (const IID& iid : {IID_IMediaParams, IID_IMediaParamInfo, IID_IMediaParamsSetUICallback,
                         IID_IMediaParamsUICallback}) {
    ASSERT_EQ(params->QueryFacet(iid, &object), S_OK);
    EXPECT_EQ(params.owner.RefCount(), 1);
    static_cast<IUnknown*>(object)->Release();
  }
  EXPECT_EQ(params->QueryFacet(IID_IHostTempoMap, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(params.owner.RefCount(), 0);
}

TEST(MediaParams, CaptureShowsTheDraggedValueAndEveryCallIsForwarded) {
  Params params;
  FakeParamsUICallback callback;
  EXPECT_EQ(params->ParamsBeginCapture(kOne, 1), S_OK) << "no callback yet";
  EXPECT_EQ(params->ParamsEndCapture(kOne, 1), S_OK);
  ASSERT_EQ(params->SetUICallback(&callback), S_OK);
  EXPECT_EQ(callback.RefCount(), 1);

  ASSERT_EQ(params.Add({Linear(0, kSecond, 0, 1)}), S_OK);
  ASSERT_EQ(params->ParamsBeginCapture(kOne, 1), S_OK);
  const MP_DATA dragged[] = {0.0f};
  ASSERT_EQ(params->ParamsChanged(kOne, 1, dragged), S_OK);
  params->UpdateValuesForSample(22050);  // the envelope goes on underneath
  EXPECT_EQ(params.Get(), 0.0f) << "the dragged value shows while captured";
  ASSERT_EQ(params->ParamsEndCapture(kOne, 1), S_OK);
  EXPECT_FLOAT_EQ(params.Get(), 0.5f);

  const auto calls = callback.Calls();
  ASSERT_EQ(calls.size(), 3u);
  EXPECT_EQ(calls[0].kind, FakeParamsUICallback::Kind::kBeginCapture);
  EXPECT_EQ(calls[1].kind, FakeParamsUICallback::Kind::kChanged);
  EXPECT_EQ(calls[1].values, std::vector<MP_DATA>{0.0f});
  EXPECT_EQ(calls[2].kind, FakeParamsUICallback::Kind::kEndCapture);

  callback.Answer(S_FALSE);
  EXPECT_EQ(params->ParamsEndCapture(kOne, 1), S_FALSE) << "the callback's answer";
  const std::uint32_t badSecond[] = {0, 5};
  const MP_DATA values[] = {1.0f, 1.0f};
  EXPECT_EQ(params->ParamsChanged(badSecond, 2, values), E_INVALIDARG);
  EXPECT_EQ(callback.Calls().size(), 4u) << "a failed change is not forwarded";
  EXPECT_EQ(params->ParamsBeginCapture(badSecond, 2), S_FALSE) << "unknown indices pass on";
  EXPECT_EQ(params->ParamsChanged(nullptr, 1, values), E_POINTER);

  FakeParamsUICallback next;
  ASSERT_EQ(params->SetUICallback(&next), S_OK);
  EXPECT_EQ(callback.RefCount(), 0) << "the old callback is let go";
  ASSERT_EQ(params->SetUICallback(nullptr), S_OK);
  EXPECT_EQ(next.RefCount(), 0);
}

TEST(MediaParams, SlicesAtEveryIntervalAndSegmentBoundKeepingDuplicates) {
  Params params;
  std::vector<std::int64_t> positions{99};
  ASSERT_EQ(params->GetSliceBoundaries(0, 2048, positions), S_OK);
  EXPECT_TRUE(positions.empty()) << "no segments, no slices";

  // At 44100 Hz the interval is 882 samples; 200,000 units is sample 882, 300,000 is 1323.
  ASSERT_EQ(params.Add({Linear(200'000, 300'000, 0, 1)}), S_OK);
  ASSERT_EQ(params->GetSliceBoundaries(0, 2048, positions), S_OK);
  EXPECT_EQ(positions, (std::vector<std::int64_t>{0, 882, 882, 1323, 1764}));
  ASSERT_EQ(params->GetSliceBoundaries(883, 1764, positions), S_OK);
  EXPECT_EQ(positions, (std::vector<std::int64_t>{1323})) << "the end is out";
  ASSERT_EQ(params->GetSliceBoundaries(-1000, 1, positions), S_OK);
  EXPECT_EQ(positions, (std::vector<std::int64_t>{-882, 0}));
  ASSERT_EQ(params->GetSliceBoundaries(10, 10, positions), S_OK);
  EXPECT_TRUE(positions.empty());
  constexpr std::int64_t kLatest = std::numeric_limits<std::int64_t>::max();
  ASSERT_EQ(params->GetSliceBoundaries(kLatest - 1000, kLatest, positions), S_OK);
  EXPECT_EQ(positions.size(), 1u) << "one multiple of 882 in the last 1000 samples";
  EXPECT_EQ(params->GetSliceBoundaries(0, kLatest, positions), E_INVALIDARG);

  ASSERT_EQ(params->SetSampleRate(48000), S_OK);
  ASSERT_EQ(params->GetSliceBoundaries(0, 1000, positions), S_OK);
  EXPECT_EQ(positions, (std::vector<std::int64_t>{0, 960, 960})) << "sample 960 is 200,000 units";
  EXPECT_EQ(params->SetSampleRate(0), E_INVALIDARG);
  EXPECT_EQ(params->SampleRate(), 48000);
}

TEST(MediaParams, EvaluatesEnabledAtASamplePositionOfTheStream) {
  Params params;
  ASSERT_EQ(params.Add({Linear(0, kSecond, 0, 1)}), S_OK);
  EXPECT_EQ(params.Get(), 1.0f) << "set directly until the envelope is first evaluated";
  ASSERT_EQ(params->UpdateValuesForSample(44100 / 4), S_OK);
  EXPECT_FLOAT_EQ(params.Get(), 0.25f);
  EXPECT_DOUBLE_EQ(params->Envelope(0).FirstDelta(), 1.0 / 44100);
  ASSERT_EQ(params->UpdateValuesForSample(std::numeric_limits<std::int64_t>::max()), S_OK);
  EXPECT_EQ(params.Get(), 1.0f) << "far past the end, the end value holds";
}

TEST(MediaParams, HostCallsMayRaceTheStreamingThread) {
  Params params;
  std::thread streaming([&] {
    std::vector<std::int64_t> positions;
    for (std::int64_t position = 0; position < 2000 * 1024; position += 1024) {
      params->GetSliceBoundaries(position, position + 1024, positions);
      for (const std::int64_t change : positions) params->UpdateValuesForSample(change);
      params->UpdateValuesForSample(position);
    }
  });
  for (std::int64_t i = 0; i < 2000; ++i) {
    params.Add({Linear(i * 200'000, (i + 1) * 200'000, 0, 1)});
    params->SetParam(0, (i % 2) ? 1.0f : 0.0f);
    params.Get();
    if (i % 100 == 99) params->FlushEnvelope(0, 0, i * 100'000);
  }
  streaming.join();
  EXPECT_GT(params->Envelope(0).SegmentCount(), 0u);
}

}  // namespace
