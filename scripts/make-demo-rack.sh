#!/usr/bin/env bash
# Rebuilds host/racks/demo.json, the rack the main job runs: two instances, each carrying a
# device from a shared instrument definition file, a bank and program change, a sysex block
# under a prefix, a pause and a controller; the second listens to the first's port and sends
# MIDI clock. The rack is self-contained: the devices travel inside the saved states.
#   scripts/make-demo-rack.sh BUILD_DIR INS_DIR
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/default}
ins=${2:-../shared/data/ins}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
host=("$build/host/tarn-host" --registry "$work/registry")
cp "$build/module/libtarn.so" "$work/"
"${host[@]}" register "$work/libtarn.so" >/dev/null

device() { awk -v device="$1" -f scripts/ins-device.awk "$2"; }

# GS reset under the Roland prefix F0 41 10.
cat > "$work/gs.xml" <<XML
<Config Schema="1">$(device "Microsoft GS Wavetable Synth" "$ins/MSGS.ins")
<MIDIOutputPort Name="Virtual Out 1" ID="2000" /><SysexPrefix>8EEQ</SysexPrefix>
<MIDIOutputRechannel Channel="0" /><MIDISync Enabled="0" />
<MIDIMsg Name="Strings" Description="bank 1, program 49" Enabled="1"><Msg Status="176" Data1="0" Data2="1" /><Msg Status="176" Data1="32" Data2="0" /><Msg Status="192" Data1="48" Data2="0" /></MIDIMsg>
<MIDIMsg Name="GS Reset" Description="" Enabled="1">8AAAQhJAAH8AQfc=</MIDIMsg>
<MIDIMsg Name="Settle" Description="" Enabled="1" Wait="200" />
<MIDIMsg Name="Volume" Description="" Enabled="1"><Msg Status="176" Data1="7" Data2="100" /></MIDIMsg>
</Config>
XML
# GM System On under the universal prefix F0 7E 7F; live input from port 1 goes out on channel 2.
cat > "$work/gm.xml" <<XML
<Config Schema="1">$(device "General MIDI Level 1" "$ins/GM1_GM2.ins")
<MIDIInputPort Name="Virtual In 1" ID="1000" /><MIDIOutputPort Name="Virtual Out 2" ID="2001" />
<SysexPrefix>8H5/</SysexPrefix><MIDIOutputRechannel Channel="2" /><MIDISync Enabled="1" />
<MIDIMsg Name="Piano" Description="bank 0, program 1" Enabled="1"><Msg Status="177" Data1="0" Data2="0" /><Msg Status="177" Data1="32" Data2="0" /><Msg Status="193" Data1="0" Data2="0" /></MIDIMsg>
<MIDIMsg Name="GM On" Description="" Enabled="1">8AAACQH3</MIDIMsg>
<MIDIMsg Name="Settle" Description="" Enabled="1" Wait="300" />
<MIDIMsg Name="Pan" Description="" Enabled="1"><Msg Status="177" Data1="10" Data2="32" /></MIDIMsg>
</Config>
XML
"${host[@]}" new "$work/demo.json" --name "GS Wavetable" --name "GM Module" >/dev/null
"${host[@]}" config "$work/demo.json" 1 --set "$work/gs.xml" >/dev/null
"${host[@]}" config "$work/demo.json" 2 --set "$work/gm.xml" >/dev/null
cp "$work/demo.json" host/racks/demo.json
echo "wrote host/racks/demo.json"
