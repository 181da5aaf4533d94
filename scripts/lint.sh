#!/usr/bin/env bash
# Static analysis, from a build's compilation database: clang-tidy (the
# checks in .clang-tidy) over the utility's sources in src/, and cppcheck
# over src/ and the simulator in sim/. Any finding fails the run; the few
# findings that are kept are suppressed in place, each with its reason.
#   scripts/lint.sh BUILD_DIR    a build configured with
#                                -DCMAKE_EXPORT_COMPILE_COMMANDS=ON
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:?usage: scripts/lint.sh BUILD_DIR}
jobs=$(nproc)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The database holds the unit tests and GoogleTest as well, and some sources
# twice: keep each file of src/ and sim/ once. sim/exports.cpp is left out:
# it is nothing but the library's functions generated from
# include/zentrel_interface.def, whose argument-list macros cppcheck cannot
# expand (unknownMacro); the compiler checks it with every warning on.
python3 - "$build/compile_commands.json" "$work/compile_commands.json" "$PWD" <<'PY'
import json, sys
entries, root, seen, kept = json.load(open(sys.argv[1])), sys.argv[3] + "/", set(), []
for e in entries:
    name = e["file"]
    if name.startswith((root + "src/", root + "sim/")) and name != root + "sim/exports.cpp" and name not in seen:
        seen.add(name)
        kept.append(e)
json.dump(kept, open(sys.argv[2], "w"), indent=1)
PY

echo "=== clang-tidy"
python3 -c 'import json, sys; [print(e["file"]) for e in json.load(open(sys.argv[1])) if "/src/" in e["file"]]' \
  "$work/compile_commands.json" | xargs -P"$jobs" -n4 clang-tidy-14 -p "$work" --quiet 2>/dev/null

echo "=== cppcheck"
cppcheck --project="$work/compile_commands.json" --enable=warning,performance,portability --std=c++20 \
  --inline-suppr --error-exitcode=1 --quiet -j"$jobs" \
  --suppress=missingIncludeSystem
echo "lint: no findings"
