// Window timers: a screen asks for ticks of a given id and period, and they come back on the
// editor thread, one at a time, never inside another call of the screen. A presenter serves
// them: Qt's timers in the editor, a manual clock in tests. Headless nothing ticks.
#pragma once

#include <cstdint>

class ITimerClient {
 public:
  // [editor thread] One tick of timer `id`.
  virtual void OnTimer(std::uint32_t id) = 0;

 protected:
  ~ITimerClient() = default;
};

class CTimerPresenter {
 public:
  // [editor thread] Starts `id` for `client`, ticking every `periodMs`; starting a running
  // timer starts it anew with that period.
  virtual void Start(ITimerClient& client, std::uint32_t id, std::uint32_t periodMs) = 0;
  // [editor thread] Stops `id` for `client`; a timer not running stays stopped.
  virtual void Stop(ITimerClient& client, std::uint32_t id) = 0;

 protected:
  ~CTimerPresenter() = default;
};

// [editor thread] Through the current presenter.
void StartTimer(ITimerClient& client, std::uint32_t id, std::uint32_t periodMs);
void StopTimer(ITimerClient& client, std::uint32_t id);
// Replaces the presenter; null restores the headless default. Returns the previous one.
CTimerPresenter* SetTimerPresenter(CTimerPresenter* presenter);
