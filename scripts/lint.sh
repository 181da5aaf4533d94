#!/usr/bin/env bash
# Static analysis, from a build's compilation database: clang-tidy (the
# checks in .clang-tidy) over the utility's sources in src/, and cppcheck
# over src/ and the simulator in sim/. Any finding fails the run; the few
# findings that are kept are suppressed in place, each with its reason.
#   scripts/lint.sh BUILD_DIR         a build configured with
#                                     -DCMAKE_EXPORT_COMPILE_COMMANDS=ON
#   scripts/lint.sh --list BUILD_DIR  only print the files each tool would
#                                     read, relative to the project root
# Files are chosen by their path relative to the project root, so the
# result does not depend on where the project is checked out (a checkout
# under ~/src/ included).
set -euo pipefail
cd "$(dirname "$0")/.."
list=0
if [ "${1:-}" = "--list" ]; then
  list=1
  shift
fi
build=${1:?usage: scripts/lint.sh [--list] BUILD_DIR}
jobs=$(nproc)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The database holds the unit tests and GoogleTest as well, and some sources
# twice: keep each file of src/ and sim/ once. sim/exports.cpp is left out:
# it is nothing but the library's functions generated from
# include/zentrel_interface.def, whose argument-list macros cppcheck cannot
# expand (unknownMacro); the compiler checks it with every warning on.
# clang-tidy reads the files of src/ only.
python3 - "$build/compile_commands.json" "$work" "$PWD" <<'PY'
import json, os, sys
database, work, root = sys.argv[1], sys.argv[2], os.path.realpath(sys.argv[3])

def relative(entry):
    """The entry's file relative to the project root, or None outside it."""
    name = os.path.realpath(os.path.join(entry.get("directory", ""), entry["file"]))
    rel = os.path.relpath(name, root)
    return None if rel.startswith("..") or os.path.isabs(rel) else rel

seen, kept, tidy = set(), [], []
for e in json.load(open(database)):
    rel = relative(e)
    if rel is None or rel in seen or rel == "sim/exports.cpp" or not rel.startswith(("src/", "sim/")):
        continue
    seen.add(rel)
    kept.append(e)
    if rel.startswith("src/"):
        tidy.append(rel)
json.dump(kept, open(os.path.join(work, "compile_commands.json"), "w"), indent=1)
with open(os.path.join(work, "cppcheck"), "w") as f:
    f.writelines(rel + "\n" for rel in sorted(seen))
with open(os.path.join(work, "tidy"), "w") as f:
    f.writelines(rel + "\n" for rel in sorted(tidy))
PY

# Headers are reported when they are the utility's own: src/ and include/
# under this root (the anchored, escaped path; .clang-tidy's own filter is
# for editors).
header_filter="^$(printf '%s' "$PWD" | sed 's/[][\.*^$+?(){}|]/\\&/g')/(src|include)/"

if [ "$list" = 1 ]; then
  sed 's/^/clang-tidy /' "$work/tidy"
  sed 's/^/cppcheck /' "$work/cppcheck"
  echo "header-filter $header_filter"
  exit 0
fi

echo "=== clang-tidy"
xargs -P"$jobs" -n4 clang-tidy-14 -p "$work" --quiet --header-filter="$header_filter" <"$work/tidy" 2>/dev/null

echo "=== cppcheck"
cppcheck --project="$work/compile_commands.json" --enable=warning,performance,portability --std=c++20 \
  --inline-suppr --error-exitcode=1 --quiet -j"$jobs" \
  --suppress=missingIncludeSystem
echo "lint: no findings"
