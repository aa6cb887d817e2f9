#!/usr/bin/env bash
# tray_drop.sh TRAY: files are dragged from a file manager onto the status item in a tray; the item
# comes back when the tray restarts, and both mouse buttons open its menu.
# shellcheck source=tests/desktop/library.sh
. "$(dirname "$0")/library.sh"

tray="$1"
if ! command -v "$tray" >/dev/null; then
    echo "skipped: $tray is not installed"
    exit 77
fi
SHOTS="$SHOTS/$tray"
mkdir -p "$SHOTS"

start_tray() {
    case "$tray" in
    trayer)
        background tray trayer --edge top --align right --widthtype request --height 28 \
            --SetDockType true --tint 0x202020
        ;;
    tint2)
        mkdir -p "$XDG_CONFIG_HOME/tint2"
        printf '%s\n' 'panel_items = TSC' 'panel_position = top center horizontal' \
            'panel_size = 100% 30' 'systray = 1' 'systray_icon_size = 0' 'time1_format = %H:%M' \
            >"$XDG_CONFIG_HOME/tint2/tint2rc"
        background tray tint2
        ;;
    esac
    tray_process=$process
}

status_item() {
    windows_of_program | awk '$2 <= 40 {print $1}' | tail -n 1 | grep .
}

has_windows() { # TEST COUNT, as of test
    test "$(windows_of_program | wc -l)" "$1" "$2"
}

start_desktop
start_tray
start_program
xdotool windowmove "$window" 440 40
wait_for status_item
sleep 0.5 # the panel makes room for it
screenshot docked

make_pictures "$folder/pictures"
open_file_manager "$folder/pictures"
read -r x y < <(middle_of "$(status_item)")
drag "${icon[@]}" "$x" "$y" hover
wait_for_outputs "$folder/pictures"

for button in 1 3; do
    sleep 0.6 # the cover goes after the drop
    before="$(windows_of_program | wc -l)"
    xdotool mousemove "$x" "$y" click "$button"
    wait_for has_windows -gt "$before"
    screenshot "menu-$button"
    xdotool key Escape
    wait_for has_windows -eq "$before"
done

kill "$tray_process"
wait_for sh -c "! kill -0 $tray_process"
start_tray
wait_for status_item
screenshot again
kill -0 "$program" || fail "the program ended with its tray"
