#!/bin/bash
# man-page.sh PROGRAM SUBCOMMAND VERSION MANUAL OUT: the page of the manual about a subcommand, from its
# own --help and the sections of MANUAL that hold for all of them. Needs help2man.
set -euo pipefail
program=$1 subcommand=$2 version=$3 manual=$4 out=$5
export LC_ALL=C.UTF-8
sections=$(mktemp)
trap 'rm -f "$sections"' EXIT
{
    sed -n '/^\.SH EXIT STATUS/,/^\.SH EXAMPLES/p' "$manual" |
        sed -E '/^\.SH EXAMPLES/d; s/^\.SH (.*)/\n[\1]/'
    printf '\n[SEE ALSO]\n.BR cmdtexture (1)\n'
} >"$sections"
# Up to the first empty line, on one line, and of that the first sentence.
purpose=$("$program" "$subcommand" --help | sed '/^$/,$d' | tr '\n' ' ' | sed -E 's/\. .*//; s/ +/ /g; s/ $//')
help2man --no-info --name="$purpose" --version-string="cmdtexture-$subcommand $version" \
    --include="$sections" --output="$out" "$program $subcommand"
