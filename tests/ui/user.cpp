#include "tests/ui/user.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtGui/QAction>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QAbstractScrollArea>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QProgressBar>

#include "ui/meter_widget.h"
#include "ui/skin_button.h"

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

// Controls are what a user sees as one thing; the parts inside them are theirs.
bool IsControl(const QWidget& widget) {
  return qobject_cast<const QAbstractButton*>(&widget) || qobject_cast<const QLabel*>(&widget) ||
         qobject_cast<const QLineEdit*>(&widget) ||
         qobject_cast<const QAbstractScrollArea*>(&widget) ||
         qobject_cast<const QProgressBar*>(&widget) || dynamic_cast<const CSkinButton*>(&widget) ||
         dynamic_cast<const CMeterWidget*>(&widget);
}

void CollectControls(QWidget& parent, QList<QWidget*>& controls) {
  for (QWidget* child : parent.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    if (!child->isVisible() || child->isWindow()) continue;
    if (IsControl(*child))
      controls.append(child);
    else
      CollectControls(*child, controls);
  }
}

QString Name(const QWidget& widget) {
  const QString id = widget.objectName();
  QString text;
  if (auto* label = qobject_cast<const QLabel*>(&widget)) text = label->text().left(24);
  if (auto* button = qobject_cast<const QAbstractButton*>(&widget)) text = button->text();
  return QStringLiteral("%1 %2 \"%3\"")
      .arg(QString::fromLatin1(widget.metaObject()->className()), id, text);
}

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

QStringList LayoutFaults(QWidget& window) {
  QList<QWidget*> controls;
  CollectControls(window, controls);
  QStringList faults;
  QList<QRect> places;
  for (QWidget* control : controls) {
    const QRect place(control->mapTo(&window, QPoint(0, 0)), control->size());
    if (!window.rect().contains(place))
      faults.append(QStringLiteral("%1 at %2,%3 %4x%5 stands outside the window")
                        .arg(Name(*control))
                        .arg(place.x())
                        .arg(place.y())
                        .arg(place.width())
                        .arg(place.height()));
    places.append(place);
  }
  for (qsizetype i = 0; i < controls.size(); ++i)
    for (qsizetype j = i + 1; j < controls.size(); ++j)
      if (places[i].intersects(places[j]))
        faults.append(QStringLiteral("%1 overlaps %2").arg(Name(*controls[i]), Name(*controls[j])));
  return faults;
}

}  // namespace user
