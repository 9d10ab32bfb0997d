#include "platform/file_dialog.h"

#include <atomic>

namespace {

std::atomic<CFileDialogPresenter*> g_presenter{nullptr};  // null: headless, always Cancel

}  // namespace

std::optional<std::wstring> ChooseFile(const FileDialogRequest& request) {
  CFileDialogPresenter* presenter = g_presenter.load();
  if (!presenter) return std::nullopt;
  return presenter->Choose(request);
}

CFileDialogPresenter* SetFileDialogPresenter(CFileDialogPresenter* presenter) {
  return g_presenter.exchange(presenter);
}
