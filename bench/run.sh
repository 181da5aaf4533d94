#!/usr/bin/env bash
# Compares zentrelLibTest -i 0 -temp / -swerr / -portprop with bench/client.c,
# which makes the same library calls and writes the same bytes through a
# fully buffered standard output, both against the simulator with no
# scenario, trace or state file (so the library's own work is small).
#   bench/run.sh           full run (200 timed runs a command)
#   bench/run.sh --quick   a short run for CI, native only
# Figures: instructions executed (callgrind, whole process), median wall
# time (hyperfine), write(2) calls (strace), peak resident memory
# (/usr/bin/time), and, with the ARM build present (build-bench-arm), the
# stripped ARM size and the ARM write calls and wall time under qemu-arm.
set -euo pipefail
cd "$(dirname "$0")/.."
runs=200
quick=false
[ "${1:-}" = "--quick" ] && runs=20 && quick=true
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export ZENTREL_SIM_STATE= ZENTREL_SIM_TRACE= ZENTREL_SIM_SCENARIO=
unset ZENTREL_SIM_STATE ZENTREL_SIM_TRACE ZENTREL_SIM_SCENARIO

build=build-bench
cmake -S . -B $build -DCMAKE_BUILD_TYPE=Release -DZENTREL_TESTS=OFF >/dev/null
cmake --build $build -j"$(nproc)" --target zentrelLibTest zentrel >/dev/null 2>&1
gcc -O2 -std=c11 -Wall -Wextra -Iinclude bench/client.c -o $build/client \
    -L$build/sim -lzentrel -Wl,--enable-new-dtags,-rpath,"$PWD/$build/sim"
utility=$build/zentrelLibTest
client=$build/client

instructions() {  # the instructions a command line executes
  valgrind --tool=callgrind --callgrind-out-file=/dev/null "$@" 2>&1 >/dev/null |
    sed -n 's/.*Collected : \([0-9]*\).*/\1/p'
}
writes() {  # write(2) calls of a whole run, its output going into a pipe
  strace -f -e trace=write -o "$work/strace" "$@" | cat >/dev/null
  grep -c '^[0-9]* *write(' "$work/strace" || true
}
peak_kib() {
  /usr/bin/time -f %M "$@" 2>&1 >/dev/null | tail -1
}
median_us() {
  hyperfine -N --style none --warmup 5 --runs "$runs" --output pipe \
    --export-json "$work/h.json" "$(printf '%q ' "$@")" >/dev/null
  python3 -c 'import json,sys; print(round(json.load(open(sys.argv[1]))["results"][0]["median"]*1e6))' "$work/h.json"
}
ratio() { python3 -c "import sys; print(f'{int(sys.argv[1])/int(sys.argv[2]):.3f}')" "$1" "$2"; }

printf '%-10s %-8s %12s %10s %7s %9s\n' command program instructions median_us writes peak_KiB
for command in -temp -swerr -portprop; do
  "$utility" -i 0 $command > "$work/expected$command"
  "$client" $command "$work/expected$command" | cmp -s - "$work/expected$command" ||
    { echo "the client does not write what the utility writes for $command" >&2; exit 1; }
  declare -A figure=()
  for program in utility client; do
    if [ $program = utility ]; then line=("$utility" -i 0 $command); else line=("$client" $command "$work/expected$command"); fi
    figure[$program.i]=$(instructions "${line[@]}")
    figure[$program.t]=$(median_us "${line[@]}")
    figure[$program.w]=$(writes "${line[@]}")
    figure[$program.m]=$(peak_kib "${line[@]}")
    printf '%-10s %-8s %12s %10s %7s %9s\n' $command $program "${figure[$program.i]}" "${figure[$program.t]}" \
      "${figure[$program.w]}" "${figure[$program.m]}"
  done
  printf '%-10s %-8s %12s %10s %7s %9s\n' $command ratio "$(ratio "${figure[utility.i]}" "${figure[client.i]}")" \
    "$(ratio "${figure[utility.t]}" "${figure[client.t]}")" \
    "$((figure[utility.w] - figure[client.w]))" "$((figure[utility.m] - figure[client.m]))"
  unset figure
done

arm=build-bench-arm
if ! $quick && command -v arm-linux-gnueabihf-gcc >/dev/null && command -v qemu-arm >/dev/null; then
  cmake -S . -B $arm -DCMAKE_BUILD_TYPE=MinSizeRel -DZENTREL_TESTS=OFF \
        -DCMAKE_TOOLCHAIN_FILE=cmake/arm-linux-gnueabihf.cmake >/dev/null
  cmake --build $arm -j"$(nproc)" --target zentrelLibTest zentrel >/dev/null 2>&1
  arm-linux-gnueabihf-gcc -Os -std=c11 -Iinclude bench/client.c -o $arm/client \
      -L$arm/sim -lzentrel -Wl,--enable-new-dtags,-rpath,"$PWD/$arm/sim"
  arm-linux-gnueabihf-strip -o "$work/stripped" $arm/zentrelLibTest
  echo "ARM (MinSizeRel, stripped): zentrelLibTest $(stat -c %s "$work/stripped") bytes"
  qemu=(qemu-arm -L /usr/arm-linux-gnueabihf)
  printf '%-10s %-8s %10s %7s\n' command program median_us writes
  for command in -temp -swerr -portprop; do
    "${qemu[@]}" $arm/zentrelLibTest -i 0 $command > "$work/arm$command"
    for program in utility client; do
      if [ $program = utility ]; then line=("${qemu[@]}" $arm/zentrelLibTest -i 0 $command)
      else line=("${qemu[@]}" $arm/client $command "$work/arm$command"); fi
      count=$("${qemu[@]}" -strace "${line[@]:3}" 2>&1 >/dev/null | grep -c ' write(' || true)
      printf '%-10s %-8s %10s %7s\n' $command $program "$(median_us "${line[@]}")" "$count"
    done
  done
fi
