#!/bin/bash
# Renders the contact sheets of docs/effects.md: every effect at its defaults and with the presets
# that ship, on both sample photographs, and the library of patterns and textures. Needs a release build.
set -euo pipefail
cd "$(dirname "$0")/.."
program=build/release/bin/cmdtexture
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data  # nobody's own presets and pictures
sheet() { # NAME PHOTO OPTIONS...
    local file=docs/images/sheet-$1-$2.jpg
    "$program" gallery "samples/photos/$2.png" -d "$work/$1-$2" --sheet "$file" --quiet --overwrite "${@:3}"
}
for folder in presets/*/; do
    effect=$(basename "$folder")
    for photo in chelsea coffee; do sheet "$effect" "$photo" --effect "$effect" --presets; done
done
sheet library coffee --library
