#include "editor/ui_state_button.h"

#include <algorithm>
#include <iterator>
#include <cwchar>

#include "platform/messages.h"
#include "platform/popup_menu.h"

namespace {

MessageId GetMenuMessage() {
  static const MessageId id =
      RegisterMessage(L"UWM_GETHMENU-{F8C1103C-156D-4395-A922-42472183FC14}");
  return id;
}

MessageId DisplayPageMessage() {
  static const MessageId id = RegisterMessage(
      L"UWM_DISPLAYPLUGINPROPERTYPAGE-{F8C1103C-156D-4395-A922-42472183FC14}");
  return id;
}

std::wstring Format(const wchar_t* format, float value) {
  wchar_t text[64];
  const int n = std::swprintf(text, std::size(text), format, static_cast<double>(value));
  return n < 0 ? std::wstring() : std::wstring(text, static_cast<std::size_t>(n));
}

}  // namespace

void CUIStateButton::SetFaces(std::vector<UIImage> faces, int firstState, int stateCount) {
  m_faces = std::move(faces);
  m_firstState = firstState;
  m_stateCount = stateCount;
  m_state = firstState;
}

int CUIStateButton::OnLButtonDown() {
  if (!IsMouseOver() || !Visible()) return 0;
  m_state = m_state + 1 >= m_firstState + m_stateCount ? m_firstState : m_state + 1;
  m_captured = true;
  Parent()->SetCapture(this);
  Draw();
  if (m_menu) {
    int x = Rect().left, y = Rect().bottom;
    Parent()->ToScreen(x, y);
    SendCommand(TrackPopupMenu(*m_menu, x, y));
    OnLButtonUp();
  }
  return 0;
}

int CUIStateButton::OnLButtonUp() {
  if (m_captured && Parent()) Parent()->SetCapture(nullptr);
  m_captured = false;
  return 0;
}

int CUIStateButton::OnRButtonDown() {
  const std::intptr_t answer = Parent()->SendToWindow(GetMenuMessage(), 0, 0);
  if (!answer) return 0;
  int x = MouseX(), y = MouseY();
  Parent()->ToScreen(x, y);
  SendCommand(TrackPopupMenu(*reinterpret_cast<const CPopupMenu*>(answer), x, y));
  return 0;
}

int CUIStateButton::OnLButtonDblClk() {
  if (IsMouseOver()) Parent()->PostToWindow(DisplayPageMessage(), 0, -1);
  return 0;
}

void CUIStateButton::Draw() {
  if (Parent()) Parent()->DrawStateButton(*this);
}

void CUIStateButton::SendCommand(std::uint32_t command) {
  if (command != 0) Parent()->SendToWindow(kCommandMessage, command, 0);
}

void CUIValueBox::SetFormat(float min, float max, std::wstring format, std::wstring below,
                            std::wstring above) {
  m_min = min;
  m_max = max;
  m_format = std::move(format);
  m_below = std::move(below);
  m_above = std::move(above);
}

std::wstring CUIValueBox::DisplayText() const {
  if (m_value < m_min) return m_below;
  if (m_value > m_max) return m_above;
  return Format(m_format.c_str(), m_value);
}

int CUIValueBox::OnLButtonDown() {
  if (!IsMouseOver()) {
    if (m_editing) CloseEdit();
    return 0;
  }
  m_editing = true;
  Parent()->OpenTextBox(Rect(), Format(L"%5.1f", m_value));
  return 0;
}

// As the C library reads a number: the longest prefix that is one, else 0.
void CUIValueBox::OnEditTextChanged(const std::wstring& text) {
  double parsed = std::wcstod(text.c_str(), nullptr);
  if (parsed != parsed) parsed = 0.0;  // "nan" is no number either
  m_value = std::clamp(static_cast<float>(parsed), m_min, m_max);
}

bool CUIValueBox::OnEditKey(std::uint32_t virtualKey) {
  switch (virtualKey) {
    case kEnterKey:
    case kTabKey:
    case kUpKey:
    case kDownKey: CloseEdit(); return true;
    case kEscapeKey: return true;
    default: return false;
  }
}

int CUIValueBox::OnKillFocus(WPARAM_T, LPARAM_T) {
  if (m_editing) CloseEdit();
  return 0;
}

void CUIValueBox::CloseEdit() {
  m_editing = false;
  Parent()->CloseTextBox();
  Draw();
}
