#include "ui/popup_menu_presenter.h"

#include <QtGui/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>

#include "ui/skin.h"

namespace {

// Menu texts mark their shortcut letter with '&' as Qt does; both keep "&&" for an ampersand.
void AppendItems(QMenu& target, const CPopupMenu& menu) {
  for (const CPopupMenu::Item& item : menu.Items()) {
    if (item.separator) {
      target.addSeparator();
    } else if (item.submenu) {
      QMenu* sub = target.addMenu(QString::fromStdWString(item.text));
      AppendItems(*sub, *item.submenu);
    } else {
      QAction* action = target.addAction(QString::fromStdWString(item.text));
      action->setData(QVariant::fromValue(item.command));
      action->setEnabled(item.enabled);
    }
  }
}

}  // namespace

std::unique_ptr<QMenu> BuildQMenu(const CPopupMenu& menu, QWidget* parent) {
  auto built = std::make_unique<QMenu>(parent);
  built->setStyleSheet(SkinMenuStyleSheet());
  AppendItems(*built, menu);
  return built;
}

std::uint32_t CQtPopupMenuPresenter::Track(const CPopupMenu& menu, int x, int y) {
  const std::unique_ptr<QMenu> shown = BuildQMenu(menu, QApplication::activeWindow());
  const QAction* chosen = shown->exec(QPoint(x, y));
  return chosen ? chosen->data().value<std::uint32_t>() : 0;
}
