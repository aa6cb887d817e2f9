#!/usr/bin/env bash
# With "exitWhenComplete" the program ends after the batch that was opened with it, and not before.
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

# Starts that come while the one before converts, completes or ends: the files of each are converted.
starts=()
for number in {1..16}; do
    make_picture "$folder/pictures/start $number.png"
    "$VELLUMINE" "$folder/pictures/start $number.png" &
    starts+=($!)
    sleep "0.$((number % 4 + 1))"
done
for start in "${starts[@]}"; do
    wait "$start" || fail "a start ended with $?"
done
for number in {1..16}; do
    test -s "$folder/pictures/start $number.webp" || fail "start $number was not converted"
done
