#!/usr/bin/env bash
# The window comes to the front of another program's, with the keyboard, whichever way a launcher or a
# second start asks for it.
# shellcheck source=tests/desktop/library.sh
. "$(dirname "$0")/library.sh"
needs gdbus gapplication thunar

start_desktop
start_program
# It lies over ours, and is the one that the user works with.
background thunar thunar "$HOME"
other_window() {
    "$PROBE" windows "$process" | awk '$2 > 100 {found = $1} END {print found; exit !found}'
}
wait_for other_window
other="$(other_window)"

work_with_other() {
    xdotool windowactivate --sync "$other" windowraise "$other"
    wait_for is_in_front "$other"
    xdotool key --clearmodifiers Right
}

call() { # METHOD ARGUMENT...
    local method="$1"
    shift
    gdbus call --session --dest com.kestrova.Vellumine --object-path /com/kestrova/Vellumine \
        --method "org.freedesktop.Application.$method" "$@" >/dev/null
}

# What a launcher says about the user's click.
now() {
    echo "launcher-2_TIME$("$PROBE" time)"
}

work_with_other
call Activate "{'desktop-startup-id': <'$(now)'>}"
wait_for is_in_front "$window"

work_with_other
make_pictures "$folder/pictures"
call Open "['file://$folder/pictures/a.png', 'file://$folder/pictures/b%20c.png']" \
    "{'desktop-startup-id': <'$(now)'>}"
wait_for is_in_front "$window"
wait_for_outputs "$folder/pictures"

work_with_other
DESKTOP_STARTUP_ID="$(now)" gapplication launch com.kestrova.Vellumine
wait_for is_in_front "$window"

work_with_other
DESKTOP_STARTUP_ID="$(now)" "$VELLUMINE"
wait_for is_in_front "$window"

work_with_other
call ActivateAction preferences "[]" "{'desktop-startup-id': <'$(now)'>}"
wait_for window_called Preferences
wait_for is_in_front "$(window_called Preferences)"

call ActivateAction quit "[]" "{}"
wait_for has_ended "$program"
wait "$program" || fail "the program ended with $?"
