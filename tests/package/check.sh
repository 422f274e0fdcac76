#!/bin/sh
# The Debian package as Debian's own checks and software centres see it:
#   check.sh BUILD_DIR   builds corvane_<v>_<arch>.deb from BUILD_DIR and checks it.
# bogus-mail-host stands until the project has a real mail address.
set -eu
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
cpack -G DEB --config "$1/CPackConfig.cmake" -B "$out" >/dev/null
lintian --fail-on error,warning --suppress-tags bogus-mail-host,bogus-mail-host-in-debian-changelog \
    "$out"/*.deb
dpkg-deb -x "$out"/*.deb "$out/root"
appstreamcli validate --no-net --pedantic "$out"/root/usr/share/metainfo/*.metainfo.xml
desktop-file-validate "$out"/root/usr/share/applications/*.desktop
