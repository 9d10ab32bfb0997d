#include <cstdio>

#include "platform/codepage.h"
#include "platform/message_box.h"

namespace {

// Headless: the text goes to standard error and the box counts as answered with OK.
class StandardErrorPresenter final : public CMessageBoxPresenter {
 public:
  int Present(const std::wstring& text, const std::wstring& caption, unsigned) override {
    std::fprintf(stderr, "[%s] %s\n", WideToNarrow(caption).c_str(), WideToNarrow(text).c_str());
    return ID_OK_ANSWER;
  }
};

}  // namespace

CMessageBoxPresenter& SystemMessageBoxPresenter() {
  static StandardErrorPresenter presenter;
  return presenter;
}
