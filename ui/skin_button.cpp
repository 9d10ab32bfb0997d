#include "ui/skin_button.h"

#include <QtCore/QPointer>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

#include "ui/skin.h"

CSkinButton::CSkinButton(std::uint32_t id, IDspButtonParent& parent, QWidget* window)
    : QWidget(window), m_state(id, parent) {
  setAttribute(Qt::WA_Hover);
  setFocusPolicy(Qt::NoFocus);  // no focus face is drawn on this skin
}

void CSkinButton::SetEnabled(bool enabled) {
  m_state.Enable(enabled);
  setEnabled(enabled);
  update();
}

void CSkinButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  if (!m_state.IsEnabled()) painter.setOpacity(0.45);
  painter.drawPixmap(0, 0, SkinPicture(static_cast<int>(m_state.Face())));
}

void CSkinButton::enterEvent(QEnterEvent*) {
  m_state.OnMouseEnter();
  update();
}

void CSkinButton::leaveEvent(QEvent*) {
  m_state.OnMouseLeave();
  update();
}

QPoint CSkinButton::MenuCorner() const { return mapToGlobal(QPoint(0, height())); }

// A press may open a menu and come back only once it has closed; the command it sent may even
// have taken the page, and this button, away.
void CSkinButton::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const QPoint corner = MenuCorner();
  const QPointer<CSkinButton> alive(this);
  repaint();
  m_state.OnLButtonDown(corner.x(), corner.y());
  if (alive) update();
}

void CSkinButton::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const QPoint corner = MenuCorner();
  const QPointer<CSkinButton> alive(this);
  m_state.OnLButtonDblClk(corner.x(), corner.y());
  if (alive) update();
}

void CSkinButton::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const QPointer<CSkinButton> alive(this);
  m_state.OnLButtonUp(rect().contains(event->position().toPoint()));
  if (alive) update();
}

void CSkinButton::mouseMoveEvent(QMouseEvent* event) {
  m_state.OnMouseMove(rect().contains(event->position().toPoint()));
  update();
}

void CSkinButton::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Space) return QWidget::keyPressEvent(event);
  m_state.OnSpace();
  update();
}
