"""A reminder made in the editor fires on the screen, is answered with a click, and its answer is in the store."""

import re
import time

from case import Case, main
from desktop import coming_minute, press, run

TITLE = "Look away"


class Alerts(Case):
    def alert(self, **reminder):
        """A reminder from the editor, its alert on the screen while the user types elsewhere."""
        self.tendel.start()
        self.tendel.create_reminder(TITLE, **reminder)
        self.work_elsewhere()
        self.wait_for_alert(TITLE)

    def assert_outcome(self, outcome, seconds=10):
        """One record of this outcome, of an alert that was due at the begin of a minute, this one or the last."""
        self.until(self.tendel.outcomes, "an answer in the store", seconds)
        rows = self.tendel.query("SELECT outcomeRaw, reminderTitle, fireDate, respondedAt FROM events")
        self.assertEqual(len(rows), 1, rows)
        stored, title, due, answered = rows[0].split("|")
        self.assertEqual((stored, title), (outcome, TITLE))
        self.assertEqual(int(due) % 60_000_000, 0)
        self.assertLess(abs(int(answered) / 1e6 - time.time()), 30)
        self.assertGreater(int(answered), int(due))

    def test_done(self):
        self.alert()
        self.answer("Done")
        self.assert_outcome("done")
        self.wait_until_alert_is_gone()
        self.other.type("after")

    def test_skip_with_the_window_closed(self):
        self.tendel.start()
        self.tendel.create_reminder(TITLE)
        press("alt+F4")
        self.tendel.wait_gone("New Reminder")
        self.work_elsewhere()
        self.wait_for_alert(TITLE)
        self.answer("Skip")
        self.assert_outcome("skipped")
        self.other.type("after")

    def test_no_answer(self):
        self.tendel.set(alertAutoHide=10)
        self.alert()
        run("xdotool", "mousemove", "640", "500")
        self.assert_outcome("expired", 20)
        self.other.type("after")

    def test_snooze(self):
        self.tendel.set(snoozeMinutes=1)
        # Of the two firings the second must be the snooze's, not the next of a chain by the minute.
        self.alert(start=coming_minute(self.zone, 15), interval=60)
        self.answer("Snooze 1 min")
        self.assert_outcome("snoozed")
        answered = int(self.tendel.query("SELECT respondedAt FROM events")[0])
        self.wait_until_alert_is_gone()
        self.until(lambda: self.alert_button("Done"), "the alert again", 75)
        self.assertGreaterEqual(time.time(), answered / 1e6 + 60)
        self.answer("Done")
        self.until(lambda: self.tendel.outcomes() == ["snoozed", "done"], "both answers in the store")
        self.other.type("after")

    def test_timed_break(self):
        self.alert(break_seconds=10)
        self.answer("Start.*")
        shown = []

        def counts_down():
            for element in self.tendel.elements():
                match = re.search(r"\b0:(\d\d)\b", element.name or "")
                if match and match[1] not in shown:
                    shown.append(match[1])
            return self.tendel.outcomes()

        self.until(counts_down, "the end of the break", 20)
        self.assert_outcome("done")
        self.assertGreaterEqual(len(shown), 5, shown)
        self.assertEqual(shown, sorted(shown, reverse=True))
        self.other.type("after")


if __name__ == "__main__":
    main()
