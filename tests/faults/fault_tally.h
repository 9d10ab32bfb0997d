// The faults a test injected, added up over the run and printed at its end.
#pragma once

// [any thread] Adds `count` injected faults to the run's total.
void CountFaults(long count = 1);
