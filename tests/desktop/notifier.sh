#!/usr/bin/env bash
# Where no window of ours can stand in a tray, the status item is one of the notifier kind, with the
# same menu: under a Wayland compositor, beside a panel that shows such items.
# shellcheck source=tests/desktop/wayland_desktop.sh
. "$(dirname "$0")/wayland_desktop.sh"

start_desktop
# In the place of a browser.
mkdir "$folder/bin"
cat >"$folder/bin/xdg-open" <<OPENER
#!/bin/sh
echo "\$1" >>"$folder/pages"
OPENER
chmod +x "$folder/bin/xdg-open"
PATH="$folder/bin:$PATH"
start_tray xfce4-panel
start_compositor

notifier_watcher() { # PROPERTY
    gdbus call --session --dest org.kde.StatusNotifierWatcher --object-path /StatusNotifierWatcher \
        --method org.freedesktop.DBus.Properties.Get org.kde.StatusNotifierWatcher "$1"
}

host_is_there() {
    notifier_watcher IsStatusNotifierHostRegistered | grep -q true
}

item_is_there() {
    notifier_watcher RegisteredStatusNotifierItems | grep -q StatusNotifierItem
}

# What the item answers; its place on the bus is in `item`.
ask_item() { # PATH METHOD ARGUMENT...
    local path="$1" method="$2"
    shift 2
    gdbus call --session --dest "$item" --object-path "$path" --method "$method" -- "$@"
}

wait_for host_is_there
start_program_under_wayland
wait_for item_is_there
item="$(notifier_watcher RegisteredStatusNotifierItems | grep -o "'[^'@/]*" | tr -d "'" | head -n 1)"
ask_item /StatusNotifierItem org.freedesktop.DBus.Properties.GetAll org.kde.StatusNotifierItem \
    >"$folder/item"
says "$folder/item" "Vellumine" || fail "the item does not say whose it is"
screenshot shown

ask_item /MenuBar com.canonical.dbusmenu.GetLayout 0 -1 '[]' >"$folder/menu"
labels="$(grep -o "'label': <'[^']*'>" "$folder/menu" | cut -d"'" -f4 | tr '\n' '|')"
expect_equal "the menu" "$labels" "Open Drop Window|Preferences...|Kestrova Website|Quit Vellumine|"

choose() { # LABEL
    local number
    number="$(grep -o "<([0-9]*, {[^}]*'label': <'$1'>" "$folder/menu" | grep -o '^<([0-9]*' | tr -d '<(')"
    ask_item /MenuBar com.canonical.dbusmenu.Event "$number" clicked '<0>' 0 >/dev/null
}

choose "Preferences..."
program_says 'xdg_toplevel[@#].*set_title("Preferences")'
choose "Kestrova Website"
wait_for test -s "$folder/pages"
expect_equal "the page" "$(<"$folder/pages")" "$MAKER_URL"
choose "Quit Vellumine"
wait_for has_ended "$program"
wait "$program" || fail "the program ended with $?"
