// The layout check of tests/ui/user.h: it knows the skinned controls, so only the screens' own
// tests link it.
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QAbstractScrollArea>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QProgressBar>

#include "tests/ui/user.h"
#include "ui/meter_widget.h"
#include "ui/skin_button.h"

namespace user {

namespace {

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
