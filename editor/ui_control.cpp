#include "editor/ui_control.h"

CUIControl::~CUIControl() {
  if (m_list) m_list->Remove(*this);
}

void CUIControl::Create(const UIRect& rect, bool visible, void* module, IUIControlHost* parent) {
  m_rect = rect;
  m_visible = visible ? 1 : 0;
  m_module = module;
  m_parent = parent;
}

bool CUIControl::SetChanged(bool changed) {
  const bool old = m_changed != 0;
  m_changed = changed ? 1 : 0;
  return old;
}

int CUIControl::OnMouseMove(int x, int y) {
  m_mouseX = x;
  m_mouseY = y;
  return 0;
}

int CUIControl::HandleMessage(MessageId message, WPARAM_T wParam, LPARAM_T lParam) {
  m_changed = 0;
  if (!m_parent) return 0;
  switch (message) {
    case kMouseMoveMessage: {
      const auto bits = static_cast<std::uint32_t>(lParam);
      return OnMouseMove(static_cast<std::int16_t>(bits & 0xFFFF),
                         static_cast<std::int16_t>(bits >> 16));
    }
    case kLButtonDownMessage: return OnLButtonDown();
    case kLButtonUpMessage: return OnLButtonUp();
    case kLButtonDblClkMessage: return OnLButtonDblClk();
    case kRButtonDownMessage: return OnRButtonDown();
    case kRButtonUpMessage: return OnRButtonUp();
    case kRButtonDblClkMessage: return OnRButtonDblClk();
    case kCommandMessage: return OnCommand(wParam, lParam);
    case kCharMessage: return OnChar(wParam, lParam);
    case kKillFocusMessage: return OnKillFocus(wParam, lParam);
    default: return 0;
  }
}

CUIControlList::~CUIControlList() {
  while (m_first) Remove(*m_first);
}

void CUIControlList::Append(CUIControl& control) {
  if (control.m_list) control.m_list->Remove(control);
  control.m_prev = m_last;
  control.m_next = nullptr;
  control.m_list = this;
  (m_last ? m_last->m_next : m_first) = &control;
  m_last = &control;
  ++m_count;
}

void CUIControlList::Remove(CUIControl& control) {
  if (control.m_list != this) return;
  (control.m_prev ? control.m_prev->m_next : m_first) = control.m_next;
  (control.m_next ? control.m_next->m_prev : m_last) = control.m_prev;
  control.m_next = control.m_prev = nullptr;
  control.m_list = nullptr;
  --m_count;
}

void CUIControlList::DrawAll() {
  for (CUIControl* c = m_first; c; c = c->m_next) c->Draw();
}
