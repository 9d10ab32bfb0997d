#!/usr/bin/env bash
# Registers Tarn.dll with Wine's own regsvr32, checks the keys and creates the filter from a
# separate client, unregisters it and checks that the keys are gone.
# Usage: regsvr32_test.sh <wine> <folder holding Tarn.dll and com_client_tests.exe>
set -euo pipefail
wine=$1
cd "$2"
"$wine" regsvr32 /s Tarn.dll
"$wine" com_client_tests.exe --gtest_filter='Registered.*'
"$wine" regsvr32 /u /s Tarn.dll
"$wine" com_client_tests.exe --gtest_filter='Unregistered.*'
