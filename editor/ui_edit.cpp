#include "editor/ui_edit.h"

bool CUIEdit::PreTranslateKey(std::uint32_t) const { return true; }

bool CUIEdit::OnChar(wchar_t character) {
  if (character == L'\r' || character == L'\t' || character == 0x1B) {
    m_parent.SendToWindow(kCharMessage, static_cast<WPARAM_T>(character), 0);
    return false;
  }
  return true;
}

void CUIEdit::OnKillFocus() { m_parent.SendToWindow(kEditLostFocusMessage, 0, 0); }
