"""A system bus of the case's own with a login manager (logind), as dbusmock plays it."""

import getpass
import os
import subprocess

from gi.repository import Gio, GLib

from desktop import until
from services import Service

NAME = "org.freedesktop.login1"
MANAGER = "/org/freedesktop/login1"
MOCK = "org.freedesktop.DBus.Mock"
SESSION = "c1"


class LoginManager:
    """Started before the program, which finds it through `environment`."""

    def __init__(self):
        self.bus = Service("dbus-daemon", "--session", "--nofork", "--print-address=1", stdout=subprocess.PIPE,
                           text=True)
        self.address = self.bus.process.stdout.readline().strip()
        self.environment = {"DBUS_SYSTEM_BUS_ADDRESS": self.address, "XDG_SESSION_ID": SESSION}
        self.mock = Service("/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind",
                            env={**os.environ, **self.environment}, stdout=subprocess.DEVNULL)
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.connection = Gio.DBusConnection.new_for_address_sync(self.address, flags)
        until(self.is_there, "the login manager")
        self.session = self.call(MANAGER, MOCK, "AddSession",
                                 GLib.Variant("(ssusb)", (SESSION, "seat0", os.getuid(), getpass.getuser(), True)))

    def is_there(self):
        try:
            return self.call(MANAGER, f"{NAME}.Manager", "CanSuspend", None)
        except GLib.Error:
            return None

    def call(self, path, interface, method, arguments):
        return self.connection.call_sync(NAME, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE, 5000,
                                         None).unpack()[0:1]

    def set_locked(self, locked):
        """As the lock screen tells it to the login manager."""
        self.call(self.session[0], MOCK, "UpdateProperties",
                  GLib.Variant("(sa{sv})", (f"{NAME}.Session", {"LockedHint": GLib.Variant("b", locked)})))

    def stop(self):
        self.connection.close_sync()
        self.mock.stop()
        self.bus.stop()
