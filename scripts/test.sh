#!/usr/bin/env bash
# Builds and runs every test three times: natively with warnings as errors,
# natively with AddressSanitizer and UndefinedBehaviorSanitizer, and for the
# 32-bit ARM controller under user-mode emulation; then builds the Debian
# packages of the native and ARM builds and checks them; and runs the
# whole suite once more under ThreadSanitizer. Any failure fails the run.
#   scripts/test.sh            all of them
#   scripts/test.sh native     only one of: native, sanitize, arm, package, tsan, valgrind, lint, fuzz, bench
# The tsan run (ThreadSanitizer) runs the whole suite; what starts threads
# is the parallel API test (eight switches at once), the file mutexes'
# unit tests and the state file's concurrent runs.
# The valgrind run (memcheck) runs every end-to-end case under valgrind:
# no memory error, and no leak but those listed in tests/lsan.supp.
# The lint run: clang-tidy and cppcheck over the sources (scripts/lint.sh).
# The fuzz run: each libFuzzer target of tests/fuzz for 30 s (scripts/fuzz.sh).
# Last, a quick benchmark prints its figures (it never fails the run).
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc)
only="${1:-}"

want() { [ -z "$only" ] || [ "$only" = "$1" ]; }

flags=()
want arm && flags+=(--arm)
want package && flags+=(--arm --package)
want bench && flags+=(--bench)
want valgrind && flags+=(--valgrind)
want lint && flags+=(--lint)
want fuzz && flags+=(--fuzz)
scripts/deps.sh "${flags[@]}"

build() {
  local dir=$1
  shift
  echo "=== $dir"
  cmake -S . -B "$dir" -DZENTREL_WERROR=ON "$@" >/dev/null
  cmake --build "$dir" -j"$jobs"
}

run() {
  build "$@"
  ctest --test-dir "$1" --output-on-failure -j"$jobs"
}

native=(build-test -DCMAKE_BUILD_TYPE=RelWithDebInfo)
arm=(build-arm -DCMAKE_BUILD_TYPE=MinSizeRel -DCMAKE_TOOLCHAIN_FILE=cmake/arm-linux-gnueabihf.cmake)
want native && run "${native[@]}"
want sanitize && run build-sanitize -DCMAKE_BUILD_TYPE=Debug -DZENTREL_SANITIZE=ON
want arm && run "${arm[@]}"
if want tsan; then
  build build-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZENTREL_TSAN=ON
  TSAN_OPTIONS="halt_on_error=1 suppressions=$PWD/tests/tsan.supp" ZENTREL_E2E_DEFERRED_SIGNALS=1 \
    ctest --test-dir build-tsan --output-on-failure -j"$jobs"
fi
if want valgrind; then
  # All of them: about ten minutes on two cores (--every N runs every Nth).
  build "${native[@]}"
  echo "=== valgrind"
  printf '%s\0' tests/e2e/cases/*.case | xargs -0 -P"$jobs" -n1 python3 tests/e2e/run_cases.py --valgrind \
    --slow 5 --binary build-test/zentrelLibTest --samples build-test/sim/samples | grep -v '^ok '
fi
if want lint; then
  cmake -S . -B build-lint -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >/dev/null
  scripts/lint.sh build-lint
fi
if want package; then
  # Packages are made from the builds above; alone, this run builds them.
  [ -n "$only" ] && build "${native[@]}" && build "${arm[@]}"
  scripts/package-check.sh build-test build-arm
fi
# Each libFuzzer target for 30 seconds from its seed corpus; a finding fails
# the run (scripts/fuzz.sh runs them longer).
if want fuzz; then
  echo "=== fuzz"
  scripts/fuzz.sh 30
fi
# The benchmark's figures, for the log: noise on a shared machine is not a
# failure, so neither is a ratio above its goal.
if want bench; then
  echo "=== benchmark (quick)"
  bench/run.sh --quick || echo "the benchmark did not run to its end (not counted as a failure)"
fi
echo "all test runs passed"
