// Automation on the streaming thread, each against a baseline in the same run, with the heap
// allocations per call:
//  - UpdateValuesForSample over an envelope of 1,000 segments, against one of a single segment;
//  - GetSliceBoundaries for a 1024-frame buffer over 1,000 segments, against a single segment;
//  - Receive of 1024 stereo frames through an instance whose "Enabled" has an envelope (of one
//    segment, and of 1,000), against the same instance without one.
// The ratios of processor time are printed at the end, one to a line.
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "automation/media_params.h"
#include "bench/allocation_counter.h"
#include "tests/support/test_instance.h"

namespace {

constexpr std::int32_t kFrames = 1024;
constexpr std::uint16_t kChannels = 2;
constexpr std::int32_t kBlockAlign = kChannels * 4;
constexpr std::uint32_t kRate = 48000;
constexpr std::int64_t kTenMs = 100'000;  // units of 100 ns

// `count` linear segments of 10 ms each, back to back from time 0; a single one spans an hour.
std::vector<MP_ENVELOPE_SEGMENT> Envelope(std::int64_t count) {
  if (count == 1) return {MP_ENVELOPE_SEGMENT{0, 3600 * 1000 * 10'000LL, 0.0f, 1.0f,
                                              MP_CURVE_LINEAR, 0}};
  std::vector<MP_ENVELOPE_SEGMENT> segments;
  for (std::int64_t i = 0; i < count; ++i)
    segments.push_back(MP_ENVELOPE_SEGMENT{i * kTenMs, (i + 1) * kTenMs, (i % 2) ? 1.0f : 0.0f,
                                           (i % 2) ? 0.0f : 1.0f, MP_CURVE_LINEAR, 0});
  return segments;
}

// An automation object of its own, owned by a stand-in for the instance.
struct ParamsRig {
  FakeHostContext owner;
  CMediaParams* params = nullptr;

  explicit ParamsRig(std::int64_t segments) {
    CMediaParams::Create(&owner, &params);
    params->SetSampleRate(static_cast<std::int32_t>(kRate));
    const auto envelope = Envelope(segments);
    params->AddEnvelope(0, static_cast<std::uint32_t>(envelope.size()), envelope.data());
  }
  ~ParamsRig() { params->ReleaseOwnerReference(); }
  ParamsRig(const ParamsRig&) = delete;
  ParamsRig& operator=(const ParamsRig&) = delete;
};

void PerCallAllocations(benchmark::State& state, std::uint64_t before) {
  state.counters["allocs_per_call"] =
      static_cast<double>(AllocationCount() - before) / static_cast<double>(state.iterations());
}

// Positions walk the 10 s that 1,000 segments cover, in steps that land everywhere in them.
void BM_UpdateValuesForSample(benchmark::State& state) {
  ParamsRig rig(state.range(0));
  std::int64_t position = 0;
  const std::uint64_t before = AllocationCount();
  for (auto _ : state) {
    benchmark::DoNotOptimize(rig.params->UpdateValuesForSample(position));
    position = (position + 4799) % (10 * kRate);
  }
  PerCallAllocations(state, before);
}

void BM_GetSliceBoundaries(benchmark::State& state) {
  ParamsRig rig(state.range(0));
  std::vector<std::int64_t> positions;
  rig.params->GetSliceBoundaries(0, kFrames, positions);  // the list's room, once
  std::int64_t start = 0;
  const std::uint64_t before = AllocationCount();
  for (auto _ : state) {
    benchmark::DoNotOptimize(rig.params->GetSliceBoundaries(start, start + kFrames, positions));
    benchmark::DoNotOptimize(positions.data());
    start = (start + kFrames) % (10 * kRate);
  }
  PerCallAllocations(state, before);
}

// An instance between a source and a counting sink, paused, with one prepared input sample and,
// for a non-zero argument, an envelope of that many segments on "Enabled".
void BM_Receive(benchmark::State& state) {
  FakeSink::Options sinkOptions;
  sinkOptions.recordSamples = false;
  AudioRig rig(MakeWaveFormat(WAVE_FORMAT_IEEE_FLOAT_TAG, kChannels, kRate, 32),
               FakeSource::Options{.bufferBytes = kFrames * kBlockAlign}, sinkOptions);
  rig.Connect();
  if (state.range(0) > 0) {
    ComPtr<IMediaParams> params;
    params.QueryFrom(&rig.host.instance.filter(), IID_IMediaParams);
    const auto envelope = Envelope(state.range(0));
    params->AddEnvelope(0, static_cast<std::uint32_t>(envelope.size()), envelope.data());
  }
  rig.Pause();
  ComPtr<IMemInputPin> input;
  input.QueryFrom(rig.Input(), IID_IMemInputPin);
  ComPtr<IMediaSample> sample;
  const std::vector<std::uint8_t> bytes(kFrames * kBlockAlign, 0x3C);
  rig.source.Prepare(bytes, {}, sample);
  input->Receive(sample.Get());  // the list of change positions takes its room
  const std::uint64_t before = AllocationCount();
  for (auto _ : state) benchmark::DoNotOptimize(input->Receive(sample.Get()));
  PerCallAllocations(state, before);
  state.SetBytesProcessed(state.iterations() * kFrames * kBlockAlign);
}

// Keeps each run's processor time per iteration (steadier than wall time on a shared machine), to divide one by another after the run.
class RatioReporter final : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    // With repetitions, the mean stands for the run.
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration || run.aggregate_name == "mean")
        m_times[run.run_name.str()] = run.GetAdjustedCPUTime();
    }
    ConsoleReporter::ReportRuns(runs);
  }
  void PrintRatio(const char* what, const std::string& measured, const std::string& baseline) {
    const auto a = m_times.find(measured);
    const auto b = m_times.find(baseline);
    if (a == m_times.end() || b == m_times.end() || b->second <= 0) return;
    std::printf("%s: %.3f\n", what, a->second / b->second);
  }

 private:
  std::map<std::string, double> m_times;
};

}  // namespace

BENCHMARK(BM_UpdateValuesForSample)->Arg(1)->Arg(1000);
BENCHMARK(BM_GetSliceBoundaries)->Arg(1)->Arg(1000);
BENCHMARK(BM_Receive)->Arg(0)->Arg(1)->Arg(1000);

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  std::printf("\n");
  reporter.PrintRatio("UpdateValuesForSample, 1000 segments against 1",
                      "BM_UpdateValuesForSample/1000", "BM_UpdateValuesForSample/1");
  reporter.PrintRatio("GetSliceBoundaries of 1024 frames, 1000 segments against 1",
                      "BM_GetSliceBoundaries/1000", "BM_GetSliceBoundaries/1");
  reporter.PrintRatio("Receive of 1024 frames, envelope of 1 segment against none (target < 1.10)",
                      "BM_Receive/1", "BM_Receive/0");
  reporter.PrintRatio("Receive of 1024 frames, envelope of 1000 segments against none",
                      "BM_Receive/1000", "BM_Receive/0");
  benchmark::Shutdown();
  return 0;
}
