#!/usr/bin/env bash
# Builds and runs every test: the suite in the default build, then tarn-host against JACK's own
# clients on a server of its own, the suite under AddressSanitizer with UndefinedBehaviorSanitizer
# and under ThreadSanitizer, cross-built for Windows under Wine; then each fuzz target for a
# bounded time.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh

jobs=$(nproc)
for preset in default asan tsan; do
  echo "== $preset"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j "$jobs"
  ctest --preset "$preset" -j "$jobs"
  if [ "$preset" = default ]; then
    echo "== jack"
    bash scripts/test-jack.sh
  fi
done

echo "== windows"
bash scripts/test-windows.sh

if [ -d fuzz ]; then
  echo "== fuzz"
  bash scripts/fuzz.sh "${TARN_FUZZ_SECONDS:-30}"
fi
echo "== all tests passed"
