#!/usr/bin/env bash
# Where the desktop has no folder dialog, the program's own is seen in the window that asks, proposes the folder that it
# shows, and comes again as often as it is asked for.
# shellcheck source=tests/desktop/screen_reader.sh
. "$(dirname "$0")/screen_reader.sh"

start_accessible_desktop
mkdir -p "$folder/pictures/web"
cd "$folder/pictures" # where a panel opens that has no folder yet
start_program
cd - >/dev/null
ours press "Preferences"
wait_for window_called Preferences
preferences="$(window_called Preferences)"
wait_for is_in_front "$preferences"

press_with_mouse() { # NAME
    local place
    read -ra place < <(ours where "$1")
    xdotool mousemove "${place[@]}" click 1
}

stored_folder_is() { # NAME
    says "$XDG_CONFIG_HOME/Kestrova/Vellumine.conf" "^destinationFolderBookmark=.*/$1)"
}

ours press "Choose Folder..."
ours wait "Open"
screenshot panel
press_with_mouse "Cancel"
ours press "Choose Folder..."
ours wait "Open"
press_with_mouse "Open"
ours wait "Change Folder..."
wait_for stored_folder_is pictures
wait_for is_in_front "$preferences"

# It opens in that folder now; one in it can be chosen as well.
ours press "Change Folder..."
ours wait "Open"
screenshot again
press_with_mouse "web"
press_with_mouse "Open"
wait_for stored_folder_is pictures/web
