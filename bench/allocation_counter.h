// Counts every heap allocation of the process, so a benchmark can show what a path allocates.
#pragma once

#include <cstdint>

// [any thread] Allocations through operator new since the program started.
std::uint64_t AllocationCount() noexcept;
