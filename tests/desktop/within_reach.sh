#!/usr/bin/env bash
# A window that was closed on a larger screen comes back where all of it is on the one that is there.
# shellcheck source=tests/desktop/library.sh
. "$(dirname "$0")/library.sh"
needs xrandr

main_window_is_away() {
    ! window_of_program
}

is_on_a_small_screen() {
    local x y width height
    read -r x y width height <<<"$(place_of "$window")"
    ((x >= 0 && y >= 0 && x + width <= 1024 && y + height <= 768))
}

SCREEN_SIZE=1920x1200
start_desktop
start_program
xdotool windowmove --sync "$window" 1080 700
xdotool windowactivate --sync "$window" key --clearmodifiers ctrl+w
wait_for main_window_is_away
xrandr --newmode small 63.50 1024 1072 1176 1328 768 771 775 798
xrandr --addmode screen small
xrandr --output screen --mode small
"$VELLUMINE" || fail "the second start ended with $?"
wait_for window_of_program
window="$(window_of_program)"
wait_for is_on_a_small_screen || fail "the window stands at $(place_of "$window")"
screenshot again
