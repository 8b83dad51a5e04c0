#!/bin/bash
# How long the nearest operations of public tools take beside the effects: the effect alone, without
# starting, reading and writing, in seconds, and as a multiple of the effect's own time. Tools that
# are not installed are skipped (Debian: gegl, gmic, imagemagick). Needs a release build.
#
#   bench/public-tools.sh [PICTURE]    an uncompressed TIFF file; default: 24 megapixels made here
set -euo pipefail
cd "$(dirname "$0")/.."
program=build/release/bin/cmdtexture
runs=${RUNS:-5}
# In memory where that is: writing back to a disk disturbs the next run.
if [ -w /dev/shm ]; then export TMPDIR=/dev/shm; fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config XDG_CACHE_HOME=$work/cache

has() { command -v "$1" >/dev/null; }
median() { sort -n | sed -n "$(((runs + 1) / 2))p"; }
calculate() { awk "BEGIN { printf \"%.3f\", $1 }"; }

# wall COMMAND...: the seconds that it takes.
wall() {
    local start end
    start=$(date +%s%N)
    "$@" >/dev/null 2>&1 || { echo "failed: $*" >&2; exit 1; }
    end=$(date +%s%N)
    calculate "($end - $start) / 1e9"
    echo
}

# ours EFFECT: sets own, the effect's seconds at its defaults, and prints it.
ours() {
    local run
    own=$(for run in $(seq "$runs"); do
        "$program" apply "$1" "$picture" -o "$work/own.tif" --overwrite --json 2>/dev/null |
            sed -n 's/.*"effect": \([0-9.e-]*\).*/\1/p' | tail -n 1
    done | median)
    printf '%-44s %8.3f\n' "$1" "$own"
}

# theirs TOOL OPERATION...: what the operation takes beyond the tool's reading and writing, which are
# timed just before each time.
theirs() {
    local tool=$1 seconds run
    shift
    has "$tool" || return 0
    local name=${1#-}
    run_$tool "$@" >/dev/null 2>&1 || true  # warm
    seconds=$(for run in $(seq "$runs"); do
        calculate "-$(wall run_$tool) + $(wall run_$tool "$@")"
        echo
    done | median)
    printf '    %-40s %8.3f %8.1f times\n' "$tool $name" "$seconds" "$(calculate "$seconds / $own")"
}

run_gegl() { gegl "$picture" -o "$work/out.tif" -- "${@:-nop}" convert-format "format=R'G'B' u8"; }
run_convert() { convert "$picture" "$@" "$work/out.tif"; }
run_gmic() { gmic "$picture" "$@" -o "$work/out.tif,uchar"; }

picture=${1:-$work/picture.tif}
if [ $# -eq 0 ]; then
    has convert || { echo "without a PICTURE this needs ImageMagick to make one" >&2; exit 2; }
    convert samples/photos/coffee.png -resize '6000x4000!' -compress none "$picture"
fi
ours Weave
theirs gmic -weave 6
ours Tiles
theirs gegl mosaic
theirs gegl tile-glass
ours MosaicGlass
theirs gegl tile-glass
theirs gmic -stained_glass 20%,0.1
ours MosaicAntique
theirs gegl mosaic
ours Sculpture
theirs gegl bump-map "aux=[" load "path=$picture" "]"
theirs convert -shade 120x45
ours Texture
theirs gegl texturize-canvas
theirs convert -shade 120x45
