#!/usr/bin/env bash
# The keys of the windows are the same where their names are not: "Strg" is Ctrl in German.
# shellcheck source=tests/desktop/library.sh
. "$(dirname "$0")/library.sh"

start_desktop
export LANGUAGE=de
start_program
xdotool windowactivate --sync "$window" key --clearmodifiers ctrl+comma
wait_for window_called Einstellungen
preferences="$(window_called Einstellungen)"
wait_for is_in_front "$preferences"
screenshot preferences

preferences_are_away() {
    ! window_called Einstellungen
}

xdotool key --clearmodifiers ctrl+w
wait_for preferences_are_away
xdotool windowactivate --sync "$window" key --clearmodifiers ctrl+q
wait_for has_ended "$program"
wait "$program" || fail "the program ended with $?"
