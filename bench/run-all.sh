#!/usr/bin/env bash
# Runs every benchmark binary of a build tree and prints its figures.
set -euo pipefail
build="${1:-build/release}"
for b in "$build"/bench/bench_*; do
    [ -x "$b" ] || continue
    echo "== $(basename "$b")"
    "$b"
done
