#!/usr/bin/env bash
# Installs the Debian packages the build needs and the machine lacks.
#   scripts/deps.sh          what the native build and tests need
#   scripts/deps.sh --arm    also the ARM cross compiler and user-mode emulator
#   scripts/deps.sh --package    also what builds and checks the Debian packages
#   scripts/deps.sh --bench      also the benchmark's tools
#   scripts/deps.sh --valgrind   also valgrind
#   scripts/deps.sh --lint       also clang-tidy and cppcheck
#   scripts/deps.sh --fuzz       also clang and libFuzzer (tests/fuzz)
#   (the flags combine)
set -euo pipefail

packages=(cmake make g++ python3 googletest nlohmann-json3-dev openssl)
for flag in "$@"; do
  case $flag in
    --arm) packages+=(g++-arm-linux-gnueabihf qemu-user) ;;
    --package) packages+=(lintian mandoc groff-base man-db gzip binutils) ;;
    --bench) packages+=(hyperfine valgrind strace time) ;;
    --valgrind) packages+=(valgrind) ;;
    --lint) packages+=(clang-tidy-14 cppcheck) ;;
    --fuzz) packages+=(clang-14 libclang-rt-14-dev) ;;
    *) echo "deps.sh: unknown flag $flag" >&2; exit 2 ;;
  esac
done

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
