#include "tests/faults/fault_tally.h"

#include <atomic>
#include <cstdio>

#include <gtest/gtest.h>

namespace {

std::atomic<long> g_faults{0};

class FaultReport final : public ::testing::Environment {
 public:
  void TearDown() override { std::printf("faults: %ld injected\n", g_faults.load()); }
};

const auto* const g_report = ::testing::AddGlobalTestEnvironment(new FaultReport);

}  // namespace

void CountFaults(long count) { g_faults += count; }
