#!/usr/bin/env bash
# Corvane for 64-bit Arm, built as Debian builds its own packages for another architecture: in a
# Debian 13 root of its own (tools/debian-root.sh) with arm64 added as a foreign architecture
# there, never on this machine; Debian's cross toolchain (crossbuild-essential-arm64), the :arm64
# Qt development packages, and qemu-user to run what was built. Needs root.
#   tools/arm64-check.sh deb  the package of the last commit, copied to build/arm64/; its path
#   tools/arm64-check.sh root the root alone, made if missing (CI makes it while it builds)
#   tools/arm64-check.sh      (CI) one cross build with the tests, which makes the package; the
#       unit suite and the package's checks under qemu-user (the desktops stay on amd64); the
#       program started (desktop_test.py started); the package made again elsewhere, compared.
# One line per step with its time; the end of the log of a step that failed follows its line.
set -euo pipefail
mode="${1:-check}"
source "$(dirname "$0")/debian-root.sh"

# Beside the toolchain and the arm64 libraries: this machine's Qt tools (moc), and what the
# tests use: a display, buses, the screen readers' bus with its Python bindings, gdbus,
# nss_wrapper, the German locale and the package's checks.
packages=(crossbuild-essential-arm64 pkgconf:arm64 cmake ninja-build git ca-certificates
    dpkg-dev file
    qt6-base-dev:arm64 qt6-charts-dev:arm64 libqt6opengl6-dev:arm64 libxcb1-dev:arm64
    libpng-dev:arm64 qt6-qpa-plugins:arm64 qt6-base-dev-tools qemu-user
    libgtest-dev:arm64 libnss-wrapper:arm64
    xvfb xauth x11-utils dbus at-spi2-core python3-pyatspi python3-gi libglib2.0-bin
    fonts-dejavu-core locales lintian appstream desktop-file-utils)
provision="dpkg --add-architecture arm64 && apt-get update -qq &&
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends ${packages[*]} &&
    sed -i 's/^# *de_DE.UTF-8 UTF-8/de_DE.UTF-8 UTF-8/' /etc/locale.gen && locale-gen"

say() { printf 'arm64: %s\n' "$*"; }
failed() {
    say "$1: FAILED after $2 s"
    tail -n 60 "$3" | sed 's/^/    /'
    exit 1
}
step() {  # step NAME COMMAND: COMMAND run in the root's clone, timed
    local start=$SECONDS log passed
    log="$(mktemp "$work/step.XXXXXX")"
    inside "$2" >"$log" 2>&1 || failed "$1" $((SECONDS - start)) "$log"
    passed="$(grep -m1 -o '[0-9]*% tests passed.*' "$log" || true)"
    say "$1: ok, $((SECONDS - start)) s${passed:+, $passed}"
}

start=$SECONDS
root_make trixie-arm64 trixie "$provision" ||
    failed "the root" $((SECONDS - start)) "$cache/trixie-arm64.log"
say "the root: ok, $((SECONDS - start)) s"
[ "$mode" != root ] || exit 0
root_open trixie-arm64
if [ "$mode" = deb ]; then
    step "cross build" "bash tools/build-deb.sh build/arm64 arm64"
    mkdir -p "$repo/build/arm64"
    cp "$root"/root/corvane/build/arm64/corvane_*_arm64.deb "$repo/build/arm64/"
    ls "$repo"/build/arm64/corvane_*_arm64.deb
    exit 0
fi
step "cross build with the tests" \
    "bash tools/build-deb.sh build/arm64 arm64 -DCORVANE_BUILD_TESTS=ON"
# Less the death test that executes the test program anew: under qemu-user that needs a binfmt
# handler, which would be this machine's, not the root's.
# Displays from :199 up: X servers of other roots share the abstract socket names (CI runs the
# Debian 13 check beside this one, from :99 up).
step "unit suite and package checks under qemu-user" "cd build/arm64 && dbus-run-session --
    xvfb-run -a -n 199 ctest -LE 'desktop|start' -E WhileTheDesktopStarts -j2 --output-on-failure"
step "start under qemu-user" "cd build/arm64 && ctest -L start --output-on-failure"
step "the same package from another clone" \
    "bash tools/deb-again.sh build/arm64/corvane_*_arm64.deb arm64"
