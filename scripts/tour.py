"""Plays a short tour on the desktop of with-desktop: two reminders made in the editor, their alerts at the next minute,
an answer, a timed break and a focus session, with a picture of each.

    scripts/with-desktop /usr/bin/python3 scripts/tour.py PROGRAM FOLDER

The pictures, the settings and the store of the tour are then in FOLDER. Ends with an error when a step fails.
"""

import os
import shutil
import sys
import time
from pathlib import Path

from desktop import Tendel, coming_minute, take_picture, until, zone_where_it_is_noon


class Tour:
    def __init__(self, program, folder):
        shutil.rmtree(folder, ignore_errors=True)
        self.folder = folder
        os.environ["XDG_CONFIG_HOME"] = str(folder / "config")
        os.environ["XDG_DATA_HOME"] = str(folder / "data")
        self.tendel = Tendel(program, zone_where_it_is_noon())
        self.pictures = 0

    def picture(self, of, settle=0.6):
        """Takes a picture once what moves has come to rest."""
        time.sleep(settle)
        self.pictures += 1
        file = self.folder / f"{self.pictures}-{of.replace(' ', '-')}.png"
        if not take_picture(file):
            raise AssertionError(f"no picture of the {of}")
        print(f"  {file}", flush=True)

    def play(self):
        tendel = self.tendel
        print("Tendel starts, and opens its window", flush=True)
        tendel.start()
        tendel.wait_for("New Reminder", "push button")
        self.picture("empty window")

        print("Two reminders are made, one of them with a break of 10 seconds", flush=True)
        due = coming_minute(tendel.zone, 40)
        tendel.create_reminder("Look out of the window", "Find the furthest roof.", due, 45,
                               before_save=lambda: self.picture("editor"))
        tendel.create_reminder("Stretch your shoulders", "", due, 90, break_seconds=10)
        self.picture("reminders")

        print(f"At {due} both are due; the first is answered with Done", flush=True)
        tendel.wait_for("Done", "push button", 110)
        self.picture("alert", 1.2)
        tendel.answer("Done")
        self.picture("done", 0.4)
        until(lambda: tendel.outcomes() == ["done"], "the answer in the store")

        print("The second starts its break, which runs out", flush=True)
        tendel.answer("Start.*")
        self.picture("break", 3)
        until(lambda: tendel.outcomes() == ["done", "done"], "the end of the break in the store", 20)

        print("A focus session runs for a few seconds", flush=True)
        tendel.wait_for("Focus", "radio button").click()
        self.picture("focus section")
        tendel.wait_for("Start Focus", "push button").click()
        tendel.wait_for("Focusing.*", "label")
        self.picture("focus session", 3)
        tendel.wait_for("Stop", "push button").click()
        until(lambda: tendel.query('SELECT count(*) FROM focusBlocks WHERE "end" IS NOT NULL') == ["1"],
              "the focus block in the store")

        if tendel.stop() != 0:
            raise AssertionError("Tendel did not end in order")
        print("In the store:", flush=True)
        for row in tendel.query("SELECT reminderTitle, outcomeRaw, datetime(respondedAt / 1000000, 'unixepoch')"
                                " FROM events ORDER BY id"):
            print("  " + row.replace("|", ", "))


def main():
    tour = Tour(sys.argv[1], Path(sys.argv[2]).resolve())
    try:
        tour.play()
    except AssertionError as failure:
        take_picture(tour.folder / "failure.png")
        print(f"tour: {failure}\nOn the screen:\n{tour.tendel.describe()}", file=sys.stderr)
        if tour.tendel.log.exists():
            print(tour.tendel.log.read_text(), file=sys.stderr)
        sys.exit(1)
    finally:
        if tour.tendel.process:
            tour.tendel.process.kill()
    print(f"The tour is over. Its pictures are in {tour.folder}, its store is {tour.tendel.store}.")


if __name__ == "__main__":
    main()
