#!/bin/sh
# The Debian package as Debian's own checks and software centres see it:
#   check.sh BUILD_DIR   builds corvane_<v>_<arch>.deb from BUILD_DIR and checks it.
# bogus-mail-host stands until the project has a real mail address; AppStream 1.0 also wants a
# homepage, which the project does not have yet either (0.16 knows neither that issue nor the
# override). lintian's own AppStream check is the one below, minus the homepage.
set -eu
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
cpack -G DEB --config "$1/CPackConfig.cmake" -B "$out" >/dev/null
lintian --fail-on none "$out"/*.deb >"$out/lintian" 2>&1
if grep -E '^[EW]: ' "$out/lintian" | grep -vE ': (bogus-mail-host(-in-debian-changelog)?|appstream-metadata-validation-failed) '; then
    exit 1
fi
dpkg-deb -x "$out"/*.deb "$out/root"
metainfo="$out"/root/usr/share/metainfo/io.github.corvane.Corvane.metainfo.xml
appstreamcli validate --no-net --pedantic --override=url-homepage-missing=info "$metainfo" ||
    appstreamcli validate --no-net --pedantic "$metainfo"
desktop-file-validate "$out"/root/usr/share/applications/*.desktop
