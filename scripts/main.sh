#!/usr/bin/env bash
# The main job: builds tarn-host and the module, registers the module in a registry kept inside
# the build folder, and runs the shipped rack (two instances on the virtual MIDI ports, the
# offline audio driver streaming one second of silence). Every message that reaches a port is
# printed with its time and bytes. The rack is saved, loaded again and saved again, and the two
# saves are compared: a saved rack loads to the same state.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default -j "$(nproc)" --target tarn-host tarn_module
out=build/default/main-job
mkdir -p "$out"
host=(build/default/host/tarn-host --registry "$out/registry")
"${host[@]}" register build/default/module/libtarn.so
"${host[@]}" list
echo "--- running host/racks/demo.json"
"${host[@]}" run host/racks/demo.json --seconds 1 --save "$out/saved.json" "$@"
echo "--- loading the saved rack and saving it again"
"${host[@]}" run "$out/saved.json" --seconds 0.5 --quiet --save "$out/saved-again.json"
if cmp -s "$out/saved.json" "$out/saved-again.json" && cmp -s host/racks/demo.json "$out/saved.json"
then
  echo "the saved rack loads to the same state: every save is identical to the shipped rack"
else
  echo "the saved states differ" >&2
  exit 1
fi
