# shellcheck shell=bash
# A private X11 desktop for one test: a server without a screen, a window manager and a session bus.
# To be sourced. Everything that is started here ends with the test; so does its folder, but for the
# pictures of the screen in SHOTS.
#
# The program under test is VELLUMINE, PROBE says what the server shows (probe/DesktopProbe.cpp).
set -euo pipefail

# With the sanitizers: what plugins of the desktop (Wayland, accessibility) leave at the program's end
# can be told from nothing, once they are unloaded. Leaks are looked for in the tests of app and ui.
export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0"

# needs COMMAND...: skips the test, and says so, where one of them is missing.
needs() {
    local command
    for command in "$@"; do
        if ! command -v "$command" >/dev/null; then
            echo "skipped: $command is not installed"
            exit 77
        fi
    done
}
needs Xvfb openbox xdotool xwininfo xprop dbus-daemon

started=()
stubborn="" # one of them that does not always end when it is asked to
folder="$(mktemp -d)"
mkdir -p "${SHOTS:=$folder}"

end_desktop() {
    local status=$?
    local index
    if ((status != 0 && status != 77)); then
        screenshot failed || true
        tail -n 20 "$folder"/*.log || true
    fi
    local backwards=()
    for index in "${started[@]}"; do
        backwards=("$index" "${backwards[@]}")
    done
    for index in "${backwards[@]}"; do
        end "$index"
    done
    # What the bus has started ends with it, and may be writing still.
    local attempt
    for ((attempt = 0; attempt < 100; ++attempt)); do
        rm -rf "$folder" 2>/dev/null && break
        sleep 0.05
    done
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

# Ends what was started in the background before the test does.
end() { # PROCESS
    local index
    for index in "${!started[@]}"; do
        if ((started[index] == $1)); then
            unset "started[index]" # the number may be given to another process
        fi
    done
    local signal=TERM
    [[ "$1" != "$stubborn" ]] || signal=KILL
    kill -s "$signal" "$1" 2>/dev/null || true
    wait "$1" 2>/dev/null || true
}

# wait_for COMMAND...: until it succeeds, for a minute, since the machine may have other work.
wait_for() {
    local deadline=$((SECONDS + 60))
    while ((SECONDS < deadline)); do
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

expect_equal() { # WHAT FOUND WANTED
    [[ "$2" == "$3" ]] || fail "$1 is \"$2\", not \"$3\""
}

# Succeeds where the text, or the end of the file, is that of the pattern: for wait_for.
says() { # FILE PATTERN
    grep -q -- "$2" "$1"
}

is_running() { # PROCESS
    kill -0 "$1"
}

has_ended() { # PROCESS
    ! is_running "$1" 2>/dev/null
}

screenshot() { # NAME
    if [[ -n "${DISPLAY:-}" ]] && command -v scrot >/dev/null; then
        scrot --overwrite "$SHOTS/$(basename "$0" .sh)-$1.png"
    fi
}

# A user's folders of the test's own, empty.
start_home() {
    export HOME="$folder/home" XDG_RUNTIME_DIR="$folder/run"
    export XDG_CONFIG_HOME="$HOME/.config" XDG_DATA_HOME="$HOME/.local/share" XDG_CACHE_HOME="$HOME/.cache"
    export TMPDIR="$folder/temporary"
    mkdir -p "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$XDG_RUNTIME_DIR" "$TMPDIR"
    chmod 700 "$XDG_RUNTIME_DIR"
    unset DISPLAY WAYLAND_DISPLAY SESSION_MANAGER DESKTOP_STARTUP_ID XDG_ACTIVATION_TOKEN
    export XDG_CURRENT_DESKTOP=X-Test LC_ALL=C.UTF-8
}

start_bus() {
    dbus-daemon --session --nofork --print-address=9 9>"$folder/bus" >"$folder/bus.log" 2>&1 &
    started+=($!)
    wait_for test -s "$folder/bus"
    DBUS_SESSION_BUS_ADDRESS="$(head -n 1 "$folder/bus")"
    export DBUS_SESSION_BUS_ADDRESS
}

# The server's screen has SCREEN_SIZE.
start_desktop() {
    start_home
    export QT_QPA_PLATFORM=xcb GDK_BACKEND=x11
    if [[ -z "${ACCESSIBLE:-}" ]]; then
        export NO_AT_BRIDGE=1
    fi
    Xvfb -displayfd 9 -screen 0 "${SCREEN_SIZE:-1280x1000}x24" -nolisten tcp -noreset \
        9>"$folder/display" >"$folder/server.log" 2>&1 &
    started+=($!)
    wait_for test -s "$folder/display"
    DISPLAY=":$(<"$folder/display")"
    export DISPLAY
    start_bus
    background openbox openbox --sm-disable
    wait_for sh -c 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 0x'
}

# set_preferences KEY=VALUE...: as the program would have stored them. Before it starts.
set_preferences() {
    mkdir -p "$XDG_CONFIG_HOME/Kestrova"
    { echo "[General]"; printf '%s\n' "$@"; } >"$XDG_CONFIG_HOME/Kestrova/Vellumine.conf"
}

# Starts the program and waits for its window, whose id is in `window`.
start_program() {
    background program "$VELLUMINE"
    program=$process
    wait_for window_of_program
    # shellcheck disable=SC2034  # the tests use it
    window="$(window_of_program)"
}

# A second start with files: it hands them over, and ends well.
hand_over() { # FILE...
    "$VELLUMINE" "$@" || fail "the second start ended with $?"
}

# The status item has the same name, and is small.
window_of_program() {
    windows_of_program | awk '$3 > 40 && $5 == "Vellumine" {found = $1} END {print found; exit !found}'
}

# The program's visible window of that name.
window_called() { # NAME
    windows_of_program | awk -v name="$1" '$5 == name {found = $1} END {print found; exit !found}'
}

# id, width, height, "screen" or "inside" another window, and name of each visible window
windows_of_program() {
    "$PROBE" windows "$program"
}

# Small pictures a.png and "b c.png" in a folder of their own.
make_pictures() { # FOLDER
    mkdir -p "$1"
    make_picture "$1/a.png"
    make_picture "$1/b c.png"
}

make_picture() { # FILE
    base64 -d >"$1" <<'PNG'
iVBORw0KGgoAAAANSUhEUgAAAAgAAAAICAIAAABLbSncAAAAEUlEQVR42mPYkGCAFTEMLQkAYplQAZTtXNgAAAAASUVORK5CYII=
PNG
}

wait_for_outputs() { # FOLDER
    wait_for test -s "$1/a.webp"
    wait_for test -s "$1/b c.webp"
}

# x y width height of the window's inside, on the screen
place_of() { # WINDOW
    xwininfo -id "$1" | awk '/Absolute.*X/ {x = $4} /Absolute.*Y/ {y = $4} /Width/ {w = $2} /Height/ {h = $2}
        END {print x, y, w, h}'
}

stands_at() { # "X Y WIDTH HEIGHT" of the program's window
    [[ "$(place_of "$window")" == "$1" ]]
}

# As a user maximises the program's window and restores it.
double_click_title() {
    xdotool mousemove --window "$window" 300 12 click --repeat 2 --delay 20 1
}

# x y of the window's middle on the screen
middle_of() { # WINDOW
    place_of "$1" | awk '{print int($1 + $3 / 2), int($2 + $4 / 2)}'
}

is_in_front() { # WINDOW
    [[ "$(xdotool getactivewindow 2>/dev/null)" == "$1" ]]
}
