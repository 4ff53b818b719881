"""GNOME's session manager on the session bus, of which programs ask that the display stays awake."""

import threading

from gi.repository import Gio, GLib

NAME = "org.gnome.SessionManager"
PATH = "/org/gnome/SessionManager"
INHIBITOR = f"{PATH}/Inhibitor1"
INHIBIT_IDLE = 8
MANAGER_INTERFACE = f"""
<node><interface name="{NAME}">
  <method name="GetInhibitors"><arg type="ao" direction="out"/></method>
  <method name="IsInhibited"><arg type="u" direction="in"/><arg type="b" direction="out"/></method>
  <property name="InhibitedActions" type="u" access="read"/>
  <signal name="InhibitorAdded"><arg type="o"/></signal>
  <signal name="InhibitorRemoved"><arg type="o"/></signal>
</interface></node>"""
INHIBITOR_INTERFACE = f"""
<node><interface name="{NAME}.Inhibitor">
  <method name="GetAppId"><arg type="s" direction="out"/></method>
  <method name="GetReason"><arg type="s" direction="out"/></method>
  <method name="GetFlags"><arg type="u" direction="out"/></method>
  <method name="GetToplevelXid"><arg type="u" direction="out"/></method>
</interface></node>"""


class SessionManager:
    """Serves on a thread of its own from when it is made."""

    def __init__(self):
        self.program = None  # that keeps the display awake
        ready = threading.Event()
        threading.Thread(target=self.serve, args=(ready,), daemon=True).start()
        if not ready.wait(10):
            raise RuntimeError("the session bus did not give the session manager's name")

    def serve(self, ready):
        context = GLib.MainContext()
        context.push_thread_default()
        # Not the shared connection, whose objects would be served on another thread's loop.
        address = Gio.dbus_address_get_for_bus_sync(Gio.BusType.SESSION)
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.bus = Gio.DBusConnection.new_for_address_sync(address, flags)
        for path, interface in ((PATH, MANAGER_INTERFACE), (INHIBITOR, INHIBITOR_INTERFACE)):
            self.bus.register_object(path, Gio.DBusNodeInfo.new_for_xml(interface).interfaces[0], self.call,
                                     lambda *_: GLib.Variant("u", INHIBIT_IDLE if self.program else 0), None)
        Gio.bus_own_name_on_connection(self.bus, NAME, Gio.BusNameOwnerFlags.NONE, lambda *_: ready.set(), None)
        GLib.MainLoop(context).run()

    def call(self, _bus, _sender, _path, _interface, method, arguments, invocation):
        invocation.return_value({
            "GetInhibitors": lambda: GLib.Variant("(ao)", ([INHIBITOR] if self.program else [],)),
            "IsInhibited": lambda: GLib.Variant("(b)", (bool(self.program and arguments[0] & INHIBIT_IDLE),)),
            "GetAppId": lambda: GLib.Variant("(s)", (self.program or "",)),
            "GetReason": lambda: GLib.Variant("(s)", ("Playing",)),
            "GetFlags": lambda: GLib.Variant("(u)", (INHIBIT_IDLE if self.program else 0,)),
            "GetToplevelXid": lambda: GLib.Variant("(u)", (0,)),
        }[method]())

    def inhibit(self, program):
        """From now on this program keeps the display awake; None: no program."""
        self.program = program
        self.bus.emit_signal(None, PATH, NAME, "InhibitorAdded" if program else "InhibitorRemoved",
                             GLib.Variant("(o)", (INHIBITOR,)))
