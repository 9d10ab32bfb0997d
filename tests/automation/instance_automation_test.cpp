// Automation through a real instance: the instance answers the four facets with one identity,
// takes the stream's rate, and its processing loop evaluates an envelope as the audio passes,
// leaving the audio untouched.
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/test_instance.h"

namespace {

constexpr std::uint32_t kRate = 48000;
constexpr std::int64_t kSecond = 10'000'000;

TEST(InstanceAutomation, AnswersTheFourFacetsOfOneObjectThatLeadBackToTheInstance) {
  TestInstance instance;
  ASSERT_EQ(instance.construction(), S_OK);
  ASSERT_NE(instance->MediaParams(), nullptr);
  IUnknown* self = nullptr;
  ASSERT_EQ(instance->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&self)), S_OK);
  for (const IID& iid : {IID_IMediaParams, IID_IMediaParamInfo, IID_IMediaParamsSetUICallback,
                         IID_IMediaParamsUICallback}) {
    IUnknown* facet = nullptr;
    ASSERT_EQ(instance->QueryInterface(iid, reinterpret_cast<void**>(&facet)), S_OK);
    ASSERT_NE(facet, nullptr);
    IUnknown* back = nullptr;
    ASSERT_EQ(facet->QueryInterface(IID_IMyFilter, reinterpret_cast<void**>(&back)), S_OK)
        << "a facet asks the instance for everything else";
    back->Release();
    facet->Release();
  }
  ComPtr<IMediaParams> params;
  ASSERT_EQ(params.QueryFrom(self, IID_IMediaParams), S_OK);
  MP_DATA value = 0;
  EXPECT_EQ(params->GetParam(0, &value), S_OK);
  EXPECT_EQ(value, 1.0f);
  self->Release();
}

TEST(InstanceAutomation, TheAudioLoopEvaluatesEnabledAtEachBufferAndLeavesTheAudioAlone) {
  FakeSource::Options buffers;
  buffers.bufferBytes = 2 * 2048 * sizeof(float);
  AudioRig rig(MakeWaveFormat(WAVE_FORMAT_IEEE_FLOAT_TAG, 2, kRate, 32), buffers);
  ASSERT_EQ(rig.Connect(), S_OK);
  EXPECT_EQ(rig.host.instance->MediaParams()->SampleRate(), static_cast<std::int32_t>(kRate));
  ComPtr<IMediaParams> params;
  ASSERT_EQ(params.QueryFrom(&rig.host.instance.filter(), IID_IMediaParams), S_OK);
  const MP_ENVELOPE_SEGMENT rise{0, kSecond, 0.0f, 1.0f, MP_CURVE_LINEAR, 0};
  ASSERT_EQ(params->AddEnvelope(0, 1, &rise), S_OK);
  rig.Pause();

  // 2048 frames cross the slice interval twice (at 960 and 1920) and the segment's start.
  std::vector<float> values(2 * 2048);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<float>(i) * 0.25f;
  ASSERT_EQ(rig.source.PushFloats(values), S_OK);
  MP_DATA value = -1;
  ASSERT_EQ(params->GetParam(0, &value), S_OK);
  EXPECT_FLOAT_EQ(value, 1920.0f / kRate) << "last evaluated at the last boundary";

  ASSERT_EQ(rig.source.PushFloats(std::vector<float>(2 * 480, 0.5f)), S_OK);
  ASSERT_EQ(params->GetParam(0, &value), S_OK);
  // Sample 2048 is 426,666.6 units of 100 ns, taken as a whole 426,666.
  EXPECT_NEAR(value, 2048.0 / kRate, 1e-6) << "no boundary inside: evaluated at the start";

  const auto out = rig.sink.Samples();
  ASSERT_EQ(out.size(), 2u);
  std::vector<std::uint8_t> expected(values.size() * sizeof(float));
  std::memcpy(expected.data(), values.data(), expected.size());
  EXPECT_EQ(out[0].bytes, expected);
}

}  // namespace
