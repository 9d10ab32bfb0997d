#include "editor/dsp_button.h"

#include "platform/popup_menu.h"

CDspButton::CDspButton(std::uint32_t id, IDspButtonParent& parent, DspButtonKind kind)
    : m_id(id), m_parent(parent), m_kind(kind) {}

void CDspButton::SetFaces(std::uint32_t normal, std::uint32_t pressed, std::uint32_t hover) {
  SetFace(DspFace::Normal, normal);
  SetFace(DspFace::Disabled, normal);
  SetFace(DspFace::Pressed, pressed);
  SetFace(DspFace::Hover, hover);
}

void CDspButton::OnLButtonDown(int cornerX, int cornerY) {
  if (m_disabled) return;
  m_pressed = true;
  m_cursorOver = true;
  m_captured = true;
  if (m_pressFires) m_parent.OnButtonCommand(m_id);
  if (m_menu) {
    m_menuOpen = true;
    const std::uint32_t command = TrackPopupMenu(*m_menu, cornerX, cornerY);
    m_menuOpen = false;
    // The menu took the release, so the press ends with it.
    m_pressed = false;
    m_captured = false;
    if (command != 0) m_parent.OnButtonCommand(command);
  } else if (m_menuMessage != 0) {
    const auto packed = static_cast<std::uint32_t>(cornerX & 0xFFFF) |
                        static_cast<std::uint32_t>(cornerY & 0xFFFF) << 16;
    m_parent.OnButtonMessage(m_menuMessage, static_cast<std::int32_t>(packed));
  }
}

void CDspButton::OnLButtonUp(bool cursorOver) {
  if (m_menuOpen || m_disabled || !m_pressed) return;
  if (cursorOver) Activate();
  m_pressed = false;
  if (!m_captured) return;
  m_captured = false;
  if (cursorOver && !m_pressFires) m_parent.OnButtonCommand(m_id);
}

void CDspButton::OnMouseMove(bool cursorOver) {
  if (m_pressed && m_captured) m_cursorOver = cursorOver;
}

void CDspButton::OnSpace() {
  if (!m_disabled) Activate();
}

// A check button toggles, a radio button sets itself and clears its group.
void CDspButton::Activate() {
  if (m_kind == DspButtonKind::Check) {
    m_checked = !m_checked;
  } else if (m_kind == DspButtonKind::Radio) {
    m_checked = true;
    m_parent.ClearRadioGroup(*this);
  }
}

DspFace CDspButton::FaceSlot() const {
  if (m_disabled) return DspFace::Disabled;
  if ((m_pressed && m_cursorOver) || m_checked || m_menuOpen) return DspFace::Pressed;
  if (m_hover && m_faces[Slot(DspFace::Hover)] != 0) return DspFace::Hover;
  if (m_focused && m_faces[Slot(DspFace::Focus)] != 0) return DspFace::Focus;
  return DspFace::Normal;
}
