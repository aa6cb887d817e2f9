#!/usr/bin/env bash
# Under a Wayland compositor without a screen the program starts, shows itself, takes files by D-Bus,
# and ends.
# shellcheck source=tests/desktop/library.sh
. "$(dirname "$0")/library.sh"
needs weston gdbus

start_home
start_bus
background weston weston --backend=headless-backend.so --socket=wayland-test --width=1280 \
    --height=1000 --idle-time=0
wait_for test -S "$XDG_RUNTIME_DIR/wayland-test"
export WAYLAND_DISPLAY=wayland-test QT_QPA_PLATFORM=wayland
# Without a seat Qt's input method of the compositor has nothing to hold on to.
export QT_IM_MODULE=compose
background program env WAYLAND_DEBUG=client "$VELLUMINE"
program=$process

# What the program and the compositor say to each other: a named window, with a picture in it, that
# the compositor has taken note of.
wait_for says "$folder/program.log" 'xdg_toplevel@.*set_app_id("com.kestrova.Vellumine")'
wait_for says "$folder/program.log" 'xdg_toplevel@.*set_title("Vellumine")'
wait_for says "$folder/program.log" 'wl_surface@.*attach(wl_buffer@'
wait_for says "$folder/program.log" 'wl_surface@.*enter(wl_output@'

call() { # METHOD ARGUMENT...
    local method="$1"
    shift
    gdbus call --session --dest com.kestrova.Vellumine --object-path /com/kestrova/Vellumine \
        --method "org.freedesktop.Application.$method" "$@" >/dev/null
}

make_pictures "$folder/pictures"
call Open "['file://$folder/pictures']" "{'activation-token': <'none'>}"
wait_for_outputs "$folder/pictures"
call ActivateAction preferences "[]" "{}"
wait_for says "$folder/program.log" 'xdg_toplevel@.*set_title("Preferences")'
call ActivateAction quit "[]" "{}"
wait_for has_ended "$program"
wait "$program" || fail "the program ended with $?"
