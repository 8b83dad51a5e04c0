#!/bin/bash
# Renders the contact sheets of docs/effects.md: each effect of the host's graphics library at its
# defaults and with the presets of samples/presets. Needs a release build.
set -euo pipefail
cd "$(dirname "$0")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for folder in samples/presets/*; do
    effect=$(basename "$folder")
    options=()
    for preset in "$folder"/*.json; do options+=(--preset "$preset"); done
    for photo in chelsea coffee; do
        build/release/bin/cmdtexture gallery "samples/photos/$photo.png" -d "$work/$effect-$photo" \
            --effect "$effect" "${options[@]}" --quiet --overwrite \
            --sheet "docs/images/sheet-$effect-$photo.jpg"
    done
done
