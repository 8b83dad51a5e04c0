#!/bin/bash
# installed.sh BUILD SOURCE PYTHON FOLDER: installs into FOLDER, moves the tree, and runs with it what
# the page and the examples show.
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
ln -s "$source/samples" samples
sed -n '/^```python$/,/^```$/ { /^```/d; p }' "$source/docs/python.md" >page.py
"$python" page.py
"$python" -c 'from PIL import Image, ImageChops
photo, *made = map(Image.open, ("samples/photos/coffee.png", "stone.png", "woven.png", "tiles.png"))
boxes = [ImageChops.difference(photo, picture).getbbox() for picture in made]
assert boxes[:2] == [(0, 0) + photo.size] * 2 and boxes[2] == (150, 100, 450, 300), boxes'

mkdir set
cp "$source/samples/photos/coffee.png" set/a.png
echo 'no picture' >set/b.png
for target in once again; do
    "$python" "$source/examples/python/augment.py" set $target 3 7 2>complaints
    grep -q '^set/b.png: ' complaints
done
[ "$(ls once | wc -l)" -eq 3 ]
diff -r once again
"$python" "$source/examples/python/contact_sheet.py" set/a.png sheet.png 120
"$python" -c 'from PIL import Image
sheet = Image.open("sheet.png")
pieces = [sheet.crop((12 + x * 132, 12 + y * 104, 132 + x * 132, 92 + y * 104)).tobytes()
          for x in range(5) for y in range(3)]
assert len(set(pieces)) == 15, "each place of the sheet has its own picture"'

# Below /usr/local the system's Python finds the package by itself.
DESTDIR=$folder/root cmake -DCMAKE_INSTALL_PREFIX=/usr/local \
    -P "$build/adapters/python/cmake_install.cmake" >>install.log
env -u PYTHONPATH "$python" -c 'import importlib.util, site, sys
site.addsitedir(sys.argv[1] + f"/usr/local/lib/python3.{sys.version_info.minor}/dist-packages")
assert importlib.util.find_spec("cmdtexture").origin.startswith(sys.argv[1])' "$folder/root"

# Another installation, or none, goes before the module's own when it is named.
if CMDTEXTURE_HOME=$folder "$python" -c 'import cmdtexture; cmdtexture.effects()' 2>refusal; then
    echo "CMDTEXTURE_HOME is not minded" && exit 1
fi
grep -q 'EffectError.*cannot be loaded' refusal
rm -rf moved root  # hundreds of megabytes, kept when something failed
