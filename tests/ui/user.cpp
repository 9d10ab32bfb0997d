#include "tests/ui/user.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtGui/QAction>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QMenu>

namespace user {

namespace {

// How long a dialog or menu may take to come up.
constexpr int kPatienceMs = 5000;

std::shared_ptr<bool> OnNext(std::function<QWidget*()> find, std::function<void(QWidget&)> act) {
  auto ran = std::make_shared<bool>(false);
  QWidget* before = find();
  auto* poll = new QTimer(qApp);
  auto* clock = new QElapsedTimer;
  clock->start();
  QObject::connect(poll, &QTimer::timeout, poll, [=] {
    QWidget* now = find();
    const bool arrived = now && now != before && now->isVisible();
    if (!arrived && clock->elapsed() < kPatienceMs) return;
    poll->stop();
    poll->deleteLater();
    delete clock;
    if (!arrived) return;
    *ran = true;
    act(*now);
  });
  poll->start(10);
  return ran;
}

QString Plain(QString text) { return text.remove(QLatin1Char('&')); }

}  // namespace

std::shared_ptr<bool> OnNextDialog(std::function<void(QDialog&)> act) {
  return OnNext([] { return QApplication::activeModalWidget(); },
                [act = std::move(act)](QWidget& widget) {
                  if (auto* dialog = qobject_cast<QDialog*>(&widget)) act(*dialog);
                });
}

std::shared_ptr<bool> OnNextMenu(std::function<void(QMenu&)> act) {
  return OnNext([] { return QApplication::activePopupWidget(); },
                [act = std::move(act)](QWidget& widget) {
                  if (auto* menu = qobject_cast<QMenu*>(&widget)) act(*menu);
                });
}

void Choose(QMenu& menu, const QStringList& path) {
  QMenu* current = &menu;
  for (qsizetype level = 0; level < path.size() && current; ++level) {
    QAction* found = nullptr;
    for (QAction* action : current->actions())
      if (Plain(action->text()) == path[level]) found = action;
    if (!found) {
      current->close();
      return;
    }
    QTest::mouseMove(current, current->actionGeometry(found).center());
    QTest::mouseClick(current, Qt::LeftButton, {}, current->actionGeometry(found).center());
    QMenu* sub = found->menu();
    if (sub) WaitFor([sub] { return sub->isVisible(); }, kPatienceMs);
    current = sub;
  }
}

void Click(QWidget& widget) {
  QTest::mouseClick(&widget, Qt::LeftButton, {}, widget.rect().center());
}

void Type(QWidget& widget, const QString& text) {
  widget.setFocus();
  QTest::keyClicks(&widget, text);
}

bool WaitFor(const std::function<bool()>& done, int ms) {
  QElapsedTimer clock;
  clock.start();
  while (!done()) {
    if (clock.elapsed() > ms) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    QTest::qWait(5);
  }
  return true;
}

void SaveScreen(QWidget& widget, const QString& name) {
  const QDir folder(QStringLiteral(TARN_SCREENSHOTS "/%1").arg(QGuiApplication::platformName()));
  folder.mkpath(QStringLiteral("."));
  widget.grab().save(folder.filePath(name + QStringLiteral(".png")));
}

}  // namespace user
