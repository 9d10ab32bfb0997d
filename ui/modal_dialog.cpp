#include "ui/modal_dialog.h"

#include <QtGui/QFontMetrics>

QSize DialogUnitsToPixels(const QWidget& widget, int widthDlu, int heightDlu) {
  const QFontMetrics metrics(widget.font());
  const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
  const int baseX = (metrics.horizontalAdvance(letters) / 26 + 1) / 2;
  const int baseY = metrics.height();
  return QSize(widthDlu * baseX / 4, heightDlu * baseY / 8);
}

CModalDialog::CModalDialog(QWidget* parent, const wchar_t* title, int widthDlu, int heightDlu,
                           std::function<void()> escape)
    : QDialog(parent), m_escape(std::move(escape)) {
  setWindowTitle(QString::fromWCharArray(title));
  setModal(true);
  resize(DialogUnitsToPixels(*this, widthDlu, heightDlu));
}

int CModalDialog::Run() { return exec(); }

void CModalDialog::reject() { m_escape(); }
