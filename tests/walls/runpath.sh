#!/bin/bash
# runpath.sh FILE...: a product looks for libraries beside itself and in the system's own folders,
# never in the current folder (an empty entry) nor in those of the machine that built it.
set -euo pipefail
for file in "$@"; do
    path=$(readelf -d "$file" | sed -n 's/.*(\(RUNPATH\|RPATH\)).*\[\(.*\)\]/\2/p')
    [ -n "$path" ] || { echo "$file: no RUNPATH"; exit 1; }
    while IFS= read -r entry; do
        [[ $entry == '$ORIGIN' || $entry == '$ORIGIN/'* ]] || {
            echo "$file: \"$entry\" in its RUNPATH \"$path\""; exit 1
        }
    done < <(tr ':' '\n' <<<"$path")
    echo "$file: $path"
done
