"""The statistics and the day's line of the running program: what a screen reader is told of each of their parts, and a
history that leaves by a file and comes back."""

import os
import re
import time
from collections import Counter
from datetime import datetime, timedelta, timezone
from pathlib import Path

import history
from case import Case, main
from desktop import hours_ahead, local_now, press, type_text, until

COUNTED = {"done": "done", "breakTaken": "done", "skipped": "missed", "expired": "missed", "snoozed": "snoozed"}


def in_words(counts, focus_minutes):
    words = [f"{counts[word]} {word}" for word in ("done", "missed", "snoozed") if counts[word]]
    if focus_minutes:
        words.append(f"{focus_minutes} minutes of focus")
    return ", ".join(words) or "nothing counted"


class Stats(Case):
    def setUp(self):
        super().setUp()
        self.tendel.start()
        until(lambda: self.tendel.store.exists(), "the store")
        self.tendel.wait_until_active()
        self.tendel.stop()
        zone = timezone(timedelta(hours=hours_ahead(self.zone)))
        self.midnight = local_now(self.zone).replace(hour=0, minute=0, second=0, microsecond=0, tzinfo=zone)
        self.kind = "work" if self.midnight.weekday() < 5 else "private"

    def at(self, hour, minute=0, days_ago=0):
        return self.midnight + timedelta(days=-days_ago, hours=hour, minutes=minute)

    def write_history(self):
        """Two reminders, one of which was deleted, on today and six of the days before."""
        answers = [(1, 0, (8, 0), "done"), (1, 0, (8, 30), "expired"), (1, 0, (9, 5), "snoozed"),
                   (1, 0, (9, 45), "breakTaken"), (None, 0, (9, 45), "done"), (None, 0, (10, 0), "skipped")]
        for day in (1, 2, 3, 6, 7, 20):
            answers += [(1, day, (7, 10 * i), outcome)
                        for i, outcome in enumerate(("done", "done", "expired", "done", "snoozed"))]
            answers.append((None, day, (14, 0), "expired" if day < 4 else "done"))
        self.events = [(number, self.at(*due, days), self.at(*due, days) + timedelta(seconds=9), outcome,
                        "Drink water" if number else "Old habit", self.kind) for number, days, due, outcome in answers]
        self.blocks = [(self.at(9, 10, days), 1500, True) for days in (0, 0, 3)]
        # Its own times are over for today.
        history.write(self.tendel.store, [("Drink water", self.kind, 0, 1440)], self.events, self.blocks)

    def open_stats(self, **settings):
        self.tendel.set(**settings)
        self.tendel.start()
        self.tendel.wait_until_active()
        self.tendel.wait_for("Stats", "radio button").click()
        self.tendel.wait_for("Export and import", "push button")

    def names(self, role):
        return [element.name for element in self.tendel.elements() if element.role == role]

    def expected(self, start, end):
        counts = Counter(COUNTED[outcome] for _, due, _, outcome, *_ in self.events if start <= due < end)
        return in_words(counts, sum(seconds // 60 for begun, seconds, _ in self.blocks if start <= begun < end))

    def test_a_screen_reader_is_told_every_part(self):
        self.write_history()
        self.open_stats(statsRange="week")
        for days in range(6, -1, -1):
            start = self.at(0, 0, days)
            said = f"{start:%A, {start.day} %B}: {self.expected(start, start + timedelta(days=1))}"
            self.assertIn(said, self.names("list item"))
        whole = Counter(COUNTED[outcome] for _, due, _, outcome, *_ in self.events if due >= self.at(0, 0, 6))
        total = whole["done"] + whole["missed"]
        told = "\n".join(self.names(".*") + [e.name for e in self.tendel.elements()])
        for tile in (f"{whole['done']} of {total} done, {whole['done'] * 100 // total}%", "Streak: ",
                     "Focus: 1 hour 15 minutes, 3 blocks finished",
                     f"{whole['missed']} missed, {whole['snoozed']} snoozed"):
            self.assertIn(tile, told)
        self.assertIn("At least 60% done. Good days in a row make your streak.", told)
        habits = [name for name in self.names("list item") if name.startswith(("Drink water:", "Old habit, deleted:"))]
        self.assertEqual([name.split(":")[0] for name in habits], ["Drink water", "Old habit, deleted"])

        self.tendel.wait_for("Today", "radio button").click()
        for hour in (8, 9, 10, 23):
            end = f"{(hour + 1) % 24:02}:00"
            said = f"{hour:02}:00–{end}: {self.expected(self.at(hour), self.at(hour + 1))}"
            until(lambda: said in self.names("list item"), said)

        self.tendel.wait_for(f"{self.kind.title()} Reminders", "radio button").click()
        marks = until(lambda: [n for n in self.names("list item") if "Drink water" in n], "the day's line")
        self.assertIn("Drink water, 08:00, done at 08:00", marks)
        self.assertTrue(any("Old habit" in mark and "2 alerts at 09:45" in mark for mark in marks), marks)

    def choose(self, entry, file):
        """Takes an entry of the screen's menu with the keyboard and types the file that it asks for."""
        self.tendel.wait_for("Export and import", "push button").click()
        time.sleep(1)  # popups are not among what the program shows to assistive programs
        press(*["Down"] * ["csv", "json", "import"].index(entry), "Return")
        self.tendel.wait_for("File name:", "text")
        press("ctrl+a")
        type_text(str(file))
        # The first Return may be the completion's.
        until(lambda: not self.tendel.find("File name:", "text") or press("Return"), "the file's name taken")

    def statistics(self):
        return [name for name in self.names("list item") + self.names("label") if re.search(r"\d", name)]

    def test_history_leaves_by_a_file_and_comes_back(self):
        self.write_history()
        self.open_stats(statsRange="month")
        folder = Path(os.environ["HOME"])
        before = until(self.statistics, "the statistics")
        for suffix in ("csv", "json"):
            self.choose(suffix, folder / f"first.{suffix}")
            self.tendel.wait_for(f"Exported to .*first.{suffix}")
        self.assertTrue(self.tendel.query("SELECT * FROM events"))

        for suffix in ("csv", "json"):
            self.tendel.stop()
            for file in self.tendel.store.parent.iterdir():
                file.unlink()
            self.open_stats(statsRange="month")
            self.choose("import", folder / f"first.{suffix}")
            self.tendel.wait_for(f"Added 1 reminder, 42 .* and 3 focus blocks from .*first.{suffix}.*")
            until(lambda: set(before) <= set(self.statistics()), "the statistics as they were")
            self.choose("import", folder / f"first.{suffix}")
            self.tendel.wait_for("Nothing new in .*")
            self.choose(suffix, folder / f"second.{suffix}")
            self.tendel.wait_for(f"Exported to .*second.{suffix}")
            self.assertEqual((folder / f"second.{suffix}").read_bytes(), (folder / f"first.{suffix}").read_bytes())

        (folder / "bad.csv").write_text((folder / "first.csv").read_text().replace("T0", "Tx", 1))
        rows = self.tendel.query("SELECT * FROM events")
        self.choose("import", folder / "bad.csv")
        self.tendel.wait_for(r".*bad\.csv.*line \d+.*")
        self.assertEqual(self.tendel.query("SELECT * FROM events"), rows)


if __name__ == "__main__":
    main()
