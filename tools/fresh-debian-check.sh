#!/usr/bin/env bash
# The README's two commands on a fresh Debian: a root made by debootstrap from Debian's own
# packages, a clean clone of this repository's HEAD in it, `make` and `git` installed as the
# README says, then `make run` (judged by its first line, then ended) and `make test`. One line
# per command; the log of a command that failed follows its line. Needs root (debootstrap,
# chroot, mounts).
#   tools/fresh-debian-check.sh [RELEASE [COMMAND ...]]
#   RELEASE: trixie (Debian 13, the default) or bookworm (Debian 12); each COMMAND runs after
#   `make test` in the same root, e.g. `trixie "make test-asan"`
#   tools/fresh-debian-check.sh RELEASE --fetch   only downloads what the two commands install
#   into the kept package cache (CI does it while it builds, so that the check itself waits on
#   no download)
# The fresh root is kept between runs on a machine, as tools/debian-root.sh says.
set -euo pipefail
release="${1:-trixie}"
shift || true
source "$(dirname "$0")/debian-root.sh"

root_make "$release" "$release"
root_open "$release"
# What a booted Debian has and a root made by debootstrap lacks: systemd's seat folder, without
# which GNOME Shell offers no lock screen (the GNOME desktop test locks it).
mkdir -p "$root/run/systemd/seats"
if [ "${1:-}" = --fetch ]; then  # the lists as install-deps.sh gives them to apt, downloaded only
    echo 'APT::Get::Download-Only "true";' >"$root/etc/apt/apt.conf.d/99download-only"
    inside "apt-get update -qq && apt-get install -y -qq make git && bash tools/install-deps.sh test" \
        >"$work/fetch.log" 2>&1 || true  # its locale step fails: nothing was installed
    printf 'debian %s: %s packages in the cache\n' "$release" "$(ls "$cache/$release-archives" | wc -l)"
    exit 0
fi

say() { printf 'debian %s: %s\n' "$release" "$*"; }
failed=0
fail() {
    say "$1: FAILED after $2 s"
    tail -n 60 "$3" | sed 's/^/    /'
    failed=1
}

inside "apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq make git >/dev/null"

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

for command in "make test" "$@"; do
    start=$SECONDS
    log="$(mktemp "$work/command.XXXXXX")"
    if inside "$command" >"$log" 2>&1; then
        passed="$(grep -E -m1 'tests passed' "$log" || true)"
        say "$command: ok, ${passed:+$passed, }$((SECONDS - start)) s"
    else
        fail "$command" $((SECONDS - start)) "$log"
    fi
done
exit "$failed"
