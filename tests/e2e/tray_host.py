#!/usr/bin/python3
# The StatusNotifierWatcher of a desktop whose tray shows StatusNotifierItems (Plasma, waybar, GNOME's
# AppIndicator extension), on the session bus: it says that a tray host is there, takes the items that
# register, and prints each one as a tray would show it, read from the item's own bus name.
import sys
from gi.repository import Gio, GLib

WATCHER = Gio.DBusNodeInfo.new_for_xml("""<node><interface name="org.kde.StatusNotifierWatcher">
<method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
<method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
<property name="RegisteredStatusNotifierItems" type="as" access="read"/>
<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
<property name="ProtocolVersion" type="i" access="read"/>
<signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
</interface></node>""").interfaces[0]
items = []


def item_property(bus, service, name):
    return bus.call_sync(service, "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
                         GLib.Variant("(ss)", ("org.kde.StatusNotifierItem", name)), None,
                         Gio.DBusCallFlags.NONE, 5000, None).unpack()[0]


def method(bus, sender, path, interface, name, arguments, invocation):
    invocation.return_value(None)
    if name == "RegisterStatusNotifierItem":
        service = arguments.unpack()[0]
        items.append(service)
        bus.emit_signal(None, path, interface, "StatusNotifierItemRegistered", GLib.Variant("(s)", (service,)))
        sizes = " ".join(f"{w}x{h}" for w, h, _ in item_property(bus, service, "IconPixmap"))
        print(f"item {service} title={item_property(bus, service, 'Title')}",
              f"status={item_property(bus, service, 'Status')}",
              f"icon={item_property(bus, service, 'IconName')}{sizes}", flush=True)


def read(bus, sender, path, interface, name):
    return {"RegisteredStatusNotifierItems": GLib.Variant("as", items),
            "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
            "ProtocolVersion": GLib.Variant("i", 0)}[name]


Gio.bus_own_name(Gio.BusType.SESSION, "org.kde.StatusNotifierWatcher", Gio.BusNameOwnerFlags.NONE,
                 lambda bus, _: bus.register_object("/StatusNotifierWatcher", WATCHER, method, read, None),
                 lambda *_: print("watching", flush=True), lambda *_: sys.exit("the watcher's name is taken"))
GLib.MainLoop().run()
