"""What the program does when its user gets busy or leaves, and when the clock or its zone moves: with an audio server,
a login manager, a session manager, windows and input that are real to it."""

import os
import time

from audio_server import AudioServer, Call
from case import Case, main
from desktop import OtherWindow, hours_ahead, minute_after, on_the_clock, run, until
from login_manager import LoginManager
from movable_clock import MovableClock
from session_manager import SessionManager
from tray_host import TrayHost

TITLE = "Look away"


class Presence(Case):
    def during(self, service):
        """The service, stopped at the end of the case."""
        self.addCleanup(service.stop)
        return service

    def create_due(self, due=None, title=TITLE, interval=60, **reminder):
        """A reminder from the editor that is first due at that instant, or soon; the instant."""
        due = due or minute_after(30)
        self.tendel.create_reminder(title, start=on_the_clock(self.zone, due), interval=interval, **reminder)
        return due

    def wait_for_alert(self, title=TITLE, seconds=120):
        self.until(lambda: self.alert(title), f'the alert "{title}"', seconds)
        self.other.type("while the alert is up")

    def alert(self, title=TITLE):
        element = self.tendel.find(title, "alert")
        return element if element and self.alert_button("Done|Start .*") else None

    def notice(self):
        """What the alert says below the title."""
        alert = self.tendel.find(".*", "alert")
        return alert.description if alert else ""

    def assert_status(self, text):
        """In the window's foot and in the tray."""
        until(lambda: self.tendel.status() == text, f'"{text}" in the foot of the window')
        if text:
            until(lambda: self.icon.tool_tip() == text, f'"{text}" in the tray')

    def assert_kept_free(self, until_instant):
        """No alert comes up to that time."""
        while time.time() < until_instant:
            self.assertIsNone(self.tendel.find(".*", "alert"))
            self.assert_focus()
            time.sleep(0.5)

    def rows(self):
        """Title, outcome, and the second at which it was due."""
        return self.tendel.query("SELECT reminderTitle, outcomeRaw, fireDate / 1000000.0 FROM events ORDER BY id")

    def assert_rows(self, *expected):
        expected = [f"{title}|{outcome}|{due:.1f}" for title, outcome, due in expected]
        self.until(lambda: len(self.rows()) >= len(expected), f"the rows {expected}")
        self.assertEqual(self.rows(), expected)

    def start(self):
        tray = TrayHost()
        self.tendel.start()
        self.icon = tray.wait_for_icon()

    def test_call_takes_the_alert_and_gives_it_back(self):
        server = self.during(AudioServer())
        self.start()
        due = self.create_due()
        self.work_elsewhere()
        self.wait_for_alert()

        call = self.during(Call(server))
        begun = time.monotonic()
        self.wait_until_alert_is_gone()
        # At once, and not when somebody next looks: a second, and what a busy machine takes.
        self.assertLess(time.monotonic() - begun, 4)
        self.assert_status("In a call · 1 reminder waits")
        self.other.type("in the call")
        self.assertEqual(self.rows(), [])

        call.stop()
        self.wait_for_alert()
        self.assertIn("Held during your call", self.notice())
        self.assert_status("")
        self.answer("Done")
        self.assert_rows((TITLE, "done", due))

    def test_away_through_two_due_times(self):
        login = self.during(LoginManager())
        self.tendel.environment.update(login.environment)
        self.start()
        due = minute_after(45)
        self.create_due(due, "Stretch", interval=1, break_seconds=10)
        self.create_due(due, interval=1)
        self.work_elsewhere()
        login.set_locked(True)
        self.assert_status("Away")
        self.assert_kept_free(due + 63)
        self.assert_status("Away · 1 reminder waits")
        taken = [("Stretch", "breakTaken", instant) for instant in (due, due + 60)]
        self.assert_rows(*taken)

        login.set_locked(False)
        self.wait_for_alert()
        self.assertIn(f"Missed at {on_the_clock(self.zone, due)} · you were away", self.notice())
        self.answer("Done")
        self.assert_rows(*taken, (TITLE, "done", due))

    def test_presentation(self):
        session = SessionManager()
        self.start()
        due = self.create_due()
        self.other = OtherWindow("-fullscreen")
        self.assertEqual(self.tendel.status(), "")  # a window alone presents nothing
        session.inhibit("org.example.Slides")
        self.assert_status("Presenting")
        self.assert_kept_free(due + 5)
        self.assert_status("Presenting · 1 reminder waits")
        self.other.type("on the slide")

        session.inhibit(None)
        self.wait_for_alert()
        self.assertIn("Held during your presentation", self.notice())
        self.answer("Done")
        self.assert_rows((TITLE, "done", due))

    def test_break_goes_on_while_the_screen_is_locked(self):
        login = self.during(LoginManager())
        self.tendel.environment.update(login.environment)
        self.start()
        due = self.create_due(break_seconds=20)
        self.work_elsewhere()
        self.wait_for_alert()
        self.answer("Start.*")
        begun = time.time()
        login.set_locked(True)
        self.assert_status("Away")
        self.until(lambda: self.tendel.find(r".*\b0:\d\d\b.*"), "the rest of the break")
        self.assert_rows((TITLE, "done", due))
        self.assertLess(abs(time.time() - begun - 20), 8)
        login.set_locked(False)
        self.assert_status("")
        self.assert_rows((TITLE, "done", due))

    def test_away_without_input(self):
        self.tendel.set(idleMinutes=3)
        self.start()
        # Made first, and due only after the three minutes that begin with the last key.
        due = minute_after(45 + 180 + 10)
        self.create_due(due, "Stretch", break_seconds=10)
        self.create_due(due)
        self.work_elsewhere()
        last_input = time.time()
        until(lambda: self.tendel.status() == "Away", "the status", 200)
        self.assertGreaterEqual(time.time() - last_input, 175)
        self.assert_kept_free(due + 2)
        self.assert_rows(("Stretch", "breakTaken", due))
        self.assert_status("Away · 1 reminder waits")

        run("xdotool", "mousemove_relative", "--", "5", "5")
        self.wait_for_alert()
        self.assertIn("you were away", self.notice())
        self.answer("Done")
        self.assert_rows(("Stretch", "breakTaken", due), (TITLE, "done", due))

    def test_clock_set_back_three_hours(self):
        clock = MovableClock(os.environ["TENDEL_E2E_CLOCK"], self.zone)
        self.tendel.environment.update(clock.environment)
        self.start()
        self.tendel.create_reminder(TITLE)  # by the minute, from nine in the morning
        self.work_elsewhere()
        self.wait_for_alert()
        self.answer("Done")
        self.until(self.rows, "the first answer")
        first = float(self.rows()[0].split("|")[2])
        self.wait_until_alert_is_gone()

        back = 3 * 3600
        clock.move(self.tendel.process, -back)
        coming = lambda: f"Next: {TITLE}, {on_the_clock(self.zone, minute_after(1) - back)}"
        # At once, and not only with the next minute.
        self.until(lambda: self.icon.tool_tip() == coming(), "the next time in the tray", 10)
        self.wait_for_alert()
        self.answer("Done")
        self.until(lambda: len(self.rows()) == 2, "the second answer")
        second = float(self.rows()[1].split("|")[2])
        self.assertIn(second - (first - back), (60, 120))

    def test_zone_changed_at_noon(self):
        clock = MovableClock(os.environ["TENDEL_E2E_CLOCK"], self.zone)
        self.tendel.environment.update(clock.environment)
        self.start()
        # There are no such zones further from UTC than fourteen hours.
        later = 3 if hours_ahead(self.zone) <= 11 else -3
        due = minute_after(30)
        start = self.create_due(due + later * 3600, interval=480)
        self.work_elsewhere()
        clock.set_zone(f"Etc/GMT{-hours_ahead(self.zone) - later:+d}")
        self.until(lambda: self.icon.tool_tip() == f"Next: {TITLE}, {on_the_clock(self.zone, start)}",
                   "the next time in the tray")
        self.wait_for_alert()
        self.answer("Done")
        self.assert_rows((TITLE, "done", due))


if __name__ == "__main__":
    main()
