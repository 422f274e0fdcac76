"""desktop_test.py gnome APP FIXTURE: GNOME Shell as Debian installs it with the AppIndicator extension,
headless on the private session bus. What the user sees is read from the shell through its Eval method
(--unsafe-mode allows it), and the panel is clicked with a virtual pointer of the shell's own."""
import gi, json, os, re, subprocess, threading, time
gi.require_version("GdkPixbuf", "2.0")
from gi.repository import GdkPixbuf, Gio, GLib
from desktop_test import HERE, NOTIFICATIONS, amber, ended, text, wait_for

EXTENSION = "ubuntu-appindicators@ubuntu.com"
LABEL = "\u26a1\ufe0e Monitoring..."
# What every expression may use: the indicators laid out in the panel, the texts below an actor, Corvane's windows.
HELPERS = """const {Clutter} = imports.gi;
const indicators = () => Object.entries(Main.panel.statusArea).filter(([key, actor]) =>
    key.startsWith('appindicator-') && actor?.visible && actor.has_allocation()).map(([, actor]) => actor);
const texts = a => (a instanceof Clutter.Text ? [a.text] : []).concat(a.get_children().flatMap(texts));
const windows = () => global.display.list_all_windows().filter(w => w.get_wm_class() === '%s');
const seat = Clutter.get_default_backend().get_default_seat();
globalThis.testPointer ??= seat.create_virtual_device(Clutter.InputDeviceType.POINTER_DEVICE);
const click = actor => {
    const [x, y] = actor.get_transformed_position(), [w, h] = actor.get_transformed_size();
    testPointer.notify_absolute_motion(GLib.get_monotonic_time(), x + w / 2, y + h / 2);
    for (const state of [Clutter.ButtonState.PRESSED, Clutter.ButtonState.RELEASED])
        testPointer.notify_button(globalThis.testClickTime = GLib.get_monotonic_time(), Clutter.BUTTON_PRIMARY, state);
};
const withinDoubleClick = () =>
    GLib.get_monotonic_time() <= (globalThis.testClickTime ?? 0) + 1000 * Clutter.Settings.get_default().doubleClickTime;
const openItems = m => m?.isOpen && !m.actor._muteInput ? m.box.get_children().flatMap(texts).filter(t => t) : [];
"""


def display_manager(address):
    """The system's display manager, as far as the shell asks it before it offers a lock screen."""
    GLib.MainContext().push_thread_default()
    bus = Gio.DBusConnection.new_for_address_sync(address, Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT |
                                                  Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
    manager = Gio.DBusNodeInfo.new_for_xml("<node><interface name='org.gnome.DisplayManager.Manager'><property "
                                           "name='Version' type='s' access='read'/></interface></node>").interfaces[0]
    bus.register_object("/org/gnome/DisplayManager/Manager", manager, None, lambda *_: GLib.Variant("s", "43.0"))
    Gio.bus_own_name_on_connection(bus, "org.gnome.DisplayManager", 0, None, None)
    GLib.MainLoop(GLib.MainContext.get_thread_default()).run()


def gnome(desktop):
    def shell(code):
        ok, result = desktop.call("org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell", "Eval", "(s)",
                                  HELPERS % desktop.id + code)
        assert ok, (code, result)
        return json.loads(result or "null")

    def indicator():  # the one indicator in the panel, once it shows the label, read once: no amber glyph image
        wait_for(f"one indicator labelled {LABEL!r}", lambda: shell("indicators().map(texts)") == [[LABEL]],
                 shown=lambda: f"the panel shows {shell('indicators().map(texts)')}")
        box = shell("[...indicators()[0].get_transformed_position(), ...indicators()[0].get_transformed_size()]")
        desktop.call("org.gnome.Shell.Screenshot", "/org/gnome/Shell/Screenshot", "org.gnome.Shell.Screenshot",
                     "ScreenshotArea", "(iiiibs)", *map(int, box), False, f"{home}/indicator.png")
        image = GdkPixbuf.Pixbuf.new_from_file(f"{home}/indicator.png")
        assert not amber(image.get_pixels(), image.get_n_channels()), "the glyph drawn beside the label"

    def menu(item=None):
        """Opens the indicator's menu with a click: its items, or the item clicked in it."""
        mark = time.monotonic_ns()  # this call's click, noted on the indicator it clicked
        pick = f"click(m.box.get_children().find(c => texts(c).includes('{item}')))" if item else "m.close()"
        # One click on the indicator once its menu has items and the last click cannot pair with it into a double click,
        # which the extension takes as Activate (one more only on an indicator that replaced it, after a lock); then the
        # items of the menu once it is open and takes input, and a click in it or its close.
        return wait_for("the menu open", lambda: shell(
            f"const i = indicators()[0], m = i?.menu; m?.numMenuItems && i.clicked !== {mark} && !withinDoubleClick() "
            f"&& click(i, i.clicked = {mark}); const items = openItems(m); items.length && {pick}; items"))

    # Settings in a file of this desktop's own (no dconf service), and a system bus of its own where
    # the shell asks for logind (absent) and the display manager.
    home = desktop.home
    os.environ.update(XDG_CONFIG_HOME=f"{home}/config", XDG_DATA_HOME=f"{home}/data", XDG_CACHE_HOME=f"{home}/cache",
                      GSETTINGS_BACKEND="keyfile")
    os.makedirs(f"{home}/config/glib-2.0/settings")
    with open(f"{home}/config/glib-2.0/settings/keyfile", "w") as settings:
        settings.write(f"[org/gnome/shell]\nenabled-extensions=['{EXTENSION}']\ndisable-user-extensions=false\n")
    system_bus = desktop.start("dbus-daemon", f"--config-file={HERE}/bus.conf", "--nofork", "--print-address",
                               f"--address=unix:path={home}/system_bus", stdout=subprocess.PIPE)
    os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = system_bus.stdout.readline().decode().strip()  # once it listens
    threading.Thread(target=display_manager, args=(os.environ["DBUS_SYSTEM_BUS_ADDRESS"],), daemon=True).start()
    gnome_shell = desktop.start("gnome-shell", "--headless", "--wayland", "--no-x11", "--virtual-monitor", "1280x800",
                                "--unsafe-mode")

    def ready():  # the pointer takes events once the seat lists it (before, one crashed the shell)
        try:
            return shell("seat.list_devices().length && !Main.layoutManager._startingUp")
        except GLib.Error:  # the shell's bus name comes before its objects
            return False
    wait_for("the shell started, with a pointer", ready, 30)
    wait_for("the extension's watcher", lambda: desktop.has_owner("org.kde.StatusNotifierWatcher"))
    with open("/usr/share/dbus-1/services/org.gnome.Shell.Notifications.service") as service:  # as the bus would
        desktop.start(*re.search(r"Exec=(.*)", service.read())[1].split())
    wait_for("the shell's notification service", lambda: desktop.has_owner(NOTIFICATIONS))
    desktop.app = desktop.launch("wayland", WAYLAND_DISPLAY="wayland-0")

    print("== the panel holds Corvane's indicator with its label; its menu lists Open App and Quit")
    wait_for("Notification granted", lambda: text(desktop.app.out) == "Notification granted\n")
    wait_for("Corvane's window", lambda: shell("windows().length") == 1)
    indicator()
    items = menu()
    assert items == ["Open App", "Quit"], items

    print("== the window closed as a user closes it: Open App brings it back")
    shell("windows()[0].delete(global.get_current_time())")
    wait_for("the window closed", lambda: shell("windows().length") == 0)
    menu("Open App")  # had the close ended Corvane, its indicator would be gone
    wait_for("the window shown again", lambda: shell("windows().length") == 1)

    print("== the indicator comes back with its label after a lock, which turns the extension off and on again")
    assert shell("Main.screenShield !== null"), "no lock screen: GNOME offers one only where /run/systemd/seats exists"
    shell("Main.screenShield.lock(false)")
    wait_for("locked, no indicator", lambda: shell("[Main.screenShield.locked, indicators().length]") == [True, 0])
    shell("Main.screenShield.deactivate(false)")
    wait_for("unlocked", lambda: not shell("Main.screenShield.locked"))
    indicator()

    print("== Quit in the indicator's menu ends Corvane with status 0; the shell ends through Eval")
    menu("Quit")
    ended(desktop.app)
    shell("global.context.terminate()")  # SIGTERM would crash it
    assert gnome_shell.wait(10) == 0
