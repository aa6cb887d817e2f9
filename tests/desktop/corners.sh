#!/usr/bin/env bash
# Where nothing blends windows with what lies below, the corners are filled: transparent ones would
# be black.
# shellcheck source=tests/desktop/pointer.sh
. "$(dirname "$0")/pointer.sh"

corner_is_filled() {
    local left top width height
    read -r left top width height < <(place_of "$window")
    [[ "$(pixel $((left + 2)) $((top + 2)))" != "#000000" \
        && "$(pixel $((left + width - 3)) $((top + height - 3)))" != "#000000" ]]
}

start_desktop
start_program
wait_until_still 0 0 1280 1000
corner_is_filled || fail "the corners of the window are black"
screenshot window
xdotool windowactivate --sync "$window" key --clearmodifiers ctrl+comma
wait_for window_called Preferences
window="$(window_called Preferences)"
wait_until_still 0 0 1280 1000
corner_is_filled || fail "the corners of the preferences are black"
