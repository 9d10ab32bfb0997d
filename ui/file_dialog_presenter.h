// File-open and file-save dialogs drawn by Qt. The dialog is Qt's own widget rather than the
// desktop's, so that it looks the same everywhere and a test can fill it in as a user does.
#pragma once

#include <QtCore/QString>

#include "platform/file_dialog.h"

class CQtFileDialogPresenter final : public CFileDialogPresenter {
 public:
  std::optional<std::wstring> Choose(const FileDialogRequest& request) override;
};

// The platform's filter text ("Label (*.syx)|*.syx||") as Qt's: one "Label (*.syx *.SYX)" a
// line. Each pattern comes in both cases, since names on this system are told apart by case.
QString QtNameFilters(const std::wstring& filter);
