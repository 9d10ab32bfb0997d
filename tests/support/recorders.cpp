#include "tests/support/recorders.h"

#include <chrono>

MessageBoxRecorder::MessageBoxRecorder() : m_previous(SetMessageBoxPresenter(this)) {}
MessageBoxRecorder::~MessageBoxRecorder() { SetMessageBoxPresenter(m_previous); }

int MessageBoxRecorder::Present(const std::wstring& text, const std::wstring& caption,
                                unsigned flags) {
  std::lock_guard lock(m_mutex);
  m_boxes.push_back({text, caption, flags});
  return ID_OK_ANSWER;
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
  std::lock_guard lock(m_mutex);
  return m_posted;
}

std::vector<NotifyRecorder::Posted> NotifyRecorder::Messages(MessageId message) const {
  std::vector<Posted> out;
  for (const Posted& p : Messages())
    if (p.message == message) out.push_back(p);
  return out;
}

bool NotifyRecorder::WaitForCount(std::size_t count, int timeoutMs) const {
  std::unique_lock lock(m_mutex);
  return m_cv.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                       [&] { return m_posted.size() >= count; });
}
