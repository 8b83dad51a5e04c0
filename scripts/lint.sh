#!/bin/bash
# lint.sh [--since COMMIT | FILE...]: checks the format of every source file and lints the given
# ones, those changed since a commit, or all. Needs clang-format and clang-tidy 14 and a configured
# release build; what that does not build is left out.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
if [ "${1:-}" = --since ]; then
    list() { git diff --name-only --diff-filter=d "$1" -- '*.cpp'; }
elif [ $# -gt 0 ]; then
    list() { printf '%s\n' "$@"; }
else
    list() { git ls-files '*.cpp'; }
fi
[ "${1:-}" != --since ] || shift
# The linter's compiler does not know all of the compiler's options.
mkdir -p build/lint
sed 's/ -fno-gnu-unique//g' build/release/compile_commands.json >build/lint/compile_commands.json
list "$@" | sed '/^fuzz\//d; /\/OpenCv/d' |
    xargs -r -n 4 -P "$(nproc)" clang-tidy -p build/lint --quiet
