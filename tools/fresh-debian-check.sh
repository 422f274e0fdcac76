#!/usr/bin/env bash
# The README's two commands on a fresh Debian: a root made by debootstrap from Debian's own
# packages, a clean clone of this repository's HEAD in it, `make` installed as the README says,
# then `make run` (judged by its first line, then ended) and `make test`. One line per command;
# the log of a command that failed follows its line. Needs root (debootstrap, chroot, mounts).
#   tools/fresh-debian-check.sh [RELEASE [extra make target ...]]
#   RELEASE: trixie (Debian 13, the default) or bookworm (Debian 12); e.g. `trixie test-asan`
# The fresh root and the packages it downloads are kept in $CORVANE_ROOTS (/var/cache/corvane)
# for the next run on this machine, which starts from a copy of that root and downloads nothing.
# Packages come from the first Debian archive this machine's apt sources name (a local mirror or
# a caching proxy serves the new root too), through apt's own proxy if it has one.
set -euo pipefail
release="${1:-trixie}"
shift || true
cache="${CORVANE_ROOTS:-/var/cache/corvane}"
fresh="$cache/$release"
archives="$cache/$release-archives"
repo="$(git -C "$(dirname "$0")" rev-parse --show-toplevel)"

sources=()
for f in /etc/apt/sources.list /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources; do
    [ -f "$f" ] && sources+=("$f")
done
# One-line "deb [options] URI suite..." and deb822 "URIs: URI...": the first archive named .../debian.
mirror=$(awk '{ sub(/#.*/, ""); sub(/\[[^]]*\]/, "") }
    $1 == "deb" || tolower($1) == "uris:" {
        for (i = 2; i <= ($1 == "deb" ? 2 : NF); i++) if ($i ~ /\/debian\/?$/) { print $i; exit }
    }' "${sources[@]}" </dev/null)
mirror=${mirror:-http://deb.debian.org/debian}
eval "$(apt-config shell http_proxy Acquire::http::Proxy)"
if [ -n "${http_proxy:-}" ]; then
    export http_proxy
fi

mkdir -p "$cache" "$archives"
if [ ! -e "$fresh/.complete" ]; then
    rm -rf "$fresh"
    debootstrap --variant=minbase "$release" "$fresh" "$mirror" >"$cache/$release-debootstrap.log" 2>&1
    touch "$fresh/.complete"
fi

work="$(mktemp -d /var/tmp/corvane-$release.XXXXXX)"
root="$work/root"
mounts=(proc sys dev dev/pts dev/shm var/cache/apt/archives)
end_inside() {  # whatever still runs inside the new root, found by its root directory
    for proc in /proc/[0-9]*; do
        if [ "$(readlink "$proc/root" 2>/dev/null)" = "$root" ]; then
            kill -KILL "${proc#/proc/}" 2>/dev/null || true
        fi
    done
    sleep 1
}
cleanup() {
    set +e  # every step runs, whatever the one before did
    end_inside
    for ((i = ${#mounts[@]} - 1; i >= 0; i--)); do
        umount "$root/${mounts[i]}" 2>/dev/null || umount -l "$root/${mounts[i]}" 2>/dev/null
    done
    # Never delete through a mount that is still there: /dev, /proc and the package cache.
    if grep -q " $work/" /proc/mounts; then
        echo "fresh-debian-check: $work is still mounted; left in place" >&2
    else
        rm -rf --one-file-system "$work"
    fi
}
trap cleanup EXIT
cp -a "$fresh" "$root"
for m in proc sys dev dev/pts dev/shm; do
    mount --bind "/$m" "$root/$m"
done
mount --bind "$archives" "$root/var/cache/apt/archives"
cp /etc/resolv.conf "$root/etc/resolv.conf"
# What a booted Debian has and a root made by debootstrap lacks: systemd's seat folder, without
# which GNOME Shell offers no lock screen (the GNOME desktop test locks it).
mkdir -p "$root/run/systemd/seats"
if [ -n "${http_proxy:-}" ]; then
    echo "Acquire::http::Proxy \"$http_proxy\";" >"$root/etc/apt/apt.conf.d/01proxy"
fi
git clone -q "$repo" "$root/root/corvane"

inside() {  # a login-like shell of the new machine's root, in the clone
    chroot "$root" /usr/bin/env -i HOME=/root LANG=C.UTF-8 TERM=dumb \
        PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
        bash -c "cd /root/corvane && $1"
}
say() { printf 'debian %s: %s\n' "$release" "$*"; }
failed=0
fail() {
    say "$1: FAILED after $2 s"
    tail -n 60 "$3" | sed 's/^/    /'
    failed=1
}

inside "apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq make >/dev/null"

# make run never ends by itself: it counts as working once Corvane printed its permission line.
start=$SECONDS
log="$root/root/run.log"
inside "make run >/root/run.log 2>&1 </dev/null & echo \$! >/root/run.pid"
pid="$(cat "$root/root/run.pid")"  # the root shares this machine's process ids
line=
while [ $((SECONDS - start)) -lt 1800 ] && kill -0 "$pid" 2>/dev/null; do
    line="$(grep -E -m1 '^Notification (granted|denied)$' "$log" || true)"
    [ -n "$line" ] && break
    sleep 2
done
if [ -n "$line" ]; then
    say "make run: ok, Corvane started and printed \"$line\" $((SECONDS - start)) s after the command"
else
    fail "make run" $((SECONDS - start)) "$log"
fi
end_inside  # Corvane, its Xvfb and its session bus

for target in test "$@"; do
    start=$SECONDS
    if inside "make $target" >"$work/$target.log" 2>&1; then
        say "make $target: ok, $(grep -E -m1 'tests passed' "$work/$target.log"), $((SECONDS - start)) s"
    else
        fail "make $target" $((SECONDS - start)) "$work/$target.log"
    fi
done
exit "$failed"
