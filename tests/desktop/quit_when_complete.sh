#!/usr/bin/env bash
# With "exitWhenComplete" the program ends after the batch that was opened with it, and not before;
# the window's own drops do not end it.
# shellcheck source=tests/desktop/library.sh
. "$(dirname "$0")/library.sh"

start_desktop
set_preferences exitWhenComplete=true
make_pictures "$folder/pictures"
start_program
hand_over "$folder/pictures"
wait_for has_ended "$program"
wait "$program" || fail "the program ended with $?"
test -s "$folder/pictures/a.webp" || fail "it ended before its batch"
test -s "$folder/pictures/b c.webp" || fail "it ended before its batch"

# Started with the files itself.
rm "$folder/pictures/"*.webp
"$VELLUMINE" "$folder/pictures" || fail "the program ended with $?"
test -s "$folder/pictures/a.webp" || fail "it ended before its batch"
