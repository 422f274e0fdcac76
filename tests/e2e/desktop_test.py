#!/usr/bin/python3
"""The built application as a user meets it, on a desktop of its own: a session bus that starts
no service by itself, a display, real panels and a real notification service, and the
accessibility bus a screen reader reads. As root, everything runs as the user nobody (sway
refuses root). Each step says what it proves. A failure names the step and keeps the desktop's
folder, whose path it prints: bus.log (all traffic on the bus), tray.ppm (the tray area judged
last), screen.png (at the failure), each program's output; the steps are in ctest's log.

    desktop_test.py wayland APP FIXTURE   headless sway, waybar started after the app, dunst
    desktop_test.py x11 APP FIXTURE       Xvfb, a notification service that hangs, trayer later
    desktop_test.py gnome APP FIXTURE     headless GNOME Shell with its AppIndicator extension (gnome.py)
    desktop_test.py started APP FIXTURE   Xvfb and a stand-in tray watcher: the program as built starts
APP is the test build (corvane-test-app) that reads /proc and /sys below a copy of FIXTURE, or for
`started` the program itself, run through $CORVANE_EMULATOR when that names one (qemu-user for a
cross build). The names the desktop knows the app by come from the desktop entry in packaging/."""
import glob, json, os, re, shutil, signal, subprocess, sys, tempfile, threading, time
from gi.repository import Gio, GLib

HERE = os.path.dirname(os.path.abspath(__file__))
ITEM, MENU = "org.kde.StatusNotifierItem", "com.canonical.dbusmenu"
NOTIFICATIONS = "org.freedesktop.Notifications"


def wait_for(what, check, timeout=10.0, shown=lambda: ""):
    """check's first true answer within timeout seconds; the wait's length goes into the steps."""
    started = time.monotonic()
    while not (result := check()):
        assert time.monotonic() < started + timeout, f"{what}: not within {timeout} s {shown()}"
        time.sleep(0.05)
    print(f"   {what}: {time.monotonic() - started:.2f} s")
    return result


def ended(app, timeout=30):  # with status 0 and no sanitizer report
    status, errors = app.wait(timeout), text(app.errors)
    assert status == 0 and not re.search(r"ERROR: \w+Sanitizer|runtime error:", errors), (status, errors)


def run(*command):
    return subprocess.run(command, capture_output=True, text=True).stdout


def text(file):
    return file.seek(0) or file.read()


class Desktop:
    """The bus, the accessibility bus, the programs started here, and the machine the app reads."""

    def __init__(self, home, binary, fixture):
        self.home, self.binary, self.root = home, binary, f"{home}/machine"
        entry, = glob.glob(f"{home}/*.desktop")
        self.id = os.path.basename(entry).removesuffix(".desktop")
        self.wm_class = re.search(r"^StartupWMClass=(.*)$", open(entry).read(), re.M)[1]
        shutil.copytree(fixture, self.root)
        self.set_cpu(25)
        os.environ.update(XDG_RUNTIME_DIR=home, HOME=home, NO_AT_BRIDGE="1")

    def begin(self):
        """The session bus with a monitor that logs its traffic, and the accessibility bus."""
        # dbus-daemon prints its address once it listens; its socket file exists a moment earlier.
        daemon = self.start("dbus-daemon", f"--config-file={HERE}/bus.conf", f"--address=unix:path={self.home}/bus",
                            "--nofork", "--print-address", stdout=subprocess.PIPE)
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = daemon.stdout.readline().decode().strip()
        assert os.environ["DBUS_SESSION_BUS_ADDRESS"], "the session bus did not start"
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        self.traffic = open(f"{self.home}/bus.log", "w+")
        self.start("dbus-monitor", stdout=self.traffic)
        wait_for("the bus monitor", lambda: "member=NameLost" in text(self.traffic))  # it monitors from then on
        self.start("/usr/libexec/at-spi-bus-launcher", "--launch-immediately")
        wait_for("the accessibility bus", lambda: self.has_owner("org.a11y.Bus"))

    def start(self, *command, stdout=subprocess.DEVNULL, **env):
        errors = open(f"{self.home}/{os.path.basename(command[0])}.log", "a")
        return subprocess.Popen(command, env={**os.environ, **env}, stdout=stdout, stderr=errors)

    def launch(self, platform, name="app", **env):
        out, errors = (open(f"{self.home}/{name}.{kind}", "w+") for kind in ("out", "err"))
        emulator = os.environ.get("CORVANE_EMULATOR", "").split(";")
        app = subprocess.Popen([*filter(None, emulator), self.binary, "--root", self.root], stdout=out, stderr=errors,
                               env={**os.environ, "QT_QPA_PLATFORM": platform, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                                    "LSAN_OPTIONS": f"suppressions={HERE}/lsan.supp:fast_unwind_on_malloc=0", **env})
        app.out, app.errors = out, errors
        return app

    def launch_again(self, platform, **env):  # its exit status, standard output and error
        app = self.launch(platform, "again", **env)
        return app.wait(20), text(app.out), text(app.errors)

    def set_cpu(self, percent):
        with open(f"{self.root}/proc/stat", "w") as stat:
            stat.write(f"cpu  {percent * 10} 0 0 {1000 - percent * 10}\n")

    def call(self, service, path, interface, method, signature=None, *args):
        arguments = GLib.Variant(signature, args) if signature else None
        return self.bus.call_sync(service, path, interface, method, arguments, None, 0, 5000, None).unpack()

    def prop(self, service, path, interface, name):
        return self.call(service, path, "org.freedesktop.DBus.Properties", "Get", "(ss)", interface, name)[0]

    def has_owner(self, name):
        return self.ask_bus("NameHasOwner", "(s)", name)[0]

    def ask_bus(self, method, signature=None, *args):
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, signature, *args)

    def items(self):
        try:
            return self.prop("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
                             "org.kde.StatusNotifierWatcher", "RegisteredStatusNotifierItems")
        except GLib.Error:  # no panel, or one going away
            return []

    def amber_glyph(self):
        """Whether the right end of the panel, where waybar draws its tray, shows the amber glyph."""
        subprocess.run(["grim", "-t", "ppm", "-g", "900,0 124x24", f"{self.home}/tray.ppm"], check=True)
        with open(f"{self.home}/tray.ppm", "rb") as ppm:
            return amber(ppm.read()[-124 * 24 * 3:])


def amber(pixels, step=3):
    """Whether an image's pixels (RGB bytes, or step bytes a pixel) show the glyph's amber."""
    return any(r > 200 and 120 < g < 220 and b < 80 for r, g, b in (pixels[i:i + 3] for i in range(0, len(pixels), step)))


def screen_reader(desktop):
    """The window, each row's value by its label, and the chart, as AT-SPI presents them."""
    import pyatspi

    def application():  # asked afresh: what libatspi cached may predate the window
        desktop = pyatspi.Registry.getDesktop(0)
        desktop.clearCache()
        apps = [desktop.getChildAtIndex(i) for i in range(desktop.childCount)]
        return next((a for a in apps if a and a.name == "Corvane" and (a.clearCache() or a.childCount)), None)

    window = wait_for("the application on the accessibility bus", application, 20,
                      shown=lambda: f"(Corvane's standard error: {text(desktop.app.errors)!r})").getChildAtIndex(0)
    nodes = list(pyatspi.utils.findAllDescendants(window, lambda node: True))
    values = {relation.getTarget(0).name: node for node in nodes for relation in node.getRelationSet()
              if relation.getRelationType() == pyatspi.RELATION_LABELLED_BY}
    charts = [node for node in nodes if node.getRole() == pyatspi.ROLE_CHART]
    assert len(charts) == 1 and len(values) == 6, ([n.getRoleName() for n in nodes], list(values))
    return window, values, charts[0]


def sway_windows(node=None):
    """The windows sway shows (the panel and the alerts are layer surfaces, not windows)."""
    node = node or json.loads(run("swaymsg", "-t", "get_tree"))
    return [node] * ("pid" in node and node["type"] != "output") + [
        window for child in node["nodes"] + node["floating_nodes"] for window in sway_windows(child)]


def wayland(desktop):
    os.environ["SWAYSOCK"] = f"{desktop.home}/sway.sock"  # sway takes this path when it is free
    desktop.start("sway", "-c", f"{HERE}/sway.conf", WLR_BACKENDS="headless", WLR_LIBINPUT_NO_DEVICES="1",
                  WLR_RENDERER="pixman")
    # sway answers on its socket after it listens on the Wayland one; a panel needs the output.
    wait_for("sway with its output", lambda: "HEADLESS-1" in run("swaymsg", "-t", "get_outputs"))
    os.environ["WAYLAND_DISPLAY"] = next(f for f in os.listdir(desktop.home) if re.fullmatch(r"wayland-\d+", f))
    dunst = desktop.start("dunst")
    wait_for("dunst", lambda: desktop.has_owner(NOTIFICATIONS))
    desktop.app = desktop.launch("wayland")

    print("== the permission line; the window under the desktop entry's app id")
    wait_for("Notification granted", lambda: text(desktop.app.out) == "Notification granted\n")
    assert [window["app_id"] for window in wait_for("the window", sway_windows)] == [desktop.id], sway_windows()

    print("== a panel started after the application shows the item (GNOME's lock restarts one)")
    desktop.start("waybar", "-c", f"{HERE}/waybar.json")
    item = wait_for("the item registered with waybar", desktop.items, 5)
    # waybar fetches the icon after the item registers: the amber glyph shows a moment later.
    wait_for("the amber glyph in the panel's tray area", desktop.amber_glyph, 5)
    service, path = re.fullmatch(r"([^/]+)(/.*)", item[0]).groups()
    assert "\u26a1\ufe0e Monitoring..." in str(desktop.prop(service, path, ITEM, "ToolTip")), "the title"

    print("== a CPU above 85 % brings one alert per cool-down, also across a restart of dunst")
    desktop.set_cpu(90)
    sent = lambda: [float(t) for t in re.findall(r"time=([\d.]+) .*member=Notify\n", text(desktop.traffic))]
    wait_for("the alert", lambda: len(sent()) == 1, 5)
    # A new notification (replaces 0) with the icon and desktop entry the package installs, its
    # sound, and the server's own display time (-1).
    assert re.search(rf'uint32 0\s+string "{desktop.id}"\s+string "High CPU Usage"[\s\S]*"desktop-entry"\s+variant\s+'
                     rf'string "{desktop.id}"[\s\S]*"message-new-instant"[\s\S]*int32 -1', text(desktop.traffic)), "the request"
    dunst.terminate()
    wait_for("dunst gone", lambda: not desktop.has_owner(NOTIFICATIONS))
    desktop.start("dunst")
    wait_for("dunst again", lambda: desktop.has_owner(NOTIFICATIONS))
    # Due at the tick 10 s on, or at the next one if that tick fired nearer its grid point than
    # the first alert's tick did. The bus log's times (its reading, a little late under load) show
    # the cool-down held.
    wait_for("the next alert, ten seconds on, shown by the new dunst",
             lambda: len(sent()) == 2 and run("dunstctl", "count", "displayed").strip() == "1", 14)
    assert sent()[1] - sent()[0] > 8, f"a second alert inside the cool-down: {sent()}"

    print("== closing the window leaves the item; a second launch and a click on an alert bring the window back")
    def close():
        run("swaymsg", f"[app_id={desktop.id}] kill")
        wait_for("the window closed", lambda: not sway_windows())
    close()  # had that ended it, the launch below would start a Corvane that does not end
    status, out, errors = desktop.launch_again("wayland", XDG_ACTIVATION_TOKEN="token-of-the-launcher")
    wait_for("the window shown by the second launch", sway_windows)
    assert (status, out, desktop.items(), len(sway_windows())) == (0, "", item, 1), (status, out, errors)
    close()
    wait_for("an alert on screen", lambda: run("dunstctl", "count", "displayed").strip() not in ("", "0"), 12)
    run("dunstctl", "action", "0")
    wait_for("the window shown by the click on the alert", sway_windows)

    print("== Quit in the item's menu ends it with status 0")
    menu = desktop.prop(service, path, ITEM, "Menu")  # Quit is item 3, as the unit tests' GetLayout shows
    desktop.call(service, menu, MENU, "Event", "(isvu)", 3, "clicked", GLib.Variant("i", 0), 0)
    ended(desktop.app)


def xvfb(desktop):
    display = desktop.start("Xvfb", "-displayfd", "1", "-screen", "0", "1024x768x24", "-nolisten", "tcp", "-noreset",
                            stdout=subprocess.PIPE)
    os.environ["DISPLAY"] = ":" + display.stdout.readline().decode().strip()
    # On a loaded machine the display was seen to refuse the first client just after announcing it,
    # and Corvane, once, after that client had left: -noreset keeps the server as it is then.
    wait_for("the X display", lambda: subprocess.run(["xdpyinfo"], capture_output=True).returncode == 0)


def started(desktop):
    print("== on Xvfb with a stand-in tray watcher: six rows with values, and the item registered")
    xvfb(desktop)
    watcher, items = "org.kde.StatusNotifierWatcher", []
    node = Gio.DBusNodeInfo.new_for_xml(
        f"<node><interface name='{watcher}'><method name='RegisterStatusNotifierItem'><arg type='s'/></method>"
        "<property name='IsStatusNotifierHostRegistered' type='b' access='read'/></interface></node>")
    desktop.bus.register_object("/StatusNotifierWatcher", node.interfaces[0], lambda bus, sender, *call: items.append(
        (sender, *call[3].unpack())) or call[4].return_value(None), lambda *get: GLib.Variant("b", True))
    threading.Thread(target=GLib.MainLoop().run, daemon=True).start()  # answers the watcher's calls
    desktop.ask_bus("RequestName", "(su)", watcher, 0)
    desktop.app = desktop.launch("xcb")
    window, values, chart = screen_reader(desktop)
    value = r"\d+\.\d\d (%|MB/s)|\d+% \((Charging|On Battery|Unknown)\)"
    wait_for("a value in each row", lambda: all(re.fullmatch(value, node.name) for node in values.values()), 20,
             shown=lambda: {row: node.name for row, node in values.items()})
    wait_for("the item registered with the watcher", lambda: items and items[0][0] == items[0][1], 20, shown=lambda: items)


def x11(desktop):
    print("== no desktop to show on: one line on standard error, status 1, no name on the bus")
    for display in ("", ":4242"):
        status, out, errors = desktop.launch_again("xcb", DISPLAY=display)
        assert (status, out, errors.count("\n"), desktop.has_owner(desktop.id)) == (1, "", 1, False), (status, errors)
        assert (display or "DISPLAY") in errors and "graphical session" in errors, errors
    xvfb(desktop)
    # A notification service that takes the permission question and never answers it: the main
    # loop that would is never run.
    node = Gio.DBusNodeInfo.new_for_xml(f"<node><interface name='{NOTIFICATIONS}'>"
                                        "<method name='GetServerInformation'/></interface></node>")
    desktop.bus.register_object("/org/freedesktop/Notifications", node.interfaces[0], lambda *a: None)
    desktop.ask_bus("RequestName", "(su)", NOTIFICATIONS, 0)

    desktop.app = desktop.launch("xcb")

    print("== what a screen reader finds, read while the notification service hangs; the desktop entry's WM class")
    window, values, chart = screen_reader(desktop)
    assert (window.getRoleName(), window.name, window.description) == (
        "frame", "Corvane", "System monitor dashboard"), (window.getRoleName(), window.name)
    rows = {"CPU Usage:": "25.00 %", "RAM Usage:": "42.91 %", "Battery:": "80% (Charging)",
            "Download:": "0.00 MB/s", "Upload:": "0.00 MB/s"}
    wait_for(f"rows {rows}", lambda: {row: values[row].name for row in rows} == rows)
    assert text(desktop.app.out) == "", "the permission answer came before the reply timeout"
    assert re.fullmatch(r"\d+\.\d\d %", values["Disk Usage:"].name), values["Disk Usage:"].name
    assert chart.name == "CPU Usage History (last 1 min)", chart.name
    window = run("xdotool", "search", "--onlyvisible", "--pid", str(desktop.app.pid)).split()
    wm_class = run("xprop", "-id", window[0], "WM_CLASS")
    assert len(window) == 1 and wm_class.endswith(f', "{desktop.wm_class}"\n'), (window, wm_class)
    icon = run("xprop", "-id", window[0], "-notype", "_NET_WM_ICON")  # the glyph at each size it offers
    assert re.findall(r"Icon \((\d+) x \1\):", icon) == ["16", "22", "24", "32", "48", "64"], icon[:300]
    desktop.set_cpu(40)
    wait_for("the chart's description after a few ticks", lambda: re.fullmatch(
        r"[2-9] values, lowest 25\.00 %, highest 40\.00 %, latest 40\.00 %", chart.description), 5)
    wait_for("Notification denied at the reply timeout", lambda: text(desktop.app.out) == "Notification denied\n", 5)

    print("== a second launch hands its startup id to the running one's window")
    assert desktop.launch_again("xcb", DESKTOP_STARTUP_ID="second-launch_TIME42")[0] == 0
    wait_for("the startup id on the window", lambda: "second-launch_TIME42" in run("xprop", "-id", window[0], "_NET_STARTUP_ID"))
    print("== Open App from a panel's menu hands on the panel's token, else the click's time")
    for token, time, expected in (("menu-token", 7, '"menu-token"'), ("", 4242, "_TIME4242")):
        tray, = (name for name in desktop.ask_bus("ListNames")[0] if name[0] == ":" and desktop.ask_bus(
            "GetConnectionUnixProcessID", "(s)", name)[0] == desktop.app.pid and desktop.call(
            name, "/", "org.freedesktop.DBus.Introspectable", "Introspect")[0].count("MenuBar"))
        token and desktop.call(tray, "/StatusNotifierItem", ITEM, "ProvideXdgActivationToken", "(s)", token)
        desktop.call(tray, "/MenuBar", MENU, "Event", "(isvu)", 1, "clicked", GLib.Variant("i", 0), time)
        wait_for(expected, lambda: expected in run("xprop", "-id", window[0], "_NET_STARTUP_ID"))

    print("== an X11 tray started after the application embeds the item")
    trayer = desktop.start("trayer", "--edge", "top", "--align", "right", "--widthtype", "request", "--height", "24")
    item = wait_for("the item in trayer", lambda: re.search(r'\n( *)\S+ "panel": \("panel" "trayer"\)[^\n]*'
                                                            r'(\n\1 [^\n]*)*\n *(\S+) "Corvane": \(', run("xwininfo", "-root", "-tree")))
    shown = lambda: run("xdotool", "search", "--onlyvisible", "--pid", str(desktop.app.pid)).split()
    before = shown()
    run("xdotool", "mousemove", "--window", item[3], "5", "5", "click", "1")
    wait_for("the menu opened by a left click", lambda: len(shown()) == len(before) + 1)
    run("xdotool", "key", "Escape")

    print("== once that tray has ended, the window is the application: closing it quits")
    trayer.terminate()
    # The tray's windows destroyed: the application has the event before the close that follows.
    wait_for("trayer gone", lambda: '"trayer"' not in run("xwininfo", "-root", "-tree"))
    from Xlib import X, display, protocol  # what a window manager does when the user closes a window
    x = display.Display()
    x.create_resource_object("window", int(window[0])).send_event(protocol.event.ClientMessage(
        window=int(window[0]), client_type=x.intern_atom("WM_PROTOCOLS"),
        data=(32, [x.intern_atom("WM_DELETE_WINDOW"), X.CurrentTime, 0, 0, 0])))
    x.flush()
    ended(desktop.app, 10)  # closing the window after the tray ended ends the application


def main():
    scenario, binary, fixture, *home = sys.argv[1:]
    if home:  # the desktop itself, in its folder, and none of the caller's
        for name in ("DISPLAY", "WAYLAND_DISPLAY", "SWAYSOCK"):
            os.environ.pop(name, None)
        desktop = Desktop(home[0], binary, fixture)
        try:
            desktop.begin()
            scenarios = {"wayland": wayland, "x11": x11, "started": started}  # gnome.py's imports only for it
            (scenarios.get(scenario) or __import__("gnome").gnome)(desktop)
        except BaseException:
            "WAYLAND_DISPLAY" in os.environ and run("grim", f"{home[0]}/screen.png")
            raise
        return print("ok")
    # Run again in a folder of its own, as nobody when this is root, as the first process of a PID
    # namespace: when it ends, the kernel ends whatever the desktop left behind, even a daemon
    # that one of its programs started and that outlived it.
    home = tempfile.mkdtemp(prefix=f"corvane-{scenario}-")
    entry, = glob.glob(f"{HERE}/../../packaging/*.desktop")  # the one the package installs
    shutil.copy(entry, home)
    command = [sys.executable, "-u", __file__, scenario, binary, fixture, home]
    if os.getuid() == 0:  # nobody's copies of the inputs, dropped again when the folder is kept
        command[2] = shutil.copytree(HERE, f"{home}/input/e2e") + "/" + os.path.basename(__file__)
        command[4:6] = shutil.copy(binary, f"{home}/input/app"), shutil.copytree(fixture, f"{home}/input/fixture")
        subprocess.run(["chown", "-R", "nobody:nogroup", home], check=True)
        command[:0] = ["setpriv", "--reuid=nobody", "--regid=nogroup", "--clear-groups", "--"]
    # The namespace's first process is a shell that keeps its user: a change of user would drop
    # the signal by which unshare's end takes it along. Its own /proc is LeakSanitizer's: it
    # reads /proc/<its pid>/task. Only /proc turns private, since in a chroot / is no mount point.
    command[:0] = ["unshare", "--pid", "--fork", "--kill-child", "--propagation", "unchanged", "--mount-proc",
                   *(["--user", "--map-current-user"] if os.getuid() else []), "--", "sh", "-c", '"$@"; exit $?', "sh"]
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))  # ctest's or the user's: clean up too
    signal.signal(signal.SIGHUP, lambda *_: sys.exit(129))
    inner = subprocess.Popen(command)
    status = 1
    try:
        status = inner.wait()
    finally:
        inner.kill()  # unshare's end takes the namespace with it
        inner.wait()
        if status:
            shutil.rmtree(f"{home}/input", ignore_errors=True)
            print(f"kept what explains the failure in {home}")
        else:
            shutil.rmtree(home, ignore_errors=True)
    sys.exit(status)


if __name__ == "__main__":
    main()
