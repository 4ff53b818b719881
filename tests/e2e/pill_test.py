"""The live pill beside a simulated notch: its card opens under the pointer, its buttons act, a break moves into it."""

import time

from case import Case, main
from desktop import run, until

TITLE = "Look away"
PILL = (640, 16)
AWAY = ("640", "500")


class Pill(Case):
    def setUp(self):
        super().setUp()
        self.tendel.environment["TENDEL_SIMULATE_NOTCH"] = "200x32"

    def pill(self, title):
        return self.tendel.find(f"{title}.*", "status bar")

    def open_card(self, title):
        run("xdotool", "mousemove", *map(str, PILL))
        self.until(lambda: self.tendel.find("Stop", "push button"), f'the card of "{title}"')
        self.assertTrue(self.pill(title), self.tendel.describe())

    def test_focus(self):
        self.tendel.set(focusPlan={"focusMinutes": 25, "breakMinutes": 5})
        self.tendel.start()
        self.tendel.wait_until_active()
        self.tendel.wait_for("Focus", "radio button").click()
        self.tendel.wait_for("Start Focus", "push button").click()
        run("xdotool", "key", "alt+F4")
        self.work_elsewhere()
        self.until(lambda: self.pill("Focusing, 2[45]:.* left"), "the pill")
        self.assertIsNone(self.tendel.find("Pause", "push button"))

        self.open_card("Focusing")
        self.other.type("while the card is open")
        self.answer("Pause")
        self.until(lambda: self.pill("Paused, "), "the pause in the pill")
        left = self.pill("Paused").name
        time.sleep(1.5)
        self.assertEqual(self.pill("Paused").name, left)
        self.answer("Resume")
        self.until(lambda: self.pill("Focusing, "), "the session in the pill")
        run("xdotool", "mousemove", *AWAY)
        self.until(lambda: not self.tendel.find("Stop", "push button"), "the pill without its card")
        self.open_card("Focusing")
        self.answer("Stop")
        self.until(lambda: not self.pill(""), "nothing in the notch")
        [row] = self.tendel.query("SELECT \"end\" IS NOT NULL, finished FROM focusBlocks")
        self.assertEqual(row, "1|0")
        self.other.type("after")

    def test_break_ends_in_the_pill(self):
        self.tendel.start()
        self.tendel.create_reminder(TITLE, break_seconds=15)
        self.work_elsewhere()
        self.wait_for_alert(TITLE)
        self.answer("Start.*")
        run("xdotool", "mousemove", *AWAY)
        self.until(lambda: self.pill(TITLE) and not self.tendel.find(TITLE, "alert"), "the break in the pill")
        self.other.type("while the break runs")
        self.assertRegex(self.pill(TITLE).name, r", 0:\d\d left$")
        self.assertEqual(self.tendel.outcomes(), [])
        self.until(lambda: self.pill("Nice work!"), "the check mark", 25)
        self.assertEqual(self.tendel.outcomes(), ["done"])
        self.until(lambda: not self.pill(""), "nothing in the notch")
        self.other.type("after")

    def test_break_stopped_in_the_pill(self):
        self.tendel.start()
        self.tendel.create_reminder(TITLE, break_seconds=60)
        self.work_elsewhere()
        self.wait_for_alert(TITLE)
        self.answer("Start.*")
        run("xdotool", "mousemove", *AWAY)
        self.until(lambda: self.pill(TITLE) and not self.tendel.find(TITLE, "alert"), "the break in the pill")
        self.open_card(TITLE)
        self.answer("Stop")
        self.until(self.tendel.outcomes, "the answer in the store")
        self.assertEqual(self.tendel.outcomes(), ["skipped"])


if __name__ == "__main__":
    main()
