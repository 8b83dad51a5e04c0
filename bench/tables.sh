#!/bin/bash
# Prints the tables of docs/performance.md: every effect at its defaults on 8-bit colour, in copies of
# the picture by the clock, on one and two threads, with all that the processor has and with AVX2 at
# most. Builds what it needs, the second time below build/avx2; takes some ten minutes on a quiet machine
# of two cores, and tells nothing on a busy one (but see "work").
#
#   bench/tables.sh [FILTER]     FILTER: a part of the rows, as 'Sandstone|Fur' or 'megapixels:(1|6)/'
#   COUNTER=work bench/tables.sh the processors' time instead of the clock's, which bears other work
set -euo pipefail
cd "$(dirname "$0")/.."
filter=${1:-.} counter=${COUNTER:-copies}
taken=$(mktemp -d)
trap 'rm -rf "$taken"' EXIT

# measure TITLE BUILD CMAKE-OPTIONS...
measure() {
    local title=$1 build=$2
    shift 2
    [ -f "$build/CMakeCache.txt" ] || cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release "$@" >&2
    cmake --build "$build" -j2 --target bench-jobs >&2
    # Patterns and textures are made once.
    if [ ! -e "$build/share/cmdtexture/resources" ]; then
        ln -s "$PWD/build/release/share/cmdtexture/resources" "$build/share/cmdtexture/resources"
    fi
    "$build/bin/bench-jobs" --benchmark_filter="$filter" --benchmark_out="$taken/$title.json" \
        --benchmark_out_format=json >&2
    python3 - "$taken/$title.json" "$counter" "$title" <<'PY'
import json, sys
file, counter, title = sys.argv[1:]
cells, names, columns = {}, [], []
for run in json.load(open(file))["benchmarks"]:
    name, size, threads = run["name"].split("/")[:3]
    column = int(size.split(":")[1]), int(threads.split(":")[1])
    cells[name, column] = run[counter]
    if name not in names: names.append(name)
    if column not in columns: columns.append(column)
columns.sort()
print(f"\n| {counter}, {title} | " + " | ".join(f"{mp} MP, {n}" for mp, n in columns) + " |")
print("|---" * (len(columns) + 1) + "|")
for name in sorted(names):
    row = [cells.get((name, column)) for column in columns]
    print(f"| {name} | " + " | ".join("" if x is None else f"{x:.1f}" for x in row) + " |")
PY
}

cmake --build build/release -j2 --target pictures >&2
widest=AVX2
if grep -qw avx512vl /proc/cpuinfo; then widest=AVX-512; fi
measure "$widest" build/release
if [ "$widest" != AVX2 ]; then
    measure AVX2 build/avx2 -DCMDTEXTURE_AVX512=OFF -DCMDTEXTURE_TESTS=OFF
fi
