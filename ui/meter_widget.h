// An activity meter: a strip lit from its origin over its background strip. It paints only its
// own rectangle, and only when the lit length changed, so the page is not repainted a hundred
// times a second.
#pragma once

#include <QtGui/QPixmap>
#include <QtWidgets/QWidget>

class CMeterWidget final : public QWidget {
 public:
  CMeterWidget(QPixmap back, QPixmap lit, QWidget* parent);

  // [editor thread] Shows `pixels` of the lit strip, clamped to the strip.
  void SetLit(int pixels);
  int Lit() const noexcept { return m_litPixels; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QPixmap m_backStrip;
  QPixmap m_litStrip;
  int m_litPixels = 0;
};
