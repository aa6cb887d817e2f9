#!/usr/bin/env bash
# The program starts, takes what a second start hands over, grows, opens its preferences, and ends, when it is told to and
# when the system asks it to.
# shellcheck source=tests/desktop/library.sh
. "$(dirname "$0")/library.sh"

start_desktop
start_program
screenshot window
xprop -id "$window" WM_WINDOW_ROLE | grep -q VellumineMainWindow || fail "the window has no name"

make_pictures "$folder/pictures"
cd "$folder"
hand_over pictures/a.png "pictures/b c.png"
wait_for_outputs "$folder/pictures"
wait_for sh -c "xwininfo -id $window | grep -q 'Height: 726'"
screenshot results

xdotool windowactivate --sync "$window" key ctrl+comma
wait_for window_called Preferences
size="$(place_of "$(window_called Preferences)" | cut -d' ' -f3-)"
expect_equal "the size of the preferences" "$size" "620 840"
screenshot preferences

xdotool key ctrl+q
wait_for sh -c "! kill -0 $program"
wait "$program" || fail "the program ended with $?"
has_samples() {
    compgen -G "$TMPDIR/vellumine-preview-*"
}
! has_samples || fail "preview samples were left behind"

start_program
make_pictures "$folder/others"
hand_over others/a.png
wait_for has_samples
kill -HUP "$program"
kill -TERM "$program" 2>/dev/null || true # while it clears up
wait "$program" || fail "the program ended with $?"
[[ -z "$(ls -A "$TMPDIR")" ]] || fail "left behind: $(ls -A "$TMPDIR")"
