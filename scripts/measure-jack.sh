#!/usr/bin/env bash
# Measures, and asserts nothing: on a dummy-backend JACK server at 64 and at 256 frames a period,
# the MIDI latency of a direct connection of a probe's two ports and of the same two ports
# through tarn-host and one instance (COUNT events each, default 10000), and the closed-loop
# test's --report on the host's own ports wired by jack_connect; then the same report on the
# virtual ports. Each server is stopped by its process id however the script ends.
set -euo pipefail
cd "$(dirname "$0")/.."
count=${1:-10000}
bash scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default --target tarn-host tarn_module jack_latency_probe >/dev/null

out=build/default/measure
rm -rf "$out" && mkdir -p "$out"
host=(build/default/host/tarn-host --registry "$out/registry")
probe=build/default/tests/host/jack_latency_probe
"${host[@]}" register build/default/module/libtarn.so >/dev/null
export JACK_NO_START_SERVER=1

server=
stop_server() {
  [ -n "$server" ] && kill "$server" 2>/dev/null && wait "$server" 2>/dev/null || true
  server=
}
trap stop_server EXIT

wait_port() {
  for _ in $(seq 200); do jack_lsp 2>/dev/null | grep -qx "$1" && return 0; sleep 0.05; done
  echo "port $1 did not appear" >&2
  return 1
}

# A rack of instances, each applied with one configuration on the JACK back end.
make_rack() {
  local rack=$1; shift
  "${host[@]}" new "$rack" --count $# >/dev/null
  local i=1
  for config in "$@"; do
    echo "$config" >"$out/config.xml"
    "${host[@]}" config "$rack" $i --set "$out/config.xml" --midi jack >/dev/null
    i=$((i + 1))
  done
}

loop_report() {  # RACK MIDI [WIRES...]: the closed-loop test with its report
  local rack=$1 midi=$2; shift 2
  "${host[@]}" test "$rack" --midi "$midi" --report >"$out/loop.txt" &
  local test=$!
  while [ $# -gt 0 ]; do wait_port "$1" && wait_port "$2" && jack_connect "$1" "$2" 2>/dev/null; shift 2; done
  wait "$test" || true
  sed -n '/^round trip/,$p' "$out/loop.txt"
}

for period in 64 256; do
  export JACK_DEFAULT_SERVER="tarn-measure-$period"
  jackd --no-realtime -n "$JACK_DEFAULT_SERVER" -d dummy -r 48000 -p "$period" \
    >"$out/jackd-$period.log" 2>&1 &
  server=$!
  jack_wait -s "$JACK_DEFAULT_SERVER" -w -t 10 >/dev/null 2>&1
  echo "== JACK, $period frames a period"

  echo "-- direct: probe:out -> probe:in"
  "$probe" "$count" probe >"$out/direct.txt" &
  pid=$!
  wait_port probe:in && jack_connect probe:out probe:in 2>/dev/null
  wait "$pid" && cat "$out/direct.txt"

  echo "-- through tarn-host: probe:out -> instance -> probe:in"
  "$probe" "$count" probe >"$out/through.txt" &
  pid=$!
  wait_port probe:in
  make_rack "$out/through.json" \
    '<Config Schema="1"><MIDIInputPort Name="probe:out" /><MIDIOutputPort Name="probe:in" /><MIDISync Enabled="0" /></Config>'
  seconds=$((count * period / 48000 * 2 + 10))
  "${host[@]}" run "$out/through.json" --midi jack --quiet --seconds "$seconds" >/dev/null &
  run=$!
  wait "$pid" && cat "$out/through.txt"
  kill "$run" 2>/dev/null; wait "$run" 2>/dev/null || true

  echo "-- closed-loop test, one instance on tarn-host-out-1 -> tarn-host-in-1"
  make_rack "$out/loop.json" \
    '<Config Schema="1"><MIDIInputPort Name="tarn-host-in-1:in" /><MIDIOutputPort Name="tarn-host-out-1:out" /><MIDISync Enabled="0" /></Config>'
  loop_report "$out/loop.json" jack tarn-host-out-1:out tarn-host-in-1:in
  stop_server
done

echo "== virtual ports"
"${host[@]}" new "$out/virtual.json" --count 1 >/dev/null
echo '<Config Schema="1"><MIDIInputPort Name="Virtual In 1" /><MIDIOutputPort Name="Virtual Out 1" /><MIDISync Enabled="0" /></Config>' >"$out/config.xml"
"${host[@]}" config "$out/virtual.json" 1 --set "$out/config.xml" >/dev/null
loop_report "$out/virtual.json" virtual
