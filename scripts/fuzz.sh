#!/usr/bin/env bash
# Builds the libFuzzer targets with clang under ASan + UBSan and runs each for a bounded time
# over its seed corpus (and the real instrument definition files of ../shared/data/ins, when
# present, for the .ins import). Usage: scripts/fuzz.sh [seconds per target] [target ...]
# A target is named as its corpus folder, e.g. "rack_file"; none named runs them all.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-30}
shift || true
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc)"
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=($(cd fuzz/corpus && echo *))
for name in "${targets[@]}"; do
  target="build/fuzz/fuzz/fuzz_$name"
  [ -x "$target" ] || { echo "no fuzz target $name" >&2; exit 1; }
  seeds=("fuzz/corpus/$name")
  [ "$name" = ins_import ] && [ -d ../shared/data/ins ] && seeds+=(../shared/data/ins)
  work=$(mktemp -d)
  echo "-- $name for ${seconds}s"
  "$target" -max_total_time="$seconds" -print_final_stats=0 "$work" "${seeds[@]}" 2>&1 | tail -n 3
  rm -rf "$work"
done
