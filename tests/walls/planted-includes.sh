#!/bin/bash
# planted-includes.sh SOURCE-TREE LAYER COMPILER FLAGS-FILE: a file that includes a header of the
# layer must compile as the layer does, and find no header of a layer that it must not see; with one
# of those planted in it, it must not compile any more. A layer sees what it may include and what
# that includes in turn.
set -euo pipefail
tree=$1 layer=$2 compiler=$3 flags=$4
table=$tree/scripts/layers.txt
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

headers_of() { (cd "$tree" && find "$1" -name '*.h' | LC_ALL=C sort); }
compile() { "$compiler" @"$flags" -std=c++20 -fPIC -fsyntax-only "$1" 2>"$work/errors"; }

# A header of each layer that this one may not see. Layers of one target see each other: only the
# include graph tells them apart. Rows stand in the order of the arrows, so one walk up is enough.
forbidden=()
for other in $(awk -v layer="$layer" '
    /^#/ || !NF { next }
    { all[++count] = $1; target[$1] = $2; below[$1] = $0 }
    END {
        seen[layer] = 1
        for (i = count; i > 0; --i) {
            if (!(all[i] in seen)) continue
            words = split(below[all[i]], word)
            for (w = 3; w <= words; ++w) seen[word[w]] = 1
        }
        for (i = 1; i <= count; ++i)
            if (!(all[i] in seen) && target[all[i]] != target[layer]) print all[i]
    }' "$table"); do
    # One of the layer itself, not of another that lies below it.
    header=$(headers_of "$other" | grep -vE '^host/(core|graphics)/' || headers_of "$other")
    [ -z "$header" ] || forbidden+=("$(head -n 1 <<<"$header")")
done
[ ${#forbidden[@]} -gt 0 ] || { echo "$layer: there is nothing to plant"; exit 1; }

{
    echo "#include \"$(headers_of "$layer" | head -n 1)\""
    for header in "${forbidden[@]}"; do
        printf '#if __has_include("%s")\n#error sees %s\n#endif\n' "$header" "$header"
    done
} >"$work/own.cpp"
compile "$work/own.cpp" || { echo "$layer does not compile alone:"; head "$work/errors"; exit 1; }

# The host library's own headers are what one would reach for first.
planted=$(printf '%s\n' "${forbidden[@]}" | grep -m 1 '^hostlib/' || echo "${forbidden[0]}")
{ echo "#include \"$planted\""; cat "$work/own.cpp"; } >"$work/planted.cpp"
if compile "$work/planted.cpp"; then echo "$layer includes $planted, and compiles"; exit 1; fi
grep -F "$planted: No such file" "$work/errors"
echo "$layer compiles without it, and sees none of ${forbidden[*]}"
