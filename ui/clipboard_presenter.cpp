#include "ui/clipboard_presenter.h"

#include <QtCore/QMimeData>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

std::optional<std::string> CQtClipboardPresenter::Text() {
  const QMimeData* data = QGuiApplication::clipboard()->mimeData();
  if (!data || !data->hasText()) return std::nullopt;
  return data->text().toLocal8Bit().toStdString();
}

void CQtClipboardPresenter::SetText(const std::string& text) {
  QGuiApplication::clipboard()->setText(
      QString::fromLocal8Bit(text.data(), static_cast<qsizetype>(text.size())));
}
