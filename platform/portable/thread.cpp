#include "platform/thread.h"

#include <utility>

CThread::~CThread() { Join(); }

bool CThread::Start(std::function<void()> body, ThreadPriority priority) {
  if (m_thread.joinable()) return false;
  m_thread = std::thread([body = std::move(body), priority] {
    SetCurrentThreadPriority(priority);
    body();
  });
  return true;
}

void CThread::Join() {
  if (m_thread.joinable() && m_thread.get_id() != std::this_thread::get_id()) m_thread.join();
}
