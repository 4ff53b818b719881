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
</interface></node>"""


class TrayHost:
    """Serves on a thread of its own from when it is made."""

    def __init__(self):
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
        bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        bus.register_object("/StatusNotifierWatcher", Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0],
                            self.call, self.read, None)
        Gio.bus_own_name_on_connection(bus, WATCHER, Gio.BusNameOwnerFlags.NONE, lambda *_: ready.set(), None)
        GLib.MainLoop(context).run()

    def call(self, bus, sender, _path, _interface, method, arguments, invocation):
        if method == "RegisterStatusNotifierItem":
            self.arrivedAt = time.monotonic()
            name = arguments.unpack()[0]
            self.icon = TrayIcon(bus, sender, name if name.startswith("/") else "/StatusNotifierItem")
            self.arrived.set()
        invocation.return_value(None)

    def read(self, _bus, _sender, _path, _interface, name):
        return {"RegisteredStatusNotifierItems": GLib.Variant("as", []),
                "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
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

    def call(self, path, interface, method, arguments):
        return self.bus.call_sync(self.owner, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE,
                                  5000, None).unpack()

    def property(self, name):
        return self.call(self.path, "org.freedesktop.DBus.Properties", "Get",
                         GLib.Variant("(ss)", ("org.kde.StatusNotifierItem", name)))[0]

    def tool_tip(self):
        return self.property("ToolTip")[2]

    def menu(self):
        """The menu's entries with their numbers, submenus as dictionaries: {"Open Tendel": 2, "Pause": {…}}."""
        def entries(item):
            found = {}
            for number, properties, children in item[2]:
                label = properties.get("label", "").replace("_", "")
                if properties.get("visible", True) and properties.get("type") != "separator":
                    found[label] = entries((number, properties, children)) if children else number
            return found

        _, root = self.call(self.property("Menu"), "com.canonical.dbusmenu", "GetLayout",
                            GLib.Variant("(iias)", (0, -1, [])))
        return entries(root)

    def choose(self, *labels):
        """Chooses an entry of the menu by the labels on the way to it."""
        entry = self.menu()
        for label in labels:
            entry = entry[label]
        self.call(self.property("Menu"), "com.canonical.dbusmenu", "Event",
                  GLib.Variant("(isvu)", (entry, "clicked", GLib.Variant("s", ""), 0)))
