#!/bin/sh
# The Debian package as Debian's own checks and software centres see it:
#   check.sh BUILD_DIR   builds corvane_<v>_<arch>.deb from BUILD_DIR and checks it.
# None of those checks that a name one file gives resolves to a file of the package: the table
# tests/cases/package-names.txt lists each one and where it must resolve.
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
sed -e '/^#/d' -e '/^$/d' -e 's/ *| */|/g' "$(dirname "$0")/../cases/package-names.txt" |
    while IFS='|' read -r file key where; do
        case "$file" in
        *.desktop) names=$(sed -n "s/^$key=\([^ ]*\).*/\1/p" "$out/root/$file") ;;
        *.xml) names=$(sed -n "s:.*<$key\( [^>]*\)\{0,1\}>\([^<]*\)</$key>.*:\2:p" "$out/root/$file") ;;
        *) names=$(grep -aoE "$key" "$out/root/$file" | sort -u) ;;
        esac
        [ -n "$names" ] || { echo "package: $file names nothing by $key"; exit 1; }
        for name in $names; do
            set -- "$out"/root/$(echo "$where" | sed "s|{}|$name|g")
            [ -e "$1" ] || { echo "package: $file: $key $name is no $where"; exit 1; }
        done
    done
