#include "host/looptest/loop_test_runner.h"

#include <algorithm>

#include "platform/codepage.h"

CLoopTestRunner::CLoopTestRunner(Walk walk, CLoopClock& clock, const LoopTestOptions& options,
                                 std::FILE* out)
    : m_walk(std::move(walk)), m_clock(clock), m_options(options), m_out(out) {}

double CLoopTestRunner::Seconds() const {
  return std::chrono::duration<double>(m_clock.Now() - m_start).count();
}

void CLoopTestRunner::StartTimer(std::uint32_t id, std::uint32_t periodMs) {
  const std::chrono::milliseconds period(periodMs);
  m_timers[id] = {period, m_clock.Now() + period};
}

void CLoopTestRunner::ShowStatus(const std::wstring& text) {
  m_status = text;
  if (text == kClosedLoopRestarting) {
    ++m_cleanRuns;
    m_runStart = m_clock.Now();
  }
  std::fprintf(m_out, "%8.3f s  %s\n", Seconds(), WideToNarrow(text).c_str());
  std::fflush(m_out);  // a pipe or a file follows the test as it moves, as a terminal does
  if (m_observer) m_observer(text);
}

void CLoopTestRunner::Refresh(const ClosedLoopNumbers& numbers) {
  const bool moved = !m_anyShown || numbers.instanceCount != m_shown.instanceCount ||
                     numbers.sent != m_shown.sent || numbers.received != m_shown.received ||
                     numbers.difference != m_shown.difference;
  if (!moved) return;
  m_shown = numbers;
  m_anyShown = true;
  std::fprintf(m_out, "%8.3f s  instances %u  sent %u  received %u  difference %d\n", Seconds(),
               numbers.instanceCount, numbers.sent, numbers.received, numbers.difference);
  std::fflush(m_out);
}

void CLoopTestRunner::PressStop() {
  m_stopPressed = true;
  m_test->OnStop();
}

bool CLoopTestRunner::Run(IMyFilter* opener) {
  m_start = m_runStart = m_clock.Now();
  ClosedLoopTest test(*this, opener);
  m_test = &test;
  Refresh(test.Numbers());
  if (test.Numbers().instanceCount == 0) {
    std::fprintf(m_out, "no instance has an active output: nothing to test\n");
    m_test = nullptr;
    return false;
  }
  test.OnStart();
  while (!m_timers.empty()) {
    auto next = std::min_element(m_timers.begin(), m_timers.end(), [](const auto& a,
                                                                      const auto& b) {
      return a.second.due < b.second.due;
    });
    const CLoopClock::TimePoint deadline = m_runStart + m_options.runTimeout;
    if (!m_stopPressed && next->second.due > deadline) {
      m_clock.SleepUntil(deadline);
      std::fprintf(m_out, "%8.3f s  the run has not passed in %.3f s: Stop\n", Seconds(),
                   std::chrono::duration<double>(m_options.runTimeout).count());
      PressStop();
      continue;
    }
    m_clock.SleepUntil(next->second.due);
    const std::uint32_t id = next->first;
    next->second.due += next->second.period;  // before the tick, which may restart or stop it
    test.OnTimer(id);
    if (!m_stopPressed && m_cleanRuns >= m_options.cleanRuns) PressStop();
  }
  m_test = nullptr;
  return m_cleanRuns >= m_options.cleanRuns && m_status == kClosedLoopFinished;
}
