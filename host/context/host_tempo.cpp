#include "host/context/host_tempo.h"

double CHostTempo::BeatsPerMinute() const {
  std::lock_guard lock(m_mutex);
  return m_bpm;
}

double CHostTempo::TicksPerSample() const {
  return m_bpm * HostTiming::kTicksPerQuarter / (60.0 * m_rate);
}

void CHostTempo::Change(double bpm, std::int64_t at) {
  std::lock_guard lock(m_mutex);
  if (!(bpm > 0) || bpm == m_bpm) return;
  m_anchorTicks += static_cast<double>(at - m_anchorSample) * TicksPerSample();
  m_anchorSample = at;
  m_bpm = bpm;
}

double CHostTempo::SamplesToTicks(std::int64_t samples) const {
  std::lock_guard lock(m_mutex);
  return m_anchorTicks + static_cast<double>(samples - m_anchorSample) * TicksPerSample();
}

double CHostTempo::TicksToSamples(double ticks) const {
  std::lock_guard lock(m_mutex);
  return static_cast<double>(m_anchorSample) + (ticks - m_anchorTicks) / TicksPerSample();
}
