// CUIEdit: the keyboard side of an edit box laid over a skinned surface. It takes every key
// itself, before the host's accelerators can, hands Enter, Tab and Escape to its parent as
// characters, and tells the parent when it loses the focus.
#pragma once

#include <cstdint>

#include "editor/ui_control.h"

// What the edit box sends its parent when it loses the focus.
inline constexpr MessageId kEditLostFocusMessage = 33268;

class CUIEdit {
 public:
  explicit CUIEdit(IUIControlHost& parent) : m_parent(parent) {}

  // Before the host sees a key: the box claims it (answers true) and it is translated and
  // dispatched at once.
  bool PreTranslateKey(std::uint32_t virtualKey) const;
  // A character typed: Enter, Tab and Escape go on to the parent as characters, and the box
  // does not take them (answers false); the box takes every other one.
  bool OnChar(wchar_t character);
  // The box lost the focus: the parent hears of it.
  void OnKillFocus();

 private:
  IUIControlHost& m_parent;
};
