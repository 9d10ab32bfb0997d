#include "platform/message_box.h"

#include <atomic>
#include <cstdio>

#include "platform/codepage.h"

namespace {

// Headless default: the text goes to standard error and the box counts as answered with OK.
class StandardErrorPresenter final : public CMessageBoxPresenter {
 public:
  int Present(const std::wstring& text, const std::wstring& caption, unsigned) override {
    std::fprintf(stderr, "[%s] %s\n", WideToNarrow(caption).c_str(), WideToNarrow(text).c_str());
    return ID_OK_ANSWER;
  }
};

StandardErrorPresenter g_default;
std::atomic<CMessageBoxPresenter*> g_presenter{&g_default};

}  // namespace

int ShowMessageBox(const std::wstring& text, const std::wstring& caption, unsigned flags) {
  return g_presenter.load()->Present(text, caption, flags);
}

CMessageBoxPresenter* SetMessageBoxPresenter(CMessageBoxPresenter* presenter) {
  CMessageBoxPresenter* previous = g_presenter.exchange(presenter ? presenter : &g_default);
  return previous == &g_default ? nullptr : previous;
}
