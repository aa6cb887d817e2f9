#!/usr/bin/env bash
# Closing every window leaves the program and its status item; the item's menu brings the same window
# back, where it was, and ends the program.
# shellcheck source=tests/desktop/trays.sh
. "$(dirname "$0")/trays.sh"

start_desktop
start_tray tint2
start_program
wait_for_status_item

main_window_is_away() {
    ! window_of_program
}

preferences_are_away() {
    ! window_called Preferences
}

# As high as only this one is, with its result.
make_picture "$folder/a.png"
hand_over "$folder/a.png"
has_grown() {
    [[ "$(place_of "$window")" == *" 820 650" ]]
}
wait_for has_grown
xdotool windowmove --sync "$window" 233 122
place="$(place_of "$window")"
open_status_menu 3
choose_in_status_menu 2
wait_for window_called Preferences
preferences="$(window_called Preferences)"
wait_for is_in_front "$preferences"
xdotool windowmove --sync "$preferences" 411 87
preferences_place="$(place_of "$preferences")"

xdotool key --clearmodifiers ctrl+w
wait_for preferences_are_away
xdotool windowactivate --sync "$window" key --clearmodifiers ctrl+w
wait_for main_window_is_away
screenshot closed
is_running "$program" || fail "the program ended with its windows"
status_item >/dev/null || fail "the status item is gone with the windows"

open_status_menu 1
choose_in_status_menu 1
wait_for window_of_program
window="$(window_of_program)" # closed, it has given its id back
wait_for is_in_front "$window"
wait_until_still 0 0 1280 1000
expect_equal "the window's place" "$(place_of "$window")" "$place"

open_status_menu 1
choose_in_status_menu 2
wait_for window_called Preferences
preferences="$(window_called Preferences)"
wait_until_still 0 0 1280 1000
expect_equal "the place of the preferences" "$(place_of "$preferences")" "$preferences_place"

# Maximised, it comes back so, and can be restored to what it was.
is_maximised() {
    xprop -id "$window" _NET_WM_STATE | grep -q _NET_WM_STATE_MAXIMIZED_VERT
}

xdotool windowactivate --sync "$window"
double_click_title
wait_for is_maximised
wait_until_still 0 0 1280 1000
maximised_place="$(place_of "$window")"
[[ "$maximised_place" != "$place" ]] || fail "the window is not larger when it is maximised"
xdotool key --clearmodifiers ctrl+w
wait_for main_window_is_away
open_status_menu 3
choose_in_status_menu 1
wait_for window_of_program
window="$(window_of_program)"
wait_for is_maximised
wait_for stands_at "$maximised_place" || fail "maximised, the window stands at $(place_of "$window")"
wait_until_still 0 0 1280 1000
double_click_title
wait_for stands_at "$place" || fail "restored, the window stands at $(place_of "$window"), not at $place"

open_status_menu 3
choose_in_status_menu 4
wait_for has_ended "$program"
wait "$program" || fail "the program ended with $?"
