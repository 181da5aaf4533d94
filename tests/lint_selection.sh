#!/usr/bin/env bash
# The static analysis picks its files by their path relative to the project
# root: from a checkout under a folder named src (~/src/project), clang-tidy
# still reads only src/, cppcheck src/ and sim/, and headers are reported
# for src/ and include/ of that checkout only.
#   lint_selection.sh <project root>
set -euo pipefail
root=$1
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
checkout=$tmp/src/project
mkdir -p "$checkout/scripts" "$checkout/build"
cp "$root/scripts/lint.sh" "$checkout/scripts/"
entry() { printf '{"directory": "%s", "file": "%s", "command": "c++ -c %s"},\n' "$1" "$2" "$2"; }
{
  echo '['
  entry "$checkout/build" "$checkout/src/frontend/menu.cpp"
  entry "$checkout/build" "$checkout/src/frontend/menu.cpp"
  entry "$checkout/build" "../sim/ports.cpp"
  entry "$checkout/build" "$checkout/sim/exports.cpp"
  entry "$checkout/build" "$checkout/record/recording.cpp"
  entry "$checkout/build" "$checkout/tests/unit/test_input.cpp"
  entry "$checkout/build" "/usr/src/googletest/googletest/src/gtest-all.cc"
  entry "$checkout/build" "$tmp/src/other/src/frontend/main.cpp"
  entry "$checkout/build" "$checkout/srcfoo/x.cpp"
  echo '{"directory": "/", "file": "/src/sim/state.cpp", "command": "c++"}]'
} >"$checkout/build/compile_commands.json"

got=$("$checkout/scripts/lint.sh" --list build)
want="clang-tidy src/frontend/menu.cpp
cppcheck sim/ports.cpp
cppcheck src/frontend/menu.cpp"
if [ "$(grep -v '^header-filter' <<<"$got")" != "$want" ]; then
  printf 'FAIL: files chosen from %s\n%s\nwanted\n%s\n' "$checkout" "$got" "$want"
  exit 1
fi
filter=$(sed -n 's/^header-filter //p' <<<"$got")
for header in "$checkout/src/frontend/menu.h" "$checkout/include/zentrel_ports.h"; do
  grep -qE "$filter" <<<"$header" || { echo "FAIL: header filter $filter leaves out $header"; exit 1; }
done
for header in "$checkout/record/interface.h" "$checkout/sim/sim.h" "/usr/src/googletest/googletest/include/gtest/gtest.h"; do
  if grep -qE "$filter" <<<"$header"; then echo "FAIL: header filter $filter takes $header"; exit 1; fi
done
echo "ok: the same files from $checkout"
