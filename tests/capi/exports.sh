#!/bin/bash
# exports.sh LIBRARY HEADER: the library exports what the header declares, each with a version, and
# nothing else.
set -euo pipefail
diff <(nm -D --defined-only "$1" | awk '$2 != "A" { print $3 }' | sort) \
    <(grep -o 'cmdtexture_[a-z_]*(' "$2" | tr -d '(' | sort -u | sed 's/$/@@CMDTEXTURE_1.0/')
