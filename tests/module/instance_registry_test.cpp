// The class factory and the registry of live instances, linked in: a test can walk the registry
// under InstanceLock and give the factory rows of its own.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "core/filter.h"
#include "module/class_factory.h"
#include "module/class_table.h"
#include "ports/instance_tracker.h"

namespace {

std::size_t RegisteredCount() {
  std::size_t count = 0;
  WalkInstances([&](IMyFilter*) { ++count; });
  return count;
}

IClassFactory* FactoryFor(REFCLSID clsid) {
  IClassFactory* factory = nullptr;
  EXPECT_EQ(GetClassObject(ClassTable(), clsid, IID_IClassFactory,
                           reinterpret_cast<void**>(&factory)),
            S_OK);
  return factory;
}

IMyFilter* CreateFilter(IClassFactory* factory) {
  IMyFilter* filter = nullptr;
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IMyFilter, reinterpret_cast<void**>(&filter)),
            S_OK);
  return filter;
}

TEST(InstanceRegistry, InstancesAppearInPointerOrderAndLeaveOneByOne) {
  ASSERT_EQ(RegisteredCount(), 0u);
  IClassFactory* factory = FactoryFor(CLSID_TarnFilter);
  ASSERT_NE(factory, nullptr);
  IMyFilter* first = CreateFilter(factory);
  IMyFilter* second = CreateFilter(factory);
  factory->Release();
  ASSERT_TRUE(first && second);

  std::vector<IMyFilter*> walked;
  WalkInstances([&](IMyFilter* instance) { walked.push_back(instance); });
  const std::vector<IMyFilter*> expected =
      first < second ? std::vector{first, second} : std::vector{second, first};
  EXPECT_EQ(walked, expected);  // the registry holds the IMyFilter facets themselves

  first->Release();
  walked.clear();
  WalkInstances([&](IMyFilter* instance) { walked.push_back(instance); });
  EXPECT_EQ(walked, std::vector{second});
  second->Release();
  EXPECT_EQ(RegisteredCount(), 0u);
  EXPECT_EQ(CanUnloadModule(), S_OK);
}

// A creation entry that builds a real instance and then reports a failure, as a construction
// that fails late does.
CUnknown* CreateThenFail(IUnknown* outer, HRESULT* status) {
  CUnknown* made = CFilter::CreateInstance(outer, status);
  *status = E_FAIL;
  return made;
}
CUnknown* CreateNothing(IUnknown*, HRESULT*) { return nullptr; }
CUnknown* CreateNothingAndFail(IUnknown*, HRESULT* status) {
  *status = E_INVALIDARG;
  return nullptr;
}

TEST(InstanceRegistry, AFailedConstructionLeavesTheRegistryAndTheCountsClean) {
  const std::int32_t objectsBefore = ModuleObjectCount();
  const CFactoryTemplate rows[] = {
      {L"late failure", &CLSID_TarnFilter, &CreateThenFail, nullptr, nullptr},
      {L"no memory", &CLSID_TarnPropertyPage, &CreateNothing, nullptr, nullptr},
  };
  const CLSID failing = MakeGuid(9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9);
  const CFactoryTemplate failingRow{L"refused", &failing, &CreateNothingAndFail, nullptr, nullptr};

  CClassFactory late(&rows[0]);
  CClassFactory none(&rows[1]);
  CClassFactory refused(&failingRow);
  int sentinel = 0;
  void* object = &sentinel;
  EXPECT_EQ(late.CreateInstance(nullptr, IID_IMyFilter, &object), E_FAIL);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(RegisteredCount(), 0u);
  EXPECT_EQ(none.CreateInstance(nullptr, IID_IUnknown, &object), E_OUTOFMEMORY);
  EXPECT_EQ(refused.CreateInstance(nullptr, IID_IUnknown, &object), E_INVALIDARG);
  EXPECT_EQ(object, nullptr);
  // Only the three factories on the stack are still alive.
  EXPECT_EQ(ModuleObjectCount(), objectsBefore + 3);
}

TEST(InstanceRegistry, AnInstanceWhoseEntryIsAlreadyGoneEndsHarmlessly) {
  IClassFactory* factory = FactoryFor(CLSID_TarnFilter);
  IMyFilter* kept = CreateFilter(factory);
  IMyFilter* filter = CreateFilter(factory);
  factory->Release();
  {
    // A second tracker of the same facet: no duplicate entry, and its end takes the entry away.
    CMultiInstanceTracker twin(filter);
    EXPECT_EQ(RegisteredCount(), 2u);
  }
  EXPECT_EQ(RegisteredCount(), 1u);
  filter->Release();  // erases an absent entry
  std::vector<IMyFilter*> walked;
  WalkInstances([&](IMyFilter* instance) { walked.push_back(instance); });
  EXPECT_EQ(walked, std::vector{kept});
  kept->Release();
}

// Instances come and go on two threads while a third walks the registry: each walk sees a
// consistent, ordered set, and nothing is left behind.
TEST(InstanceRegistry, WalksStayConsistentWhileInstancesComeAndGo) {
  std::atomic<bool> done{false};
  std::atomic<int> walks{0};
  auto churn = [] {
    for (int i = 0; i < 200; ++i) {
      IClassFactory* factory = FactoryFor(CLSID_TarnFilter);
      ASSERT_NE(factory, nullptr);
      IMyFilter* filter = CreateFilter(factory);
      factory->Release();
      ASSERT_NE(filter, nullptr);
      filter->Release();
    }
  };
  std::thread walker([&] {
    while (!done.load()) {
      WalkInstances([&, previous = static_cast<IMyFilter*>(nullptr)](IMyFilter* instance) mutable {
        EXPECT_LT(previous, instance);
        previous = instance;
      });
      EXPECT_LE(RegisteredCount(), 2u);
      walks.fetch_add(1);
    }
  });
  std::thread a(churn);
  std::thread b(churn);
  a.join();
  b.join();
  done.store(true);
  walker.join();
  EXPECT_GT(walks.load(), 0);
  EXPECT_EQ(RegisteredCount(), 0u);
  EXPECT_EQ(CanUnloadModule(), S_OK);
}

}  // namespace
