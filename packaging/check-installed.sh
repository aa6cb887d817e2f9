#!/usr/bin/env bash
# check-installed.sh PACKAGE.deb [PICTURES]: installs the package into a Debian of its own, where
# nothing else is, and runs both programs there as an ordinary user: the one for the command line on the
# pictures (by default on one of its own making), the one with windows on a server without a screen.
#
# Run as root; the new system comes from Debian's mirror: SUITE, or bookworm. CHECK_ROOT keeps it for the next time.
set -euo pipefail

package="$(realpath "$1")"
pictures="${2:-}"
suite="${SUITE:-bookworm}"
if ((EUID != 0)); then
    echo "To make a system of its own this has to be run as root." >&2
    exit 1
fi
if ! command -v debootstrap >/dev/null; then
    echo "Please install debootstrap, which makes that system." >&2
    exit 1
fi

root="${CHECK_ROOT:-}"
if [[ -z "$root" ]]; then
    root="$(mktemp -d)"
    chmod 755 "$root" # an ordinary user's, too, as it is the folder "/" there
    trap 'rm -rf --one-file-system "$root"' EXIT
fi
if [[ ! -e "$root/etc/debian_version" ]]; then
    debootstrap --variant=minbase "$suite" "$root" >"$root.log" || {
        tail "$root.log"
        exit 1
    }
    rm "$root.log"
fi

inside() { # COMMAND...
    chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 \
        DEBIAN_FRONTEND=noninteractive "$@"
}

cp "$package" "$root/tmp/vellumine.deb"
# What a desktop brings, and the package does not need on a machine without one.
inside apt-get install -y -qq -o Dpkg::Use-Pty=0 --no-install-recommends /tmp/vellumine.deb \
    dbus-daemon xvfb x11-utils libglib2.0-bin >/dev/null
inside id somebody >/dev/null 2>&1 || inside useradd --create-home somebody
rm -rf "$root/home/somebody/check"
mkdir -p "$root/home/somebody/check/pictures"
if [[ -n "$pictures" ]]; then
    cp -r "$pictures/." "$root/home/somebody/check/pictures/"
else
    base64 -d >"$root/home/somebody/check/pictures/a.png" <<'PNG'
iVBORw0KGgoAAAANSUhEUgAAAAgAAAAICAIAAABLbSncAAAAEUlEQVR42mPYkGCAFTEMLQkAYplQAZTtXNgAAAAASUVORK5CYII=
PNG
fi
chmod -R u+w "$root/home/somebody/check/pictures"
inside chown -R somebody: /home/somebody/check

cat >"$root/tmp/check" <<'SCRIPT'
cd "$HOME/check"
echo "== vellumine-batch"
vellumine-batch --version
outputs() {
    find pictures -name '*.webp' | wc -l
}
before="$(outputs)"
status=0
vellumine-batch pictures >batch.log 2>&1 || status=$?
tail -n 1 batch.log
# Pictures that are broken fail, and that is all that may.
((status < 2))
echo "new files: $(($(outputs) - before))"
(($(outputs) > before))

echo "== vellumine"
export XDG_RUNTIME_DIR="$PWD/run"
mkdir -p "$XDG_RUNTIME_DIR" window
chmod 700 "$XDG_RUNTIME_DIR"
Xvfb -displayfd 9 -screen 0 1280x1000x24 -nolisten tcp -noreset 9>display >server.log 2>&1 &
server=$!
trap 'kill "$server"' EXIT
wait_for() {
    local deadline=$((SECONDS + 60))
    until "$@" >/dev/null 2>&1; do
        ((SECONDS < deadline)) || { echo "waited in vain for: $*"; cat bus.log; exit 1; }
        sleep 0.1
    done
}
wait_for test -s display
DISPLAY=":$(<display)"
export DISPLAY
dbus-daemon --session --nofork --print-address=9 9>bus >bus.log 2>&1 &
bus=$!
trap 'kill "$bus" "$server"' EXIT
wait_for test -s bus
DBUS_SESSION_BUS_ADDRESS="$(head -n 1 bus)"
export DBUS_SESSION_BUS_ADDRESS
cp "$(find pictures -name '*.png' | head -n 1)" "window/a picture.png"
# The bus starts it by the file that the package has brought.
gapplication launch com.kestrova.Vellumine "$PWD/window/a picture.png"
window_is_shown() {
    xwininfo -root -tree | grep -q '"Vellumine".*820x'
}
wait_for window_is_shown
wait_for test -s "window/a picture.webp"
gapplication action com.kestrova.Vellumine quit
window_is_away() {
    ! window_is_shown
}
wait_for window_is_away
echo "started, converted a picture, and ended"
SCRIPT
inside su somebody --shell /bin/bash --command "bash -euo pipefail /tmp/check"
inside apt-get purge -y -qq -o Dpkg::Use-Pty=0 vellumine >/dev/null
if inside find /usr /etc -iname '*vellumine*' | grep .; then
    echo "These were left behind." >&2
    exit 1
fi
echo "removed without a trace"
