// Contenders measured in turns. On a shared machine the load changes from one second to the
// next; contenders timed one after the other, each for a minute, meet different loads, and their
// ratio says more about the neighbours than about them. Taking turns trial by trial puts the
// same load on each, and the median of each contender's trials keeps the ratio steady.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

// Runs `rounds` rounds of one trial per contender; round r starts with contender r % count, so
// none always goes first. `beforeTrial()` runs ahead of every trial, untimed by this helper;
// `trial(k)` returns one sample of contender k. Returns the samples of each contender.
template <class BeforeTrial, class Trial>
std::vector<std::vector<double>> InTurns(std::size_t count, std::size_t rounds,
                                         BeforeTrial beforeTrial, Trial trial) {
  std::vector<std::vector<double>> samples(count);
  for (auto& s : samples) s.reserve(rounds);
  for (std::size_t r = 0; r < rounds; ++r) {
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t k = (r + i) % count;
      beforeTrial();
      samples[k].push_back(trial(k));
    }
  }
  return samples;
}

// The value below which `fraction` of the samples lie; sorts them.
inline double Percentile(std::vector<double>& samples, double fraction) {
  if (samples.empty()) return 0;
  std::sort(samples.begin(), samples.end());
  const auto at = static_cast<std::size_t>(fraction * static_cast<double>(samples.size()));
  return samples[std::min(at, samples.size() - 1)];
}

// Reports "<name>_median<unit>" and, when asked, "<name>_p99<unit>" as counters of the run.
inline void ReportSamples(benchmark::State& state, const std::string& name,
                          std::vector<double>& samples, const std::string& unit, bool p99) {
  state.counters[name + "_median" + unit] = Percentile(samples, 0.5);
  if (p99) state.counters[name + "_p99" + unit] = Percentile(samples, 0.99);
}
