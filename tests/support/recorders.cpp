#include "tests/support/recorders.h"

#include <algorithm>
#include <chrono>

MessageBoxRecorder::MessageBoxRecorder() : m_previous(SetMessageBoxPresenter(this)) {}
MessageBoxRecorder::~MessageBoxRecorder() { SetMessageBoxPresenter(m_previous); }

int MessageBoxRecorder::Present(const std::wstring& text, const std::wstring& caption,
                                unsigned flags) {
  std::lock_guard lock(m_mutex);
  m_boxes.push_back({text, caption, flags});
  if (m_answers.empty()) return ID_OK_ANSWER;
  const int answer = m_answers.front();
  m_answers.pop_front();
  return answer;
}

void MessageBoxRecorder::AnswerNext(int answer) {
  std::lock_guard lock(m_mutex);
  m_answers.push_back(answer);
}

std::vector<MessageBoxRecorder::Box> MessageBoxRecorder::Boxes() const {
  std::lock_guard lock(m_mutex);
  return m_boxes;
}

NotifyRecorder::NotifyRecorder() : m_handle(RegisterNotifyTarget(*this)) {}
NotifyRecorder::~NotifyRecorder() { UnregisterNotifyTarget(m_handle); }

void NotifyRecorder::OnPosted(MessageId message, WPARAM_T wParam, LPARAM_T lParam) {
  {
    std::lock_guard lock(m_mutex);
    m_posted.push_back({message, wParam, lParam});
  }
  m_cv.notify_all();
}

std::vector<NotifyRecorder::Posted> NotifyRecorder::Messages() const {
  DeliverQueuedNotifications();
  std::lock_guard lock(m_mutex);
  return m_posted;
}

std::vector<NotifyRecorder::Posted> NotifyRecorder::Messages(MessageId message) const {
  std::vector<Posted> out;
  for (const Posted& p : Messages())
    if (p.message == message) out.push_back(p);
  return out;
}

// Posts queue for this thread, and nothing wakes the wait below but the pump, so it looks again
// every few milliseconds.
bool NotifyRecorder::WaitForCount(std::size_t count, int timeoutMs) const {
  using Clock = std::chrono::steady_clock;
  constexpr auto kPumpInterval = std::chrono::milliseconds(2);
  const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  for (;;) {
    DeliverQueuedNotifications();
    std::unique_lock lock(m_mutex);
    if (m_posted.size() >= count) return true;
    const auto now = Clock::now();
    if (now >= deadline) return false;
    m_cv.wait_until(lock, std::min(deadline, now + kPumpInterval));
  }
}
