#!/usr/bin/env bash
# The window grows with its results and keeps its top edge; it is never higher than its screen, be
# that small or the second one. Maximised it is left alone until it is restored.
# shellcheck source=tests/desktop/library.sh
. "$(dirname "$0")/library.sh"
needs xrandr

SHOTS="$SHOTS/height-$1"
mkdir -p "$SHOTS"
pictures=0

# Has the program convert so many more pictures.
add_results() { # COUNT
    local last=$((pictures + $1)) files=()
    while ((pictures < last)); do
        files+=("$folder/pictures/$((++pictures)).png")
        make_picture "${files[-1]}"
    done
    hand_over "${files[@]}"
}

wait_for_place() { # "X Y WIDTH HEIGHT"
    wait_for stands_at "$1" || fail "the window stands at $(place_of "$window"), not at $1"
}

mkdir -p "$folder/pictures"
case "$1" in
results)
    SCREEN_SIZE=1280x1400
    start_desktop
    start_program
    xdotool windowmove --sync "$window" 100 50
    wait_for_place "100 50 820 440"
    for step in "1 650" "2 802" "5 1182" "12 1182"; do
        read -r more height <<<"$step"
        add_results "$more"
        wait_for test -s "$folder/pictures/$pictures.webp"
        wait_for_place "100 50 820 $height"
        screenshot "$pictures"
    done
    ;;
small)
    SCREEN_SIZE=1366x768
    start_desktop
    start_program
    wait_for_place "273 164 820 440"
    add_results 1
    # As high as it wants to be, and so low that it is all on the screen.
    wait_for_place "273 118 820 650"
    add_results 7
    wait_for_place "273 0 820 768"
    screenshot full
    ;;
second)
    # One server with two monitors beside each other, the second one the lower by far.
    SCREEN_SIZE=2646x1300
    start_desktop
    xrandr --setmonitor first 1280/339x1300/344+0+0 screen
    xrandr --setmonitor second 1366/361x768/203+1280+200 none
    start_program
    xdotool windowmove --sync "$window" 1500 230
    wait_for_place "1500 230 820 440"
    add_results 1
    wait_for_place "1500 230 820 650"
    add_results 7
    wait_for_place "1500 200 820 768"
    screenshot full
    ;;
maximised)
    SCREEN_SIZE=1280x1400
    start_desktop
    start_program
    xdotool windowmove --sync "$window" 100 50
    wait_for_place "100 50 820 440"
    double_click_title
    wait_for_place "0 0 1280 1400"
    add_results 2
    wait_for says "$XDG_DATA_HOME/Vellumine/stats.json" '"filesProcessed": 2'
    wait_for_place "0 0 1280 1400"
    double_click_title
    wait_for_place "100 50 820 726"
    screenshot restored
    ;;
esac
