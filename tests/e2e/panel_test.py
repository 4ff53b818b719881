"""The panel that the tray icon opens."""

from case import Case, main
from desktop import press, run, until
from tray_host import TrayHost

ICON = 900, 4  # where the tray says that the icon is


class Panel(Case):
    def start(self):
        tray = TrayHost()
        self.tendel.start("--at-login")
        self.icon = tray.wait_for_icon()
        self.work_elsewhere()

    def row(self, name):
        return self.tendel.find(name, "push button")

    def open(self):
        self.icon.click("Activate", *ICON)
        until(lambda: self.row("Quit Tendel"), "the panel")
        until(lambda: not self.other.has_focus(), "the keyboard in the panel")

    def wait_until_closed(self):
        until(lambda: not self.row("Quit Tendel"), "the panel off the screen")
        until(self.other.has_focus, "the keyboard back in the other window")

    def walk_to(self, name):
        for _ in range(12):
            press("Down")
            focused = self.tendel.focused()
            if focused and focused.name == name:
                return
        self.fail(f'the arrow keys do not reach "{name}"')

    def test_opens_at_the_icon_and_closes(self):
        self.start()
        ways = {"Escape": lambda: press("Escape"),
                "the icon": lambda: self.icon.click("Activate", *ICON),
                "a click elsewhere": lambda: run("xdotool", "mousemove", "700", "700", "click", "1")}
        for name, close in ways.items():
            with self.subTest(name):
                self.open()
                left, top, width, _ = self.row("Quit Tendel").box
                self.assertAlmostEqual(left + width / 2, ICON[0], delta=2)
                self.assertGreater(top, ICON[1])
                close()
                self.wait_until_closed()
                self.other.type(f"after {name}")
        # Nor does it stand half outside in a corner.
        self.icon.click("Activate", 1279, 799)
        quit_row = until(lambda: self.row("Quit Tendel"), "the panel")
        left, top, width, height = quit_row.box
        self.assertLess(left + width, 1280)
        self.assertLess(top + height, 800)

    def test_pauses_and_resumes_by_keys(self):
        self.start()
        tables = "SELECT count(*) FROM reminders; SELECT count(*) FROM events"
        before = self.tendel.query(tables)
        self.open()
        self.walk_to("Pause Reminders")
        press("Return")
        self.walk_to("Pause for 1 Hour")
        press("Return")
        until(lambda: self.tendel.find("Paused until .*"), "the pause in the panel")
        self.assertIn("Resume Reminders", self.icon.menu())
        press("Escape")
        self.wait_until_closed()
        self.other.type("while it is paused")
        self.open()
        self.walk_to("Resume Reminders")
        press("Return")
        until(lambda: self.tendel.find("No upcoming reminders.*"), "the end of the pause in the panel")
        self.assertIn("Pause Reminders", self.icon.menu())
        press("Escape")
        self.wait_until_closed()
        self.assertEqual(self.tendel.query(tables), before)

    def test_leads_to_the_window_and_about(self):
        self.start()
        self.open()
        self.walk_to("About Tendel")
        press("Return")
        until(lambda: self.tendel.find("Tendel [0-9.]+"), "the version")
        self.assertIsNone(self.row("Quit Tendel"))
        press("Escape")
        until(self.other.has_focus, "the keyboard back in the other window")
        self.open()
        self.walk_to("Open Stats")
        press("Return")
        until(lambda: self.tendel.find("Stats", "radio button"), "the window")
        self.assertIsNone(self.row("Quit Tendel"))


if __name__ == "__main__":
    main()
