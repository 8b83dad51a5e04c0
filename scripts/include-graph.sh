#!/bin/bash
# Prints which layer includes which, and how often; fails on an arrow that scripts/layers.txt does
# not have, and on a folder with sources that is no layer.
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"
find . \( -path ./build -o -path ./tests -o -path ./bench -o -path ./fuzz -o -name '.?*' \) -prune \
    -o \( -name '*.cpp' -o -name '*.h' \) -printf '%P\n' | sort |
    xargs grep -HnoE '^[[:space:]]*#[[:space:]]*include[[:space:]]*["<][^">]+' |
    awk -v table="scripts/layers.txt" '
    function layer_of(path,    best, name) {  # the longest folder of the table that holds it
        best = ""
        for (name in known)
            if (index(path, name "/") == 1 && length(name) > length(best)) best = name
        return best
    }
    BEGIN {
        while ((getline line < table) > 0) {
            if (line ~ /^#/ || split(line, word) == 0) continue
            known[word[1]] = 1
            order[++layers] = word[1]
            for (i = 3; i in word; ++i) {
                if (!(word[i] in known)) wrong = wrong word[1] ": " word[i] " does not stand above it\n"
                allowed[word[1], word[i]] = 1
            }
        }
        if (layers == 0) { print table ": no layers" > "/dev/stderr"; exit 2 }
    }
    {
        split($0, part, ":")
        from = layer_of(part[1])
        if (from == "") { wrong = wrong part[1] ": its folder is no layer\n"; next }
        included = $0
        sub(/.*["<]/, "", included)
        to = layer_of(included)
        if (to == "" || to == from) next
        ++arrows[from, to]
        if (!((from, to) in allowed))
            wrong = wrong part[1] ":" part[2] ": " from " must not include " to "\n"
    }
    END {
        if (layers == 0) exit 2
        for (f = 1; f <= layers; ++f) {
            text = ""
            for (t = 1; t <= layers; ++t)
                if ((order[f], order[t]) in arrows)
                    text = text "  " order[t] " (" arrows[order[f], order[t]] ")"
            printf "%-20s ->%s\n", order[f], text
        }
        printf "%s", wrong > "/dev/stderr"
        exit wrong != ""
    }'
