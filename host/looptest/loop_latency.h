// What the host adds to the closed-loop test, seeing both ends of the wire: each test message
// is time-stamped as it goes out at a port and matched when it comes back at an input, giving
// per pair of ports the round-trip latency (minimum, median, 99th percentile, maximum, and a
// text histogram), and the messages lost and duplicated. The test itself counts only numbers of
// events; this report is the host's own.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <span>
#include <string>
#include <vector>

class CLoopLatency {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  // [any thread] Recording starts here, so that what instances sent before the test (their
  // stored lists) is left out.
  void Begin();
  // [the sender's thread] A message went out at output `port` (the back end's number for it).
  // Only test messages (three bytes, controller on the first channel) are kept. Called as the
  // message leaves, so that it is known before it can come back.
  void OnSent(std::int32_t port, std::span<const std::uint8_t> bytes, TimePoint at);
  // [the input thread] A short message arrived at the input with id `inputId`. It is matched
  // with the earliest send of the same bytes that has not yet come back at that input; one with
  // no such send is a duplicate.
  void OnArrived(std::int32_t inputId, std::uint32_t packed, TimePoint at);

  // How the report names the ports.
  struct PortNames {
    std::function<std::wstring(std::int32_t)> output;  // by the back end's number
    std::function<std::wstring(std::int32_t)> input;   // by id
  };
  // [host thread, after the test] The report, one block per pair of ports that carried test
  // messages, then the losses per output and the duplicates per input.
  std::string Report(const PortNames& names) const;

  // The figures of one pair of ports, in microseconds, for the report and its tests.
  struct Summary {
    std::size_t count = 0;
    double min = 0, median = 0, p99 = 0, max = 0;
  };
  static Summary Summarise(std::vector<double> latenciesUs);

 private:
  struct Send {
    TimePoint at;
    std::int32_t output;
    std::vector<std::int32_t> matched;  // inputs it came back at
  };

  mutable std::mutex m_mutex;
  bool m_recording = false;
  std::map<std::uint32_t, std::vector<Send>> m_sends;  // by message, in send order
  std::map<std::pair<std::int32_t, std::int32_t>, std::vector<double>> m_latencies;
  std::map<std::int32_t, std::size_t> m_duplicates;  // by input, every input seen
};

// A text histogram of `latenciesUs`: one line per bucket of round-trip time, with a bar and the
// count, from the first bucket that holds anything to the last.
std::string LatencyHistogram(const std::vector<double>& latenciesUs);
