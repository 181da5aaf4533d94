#!/usr/bin/env bash
# Builds zentrelLibTest with the simulated switch library and runs it.
#   scripts/run.sh                         lists the simulated switches
#   scripts/run.sh -i 0 -temp              any command line of the utility
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)" >/dev/null
if [ $# -eq 0 ]; then
  set -- -list -addr 59 -bus 1
fi
exec build/zentrelLibTest "$@"
