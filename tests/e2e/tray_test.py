"""The icon in the trays of the session bus and of the X server, which come, go and restart while the program runs."""

import re
import subprocess
import time

from case import Case, main
from desktop import run, until
from gi.repository import GLib
from tray_host import MENU, TrayHost

PAUSES = ["Pause for 30 Minutes", "Pause for 1 Hour", "Pause for 2 Hours", "Pause Until Tomorrow"]


class Tray(Case):
    def start_with_reminder(self, title="Look_away & blink", interval=1, **environment):
        """With the countdown in the label; the icon on the session bus."""
        host = TrayHost()
        self.addCleanup(host.stop)
        self.tendel.environment.update(environment)
        self.tendel.set(showsMenuBarCountdown=True)
        self.tendel.start()
        icon = host.wait_for_icon()
        self.sign = icon.pictures()
        self.tendel.create_reminder(title, interval=interval)
        until(lambda: "Next" in icon.tool_tip(), "the reminder in the tray")
        return icon

    def start_trayer(self):
        """A tray of the X server in the upper right corner, 24 pixels high."""
        process = subprocess.Popen(["trayer", "--edge", "top", "--align", "right", "--widthtype", "request",
                                    "--height", "24", "--transparent", "true", "--alpha", "0", "--tint", "0x202024"],
                                   stderr=subprocess.DEVNULL)
        self.addCleanup(lambda: (process.kill(), process.wait()))
        return process

    def is_in_trayer(self):
        tree = subprocess.run(["xwininfo", "-tree", "-name", "panel"], capture_output=True, text=True).stdout
        return '"Tendel"' in tree

    def colours_in_trayer(self):
        picture = subprocess.run(["import", "-window", "root", "-crop", "24x24+1256+0", "-depth", "8", "txt:-"],
                                 capture_output=True, text=True, check=True).stdout
        return set(re.findall(r"#[0-9A-F]{6}", picture))

    def test_hosts_that_come_late_and_restart(self):
        self.tendel.start("--at-login")
        until(lambda: "app.tendel.Tendel" in run("gdbus", "call", "--session", "--dest", "org.freedesktop.DBus",
                                                 "--object-path", "/", "--method", "org.freedesktop.DBus.ListNames"), "the program on the bus")
        self.assertEqual(subprocess.run([self.tendel.binary], timeout=20).returncode, 0)
        until(lambda: self.tendel.find("New Reminder", "push button"), "the window without any tray")

        host = TrayHost(has_host=False)
        first = host.wait_for_icon()
        host.set_host(True)
        self.assertEqual(host.wait_for_icon().owner, first.owner)
        host.stop()
        host = TrayHost()
        icon = host.wait_for_icon()
        icon.click("Activate", 640, 0)
        until(lambda: self.tendel.find("About Tendel"), "the panel")

    def test_icon_tells_what_comes_next(self):
        icon = self.start_with_reminder(interval=40)
        label = until(icon.label, "the label")
        self.assertRegex(label, r"^Look_away & blink in \d+m$")
        self.assertRegex(icon.property("XAyatanaLabelGuide"), r"^Look_away & blink in 00m$")
        self.assertEqual(icon.property("ToolTip")[2:], (icon.tool_tip(), label))
        self.assertRegex(icon.tool_tip(), r"^Next: Look_away & blink, \d\d:\d\d$")
        self.assertEqual(list(icon.menu())[0], icon.tool_tip())
        self.assertEqual((icon.property("IconName"), icon.property("ItemIsMenu")), ("", False))
        counting = icon.pictures()
        for size in (16, 22, 24, 32, 48, 2 * 22, 2 * 32, 2 * 48):
            self.assertEqual(len(counting[size, size]), size * size * 4)
        self.assertNotEqual(counting[24, 24], self.sign[24, 24])

        icon.signals.clear()
        icon.click("SecondaryActivate")
        until(lambda: icon.tool_tip().startswith("Paused until"), "the pause in the tray")
        self.assertEqual(icon.label(), "")
        self.assertTrue({"NewIcon", "NewToolTip", "XAyatanaNewLabel", "LayoutUpdated"} <= set(icon.signals))
        for size, argb in icon.pictures().items():
            self.assertNotEqual(argb, counting[size], size)
            alphas = argb[::4]
            self.assertTrue(max(alphas) > 200 and alphas[0] == 0, "opaque on transparent, alpha first")
        # One pause at a time is told once, and the wheel does nothing.
        count = len(icon.signals)
        icon.scroll(120)
        icon.scroll(-120)
        time.sleep(1)
        self.assertEqual(icon.signals[count:], [])

    def test_icon_leaves_the_time_to_trays_that_write_it(self):
        icon = self.start_with_reminder(interval=40, XDG_CURRENT_DESKTOP="ubuntu:GNOME")
        until(icon.label, "the label")
        self.assertEqual(icon.pictures(), self.sign)

    def test_menu(self):
        icon = self.start_with_reminder()

        def call(method, signature, *arguments):
            return icon.call(icon.property("Menu"), MENU, method, GLib.Variant(signature, arguments))

        menu = icon.menu()
        self.assertEqual(list(menu)[1:], ["Pause Reminders", "Open Tendel", "Open Stats", "Feedback", "About Tendel",
                                          "Quit Tendel"])
        pauses = menu["Pause Reminders"]
        self.assertEqual(list(pauses), PAUSES)
        revision, (_, _, rows) = call("GetLayout", "(iias)", 0, 1, ["label", "type"])
        self.assertTrue(all(not below and set(properties) <= {"label", "type"} for _, properties, below in rows))
        self.assertIn({"type": "separator"}, [properties for _, properties, _ in rows])
        some = list(pauses.values())[:2]
        self.assertEqual(call("GetGroupProperties", "(aias)", [*some, 999], ["label"])[0],
                         [(number, {"label": title}) for number, title in zip(some, PAUSES)])
        self.assertEqual(call("GetProperty", "(is)", some[1], "label"), (PAUSES[1],))
        self.assertEqual(call("AboutToShow", "(i)", 0), (False,))
        self.assertEqual(call("AboutToShowGroup", "(ai)", [0, 999]), ([], [999]))
        clicked = GLib.Variant("s", "")
        self.assertEqual(call("EventGroup", "(a(isvu))", [(some[0], "hovered", clicked, 0), (999, "clicked", clicked, 0)]),
                         ([999],))
        self.assertEqual(icon.menu(), menu)

        # Past the minute at which it would have been due.
        icon.choose("Pause Reminders", PAUSES[0])
        until(lambda: "Resume Reminders" in icon.menu(), '"Resume Reminders" in the menu')
        self.assertGreater(call("GetLayout", "(iias)", 0, 0, [])[0], revision)
        end = time.time() // 60 * 60 + 70
        while time.time() < end:
            self.assertIsNone(self.alert_button("Done"))
            time.sleep(1)
        icon.click("SecondaryActivate")
        until(lambda: "Pause Reminders" in icon.menu(), '"Pause Reminders" in the menu')
        until(lambda: self.alert_button("Done"), "the alert", 80)

        icon.choose("Quit Tendel")
        self.assertEqual(self.tendel.process.wait(10), 0)

    def test_tray_of_the_x_server(self):
        self.tendel.start("--at-login")
        trayer = self.start_trayer()
        until(self.is_in_trayer, "the icon in the tray of the X server")
        until(lambda: "#86868B" in self.colours_in_trayer(), "the picture of the icon")
        run("xdotool", "mousemove", "1268", "12", "click", "2")
        run("xdotool", "mousemove", "1267", "12", "click", "1")
        until(lambda: self.tendel.find("Resume Reminders"), "the pause in the panel")

        # A host on the bus takes it over, though not a watcher without one, and gives it back.
        host = TrayHost(has_host=False)
        host.wait_for_icon()
        time.sleep(0.5)
        self.assertTrue(self.is_in_trayer())
        host.set_host(True)
        until(lambda: not self.is_in_trayer(), "the icon out of the tray of the X server")
        host.stop()
        until(self.is_in_trayer, "the icon back")
        trayer.kill()
        trayer.wait()
        self.start_trayer()
        until(self.is_in_trayer, "the icon in the next tray")

    def test_bus_that_dies(self):
        bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address=1"], stdout=subprocess.PIPE,
                               text=True)
        self.addCleanup(bus.stdout.close)
        self.tendel.environment["DBUS_SESSION_BUS_ADDRESS"] = address = bus.stdout.readline().strip()
        host = TrayHost(address=address)
        self.tendel.start("--at-login")
        host.wait_for_icon()
        self.start_trayer()
        until(lambda: subprocess.run(["xwininfo", "-name", "panel"], capture_output=True).returncode == 0, "the tray")
        bus.kill()
        bus.wait()
        until(self.is_in_trayer, "the icon in the tray of the X server")
        self.assertEqual(self.tendel.stop(), 0)


if __name__ == "__main__":
    main()
