#!/usr/bin/env bash
# Starts Corvane on the user's desktop, or, on a machine without a display, on a virtual one
# (Xvfb) with a session bus of its own, so that it runs the same way there. Ctrl+C ends it.
set -euo pipefail
app="${1:?usage: run-app.sh path/to/corvane}"
if [ ! -x "$app" ]; then
    echo "run-app.sh: $app is not built" >&2
    exit 1
fi
if [ -n "${WAYLAND_DISPLAY:-}" ]; then
    # Natively on Wayland (qt6-wayland), through XWayland only when the plugin is missing.
    QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-wayland;xcb}" exec "$app"
fi
if [ -n "${DISPLAY:-}" ]; then
    exec "$app"
fi
echo "No display found: running Corvane on a virtual display (Xvfb); Ctrl+C ends it."
if [ -z "${DBUS_SESSION_BUS_ADDRESS:-}" ]; then
    # The bus inside the display: a notification daemon it starts can then draw there.
    exec xvfb-run -a -s "-screen 0 1280x1024x24" dbus-run-session -- "$app"
fi
exec xvfb-run -a -s "-screen 0 1280x1024x24" "$app"
