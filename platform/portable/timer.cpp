#include "platform/timer.h"

#include <atomic>

namespace {

std::atomic<CTimerPresenter*> g_presenter{nullptr};  // null: headless, nothing ticks

}  // namespace

void StartTimer(ITimerClient& client, std::uint32_t id, std::uint32_t periodMs) {
  if (CTimerPresenter* presenter = g_presenter.load()) presenter->Start(client, id, periodMs);
}

void StopTimer(ITimerClient& client, std::uint32_t id) {
  if (CTimerPresenter* presenter = g_presenter.load()) presenter->Stop(client, id);
}

CTimerPresenter* SetTimerPresenter(CTimerPresenter* presenter) {
  return g_presenter.exchange(presenter);
}
