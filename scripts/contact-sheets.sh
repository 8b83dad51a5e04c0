#!/bin/bash
# Renders the contact sheets of README.md and docs/effects.md: all effects on one photograph, every
# effect at its defaults and with the presets that ship, on both, and the library of patterns and
# textures. Needs a release build, and ImageMagick to make the sheets small.
set -euo pipefail
cd "$(dirname "$0")/.."
program=build/release/bin/cmdtexture
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data  # nobody's own presets and pictures
sheet() { # FILE PHOTO OPTIONS...
    "$program" gallery "samples/photos/$2.png" -d "$work/$1" --quiet "${@:3}"
    convert "$work/$1/contact-sheet.png" -strip -resize 80% -sampling-factor 4:2:0 -quality 76 \
        "docs/images/$1.jpg"
}
for folder in presets/*/; do
    effect=$(basename "$folder")
    for photo in chelsea coffee; do sheet "sheet-$effect-$photo" "$photo" --effect "$effect" --presets; done
done
sheet sheet-library-coffee coffee --library
sheet contact-sheet coffee
