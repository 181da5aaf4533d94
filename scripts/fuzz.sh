#!/usr/bin/env bash
# Builds the libFuzzer targets (tests/fuzz) with clang in build-fuzz and runs
# each for a while, starting from its seed corpus; prints the executions and
# the speed of every target, and fails when one of them finds a problem.
#   scripts/fuzz.sh [seconds per target, default 600] [target ...]
# FUZZ_RUNS=N also stops each target after N executions (whichever comes first).
# The corpus grown by a run is kept in build-fuzz/corpus/<target> (the seeds
# in tests/fuzz/corpus are only read); a finding is written to
# build-fuzz/findings/<target>/ and its log to build-fuzz/logs/<target>.log.
# Replay one: build-fuzz/fuzz/fuzz_<target> <file>.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
seconds=${1:-600}
[ $# -gt 0 ] && shift
targets=("$@")
[ ${#targets[@]} -eq 0 ] && targets=(numbers dispatch menu files scenario)

scripts/deps.sh --fuzz
CC=clang-14 CXX=clang++-14 cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZENTREL_FUZZ=ON \
  -DZENTREL_TESTS=OFF -DZENTREL_WERROR=ON >/dev/null
cmake --build build-fuzz --target fuzzers -j"$(nproc)"

# The leaks the utility keeps on purpose are suppressed from the one list.
export LSAN_OPTIONS="suppressions=$root/tests/lsan.supp:print_suppressions=0"
export ZENTREL_FUZZ_SCRATCH="$root/build-fuzz"
failed=0
printf '%-10s %12s %10s  %s\n' target executions exec/s result
for t in "${targets[@]}"; do
  # Paths absolute: each target works in a scratch directory of its own.
  corpus=$root/build-fuzz/corpus/$t findings=$root/build-fuzz/findings/$t log=$root/build-fuzz/logs/$t.log
  mkdir -p "$corpus" "$findings" "$(dirname "$log")"
  dict=()
  [ -f "tests/fuzz/$t.dict" ] && dict=(-dict="$root/tests/fuzz/$t.dict")
  # The menu and the file readers run commands that keep memory on purpose
  # (tests/lsan.supp), so nearly every input would end in a scan of the
  # whole heap, which costs them five times their speed. Their leaks are
  # checked where each run is one process: the sanitizer and valgrind runs
  # of the end-to-end cases.
  case $t in menu | files) dict+=(-detect_leaks=0) ;; esac
  [ -n "${FUZZ_RUNS:-}" ] && dict+=(-runs="$FUZZ_RUNS")
  result=ok
  build-fuzz/fuzz/fuzz_"$t" "${dict[@]}" -max_total_time="$seconds" -timeout=30 -print_final_stats=1 \
    -artifact_prefix="$findings/" "$corpus" "$root/tests/fuzz/corpus/$t" >"$log" 2>&1 || { result="FINDING (see $log)"; failed=1; }
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  speed=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -1)
  printf '%-10s %12s %10s  %s\n' "$t" "${runs:-?}" "${speed:-?}" "$result"
done
exit $failed
