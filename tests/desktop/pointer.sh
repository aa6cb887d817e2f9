# shellcheck shell=bash
# The hand on the mouse: file managers, and dragging from them. To be sourced.
# shellcheck source=tests/desktop/library.sh
. "$(dirname "${BASH_SOURCE[0]}")/library.sh"

pixel() { # X Y
    "$PROBE" pixel "$1" "$2"
}

is_painted() { # X Y WIDTH HEIGHT, more than a plain ground and a line
    (($("$PROBE" colors "$@") > 4))
}

wait_until_still() { # X Y WIDTH HEIGHT
    "$PROBE" still "$@" || fail "the screen does not come to rest"
}

looks_other_than() { # DIGEST X Y WIDTH HEIGHT
    local digest="$1"
    shift
    [[ "$("$PROBE" digest "$@")" != "$digest" ]]
}

# Opens the file manager on the folder at the lower left, and chooses everything in it; x and y of
# its first icon are in `icon`.
open_file_manager() { # NAME FOLDER
    local manager="$1"
    needs "$manager"
    close_file_manager
    background "$manager" "$manager" "$2"
    file_manager=$process
    stubborn=$process # pcmanfm, now and then, after something was dragged from it
    local name
    name="$(basename "$2")"
    local shown
    wait_for file_manager_window "$name"
    shown="$(file_manager_window "$name")"
    xdotool windowsize "$shown" 460 440 windowmove "$shown" 0 520 windowactivate --sync "$shown"
    local x y width height
    wait_until_still 0 500 480 500
    read -r x y width height < <(place_of "$shown")
    # Where the first icon's middle lies. Started by root, thunar shows a warning above the icons.
    case "$manager" in
    thunar) icon=($((x + 211)) $((y + (EUID == 0 ? 146 : 112)))) ;;
    pcmanfm) icon=($((x + 206)) $((y + 96))) ;;
    esac
    local around=($((icon[0] - 30)) $((icon[1] - 30)) 60 80)
    wait_for is_painted "${around[@]}"
    xdotool mousemove $((x + width - 60)) $((y + height - 100)) click 1
    wait_until_still 0 500 480 500
    local unchosen
    unchosen="$("$PROBE" digest "${around[@]}")"
    xdotool key --clearmodifiers ctrl+a
    wait_for looks_other_than "$unchosen" "${around[@]}"
}

# The window of the file manager with the folder's name in its title.
file_manager_window() { # NAME
    "$PROBE" windows "$file_manager" |
        awk -v name="$1" 'index($0, name) && $3 > 100 {found = $1} END {print found; exit !found}'
}

close_file_manager() {
    if [[ -n "${file_manager:-}" ]]; then
        end "$file_manager"
        file_manager=""
    fi
}

# Takes what the file manager has chosen, and carries it to the place. The programs talk to each
# other about every step, so each needs its time, as it has with a hand.
carry() { # FROM_X FROM_Y TO_X TO_Y
    local step
    xdotool mousemove "$1" "$2"
    sleep 0.1
    xdotool mousedown 1
    sleep 0.1
    for step in 1 2 3 4 5 6; do
        xdotool mousemove_relative -- 4 4
        sleep 0.03
    done
    for ((step = 1; step <= 20; ++step)); do
        xdotool mousemove $(($1 + 24 + ($3 - $1 - 24) * step / 20)) $(($2 + 24 + ($4 - $2 - 24) * step / 20))
        sleep 0.02
    done
}

# hover_until COMMAND...: moves a little where it is, as a hand does, until the command succeeds.
hover_until() {
    local deadline=$((SECONDS + 60)) by=1
    while ((SECONDS < deadline)); do
        xdotool mousemove_relative -- "$by" 0
        by=$((-by))
        sleep 0.05
        if "$@" >/dev/null 2>&1; then
            return
        fi
    done
    fail "hovered in vain for: $*"
}

drop() {
    xdotool mouseup 1
}
