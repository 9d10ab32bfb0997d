#include "platform/clipboard.h"

#include <atomic>
#include <mutex>

namespace {

class ProcessClipboard final : public CClipboardPresenter {
 public:
  std::optional<std::string> Text() override {
    std::lock_guard lock(m_mutex);
    return m_text;
  }
  void SetText(const std::string& text) override {
    std::lock_guard lock(m_mutex);
    m_text = text;
  }

 private:
  std::mutex m_mutex;
  std::optional<std::string> m_text;
};

std::atomic<CClipboardPresenter*> g_presenter{nullptr};  // null: the process-local one

}  // namespace

CClipboardPresenter& Clipboard() {
  static ProcessClipboard local;
  CClipboardPresenter* presenter = g_presenter.load();
  return presenter ? *presenter : local;
}

CClipboardPresenter* SetClipboardPresenter(CClipboardPresenter* presenter) {
  return g_presenter.exchange(presenter);
}
