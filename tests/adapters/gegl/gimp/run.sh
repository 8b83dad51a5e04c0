#!/bin/bash
# Drives GIMP on a screen in memory: sets operations in its dialog with mouse and keys, exports, and
# compares with what `cmdtexture apply` makes of the same values.
# run.sh BUILD FOLDER: screenshots and pictures go into the folder.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$(realpath "$1")
rm -rf "$2"
mkdir -p "$2"
cd "$2"
. "$here/../../../support/screen.sh"
mkdir -p home
export HOME=$PWD/home
unset XDG_CONFIG_HOME XDG_CACHE_HOME XDG_DATA_HOME GIMP2_DIRECTORY WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS
plugins=$(pkg-config --variable=pluginsdir gegl-0.4)
export GEGL_PATH=$plugins:$build/lib/gegl GTK_MODULES=gail:atk-bridge
# High enough for the longest list.
start_screen 1600x2000
convert "$here/../../../../samples/photos/coffee.png" -crop 400x320+60+20 +repage -depth 8 -strip \
    -define png:exclude-chunks=date,time PNG24:photo.png
timeout 900 dbus-run-session -- bash -c '
    trap "kill \$(jobs -p) 2>/dev/null" EXIT
    /usr/libexec/at-spi-bus-launcher --launch-immediately 2>accessibility.log &
    gimp --new-instance --no-splash photo.png >gimp.log 2>&1 &
    /usr/bin/python3 "$0/drive.py" "$PWD" "$1"' "$here" "$build/bin/cmdtexture"
