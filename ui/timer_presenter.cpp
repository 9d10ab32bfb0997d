#include "ui/timer_presenter.h"

#include <QtCore/QTimerEvent>
#include <limits>

void CQtTimerPresenter::Start(ITimerClient& client, std::uint32_t id, std::uint32_t periodMs) {
  Stop(client, id);
  const int period = static_cast<int>(std::min<std::uint32_t>(
      periodMs, static_cast<std::uint32_t>(std::numeric_limits<int>::max())));
  // Precise: the meters' 10 ms and the test's periods are the ballistics the user sees.
  const int qtId = startTimer(period, Qt::PreciseTimer);
  if (qtId == 0) return;
  m_byKey[{&client, id}] = qtId;
  m_byQtId[qtId] = {&client, id};
}

void CQtTimerPresenter::Stop(ITimerClient& client, std::uint32_t id) {
  const auto it = m_byKey.find({&client, id});
  if (it == m_byKey.end()) return;
  killTimer(it->second);
  m_byQtId.erase(it->second);
  m_byKey.erase(it);
}

// Looked up anew for each tick: a tick may stop timers, its own included, or start others.
void CQtTimerPresenter::timerEvent(QTimerEvent* event) {
  const auto it = m_byQtId.find(event->timerId());
  if (it == m_byQtId.end()) return;
  const auto [client, id] = it->second;
  client->OnTimer(id);
}
