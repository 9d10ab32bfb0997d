#include "ui/file_dialog_presenter.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>

namespace {

QString PatternsInBothCases(const QString& patterns) {
  QStringList all;
  for (const QString& pattern : patterns.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
    for (const QString& variant :
         {pattern.trimmed(), pattern.trimmed().toLower(), pattern.trimmed().toUpper()}) {
      if (!all.contains(variant)) all.append(variant);
    }
  }
  return all.join(QLatin1Char(' '));
}

}  // namespace

QString QtNameFilters(const std::wstring& filter) {
  const QStringList parts = QString::fromStdWString(filter).split(QLatin1Char('|'));
  // A label in parentheses at its end would be read by Qt as the patterns: the pattern field wins.
  static const QRegularExpression trailingPatterns(QStringLiteral("\\s*\\([^)]*\\)\\s*$"));
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    if (parts[i].isEmpty()) break;
    QString label = parts[i];
    label.remove(trailingPatterns);
    filters.append(QStringLiteral("%1 (%2)").arg(label, PatternsInBothCases(parts[i + 1])));
  }
  return filters.join(QStringLiteral(";;"));
}

std::optional<std::wstring> CQtFileDialogPresenter::Choose(const FileDialogRequest& request) {
  const bool open = request.mode == FileDialogMode::Open;
  QFileDialog dialog(QApplication::activeWindow(),
                     open ? QStringLiteral("Open") : QStringLiteral("Save As"));
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setAcceptMode(open ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
  dialog.setFileMode(open ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
  dialog.setNameFilter(QtNameFilters(request.filter));
  dialog.setDefaultSuffix(QString::fromStdWString(request.defaultExtension));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return dialog.selectedFiles().front().toStdWString();
}
