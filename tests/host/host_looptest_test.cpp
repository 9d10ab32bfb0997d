// The closed-loop test as tarn-host runs it, on a clock that moves only when the runner sleeps,
// over fake instances that a wire joins at once: runs of many seconds take milliseconds. Then
// the host's latency report, which matches what went out with what came back.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "host/looptest/loop_latency.h"
#include "host/looptest/loop_test_runner.h"
#include "tests/support/fake_loop_instance.h"

namespace {

using namespace std::chrono_literals;

class ManualClock final : public CLoopClock {
 public:
  TimePoint Now() override { return m_now; }
  void SleepUntil(TimePoint when) override {
    if (when > m_now) m_now = when;
  }
  std::chrono::milliseconds Elapsed() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(m_now - TimePoint{});
  }

 private:
  TimePoint m_now{};
};

class LoopRunnerTest : public ::testing::Test {
 protected:
  LoopRunnerTest() : m_out(open_memstream(&m_text, &m_size)) {}
  ~LoopRunnerTest() override {
    std::fclose(m_out);
    std::free(m_text);
  }

  FakeLoopInstance& Add(bool active = true) {
    instances.push_back(std::make_unique<FakeLoopInstance>(active));
    return *instances.back();
  }
  bool Run(LoopTestOptions options) {
    CLoopTestRunner runner(
        [this](const std::function<void(IMyFilter*)>& visit) {
          for (auto& instance : instances) visit(instance.get());
        },
        clock, options, m_out);
    runner.OnStatus([this](const std::wstring& status) { statuses.push_back(status); });
    const bool passed = runner.Run(instances.empty() ? nullptr : instances.front().get());
    cleanRuns = runner.CleanRuns();
    return passed;
  }
  std::string Printed() {
    std::fflush(m_out);
    return std::string(m_text, m_size);
  }

  std::vector<std::unique_ptr<FakeLoopInstance>> instances;
  ManualClock clock;
  std::vector<std::wstring> statuses;
  std::uint32_t cleanRuns = 0;

 private:
  char* m_text = nullptr;
  std::size_t m_size = 0;
  std::FILE* m_out;
};

TEST_F(LoopRunnerTest, OneInstanceWiredToItselfPassesTheRunsAskedForThenStopsFinished) {
  FakeLoopInstance& a = Add();
  a.WireTo(a);
  EXPECT_TRUE(Run({2, 30s}));
  EXPECT_EQ(cleanRuns, 2u);
  EXPECT_EQ(statuses, (std::vector<std::wstring>{
                          kClosedLoopWaiting, kClosedLoopTesting, kClosedLoopFinishing,
                          kClosedLoopRestarting, kClosedLoopTesting, kClosedLoopFinishing,
                          kClosedLoopRestarting, kClosedLoopUserStop, kClosedLoopFinished}));
  // A run: a second of quiet, 65 ticks of sending, a drain and an end tick; the second run
  // waits one tick more, for the totals of the first to clear.
  EXPECT_EQ(clock.Elapsed(), 7900ms + 8900ms + 200ms);
  EXPECT_EQ(a.messages.size(), 1280u);
  EXPECT_EQ(a.flags, (std::vector<std::uint8_t>{1, 0}));  // the test's flag, cleared at the end
  const std::string printed = Printed();
  EXPECT_NE(printed.find("   1.000 s  Testing...\n"), std::string::npos) << printed;
  EXPECT_NE(printed.find("instances 1  sent 640  received 640  difference 0\n"),
            std::string::npos);
  EXPECT_NE(printed.find("  17.000 s  Finished\n"), std::string::npos) << printed;
}

TEST_F(LoopRunnerTest, WithNoActiveOutputThereIsNothingToTest) {
  FakeLoopInstance& idle = Add(false);
  EXPECT_FALSE(Run({1, 30s}));
  EXPECT_TRUE(statuses.empty());
  EXPECT_EQ(idle.flags, (std::vector<std::uint8_t>{0}));  // cleared all the same
  EXPECT_NE(Printed().find("no instance has an active output"), std::string::npos);
}

// --- the latency report ----------------------------------------------------------------------

using TimePoint = CLoopLatency::TimePoint;

std::vector<std::uint8_t> TestMessage(std::uint8_t number) { return {0xB0, number, 0}; }
std::uint32_t Packed(std::uint8_t number) {
  return 0xB0u | static_cast<std::uint32_t>(number) << 8;
}

TEST(LoopLatency, EachReturnMatchesItsSendPerInputAndTheRestAreLostOrDuplicated) {
  CLoopLatency latency;
  constexpr std::int32_t kOut = 0, kInA = 1000, kInB = 1001;
  const TimePoint t0{};
  latency.OnSent(kOut, TestMessage(1), t0);  // before the test: not recorded
  latency.Begin();
  latency.OnSent(kOut, TestMessage(1), t0);
  latency.OnSent(kOut, TestMessage(2), t0 + 1ms);
  latency.OnSent(kOut, TestMessage(3), t0 + 2ms);  // never comes back
  latency.OnSent(kOut, std::vector<std::uint8_t>{0x90, 60, 100}, t0);  // no test message
  // Fanned out to two inputs: each input may see each send once.
  latency.OnArrived(kInA, Packed(1), t0 + 3ms);
  latency.OnArrived(kInB, Packed(1), t0 + 4ms);
  latency.OnArrived(kInA, Packed(2), t0 + 3ms);
  latency.OnArrived(kInA, Packed(2), t0 + 5ms);  // a second time at the same input
  latency.OnArrived(kInB, Packed(9), t0 + 5ms);  // never sent

  const std::string report = latency.Report(
      {[](std::int32_t) { return std::wstring(L"Out"); },
       [](std::int32_t id) { return std::wstring(id == kInA ? L"In A" : L"In B"); }});
  EXPECT_NE(report.find("round trip Out -> In A: 2 test messages\n"
                        "  min 2.000 ms  median 2.000 ms  p99 3.000 ms  max 3.000 ms\n"),
            std::string::npos)
      << report;
  EXPECT_NE(report.find("round trip Out -> In B: 1 test messages\n"), std::string::npos);
  EXPECT_NE(report.find("lost at Out: 1\n"), std::string::npos);
  EXPECT_NE(report.find("duplicated at In A: 1\nduplicated at In B: 1\n"), std::string::npos);
}

TEST(LoopLatency, FiguresAreNearestRankAndTheHistogramSpansTheUsedBuckets) {
  std::vector<double> us;
  for (int i = 1; i <= 100; ++i) us.push_back(i * 10.0);
  const CLoopLatency::Summary s = CLoopLatency::Summarise(us);
  EXPECT_EQ(s.count, 100u);
  EXPECT_EQ(s.min, 10.0);
  EXPECT_EQ(s.median, 500.0);
  EXPECT_EQ(s.p99, 990.0);
  EXPECT_EQ(s.max, 1000.0);

  const std::string histogram = LatencyHistogram({30, 40, 150, 250000});
  // Bars scale to the fullest bucket; the first and last buckets are open-ended.
  EXPECT_EQ(histogram.substr(0, histogram.find('\n') + 1),
            "       < 0.05 ms  ########################################  2\n");
  EXPECT_NE(histogram.find("\n      0.1-0.2 ms  ####################                      1\n"),
            std::string::npos);
  EXPECT_TRUE(histogram.ends_with("\n       >= 200 ms  ####################                      1\n"))
      << histogram;
  EXPECT_EQ(LatencyHistogram({}), "");
}

}  // namespace
