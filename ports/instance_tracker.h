// The registry of live instances: every instance of the plug-in in this module, reachable by
// code that belongs to none of them (the closed-loop test). An instance enters when its tracker
// base is built, first of all its parts, and leaves when that base goes, last of all; so a
// walker can meet an instance that is half built or half destroyed, and may call on it only
// operations that stand on plain members.
#pragma once

#include <cstddef>
#include <set>

#include "platform/lock.h"

struct IMyFilter;

// [any thread] The module-wide lock that guards the registry and nothing else. Outermost of all
// locks: inside it an instance's own locks may be taken, never the other way round. No output
// worker takes it.
CCritSec& InstanceLock();

// [any thread, InstanceLock held] The registered instances, ordered by pointer value, without
// duplicates. Read it only inside the lock; there is no snapshot.
const std::set<IMyFilter*>& RegisteredInstances();

// [any thread] Calls `visit` with each registered instance in set order, inside InstanceLock
// for the whole walk; the lock is released however the walk ends.
template <class Visit>
void WalkInstances(Visit visit) {
  CAutoLock lock(InstanceLock());
  for (IMyFilter* instance : RegisteredInstances()) visit(instance);
}

// Brings up the registry and InstanceLock; the module calls it at load so both exist before
// the first instance. Later calls do nothing.
void StartInstanceRegistry();

class CMultiInstanceTracker {
 public:
  // [any thread] Registers `facet`, under InstanceLock. The pointer is stored, not used.
  explicit CMultiInstanceTracker(IMyFilter* facet);
  // [any thread] Removes the stored pointer under InstanceLock; one that is not found leaves the
  // registry as it is.
  ~CMultiInstanceTracker();
  CMultiInstanceTracker(const CMultiInstanceTracker&) = delete;
  CMultiInstanceTracker& operator=(const CMultiInstanceTracker&) = delete;

 private:
  IMyFilter* m_facet;
};
