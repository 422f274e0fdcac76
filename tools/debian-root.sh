# shellcheck shell=bash
# Debian roots made by debootstrap, for checks that need a machine of their own. Sourced by
# tools/fresh-debian-check.sh and tools/arm64-check.sh; needs root (debootstrap, chroot, mounts).
# Roots and the packages they download are kept in $CORVANE_ROOTS (/var/cache/corvane) for the
# next run on this machine; each run works on a copy of its own, removed when the script ends.
# Packages come from the first Debian archive this machine's apt sources name (a local mirror or
# a caching proxy serves the roots too), through apt's own proxy if it has one. Where the sources
# name none, debootstrap chooses its own default archive.
cache="${CORVANE_ROOTS:-/var/cache/corvane}"
repo="$(git -C "$(dirname "${BASH_SOURCE[0]}")" rev-parse --show-toplevel)"

sources=()
for f in /etc/apt/sources.list /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources; do
    [ -f "$f" ] && sources+=("$f")
done
# One-line "deb [options] URI suite..." and deb822 "URIs: URI...": the first archive named .../debian.
mirror=$(awk '{ sub(/#.*/, ""); sub(/\[[^]]*\]/, "") }
    $1 == "deb" || tolower($1) == "uris:" {
        for (i = 2; i <= ($1 == "deb" ? 2 : NF); i++) if ($i ~ /\/debian\/?$/) { print $i; exit }
    }' "${sources[@]}" </dev/null)
eval "$(apt-config shell http_proxy Acquire::http::Proxy)"
if [ -n "${http_proxy:-}" ]; then
    export http_proxy
fi
mounts=(proc sys dev dev/pts dev/shm var/cache/apt/archives)

# root_make NAME RELEASE [COMMAND]: $cache/NAME, a minimal RELEASE made once. With COMMAND, a
# copy of that root in which COMMAND ran (as `inside` runs it), made again when COMMAND changes.
root_make() {
    local name="$1" release="$2" command="${3:-}"
    mkdir -p "$cache" "$cache/$release-archives"
    if [ ! -e "$cache/$release/.complete" ]; then
        rm -rf "${cache:?}/$release"
        debootstrap --variant=minbase "$release" "$cache/$release" ${mirror:+"$mirror"} \
            >"$cache/$release-debootstrap.log" 2>&1
        touch "$cache/$release/.complete"
    fi
    [ -n "$command" ] || return 0
    if [ "$(cat "$cache/$name/.complete" 2>/dev/null)" != "$command" ]; then
        rm -rf "${cache:?}/$name"
        (root_open "$release" && inside "$command" >"$cache/$name.log" 2>&1 &&
            root_unmount && rm -f "$root/.complete" && mv "$root" "$cache/$name" &&
            printf '%s' "$command" >"$cache/$name/.complete") || return 1
    fi
}

# root_open NAME: a copy of $cache/NAME in a new $work/root, with this machine's /proc, /sys and
# /dev, the release's package cache and a clean clone of this repository's HEAD in /root/corvane.
# Removed again when the shell exits.
root_open() {
    local release="${1%%-*}"
    work="$(mktemp -d "/var/tmp/corvane-$1.XXXXXX")"
    root="$work/root"
    trap root_close EXIT
    cp -a "$cache/$1" "$root"
    for m in proc sys dev dev/pts dev/shm; do
        mount --bind "/$m" "$root/$m"
    done
    mount --bind "$cache/$release-archives" "$root/var/cache/apt/archives"
    cp /etc/resolv.conf "$root/etc/resolv.conf"
    if [ -n "${http_proxy:-}" ]; then
        echo "Acquire::http::Proxy \"$http_proxy\";" >"$root/etc/apt/apt.conf.d/01proxy"
    fi
    rm -rf "$root/root/corvane"
    git clone -q "$repo" "$root/root/corvane"
}

inside() {  # a login-like shell of the root, in the clone
    chroot "$root" /usr/bin/env -i HOME=/root LANG=C.UTF-8 TERM=dumb \
        PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
        bash -c "cd /root/corvane && $1"
}

end_inside() {  # whatever still runs inside the root, found by its root directory
    for proc in /proc/[0-9]*; do
        if [ "$(readlink "$proc/root" 2>/dev/null)" = "$root" ]; then
            kill -KILL "${proc#/proc/}" 2>/dev/null || true
        fi
    done
    sleep 1
}

root_unmount() {
    end_inside
    for ((i = ${#mounts[@]} - 1; i >= 0; i--)); do
        umount "$root/${mounts[i]}" 2>/dev/null || umount -l "$root/${mounts[i]}" 2>/dev/null
    done
    rm -rf "$root/root/corvane"
    ! grep -q " $work/" /proc/mounts
}

root_close() {
    set +e  # every step runs, whatever the one before did
    # Never delete through a mount that is still there: /dev, /proc and the package cache.
    if root_unmount; then
        rm -rf --one-file-system "$work"
    else
        echo "$0: $work is still mounted; left in place" >&2
    fi
}
