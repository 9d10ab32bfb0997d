// File-open and file-save dialogs go through one presenter, as message boxes do: Qt in the
// editor, a recorder in tests. Headless, nobody can choose, so the default answers Cancel.
#pragma once

#include <optional>
#include <string>

enum class FileDialogMode { Open, Save };

struct FileDialogRequest {
  FileDialogMode mode = FileDialogMode::Open;
  std::wstring defaultExtension;  // without the dot, as "syx"
  // The platform's filter text: pairs of a label and a pattern, each ended by '|', the list by
  // a second '|': "SysEx MIDI File (*.syx)|*.syx||".
  std::wstring filter;
};

class CFileDialogPresenter {
 public:
  // [editor thread] Shows the dialog modally; the chosen path, or nothing on Cancel.
  virtual std::optional<std::wstring> Choose(const FileDialogRequest& request) = 0;

 protected:
  ~CFileDialogPresenter() = default;
};

// [editor thread] Asks the current presenter; nothing when none is installed.
std::optional<std::wstring> ChooseFile(const FileDialogRequest& request);
// Replaces the presenter; null restores the headless default. Returns the previous one.
CFileDialogPresenter* SetFileDialogPresenter(CFileDialogPresenter* presenter);
