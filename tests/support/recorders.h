// Test stand-ins for the platform's presenters: a message box recorder and a notify target that
// keeps every posted message. Each installs itself for its lifetime.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "platform/message_box.h"
#include "platform/notify.h"

// Records each box instead of showing it, and answers what was queued with AnswerNext, in order;
// OK when nothing is queued.
class MessageBoxRecorder final : public CMessageBoxPresenter {
 public:
  struct Box {
    std::wstring text;
    std::wstring caption;
    unsigned flags;
  };

  MessageBoxRecorder();
  ~MessageBoxRecorder();
  MessageBoxRecorder(const MessageBoxRecorder&) = delete;
  MessageBoxRecorder& operator=(const MessageBoxRecorder&) = delete;

  int Present(const std::wstring& text, const std::wstring& caption, unsigned flags) override;
  std::vector<Box> Boxes() const;
  // Queues the answer of a coming box: ID_OK_ANSWER, ID_CANCEL_ANSWER, ID_YES_ANSWER...
  void AnswerNext(int answer);

 private:
  mutable std::mutex m_mutex;
  std::vector<Box> m_boxes;
  std::deque<int> m_answers;
  CMessageBoxPresenter* m_previous;
};

// A registered notify target that records what is posted to it. Use it on the thread that made
// it: reading and waiting deliver the posts queued for that thread, as its message loop would.
class NotifyRecorder final : public CNotifyTarget {
 public:
  struct Posted {
    MessageId message;
    WPARAM_T wParam;
    LPARAM_T lParam;
  };

  NotifyRecorder();
  ~NotifyRecorder();
  NotifyRecorder(const NotifyRecorder&) = delete;
  NotifyRecorder& operator=(const NotifyRecorder&) = delete;

  NotifyHandle Handle() const noexcept { return m_handle; }
  void OnPosted(MessageId message, WPARAM_T wParam, LPARAM_T lParam) override;

  std::vector<Posted> Messages() const;
  // Messages with this id, in order.
  std::vector<Posted> Messages(MessageId message) const;
  // Waits until at least `count` messages arrived; false after `timeoutMs`.
  bool WaitForCount(std::size_t count, int timeoutMs) const;

 private:
  mutable std::mutex m_mutex;
  mutable std::condition_variable m_cv;
  std::vector<Posted> m_posted;
  NotifyHandle m_handle;
};
