// The audio path and the event window against bare baselines in the same run:
//  - one Receive of 64 to 4096 stereo float frames, through the instance and out to a sink that
//    only counts, against a memcpy of the same bytes; with the heap allocations per buffer;
//  - Process alone against the same memcpy;
//  - one window pass over 10 to 100,000 pending events, all taken or all kept, per event.
#include <chrono>
#include <cstring>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/allocation_counter.h"
#include "frame/allocator.h"
#include "tests/support/test_instance.h"

namespace {

constexpr std::uint16_t kChannels = 2;
constexpr std::int32_t kMostFrames = 4096;
constexpr std::int32_t kBlockAlign = kChannels * 4;

WaveFormat Stereo() {
  return MakeWaveFormat(WAVE_FORMAT_IEEE_FLOAT_TAG, kChannels, 48000, 32);
}

FakeSink::Options CountingSink() {
  FakeSink::Options options;
  options.recordSamples = false;
  return options;
}

// An instance between a source and a counting sink, paused, with one prepared input sample.
struct ReceiveRig {
  AudioRig rig{Stereo(), FakeSource::Options{.bufferBytes = kMostFrames * kBlockAlign},
               CountingSink()};
  ComPtr<IMemInputPin> input;
  ComPtr<IMediaSample> sample;

  explicit ReceiveRig(std::int32_t frames) {
    rig.Connect();
    rig.Pause();
    input.QueryFrom(rig.Input(), IID_IMemInputPin);
    const std::vector<std::uint8_t> bytes(static_cast<std::size_t>(frames * kBlockAlign), 0x3C);
    rig.source.Prepare(bytes, {}, sample);
  }
};

void BM_Receive(benchmark::State& state) {
  const auto frames = static_cast<std::int32_t>(state.range(0));
  ReceiveRig bench(frames);
  const std::int64_t before = bench.rig.sink.SampleCount();
  const std::uint64_t allocations = AllocationCount();
  for (auto _ : state) benchmark::DoNotOptimize(bench.input->Receive(bench.sample.Get()));
  const auto buffers = static_cast<double>(state.iterations());
  state.counters["allocs_per_buffer"] = static_cast<double>(AllocationCount() - allocations) /
                                        buffers;
  state.counters["delivered"] = static_cast<double>(bench.rig.sink.SampleCount() - before) /
                                buffers;
  state.SetBytesProcessed(state.iterations() * frames * kBlockAlign);
}

// The two buffers lie half a page apart modulo the page size: two separate heap blocks can land
// a multiple of 4 KiB apart, where every store slows the loads behind it, and the baseline
// would flatter the instance.
void BM_Memcpy(benchmark::State& state) {
  const auto bytes = static_cast<std::size_t>(state.range(0) * kBlockAlign);
  constexpr std::size_t kHalfPage = 2048;
  std::vector<std::uint8_t> block(2 * bytes + kHalfPage, 0x3C);
  const std::uint8_t* from = block.data();
  std::uint8_t* to = block.data() + bytes + kHalfPage;
  for (auto _ : state) {
    std::memcpy(to, from, bytes);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

// Process on its own: one input sample to one output sample, as a segment sees them.
void BM_Process(benchmark::State& state) {
  const auto frames = static_cast<std::int32_t>(state.range(0));
  ReceiveRig bench(frames);
  ComPtr<IMemAllocator> pool = CMemAllocator::Create();
  const ALLOCATOR_PROPERTIES wanted{1, kMostFrames * kBlockAlign, 16, 0};
  ALLOCATOR_PROPERTIES actual{};
  pool->SetProperties(&wanted, &actual);
  pool->Commit();
  ComPtr<IMediaSample> outSample;
  pool->GetBuffer(outSample.Receive(), nullptr, nullptr, 0);
  AudioBuffer input{frames, 0, 0, bench.sample.Get(), 0};
  AudioBuffer output{frames, 0, 1, outSample.Get(), 1};
  VoiceQueue voices;
  CFilter& filter = bench.rig.host.instance.filter();
  for (auto _ : state) {
    benchmark::DoNotOptimize(filter.Process(0, &input, &output, 1, 0, voices));
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * frames * kBlockAlign);
  outSample.Reset();
  pool->Decommit();
}

std::vector<HostEventRecord> Events(std::int64_t count, std::int32_t tick) {
  std::vector<HostEventRecord> events(static_cast<std::size_t>(count));
  for (std::size_t i = 0; i < events.size(); ++i) {
    HostEventRecord& e = events[i];
    e.time = tick;
    e.key = static_cast<std::uint8_t>(i % 128);
    e.velocity = 100;
    if (i % 2 == 0) {
      e.kind = HostEventRecord::kNote;
      e.duration = 0xFFFFFFFF;
    } else {
      e.kind = HostEventRecord::kShortMessage;
    }
  }
  return events;
}

void PerEvent(benchmark::State& state) {
  state.counters["per_event"] =
      benchmark::Counter(static_cast<double>(state.iterations() * state.range(0)),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// Every pending event lies in the window: each is taken, adjusted and queued. Only the pass is
// timed; the list is refilled and the voices dropped between passes.
void BM_WindowTaken(benchmark::State& state) {
  ConnectedRig rig(true, true);
  FakeEventList list(Events(state.range(0), 0));
  for (auto _ : state) {
    rig.instance->OnEvents(0, 0, 0, &list);
    const auto start = std::chrono::steady_clock::now();
    rig.instance->RunEventWindow(256);
    const auto stop = std::chrono::steady_clock::now();
    state.SetIterationTime(std::chrono::duration<double>(stop - start).count());
    rig.instance->OnStop(0);
  }
  PerEvent(state);
}

// Every pending event lies behind the window and stays: the pass only walks them.
void BM_WindowKept(benchmark::State& state) {
  ConnectedRig rig(true, true);
  rig.instance->OnStart(10);
  FakeEventList list(Events(state.range(0), 0));
  rig.instance->OnEvents(0, 0, 0, &list);
  for (auto _ : state) benchmark::DoNotOptimize(rig.instance->RunEventWindow(256));
  PerEvent(state);
}

}  // namespace

BENCHMARK(BM_Memcpy)->RangeMultiplier(4)->Range(64, kMostFrames);
BENCHMARK(BM_Receive)->RangeMultiplier(4)->Range(64, kMostFrames);
BENCHMARK(BM_Process)->RangeMultiplier(4)->Range(64, kMostFrames);
BENCHMARK(BM_WindowTaken)->Arg(10)->Arg(1000)->Arg(100000)->UseManualTime();
BENCHMARK(BM_WindowKept)->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK_MAIN();
