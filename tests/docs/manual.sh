#!/bin/bash
# manual.sh PROGRAM PAGE...: every page is laid out without a complaint, and has every option of its
# subcommand's help and the sections that hold for all.
program=$1
shift
failed=0
fail() { echo "$1"; failed=1; }
for page in "$@"; do
    complaints=$(groff -man -ww -z -Tutf8 "$page" 2>&1)
    [ -z "$complaints" ] || fail "$page: $complaints"
    text=$(groff -man -Tascii -P-cbou -rLL=2000n "$page")
    case $page in *cmdtexture-*.1) ;; *) continue ;; esac
    subcommand=${page##*cmdtexture-}
    for word in 'EXIT STATUS' ENVIRONMENT FILES 'SEE ALSO' \
        $("$program" "${subcommand%.1}" --help --language EN | grep -o -- '--[a-z][a-z-]*' | sort -u); do
        grep -qF -- "$word" <<<"$text" || fail "$page: no $word"
    done
done
[ $# -gt 1 ] || fail "no pages"
exit $failed
