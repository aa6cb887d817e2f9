# shellcheck shell=bash
# A private X11 desktop for one test: a server without a screen, a window manager and a session bus.
# To be sourced. Everything that is started here ends with the test; so does its folder, but for the
# pictures of the screen in SHOTS.
#
# The program under test is VELLUMINE, screenshots go to SHOTS.
set -euo pipefail

for needed in Xvfb openbox xdotool xwininfo xprop dbus-daemon; do
    if ! command -v "$needed" >/dev/null; then
        echo "skipped: $needed is not installed"
        exit 77
    fi
done

started=()
folder="$(mktemp -d)"
mkdir -p "${SHOTS:=$folder}"

end_desktop() {
    local status=$?
    local index
    if ((status != 0 && status != 77)); then
        screenshot failed || true
        tail -n 20 "$folder"/*.log || true
    fi
    for ((index = ${#started[@]} - 1; index >= 0; --index)); do
        kill "${started[index]}" 2>/dev/null || true
        wait "${started[index]}" 2>/dev/null || true
    done
    rm -rf "$folder"
    exit "$status"
}
trap end_desktop EXIT

# background NAME COMMAND...: its process id is in `process`, what it says in $folder/NAME.log.
background() {
    local name="$1"
    shift
    "$@" >"$folder/$name.log" 2>&1 &
    process=$!
    started+=("$process")
}

# wait_for COMMAND...: until it succeeds, for twenty seconds.
wait_for() {
    local attempt
    for ((attempt = 0; attempt < 400; ++attempt)); do
        if "$@" >/dev/null 2>&1; then
            return
        fi
        sleep 0.05
    done
    echo "waited in vain for: $*" >&2
    return 1
}

fail() {
    echo "failed: $*" >&2
    exit 1
}

screenshot() { # NAME
    if command -v scrot >/dev/null; then
        scrot --overwrite "$SHOTS/$(basename "$0" .sh)-$1.png"
    fi
}

start_desktop() {
    export HOME="$folder/home" XDG_RUNTIME_DIR="$folder/run"
    export XDG_CONFIG_HOME="$HOME/.config" XDG_DATA_HOME="$HOME/.local/share" XDG_CACHE_HOME="$HOME/.cache"
    export TMPDIR="$folder/temporary"
    mkdir -p "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$XDG_RUNTIME_DIR" "$TMPDIR"
    chmod 700 "$XDG_RUNTIME_DIR"
    unset WAYLAND_DISPLAY SESSION_MANAGER
    export QT_QPA_PLATFORM=xcb GDK_BACKEND=x11 NO_AT_BRIDGE=1

    Xvfb -displayfd 9 -screen 0 1280x1000x24 -nolisten tcp -noreset \
        9>"$folder/display" >"$folder/server.log" 2>&1 &
    started+=($!)
    wait_for test -s "$folder/display"
    DISPLAY=":$(<"$folder/display")"
    export DISPLAY

    dbus-daemon --session --nofork --print-address=9 9>"$folder/bus" >"$folder/bus.log" 2>&1 &
    started+=($!)
    wait_for test -s "$folder/bus"
    DBUS_SESSION_BUS_ADDRESS="$(head -n 1 "$folder/bus")"
    export DBUS_SESSION_BUS_ADDRESS

    background openbox openbox --sm-disable
    wait_for sh -c 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 0x'
}

# Starts the program and waits for its window, whose id is in `window`.
start_program() {
    background program "$VELLUMINE"
    program=$process
    wait_for window_of_program
    # shellcheck disable=SC2034  # the tests use it
    window="$(window_of_program)"
}

# The status item has the same name, and is small.
window_of_program() {
    windows_of_program | awk '$2 > 40 {print $1}' | tail -n 1 | grep .
}

# id and height of each visible window
windows_of_program() {
    local candidate
    for candidate in $(xdotool search --onlyvisible --pid "$program" 2>/dev/null); do
        echo "$candidate $(xwininfo -id "$candidate" | awk '/Height:/ {print $2}')"
    done
}

# Small pictures a.png and "b c.png" in a folder of their own.
make_pictures() { # FOLDER
    mkdir -p "$1"
    local name
    for name in a.png 'b c.png'; do
        base64 -d >"$1/$name" <<'PNG'
iVBORw0KGgoAAAANSUhEUgAAAAgAAAAICAIAAABLbSncAAAAEUlEQVR42mPYkGCAFTEMLQkAYplQAZTtXNgAAAAASUVORK5CYII=
PNG
    done
}

# x y of the window's middle on the screen
middle_of() { # WINDOW
    xwininfo -id "$1" | awk '/Absolute.*X/ {x = $4} /Absolute.*Y/ {y = $4} /Width/ {w = $2} /Height/ {h = $2}
        END {print int(x + w / 2), int(y + h / 2)}'
}

# Opens a file manager on the folder, chooses everything in it; x and y of an icon are in `icon`.
open_file_manager() { # FOLDER
    if ! command -v thunar >/dev/null; then
        echo "skipped: thunar is not installed"
        exit 77
    fi
    background thunar thunar "$1"
    wait_for sh -c 'xdotool search --onlyvisible --class thunar'
    local manager
    manager="$(xdotool search --onlyvisible --class thunar | tail -n 1)"
    wait_for sh -c "xprop -id $manager _NET_WM_NAME | grep -q '$(basename "$1")'"
    xdotool windowmove "$manager" 0 520 windowsize "$manager" 460 440 windowactivate --sync "$manager"
    sleep 1 # it lays its icons out, and says nothing when it is done
    local X=0 Y=0
    eval "$(xdotool getwindowgeometry --shell "$manager" | grep -E '^[XY]=')"
    xdotool mousemove $((X + 300)) $((Y + 330)) click 1
    sleep 0.3
    xdotool key --clearmodifiers ctrl+a
    sleep 0.4
    # Started by root it shows a warning above the icons.
    # shellcheck disable=SC2034  # the tests use it
    icon=($((X + 211)) $((Y + (EUID == 0 ? 146 : 112))))
}

# Drags by the mouse. Every step needs its time: the programs talk to each other about it.
drag() { # FROM_X FROM_Y TO_X TO_Y [SCREENSHOT while it hovers]
    local step
    xdotool mousemove "$1" "$2"
    sleep 0.2
    xdotool mousedown 1
    sleep 0.2
    for step in 1 2 3 4 5 6; do
        xdotool mousemove_relative -- 4 4
        sleep 0.03
    done
    for ((step = 1; step <= 20; ++step)); do
        xdotool mousemove $(($1 + 24 + ($3 - $1 - 24) * step / 20)) $(($2 + 24 + ($4 - $2 - 24) * step / 20))
        sleep 0.02
    done
    sleep 0.3
    xdotool mousemove_relative -- 1 1
    sleep 0.3
    if (($# > 4)); then
        screenshot "$5"
    fi
    xdotool mouseup 1
}

wait_for_outputs() { # FOLDER
    wait_for test -s "$1/a.webp"
    wait_for test -s "$1/b c.webp"
}
