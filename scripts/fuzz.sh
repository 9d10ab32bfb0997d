#!/usr/bin/env bash
# Builds the libFuzzer targets with clang under ASan + UBSan and runs each for a bounded time
# over its seed corpus. Usage: scripts/fuzz.sh [seconds per target]
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-30}
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc)"
for target in build/fuzz/fuzz/fuzz_*; do
  [ -x "$target" ] || continue
  name=$(basename "$target")
  seeds="fuzz/corpus/${name#fuzz_}"
  work=$(mktemp -d)
  echo "-- $name for ${seconds}s"
  "$target" -max_total_time="$seconds" -print_final_stats=0 "$work" "$seeds" 2>&1 | tail -n 3
  rm -rf "$work"
done
