// Popup menus drawn by Qt in the skin's colours, submenus nested as the data nests them.
#pragma once

#include <memory>

#include "platform/popup_menu.h"

class QMenu;
class QWidget;

class CQtPopupMenuPresenter final : public CPopupMenuPresenter {
 public:
  std::uint32_t Track(const CPopupMenu& menu, int x, int y) override;
};

// A QMenu holding `menu`'s items, each action carrying its command as its data; for tests and
// for the presenter.
std::unique_ptr<QMenu> BuildQMenu(const CPopupMenu& menu, QWidget* parent);
