#include "bench/ratio_report.h"

#include <cstdio>
#include <map>

#include <benchmark/benchmark.h>

namespace {

// Plain console output, as the default reporter gives in a pipe, keeping each run's figures by
// name: the median aggregate when there are repetitions, the run itself otherwise.
class CollectingReporter : public benchmark::ConsoleReporter {
 public:
  struct Figures {
    double realTime = 0;
    benchmark::UserCounters counters;
    bool fromMedian = false;
  };

  CollectingReporter() : ConsoleReporter(OO_None) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) continue;
      const bool median = run.run_type == Run::RT_Aggregate;
      if (median && run.aggregate_name != "median") continue;
      Figures& f = m_figures[run.run_name.str()];
      if (f.fromMedian && !median) continue;
      f.realTime = run.GetAdjustedRealTime();
      f.counters = run.counters;
      f.fromMedian = median;
    }
    ConsoleReporter::ReportRuns(runs);
  }

  const Figures* Find(const std::string& name) const {
    const auto it = m_figures.find(name);
    return it == m_figures.end() ? nullptr : &it->second;
  }

 private:
  std::map<std::string, Figures> m_figures;
};

bool Read(const CollectingReporter::Figures& f, const std::string& counter, double* value) {
  if (counter.empty()) {
    *value = f.realTime;
    return true;
  }
  const auto it = f.counters.find(counter);
  if (it == f.counters.end()) return false;
  *value = it->second.value;
  return true;
}

}  // namespace

int RunWithRatios(int argc, char** argv, const std::vector<RatioRow>& rows) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  CollectingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();

  bool first = true;
  for (const RatioRow& row : rows) {
    const auto* ours = reporter.Find(row.ours);
    const auto* baseline = reporter.Find(row.baseline);
    const std::string& baselineCounter =
        row.baselineCounter.empty() ? row.counter : row.baselineCounter;
    double a = 0, b = 0;
    if (!ours || !baseline || !Read(*ours, row.counter, &a) ||
        !Read(*baseline, baselineCounter, &b) || a <= 0 || b <= 0)
      continue;
    if (first) std::printf("\n");
    first = false;
    if (row.difference) {
      const double cost = a - b;
      std::printf("ratio %s %.1f (target under %g) %s", row.label.c_str(), cost, row.target,
                  cost <= row.target ? "met" : "missed");
    } else {
      const double ratio = row.speed ? b / a : a / b;
      const bool met = row.speed ? ratio >= row.target : ratio <= row.target;
      std::printf("ratio %s %.2fx%s (target %gx) %s", row.label.c_str(), ratio,
                  row.speed ? " speed" : "", row.target, met ? "met" : "missed");
    }
    if (!row.counter.empty()) std::printf("; %s %.1f against %.1f", row.counter.c_str(), a, b);
    double floor = 0;
    if (!row.floorCounter.empty() && Read(*ours, row.floorCounter, &floor) && floor > 0) {
      if (row.difference)
        std::printf("; the required steps alone %.1f", floor - b);
      else
        std::printf("; the required steps alone %.2fx", row.speed ? b / floor : floor / b);
    }
    const std::string& baselineAlso =
        row.baselineAlsoShow.empty() ? row.alsoShow : row.baselineAlsoShow;
    double extraOurs = 0, extraBaseline = 0;
    if (!row.alsoShow.empty() && Read(*ours, row.alsoShow, &extraOurs) &&
        Read(*baseline, baselineAlso, &extraBaseline))
      std::printf("; %s %.1f against %.1f", row.alsoShow.c_str(), extraOurs, extraBaseline);
    std::printf("\n");
  }
  return 0;
}
