#include "tests/support/editor_recorders.h"

FileDialogRecorder::FileDialogRecorder() : m_previous(SetFileDialogPresenter(this)) {}
FileDialogRecorder::~FileDialogRecorder() { SetFileDialogPresenter(m_previous); }

std::optional<std::wstring> FileDialogRecorder::Choose(const FileDialogRequest& request) {
  m_requests.push_back(request);
  if (m_answers.empty()) return std::nullopt;
  std::optional<std::wstring> answer = std::move(m_answers.front());
  m_answers.pop_front();
  return answer;
}

PopupMenuRecorder::PopupMenuRecorder() : m_previous(SetPopupMenuPresenter(this)) {}
PopupMenuRecorder::~PopupMenuRecorder() { SetPopupMenuPresenter(m_previous); }

std::uint32_t PopupMenuRecorder::Track(const CPopupMenu& menu, int x, int y) {
  m_shown.push_back({menu, x, y});
  if (m_answers.empty()) return 0;
  Chooser chooser = std::move(m_answers.front());
  m_answers.pop_front();
  return chooser(menu);
}

void PopupMenuRecorder::AnswerNext(std::uint32_t command) {
  m_answers.push_back([command](const CPopupMenu&) { return command; });
}

ManualTimers::ManualTimers() : m_previous(SetTimerPresenter(this)) {}
ManualTimers::~ManualTimers() { SetTimerPresenter(m_previous); }

void ManualTimers::Start(ITimerClient& client, std::uint32_t id, std::uint32_t periodMs) {
  m_timers[{&client, id}] = {periodMs, m_now + periodMs};
}

void ManualTimers::Stop(ITimerClient& client, std::uint32_t id) { m_timers.erase({&client, id}); }

void ManualTimers::Advance(std::uint32_t ms) {
  const std::uint64_t end = m_now + ms;
  for (;;) {
    // The earliest due timer; a tick may start or stop timers, so look afresh each round.
    auto due = m_timers.end();
    for (auto it = m_timers.begin(); it != m_timers.end(); ++it) {
      if (it->second.nextDue > end) continue;
      if (due == m_timers.end() || it->second.nextDue < due->second.nextDue) due = it;
    }
    if (due == m_timers.end()) break;
    m_now = due->second.nextDue;
    due->second.nextDue += due->second.periodMs ? due->second.periodMs : 1;
    const Key key = due->first;
    key.first->OnTimer(key.second);
  }
  m_now = end;
}
