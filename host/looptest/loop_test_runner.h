// The closed-loop wiring test run headless: the owner that a dialog would be, with timers on a
// clock, the status and the numbers printed as they change, and the Stop button pressed by the
// host once enough clean runs are done or a run takes too long.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <string>

#include "host/looptest/loop_clock.h"
#include "ports/closed_loop_test.h"

struct LoopTestOptions {
  std::uint32_t cleanRuns = 1;  // runs that must pass before the host presses Stop
  // A run that has not passed by then is stopped: lost events keep a run on "Finishing" for
  // ever, and stray input keeps it waiting.
  std::chrono::milliseconds runTimeout{30000};
};

class CLoopTestRunner final : public IClosedLoopTestOwner {
 public:
  // [test thread] Calls its argument with each instance of the rack, in a fixed order.
  using Walk = std::function<void(const std::function<void(IMyFilter*)>&)>;
  // [test thread] Called with each status line the test shows.
  using StatusObserver = std::function<void(const std::wstring&)>;

  // Prints to `out`; `clock` and `out` must outlive the runner.
  CLoopTestRunner(Walk walk, CLoopClock& clock, const LoopTestOptions& options, std::FILE* out);

  // [test thread] Runs a test over the instances, opened by `opener`, from Start to its
  // outcome: after the clean runs wanted the host presses Stop, and the outcome follows at the
  // next EndTimer tick. True when the runs wanted passed and the outcome is "Finished". With no
  // instance whose output is active the test cannot run: false at once.
  bool Run(IMyFilter* opener);
  // [test thread, before Run]
  void OnStatus(StatusObserver observer) { m_observer = std::move(observer); }

  // Clean runs so far, and the last status shown.
  std::uint32_t CleanRuns() const { return m_cleanRuns; }
  const std::wstring& Status() const { return m_status; }

  // --- IClosedLoopTestOwner -------------------------------------------------------------------
  void WalkInstances(const std::function<void(IMyFilter*)>& visit) override { m_walk(visit); }
  void StartTimer(std::uint32_t id, std::uint32_t periodMs) override;
  void StopTimer(std::uint32_t id) override { m_timers.erase(id); }
  void ShowStatus(const std::wstring& text) override;
  void EnableButtons(bool, bool) override {}
  void Refresh(const ClosedLoopNumbers& numbers) override;

 private:
  struct Timer {
    std::chrono::milliseconds period;
    CLoopClock::TimePoint due;
  };
  void PressStop();
  double Seconds() const;

  const Walk m_walk;
  CLoopClock& m_clock;
  const LoopTestOptions m_options;
  std::FILE* const m_out;
  StatusObserver m_observer;
  ClosedLoopTest* m_test = nullptr;
  std::map<std::uint32_t, Timer> m_timers;
  CLoopClock::TimePoint m_start{};
  CLoopClock::TimePoint m_runStart{};  // Start, or the last restart
  std::uint32_t m_cleanRuns = 0;
  bool m_stopPressed = false;
  std::wstring m_status;
  ClosedLoopNumbers m_shown;
  bool m_anyShown = false;
};
