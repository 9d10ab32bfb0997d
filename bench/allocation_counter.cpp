// The replacement operator new lives in a file of its own: seen inline beside the standard
// library's operator delete, it would look to the compiler like a mismatched pair.
#include "bench/allocation_counter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::uint64_t> g_allocations{0};
}  // namespace

std::uint64_t AllocationCount() noexcept { return g_allocations.load(std::memory_order_relaxed); }

// The standard library's operator delete frees with free(), so it stays as it is.
void* operator new(std::size_t size) {
  g_allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
  throw std::bad_alloc();
}
