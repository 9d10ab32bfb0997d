// What a user does to the editor's real widgets, for tests that drive it on screen: click,
// type, choose from popup menus, answer the dialog that opens, and look (screenshots and a check
// that no control stands outside its window or over another).
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtWidgets/QWidget>
#include <functional>
#include <memory>

class QDialog;
class QMenu;

namespace user {

// Runs `act` on the next dialog that becomes modal, from the event loop, while the code that
// opened it waits in its own loop. The flag turns true once `act` has run.
std::shared_ptr<bool> OnNextDialog(std::function<void(QDialog&)> act);
// The same for the next popup menu.
std::shared_ptr<bool> OnNextMenu(std::function<void(QMenu&)> act);
// Clicks through `menu` as a user does: each entry of `path` is an item's text (without its
// '&'), a submenu's to open it, the last one's to choose it.
void Choose(QMenu& menu, const QStringList& path);

// A left click in the middle of `widget`.
void Click(QWidget& widget);
// Types `text` into `widget`, key by key.
void Type(QWidget& widget, const QString& text);
// Lets the event loop run until `done` holds, `ms` milliseconds at most; whether it held.
bool WaitFor(const std::function<bool()>& done, int ms = 5000);

// The child of `root` that carries resource id `id` as its object name.
template <class Widget>
Widget* Find(QWidget& root, int id) {
  return root.findChild<Widget*>(QString::number(id));
}

// Saves a picture of `widget` as <build>/screenshots/<platform>/<name>.png.
void SaveScreen(QWidget& widget, const QString& name);
// What a user sees wrong in `window`'s layout: each control (button, label, box, list, bar,
// meter) that is shown but does not stand wholly inside the window, and each pair that
// overlaps; empty when there is nothing. In layout_faults.cpp, which needs the editor's widgets.
QStringList LayoutFaults(QWidget& window);

}  // namespace user
