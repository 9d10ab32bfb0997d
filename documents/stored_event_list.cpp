#include "documents/stored_event_list.h"

std::size_t CStoredEventList::Count() const {
  std::lock_guard lock(m_lock);
  return m_events.size();
}

CStoredEvent* CStoredEventList::At(std::size_t index) {
  std::lock_guard lock(m_lock);
  return index < m_events.size() ? &m_events[index] : nullptr;
}

bool CStoredEventList::Insert(std::size_t index, const CStoredEvent& event) {
  CStoredEvent copy = event;  // copied outside the lock: a sysex block may be large
  std::lock_guard lock(m_lock);
  if (index > m_events.size()) return false;
  m_events.insert(m_events.begin() + static_cast<std::ptrdiff_t>(index), std::move(copy));
  return true;
}

bool CStoredEventList::Remove(std::size_t index) {
  std::lock_guard lock(m_lock);
  if (index >= m_events.size()) return false;
  m_events.erase(m_events.begin() + static_cast<std::ptrdiff_t>(index));
  return true;
}

void CStoredEventList::Replace(std::vector<CStoredEvent> events) {
  std::lock_guard lock(m_lock);
  m_events.swap(events);
}

std::vector<CStoredEvent> CStoredEventList::Snapshot() const {
  std::lock_guard lock(m_lock);
  return m_events;
}
