#!/usr/bin/env bash
# window_drop.sh FILE_MANAGER: files, and a folder, are dragged by the mouse from a file manager onto
# the drop zone, which lights up under them.
# shellcheck source=tests/desktop/pointer.sh
. "$(dirname "$0")/pointer.sh"

manager="$1"
needs "$manager"
SHOTS="$SHOTS/$manager"
mkdir -p "$SHOTS"
start_desktop
start_program
xdotool windowmove "$window" 440 10
make_pictures "$folder/pictures"
make_pictures "$folder/outside/album.jpg.d/inner"

# A place in the zone without a text.
zone=(500 180)

is_lit() {
    [[ "$(pixel "${zone[@]}")" != "$plain" ]]
}

is_plain() {
    ! is_lit
}

for what in pictures outside; do
    open_file_manager "$manager" "$folder/$what"
    wait_until_still 440 10 820 200
    plain="$(pixel "${zone[@]}")"
    carry "${icon[@]}" 850 200
    hover_until is_lit
    screenshot "$what"
    drop
    wait_for is_plain
    case "$what" in
    pictures) wait_for_outputs "$folder/pictures" ;;
    outside) wait_for_outputs "$folder/outside/album.jpg.d/inner" ;;
    esac
done
screenshot converted
