#!/usr/bin/env bash
# Menu 94 (the parallel API test, everything: informational series and
# firmware download) on eight simulated switches, against the same test on
# one switch, with a latency of 100 ms on every library call. If the
# threads really run at once, eight switches take little longer than one;
# the goal is at most 1.25 times. Prints the wall times and their ratio.
#   bench/parallel.sh [build directory]    (default: build)
# Not a test: it only measures and never fails on the figures.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
binary=$PWD/$build/zentrelLibTest
[ -x "$binary" ] || { echo "no $binary: build first" >&2; exit 1; }
work=$(mktemp -d /tmp/zentrel-bench-parallel.XXXXXX)
trap 'rm -rf "$work"' EXIT
unset ZENTREL_SIM_STATE ZENTREL_SIM_TRACE

# Every function the test calls, each delayed by 100 ms.
functions=(ZentrelInitialize ZentrelDiscoverDevices ZentrelGetDeviceCount ZentrelGetDeviceInfo
  ZentrelGetTemperature ZentrelSwitchGetPciPortErrorStatistics ZentrelSwitchGetPciePortProperties
  ZentrelSwitchGetSysErrStatus ZentrelSwitchGetGPIOSpareState ZentrelSwitchGetMfgInfo
  ZentrelSwitchGetSPDMInfo ZentrelSwitchGetDecodedTraceBuffer ZentrelGetCoreDump
  ZentrelSwitchDownloadFirmware ZentrelExit)

scenario() {  # scenario file for $1 switches
  local inject="" f
  for f in "${functions[@]}"; do inject+="${inject:+, }{\"function\": \"$f\", \"latencyMs\": 100}"; done
  echo "{\"deviceCount\": $1, \"inject\": [$inject]}" > "$work/switches$1.json"
}

run() {  # wall time in seconds of the test on $1 switches
  local n=$1 dir=$work/run$1 answers start end
  mkdir -p "$dir"
  cp "$build/sim/samples/fw_valid.bin" "$dir/switchFw.bin"
  scenario "$n"
  # index, menu 94, choice 1, confirmation, one core dump type a thread, leave
  answers="0\n94\n1\n1\n$(printf '1\\n%.0s' $(seq "$n"))0\n"
  start=$(date +%s.%N)
  printf "$answers" | (cd "$dir" && ZENTREL_SIM_SCENARIO=$work/switches$n.json \
    "$binary" -addr 59 -bus 1 -addr 59 -bus 1 >/dev/null)
  end=$(date +%s.%N)
  echo "$end - $start" | bc
}

one=$(run 1)
eight=$(run 8)
printf 'one switch:     %6.2f s\n' "$one"
printf 'eight switches: %6.2f s\n' "$eight"
printf 'ratio:          %6.3f (goal: at most 1.25)\n' "$(echo "$eight / $one" | bc -l)"
