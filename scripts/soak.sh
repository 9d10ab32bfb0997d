#!/usr/bin/env bash
# Soak, outside CI: tarn-host runs a rack of 16 instances on the virtual ports for ten minutes,
# with live input played into "Virtual In 1" at 1,000 messages a second. Every instance listens
# there and sends to "Virtual Out 2", where no one listens back. Prints what went in and out,
# what was lost, and the memory resident when the feed began and ended, with a sample each
# minute on the way; fails when anything was lost.
# Usage: scripts/soak.sh [minutes] [messages a second] [instances]   (defaults 10 1000 16)
set -euo pipefail
cd "$(dirname "$0")/.."
minutes=${1:-10}
rate=${2:-1000}
count=${3:-16}
seconds=$(awk -v m="$minutes" 'BEGIN { print m * 60 }')

cmake --preset default >/dev/null
cmake --build --preset default -j "$(nproc)" --target tarn-host tarn_module >/dev/null
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp build/default/module/libtarn.so "$work/"  # its devices.xml stays in the work folder
host=(build/default/host/tarn-host --registry "$work/registry")
"${host[@]}" register "$work/libtarn.so" >/dev/null
"${host[@]}" new "$work/soak.json" --count "$count" >/dev/null
ports='<Config><MIDIInputPort Name="Virtual In 1"/><MIDIOutputPort Name="Virtual Out 2"/></Config>'
printf '%s' "$ports" >"$work/ports.xml"
for i in $(seq 1 "$count"); do
  "${host[@]}" config "$work/soak.json" "$i" --set "$work/ports.xml" >/dev/null
done

echo "soak: $count instances, $rate messages a second into Virtual In 1, ${minutes} min"
"${host[@]}" run "$work/soak.json" --seconds "$seconds" --quiet --feed "$rate" --feed-port 1 \
  >"$work/run.txt" 2>&1 &
pid=$!
for ((minute = 1; minute * 60 < ${seconds%.*}; minute++)); do
  sleep 60
  kill -0 "$pid" 2>/dev/null || break
  echo "soak: minute $minute, $(ps -o rss= -p "$pid" | tr -d ' ') kB resident"
done
status=0
wait "$pid" || status=$?
grep -E '^(live input|memory|tarn-host)' "$work/run.txt" || true
exit "$status"
