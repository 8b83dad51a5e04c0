#!/bin/bash
# Checks the format of every source file and lints the given ones (all without arguments). Needs
# clang-format and clang-tidy 14 and a configured release build; what that does not build is left out.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
if [ $# -eq 0 ]; then
    mapfile -t files < <(git ls-files '*.cpp' | grep -v '^fuzz/\|/OpenCv')
else
    files=("$@")
fi
# The linter's compiler does not know all of the compiler's options.
mkdir -p build/lint
sed 's/ -fno-gnu-unique//g' build/release/compile_commands.json >build/lint/compile_commands.json
printf '%s\0' "${files[@]}" | xargs -0 -n 4 -P "$(nproc)" clang-tidy -p build/lint --quiet
