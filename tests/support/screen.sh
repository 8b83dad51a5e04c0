# Sourced by the tests that drive real windows, in the folder that their files go to. What is in
# `processes` ends with the test.
processes=()
trap 'kill "${processes[@]}" 2>/dev/null' EXIT

# start_screen WIDTHxHEIGHT: a screen in memory, with a window manager.
start_screen() {
    local display
    mkfifo display.pipe
    Xvfb -displayfd 3 -screen 0 "$1x24" -nolisten tcp 3>display.pipe 2>xvfb.log &
    processes+=($!)
    read -r display <display.pipe
    rm display.pipe
    mkdir -p runtime && chmod 700 runtime
    export DISPLAY=:$display XDG_RUNTIME_DIR=$PWD/runtime LANG=C.UTF-8 LANGUAGE=en
    openbox >openbox.log 2>&1 &
    processes+=($!)
}
