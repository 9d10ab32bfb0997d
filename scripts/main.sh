#!/usr/bin/env bash
# The main job: builds the default configuration and runs the headless demonstration, one
# instance on an in-process host sending its stored list and live input to a virtual port.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default -j "$(nproc)" --target tarn-demo
exec build/default/host/tarn-demo "$@"
