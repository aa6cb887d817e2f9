#!/usr/bin/env bash
# A window that grows shows its own colour where it is not drawn yet: here because the program is
# held.
# shellcheck source=tests/desktop/pointer.sh
. "$(dirname "$0")/pointer.sh"

start_desktop
start_program
xdotool windowmove --sync "$window" 100 100
wait_until_still 0 0 1280 1000
kill -STOP "$program"
# Its own requests are answered by nobody now, so that the size is the server's word alone.
xdotool windowsize "$window" 820 700
has_grown() {
    [[ "$(place_of "$window")" == *" 820 700" ]]
}
wait_for has_grown
ground="$(pixel 500 780)"
screenshot held
kill -CONT "$program"
[[ "$ground" == "#2f2621" ]] || fail "what is not drawn yet is $ground"
