#!/usr/bin/env bash
# The utility needs libzentrel.so by its SONAME, finds the simulator of its
# build tree through a RUNPATH naming exactly that directory (no empty entry,
# which would mean the current directory), and takes any other
# libzentrel.so that LD_LIBRARY_PATH offers first.
#   linkage.sh <utility> <simulator library> [launcher words...]
set -u
utility=$1
library=$2
shift 2
failed=0
check() {
  if eval "$2"; then echo "ok   $1"; else echo "FAIL $1"; failed=$((failed + 1)); fi
}

dynamic=$(readelf -d "$utility")
check "needs libzentrel.so by name" 'grep -q "NEEDED.*\[libzentrel.so\]" <<<"$dynamic"'
check "RUNPATH, not RPATH" '! grep -q "(RPATH)" <<<"$dynamic"'
# Compared as strings: the checkout's path may hold characters a pattern reads otherwise.
runpath=$(sed -n 's/.*(RUNPATH).*\[\(.*\)\]$/\1/p' <<<"$dynamic")
check "RUNPATH is exactly the simulator's directory" '[ "$runpath" = "$(dirname "$library")" ]'
check "the simulator's SONAME is libzentrel.so" 'readelf -d "$library" | grep -q "SONAME.*\[libzentrel.so\]"'

other=$(mktemp -d)
cp "$library" "$other/libzentrel.so"
loaded=$(cd "$other" && LD_LIBRARY_PATH="$other" LD_DEBUG=libs "$@" "$utility" 2>&1 >/dev/null | grep "calling init: .*libzentrel.so")
check "LD_LIBRARY_PATH substitutes another libzentrel.so" 'grep -qF "$other/libzentrel.so" <<<"$loaded"'
rm -rf "$other"

echo "$((5 - failed)) passed, $failed failed"
[ "$failed" -eq 0 ]
