// Window timers on Qt's event loop: each (client, id) pair is one Qt timer, ticking on the
// thread that started it.
#pragma once

#include <QtCore/QObject>
#include <map>
#include <utility>

#include "platform/timer.h"

class CQtTimerPresenter final : public QObject, public CTimerPresenter {
 public:
  void Start(ITimerClient& client, std::uint32_t id, std::uint32_t periodMs) override;
  void Stop(ITimerClient& client, std::uint32_t id) override;

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  using Key = std::pair<ITimerClient*, std::uint32_t>;
  std::map<Key, int> m_byKey;  // to Qt's timer id
  std::map<int, Key> m_byQtId;
};
