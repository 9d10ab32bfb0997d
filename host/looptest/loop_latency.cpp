#include "host/looptest/loop_latency.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "platform/codepage.h"

namespace {

constexpr std::uint8_t kTestStatus = 0xB0;

// Upper bounds of the histogram's buckets in microseconds; the last bucket has none.
constexpr double kBucketsUs[] = {50,    100,   200,    500,    1000,   2000,
                                 5000,  10000, 20000,  50000,  100000, 200000};
constexpr std::size_t kBuckets = std::size(kBucketsUs) + 1;

std::string Milliseconds(double us) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f ms", us / 1000.0);
  return text;
}

std::string BucketLabel(std::size_t bucket) {
  char text[48];
  if (bucket == 0)
    std::snprintf(text, sizeof text, "< %g ms", kBucketsUs[0] / 1000.0);
  else if (bucket == kBuckets - 1)
    std::snprintf(text, sizeof text, ">= %g ms", kBucketsUs[bucket - 1] / 1000.0);
  else
    std::snprintf(text, sizeof text, "%g-%g ms", kBucketsUs[bucket - 1] / 1000.0,
                  kBucketsUs[bucket] / 1000.0);
  std::string label = text;
  label.insert(0, label.size() < 16 ? 16 - label.size() : 0, ' ');
  return label;
}

}  // namespace

void CLoopLatency::Begin() {
  std::lock_guard lock(m_mutex);
  m_recording = true;
}

void CLoopLatency::OnSent(std::int32_t port, std::span<const std::uint8_t> bytes,
                          TimePoint at) {
  if (bytes.size() != 3 || bytes[0] != kTestStatus) return;
  const std::uint32_t packed = bytes[0] | static_cast<std::uint32_t>(bytes[1]) << 8 |
                               static_cast<std::uint32_t>(bytes[2]) << 16;
  std::lock_guard lock(m_mutex);
  if (!m_recording) return;
  m_sends[packed].push_back({at, port, {}});
}

void CLoopLatency::OnArrived(std::int32_t input, std::uint32_t packed, TimePoint at) {
  if ((packed & 0xFF) != kTestStatus) return;
  std::lock_guard lock(m_mutex);
  if (!m_recording) return;
  std::size_t& duplicates = m_duplicates[input];  // every input that heard the test is reported
  auto sends = m_sends.find(packed & 0xFFFFFF);
  if (sends != m_sends.end()) {
    for (Send& send : sends->second) {
      if (std::find(send.matched.begin(), send.matched.end(), input) != send.matched.end())
        continue;
      send.matched.push_back(input);
      m_latencies[{send.output, input}].push_back(
          std::chrono::duration<double, std::micro>(at - send.at).count());
      return;
    }
  }
  ++duplicates;
}

CLoopLatency::Summary CLoopLatency::Summarise(std::vector<double> latenciesUs) {
  Summary summary;
  summary.count = latenciesUs.size();
  if (latenciesUs.empty()) return summary;
  std::sort(latenciesUs.begin(), latenciesUs.end());
  // Nearest rank: the smallest value with at least that share of values at or below it.
  const auto rank = [&](double share) {
    const auto n =
        static_cast<std::size_t>(std::ceil(share * static_cast<double>(latenciesUs.size())));
    return latenciesUs[std::max<std::size_t>(n, 1) - 1];
  };
  summary.min = latenciesUs.front();
  summary.median = rank(0.5);
  summary.p99 = rank(0.99);
  summary.max = latenciesUs.back();
  return summary;
}

std::string LatencyHistogram(const std::vector<double>& latenciesUs) {
  std::size_t counts[kBuckets] = {};
  for (const double us : latenciesUs) {
    const auto bucket = std::upper_bound(std::begin(kBucketsUs), std::end(kBucketsUs), us);
    ++counts[bucket - std::begin(kBucketsUs)];
  }
  const auto first = std::find_if(std::begin(counts), std::end(counts), [](auto c) { return c; });
  const auto last = std::find_if(std::rbegin(counts), std::rend(counts), [](auto c) { return c; });
  if (first == std::end(counts)) return {};
  const std::size_t most = *std::max_element(std::begin(counts), std::end(counts));
  std::string text;
  for (auto bucket = first; bucket != last.base(); ++bucket) {
    const auto width = static_cast<std::size_t>(
        std::ceil(40.0 * static_cast<double>(*bucket) / static_cast<double>(most)));
    std::string bar(width, '#');
    bar.resize(40, ' ');
    text += BucketLabel(static_cast<std::size_t>(bucket - std::begin(counts))) + "  " + bar +
            "  " + std::to_string(*bucket) + "\n";
  }
  return text;
}

std::string CLoopLatency::Report(const PortNames& names) const {
  std::lock_guard lock(m_mutex);
  std::string text;
  for (const auto& [ports, latencies] : m_latencies) {
    const Summary s = Summarise(latencies);
    text += "round trip " + WideToNarrow(names.output(ports.first)) + " -> " +
            WideToNarrow(names.input(ports.second)) + ": " + std::to_string(s.count) +
            " test messages\n  min " + Milliseconds(s.min) + "  median " +
            Milliseconds(s.median) + "  p99 " + Milliseconds(s.p99) + "  max " +
            Milliseconds(s.max) + "\n" + LatencyHistogram(latencies);
  }
  std::map<std::int32_t, std::size_t> lost;
  for (const auto& [packed, sends] : m_sends)
    for (const Send& send : sends) lost[send.output] += send.matched.empty() ? 1u : 0u;
  for (const auto& [output, count] : lost)
    text += "lost at " + WideToNarrow(names.output(output)) + ": " + std::to_string(count) + "\n";
  for (const auto& [input, count] : m_duplicates)
    text += "duplicated at " + WideToNarrow(names.input(input)) + ": " + std::to_string(count) +
            "\n";
  if (text.empty()) text = "no test message went out\n";
  return text;
}
