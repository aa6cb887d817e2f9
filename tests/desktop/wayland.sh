#!/usr/bin/env bash
# Under a Wayland compositor without a screen the program starts, shows itself, takes files by D-Bus,
# and ends.
# shellcheck source=tests/desktop/wayland_desktop.sh
. "$(dirname "$0")/wayland_desktop.sh"

start_home
start_bus
start_compositor
start_program_under_wayland

make_pictures "$folder/pictures"
call Open "['file://$folder/pictures']" "{'activation-token': <'none'>}"
wait_for_outputs "$folder/pictures"
call ActivateAction preferences "[]" "{}"
program_says 'xdg_toplevel[@#].*set_title("Preferences")'
call ActivateAction quit "[]" "{}"
wait_for has_ended "$program"
wait "$program" || fail "the program ended with $?"
