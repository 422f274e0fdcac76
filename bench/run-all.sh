#!/usr/bin/env bash
# Runs every benchmark program of a build tree and prints its figures (see bench/README.md).
set -euo pipefail
build="${1:-build/release}"
# Without a display the benchmarks run on a virtual one: the tray item needs a real platform.
display=()
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    display=(xvfb-run -a)
fi
for b in "$build"/bench/bench_*; do
    [ -f "$b" ] && [ -x "$b" ] || continue
    echo "== $(basename "$b")"
    "${display[@]}" "$b"
done
