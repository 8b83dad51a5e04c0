#!/bin/bash
# The program's messages and their translations. The English texts stand in the code; what they read
# in another language stands in languages/<CODE>/messages.po, in the order of the texts.
#   scripts/messages.sh          brings the texts of the code into every messages.po; what is then
#                                empty, or marked fuzzy, is to be translated
#   scripts/messages.sh --check  fails when a language lacks a text, or has one that is used no more
set -euo pipefail
cd "$(dirname "$0")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Tr and TrLater mark texts; the descriptions of subcommands and options are texts as well.
find app/cli app/imagefile job hostlib -name '*.cpp' -o -name '*.h' | sort |
    xgettext --files-from=- --language=C++ --from-code=UTF-8 --output="$work/messages.pot" \
        --keyword --keyword=Tr --keyword=TrLater --keyword=add_subcommand:2 \
        --keyword=add_option:3 --keyword=add_flag:3 \
        --no-location --omit-header --sort-output 2>"$work/notes"

failed=0
for file in languages/*/messages.po; do
    if [ "${1:-}" = --check ]; then
        # Comments (#~) hold texts that are used no more.
        msgcmp "$file" "$work/messages.pot" || failed=1
        ! grep -Hn '^#~' "$file" || failed=1
        msgfmt --check-format --output-file=/dev/null "$file" || failed=1
    else
        msgmerge --quiet --update --backup=none --no-fuzzy-matching --sort-output "$file" \
            "$work/messages.pot"
        msgattrib --no-obsolete --output-file="$file" "$file"
        echo "$file: $(msgfmt --statistics --output-file=/dev/null "$file" 2>&1)"
    fi
done
exit $failed
