#!/bin/bash
# Drives the windows on a screen in memory, with keys and a mouse that the toolkit takes for real
# ones, and compares what OK wrote with what `cmdtexture apply` makes of the values expected.
# run.sh PROGRAM FOLDER [WORDS]: screenshots and pictures go into the folder; WORDS chooses the
# checks whose names have them.
set -uo pipefail
program=$(realpath "$1")
wanted=${3:-}
support=$(realpath "$(dirname "$0")/../support")
mkdir -p "$2"
cd "$2" || exit 2
failures=0
. "$support/screen.sh"
mkdir -p config
export XDG_CONFIG_HOME=$PWD/config
start_screen 1600x1000

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
window() { xdotool search --onlyvisible --class cmdtexture; }
copied() { keys ctrl+shift+c; sleep 0.3; timeout 5 xclip -o -selection clipboard; }
# What was copied, run as a user would paste it, makes the file.
pasted_makes() { # LINE FILE
    PATH=$(dirname "$program"):$PATH bash -c "${1/-o result.png/-o pasted.png --overwrite}" &&
        cmp -s pasted.png "$2" || fail "pasted, this makes another picture: $1"
}
ok() {
    keys Return
    wait_for 60 ended || { fail "the window is still there"; leave; return 1; }
}
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
    xprop -id "$(window | head -1)" _NET_WM_ICON | grep -q '(128 x 128)' || fail "not our icon"
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
    keys Return Escape; sleep 1; shot stopped
    ended && fail "the window is gone"
    [ -e result.png ] && fail "a result was written"
    keys Return; shot making
    wait_for 120 ended || { fail "the window is still there"; leave; }
    "$program" apply Fur large.png -o expected.png --overwrite --quiet
    cmp -s result.png expected.png || fail "the result is another one"
    grep -q "wrote result.png" messages.txt || fail "the file is not named"
}
check "the wheel turns nothing that was not clicked" && open Blinds && {
    place=$(xdotool getwindowgeometry --shell "$(window | head -1)") && eval "$place"
    for y in $(seq 40 12 $((HEIGHT - 60))); do
        xdotool mousemove $((X + WIDTH - 120)) $((Y + y)) click 4
        xdotool mousemove $((X + WIDTH - 200)) $((Y + y)) click 4
    done
    sleep 0.3; gives Blinds
}
check "a slider that is dragged agrees with its field" && open Blinds && {
    place=$(xdotool getwindowgeometry --shell "$(window | head -1)") && eval "$place"
    keys ctrl+a; typed 2
    before=$(copied)
    for y in $(seq 20 6 80); do # where the first slider's handle is at its left end
        xdotool mousemove $((X + WIDTH - 250)) $((Y + y)) mousedown 1
        for x in 240 230 220 210; do xdotool mousemove $((X + WIDTH - x)) $((Y + y)); sleep 0.03; done
        xdotool mouseup 1; sleep 0.2
        [ "$(copied)" != "$before" ] && break
    done
    line=$(copied); shot slider
    [ "$line" = "$before" ] && fail "no slider was found"
    ok && pasted_makes "$line" result.png
}
check "the counts of a symmetric mosaic stay together" && open MosaicGlass && {
    for _ in $(seq 30); do # to the field of the columns
        keys ctrl+a; typed 60; line=$(copied)
        [[ $line == *NumColumns=60* ]] && break
        keys ctrl+z Tab
    done
    [[ $line == *NumColumns=60* && $line == *NumRows=60* ]] || fail "the counts differ: $line"
    keys ctrl+BackSpace; [[ $(copied) == *Num* ]] && fail "reset left a count: $(copied)"
    ok
}
check "Weave opens on one pixel" && convert -size 1x9 xc:gray50 -strip -define png:exclude-chunks=date,time PNG24:thin.png &&
    open Weave thin.png && {
    shot one-pixel; line=$(copied)
    ok && pasted_makes "$line" result.png
}
check "Escape while picking ends the picking" && open Blinds && {
    keys Tab Tab Tab space; sleep 0.4; shot picking
    keys Escape; sleep 0.4; shot picked
    ended && fail "the window is gone"
    leave
}
check "the library is searched" && open Texture && {
    keys space; sleep 1.5; shot library
    keys shift+Tab shift+Tab; typed brick; shot searched
    keys Escape; sleep 0.5
    gives Texture
}
check "an effect is chosen, and another one put on its result" && rm -f result.png &&
    edit photo.png -o result.png && {
    sleep 1; shot start
    typed Blinds; keys Return; sleep 2
    keys ctrl+a; typed 77; keys ctrl+Return; sleep 4
    keys ctrl+a; typed 33; shot applied
    line=$(copied)
    ok && pasted_makes "$line" result.png
    echo '[{"effect":"Blinds","parameters":{"Width":77}},{"effect":"Blinds","parameters":{"Width":33}}]' >two.json
    "$program" apply --recipe two.json photo.png -o expected.png --overwrite --quiet
    cmp -s result.png expected.png || fail "the result is not that of both"
}
at() { # RIGHT BOTTOM: clicks so far from the corner of the window
    local WINDOW X Y WIDTH HEIGHT SCREEN
    eval "$(xdotool getwindowgeometry --shell "$(window | head -1)")"
    xdotool mousemove --window "$WINDOW" $((WIDTH - $1)) $((HEIGHT - $2)) click 1
    sleep 0.3
}
check "save as asks how the file is written" && open Blinds && {
    rm -f saved.jpg
    keys ctrl+a; typed 77; keys ctrl+shift+s; sleep 1
    keys ctrl+a; typed "$PWD/saved.jpg"; keys Return; sleep 1
    typed 60; keys Tab Down Down; shot file-options; keys Return; sleep 2
    line=$(copied)
    [[ $line == *"--quality 60 --subsampling 440"* ]] || fail "the command line does not tell how: $line"
    PATH=$(dirname "$program"):$PATH bash -c "${line/saved.jpg/pasted.jpg}"
    cmp -s saved.jpg pasted.jpg || fail "the file is another one"
    leave
}
check "an effect is mixed, applied and taken back" && open Blinds && {
    at 288 110; keys ctrl+a; typed 50; keys Tab Down; mixed=$(copied)
    [[ $mixed == *'"opacity":0.5,"blend":"multiply"'* ]] || fail "not mixed: $mixed"
    keys ctrl+Return; sleep 3; applied=$(copied); shot mixed
    [[ $applied == *'[{"effect":"Blinds",'*'},{"effect":"Blinds",'* ]] || fail "not applied: $applied"
    keys ctrl+h Down Return; sleep 2; shot taken-back
    [[ $(copied) == *'},{"effect"'* ]] && fail "not taken back: $(copied)"
    leave
}
check "keys turn a dial" && open Sandstone && {
    for _ in $(seq 20); do keys Tab Right; line=$(copied); [[ $line == *Angle=* ]] && break; done
    [[ $line == *Angle=46* ]] || fail "no key turned it: $line"
    leave
}
check "full screen, and the place comes back" && open Blinds && {
    geometry() { xdotool getwindowgeometry "$(window | head -1)" | tail -2; }
    keys F11; sleep 1; [[ $(geometry) == *1600x1000 ]] || fail "F11 gives $(geometry)"
    keys F11; sleep 1; xdotool windowsize "$(window | head -1)" 1100 700; sleep 1
    place=$(geometry); keys Escape; wait_for 20 ended; edit Blinds photo.png -o result.png
    [ "$place" = "$(geometry)" ] || fail "it was at $place and comes back at $(geometry)"
    leave
}
check "Return in the scale sets it and nothing else" && open Blinds && {
    xdotool mousemove --window "$(window | head -1)" 175 14 click --repeat 2 1
    keys ctrl+a; typed 50; keys Return; sleep 0.5; shot scale
    [ -e result.png ] && fail "a result was written"
    leave
}
check "a signal ends it while a menu is open" && open Blinds && {
    keys alt+p; sleep 0.5; shot menu; kill -TERM "$edit"
    wait_for 10 ended || { fail "it is still there"; kill -KILL "$edit"; }
}
check "what is copied makes what OK writes" && for effect in $("$program" list | awk '{print $1}'); do
    open "$effect" || continue
    keys ctrl+r; sleep 0.5
    line=$(copied); echo "  $line"
    ok && pasted_makes "$line" result.png
done
fits() { # LANGUAGE SCALE THEME
    local look="$1-$2-$3" effect
    for effect in Tiles MosaicGlass Sculpture Blinds; do
        QT_SCALE_FACTOR=$2 GTK_THEME=Adwaita$3 QT_QPA_PLATFORMTHEME=gtk3 open "$effect" && {
            place=$(xdotool getwindowgeometry --shell "$(window | head -1)") && eval "$place"
            [ $((X + WIDTH)) -le 1600 ] && [ $((Y + HEIGHT)) -le 1000 ] && [ "$X" -ge 0 ] && [ "$Y" -ge 10 ] ||
                fail "$effect in $look leaves the screen: $WIDTH x $HEIGHT at $X,$Y"
            shot "fits-$effect-$look"
            leave
        }
    done
}
check "every window fits the screen" && for language in en de fr; do
    for scale in 1 2; do
        for theme in "" :dark; do LANGUAGE=$language LANG=$language fits "$language" "$scale" "$theme"; done
    done
done
[ "$failures" -eq 0 ] && echo "all windows did as their users wanted"
exit "$((failures > 0))"
