// "Prefix Editor": the sysex prefix of an instance in a grid. The caller's bytes change only
// when the dialog ends with OK.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "editor/byte_array_dialog.h"
#include "editor/hex_dialog_views.h"
#include "editor/view_factory.h"

class CPrefixEditorDlg final : private CByteArrayDialog, private IByteDialogEvents {
 public:
  explicit CPrefixEditorDlg(ParentWindow parent);

  // [editor thread] Runs the dialog over the caller's bytes (null: none). Answers kDialogOk or
  // kDialogCancel, at once when no view can be made.
  int Run(std::vector<std::uint8_t>* array);

 private:
  void Start();
  void AddressStep();
  // IByteDialogEvents: the buttons.
  void OnReset() override;
  void OnOk() override;
  void OnCancel() override;
  void OnClose() override;

  ParentWindow m_parent;
  std::unique_ptr<IPrefixEditorView> m_view;
  // Never set before the set-up reads it, so a fresh dialog finds it at 0: the address column
  // with 4 digits, or the 64K message for a working array above 0x10000 bytes.
  int m_addressMode = 0;
};
