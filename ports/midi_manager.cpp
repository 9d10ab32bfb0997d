#include "ports/midi_manager.h"

#include <algorithm>
#include <atomic>

namespace {
std::atomic<bool> g_destroyed{false};
}  // namespace

CMIDIManager::~CMIDIManager() {
  m_ports.clear();
  m_aliases.clear();
  g_destroyed = true;
}

void CMIDIManager::AddPort(std::uint32_t id, std::wstring name) {
  m_ports.push_back({id, std::move(name)});
}

void CMIDIManager::AddAlias(std::wstring alias, std::wstring name) {
  m_aliases.insert_or_assign(std::move(alias), std::move(name));
}

const CMIDIManager::Entry* CMIDIManager::FindById(std::uint32_t id) const {
  if (m_ports.empty()) return nullptr;
  const auto it = std::find_if(m_ports.begin(), m_ports.end(), [id](const Entry& e) { return e.id == id; });
  return it != m_ports.end() ? &*it : &m_ports.front();
}

const CMIDIManager::Entry* CMIDIManager::FindByName(const std::wstring& name) const {
  const auto alias = m_aliases.find(name);
  const std::wstring& wanted = alias != m_aliases.end() ? alias->second : name;
  const auto it = std::find_if(m_ports.begin(), m_ports.end(),
                               [&](const Entry& e) { return e.name == wanted; });
  return it != m_ports.end() ? &*it : nullptr;
}

bool CMIDIManager::AnyDestroyed() noexcept { return g_destroyed; }
