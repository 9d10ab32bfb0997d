// Runs the registered benchmarks as BENCHMARK_MAIN does, then prints one line per ratio that the
// program tracks: ours against the baseline of the same run, its target, and whether it holds.
#pragma once

#include <string>
#include <vector>

struct RatioRow {
  std::string label;     // what the line is called, e.g. "parse/pugixml"
  std::string ours;      // full run name of our benchmark
  std::string baseline;  // full run name of the baseline
  std::string counter;   // user counter to compare; empty compares real time per iteration
  double target = 1.0;
  // Speed compares baseline time over ours and must reach the target; otherwise ours over the
  // baseline must stay at or under it.
  bool speed = false;
  std::string alsoShow;  // another counter printed beside, for both runs (e.g. "p99_us")
  // Where both sides were measured in one run, side by side: the baseline's own counters.
  // Empty means the same names as `counter` and `alsoShow`.
  std::string baselineCounter{};
  std::string baselineAlsoShow{};
  // Compares ours minus the baseline, a fixed cost, which must stay at or under the target.
  bool difference = false;
  // A counter of our run holding the fastest form that the required steps allow, measured
  // beside ours: printed against the same baseline, to show how much of a gap they leave.
  std::string floorCounter{};
};

// With repetitions the median of each run is compared. Rows whose runs were filtered out are
// left out. Returns what main returns.
int RunWithRatios(int argc, char** argv, const std::vector<RatioRow>& rows);
