#include "platform/message_box.h"
#include "platform/windows/system.h"

namespace {

class SystemPresenter final : public CMessageBoxPresenter {
 public:
  int Present(const std::wstring& text, const std::wstring& caption, unsigned flags) override {
    return MessageBoxW(nullptr, text.c_str(), caption.c_str(), flags);
  }
};

}  // namespace

CMessageBoxPresenter& SystemMessageBoxPresenter() {
  static SystemPresenter presenter;
  return presenter;
}
