#include "ui/message_box_presenter.h"

#include <QtCore/QThread>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>

namespace {

QMessageBox::Icon IconOf(unsigned flags) {
  switch (flags & MB_ICON_MASK) {
    case MB_ICONERROR_FLAG: return QMessageBox::Critical;
    case MB_ICONQUESTION_FLAG: return QMessageBox::Question;
    case MB_ICONWARNING_FLAG: return QMessageBox::Warning;
    default: return QMessageBox::NoIcon;
  }
}

QMessageBox::StandardButtons ButtonsOf(unsigned flags) {
  switch (flags & MB_BUTTONS_MASK) {
    case MB_OKCANCEL_FLAG: return QMessageBox::Ok | QMessageBox::Cancel;
    case MB_YESNO_FLAG: return QMessageBox::Yes | QMessageBox::No;
    default: return QMessageBox::Ok;
  }
}

int AnswerOf(int button) {
  switch (button) {
    case QMessageBox::Cancel: return ID_CANCEL_ANSWER;
    case QMessageBox::Yes: return ID_YES_ANSWER;
    case QMessageBox::No: return ID_NO_ANSWER;
    default: return ID_OK_ANSWER;
  }
}

}  // namespace

int CQtMessageBoxPresenter::Present(const std::wstring& text, const std::wstring& caption,
                                    unsigned flags) {
  const QCoreApplication* application = QCoreApplication::instance();
  if (!application || QThread::currentThread() != application->thread())
    return SystemMessageBoxPresenter().Present(text, caption, flags);
  QMessageBox box(IconOf(flags), QString::fromStdWString(caption), QString::fromStdWString(text),
                  ButtonsOf(flags), QApplication::activeWindow());
  return AnswerOf(box.exec());
}
