// An instance's stored event list. The editor edits it while a load or a Send All walks it on
// another thread, so every operation takes the list's own lock; a walk holds it throughout, so
// an edit waits for the walk rather than freeing what the walk reads.
#pragma once

#include <cstddef>
#include <mutex>
#include <vector>

#include "documents/stored_event.h"

class CStoredEventList {
 public:
  // [any thread]
  std::size_t Count() const;
  // [editor thread] The event itself, not a copy: valid until the list next changes. Null for
  // an index past the end.
  CStoredEvent* At(std::size_t index);
  // [editor thread] A deep copy goes in before `index`; index == Count() appends. False, and
  // nothing changes, for an index past that.
  bool Insert(std::size_t index, const CStoredEvent& event);
  // [editor thread] False for an index past the end.
  bool Remove(std::size_t index);
  // [any thread] Replaces the whole list at once.
  void Replace(std::vector<CStoredEvent> events);
  // [any thread] A deep copy of the whole list.
  std::vector<CStoredEvent> Snapshot() const;
  // [any thread] Calls `visit` with each event in list order, under the list's lock: `visit`
  // must not call back into the list.
  template <class Visit>
  void ForEach(Visit visit) const {
    std::lock_guard lock(m_lock);
    for (const CStoredEvent& event : m_events) visit(event);
  }
  // [any thread] Calls `visit` with each enabled event in list order, under the list's lock:
  // `visit` must not call back into the list.
  template <class Visit>
  void ForEachEnabled(Visit visit) const {
    std::lock_guard lock(m_lock);
    for (const CStoredEvent& event : m_events)
      if (event.IsEnabled()) visit(event);
  }

 private:
  mutable std::mutex m_lock;
  std::vector<CStoredEvent> m_events;
};
