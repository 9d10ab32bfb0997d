// The audio path and the event window against bare baselines in the same run:
//  - one Receive of 64 to 4096 stereo float frames, through the instance and out to a sink that
//    only counts, against a memcpy of the same bytes; with the heap allocations per buffer;
//  - Process alone against the same memcpy;
//  - the tracked ratios: Receive and Process of 64 and 1024 frames and the memcpy, taking turns
//    block by block (bench/in_turns.h), so that the machine's load falls alike on each; beside
//    them the steps that every Receive and every Process must take on this frame, alone, as the
//    floor;
//  - one window pass over 10 to 100,000 pending events, all taken or all kept, per event.
#include <algorithm>
#include <chrono>
#include <cstring>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/allocation_counter.h"
#include "bench/in_turns.h"
#include "bench/ratio_report.h"
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
class CopyRig {
 public:
  explicit CopyRig(std::size_t bytes) : m_bytes(bytes), m_block(2 * bytes + kHalfPage, 0x3C) {}
  void Copy() {
    std::memcpy(m_block.data() + m_bytes + kHalfPage, m_block.data(), m_bytes);
    benchmark::ClobberMemory();
  }

 private:
  static constexpr std::size_t kHalfPage = 2048;
  std::size_t m_bytes;
  std::vector<std::uint8_t> m_block;
};

void BM_Memcpy(benchmark::State& state) {
  const auto bytes = static_cast<std::size_t>(state.range(0) * kBlockAlign);
  CopyRig copy(bytes);
  for (auto _ : state) copy.Copy();
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

// Process on its own: one input sample to one output sample, as a segment sees them.
struct ProcessRig {
  ReceiveRig receive;
  ComPtr<IMemAllocator> pool = CMemAllocator::Create();
  ComPtr<IMediaSample> outSample;
  AudioBuffer input{};
  AudioBuffer output{};
  VoiceQueue voices;

  explicit ProcessRig(std::int32_t frames) : receive(frames) {
    const ALLOCATOR_PROPERTIES wanted{1, kMostFrames * kBlockAlign, 16, 0};
    ALLOCATOR_PROPERTIES actual{};
    pool->SetProperties(&wanted, &actual);
    pool->Commit();
    pool->GetBuffer(outSample.Receive(), nullptr, nullptr, 0);
    input = AudioBuffer{frames, 0, 0, receive.sample.Get(), 0};
    output = AudioBuffer{frames, 0, 1, outSample.Get(), 1};
  }
  ~ProcessRig() {
    outSample.Reset();
    pool->Decommit();
  }
  ProcessRig(const ProcessRig&) = delete;
  ProcessRig& operator=(const ProcessRig&) = delete;

  HRESULT Process() {
    return receive.rig.host.instance.filter().Process(0, &input, &output, 1, 0, voices);
  }
};

void BM_Process(benchmark::State& state) {
  ProcessRig bench(static_cast<std::int32_t>(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(bench.Process());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * state.range(0) * kBlockAlign);
}

// The steps that every Receive must take on this frame, and nothing else: the fastest form a
// Receive could have. The input's silence read and written back; a delivery buffer from the
// output pin with the input's marks; one pass under a re-entrant lock, as the segment is
// processed; the copy; the length set, the delivery, the release.
class RequiredSteps {
 public:
  explicit RequiredSteps(ReceiveRig& receive)
      : m_input(receive.sample.Get()),
        m_output(static_cast<CBaseOutputPin*>(receive.rig.host.instance->GetPin(1))) {}

  void Run() {
    ComPtr<ISampleSilence> silence;
    if (SUCCEEDED(silence.QueryFrom(m_input, IID_ISampleSilence)))
      silence->SetSilent(silence->GetSilent());
    IMediaSample* out = nullptr;
    if (FAILED(m_output->GetDeliveryBuffer(&out, nullptr, nullptr, 0))) return;
    out->SetTime(nullptr, nullptr);
    out->SetSyncPoint(m_input->IsSyncPoint() == S_OK);
    out->SetDiscontinuity(m_input->IsDiscontinuity() == S_OK);
    out->SetPreroll(m_input->IsPreroll() == S_OK);
    const std::int32_t bytes = m_input->GetActualDataLength();
    {
      CAutoLock pass(m_lock);
      std::uint8_t* from = nullptr;
      std::uint8_t* to = nullptr;
      m_input->GetPointer(&from);
      out->GetPointer(&to);
      std::memcpy(to, from, static_cast<std::size_t>(bytes));
    }
    out->SetActualDataLength(bytes);
    m_output->Deliver(out);
    out->Release();
  }

 private:
  IMediaSample* m_input;
  CBaseOutputPin* m_output;
  CCritSec m_lock;
};

// The steps that Process must take: where each buffer's data lies and how far it reaches, so
// that the copy stays inside both samples, and the copy.
class ProcessSteps {
 public:
  explicit ProcessSteps(ProcessRig& process)
      : m_input(process.input.sample), m_output(process.output.sample),
        m_bytes(process.input.frames * kBlockAlign) {}

  void Run() {
    std::uint8_t* from = nullptr;
    std::uint8_t* to = nullptr;
    m_input->GetPointer(&from);
    m_output->GetPointer(&to);
    const std::int32_t room = std::min(m_input->GetSize(), m_output->GetSize());
    std::memcpy(to, from, static_cast<std::size_t>(std::min(m_bytes, room)));
  }

 private:
  IMediaSample* m_input;
  IMediaSample* m_output;
  std::int32_t m_bytes;
};

// The memcpy, Receive and Process of `range(0)` frames in turns, and the steps that each must
// take, a block of calls at a time; the median block of each, per call.
void BM_InTurns(benchmark::State& state) {
  constexpr int kCallsPerBlock = 256;
  constexpr std::size_t kRounds = 1000;
  const auto frames = static_cast<std::int32_t>(state.range(0));
  CopyRig copy(static_cast<std::size_t>(frames * kBlockAlign));
  ReceiveRig receive(frames);
  ProcessRig process(frames);
  RequiredSteps steps(receive);
  ProcessSteps processSteps(process);
  const auto block = [](auto call) {
    const auto t0 = std::chrono::steady_clock::now();
    for (int i = 0; i < kCallsPerBlock; ++i) call();
    const std::chrono::duration<double, std::nano> took = std::chrono::steady_clock::now() - t0;
    return took.count() / kCallsPerBlock;
  };
  std::vector<std::vector<double>> ns;
  for (auto _ : state) {
    ns = InTurns(5, kRounds, [] {}, [&](std::size_t kind) {
      switch (kind) {
        case 0: return block([&] { copy.Copy(); });
        case 1: return block([&] {
          benchmark::DoNotOptimize(receive.input->Receive(receive.sample.Get()));
        });
        case 2: return block([&] {
          steps.Run();
          benchmark::ClobberMemory();
        });
        case 3: return block([&] {
          benchmark::DoNotOptimize(process.Process());
          benchmark::ClobberMemory();
        });
        default: return block([&] {
          processSteps.Run();
          benchmark::ClobberMemory();
        });
      }
    });
  }
  ReportSamples(state, "memcpy", ns[0], "_ns", false);
  ReportSamples(state, "receive", ns[1], "_ns", false);
  ReportSamples(state, "required_steps", ns[2], "_ns", false);
  ReportSamples(state, "process", ns[3], "_ns", false);
  ReportSamples(state, "process_steps", ns[4], "_ns", false);
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
BENCHMARK(BM_InTurns)->Arg(64)->Arg(1024)->Iterations(1)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  const auto row = [](const char* label, const char* run, const char* ours, double target,
                      bool difference, const char* floor) {
    return RatioRow{.label = label,
                    .ours = run,
                    .baseline = run,
                    .counter = ours,
                    .target = target,
                    .alsoShow = "",
                    .baselineCounter = "memcpy_median_ns",
                    .baselineAlsoShow = "",
                    .difference = difference,
                    .floorCounter = floor};
  };
  return RunWithRatios(
      argc, argv,
      {row("Receive of 1024 frames/memcpy", "BM_InTurns/1024/iterations:1", "receive_median_ns",
           2.0, false, "required_steps_median_ns"),
       row("Receive of 64 frames, ns beyond memcpy", "BM_InTurns/64/iterations:1",
           "receive_median_ns", 60, true, "required_steps_median_ns"),
       row("Process of 1024 frames/memcpy", "BM_InTurns/1024/iterations:1", "process_median_ns",
           1.1, false, "process_steps_median_ns")});
}
