#!/bin/bash
# Drives the windows on a screen in memory, with keys and a mouse that the toolkit takes for real
# ones, and compares what OK wrote with what `cmdtexture apply` makes of the values expected.
# run.sh PROGRAM FOLDER [WORDS]: screenshots and pictures go into the folder; WORDS chooses the
# checks whose names have them.
set -uo pipefail
program=$(realpath "$1")
wanted=${3:-}
mkdir -p "$2"
cd "$2" || exit 2
failures=0
processes=()
trap 'kill "${processes[@]}" 2>/dev/null' EXIT

mkfifo display.pipe
Xvfb -displayfd 3 -screen 0 1600x1000x24 -nolisten tcp 3>display.pipe 2>xvfb.log &
processes+=($!)
read -r display <display.pipe
rm display.pipe
export DISPLAY=:$display XDG_CONFIG_HOME=$PWD/config XDG_RUNTIME_DIR=$PWD/runtime
export LANG=C.UTF-8 LANGUAGE=en
mkdir -p config runtime && chmod 700 runtime
openbox >openbox.log 2>&1 &
processes+=($!)

convert -size 400x300 -seed 7 plasma:tomato-steelblue -depth 8 -strip -define png:exclude-chunks=date,time PNG24:photo.png

# wait_for SECONDS COMMAND...: until it succeeds.
wait_for() {
    local tries=$(($1 * 10))
    shift
    until "$@" >/dev/null 2>&1; do
        ((tries-- > 0)) || return 1
        sleep 0.1
    done
}
window() { xdotool search --onlyvisible --name '\.png'; }
edit() { # ARGUMENTS...
    "$program" edit "$@" 2>messages.txt &
    edit=$!
    processes+=("$edit")
    wait_for 60 window || { fail "no window"; return 1; }
    xdotool windowactivate "$(window | head -1)"
    sleep 1.5
}
open() { # EFFECT [PICTURE]
    rm -rf config/* result.png
    edit "$1" "${2:-photo.png}" -o result.png
}
keys() { for key; do xdotool key "$key"; sleep 0.15; done; }
typed() { xdotool type --delay 60 "$1"; sleep 0.2; }
shot() { import -window root "$1.png"; }
ended() { ! kill -0 "$edit" 2>/dev/null; }
fail() { echo "FAILED: $check: $1"; shot "failed-${check// /-}"; failures=$((failures + 1)); }
# The window is left with OK, and its result is that of the values.
gives() { # EFFECT VALUES...
    keys Return
    wait_for 60 ended || { fail "the window is still there"; kill "$edit"; wait "$edit"; return; }
    "$program" apply "$1" photo.png -o expected.png --overwrite --quiet "${@:2}"
    cmp -s result.png expected.png || fail "the result is not that of: ${*:2}"
}
leave() { kill "$edit"; wait "$edit" 2>/dev/null; }
check() { # NAME: whether it is wanted
    [[ $1 == *"$wanted"* ]] || return
    check=$1
    echo "$1"
}

check "typing is one step of undo and redo" && open Blinds && {
    keys ctrl+a; typed 77
    sleep 1; keys ctrl+a; typed 55
    keys ctrl+z ctrl+z ctrl+shift+z; shot undo
    gives Blinds -p Width=77
}
check "reset by key, and Tab from field to field" && open Blinds && {
    keys ctrl+a; typed 77; keys Tab ctrl+a; typed 40; keys shift+Tab ctrl+BackSpace
    shot reset
    gives Blinds -p Opacity=40
}
check "a wrong text says what is right and stores nothing" && open Blinds && {
    keys ctrl+a; typed 1,5; shot wrong
    keys Tab; shot corrected
    gives Blinds
}
check "a number beyond the range becomes the nearest" && open Blinds && {
    keys ctrl+a; typed 9999; keys Tab
    gives Blinds -p Width=400
}
check "OK goes to a wrong field" && open Blinds && {
    keys ctrl+a; typed x; keys Return; sleep 0.5
    ended && fail "the window is gone"
    keys ctrl+a; typed 33
    gives Blinds -p Width=33
}
check "Escape asks before it discards" && open Blinds && {
    keys ctrl+a; typed 77; sleep 1; keys Escape; sleep 0.5; shot escape
    ended && fail "the window is gone"
    keys Escape; sleep 0.5
    ended && fail "the question was taken for an answer"
    gives Blinds -p Width=77
}
check "Escape without changes closes" && open Blinds && {
    sleep 1; keys Escape
    wait_for 20 ended || { fail "the window is still there"; leave; }
    [ -e result.png ] && fail "a result was written"
}
check "a Return key that is held presses nothing" && xdotool keydown Return && open Blinds && {
    sleep 1
    ended && fail "the window is gone"
    xdotool keyup Return
    keys ctrl+a; typed 44
    gives Blinds -p Width=44
}
xdotool keyup Return
check "OK that cannot write keeps the window, and takes another name" &&
    rm -rf result.png gone && mkdir gone &&
    edit Blinds photo.png -o gone/result.png -p Width=77 && {
    rmdir gone
    keys Return; sleep 1.5; shot not-written
    ended && fail "the window is gone"
    keys alt+t; sleep 1
    ended && fail "the window is gone after another try"
    keys alt+n; sleep 1; shot other-name
    keys ctrl+a; typed "$PWD/result.png"; keys Return
    wait_for 30 ended || { fail "the window is still there"; leave; }
    "$program" apply Blinds photo.png -o expected.png --overwrite --quiet -p Width=77
    cmp -s result.png expected.png || fail "the result is another one"
}
check "making the result can be stopped, and the result is named" &&
    convert photo.png -resize 8000x6000 -strip -define png:exclude-chunks=date,time PNG24:large.png &&
    open Fur large.png && {
    sleep 3
    keys Return; sleep 0.2; shot making
    keys Escape; sleep 1; shot stopped
    ended && fail "the window is gone"
    [ -e result.png ] && fail "a result was written"
    keys Return
    wait_for 120 ended || { fail "the window is still there"; leave; }
    "$program" apply Fur large.png -o expected.png --overwrite --quiet
    cmp -s result.png expected.png || fail "the result is another one"
    grep -q "wrote result.png" messages.txt || fail "the file is not named"
}
[ "$failures" -eq 0 ] && echo "all windows did as their users wanted"
exit "$((failures > 0))"
