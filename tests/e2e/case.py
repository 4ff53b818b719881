"""The ground of the end-to-end cases: one program, one other window, and on failure a picture of the screen."""

import os
import subprocess
import sys
import unittest
from pathlib import Path

from desktop import PATIENCE, OtherWindow, Tendel, take_picture, until, zone_where_it_is_noon

PICTURES = Path(os.environ.get("TENDEL_E2E_PICTURES", "."))


class Case(unittest.TestCase):
    def setUp(self):
        self.zone = zone_where_it_is_noon()
        self.tendel = Tendel(os.environ["TENDEL_BINARY"], self.zone)
        self.other = None
        self.addCleanup(self.close)

    def close(self):
        if self.other:
            self.other.close()
        if self.tendel.process:
            self.tendel.process.kill()
            self.tendel.process.wait()

    def work_elsewhere(self):
        """Opens the other window and types there; from now on the keyboard must stay with it."""
        self.other = OtherWindow()
        self.other.type("before")

    def until(self, condition, what, seconds=PATIENCE):
        """As `until`, with the keyboard in the other window all the time."""
        def with_focus():
            self.assert_focus()
            return condition()
        return until(with_focus, what, seconds)

    def assert_focus(self):
        self.assertTrue(self.other.has_focus(), "the keyboard left the other window")

    def wait_for_alert(self, title):
        """Waits for the alert of the next minute, or of the one after."""
        self.until(lambda: self.alert_button("Done|Start .*"), "the alert", 120)
        self.until(lambda: self.tendel.find(f".*{title}.*", "alert"), "the alert's title")
        self.other.type("while the alert is up")

    def wait_until_alert_is_gone(self):
        """Waits until it is off the screen for some looks in a row: while it leaves, one may miss it."""
        looks = []

        def is_gone():
            looks.append(bool(self.alert_button("Done|Start .*")))
            return len(looks) > 2 and not any(looks[-3:])

        self.until(is_gone, "the alert off the screen")

    def alert_button(self, name):
        return self.tendel.find(name, "push button")

    def answer(self, name):
        self.tendel.answer(name, self.assert_focus)

    def show_failure(self):
        picture = PICTURES / f"{self.id().split('.', 1)[-1]}.png"
        take_picture(picture)
        print(f"\nOn the screen (picture: {picture}):\n{self.tendel.describe()}", file=sys.stderr)
        if self.tendel.log.exists():
            print(f"The program's log:\n{self.tendel.log.read_text()[-4000:]}", file=sys.stderr)
        if self.tendel.store.exists():
            rows = subprocess.run(["sqlite3", "-readonly", str(self.tendel.store),
                                   "SELECT * FROM reminders; SELECT * FROM events"], capture_output=True, text=True)
            print(f"In the store:\n{rows.stdout}{rows.stderr}", file=sys.stderr)


class Result(unittest.TextTestResult):
    """Shows the screen at the moment of the failure, before anything is taken down."""

    def addFailure(self, test, err):
        self.show(test)
        super().addFailure(test, err)

    def addError(self, test, err):
        self.show(test)
        super().addError(test, err)

    def show(self, test):
        if isinstance(test, Case):
            try:
                test.show_failure()
            except Exception as error:  # the failure itself is what must be told
                print(f"The screen could not be shown: {error}", file=sys.stderr)


def main():
    unittest.main(testRunner=unittest.TextTestRunner(resultclass=Result, verbosity=2))
