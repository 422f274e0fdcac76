#!/usr/bin/env bash
# Installs the Debian packages one kind of work needs, skipping those already present, on
# Debian 12 or 13 alike. Uses sudo when not run as root. The lists below are the only ones.
#   install-deps.sh run    building and running Corvane (make run)
#   install-deps.sh deb    ... and making its Debian package (make deb)
#   install-deps.sh test   ... and the whole test suite and the benchmarks (make test, make bench)
#   install-deps.sh fuzz   ... and clang with libFuzzer (fuzz/README.md)
set -euo pipefail

run=(
    g++ make cmake ninja-build pkg-config
    qt6-base-dev qt6-charts-dev libqt6opengl6-dev libxcb1-dev
    # A native window on Wayland; a virtual display and a session bus where there is no desktop.
    qt6-wayland fonts-dejavu-core xvfb xauth dbus
)
deb=(dpkg-dev)
test=(
    libgtest-dev libgmock-dev libbenchmark-dev locales
    # The desktops the end-to-end tests run the application on: a Wayland compositor with a
    # panel, an X11 tray, a notification service, screenshots and the screen readers' bus.
    sway waybar grim trayer x11-utils xdotool python3-xlib dunst at-spi2-core
    python3-pyatspi python3-gi
    # A passwd file of the tests' own, for the home lookup's long entries.
    libnss-wrapper
    # The checks the Debian package passes.
    lintian appstream desktop-file-utils man-db
)
# Packages whose name changed between releases: the first one this machine's apt offers.
fuzz=(clang "libclang-rt-dev|libclang-rt-14-dev")

case "${1:-}" in
    run) wanted=("${run[@]}") ;;
    deb) wanted=("${run[@]}" "${deb[@]}") ;;
    test) wanted=("${run[@]}" "${deb[@]}" "${test[@]}") ;;
    fuzz) wanted=("${run[@]}" "${fuzz[@]}") ;;
    *) echo "usage: install-deps.sh run|deb|test|fuzz" >&2; exit 2 ;;
esac

sudo=()
if [ "$(id -u)" -ne 0 ]; then
    sudo=(sudo)
fi
installed() {
    dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q "install ok installed"
}
offered() {
    [ -n "$(apt-cache policy "$1" 2>/dev/null | awk '$1 == "Candidate:" && $2 != "(none)"')" ]
}

missing=()
updated=
for entry in "${wanted[@]}"; do
    IFS='|' read -ra choices <<<"$entry"
    chosen=
    for p in "${choices[@]}"; do
        if installed "$p"; then
            chosen=present
            break
        fi
    done
    [ -n "$chosen" ] && continue
    if [ -z "$updated" ]; then
        "${sudo[@]}" apt-get update -qq
        updated=1
    fi
    for p in "${choices[@]}"; do
        if offered "$p"; then
            chosen=$p
            break
        fi
    done
    missing+=("${chosen:-${choices[0]}}")
done

if ((${#missing[@]})); then
    echo "Installing: ${missing[*]}"
    DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends \
        "${missing[@]}" >/dev/null
fi

# The locale tests check that numbers keep a full stop under a comma locale.
if [ "$1" = test ] && ! locale -a 2>/dev/null | grep -qi '^de_DE\.utf8$'; then
    "${sudo[@]}" sed -i 's/^# *de_DE.UTF-8 UTF-8/de_DE.UTF-8 UTF-8/' /etc/locale.gen
    "${sudo[@]}" locale-gen >/dev/null
fi
