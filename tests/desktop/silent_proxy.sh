#!/usr/bin/env bash
# A server that is asked for the way to the update page and never answers does not keep the program
# from ending.
# shellcheck source=tests/desktop/library.sh
. "$(dirname "$0")/library.sh"
needs python3

start_desktop
background proxy python3 "$(dirname "$0")/silent_server.py" "$folder"
wait_for test -s "$folder/port"
https_proxy="pac+http://127.0.0.1:$(<"$folder/port")/proxy.pac"
export https_proxy
start_program
wait_for test -e "$folder/asked"
xdotool windowactivate --sync "$window" key --clearmodifiers ctrl+q
wait_for has_ended "$program" || fail "the program does not end"
wait "$program" || fail "the program ended with $?"
