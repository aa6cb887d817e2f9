#!/usr/bin/env bash
# On a screen of many pixels, too, the item has the panel's colour under its symbol.
# shellcheck source=tests/desktop/trays.sh
. "$(dirname "$0")/trays.sh"

has_the_panels_ground() {
    [[ "$(pixel $((item_x + 3)) $((item_y + 3)))" == "$(pixel $((item_x - 1)) $((item_y + 3)))" ]]
}

start_desktop
start_tray trayer
export QT_SCALE_FACTOR="$1"
start_program
wait_for_status_item
screenshot "$1"
wait_for has_the_panels_ground
[[ "$(pixel $((item_x + 3)) $((item_y + 3)))" != "$(pixel 640 400)" ]] || fail "there is no panel"
