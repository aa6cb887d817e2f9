#!/usr/bin/env bash
# activation.sh BUILD_FOLDER: installed, the program is started by the session bus with its files, as
# launchers do it, and answers to its actions.
# shellcheck source=tests/desktop/library.sh
. "$(dirname "$0")/library.sh"

if ! command -v gapplication >/dev/null; then
    echo "skipped: gapplication is not installed"
    exit 77
fi
cmake --install "$1" --prefix "$folder/installed" >"$folder/install.log"
export XDG_DATA_DIRS="$folder/installed/share:/usr/local/share:/usr/share"
export PATH="$folder/installed/bin:$PATH"
VELLUMINE_CWEBP_PATH="$(command -v cwebp)"
export VELLUMINE_CWEBP_PATH
start_desktop

is_running() {
    gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
        --method org.freedesktop.DBus.NameHasOwner com.kestrova.Vellumine | grep -q true
}

has_ended() {
    ! is_running
}

make_pictures "$folder/pictures"
gapplication launch com.kestrova.Vellumine "$folder/pictures/a.png" "$folder/pictures/b c.png"
wait_for_outputs "$folder/pictures"
gapplication action com.kestrova.Vellumine preferences
wait_for xdotool search --onlyvisible --name '^Preferences$' # the bus has started it: whose child it is, is open
screenshot preferences
gapplication action com.kestrova.Vellumine quit
wait_for has_ended

# From the launcher's file, with URLs.
rm "$folder/pictures/"*.webp
gio launch "$folder/installed/share/applications/com.kestrova.Vellumine.desktop" \
    "$folder/pictures/a.png" "$folder/pictures/b c.png"
wait_for_outputs "$folder/pictures"
is_running || fail "the program did not take its name"
gapplication action com.kestrova.Vellumine quit
