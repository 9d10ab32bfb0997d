// Popup menus as data, shown through one presenter. A screen builds the menu, a presenter (Qt in
// the editor, a recorder in tests) shows it at a point and answers the command chosen.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class CPopupMenu {
 public:
  struct Item {
    std::uint32_t command = 0;  // 0 for a separator or a submenu
    std::wstring text;
    bool enabled = true;
    bool separator = false;
    std::shared_ptr<const CPopupMenu> submenu;
  };

  void Append(std::uint32_t command, std::wstring text, bool enabled = true);
  void AppendSeparator();
  void AppendSubmenu(std::wstring text, std::shared_ptr<const CPopupMenu> submenu);
  void Clear() { m_items.clear(); }

  const std::vector<Item>& Items() const noexcept { return m_items; }
  std::size_t Count() const noexcept { return m_items.size(); }
  // The text of the item (looked for in submenus too) that carries `command`, as a handler
  // reads it back; nothing when no item does.
  std::optional<std::wstring> TextOf(std::uint32_t command) const;
  // The text of the item at `position` of this level; nothing past the end.
  std::optional<std::wstring> TextAt(std::size_t position) const;

 private:
  std::vector<Item> m_items;
};

class CPopupMenuPresenter {
 public:
  // [editor thread] Shows `menu` with its top left corner at `x`, `y` in screen pixels and
  // waits for the choice: the command chosen, or 0 when the menu was dismissed.
  virtual std::uint32_t Track(const CPopupMenu& menu, int x, int y) = 0;

 protected:
  ~CPopupMenuPresenter() = default;
};

// [editor thread] Shows the menu through the current presenter; 0 when none is installed.
std::uint32_t TrackPopupMenu(const CPopupMenu& menu, int x, int y);
// Replaces the presenter; null restores the headless default. Returns the previous one.
CPopupMenuPresenter* SetPopupMenuPresenter(CPopupMenuPresenter* presenter);
