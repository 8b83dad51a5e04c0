#!/bin/bash
# The version stands in CMakeLists.txt, from where all take it; prints the lines of other files that
# name it, and fails when there are any. The changelog names every version.
set -euo pipefail
cd "$(dirname "$0")/.."
version=$(sed -n 's/^project(CmdTexture VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
[ -n "$version" ] || { echo "CMakeLists.txt: project() names no version"; exit 1; }
! grep -rnIFw "$version" . --exclude-dir={.git,build,out,.cache,samples} --exclude=CHANGELOG.md |
    grep -v '^\./CMakeLists.txt:[0-9]*:project('
