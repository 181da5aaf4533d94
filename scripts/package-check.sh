#!/usr/bin/env bash
# Builds the Debian packages and checks them:
#   scripts/package-check.sh <native build dir> [<ARM cross build dir>]
# - amd64: both packages unpacked into a throwaway root; the wrapper lists the
#   simulated switches from there, while the utility alone does not find the
#   simulator (it never shadows a vendor library); lintian reports nothing
#   at warning level or above; the manual page renders without warnings.
# - armhf: the packages' architecture and the ARM hard-float binaries inside.
set -euo pipefail
native=$1
arm=${2:-}
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
fail() { echo "package check: $*" >&2; exit 1; }

build_packages() {
  (cd "$1" && rm -f ./*.deb && cpack -G DEB >/dev/null) || fail "cpack failed in $1"
  ls "$1"/zentrellibtest_*.deb "$1"/zentrel-sim_*.deb >/dev/null || fail "no packages in $1"
}

check_contents() {
  local dir=$1 arch=$2
  for deb in "$dir"/zentrellibtest_*_"$arch".deb "$dir"/zentrel-sim_*_"$arch".deb; do
    [ -f "$deb" ] || fail "missing $arch package in $dir"
    [ "$(dpkg-deb -f "$deb" Architecture)" = "$arch" ] || fail "$deb: architecture is not $arch"
  done
  dpkg-deb -c "$dir"/zentrellibtest_*_"$arch".deb | grep -q 'libzentrel' && fail "the utility package ships a libzentrel"
  dpkg-deb -f "$dir"/zentrellibtest_*_"$arch".deb Depends | grep -qw libzentrel || fail "the utility does not depend on libzentrel"
  dpkg-deb -f "$dir"/zentrel-sim_*_"$arch".deb Provides | grep -qw libzentrel || fail "the simulator does not provide libzentrel"
  lintian --allow-root --fail-on error,warning "$dir"/zentrellibtest_*_"$arch".deb "$dir"/zentrel-sim_*_"$arch".deb \
    || fail "lintian found problems in the $arch packages"
}

# The machine field and float ABI of an ELF file inside a package.
elf_of() {
  local deb=$1 path=$2 out=$root/elf
  rm -rf "$out" && mkdir -p "$out" && dpkg-deb -x "$deb" "$out"
  readelf -h "$out/$path" | sed -n 's/^ *Machine: *//p'
  readelf -A "$out/$path" | sed -n 's/^ *Tag_ABI_VFP_args: *//p'
}

echo "=== packages (amd64)"
build_packages "$native"
check_contents "$native" amd64
dpkg-deb -x "$native"/zentrellibtest_*_amd64.deb "$root/sys"
dpkg-deb -x "$native"/zentrel-sim_*_amd64.deb "$root/sys"
expected="$root/expected" got="$root/got"
ZENTREL_SIM_STATE= "$native/zentrelLibTest" -list -addr 59 -bus 1 > "$expected"
ZENTREL_SIM_STATE= "$root/sys/usr/bin/zentrelLibTest-sim" -list -addr 59 -bus 1 > "$got" || fail "the installed wrapper failed"
diff -u "$expected" "$got" || fail "the installed wrapper does not list the simulated switches"
grep -q 'Switch Details' "$got" || fail "the installed wrapper lists no switch"
if env -u LD_LIBRARY_PATH "$root/sys/usr/bin/zentrelLibTest" -list -addr 59 -bus 1 >/dev/null 2>&1; then
  fail "the installed utility found a libzentrel.so without the wrapper"
fi
man_page=$root/sys/usr/share/man/man1/zentrelLibTest.1.gz
[ -f "$man_page" ] || fail "no manual page"
[ "$(readlink "$root/sys/usr/share/man/man1/zentrelLibTest-sim.1.gz")" = zentrelLibTest.1.gz ] || fail "no manual page for the wrapper"
zcat "$man_page" | mandoc -T lint -W warning || fail "mandoc warns about the manual page"
[ -z "$(zcat "$man_page" | LC_ALL=C.UTF-8 groff -w all -man -Tutf8 2>&1 >/dev/null)" ] || fail "groff warns about the manual page"

if [ -n "$arm" ]; then
  echo "=== packages (armhf)"
  build_packages "$arm"
  check_contents "$arm" armhf
  for pair in "zentrellibtest:usr/bin/zentrelLibTest" "zentrel-sim:usr/lib/zentrel-sim/libzentrel.so"; do
    elf=$(elf_of "$arm/${pair%%:*}"_*_armhf.deb "${pair#*:}")
    grep -q '^ARM$' <<<"$elf" || fail "${pair#*:} is not an ARM binary"
    grep -q 'VFP registers' <<<"$elf" || fail "${pair#*:} does not use the hard-float calling convention"
  done
fi
echo "packages checked"
