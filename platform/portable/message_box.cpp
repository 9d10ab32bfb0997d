#include "platform/message_box.h"

#include <atomic>

namespace {

std::atomic<CMessageBoxPresenter*> g_presenter{nullptr};  // null: the system's

}  // namespace

int ShowMessageBox(const std::wstring& text, const std::wstring& caption, unsigned flags) {
  CMessageBoxPresenter* presenter = g_presenter.load();
  return (presenter ? *presenter : SystemMessageBoxPresenter()).Present(text, caption, flags);
}

CMessageBoxPresenter* SetMessageBoxPresenter(CMessageBoxPresenter* presenter) {
  return g_presenter.exchange(presenter);
}
