#!/bin/bash
# Operations beside the nearest of GEGL's own, in one graph and on one picture of 6 megapixels, as
# GEGL itself measures them: seconds of the fastest of RUNS (9) runs, and of the median one. Wants
# gegl and imagemagick. operations.sh [BUILD]
set -euo pipefail
build=$(realpath "${1:-build/release}")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
convert -size 3000x2000 -seed 3 plasma:fractal -depth 8 -strip PNG24:in.png
export GEGL_PATH=$(pkg-config --variable=pluginsdir gegl-0.4):$build/lib/gegl GEGL_DEBUG_TIME=yes
for ((run = 0; run < ${RUNS:-9}; ++run)); do
    # Each begins with the same picture: what another makes of it is thrown away.
    gegl in.png -o out.ppm -- gegl:nop id=photo gegl:texturize-canvas \
        gegl:over aux=[ ref=photo gegl:mosaic ] gegl:over aux=[ ref=photo cmdtexture:texture texture-name=canvas ] \
        gegl:over aux=[ ref=photo cmdtexture:mosaic-antique ] gegl:over aux=[ ref=photo cmdtexture:tiles ] 2>&1 |
        awk '/^Total time/ { total = $3 + 0 }
             $1 == "process" { part = $2 }
             /texturize-canvas|:mosaic|cmdtexture:/ && $2 ~ /%/ { print $1, total * part / 100 * $2 / 100 }'
done | sort -k1,1 -k2,2g | awk '
    { count[$1]++; at[$1, count[$1]] = $2 }
    END { for (name in count) printf "%-26s %.3f %.3f\n", name, at[name, 1], at[name, int((count[name] + 1) / 2)] }' | sort
