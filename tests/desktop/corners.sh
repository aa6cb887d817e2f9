#!/usr/bin/env bash
# Where nothing blends windows with what lies below, the corners are filled: transparent ones would
# be black.
# shellcheck source=tests/desktop/screen_reader.sh
. "$(dirname "$0")/screen_reader.sh"

corner_is_filled() {
    local left top width height
    read -r left top width height < <(place_of "$window")
    [[ "$(pixel $((left + 2)) $((top + 2)))" != "#000000" \
        && "$(pixel $((left + width - 3)) $((top + height - 3)))" != "#000000" ]]
}

start_accessible_desktop
start_program
wait_until_still 0 0 1280 1000
corner_is_filled || fail "the corners of the window are black"
screenshot window
xdotool windowactivate --sync "$window" key --clearmodifiers ctrl+comma
wait_for window_called Preferences
window="$(window_called Preferences)"
wait_until_still 0 0 1280 1000
corner_is_filled || fail "the corners of the preferences are black"

# Somebody who blends windows comes, which is seen when the next one is shown, and goes again.
background compositor "$PROBE" compositor
compositor=$process
wait_for says "$folder/compositor.log" blending
make_picture "$folder/a.png"
hand_over "$folder/a.png"
window="$(window_of_program)"
corner_is_transparent() {
    ! corner_is_filled
}
wait_for corner_is_transparent
end "$compositor"
ours press "Open before and after viewer"
wait_for window_called Review
window="$(window_called Review)"
wait_until_still 0 0 1280 1000
screenshot comparison
corner_is_filled || fail "the corners of the comparison are black"
