#!/usr/bin/env bash
# Draws the editor's pictures anew into this folder from make_art.cpp. Run it after changing the
# drawing and commit the pictures with the change.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
cd "$here/.."
cmake --preset default >/dev/null
nice -n 10 cmake --build --preset default --target tarn_make_art
QT_QPA_PLATFORM=offscreen build/default/resources/tarn_make_art "$here"
echo "make-art: pictures written to $here"
