// CUIStateButton: a windowless button that steps through a row of faces, one per state, at
// each press; and CUIValueBox, a state button that shows a number and takes a typed one in an
// in-place text box.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "editor/ui_control.h"

class CUIStateButton : public CUIControl {
 public:
  // The faces, with the state the presses start from and how many states there are.
  void SetFaces(std::vector<UIImage> faces, int firstState, int stateCount);
  int State() const noexcept { return m_state; }
  void SetState(int state) { m_state = state; }
  const std::vector<UIImage>& Faces() const noexcept { return m_faces; }
  // A popup opened at each press, at the lower left corner; its command goes to the window.
  void SetMenu(std::shared_ptr<const CPopupMenu> menu) { m_menu = std::move(menu); }

  // Inside and visible: the state advances by one, back to the first after the last, and the
  // mouse is captured; a popup, if set, opens and ends the press.
  int OnLButtonDown() override;
  // Releases the mouse.
  int OnLButtonUp() override;
  // Asks the window for a menu (UWM_GETHMENU, answered with a CPopupMenu pointer or 0) and
  // opens what it gets at the last mouse position; its command goes to the window.
  int OnRButtonDown() override;
  // Over the control: asks the window to show the plug-in's page (UWM_DISPLAYPLUGINPROPERTYPAGE
  // posted with 0 and -1).
  int OnLButtonDblClk() override;
  void Draw() override;

 protected:
  void SendCommand(std::uint32_t command);

 private:
  std::vector<UIImage> m_faces;
  int m_firstState = 0;
  int m_stateCount = 0;
  int m_state = 0;
  bool m_captured = false;
  std::shared_ptr<const CPopupMenu> m_menu;
};

class CUIValueBox final : public CUIStateButton {
 public:
  // The range, a printf format for values within it, and the texts below and above it.
  void SetFormat(float min, float max, std::wstring format, std::wstring below,
                 std::wstring above);
  void SetFont(std::wstring font) { m_font = std::move(font); }
  const std::wstring& Font() const noexcept { return m_font; }
  float Value() const noexcept { return m_value; }
  void SetValue(float value) { m_value = value; }
  // What the box shows: the text below or above the range, else the value in the format.
  std::wstring DisplayText() const;
  bool Editing() const noexcept { return m_editing; }

  // Inside: opens the in-place text box with the value written "%5.1f", selected. Outside,
  // while it is open: closes it.
  int OnLButtonDown() override;
  // The text box's text changed: parsed as a number (0 when it is none) and clamped.
  void OnEditTextChanged(const std::wstring& text);
  // A key in the text box: Enter, Tab, up and down close it; Escape is kept from the dialog
  // too. True when the box claims the key.
  bool OnEditKey(std::uint32_t virtualKey);
  // The text box lost the focus: it closes.
  int OnKillFocus(WPARAM_T wParam, LPARAM_T lParam) override;

 private:
  void CloseEdit();

  float m_min = 0.0f;
  float m_max = 0.0f;
  float m_value = 0.0f;
  std::wstring m_format;
  std::wstring m_below;
  std::wstring m_above;
  std::wstring m_font;
  bool m_editing = false;
};

// Virtual key numbers the value box's text box tests.
inline constexpr std::uint32_t kTabKey = 0x09;
inline constexpr std::uint32_t kEnterKey = 0x0D;
inline constexpr std::uint32_t kEscapeKey = 0x1B;
inline constexpr std::uint32_t kUpKey = 0x26;
inline constexpr std::uint32_t kDownKey = 0x28;
