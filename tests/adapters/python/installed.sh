#!/bin/bash
# installed.sh BUILD SOURCE PYTHON FOLDER: installs into FOLDER, moves the tree, and runs the examples
# with it from elsewhere.
set -euo pipefail
build=$1 source=$2 python=$3 folder=$4
rm -rf "$folder" && mkdir -p "$folder" && cd "$folder"
cmake --install "$build" --prefix "$folder/first" >install.log
mv first moved
export PYTHONPATH=$folder/moved/lib/python3/dist-packages PYTHONDONTWRITEBYTECODE=1
unset CMDTEXTURE_HOME

"$python" - <<'SCRIPT'
import cmdtexture, numpy
picture = numpy.zeros((40, 60, 3), numpy.uint8)
assert "moved" in cmdtexture.__file__
for effect in cmdtexture.effects():
    cmdtexture.apply(picture, effect)
SCRIPT
# Another installation, or none, goes before the module's own when it is named.
if CMDTEXTURE_HOME=$folder "$python" -c 'import cmdtexture; cmdtexture.effects()' 2>refusal; then
    echo "CMDTEXTURE_HOME is not minded" && exit 1
fi
grep -q 'EffectError.*cannot be loaded' refusal
