"""What the user made is there again after a start, and a store that cannot be opened never stops the program."""

import re

from case import Case, main
from desktop import until


class Store(Case):
    def make_store(self):
        self.tendel.start("--at-login")
        until(self.tendel.store.exists, "the store")
        until(lambda: self.tendel.query("PRAGMA user_version") != ["0"], "its tables")
        self.assertEqual(self.tendel.stop(), 0)

    def test_restart_keeps_reminders(self):
        self.tendel.start()
        self.tendel.create_reminder("Drink a glass of water")
        before = self.tendel.query("SELECT * FROM reminders")
        self.assertEqual(self.tendel.stop(), 0)
        self.tendel.start()
        self.tendel.open_page()
        self.tendel.wait_for(".*Drink a glass of water.*")
        self.assertEqual(self.tendel.query("SELECT * FROM reminders"), before)

    def test_damaged_store_is_kept_and_told(self):
        self.make_store()
        damaged = b"This is not a database. " * 400
        self.tendel.store.write_bytes(damaged)

        self.tendel.start("--at-login")
        self.tendel.wait_for(".*Tendel couldn't open its data.*")
        folders = list(self.tendel.store.parent.glob("Damaged Store *"))
        self.assertEqual(len(folders), 1)
        self.assertEqual((folders[0] / self.tendel.store.name).read_bytes(), damaged)
        told = ("Your reminders and stats were reset so Tendel can keep working. The old data was kept in a folder "
                f'named "{folders[0].name}"')
        until(lambda: any(told in (e.name or "") or told in e.text for e in self.tendel.elements()),
              f"the text {told!r}")
        self.assertEqual(self.tendel.query("SELECT count(*) FROM reminders"), ["0"])

        self.tendel.wait_for("OK", "push button").click()
        self.tendel.wait_gone(".*couldn't open its data.*")
        self.assertEqual(self.tendel.stop(), 0)
        self.tendel.start()
        self.tendel.wait_for("New Reminder", "push button")
        self.assertIsNone(self.tendel.find(".*couldn't open its data.*"))

    def test_no_store_at_all_is_told_and_ends(self):
        # A file stands where the folder of the data would be: neither the store nor a fresh one can be opened.
        self.tendel.store.parent.write_text("in the way", encoding="utf-8")
        self.tendel.start("--at-login")
        self.tendel.wait_for("Tendel can't start")
        reason = re.compile("Couldn't open the reminders store: .+; starting fresh failed too: .+")
        until(lambda: any(reason.fullmatch(e.name or "") or reason.fullmatch(e.text) for e in self.tendel.elements()),
              "the reason")
        self.tendel.wait_for("Quit", "push button").click()
        self.assertNotEqual(self.tendel.process.wait(10), 0)
        self.assertTrue(any(map(reason.fullmatch, self.tendel.log.read_text().splitlines())))
        self.assertEqual(self.tendel.store.parent.read_text(encoding="utf-8"), "in the way")


if __name__ == "__main__":
    main()
