#!/usr/bin/env bash
# Builds zentrelLibTest with the simulated switch library and runs it.
#   scripts/run.sh                         lists the simulated switches
#   scripts/run.sh -i 0 -temp              any command line of the utility
# The simulated switches remember their settings between runs, in a
# per-user state file; `rm "$(scripts/run.sh --state-file)"` starts afresh,
# and ZENTREL_SIM_STATE= (empty) runs without one.
set -euo pipefail
cd "$(dirname "$0")/.."
if [ -z "${ZENTREL_SIM_STATE+set}" ]; then
  state_dir="${XDG_STATE_HOME:-$HOME/.local/state}/zentrel-sim"
  export ZENTREL_SIM_STATE="$state_dir/state.json"
fi
if [ "${1:-}" = "--state-file" ]; then
  echo "$ZENTREL_SIM_STATE"
  exit 0
fi
[ -z "$ZENTREL_SIM_STATE" ] || mkdir -p "$(dirname "$ZENTREL_SIM_STATE")" 2>/dev/null || true
scripts/deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)" >/dev/null
if [ $# -eq 0 ]; then
  set -- -list -addr 59 -bus 1
fi
exec build/zentrelLibTest "$@"
