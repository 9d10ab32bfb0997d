// A DSPButton on screen: a child window that shows the face bitmap its state machine names and
// forwards the mouse and the space key to it. Commands reach the button's parent through the
// state machine (IDspButtonParent), a menu's included.
#pragma once

#include <QtWidgets/QWidget>

#include "editor/dsp_button.h"

class CSkinButton final : public QWidget {
 public:
  CSkinButton(std::uint32_t id, IDspButtonParent& parent, QWidget* window);

  CDspButton& State() noexcept { return m_state; }
  const CDspButton& State() const noexcept { return m_state; }
  // Enables or disables both the state machine and the window; a disabled button shows its
  // normal face dimmed.
  void SetEnabled(bool enabled);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QPoint MenuCorner() const;

  CDspButton m_state;
};
