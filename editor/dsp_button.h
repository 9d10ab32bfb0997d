// DSPButton: a push, check or radio button that shows bitmaps instead of a face and can carry a
// popup menu. This is its state machine, apart from the window: the drawing forwards the mouse
// and the space key here, and paints the face that Face() names after each call.
//
// Everything here runs on the editor thread.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

class CPopupMenu;
class CDspButton;

enum class DspButtonKind { Push = 0, Check = 2, Radio = 4 };

// The kind a button style gives: low bits 3 a check box, 9 a radio button, else a push button.
constexpr DspButtonKind DspButtonKindFromStyle(std::uint32_t style) {
  switch (style & 0xF) {
    case 3: return DspButtonKind::Check;
    case 9: return DspButtonKind::Radio;
    default: return DspButtonKind::Push;
  }
}

// The six bitmap slots.
enum class DspFace { Normal, Pressed, Disabled, Mask, Hover, Focus };

// The private message a set radio button sends its group so that the others clear.
inline constexpr std::uint32_t kDspClearRadioMessage = 0x500;

// The window the button sits in.
class IDspButtonParent {
 public:
  // The button's command (its id), or the command chosen from its menu.
  virtual void OnButtonCommand(std::uint32_t command) = 0;
  // A button without a menu but with a menu message sends that message, with its lower left
  // corner in screen pixels packed into the long parameter (x low 16 bits, y high 16 bits).
  virtual void OnButtonMessage(std::uint32_t message, std::int32_t lParam) = 0;
  // `set`, a radio button, was set: the other buttons of its group clear (SetChecked(false)).
  virtual void ClearRadioGroup(const CDspButton& set) = 0;

 protected:
  ~IDspButtonParent() = default;
};

class CDspButton {
 public:
  CDspButton(std::uint32_t id, IDspButtonParent& parent,
             DspButtonKind kind = DspButtonKind::Push);

  std::uint32_t Id() const noexcept { return m_id; }
  DspButtonKind Kind() const noexcept { return m_kind; }

  // --- set-up ---------------------------------------------------------------------------
  // Bitmaps by number; `normal` also fills the disabled slot. 0 leaves a slot empty.
  void SetFaces(std::uint32_t normal, std::uint32_t pressed, std::uint32_t hover);
  void SetFace(DspFace slot, std::uint32_t bitmap) { m_faces[Slot(slot)] = bitmap; }
  // Attaches a popup, opened at each press; null detaches.
  void SetMenu(std::shared_ptr<const CPopupMenu> menu) { m_menu = std::move(menu); }
  const std::shared_ptr<const CPopupMenu>& Menu() const noexcept { return m_menu; }
  // A message sent to the parent at each press when no menu is attached; 0 for none.
  void SetMenuMessage(std::uint32_t message) { m_menuMessage = message; }
  // The command goes out at the press rather than at the release.
  void SetPressFires(bool fires) { m_pressFires = fires; }
  void Enable(bool enabled) { m_disabled = !enabled; }
  bool IsEnabled() const noexcept { return !m_disabled; }
  void SetChecked(bool checked) { m_checked = checked; }
  bool IsChecked() const noexcept { return m_checked; }
  void SetFocus(bool focused) { m_focused = focused; }

  // --- input from the window ------------------------------------------------------------
  void OnMouseEnter() { m_hover = true; }
  void OnMouseLeave() { m_hover = false; }
  // A left press; `cornerX`, `cornerY` is the button's lower left corner in screen pixels, where
  // a menu opens. A disabled button ignores it. With a menu the call returns once the menu has
  // closed, after its command went to the parent.
  void OnLButtonDown(int cornerX, int cornerY);
  // A double click counts as a press.
  void OnLButtonDblClk(int cornerX, int cornerY) { OnLButtonDown(cornerX, cornerY); }
  // The left button went up, with the cursor over the button or not.
  void OnLButtonUp(bool cursorOver);
  // The cursor moved, over the button or not: while pressed and captured the pushed look
  // follows it.
  void OnMouseMove(bool cursorOver);
  // The space key: a check button toggles, a radio button sets itself.
  void OnSpace();

  // --- what to draw -----------------------------------------------------------------------
  // The slot to show, first match: disabled; pressed (under the cursor), checked or menu open:
  // pressed; hover: hover where that slot is filled; focus: focus where filled; normal.
  DspFace FaceSlot() const;
  // The bitmap of that slot.
  std::uint32_t Face() const { return m_faces[Slot(FaceSlot())]; }
  bool IsPressed() const noexcept { return m_pressed; }
  bool IsHover() const noexcept { return m_hover; }
  bool IsMenuOpen() const noexcept { return m_menuOpen; }
  bool HasCapture() const noexcept { return m_captured; }

 private:
  static constexpr std::size_t Slot(DspFace face) { return static_cast<std::size_t>(face); }
  void Activate();

  std::uint32_t m_id;
  IDspButtonParent& m_parent;
  DspButtonKind m_kind;
  bool m_checked = false;
  bool m_hover = false;
  bool m_pressed = false;
  bool m_cursorOver = false;  // while pressed: whether the cursor is over the button
  bool m_captured = false;
  bool m_menuOpen = false;
  bool m_disabled = false;
  bool m_focused = false;
  bool m_pressFires = false;
  std::array<std::uint32_t, 6> m_faces{};
  std::shared_ptr<const CPopupMenu> m_menu;
  std::uint32_t m_menuMessage = 0;
};
