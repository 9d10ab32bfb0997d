// The output worker and the live input road against bare baselines in the same run:
//  - hand-off: PostToWorker (or OnInput with one message) to the port's SendShortMsg, one post
//    per 5.33 ms (256 frames at 48 kHz), against a bare mutex-and-condition-variable wake of a
//    sleeping thread, and the worker's wait on its pair of events alone against the same;
//  - throughput: one-message events through the worker (or records through OnInput) in batches
//    of 1, 16 and 256, against a bare queue of 8-byte records drained in batches by a thread.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/ratio_report.h"
#include "platform/event.h"
#include "tests/support/test_instance.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kHostPeriod = std::chrono::microseconds(5333);
constexpr int kHandOffSamples = 10000;  // enough for a 99th percentile worth reading

void ReportLatencies(benchmark::State& state, std::vector<double>& micros) {
  std::sort(micros.begin(), micros.end());
  state.counters["median_us"] = micros[micros.size() / 2];
  state.counters["p99_us"] = micros[micros.size() * 99 / 100];
}

// A rig whose port hands each send to the benchmark and whose activity goes nowhere.
struct BenchRig {
  ConnectedRig rig;
  std::atomic<std::uint64_t> sends{0};
  std::atomic<std::int64_t> lastSendNs{0};

  BenchRig() {
    rig.EnableOutput();
    rig.instance->SetEditorWindow(nullptr);
    rig.ports.SetShortSendHook(
        [](void* self, std::uint32_t) {
          auto& r = *static_cast<BenchRig*>(self);
          r.lastSendNs.store(Clock::now().time_since_epoch().count(), std::memory_order_relaxed);
          r.sends.fetch_add(1, std::memory_order_release);
        },
        this);
    rig.Start();
  }
  ~BenchRig() { rig.Stop(); }
  void WaitForSends(std::uint64_t count) {
    while (sends.load(std::memory_order_acquire) < count) std::this_thread::yield();
  }
};

// Runs `handOff` once per host period, as a host posts at 256 frames and 48 kHz; `handOff`
// returns the time from the post to its arrival, in microseconds.
template <class HandOffOnce>
void PacedHandOffs(benchmark::State& state, HandOffOnce handOff) {
  std::vector<double> micros;
  for (auto _ : state) {
    micros.clear();
    auto next = Clock::now();
    for (int i = 0; i < kHandOffSamples; ++i) {
      next += kHostPeriod;
      std::this_thread::sleep_until(next);
      micros.push_back(handOff());
    }
  }
  ReportLatencies(state, micros);
}

double MicrosSince(Clock::time_point t0, std::int64_t arrivedNs) {
  const auto arrived = Clock::time_point(Clock::duration(arrivedNs));
  return std::chrono::duration<double, std::micro>(arrived - t0).count();
}

// Hands one message to the instance the way a producer does: posted, or delivered live.
template <class Produce>
void HandOff(benchmark::State& state, BenchRig& bench, Produce produce) {
  PacedHandOffs(state, [&] {
    const std::uint64_t before = bench.sends.load();
    const auto t0 = Clock::now();
    produce();
    while (bench.sends.load(std::memory_order_acquire) == before) {
    }
    return MicrosSince(t0, bench.lastSendNs.load());
  });
}

void BM_HandOff_Worker(benchmark::State& state) {
  BenchRig bench;
  const CStoredEvent event = CStoredEvent::FromMessage(ShortMessage::FromBytes(0x90, 60, 100));
  HandOff(state, bench, [&] { bench.rig.instance->PostToWorker(event); });
}

void BM_HandOff_OnInput(benchmark::State& state) {
  BenchRig bench;
  FakeDataList list({{0, ShortMessage::FromBytes(0x90, 60, 100).message}});
  HandOff(state, bench, [&] { bench.rig.instance->OnInput(0, &list); });
}

// The least a hand-off can cost: wake a thread asleep on a condition variable.
void BM_HandOff_BareWake(benchmark::State& state) {
  std::mutex mutex;
  std::condition_variable cv;
  bool pending = false, done = false;
  std::atomic<std::int64_t> wokeNs{0};
  std::atomic<int> woken{0};
  std::thread sleeper([&] {
    std::unique_lock lock(mutex);
    for (;;) {
      cv.wait(lock, [&] { return pending || done; });
      if (done) return;
      pending = false;
      wokeNs.store(Clock::now().time_since_epoch().count());
      woken.fetch_add(1, std::memory_order_release);
    }
  });
  PacedHandOffs(state, [&] {
    const int before = woken.load();
    const auto t0 = Clock::now();
    {
      std::lock_guard lock(mutex);
      pending = true;
    }
    cv.notify_one();
    while (woken.load(std::memory_order_acquire) == before) {
    }
    return MicrosSince(t0, wokeNs.load());
  });
  {
    std::lock_guard lock(mutex);
    done = true;
  }
  cv.notify_one();
  sleeper.join();
}

// The worker's own wait alone: a thread in WaitForEither on a stop and a wake event, as the
// worker waits, woken by a set of the wake event. What the hand-offs cost beyond this is the
// instance's and the host's work on the way to the port.
void BM_HandOff_EventPair(benchmark::State& state) {
  CAutoResetEvent stop, wake;
  std::atomic<std::int64_t> wokeNs{0};
  std::atomic<int> woken{0};
  std::thread sleeper([&] {
    while (WaitForEither(stop, wake) == 1) {
      wokeNs.store(Clock::now().time_since_epoch().count());
      woken.fetch_add(1, std::memory_order_release);
    }
  });
  PacedHandOffs(state, [&] {
    const int before = woken.load();
    const auto t0 = Clock::now();
    wake.Set();
    while (woken.load(std::memory_order_acquire) == before) {
    }
    return MicrosSince(t0, wokeNs.load());
  });
  stop.Set();
  sleeper.join();
}

// Sends `batch` messages per iteration through `produce(batch)` and waits until all arrived.
template <class Produce>
void Throughput(benchmark::State& state, BenchRig& bench, Produce produce) {
  const auto batch = static_cast<std::uint64_t>(state.range(0));
  std::uint64_t target = 0;
  for (auto _ : state) {
    produce(batch);
    target += batch;
    bench.WaitForSends(target);
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(target));
  state.counters["ns_per_msg"] = benchmark::Counter(
      static_cast<double>(target), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_Throughput_Worker(benchmark::State& state) {
  BenchRig bench;
  const CStoredEvent event = CStoredEvent::FromMessage(ShortMessage::FromBytes(0x90, 60, 100));
  Throughput(state, bench, [&](std::uint64_t batch) {
    for (std::uint64_t i = 0; i < batch; ++i) bench.rig.instance->PostToWorker(event);
  });
}

void BM_Throughput_OnInput(benchmark::State& state) {
  BenchRig bench;
  const std::vector<HostDataRecord> records(static_cast<std::size_t>(state.range(0)),
                                            {0, ShortMessage::FromBytes(0x90, 60, 100).message});
  FakeDataList list(records);
  Throughput(state, bench, [&](std::uint64_t) { bench.rig.instance->OnInput(0, &list); });
}

// A bare queue of 8-byte records: the producer appends under a lock and wakes the drainer, which
// swaps the whole queue out and consumes it.
void BM_Throughput_BareQueue(benchmark::State& state) {
  const auto batch = static_cast<std::uint64_t>(state.range(0));
  std::mutex mutex;
  std::condition_variable cv;
  std::vector<std::uint64_t> queue, local;
  queue.reserve(4096);
  local.reserve(4096);
  bool done = false;
  std::atomic<std::uint64_t> consumed{0};
  std::thread drainer([&] {
    std::unique_lock lock(mutex);
    for (;;) {
      cv.wait(lock, [&] { return !queue.empty() || done; });
      if (done) return;
      std::swap(queue, local);
      lock.unlock();
      std::uint64_t sum = 0;
      for (const std::uint64_t r : local) sum += r;
      benchmark::DoNotOptimize(sum);
      consumed.fetch_add(local.size(), std::memory_order_release);
      local.clear();
      lock.lock();
    }
  });
  std::uint64_t target = 0;
  for (auto _ : state) {
    for (std::uint64_t i = 0; i < batch; ++i) {
      {
        std::lock_guard lock(mutex);
        queue.push_back(i);
      }
      cv.notify_one();
    }
    target += batch;
    while (consumed.load(std::memory_order_acquire) < target) std::this_thread::yield();
  }
  {
    std::lock_guard lock(mutex);
    done = true;
  }
  cv.notify_one();
  drainer.join();
  state.SetItemsProcessed(static_cast<std::int64_t>(target));
  state.counters["ns_per_msg"] = benchmark::Counter(
      static_cast<double>(target), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

}  // namespace

BENCHMARK(BM_HandOff_BareWake)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HandOff_EventPair)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HandOff_Worker)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HandOff_OnInput)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Throughput_BareQueue)->Arg(1)->Arg(16)->Arg(256)->UseRealTime();
BENCHMARK(BM_Throughput_Worker)->Arg(1)->Arg(16)->Arg(256)->UseRealTime();
BENCHMARK(BM_Throughput_OnInput)->Arg(1)->Arg(16)->Arg(256)->UseRealTime();
int main(int argc, char** argv) {
  const auto handOff = [](const char* label, const char* ours) {
    return RatioRow{.label = label,
                    .ours = ours,
                    .baseline = "BM_HandOff_BareWake/iterations:1",
                    .counter = "median_us",
                    .target = 1.2,
                    .alsoShow = "p99_us"};
  };
  // The share of the hand-offs that the worker's wait itself has, under the same target.
  const RatioRow pair =
      handOff("wake of the worker's event pair/bare wake", "BM_HandOff_EventPair/iterations:1");
  return RunWithRatios(argc, argv,
                       {handOff("hand-off PostToWorker/bare wake", "BM_HandOff_Worker/iterations:1"),
                        handOff("hand-off OnInput/bare wake", "BM_HandOff_OnInput/iterations:1"),
                        pair});
}
