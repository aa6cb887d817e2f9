#!/usr/bin/env bash
# "Show in Finder" reaches a real file manager, which shows the output's folder and has the output
# chosen.
# shellcheck source=tests/desktop/screen_reader.sh
. "$(dirname "$0")/screen_reader.sh"
needs thunar dbus-monitor gdbus

start_accessible_desktop
background monitor dbus-monitor --session "interface='org.freedesktop.FileManager1'"
start_program
mkdir "$folder/holiday pictures"
make_picture "$folder/holiday pictures/a.png"
make_picture "$folder/holiday pictures/b c%é.png"
hand_over "$folder/holiday pictures/b c%é.png"
ours press "Show in Finder"

wait_for says "$folder/monitor.log" "member=ShowItems"
wait_for says "$folder/monitor.log" "string \"file://$folder/holiday%20pictures/b%20c%25%C3%A9.webp\""

# The bus has started it.
owner() {
    gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
        --method org.freedesktop.DBus.GetConnectionUnixProcessID org.freedesktop.FileManager1 |
        grep -o '[0-9]*,' | tr -d ,
}
wait_for owner
file_manager="$(owner)"
wait_for file_manager_window "holiday pictures"
theirs thunar wait '"b c%é.webp"...'
screenshot shown
