// A table of the host's ports by id and name, with a map of name aliases. Not on the live path:
// instances choose ports through the host's own lists. Kept for tools that want the table.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

class CMIDIManager {
 public:
  struct Entry {
    std::uint32_t id;
    std::wstring name;
  };

  CMIDIManager() = default;  // fills nothing
  ~CMIDIManager();           // empties both tables and raises the module-wide mark
  CMIDIManager(const CMIDIManager&) = delete;
  CMIDIManager& operator=(const CMIDIManager&) = delete;

  void AddPort(std::uint32_t id, std::wstring name);
  void AddAlias(std::wstring alias, std::wstring name);

  // The entry with `id`; with none matching, the first entry; null when the table is empty.
  const Entry* FindById(std::uint32_t id) const;
  // The entry named exactly `name` after translating it through the aliases; null when none.
  const Entry* FindByName(const std::wstring& name) const;

  // Whether any manager was destroyed in this process. Nothing acts on it.
  static bool AnyDestroyed() noexcept;

 private:
  std::vector<Entry> m_ports;
  std::map<std::wstring, std::wstring> m_aliases;
};
