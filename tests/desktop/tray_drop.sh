#!/usr/bin/env bash
# tray_drop.sh TRAY FILE_MANAGER: files, and a folder, are dragged from a file manager onto the status
# item in a tray, which lights up under them, and not under what is no picture; both mouse buttons
# open the item's menu; the item comes back when the tray restarts.
# shellcheck source=tests/desktop/trays.sh
. "$(dirname "$0")/trays.sh"

tray="$1"
manager="$2"
needs "$tray" "$manager"
SHOTS="$SHOTS/$tray-$manager"
mkdir -p "$SHOTS"

make_pictures "$folder/pictures"
make_pictures "$folder/outside/album.jpg.d/inner"
mkdir "$folder/texts"
echo "no picture" >"$folder/texts/notes.txt"

start_desktop
start_tray "$tray"
start_program
xdotool windowmove "$window" 440 60
wait_for_status_item
screenshot docked

# A place of the item beside its symbol, which the highlight fills.
beside_symbol() {
    pixel $((item_x + 3)) $((item_y + 3))
}

# The highlight, a third of its colour, lies over the panel's.
is_highlighted() {
    local mixed channel panel found
    local tint=(201 147 115) shown
    shown="$(beside_symbol)"
    for channel in 0 1 2; do
        panel=$((16#${plain:1 + 2 * channel:2}))
        found=$((16#${shown:1 + 2 * channel:2}))
        mixed=$(((panel * 68 + tint[channel] * 32) / 100))
        ((found - mixed <= 3 && mixed - found <= 3)) || return 1
    done
}

is_plain() {
    [[ "$(beside_symbol)" == "$plain" ]]
}

# The panel's colour, also under the item.
plain="$(beside_symbol)"
expect_equal "the item's ground" "$plain" "$(pixel $((item_x - 1)) $((item_y + 3)))"

for what in pictures outside; do
    open_file_manager "$manager" "$folder/$what"
    carry "${icon[@]}" "$x" "$y"
    hover_until is_highlighted
    screenshot "$what"
    drop
    wait_for is_plain
done
wait_for_outputs "$folder/pictures"
wait_for_outputs "$folder/outside/album.jpg.d/inner"

# What is no picture is not taken: the item stays dark, and the program has nothing new to say.
read -r window_x window_y width height < <(place_of "$window")
wait_until_still "$window_x" "$window_y" "$width" "$height"
before="$("$PROBE" digest "$window_x" "$window_y" "$width" "$height")"
open_file_manager "$manager" "$folder/texts"
carry "${icon[@]}" "$x" "$y"
refusals=0
while ((++refusals < 20)); do
    xdotool mousemove_relative -- $((refusals % 2 ? 1 : -1)) 0
    is_plain || fail "the item lights up under a text"
done
screenshot refused
drop
wait_until_still "$window_x" "$window_y" "$width" "$height"
expect_equal "the window" "$("$PROBE" digest "$window_x" "$window_y" "$width" "$height")" "$before"
close_file_manager

xdotool mousemove "$x" 400 mousemove "$x" "$y"
wait_for tool_tip
screenshot tool-tip

for button in 1 3; do
    open_status_menu "$button"
    screenshot "menu-$button"
    close_status_menu
done

end "$tray_process"
wait_for no_status_item
start_tray "$tray"
wait_for_status_item
screenshot again
is_running "$program" || fail "the program ended with its tray"
