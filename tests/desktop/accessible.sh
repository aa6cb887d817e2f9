#!/usr/bin/env bash
# The program is used from the first drop to its end by the names of its controls alone.
# shellcheck source=tests/desktop/screen_reader.sh
. "$(dirname "$0")/screen_reader.sh"
needs thunar

start_accessible_desktop
start_program
xdotool windowmove --sync "$window" 440 10
make_pictures "$folder/pictures"

# A drop is the one thing that needs the mouse; it finds its target by the name.
open_file_manager thunar "$folder/pictures"
read -r x y < <(ours where "Drop images here")
zone=($((x - 250)) "$y")
plain="$(pixel "${zone[@]}")"
is_lit() {
    [[ "$(pixel "${zone[@]}")" != "$plain" ]]
}
carry "${icon[@]}" "$x" "$y"
hover_until is_lit
drop
ours wait "Done"
ours wait "Files: 2/2"
ours wait "a.png, Saved ..."
ours wait "b c.png, Saved ..."
wait_for_outputs "$folder/pictures"

ours press "Open before and after viewer"
ours wait "Before / After Review"
role="$(xprop -id "$(window_called Review)" WM_WINDOW_ROLE)"
[[ "$role" == *VellumineComparisonWindow* ]] || fail "the comparison has no name"

ours press "Preferences"
ours wait "Remove personal information and metadata"
expect_equal "the preference" "$(ours checked "Remove personal information and metadata")" yes
ours press "Remove personal information and metadata"
ours wait "Keep metadata" # the chip of the main window
expect_equal "the preference" "$(ours checked "Remove personal information and metadata")" no
wait_for says "$XDG_CONFIG_HOME/Kestrova/Vellumine.conf" '^removeMetadata=false'
screenshot driven

ours press "Menu"
ours press "Quit Vellumine"
wait_for has_ended "$program"
wait "$program" || fail "the program ended with $?"
