#!/usr/bin/env bash
# Installs the Debian packages one kind of work needs, on Debian 12 or 13 alike. When all are
# present it does nothing and asks for no privileges; otherwise it updates the package lists and
# lets apt choose among alternatives (`apt-get satisfy`), with sudo when not run as root. It reads
# only dpkg's status, never apt's translated output. The lists below are the only ones.
#   install-deps.sh run    building and running Corvane (make run)
#   install-deps.sh deb    ... and making its Debian package (make deb)
#   install-deps.sh test   ... and the whole test suite and the benchmarks (make test, make bench)
#   install-deps.sh fuzz   ... and clang with libFuzzer (fuzz/README.md)
#   install-deps.sh ci     what CI needs beyond `make test`: the fresh Debian root's debootstrap
# Each entry is a dependency as Debian writes one: "a | b (<< 2)" takes whichever apt offers first.
set -euo pipefail

run=(
    g++ make cmake ninja-build pkg-config
    qt6-base-dev qt6-charts-dev libqt6opengl6-dev libxcb1-dev libpng-dev
    # A native window on Wayland; a virtual display and a session bus where there is no desktop.
    qt6-wayland fonts-dejavu-core xvfb xauth dbus
    # Qt's SVG icon engine, which draws the installed icon on the window: in libqt6svg6 up to Qt
    # 6.5 (Debian 12), in qt6-svg-plugins since (Debian 13). The package depends on the same.
    "qt6-svg-plugins | libqt6svg6 (<< 6.6)"
)
deb=(dpkg-dev)
test=(
    libgtest-dev libgmock-dev libbenchmark-dev locales
    # The desktops the end-to-end tests run the application on: a Wayland compositor with a
    # panel, an X11 tray, a notification service, screenshots and the screen readers' bus; and
    # GNOME Shell with its AppIndicator extension, the panel that draws the item's label.
    sway waybar grim trayer x11-utils xdotool python3-xlib dunst at-spi2-core
    python3-pyatspi python3-gi libglib2.0-bin gnome-shell gnome-shell-extension-appindicator gjs
    # A passwd file of the tests' own, for the home lookup's long entries.
    libnss-wrapper
    # The checks the Debian package passes.
    lintian appstream desktop-file-utils man-db
)
# Packages whose name changed between releases: the first one this machine's apt offers.
fuzz=(clang "libclang-rt-dev | libclang-rt-14-dev")
ci=(debootstrap)

case "${1:-}" in
    run) wanted=("${run[@]}") ;;
    deb) wanted=("${run[@]}" "${deb[@]}") ;;
    test) wanted=("${run[@]}" "${deb[@]}" "${test[@]}") ;;
    fuzz) wanted=("${run[@]}" "${fuzz[@]}") ;;
    ci) wanted=("${ci[@]}") ;;
    *) echo "usage: install-deps.sh run|deb|test|fuzz|ci" >&2; exit 2 ;;
esac

sudo=()
if [ "$(id -u)" -ne 0 ]; then
    sudo=(sudo)
fi
installed() {  # any of the alternatives "name" or "name (op version)", by dpkg's untranslated status
    local alternative name op version status
    local -a alternatives
    IFS='|' read -ra alternatives <<<"$1"
    for alternative in "${alternatives[@]}"; do
        read -r name op version <<<"${alternative//[()]/ }"
        status=$(dpkg-query -W -f='${Status},${Version}' "$name" 2>/dev/null) || status=
        if [[ "$status" != "install ok installed,"* ]]; then
            [[ -z "$op" && "$provided" == *" $name "* ]] && return 0
            continue
        fi
        # A version that does not fit leaves this branch to apt: Debian 13's libqt6svg6 lacks the engine.
        [ -z "$op" ] || dpkg --compare-versions "${status#*,}" "$op" "$version" && return 0
    done
    return 1
}

# Names that only an installed package provides: on Debian 13, qt6-base-dev provides
# libqt6opengl6-dev, which is no package of its own there.
provided=" $(dpkg-query -W -f='${Status}\t${Provides}\n' 2>/dev/null | awk -F'\t' '
    $1 == "install ok installed" { gsub(/ \([^)]*\)|,/, "", $2); printf "%s ", $2 }')"
missing=()
for entry in "${wanted[@]}"; do
    installed "$entry" || missing+=("$entry")
done
if ((${#missing[@]})); then
    echo "Installing: ${missing[*]}"
    "${sudo[@]}" apt-get update -qq
    DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get satisfy -y -qq --no-install-recommends \
        -o DPkg::Lock::Timeout=600 \
        "${missing[@]}" >/dev/null
fi

# The locale tests check that numbers keep a full stop under a comma locale.
if [ "$1" = test ] && ! locale -a 2>/dev/null | grep -qi '^de_DE\.utf8$'; then
    "${sudo[@]}" sed -i 's/^# *de_DE.UTF-8 UTF-8/de_DE.UTF-8 UTF-8/' /etc/locale.gen
    "${sudo[@]}" locale-gen >/dev/null
fi
