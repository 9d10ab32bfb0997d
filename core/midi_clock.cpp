// MIDI clock from the host's tempo. The audio stream is the clock source: each buffer may give
// one clock, which goes through the worker like everything else that leaves the instance.
#include "core/soft_synth.h"

namespace {

constexpr std::uint32_t kTimingClock = 0xF8;
constexpr std::int32_t kClocksPerQuarter = 24;

}  // namespace

void CSoftSynth::SendClockIfDue(std::int64_t position) {
  // The flags are atomics, so this early test costs no lock; the host is checked under it.
  if (!m_ports.OutputEnabled() || !m_midiSync) return;
  CAutoLock lock(InstanceLock());
  IHostTempoMap* tempoMap = m_connection.TempoMap();
  if (!tempoMap) return;
  const std::int32_t interval = tempoMap->GetTicksPerQuarter() / kClocksPerQuarter;
  const std::int32_t now = SamplesToTicks(position);
  // A jump backwards (a loop) sends nothing by itself: counting starts again from there.
  if (now < m_lastClockTick) m_lastClockTick = now;
  if (std::int64_t{now} - m_lastClockTick < interval) return;
  m_worker.Post(CStoredEvent::FromMessage({static_cast<std::uint32_t>(interval), kTimingClock}));
  m_lastClockTick = now;
}
