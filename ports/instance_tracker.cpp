#include "ports/instance_tracker.h"

#include <atomic>

namespace {

struct Registry {
  CCritSec lock;
  std::set<IMyFilter*> instances;

  Registry() { s_gone.store(false); }
  ~Registry() { s_gone.store(true); }

  // Set once the module's objects are torn down. It has no destructor of its own, so an instance
  // that a host frees after unload of the registry (at process exit) finds it still readable.
  static constinit inline std::atomic<bool> s_gone{false};
};

Registry& TheRegistry() {
  static Registry registry;
  return registry;
}

}  // namespace

CCritSec& InstanceLock() { return TheRegistry().lock; }

const std::set<IMyFilter*>& RegisteredInstances() { return TheRegistry().instances; }

void StartInstanceRegistry() { TheRegistry(); }

CMultiInstanceTracker::CMultiInstanceTracker(IMyFilter* facet) : m_facet(facet) {
  if (Registry::s_gone.load()) return;
  Registry& registry = TheRegistry();
  CAutoLock lock(registry.lock);
  registry.instances.insert(m_facet);
}

CMultiInstanceTracker::~CMultiInstanceTracker() {
  if (Registry::s_gone.load()) return;
  Registry& registry = TheRegistry();
  CAutoLock lock(registry.lock);
  registry.instances.erase(m_facet);
}
