#!/usr/bin/env bash
# The JACK end-to-end tests: tarn-host against JACK's own example clients on a dummy-backend
# server of this script's own (48000 Hz, 250 frames a period), which it stops by its process id
# however the tests end. Expects the default preset built (scripts/test.sh does that first).
set -euo pipefail
cd "$(dirname "$0")/.."

if ! command -v jackd >/dev/null; then
  echo "jackd is not installed: the JACK tests are skipped (scripts/setup.sh installs it)"
  exit 0
fi
cmake --build --preset default --target host_jack_tests >/dev/null

# JACK's registry holds eight servers, and one that was killed keeps its entry until a server
# of the same name starts. So the names here are fixed, one run at a time holds them, and when
# no server runs at all the entries left behind by others are cleared.
exec 9>"${TMPDIR:-/tmp}/tarn-jack-tests.lock"
if ! flock -w 900 9; then
  echo "another run of the JACK tests holds ${TMPDIR:-/tmp}/tarn-jack-tests.lock" >&2
  exit 1
fi
if ! grep -qsx jackd /proc/[0-9]*/comm; then rm -f /dev/shm/jack-shm-registry 2>/dev/null || true; fi
export JACK_DEFAULT_SERVER=tarn-test JACK_NO_START_SERVER=1
log=build/default/jackd-test.log
export TARN_JACK_SERVER_LOG="$PWD/$log"  # where the tests see the server's xruns
jackd --no-realtime -n "$JACK_DEFAULT_SERVER" -d dummy -r 48000 -p 250 >"$log" 2>&1 &
server=$!
trap 'kill "$server" 2>/dev/null; wait "$server" 2>/dev/null || true' EXIT
if ! jack_wait -s "$JACK_DEFAULT_SERVER" -w -t 10 >/dev/null 2>&1; then
  echo "the JACK server did not start; its log:" >&2
  cat "$log" >&2
  exit 1
fi
build/default/tests/host/host_jack_tests "$@"
