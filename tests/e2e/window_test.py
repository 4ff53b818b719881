"""The main window of the running program."""

import subprocess

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


if __name__ == "__main__":
    main()
