// What every modal dialog's view shares: the logic runs the view modally, the view reports the
// user's actions while it runs, and the logic ends it with a result that RunModal then answers.
#pragma once

// Dialog results, with the platform's values.
inline constexpr int kDialogOk = 1;
inline constexpr int kDialogCancel = 2;

// A point on the screen in pixels, as popup menus are placed.
struct ScreenPoint {
  int x = 0;
  int y = 0;
};

// The OK and Cancel buttons of a dialog. Escape and the close box of the window count as
// Cancel unless a dialog's events say otherwise.
class IModalEvents {
 public:
  // [editor thread, inside RunModal]
  virtual void OnOk() = 0;
  virtual void OnCancel() = 0;

 protected:
  ~IModalEvents() = default;
};

// Views are made by the view factory and owned by the logic that asked for them.
class IModalView {
 public:
  virtual ~IModalView() = default;
  // [editor thread, inside RunModal] Ends the dialog: RunModal returns `result` once the
  // report that led here has returned. A dialog may also stay open after OK (a refused value).
  virtual void EndDialog(int result) = 0;
};
