// The clock the headless closed-loop test keeps its timers on: real time in tarn-host, a clock
// that moves only when told in tests, so that a run of many seconds takes milliseconds.
#pragma once

#include <chrono>
#include <thread>

class CLoopClock {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  // [test thread]
  virtual TimePoint Now() = 0;
  // [test thread] Returns once `when` has come.
  virtual void SleepUntil(TimePoint when) = 0;

 protected:
  ~CLoopClock() = default;
};

class CSteadyLoopClock final : public CLoopClock {
 public:
  TimePoint Now() override { return std::chrono::steady_clock::now(); }
  void SleepUntil(TimePoint when) override { std::this_thread::sleep_until(when); }
};
