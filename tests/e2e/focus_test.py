"""A focus session started in the window: its alert is answered, and what was focused is in the store."""

import time

from case import Case, main
from desktop import until

PLAN = {"focusMinutes": 1, "breakMinutes": 1}
FOCUS_ENDED = "Time for a 1 min break"
BREAK_ENDED = "Break's over"


class Focus(Case):
    def begin(self):
        """A session of one minute's rounds, from the window."""
        self.tendel.set(focusPlan=PLAN)
        self.tendel.start()
        self.tendel.wait_until_active()
        self.tendel.wait_for("Focus", "radio button").click()
        self.press("Start Focus")
        self.assert_timer("Focusing.*")
        self.assert_blocks("1|0|0|0")

    def press(self, name):
        """A button in the window."""
        self.tendel.wait_for(name, "push button").click()

    def assert_timer(self, name):
        until(lambda: self.tendel.find(name, "label"), f'"{name}" in the window')

    def assert_blocks(self, *expected):
        """Planned minutes, whether it has an end, focused seconds and whether it ran to its end."""
        rows = lambda: self.tendel.query("""SELECT plannedMinutes, "end" IS NOT NULL, focusedSeconds, finished
                                            FROM focusBlocks ORDER BY id""")
        until(lambda: rows() == list(expected), f"{expected} in the store")

    def answer_alert(self, title, answer):
        """Answers the alert that ends the phase, while the user types elsewhere."""
        self.work_elsewhere()
        self.until(lambda: self.tendel.find(title, "alert"), f'the alert "{title}"', 90)
        self.other.type("while the alert is up")
        self.answer(answer)
        self.until(lambda: not self.tendel.find(title, "alert"), "the alert off the screen")
        self.other.type("after")

    def test_five_more_minutes_of_focus(self):
        self.begin()
        self.answer_alert(FOCUS_ENDED, "5 more minutes")
        self.assert_timer("Five more minutes, 5 min left")
        self.assert_blocks("6|0|60|1")  # the same block goes on
        time.sleep(3)
        self.press("Stop")
        self.assert_timer("Focus, 1 min")
        rows = self.tendel.query("""SELECT focusedSeconds, round(("end" - start) / 1e6) FROM focusBlocks
                                    WHERE plannedMinutes = 6 AND "end" IS NOT NULL""")
        self.assertEqual(len(rows), 1, rows)
        focused, lasted = map(float, rows[0].split("|"))
        self.assertGreaterEqual(focused, 63)
        self.assertLess(focused, lasted)  # the seconds of the break before the answer are not focus

    def test_skipped_break(self):
        self.begin()
        self.answer_alert(FOCUS_ENDED, "Skip break")
        self.assert_timer("Break's over, 1 min")
        self.assert_blocks("1|1|60|1")
        self.press("Start Next Round")
        self.assert_timer("Focusing.*")
        self.assert_blocks("1|1|60|1", "1|0|0|0")

    def skip_to_break(self):
        self.begin()
        self.press("Skip to Break")
        self.assert_timer("Break,.*")
        [row] = self.tendel.query("SELECT finished FROM focusBlocks WHERE \"end\" IS NOT NULL")
        self.assertEqual(row, "0")

    def test_next_round(self):
        self.skip_to_break()
        self.answer_alert(BREAK_ENDED, "Start focus")
        self.assert_timer("Focusing.*")
        self.assertEqual(self.tendel.query("SELECT \"end\" IS NULL FROM focusBlocks ORDER BY id"), ["0", "1"])

    def test_five_more_minutes_of_break(self):
        self.skip_to_break()
        self.answer_alert(BREAK_ENDED, "5 more minutes of break")
        self.assert_timer("Break, 5 min left")
        self.assertEqual(self.tendel.query("SELECT count(*) FROM focusBlocks"), ["1"])


if __name__ == "__main__":
    main()
