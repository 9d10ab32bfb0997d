#!/usr/bin/env bash
# Cross-builds the `windows` preset with mingw-w64 and runs the suite under Wine, in a Wine
# prefix of its own under the build folder. Needs no display.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/setup-windows.sh

cmake --preset windows >/dev/null
cmake --build --preset windows -j "$(nproc)"

export WINEPREFIX="$PWD/build/windows/wineprefix" WINEDEBUG=-all
mkdir -p "$WINEPREFIX"
# One server for the whole run, so that each test executable starts in a fraction of a second.
wineserver -p
trap 'wineserver -k' EXIT
# Start the prefix's background services now, with their output away from any test's: they
# inherit the output of the process that starts them, and ctest would wait for them to close it.
# A new prefix needs neither Mono nor Gecko; their installers would only ask to download.
if [ -f "$WINEPREFIX/system.reg" ]; then
  wineboot >build/windows/wineboot.log 2>&1
else
  WINEDLLOVERRIDES="mscoree,mshtml=" wineboot -i >build/windows/wineboot.log 2>&1
fi
# Besides the test executables this runs module_regsvr32: Wine's own regsvr32 registers Tarn.dll
# in this prefix, a separate client creates the filter by its class identifier, and regsvr32 /u
# takes every key away again. It needs the prefix's services (RpcSs) started above.
ctest --preset windows -j "$(nproc)"
