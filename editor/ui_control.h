// Windowless controls: rectangles on their owner's surface that draw themselves and take the
// mouse messages their owner forwards, kept in a doubly linked list. CUIMeter, CUIFader and the
// state buttons derive from CUIControl. The drawing itself goes through the owner's window,
// IUIControlHost, so the logic stays apart from the screen.
//
// Everything here runs on the editor thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/notify.h"

class CPopupMenu;
class CUIMeter;
class CUIFader;
class CUIStateButton;
class CUIControl;
class CUIControlList;

// A rectangle whose right and bottom edges belong to it, as the controls count them.
struct UIRect {
  int left = 0, top = 0, right = 0, bottom = 0;

  int Width() const noexcept { return right - left + 1; }
  int Height() const noexcept { return bottom - top + 1; }
  bool Contains(int x, int y) const noexcept {
    return x >= left && x <= right && y >= top && y <= bottom;
  }
  friend bool operator==(const UIRect&, const UIRect&) = default;
};

// An image the owner loaded, by its bitmap number, with its size in pixels.
struct UIImage {
  std::uint32_t id = 0;
  int width = 0;
  int height = 0;
};

// The window messages a control takes, with the platform's numbers.
inline constexpr MessageId kKillFocusMessage = 0x0008;
inline constexpr MessageId kCharMessage = 0x0102;
inline constexpr MessageId kCommandMessage = 0x0111;
inline constexpr MessageId kMouseMoveMessage = 0x0200;
inline constexpr MessageId kLButtonDownMessage = 0x0201;
inline constexpr MessageId kLButtonUpMessage = 0x0202;
inline constexpr MessageId kLButtonDblClkMessage = 0x0203;
inline constexpr MessageId kRButtonDownMessage = 0x0204;
inline constexpr MessageId kRButtonUpMessage = 0x0205;
inline constexpr MessageId kRButtonDblClkMessage = 0x0206;

// The window the controls sit on, as they need it.
class IUIControlHost {
 public:
  // Gives the mouse to `control` until released with null.
  virtual void SetCapture(CUIControl* control) = 0;
  // Sends a message to the window and answers its result.
  virtual std::intptr_t SendToWindow(MessageId message, WPARAM_T wParam, LPARAM_T lParam) = 0;
  // Posts a message to the window.
  virtual void PostToWindow(MessageId message, WPARAM_T wParam, LPARAM_T lParam) = 0;
  // The screen position of a point of the window, for popups.
  virtual void ToScreen(int& x, int& y) = 0;
  // Draws a meter straight to the window: `lit` pixels of its lit image from the strip's
  // origin, its back image over the rest.
  virtual void DrawMeter(const CUIMeter& meter, int lit) = 0;
  // Repaints `uncovered` from the fader's track image, then draws its thumb at `thumb`.
  virtual void DrawFader(const CUIFader& fader, const std::vector<UIRect>& uncovered,
                         const UIRect& thumb) = 0;
  // Draws a state button's current face (and a value box's text).
  virtual void DrawStateButton(const CUIStateButton& button) = 0;
  // Opens an in-place text box over `area` with `text` selected, or closes it.
  virtual void OpenTextBox(const UIRect& area, const std::wstring& text) = 0;
  virtual void CloseTextBox() = 0;

 protected:
  ~IUIControlHost() = default;
};

class CUIControl {
 public:
  CUIControl() = default;
  virtual ~CUIControl();
  CUIControl(const CUIControl&) = delete;
  CUIControl& operator=(const CUIControl&) = delete;

  // Copies them in.
  void Create(const UIRect& rect, bool visible, void* module, IUIControlHost* parent);
  // Sets the changed mark, answering the old one.
  bool SetChanged(bool changed);
  bool Changed() const noexcept { return m_changed != 0; }
  const UIRect& Rect() const noexcept { return m_rect; }
  bool Visible() const noexcept { return m_visible != 0; }

  // --- virtual operations, in their order -------------------------------------------------
  // Stores the position; answers 0.
  virtual int OnMouseMove(int x, int y);
  virtual int OnLButtonDown() { return 0; }
  virtual int OnLButtonUp() { return 0; }
  virtual int OnLButtonDblClk() { return 0; }
  virtual int OnRButtonDown() { return 0; }
  virtual int OnRButtonUp() { return 0; }
  virtual int OnRButtonDblClk() { return 0; }
  virtual int OnCommand(WPARAM_T, LPARAM_T) { return 0; }
  virtual int OnChar(WPARAM_T, LPARAM_T) { return 0; }
  virtual int OnKillFocus(WPARAM_T, LPARAM_T) { return 0; }
  // Clears the changed mark, then hands the message to the operation above that takes it (a
  // mouse move with x and y from the low and high 16 bits of `lParam`). Nothing without a
  // parent; answers the operation's answer, else 0.
  virtual int HandleMessage(MessageId message, WPARAM_T wParam, LPARAM_T lParam);
  virtual bool IsMouseOver() const { return HitTest(m_mouseX, m_mouseY); }
  // Inside the rectangle, edges included.
  virtual bool HitTest(int x, int y) const { return m_rect.Contains(x, y); }
  virtual void Show() { m_visible = 1; }
  virtual void Hide() { m_visible = 0; }
  virtual void Draw() {}
  virtual void Reset() {}

 protected:
  IUIControlHost* Parent() const noexcept { return m_parent; }
  int MouseX() const noexcept { return m_mouseX; }
  int MouseY() const noexcept { return m_mouseY; }
  void MarkChanged() noexcept { m_changed = 1; }

 private:
  friend class CUIControlList;

  IUIControlHost* m_parent = nullptr;
  UIRect m_rect;
  void* m_module = nullptr;
  std::int32_t m_visible = 0;
  std::int32_t m_changed = 0;
  int m_mouseX = 0;
  int m_mouseY = 0;
  CUIControl* m_next = nullptr;
  CUIControl* m_prev = nullptr;
  CUIControlList* m_list = nullptr;
};

// The owner's list of its windowless controls, in the order they draw. It owns none of them; a
// control that goes leaves the list.
class CUIControlList {
 public:
  CUIControlList() = default;
  ~CUIControlList();
  CUIControlList(const CUIControlList&) = delete;
  CUIControlList& operator=(const CUIControlList&) = delete;

  void Append(CUIControl& control);
  void Remove(CUIControl& control);
  CUIControl* First() const noexcept { return m_first; }
  CUIControl* Last() const noexcept { return m_last; }
  static CUIControl* Next(const CUIControl& control) noexcept { return control.m_next; }
  static CUIControl* Prev(const CUIControl& control) noexcept { return control.m_prev; }
  int Count() const noexcept { return m_count; }
  // Draws every control in list order.
  void DrawAll();

 private:
  CUIControl* m_first = nullptr;
  CUIControl* m_last = nullptr;
  int m_count = 0;
};
