// Small helpers the editor's dialogs share: controls that carry their resource id as their
// object name, so that tests and tools find them by id.
#pragma once

#include <QtWidgets/QWidget>
#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;

// The object name a control with resource id `id` carries.
QString ControlName(int id);
// A push button with its text (mnemonics marked by '&') that calls `clicked` when pressed.
QPushButton* MakeButton(QWidget* parent, int id, const wchar_t* text,
                        std::function<void()> clicked);
// A label with wrapped text.
QLabel* MakeLabel(QWidget* parent, const wchar_t* text);
// A one-line edit with its resource id; `digitsOnly` refuses anything but digits.
QLineEdit* MakeEdit(QWidget* parent, int id, bool digitsOnly = false);
