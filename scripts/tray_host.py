"""A tray on the session bus: the StatusNotifier host with which the program's tray icon registers."""

import threading
import time

from gi.repository import Gio, GLib

WATCHER = "org.kde.StatusNotifierWatcher"
INTERFACE = f"""
<node><interface name="{WATCHER}">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
  <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
  <signal name="StatusNotifierHostRegistered"/>
  <signal name="StatusNotifierHostUnregistered"/>
</interface></node>"""


ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"


class TrayHost:
    """Serves on a thread of its own from when it is made until it is stopped."""

    def __init__(self, has_host=True, address=None):
        self.address = address or Gio.dbus_address_get_for_bus_sync(Gio.BusType.SESSION)
        self.has_host = has_host  # a watcher alone shows no icons
        self.icon = None
        self.arrived = threading.Event()
        self.arrivedAt = None  # time.monotonic()
        ready = threading.Event()
        threading.Thread(target=self.serve, args=(ready,), daemon=True).start()
        if not ready.wait(10):
            raise RuntimeError("the session bus did not give the tray's name")

    def serve(self, ready):
        context = GLib.MainContext()
        context.push_thread_default()
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.bus = bus = Gio.DBusConnection.new_for_address_sync(self.address, flags)
        bus.register_object("/StatusNotifierWatcher", Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0],
                            self.call, self.read, None)
        Gio.bus_own_name_on_connection(bus, WATCHER, Gio.BusNameOwnerFlags.NONE, lambda *_: ready.set(), None)
        GLib.MainLoop(context).run()

    def stop(self):
        """Leaves the bus, as a panel does that ends or crashes."""
        self.bus.close_sync()

    def set_host(self, has_host):
        """The part that shows the icons comes to the watcher, or leaves it."""
        self.has_host = has_host
        signal = "StatusNotifierHostRegistered" if has_host else "StatusNotifierHostUnregistered"
        self.bus.emit_signal(None, "/StatusNotifierWatcher", WATCHER, signal, None)

    def call(self, bus, sender, _path, _interface, method, arguments, invocation):
        if method == "RegisterStatusNotifierItem":
            self.arrivedAt = time.monotonic()
            name = arguments.unpack()[0]
            self.icon = TrayIcon(bus, sender, name if name.startswith("/") else "/StatusNotifierItem")
            self.arrived.set()
        invocation.return_value(None)

    def read(self, _bus, _sender, _path, _interface, name):
        return {"RegisteredStatusNotifierItems": GLib.Variant("as", []),
                "IsStatusNotifierHostRegistered": GLib.Variant("b", self.has_host),
                "ProtocolVersion": GLib.Variant("i", 0)}[name]

    def wait_for_icon(self, seconds=20):
        """The next icon that registers since the last call; an AssertionError when none does."""
        if not self.arrived.wait(seconds):
            raise AssertionError(f"no tray icon within {seconds} s")
        self.arrived.clear()
        return self.icon


class TrayIcon:
    def __init__(self, bus, owner, path):
        self.bus, self.owner, self.path = bus, owner, path
        self.signals = []  # names, as they came
        for interface in (ITEM, MENU):
            bus.signal_subscribe(owner, interface, None, None, None, Gio.DBusSignalFlags.NONE,
                                 lambda *signal: self.signals.append(signal[4]))

    def call(self, path, interface, method, arguments):
        return self.bus.call_sync(self.owner, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE,
                                  5000, None).unpack()

    def property(self, name):
        return self.call(self.path, "org.freedesktop.DBus.Properties", "Get",
                         GLib.Variant("(ss)", (ITEM, name)))[0]

    def tool_tip(self):
        """Its title."""
        return self.property("ToolTip")[2]

    def label(self):
        return self.property("XAyatanaLabel")

    def pictures(self):
        """What it can be drawn with: bytes by the width and height."""
        return {(width, height): bytes(argb) for width, height, argb in self.property("IconPixmap")}

    def click(self, method, *place):
        """Activate, SecondaryActivate or ContextMenu."""
        self.call(self.path, ITEM, method, GLib.Variant("(ii)", place or (0, 0)))

    def scroll(self, delta):
        self.call(self.path, ITEM, "Scroll", GLib.Variant("(is)", (delta, "vertical")))

    def menu(self):
        """The menu's entries with their numbers, submenus as dictionaries: {"Open Tendel": 2, "Pause": {…}}."""
        def entries(item):
            found = {}
            for number, properties, children in item[2]:
                label = properties.get("label", "").replace("__", "_")
                if properties.get("visible", True) and properties.get("type") != "separator":
                    found[label] = entries((number, properties, children)) if children else number
            return found

        _, root = self.call(self.property("Menu"), MENU, "GetLayout",
                            GLib.Variant("(iias)", (0, -1, [])))
        return entries(root)

    def choose(self, *labels):
        """Chooses an entry of the menu by the labels on the way to it."""
        entry = self.menu()
        for label in labels:
            entry = entry[label]
        self.call(self.property("Menu"), MENU, "Event",
                  GLib.Variant("(isvu)", (entry, "clicked", GLib.Variant("s", ""), 0)))
