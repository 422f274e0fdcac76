#!/usr/bin/env bash
# Runs every benchmark program of a build tree and prints its figures (see bench/README.md).
set -euo pipefail
build="${1:-build/release}"
# The dashboard benchmark renders offscreen unless there is a display.
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    export QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-offscreen}"
fi
for b in "$build"/bench/bench_*; do
    [ -f "$b" ] && [ -x "$b" ] || continue
    echo "== $(basename "$b")"
    "$b"
done
