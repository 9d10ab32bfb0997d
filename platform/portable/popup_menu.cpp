#include "platform/popup_menu.h"

#include <atomic>
#include <utility>

void CPopupMenu::Append(std::uint32_t command, std::wstring text, bool enabled) {
  m_items.push_back({command, std::move(text), enabled, false, nullptr});
}

void CPopupMenu::AppendSeparator() { m_items.push_back({0, {}, true, true, nullptr}); }

void CPopupMenu::AppendSubmenu(std::wstring text, std::shared_ptr<const CPopupMenu> submenu) {
  m_items.push_back({0, std::move(text), true, false, std::move(submenu)});
}

std::optional<std::wstring> CPopupMenu::TextOf(std::uint32_t command) const {
  for (const Item& item : m_items) {
    if (item.submenu) {
      if (auto text = item.submenu->TextOf(command)) return text;
    } else if (!item.separator && item.command == command) {
      return item.text;
    }
  }
  return std::nullopt;
}

std::optional<std::wstring> CPopupMenu::TextAt(std::size_t position) const {
  if (position >= m_items.size()) return std::nullopt;
  return m_items[position].text;
}

namespace {

std::atomic<CPopupMenuPresenter*> g_presenter{nullptr};  // null: headless, always dismissed

}  // namespace

std::uint32_t TrackPopupMenu(const CPopupMenu& menu, int x, int y) {
  CPopupMenuPresenter* presenter = g_presenter.load();
  return presenter ? presenter->Track(menu, x, y) : 0;
}

CPopupMenuPresenter* SetPopupMenuPresenter(CPopupMenuPresenter* presenter) {
  return g_presenter.exchange(presenter);
}
