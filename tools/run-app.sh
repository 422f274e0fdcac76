#!/usr/bin/env bash
# Starts Corvane on the user's desktop, or on a virtual display when there is none.
set -euo pipefail
app="$1"
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
    exec "$app"
fi
echo "No display found: running Corvane on a virtual display (Xvfb)."
if [ -z "${DBUS_SESSION_BUS_ADDRESS:-}" ]; then
    exec dbus-run-session -- xvfb-run -a -s "-screen 0 1280x1024x24" "$app"
fi
exec xvfb-run -a -s "-screen 0 1280x1024x24" "$app"
