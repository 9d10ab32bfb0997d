#include "ui/meter_widget.h"

#include <QtGui/QPainter>
#include <algorithm>

CMeterWidget::CMeterWidget(QPixmap back, QPixmap lit, QWidget* parent)
    : QWidget(parent), m_backStrip(std::move(back)), m_litStrip(std::move(lit)) {
  setAttribute(Qt::WA_OpaquePaintEvent);  // the strips cover the rectangle: nothing below paints
  setFixedSize(m_backStrip.size());
}

void CMeterWidget::SetLit(int pixels) {
  pixels = std::clamp(pixels, 0, width());
  if (pixels == m_litPixels) return;
  m_litPixels = pixels;
  update();  // this rectangle alone
}

void CMeterWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.drawPixmap(QRect(0, 0, m_litPixels, height()), m_litStrip,
                     QRect(0, 0, m_litPixels, height()));
  painter.drawPixmap(QRect(m_litPixels, 0, width() - m_litPixels, height()), m_backStrip,
                     QRect(m_litPixels, 0, width() - m_litPixels, height()));
}
