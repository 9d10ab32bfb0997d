// Message boxes go through one presenter: Qt in the editor, standard error when headless, a
// recorder in tests. The caller blocks until the presenter answers, as with a modal box.
#pragma once

#include <string>

// Button and icon flags, and answers, with the platform's values.
inline constexpr unsigned MB_OK_FLAG = 0x0;
inline constexpr unsigned MB_OKCANCEL_FLAG = 0x1;
inline constexpr unsigned MB_YESNO_FLAG = 0x4;
inline constexpr unsigned MB_ICONERROR_FLAG = 0x10;
inline constexpr unsigned MB_ICONQUESTION_FLAG = 0x20;
inline constexpr unsigned MB_ICONWARNING_FLAG = 0x30;
inline constexpr unsigned MB_BUTTONS_MASK = 0xF;
inline constexpr unsigned MB_ICON_MASK = 0xF0;
inline constexpr int ID_OK_ANSWER = 1;
inline constexpr int ID_CANCEL_ANSWER = 2;
inline constexpr int ID_YES_ANSWER = 6;
inline constexpr int ID_NO_ANSWER = 7;

class CMessageBoxPresenter {
 public:
  // [caller's thread] Shows the box and returns the button pressed.
  virtual int Present(const std::wstring& text, const std::wstring& caption, unsigned flags) = 0;

 protected:
  ~CMessageBoxPresenter() = default;
};

// [any thread] Shows a box through the current presenter.
int ShowMessageBox(const std::wstring& text, const std::wstring& caption, unsigned flags);
// The system's own presenter, the default: MessageBoxW on Windows, standard error elsewhere.
CMessageBoxPresenter& SystemMessageBoxPresenter();
// [any thread] Replaces the presenter; null restores the default. Returns the previous one, or
// null when that was the default.
CMessageBoxPresenter* SetMessageBoxPresenter(CMessageBoxPresenter* presenter);
