#!/usr/bin/env bash
# Files are dragged by the mouse from a file manager onto the drop zone.
# shellcheck source=tests/desktop/library.sh
. "$(dirname "$0")/library.sh"

start_desktop
start_program
xdotool windowmove "$window" 440 10
make_pictures "$folder/pictures"
open_file_manager "$folder/pictures"
drag "${icon[@]}" 850 220 hover
wait_for_outputs "$folder/pictures"
screenshot converted
