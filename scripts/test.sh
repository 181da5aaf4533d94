#!/usr/bin/env bash
# Builds and runs every test three times: natively with warnings as errors,
# natively with AddressSanitizer and UndefinedBehaviorSanitizer, and for the
# 32-bit ARM controller under user-mode emulation. Any failure fails the run.
#   scripts/test.sh            all three
#   scripts/test.sh native     only one of: native, sanitize, arm
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc)
only="${1:-}"

want() { [ -z "$only" ] || [ "$only" = "$1" ]; }

if want arm; then scripts/deps.sh --arm; else scripts/deps.sh; fi

run() {
  local dir=$1
  shift
  echo "=== $dir"
  cmake -S . -B "$dir" -DZENTREL_WERROR=ON "$@" >/dev/null
  cmake --build "$dir" -j"$jobs"
  ctest --test-dir "$dir" --output-on-failure -j"$jobs"
}

want native && run build-test -DCMAKE_BUILD_TYPE=RelWithDebInfo
want sanitize && run build-sanitize -DCMAKE_BUILD_TYPE=Debug -DZENTREL_SANITIZE=ON
want arm && run build-arm -DCMAKE_BUILD_TYPE=MinSizeRel -DCMAKE_TOOLCHAIN_FILE=cmake/arm-linux-gnueabihf.cmake
echo "all test runs passed"
