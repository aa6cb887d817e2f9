#!/usr/bin/env bash
# On a desktop with one menu bar for all programs every window of the program has its menu there, with
# the entries and keys of the one in its title bar. Elsewhere nothing is loaded for that.
# shellcheck source=tests/desktop/library.sh
. "$(dirname "$0")/library.sh"
registrar=/usr/libexec/vala-panel/appmenu-registrar
needs gdbus "$registrar"

ask_registrar() { # METHOD ARGUMENT...
    local method="com.canonical.AppMenu.Registrar.$1"
    shift
    gdbus call --session --dest com.canonical.AppMenu.Registrar \
        --object-path /com/canonical/AppMenu/Registrar --method "$method" "$@"
}

# Finds the window's menu: its place on the bus is in `owner` and `path`.
has_menu() { # WINDOW
    read -r owner path < <(ask_registrar GetMenuForWindow "$(($1))" |
        sed "s/^('\(:[^']*\)', objectpath '\(.*\)')$/\1 \2/")
    [[ "$owner" == :* ]]
}

# Not the same as a registrar that does not answer.
has_no_menu() { # WINDOW
    [[ "$(ask_registrar GetMenuForWindow "$(($1))")" == "('', objectpath '/')" ]]
}

ask_menu() { # METHOD ARGUMENT...
    local method="com.canonical.dbusmenu.$1"
    shift
    gdbus call --session --dest "$owner" --object-path "$path" --method "$method" -- "$@"
}

# The menu's entries, each with its number, are in $folder/menu.
reads_menu() { # WINDOW
    has_menu "$1" && ask_menu GetLayout 0 -1 '[]' | grep -o '<([0-9]*, {[^}]*}' >"$folder/menu"
}

# What a user sees of it.
menu_of() { # WINDOW
    wait_for reads_menu "$1"
    sed -e "s/.*'type': <'separator'>.*/-/" -e "s/.*'label': <'\([^']*\)'>/\1/" \
        -e "s/, 'shortcut': <\[\['Control', '\(.\)'\]\]>/ (Control \1)/" -e "s/, '.*//" "$folder/menu" |
        tr '\n' '|'
}

# An idle registrar ends, and who asks for it starts it: then the menu has another place.
chooses() { # WINDOW LABEL
    reads_menu "$1" &&
        ask_menu Event "$(sed -n "s/^<(\([0-9]*\), {.*'label': <'$2'>.*/\1/p" "$folder/menu")" clicked '<0>' 0
}

expected="Vellumine|About Vellumine|-|Preferences... (Control ,)|-|Quit Vellumine (Control Q)|"

preferences_are_away() {
    ! window_called Preferences
}

loads_the_platforms_menus() {
    grep -q labsplatformplugin "/proc/$program/maps"
}

close_preferences() {
    xdotool windowactivate --sync "$preferences" key --clearmodifiers ctrl+w
    wait_for preferences_are_away
    wait_for has_no_menu "$preferences"
}

start_desktop
start_program
xdotool windowactivate --sync "$window" key --clearmodifiers ctrl+comma
wait_for window_called Preferences
preferences="$(window_called Preferences)"
if loads_the_platforms_menus; then
    fail "what nobody needs is loaded"
fi

# One that comes late finds the windows that there are.
background registrar "$registrar"
first_registrar=$process
expect_equal "the menu" "$(menu_of "$window")" "$expected"
expect_equal "the menu of the preferences" "$(menu_of "$preferences")" "$expected"
loads_the_platforms_menus || fail "the menus come from elsewhere: look for that instead"

# The entries; a closed window has no menu, and one that comes back has it again.
close_preferences
wait_for chooses "$window" "Preferences..."
wait_for window_called Preferences
preferences="$(window_called Preferences)"
expect_equal "the menu of the preferences that came back" "$(menu_of "$preferences")" "$expected"

# The keys, which the entries have now.
close_preferences
xdotool windowactivate --sync "$window" key --clearmodifiers ctrl+comma
wait_for window_called Preferences
preferences="$(window_called Preferences)"
wait_for has_menu "$preferences"

# Another registrar knows nothing of what the first one was told.
end "$first_registrar"
background registrar "$registrar"
expect_equal "the menu at another registrar" "$(menu_of "$window")" "$expected"
expect_equal "that of the preferences" "$(menu_of "$preferences")" "$expected"

wait_for chooses "$preferences" "Quit Vellumine"
wait_for has_ended "$program"
wait "$program" || fail "the program ended with $?"

# The key for quitting, in a program that finds the registrar when it starts. It complains of nothing but
# a registrar that has ended.
start_program
wait_for has_menu "$window"
xdotool windowactivate --sync "$window" key --clearmodifiers ctrl+q
wait_for has_ended "$program"
wait "$program" || fail "the program ended with $?"
if grep -v 'register window menu' "$folder/program.log"; then
    fail "the program complains"
fi
