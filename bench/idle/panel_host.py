#!/usr/bin/python3
"""A panel as Corvane's tray item meets it, for the idle benchmark: owns the StatusNotifier watcher,
says a host is registered, and reads every property of each item that registers, as a panel does."""
from gi.repository import Gio, GLib

WATCHER = "org.kde.StatusNotifierWatcher"
XML = f"""<node><interface name='{WATCHER}'>
  <method name='RegisterStatusNotifierItem'><arg type='s' direction='in'/></method>
  <method name='RegisterStatusNotifierHost'><arg type='s' direction='in'/></method>
  <property name='IsStatusNotifierHostRegistered' type='b' access='read'/>
  <property name='RegisteredStatusNotifierItems' type='as' access='read'/>
  <property name='ProtocolVersion' type='i' access='read'/></interface></node>"""
items = []


def call(bus, sender, path, interface, method, parameters, invocation):
    service = parameters.unpack()[0]
    name, item = (sender, service) if service.startswith("/") else (service, "/StatusNotifierItem")
    items.append(name + item)
    invocation.return_value(None)
    bus.call(name, item, "org.freedesktop.DBus.Properties", "GetAll", GLib.Variant("(s)", ("org.kde.StatusNotifierItem",)),
             None, 0, -1, None, None)


def get(bus, sender, path, interface, name):
    return {"IsStatusNotifierHostRegistered": GLib.Variant("b", True), "ProtocolVersion": GLib.Variant("i", 0),
            "RegisteredStatusNotifierItems": GLib.Variant("as", items)}[name]


bus = Gio.bus_get_sync(Gio.BusType.SESSION)
bus.register_object("/StatusNotifierWatcher", Gio.DBusNodeInfo.new_for_xml(XML).interfaces[0], call, get, None)
Gio.bus_own_name_on_connection(bus, WATCHER, 0, lambda *_: print("watcher ready", flush=True), None)
GLib.MainLoop().run()
