#include "ui/dialog_parts.h"

#include <QtCore/QRegularExpression>
#include <QtGui/QRegularExpressionValidator>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

QString ControlName(int id) { return QString::number(id); }

QPushButton* MakeButton(QWidget* parent, int id, const wchar_t* text,
                        std::function<void()> clicked) {
  auto* button = new QPushButton(QString::fromWCharArray(text), parent);
  button->setObjectName(ControlName(id));
  button->setAutoDefault(false);
  QObject::connect(button, &QPushButton::clicked, button, std::move(clicked));
  return button;
}

QLabel* MakeLabel(QWidget* parent, const wchar_t* text) {
  auto* label = new QLabel(QString::fromWCharArray(text), parent);
  label->setWordWrap(true);
  label->setTextFormat(Qt::PlainText);
  return label;
}

QLineEdit* MakeEdit(QWidget* parent, int id, bool digitsOnly) {
  auto* edit = new QLineEdit(parent);
  edit->setObjectName(ControlName(id));
  if (digitsOnly) {
    edit->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), edit));
  }
  return edit;
}
