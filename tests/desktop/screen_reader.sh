# shellcheck shell=bash
# A private desktop whose programs can be used by the names of their controls. To be sourced.
# shellcheck source=tests/desktop/pointer.sh
. "$(dirname "${BASH_SOURCE[0]}")/pointer.sh"

# Debian's own Python has the bindings.
python=/usr/bin/python3
if ! "$python" -c 'import gi; gi.require_version("Atspi", "2.0")' 2>/dev/null; then
    echo "skipped: the bindings to AT-SPI are not installed"
    exit 77
fi

start_accessible_desktop() {
    # shellcheck disable=SC2034  # the library reads it
    ACCESSIBLE=yes
    start_desktop
    export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
}

# ours COMMAND NAME, theirs PROGRAM COMMAND NAME: see accessible.py.
ours() {
    theirs Vellumine "$@"
}

theirs() {
    "$python" -Wignore "$(dirname "${BASH_SOURCE[0]}")/accessible.py" "$@"
}
