#!/usr/bin/env bash
# Installs, with apt-get, whatever the build and the tests need and this machine lacks.
# Safe to run again: it asks apt only when a package is missing.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config
  libgtest-dev libgmock-dev googletest libbenchmark-dev
  clang libclang-rt-14-dev   # libFuzzer targets
  libpugixml-dev             # peer for the XML benchmark only
  libsndfile1-dev nlohmann-json3-dev libcli11-dev   # tarn-host: audio files, racks, commands
  librtmidi-dev libjack-jackd2-dev   # tarn-host: MIDI on JACK and ALSA, real-time audio
  jackd2                             # the JACK tests' server and example clients
  qt6-base-dev fonts-dejavu-core   # the editor's drawing and the font its art and tests use
  xvfb xauth                       # the editor's tests once on a real window system
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if ((${#missing[@]})); then
  echo "setup: installing ${missing[*]}"
  sudo_cmd=()
  [ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
  export DEBIAN_FRONTEND=noninteractive
  "${sudo_cmd[@]}" apt-get update -qq
  "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
