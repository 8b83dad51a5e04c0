#!/bin/bash
# What a batch of many pictures takes in one process, and in one process each started by GNU parallel,
# xargs and a loop over ImageMagick's mogrify (its -shade, which is a part of what Sandstone does):
# pictures a second, processor seconds, and the largest resident memory of any one process. Tools that
# are not installed are skipped (Debian: parallel, imagemagick; time is needed). Needs a release build.
#
#   bench/batch.sh [SMALL] [LARGE]    numbers of pictures of 2 and of 24 megapixels; default: 200 and 20
set -euo pipefail
cd "$(dirname "$0")/.."
program=$PWD/build/release/bin/cmdtexture
photo=$PWD/samples/photos/coffee.png
small=${1:-200} large=${2:-20} effect=${EFFECT:-Sandstone} kinds=${KINDS:-jpg png tif}
# In memory where that is: writing back to a disk disturbs the next run.
if [ -w /dev/shm ]; then export TMPDIR=${TMPDIR:-/dev/shm}; fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config XDG_CACHE_HOME=$work/cache
cd "$work"

has() { command -v "$1" >/dev/null; }

# make COUNT SIZE KIND: pictures in/0.KIND and so on, which differ by a turn of their colours.
make() {
    local i
    rm -rf in
    mkdir in
    convert "$photo" -resize "$2!" -depth 8 large.ppm
    for ((i = 0; i < $1; ++i)); do
        if [ "$i" -lt 8 ]; then
            convert large.ppm -modulate 100,100,$((100 + i * 20)) -quality 92 -compress LZW \
                "in/$i.$3"
        else
            cp "in/$((i % 8)).$3" "in/$i.$3"
        fi
    done
}

# row NAME COMMAND...: runs it with an empty folder out, and prints what it took.
row() {
    local name=$1 wall user system peak
    shift
    rm -rf out batch.log
    mkdir out
    /usr/bin/time -o taken -f '%e %U %S %M' "$@" >/dev/null 2>errors || { cat errors; exit 1; }
    read -r wall user system peak <taken
    [ "$(find out -type f | wc -l)" -eq "$count" ] || { echo "$name: outputs are missing"; exit 1; }
    awk -v n="$name" -v c="$count" -v w="$wall" -v u="$user" -v s="$system" -v p="$peak" 'BEGIN {
        printf "    %-28s %8.1f pictures/s %8.1f s of processor %8.0f MB\n", n, c / w, u + s, p / 1024
    }'
}

for size in 2 24; do
    [ $size -eq 2 ] && count=$small pixels=1732x1155 || { count=$large; pixels=6000x4000; }
    [ "$count" -gt 0 ] || continue
    for kind in $kinds; do
        make "$count" $pixels "$kind"
        echo "$count pictures of $size megapixels, $kind, $effect"
        row batch "$program" batch "$effect" in -o 'out/{name}.{ext}' --log batch.log --quiet
        if has parallel; then
            row 'GNU parallel, apply' parallel --will-cite "$program" apply "$effect" {} -o out/{/} \
                --quiet ::: in/*
        fi
        row 'xargs, apply' sh -c "ls in | xargs -P $(nproc) -I{} \
            $program apply $effect in/{} -o out/{} --quiet"
        if has mogrify; then
            row 'mogrify -shade' mogrify -path out -shade 45x30 in/*
        fi
    done
done
