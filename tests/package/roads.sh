#!/bin/bash
# One example of every road, with nothing but what the packages installed; all must make the picture
# that Python makes. Prints a line for each.
set -euo pipefail
cd "$(mktemp -d)"
photo=/srv/roads/coffee.png
export PYTHONDONTWRITEBYTECODE=1

# same PICTURE: has the samples of the program's, as another reader sees them.
same() {
    python3 - program.png "$1" <<'SCRIPT'
import sys
from PIL import Image
one, two = (Image.open(name).convert("RGB") for name in sys.argv[1:])
sys.exit(one.size != two.size or one.tobytes() != two.tobytes())
SCRIPT
    echo "$1: the same picture"
}

cmdtexture --version
cmdtexture apply Sandstone "$photo" -o program.png -p Angle=30 --quiet
[ "$(cmdtexture list --json | python3 -c 'import json, sys; print(len(json.load(sys.stdin)))')" -eq 14 ]
cmdtexture list --language DE | grep -q Sandstein
cmdtexture apply Sculpture "$photo" -o marble.png -p PatternName=marble --quiet
cmdtexture apply Tiles "$photo" -o honey.png --preset Honeycomb --quiet
ls /usr/share/man/man1/cmdtexture.1.gz >/dev/null

python3 -c "
import cmdtexture
from PIL import Image
cmdtexture.apply(Image.open('$photo'), 'Sandstone', angle=30).save('python.png')"
same python.png

gegl "$photo" -o gegl.png -- cmdtexture:sandstone angle=30 2>/dev/null
same gegl.png

cc /usr/share/doc/libcmdtexture-dev/examples/sandstone.c -o sandstone $(pkg-config --cflags --libs cmdtexture)
python3 -c "from PIL import Image; Image.open('$photo').convert('RGB').save('photo.ppm')"
./sandstone photo.ppm c.ppm 30
same c.ppm

# The window: opened by the desktop entry's command, taken as it is.
mkfifo display
Xvfb -displayfd 3 -screen 0 1400x900x24 -nolisten tcp 3>display 2>xvfb.log &
trap 'kill $(jobs -p) 2>/dev/null' EXIT
read -r number <display
export DISPLAY=:$number XDG_RUNTIME_DIR=$PWD/runtime
mkdir -m 700 runtime
openbox >openbox.log 2>&1 &
cmdtexture edit Sandstone "$photo" -o window.png -p Angle=30 2>window.txt &
window=$!
for _ in $(seq 600); do
    xdotool search --onlyvisible --name '\.png' >found 2>/dev/null && break
    kill -0 $window || { cat window.txt && exit 1; }
    sleep 0.1
done
for _ in $(seq 100); do  # until the window manager is there as well
    xdotool windowactivate "$(head -n 1 found)" 2>/dev/null && break
    sleep 0.1
done
sleep 3
xdotool key Return
for _ in $(seq 600); do
    kill -0 $window 2>/dev/null || break
    sleep 0.1
done
wait $window
same window.png
