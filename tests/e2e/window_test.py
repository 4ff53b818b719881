"""The main window and the tray icon of the running program."""

import subprocess
import time

from case import Case, main
from desktop import until
from tray_host import TrayHost


class Window(Case):
    def window(self):
        return self.tendel.find("New Reminder", "push button")

    def test_second_start_opens_the_first_ones_window(self):
        tray = TrayHost()
        self.tendel.start("--at-login")
        tray.wait_for_icon()
        self.assertIsNone(self.window())
        self.assertEqual(subprocess.run([self.tendel.binary], timeout=20).returncode, 0)
        until(self.window, "the window")

    def test_status_follows_the_clock(self):
        self.tendel.start()
        self.tendel.create_reminder("Stand up", interval=1)
        shown = lambda: self.tendel.wait_for(".*Stand up.*[0-9].*", "push button").name
        first = shown()
        until(lambda: shown() != first, "another next time", 75)

    def test_pause_from_the_tray(self):
        tray = TrayHost()
        self.tendel.start()
        icon = tray.wait_for_icon()
        self.tendel.create_reminder("Look away")
        icon.choose("Pause Reminders", "Pause for 30 Minutes")
        until(lambda: "Resume Reminders" in icon.menu(), '"Resume Reminders" in the menu')
        # Past the minute at which it would have been due.
        end = time.time() // 60 * 60 + 70
        while time.time() < end:
            self.assertIsNone(self.alert_button("Done"))
            time.sleep(1)
        icon.choose("Resume Reminders")
        self.assertIn("Pause Reminders", icon.menu())
        until(lambda: self.alert_button("Done"), "the alert", 80)

        icon.choose("Quit Tendel")
        self.assertEqual(self.tendel.process.wait(10), 0)


if __name__ == "__main__":
    main()
