#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing Corvane need, skipping
# those already present. Uses sudo when not run as root.
set -euo pipefail

packages=(
    g++ cmake ninja-build pkg-config
    qt6-base-dev qt6-charts-dev libqt6opengl6-dev libxcb1-dev
    qt6-wayland
    libgtest-dev libgmock-dev libbenchmark-dev
    xvfb xauth dbus fonts-dejavu-core locales
    clang libclang-rt-14-dev
    # The desktops the end-to-end tests run the application on: a Wayland compositor with a
    # panel, an X11 tray, a notification service, screenshots and the screen readers' bus.
    sway waybar grim trayer x11-utils xdotool python3-xlib dunst at-spi2-core
    python3-pyatspi python3-gi
    # A passwd file of the tests' own, for the home lookup's long entries.
    libnss-wrapper
    # The Debian package and the checks it passes.
    dpkg-dev lintian appstream desktop-file-utils man-db
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done

if ((${#missing[@]})); then
    sudo=""
    if [ "$(id -u)" -ne 0 ]; then
        sudo="sudo"
    fi
    echo "Installing: ${missing[*]}"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends \
        "${missing[@]}" >/dev/null
fi

# The locale tests check that numbers keep a full stop under a comma locale.
if ! locale -a 2>/dev/null | grep -qi '^de_DE\.utf8$'; then
    sudo=""
    if [ "$(id -u)" -ne 0 ]; then
        sudo="sudo"
    fi
    $sudo sed -i 's/^# *de_DE.UTF-8 UTF-8/de_DE.UTF-8 UTF-8/' /etc/locale.gen
    $sudo locale-gen >/dev/null
fi
