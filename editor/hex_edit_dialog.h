// "Edit Sysex Event": the bytes of an event in a grid, its name and description, and raw .syx
// files in and out. The caller's variables change only when the dialog ends with OK.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "editor/byte_array_dialog.h"
#include "editor/hex_dialog_views.h"
#include "editor/view_factory.h"

class CHexEditDlgDlg final : private CByteArrayDialog, private IHexEditDialogEvents {
 public:
  explicit CHexEditDlgDlg(ParentWindow parent);

  // [editor thread] Runs the dialog over the caller's bytes, name and description; each may be
  // null. Answers kDialogOk (the caller's variables then hold the dialog's) or kDialogCancel,
  // at once when no view can be made. Without bytes given, OK exports a changed grid instead.
  int Run(std::vector<std::uint8_t>* array, std::wstring* name, std::wstring* description);

 private:
  void Start();
  // IHexEditDialogEvents: the buttons.
  void OnImport() override;
  void OnExport() override;
  void OnReset() override;
  void OnOk() override;
  void OnCancel() override;
  void OnClose() override;
  void ApplyOk();

  ParentWindow m_parent;
  std::unique_ptr<IHexEditDialogView> m_view;
  std::wstring* m_name = nullptr;
  std::wstring* m_description = nullptr;
};
