// The run's tempo and sample rate, shared by every instance's context. The tempo may change
// while audio streams (a JACK timebase master sets it); musical time then goes on from the tick
// it had reached, so a change never makes the ticks jump.
#pragma once

#include <cstdint>
#include <mutex>

// Tempo and rate at the start of a run.
struct HostTiming {
  double beatsPerMinute = 120.0;
  std::int32_t sampleRate = 48000;
  static constexpr std::int32_t kTicksPerQuarter = 480;
};

class CHostTempo {
 public:
  explicit CHostTempo(const HostTiming& timing)
      : m_rate(timing.sampleRate), m_bpm(timing.beatsPerMinute) {}

  // [any thread]
  std::int32_t SampleRate() const noexcept { return m_rate; }
  double BeatsPerMinute() const;
  // [streaming thread] From sample position `at` on, the tempo is `bpm`; a tempo that is not
  // positive, or the one in force, changes nothing.
  void Change(double bpm, std::int64_t at);
  // [any thread] Musical time at a sample position, and back.
  double SamplesToTicks(std::int64_t samples) const;
  double TicksToSamples(double ticks) const;

 private:
  double TicksPerSample() const;  // m_mutex held

  const std::int32_t m_rate;
  mutable std::mutex m_mutex;
  double m_bpm;
  std::int64_t m_anchorSample = 0;  // where the tempo in force began
  double m_anchorTicks = 0;
};
