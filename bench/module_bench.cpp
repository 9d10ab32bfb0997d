// What a host pays at the module's door, through the built module loaded at run time:
//  - one instance made and destroyed through the class factory (a rack slot filled and emptied),
//    against a bare heap block of the instance's size allocated and freed;
//  - DllGetClassObject alone (a new factory, then its release), against a bare heap block of the
//    factory's size.
#include <cstddef>
#include <new>

#include <benchmark/benchmark.h>

#include "core/filter.h"
#include "platform/class_object.h"
#include "tests/module/loaded_module.h"

namespace {

const LoadedModule& Module() {
  static const LoadedModule module;
  return module;
}

void BareBlock(benchmark::State& state, std::size_t bytes) {
  for (auto _ : state) {
    void* block = ::operator new(bytes);
    benchmark::DoNotOptimize(block);
    ::operator delete(block);
  }
}

void BM_BareBlockOfAnInstance(benchmark::State& state) { BareBlock(state, sizeof(CFilter)); }
BENCHMARK(BM_BareBlockOfAnInstance);

void BM_InstanceThroughFactory(benchmark::State& state) {
  IClassFactory* factory = nullptr;
  if (Module().GetClassObject(CLSID_TarnFilter, IID_IClassFactory,
                              reinterpret_cast<void**>(&factory)) != S_OK) {
    state.SkipWithError("module not loaded");
    return;
  }
  for (auto _ : state) {
    IUnknown* filter = nullptr;
    factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&filter));
    benchmark::DoNotOptimize(filter);
    if (filter) filter->Release();
  }
  factory->Release();
}
BENCHMARK(BM_InstanceThroughFactory);

// A factory holds a table pointer, a count and the counted-object base: about four words.
void BM_BareBlockOfAFactory(benchmark::State& state) { BareBlock(state, 4 * sizeof(void*)); }
BENCHMARK(BM_BareBlockOfAFactory);

void BM_DllGetClassObject(benchmark::State& state) {
  if (!Module().Loaded()) {
    state.SkipWithError("module not loaded");
    return;
  }
  for (auto _ : state) {
    IClassFactory* factory = nullptr;
    Module().GetClassObject(CLSID_TarnFilter, IID_IClassFactory,
                            reinterpret_cast<void**>(&factory));
    benchmark::DoNotOptimize(factory);
    if (factory) factory->Release();
  }
}
BENCHMARK(BM_DllGetClassObject);

}  // namespace

BENCHMARK_MAIN();
