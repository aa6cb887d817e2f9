#!/usr/bin/env bash
# An original that was moved to the Trash is found and brought back by other programs.
# shellcheck source=tests/desktop/library.sh
. "$(dirname "$0")/library.sh"
needs trash-list trash-restore

start_desktop
set_preferences moveOriginalToTrash=true
# The Trash of the user's own disk: the one that HOME is on.
make_pictures "$HOME/pictures"
cp -p "$HOME/pictures/b c.png" "$folder/original.png"
start_program
hand_over "$HOME/pictures"
wait_for_outputs "$HOME/pictures"
is_in_trash() { # FILE
    [[ ! -e "$1" ]] && trash-list | grep -qF "$1"
}
wait_for is_in_trash "$HOME/pictures/a.png"
wait_for is_in_trash "$HOME/pictures/b c.png"

echo 0 | trash-restore "$HOME/pictures/b c.png" >/dev/null
cmp "$HOME/pictures/b c.png" "$folder/original.png" || fail "another file came back"
[[ ! -e "$HOME/pictures/a.png" ]] || fail "more came back than was asked for"
