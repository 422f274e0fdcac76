#!/usr/bin/env bash
# A release build of the last commit and its Debian package, reproducibly: the package's file
# times are the commit's (SOURCE_DATE_EPOCH) and the build's paths stay out of the binary. With
# ARCH it cross-compiles as debhelper's CMake build system does for Debian's own packages
# (Debian's cross compiler and pkg-config for that architecture, named by dpkg-architecture),
# with Qt's build tools of this machine, and runs what it built under qemu-user. The package's
# path is the last line it prints.
#   tools/build-deb.sh BUILD_DIR [ARCH [CMAKE_OPTION ...]]
set -euo pipefail
build="$1"
arch="${2:-}"
shift $(($# < 2 ? $# : 2))
cd "$(dirname "$0")/.."
SOURCE_DATE_EPOCH="$(git log -1 --format=%ct)"
export SOURCE_DATE_EPOCH
cross=()
if [ -n "$arch" ]; then
    eval "$(dpkg-architecture -a"$arch" -s 2>/dev/null)"
    cross=(-DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR="$DEB_HOST_GNU_CPU"
        -DCMAKE_CXX_COMPILER="$DEB_HOST_GNU_TYPE-g++"
        -DPKG_CONFIG_EXECUTABLE="/usr/bin/$DEB_HOST_GNU_TYPE-pkg-config" -DQT_HOST_PATH=/usr
        -DCMAKE_CROSSCOMPILING_EMULATOR="/usr/bin/qemu-$DEB_HOST_GNU_CPU"
        -DCPACK_DEBIAN_PACKAGE_ARCHITECTURE="$DEB_HOST_ARCH")
fi
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCORVANE_BUILD_TESTS=OFF \
    -DCORVANE_BUILD_BENCH=OFF "${cross[@]}" "$@"
cmake --build "$build" -j2
(cd "$build" && cpack -G DEB)
realpath "$build"/corvane_*.deb
