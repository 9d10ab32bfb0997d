// The output worker and the live input road against bare baselines, measured in turns (see
// bench/in_turns.h) so that the machine's load falls alike on ours and on the baseline:
//  - hand-off: PostToWorker (or OnInput with one message) to the port's SendShortMsg, against a
//    bare mutex-and-condition-variable wake of a sleeping thread, and the worker's wait on its
//    pair of events alone against the same. One hand-off per 5.33 ms (256 frames at 48 kHz), the
//    four kinds taking turns, 10,000 of each; median and 99th percentile;
//  - throughput: one-message events through the worker (or records through OnInput) in batches
//    of 1, 16 and 256, against a bare queue of 8-byte records drained in batches by a thread;
//    the three take turns batch by batch, and the median batch gives the time per message. Beside
//    them the bare queue with the steps that each message must take on the worker's road and on
//    OnInput's: the fastest form the two could have.
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/in_turns.h"
#include "bench/ratio_report.h"
#include "platform/event.h"
#include "platform/lock.h"
#include "tests/support/test_instance.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kHostPeriod = std::chrono::microseconds(5333);
constexpr std::size_t kHandOffSamples = 10000;  // of each kind: a 99th percentile worth reading
constexpr std::size_t kThroughputRounds = 4000;

std::int64_t NowNs() { return Clock::now().time_since_epoch().count(); }

double MicrosBetween(std::int64_t fromNs, std::int64_t toNs) {
  return static_cast<double>(toNs - fromNs) / 1000.0;
}

// A rig whose port hands each send to the benchmark and whose activity goes nowhere. The time
// of each send is taken only where a hand-off is timed: a throughput's baseline reads no clock.
struct BenchRig {
  ConnectedRig rig;
  const bool stampSends;
  std::atomic<std::uint64_t> sends{0};
  std::atomic<std::int64_t> lastSendNs{0};

  explicit BenchRig(bool stamp) : stampSends(stamp) {
    rig.EnableOutput();
    rig.instance->SetEditorWindow(nullptr);
    rig.ports.SetShortSendHook(
        [](void* self, std::uint32_t) {
          auto& r = *static_cast<BenchRig*>(self);
          if (r.stampSends) r.lastSendNs.store(NowNs(), std::memory_order_relaxed);
          r.sends.fetch_add(1, std::memory_order_release);
        },
        this);
    rig.Start();
  }
  ~BenchRig() { rig.Stop(); }
  BenchRig(const BenchRig&) = delete;
  BenchRig& operator=(const BenchRig&) = delete;

  void WaitForSends(std::uint64_t count) const {
    while (sends.load(std::memory_order_acquire) < count) std::this_thread::yield();
  }
  // Runs `produce`, which hands one message to the instance, and returns the microseconds from
  // its start to the port's send.
  template <class Produce>
  double HandOff(Produce produce) {
    const std::uint64_t before = sends.load();
    const std::int64_t t0 = NowNs();
    produce();
    while (sends.load(std::memory_order_acquire) == before) {
    }
    return MicrosBetween(t0, lastSendNs.load());
  }
};

// The least a hand-off can cost: wake a thread asleep on a condition variable.
class BareWake {
 public:
  BareWake()
      : m_sleeper([this] {
          std::unique_lock lock(m_mutex);
          for (;;) {
            m_cv.wait(lock, [&] { return m_pending || m_done; });
            if (m_done) return;
            m_pending = false;
            m_wokeNs.store(NowNs());
            m_woken.fetch_add(1, std::memory_order_release);
          }
        }) {}
  ~BareWake() {
    {
      std::lock_guard lock(m_mutex);
      m_done = true;
    }
    m_cv.notify_one();
    m_sleeper.join();
  }
  BareWake(const BareWake&) = delete;
  BareWake& operator=(const BareWake&) = delete;

  double Once() {
    const int before = m_woken.load();
    const std::int64_t t0 = NowNs();
    {
      std::lock_guard lock(m_mutex);
      m_pending = true;
    }
    m_cv.notify_one();
    while (m_woken.load(std::memory_order_acquire) == before) {
    }
    return MicrosBetween(t0, m_wokeNs.load());
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_cv;
  bool m_pending = false;
  bool m_done = false;
  std::atomic<std::int64_t> m_wokeNs{0};
  std::atomic<int> m_woken{0};
  std::thread m_sleeper;  // last, so that it starts once the rest stands
};

// The worker's own wait alone: a thread in WaitForEither on a stop and a wake event, as the
// worker waits, woken by a set of the wake event. What the hand-offs cost beyond this is the
// instance's and the host's work on the way to the port.
class EventPairWake {
 public:
  EventPairWake()
      : m_sleeper([this] {
          while (WaitForEither(m_stop, m_wake) == 1) {
            m_wokeNs.store(NowNs());
            m_woken.fetch_add(1, std::memory_order_release);
          }
        }) {}
  ~EventPairWake() {
    m_stop.Set();
    m_sleeper.join();
  }
  EventPairWake(const EventPairWake&) = delete;
  EventPairWake& operator=(const EventPairWake&) = delete;

  double Once() {
    const int before = m_woken.load();
    const std::int64_t t0 = NowNs();
    m_wake.Set();
    while (m_woken.load(std::memory_order_acquire) == before) {
    }
    return MicrosBetween(t0, m_wokeNs.load());
  }

 private:
  CAutoResetEvent m_stop, m_wake;
  std::atomic<std::int64_t> m_wokeNs{0};
  std::atomic<int> m_woken{0};
  std::thread m_sleeper;
};

// The four kinds of hand-off in turns, one per host period.
void BM_HandOff(benchmark::State& state) {
  BareWake bare;
  EventPairWake pair;
  BenchRig bench(true);
  const CStoredEvent event = CStoredEvent::FromMessage(ShortMessage::FromBytes(0x90, 60, 100));
  FakeDataList list({{0, ShortMessage::FromBytes(0x90, 60, 100).message}});
  std::vector<std::vector<double>> micros;
  for (auto _ : state) {
    auto next = Clock::now();
    micros = InTurns(
        4, kHandOffSamples,
        [&] {
          next += kHostPeriod;
          std::this_thread::sleep_until(next);
        },
        [&](std::size_t kind) {
          switch (kind) {
            case 0: return bare.Once();
            case 1: return pair.Once();
            case 2: return bench.HandOff([&] { bench.rig.instance->PostToWorker(event); });
            default: return bench.HandOff([&] { bench.rig.instance->OnInput(0, &list); });
          }
        });
  }
  ReportSamples(state, "bare", micros[0], "_us", true);
  ReportSamples(state, "pair", micros[1], "_us", true);
  ReportSamples(state, "worker", micros[2], "_us", true);
  ReportSamples(state, "oninput", micros[3], "_us", true);
}

// The steps that each message must take on its way beyond a bare queue, and nothing else of
// ours: the sender takes the process-wide send lock around each port call and counts what went
// out; live input also counts each record as it arrives.
struct MessageSteps {
  bool send = false;
  bool countInput = false;
};

// A bare queue of 8-byte records: the producer appends under a lock and wakes the drainer, which
// swaps the whole queue out and consumes it; with `steps`, each record also takes them.
class BareQueue {
 public:
  static std::vector<std::uint64_t> Reserved(std::size_t capacity) {
    std::vector<std::uint64_t> v;
    v.reserve(capacity);
    return v;
  }
  explicit BareQueue(MessageSteps steps = {}) : m_steps(steps), m_drainer([this] { Drain(); }) {}
  ~BareQueue() {
    {
      std::lock_guard lock(m_mutex);
      m_done = true;
    }
    m_cv.notify_one();
    m_drainer.join();
  }
  BareQueue(const BareQueue&) = delete;
  BareQueue& operator=(const BareQueue&) = delete;

  // Posts `batch` records one by one and waits until all are consumed.
  void Batch(std::uint64_t batch) {
    for (std::uint64_t i = 0; i < batch; ++i) {
      {
        std::lock_guard lock(m_mutex);
        m_queue.push_back(i);
      }
      m_cv.notify_one();
      if (m_steps.countInput) m_counted.fetch_add(1, std::memory_order_relaxed);
    }
    m_target += batch;
    while (m_consumed.load(std::memory_order_acquire) < m_target) std::this_thread::yield();
  }

 private:
  void Drain() {
    std::vector<std::uint64_t> local = Reserved(4096);
    std::unique_lock lock(m_mutex);
    for (;;) {
      m_cv.wait(lock, [&] { return !m_queue.empty() || m_done; });
      if (m_done) return;
      std::swap(m_queue, local);
      lock.unlock();
      std::uint64_t sum = 0;
      for (const std::uint64_t r : local) {
        if (m_steps.send) {
          {
            CAutoLock send(m_sendLock);
            sum += r;
          }
          m_counted.fetch_add(1, std::memory_order_relaxed);
        } else {
          sum += r;
        }
      }
      benchmark::DoNotOptimize(sum);
      m_consumed.fetch_add(local.size(), std::memory_order_release);
      local.clear();
      lock.lock();
    }
  }

  MessageSteps m_steps;
  CCritSec m_sendLock;
  std::atomic<std::uint64_t> m_counted{0};
  std::mutex m_mutex;
  std::condition_variable m_cv;
  std::vector<std::uint64_t> m_queue = Reserved(4096);
  bool m_done = false;
  std::atomic<std::uint64_t> m_consumed{0};
  std::uint64_t m_target = 0;
  std::thread m_drainer;
};

// Batches of `range(0)` messages through the bare queue, the worker and OnInput in turns, and
// through the bare queue with the steps that each of the two must take; the median batch of
// each, per message.
void BM_Throughput(benchmark::State& state) {
  const auto batch = static_cast<std::uint64_t>(state.range(0));
  BareQueue bare;
  BareQueue workerSteps({.send = true});
  BareQueue inputSteps({.send = true, .countInput = true});
  BenchRig bench(false);
  const CStoredEvent event = CStoredEvent::FromMessage(ShortMessage::FromBytes(0x90, 60, 100));
  const std::vector<HostDataRecord> records(batch,
                                            {0, ShortMessage::FromBytes(0x90, 60, 100).message});
  FakeDataList list(records);
  std::uint64_t sent = 0;
  const auto timed = [&](auto produce) {
    const std::int64_t t0 = NowNs();
    produce();
    return static_cast<double>(NowNs() - t0) / static_cast<double>(batch);
  };
  std::vector<std::vector<double>> nsPerMessage;
  for (auto _ : state) {
    nsPerMessage = InTurns(
        5, kThroughputRounds, [] {},
        [&](std::size_t kind) {
          switch (kind) {
            case 0: return timed([&] { bare.Batch(batch); });
            case 3: return timed([&] { workerSteps.Batch(batch); });
            case 4: return timed([&] { inputSteps.Batch(batch); });
            case 1:
              return timed([&] {
                for (std::uint64_t i = 0; i < batch; ++i) bench.rig.instance->PostToWorker(event);
                bench.WaitForSends(sent += batch);
              });
            default:
              return timed([&] {
                bench.rig.instance->OnInput(0, &list);
                bench.WaitForSends(sent += batch);
              });
          }
        });
  }
  ReportSamples(state, "bare", nsPerMessage[0], "_ns_per_msg", false);
  ReportSamples(state, "worker", nsPerMessage[1], "_ns_per_msg", false);
  ReportSamples(state, "oninput", nsPerMessage[2], "_ns_per_msg", false);
  ReportSamples(state, "worker_steps", nsPerMessage[3], "_ns_per_msg", false);
  ReportSamples(state, "oninput_steps", nsPerMessage[4], "_ns_per_msg", false);
}

}  // namespace

BENCHMARK(BM_HandOff)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Throughput)->Arg(1)->Arg(16)->Arg(256)->Iterations(1)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  // Both sides of each ratio come from one run, where they took turns.
  const auto sideBySide = [](const char* label, const char* run, const char* ours,
                             const char* baseline, double target, const char* oursAlso,
                             const char* baselineAlso, const char* floor) {
    return RatioRow{.label = label,
                    .ours = run,
                    .baseline = run,
                    .counter = ours,
                    .target = target,
                    .alsoShow = oursAlso,
                    .baselineCounter = baseline,
                    .baselineAlsoShow = baselineAlso,
                    .floorCounter = floor};
  };
  const char* handOff = "BM_HandOff/iterations:1";
  const char* batch256 = "BM_Throughput/256/iterations:1";
  return RunWithRatios(
      argc, argv,
      // The worker's wait on its pair of events is the least a hand-off must take.
      {sideBySide("hand-off PostToWorker/bare wake", handOff, "worker_median_us",
                  "bare_median_us", 1.2, "worker_p99_us", "bare_p99_us", "pair_median_us"),
       sideBySide("hand-off OnInput/bare wake", handOff, "oninput_median_us", "bare_median_us",
                  1.2, "oninput_p99_us", "bare_p99_us", "pair_median_us"),
       sideBySide("per message through the worker, batch of 256/bare queue", batch256,
                  "worker_median_ns_per_msg", "bare_median_ns_per_msg", 1.5, "", "",
                  "worker_steps_median_ns_per_msg"),
       sideBySide("per message through OnInput, batch of 256/bare queue", batch256,
                  "oninput_median_ns_per_msg", "bare_median_ns_per_msg", 1.5, "", "",
                  "oninput_steps_median_ns_per_msg")});
}
