# shellcheck shell=bash
# Panels with a tray, and the program's item in them. To be sourced.
# shellcheck source=tests/desktop/pointer.sh
. "$(dirname "${BASH_SOURCE[0]}")/pointer.sh"

# Starts the tray at the upper edge; its process id is in `tray_process`.
start_tray() { # NAME
    needs "$1"
    "configure_${1//-/_}"
    case "$1" in
    trayer)
        background tray trayer --edge top --align right --widthtype request --height 28 \
            --SetDockType true --tint 0x202020
        ;;
    tint2) background tray tint2 ;;
    xfce4-panel) background tray xfce4-panel --disable-wm-check ;;
    *) fail "no such tray: $1" ;;
    esac
    # shellcheck disable=SC2034  # the tests use it
    tray_process=$process
}

configure_trayer() {
    : # by its arguments
}

configure_tint2() {
    mkdir -p "$XDG_CONFIG_HOME/tint2"
    printf '%s\n' 'panel_items = TSC' 'panel_position = top center horizontal' \
        'panel_size = 100% 30' 'systray = 1' 'systray_icon_size = 0' 'time1_format = -' \
        >"$XDG_CONFIG_HOME/tint2/tint2rc"
}

configure_xfce4_panel() {
    local settings="$XDG_CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml"
    mkdir -p "$settings"
    cat >"$settings/xfce4-panel.xml" <<'XML'
<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=640;y=15"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="30"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
    </property>
  </property>
</channel>
XML
}

# The small window that stands in another one, not on the screen itself.
status_item() {
    windows_of_program | awk '$3 <= 40 && $4 == "inside" {found = $1} END {print found; exit !found}'
}

tool_tip() {
    windows_of_program | awk '$3 <= 40 && $4 == "screen" {found = $1} END {print found; exit !found}'
}

# The menu has no name.
status_menu() {
    windows_of_program | awk '$3 > 40 && NF == 4 {found = $1} END {print found; exit !found}'
}

no_status_item() {
    ! status_item
}

no_status_menu() {
    ! status_menu
}

# Waits for the item, and until the panel has made room for it; its place is in `item_x`, `item_y`,
# `item_width` and `item_height`, its middle in `x` and `y`.
wait_for_status_item() {
    wait_for status_item
    wait_until_still 0 0 1280 40
    read -r item_x item_y item_width item_height < <(place_of "$(status_item)")
    # shellcheck disable=SC2034  # the tests use them
    x=$((item_x + item_width / 2)) y=$((item_y + item_height / 2))
}

open_status_menu() { # BUTTON
    xdotool mousemove "$x" "$y" click "$1"
    wait_for status_menu
}

close_status_menu() {
    xdotool key Escape
    wait_for no_status_menu
}

# The menu's items are chosen by the keyboard: the number counts from one.
choose_in_status_menu() { # NUMBER
    local step
    for ((step = 0; step < $1; ++step)); do
        xdotool key Down
    done
    xdotool key Return
    wait_for no_status_menu
}
