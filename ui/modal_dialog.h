// The frame every dialog of the editor stands in: a modal QDialog that its logic ends with a
// result, sized in dialog units as its resource gives it, whose Escape key and close box go to
// a handler of the logic's choosing instead of ending it on their own.
#pragma once

#include <QtWidgets/QDialog>
#include <functional>

class CModalDialog final : public QDialog {
 public:
  // `widthDlu`, `heightDlu`: the size in dialog units, a quarter of the font's average
  // character width across and an eighth of its height down. `escape` answers Escape and the
  // close box.
  CModalDialog(QWidget* parent, const wchar_t* title, int widthDlu, int heightDlu,
               std::function<void()> escape);

  // Runs the dialog until End; answers End's result.
  int Run();
  void End(int result) { done(result); }

 protected:
  void reject() override;

 private:
  std::function<void()> m_escape;
};

// Pixels for dialog units in `widget`'s font.
QSize DialogUnitsToPixels(const QWidget& widget, int widthDlu, int heightDlu);
