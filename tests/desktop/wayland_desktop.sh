# shellcheck shell=bash
# A Wayland compositor without a screen, and the program under it. To be sourced.
# shellcheck source=tests/desktop/trays.sh
. "$(dirname "${BASH_SOURCE[0]}")/trays.sh"
needs weston gdbus

start_compositor() {
    background weston weston --backend=headless-backend.so --socket=wayland-test --width=1280 \
        --height=1000 --idle-time=0
    wait_for test -S "$XDG_RUNTIME_DIR/wayland-test"
}

# Starts the program, and waits until the compositor shows its window: what they say to each other is
# in $folder/program.log.
start_program_under_wayland() {
    # Without a seat Qt's input method of the compositor has nothing to hold on to.
    background program env -u DISPLAY WAYLAND_DISPLAY=wayland-test QT_QPA_PLATFORM=wayland \
        QT_IM_MODULE=compose WAYLAND_DEBUG=client "$VELLUMINE"
    program=$process
    # A named window with a picture in it, on the compositor's screen. The library writes its objects
    # with an @, newer versions with a #.
    program_says 'xdg_toplevel[@#].*set_app_id("com.kestrova.Vellumine")'
    program_says 'xdg_toplevel[@#].*set_title("Vellumine")'
    program_says 'wl_surface[@#].*attach(wl_buffer[@#]'
    program_says 'wl_surface[@#].*enter(wl_output[@#]'
}

program_says() { # PATTERN
    wait_for says "$folder/program.log" "$1"
}

call() { # METHOD ARGUMENT...
    local method="$1"
    shift
    gdbus call --session --dest com.kestrova.Vellumine --object-path /com/kestrova/Vellumine \
        --method "org.freedesktop.Application.$method" "$@" >/dev/null
}
