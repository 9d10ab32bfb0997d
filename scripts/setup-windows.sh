#!/usr/bin/env bash
# Installs, with apt-get, the Windows cross compiler (mingw-w64, posix threads) and Wine, when
# this machine lacks them. Safe to run again: it asks apt only when a package is missing.
set -euo pipefail

packages=(g++-mingw-w64-x86-64-posix wine64 wine)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if ((${#missing[@]})); then
  echo "setup-windows: installing ${missing[*]}"
  sudo_cmd=()
  [ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
  export DEBIAN_FRONTEND=noninteractive
  "${sudo_cmd[@]}" apt-get update -qq
  "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
