#!/bin/bash
# Completion in real shells on a terminal:
#   completion.sh PROGRAM COMPLETION_FOLDER
# Types beginnings and Tab, and looks at what stands on the screen then.
set -uo pipefail
program=$1 scripts=$2
work=$(mktemp -d)
socket=$work/tmux
terminal() { env -u TMUX tmux -S "$socket" "$@"; }
trap 'terminal kill-server 2>/dev/null; rm -rf "$work"' EXIT
mkdir "$work/bin" "$work/home" "$work/pictures"
ln -s "$program" "$work/bin/cmdtexture"
touch "$work/pictures/photo.png"
failed=0

start() { # NAME COMMAND SETUP: a shell that says "ready" after SETUP
    terminal new-session -d -x 120 -y 40 -s "$1" -c "$work/pictures" \
        env -i HOME="$work/home" PATH="$work/bin:/usr/bin:/bin" TERM=screen LC_ALL=C.UTF-8 \
        XDG_CONFIG_HOME="$work/home/config" XDG_DATA_HOME="$work/home/data" $2
    terminal send-keys -t "$1" "$3; clear; echo re''ady" Enter
    wait_for "$1" ready || echo "$1 does not start"
}
wait_for() { # NAME TEXT: within half a minute
    for ((i = 0; i < 300; i++)); do
        terminal capture-pane -p -J -t "$1" >"$work/screen"
        grep -qF -- "$2" "$work/screen" && return
        sleep 0.1
    done
    return 1
}
completes() { # NAME BEGINNING TABS EXPECTED
    terminal send-keys -t "$1" C-u
    terminal send-keys -t "$1" -l "cmdtexture $2"
    for ((i = 0; i < $3; i++)); do
        sleep 0.3
        terminal send-keys -t "$1" Tab
    done
    if ! wait_for "$1" "$4"; then
        echo "$1: \"cmdtexture $2\" did not bring \"$4\":"
        cat "$work/screen"
        failed=1
    fi
    terminal send-keys -t "$1" C-c
    terminal send-keys -t "$1" "clear; echo ne''xt" Enter
    wait_for "$1" next
}

start bash 'bash --norc --noprofile' "source '$scripts/cmdtexture.bash'"
start zsh 'zsh -f' "fpath=('$scripts' \$fpath); autoload -Uz compinit; compinit -u -D"
start fish 'fish --no-config' "source '$scripts/cmdtexture.fish'"
for shell in bash zsh fish; do
    completes $shell 'desc' 1 'cmdtexture describe '
    completes $shell 'apply Sands' 1 'apply Sandstone '
    completes $shell 'apply Tiles pho' 1 'apply Tiles photo.png '
    completes $shell 'apply Tiles photo.png --qual' 1 'photo.png --quality '
    completes $shell 'apply Tiles photo.png -p TileSh' 1 '-p TileShape='
    completes $shell 'apply Tiles photo.png -p TileShape=h' 1 '-p TileShape=hexagons '
    completes $shell 'apply Sculpture photo.png -p PatternName=mal' 1 'PatternName=malachite '
    completes $shell 'apply Tiles photo.png --preset hon' 1 '--preset honeycomb '
    completes $shell 'preset ' 2 'rename'
    completes $shell 'apply S' 2 'StrawWall'
done
exit $failed
