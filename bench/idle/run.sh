#!/usr/bin/env bash
# Idle cost of Corvane next to a bare Qt window (six labels and a 30-point chart updated every
# 2 s), each alone on a virtual display and a session bus of its own:
#   idle CPU in % of one core over IDLE_SECONDS (default 60) after a 5 s settle,
#   RSS and PSS at the end (/proc/<pid>/smaps_rollup),
#   time from launch to the first painted frame (median of FRAME_RUNS, default 5).
# Usage: bench/idle/run.sh [release build dir]   (builds it with the release preset if absent)
set -euo pipefail
cd "$(dirname "$0")/../.."
build="${1:-build/release}"
idle_seconds="${IDLE_SECONDS:-60}"
frame_runs="${FRAME_RUNS:-5}"

if [ "${CORVANE_IDLE_INSIDE:-}" != 1 ]; then
    if [ ! -x "$build/src/app/corvane" ] || [ ! -x "$build/bench/idle/idle_bare_window" ]; then
        cmake --preset release >/dev/null
        cmake --build --preset release
    fi
    export CORVANE_IDLE_INSIDE=1
    exec xvfb-run -a -s "-screen 0 1280x1024x24" dbus-run-session -- "$0" "$build"
fi

cpu_ns() {  # CPU time of a pid's threads in ns (schedstat counts in ns, stat in 10 ms ticks)
    if [ -r "/proc/$1/schedstat" ]; then
        cat /proc/"$1"/task/*/schedstat | awk '{ ns += $1 } END { printf "%d", ns }'
    else
        awk -v hz="$(getconf CLK_TCK)" '{ printf "%d", ($14 + $15) * 1e9 / hz }' "/proc/$1/stat"
    fi
}

rollup_kb() {  # Rss or Pss of a pid, in kB
    awk -v key="$2:" '$1 == key { print $2 }' "/proc/$1/smaps_rollup"
}

first_frame_ms() {  # median launch-to-first-frame of a program that prints "first-frame <ns>"
    local program="$1" out times=()
    out=$(mktemp)
    for _ in $(seq "$frame_runs"); do
        local start pid frame
        start=$(date +%s%N)
        "$program" >"$out" 2>/dev/null &
        pid=$!
        for _ in $(seq 200); do
            frame=$(awk '$1 == "first-frame" { print $2 }' "$out")
            [ -n "$frame" ] && break
            sleep 0.05
        done
        kill "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
        times+=("$(((frame - start) / 1000))")
    done
    rm -f "$out"
    printf '%s\n' "${times[@]}" | sort -n | awk '{ v[NR] = $1 } END { printf "%.1f", v[int((NR + 1) / 2)] / 1000 }'
}

idle_figures() {  # "<cpu %> <rss kB> <pss kB>" of a program left alone
    local program="$1" pid before after
    "$program" >/dev/null 2>&1 &
    pid=$!
    sleep 5
    before=$(cpu_ns "$pid")
    sleep "$idle_seconds"
    after=$(cpu_ns "$pid")
    local rss pss
    rss=$(rollup_kb "$pid" Rss)
    pss=$(rollup_kb "$pid" Pss)
    kill "$pid"
    wait "$pid" 2>/dev/null || true
    awk -v d="$((after - before))" -v s="$idle_seconds" -v rss="$rss" -v pss="$pss" \
        'BEGIN { printf "%.4f %d %d", d / 1e9 / s * 100, rss, pss }'
}

bare="$build/bench/idle/idle_bare_window"
corvane="$build/src/app/corvane"
echo "Measuring first frames ($frame_runs launches each)..."
bare_frame=$(first_frame_ms "$bare")
corvane_frame=$(first_frame_ms "$build/bench/idle/idle_corvane_first_frame")
echo "Measuring idle cost (${idle_seconds} s each)..."
read -r bare_cpu bare_rss bare_pss <<<"$(idle_figures "$bare")"
read -r corvane_cpu corvane_rss corvane_pss <<<"$(idle_figures "$corvane")"

awk -v bc="$bare_cpu" -v cc="$corvane_cpu" -v br="$bare_rss" -v cr="$corvane_rss" \
    -v bp="$bare_pss" -v cp="$corvane_pss" -v bf="$bare_frame" -v cf="$corvane_frame" 'BEGIN {
    ratio = "%-26s %12s %12s %8s %8s\n"
    printf ratio, "", "bare window", "Corvane", "ratio", "target"
    printf "%-26s %12.4f %12.4f %8s %8s\n", "idle CPU (% of one core)", bc, cc, (bc > 0 ? sprintf("%.2f", cc / bc) : "n/a"), "1.10"
    printf "%-26s %12d %12d %8.2f %8s\n", "RSS (kB)", br, cr, cr / br, "1.15"
    printf "%-26s %12d %12d %8.2f %8s\n", "PSS (kB)", bp, cp, cp / bp, "-"
    printf "%-26s %12.1f %12.1f %8.2f %8s\n", "first frame (ms)", bf, cf, cf / bf, "1.25"
}'
