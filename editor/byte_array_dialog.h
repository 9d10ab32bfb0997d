// What the two hex editor dialogs share: the grid over a working copy of the caller's bytes,
// the grid's registration check and set-up, Reset, and the question on Cancel.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "editor/hex_dialog_views.h"
#include "editor/hex_grid.h"

class CByteArrayDialog {
 protected:
  CByteArrayDialog() = default;
  ~CByteArrayDialog() = default;
  CByteArrayDialog(const CByteArrayDialog&) = delete;
  CByteArrayDialog& operator=(const CByteArrayDialog&) = delete;

  // [editor thread, before the dialog opens] Attaches the grid to `view`; when the view cannot
  // make it, says why in a message box naming the grid's library beside the module. The dialog
  // opens either way, with a grid that shows nothing.
  void AttachGrid(IByteDialogView& view);
  // [editor thread] The set-up steps both dialogs take in this order; `addressStep` is the
  // second, the one they differ in. Ends with 16 two-digit cells a line and nothing beside.
  template <class AddressStep>
  void SetUpGrid(AddressStep addressStep) {
    m_grid.SetColumns(16);
    addressStep();
    m_grid.SetDataDigits(2);
    m_grid.SetShowText(false);
    m_grid.SetShowAddress(false);
  }
  // [editor thread] The working array becomes a copy of `source` and the grid shows it.
  void LoadArray(const std::vector<std::uint8_t>& source);
  // [editor thread] Forgets the file, empties the working array.
  void Reset();
  // [editor thread] The working array into the caller's, when one was given.
  void CopyToCaller() const;
  // [editor thread] When the grid was changed, asks "Do you want to save changes?"; true on Yes.
  bool UserWantsToSave() const;

  CHexGrid m_grid;
  std::vector<std::uint8_t> m_array;
  std::wstring m_fileName = kNoFile;
  std::vector<std::uint8_t>* m_callerArray = nullptr;

  static constexpr const wchar_t* kNoFile = L"noname";
};
