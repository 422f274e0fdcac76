#!/usr/bin/env bash
# Idle cost of Corvane with a StatusNotifier panel present (bench/idle/panel_host.py), first with
# its window shown, then closed to the tray: CPU in % of one core and wakes per 2 s tick over
# IDLE_SECONDS (default 60) each, after a 5 s settle, and RSS at the end of each.
# Usage: bench/idle/tray.sh CORVANE...   (several builds are measured one after the other)
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
idle_seconds="${IDLE_SECONDS:-60}"
if [ "${CORVANE_TRAY_INSIDE:-}" != 1 ]; then
    export CORVANE_TRAY_INSIDE=1
    exec xvfb-run -a -s "-screen 0 1280x1024x24" dbus-run-session -- "$0" "$@"
fi

threads() {  # "<cpu ns> <context switches>" of all threads of a pid
    local ns=0 switches=0 task
    for task in /proc/"$1"/task/*; do
        ns=$((ns + $(cut -d' ' -f1 "$task/schedstat")))
        switches=$((switches + $(awk '/ctxt_switches/ { s += $2 } END { print s }' "$task/status")))
    done
    echo "$ns $switches"
}

measure() {  # one line of figures for a pid left alone
    local before after
    read -r -a before <<<"$(threads "$1")"
    sleep "$idle_seconds"
    read -r -a after <<<"$(threads "$1")"
    awk -v ns=$((after[0] - before[0])) -v sw=$((after[1] - before[1])) -v s="$idle_seconds" \
        -v rss="$(awk '$1 == "Rss:" { print $2 }' "/proc/$1/smaps_rollup")" \
        'BEGIN { printf "%10.4f %12.1f %10d", ns / 1e9 / s * 100, sw / (s / 2), rss }'
}

/usr/bin/python3 "$here/panel_host.py" >/dev/null &
host=$!
sleep 1
printf '%-40s %-8s %10s %12s %10s\n' build window "CPU %" "wakes/tick" "RSS kB"
for app in "$@"; do
    "$app" >/dev/null 2>&1 &
    pid=$!
    sleep 5
    printf '%-40s %-8s %s\n' "$app" shown "$(measure "$pid")"
    # Closed as a window manager closes it (WM_DELETE_WINDOW): Corvane stays in the tray.
    /usr/bin/python3 - "$pid" <<'PY'
import sys
from Xlib import X, display, protocol
x = display.Display()
def windows(w):
    return [w] + [c for child in w.query_tree().children for c in windows(child)]
pid_atom = x.intern_atom("_NET_WM_PID")
for w in windows(x.screen().root):
    p = w.get_full_property(pid_atom, X.AnyPropertyType)
    if p and p.value[0] == int(sys.argv[1]) and w.get_wm_name() == "Corvane":
        w.send_event(protocol.event.ClientMessage(window=w, client_type=x.intern_atom("WM_PROTOCOLS"), data=(
            32, [x.intern_atom("WM_DELETE_WINDOW"), X.CurrentTime, 0, 0, 0])))
x.flush()
PY
    sleep 5
    kill -0 "$pid" || { echo "$app ended when its window closed: no tray item" >&2; exit 1; }
    printf '%-40s %-8s %s\n' "$app" tray "$(measure "$pid")"
    kill "$pid"
    wait "$pid" 2>/dev/null || true
done
kill "$host"
