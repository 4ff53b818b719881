"""The program is driven over the session bus with gdbus, as a script or a keyboard shortcut drives it: what follows is on
the screen and in the store, what cannot be done is answered with a named error, and changes are told."""

import configparser
import os
import re
import signal
import subprocess
import time
import xml.etree.ElementTree as ElementTree
from pathlib import Path

from case import Case, main
from desktop import minute_after, on_the_clock, press, run, type_text, until
from gi.repository import Gio, GLib

DATA = Path(__file__).resolve().parents[2] / "data"
NAME, OBJECT = "app.tendel.Tendel", "/app/tendel/Tendel"
AT = ("--session", "--dest", NAME, "--object-path", OBJECT)
TITLE = "Look away"


def ask_bus(method, *arguments):
    return run("gdbus", "call", "--session", "--dest", "org.freedesktop.DBus", "--object-path", "/org/freedesktop/DBus",
               "--method", f"org.freedesktop.DBus.{method}", *arguments)


def call(method, *arguments, interface=NAME):
    """What a method returns: one value, or a tuple of several."""
    answer = run("gdbus", "call", *AT, "--method", f"{interface}.{method}", *map(str, arguments))
    values = GLib.Variant.parse(None, answer).unpack()
    return values[0] if len(values) == 1 else values


def error(method, *arguments, interface=NAME):
    """The last part of the error's name, and its sentence."""
    result = subprocess.run(["gdbus", "call", *AT, "--method", f"{interface}.{method}", *map(str, arguments)],
                            capture_output=True, text=True)
    match = re.match(r"Error: GDBus\.Error:([\w.]+): (.*)", result.stderr)
    assert match, f"{method}{arguments} was not refused: {result.stdout}{result.stderr}"
    return match[1].removeprefix(f"{NAME}.Error."), match[2]


def get(name):
    return call("Get", NAME, name, interface="org.freedesktop.DBus.Properties")


def properties(*names):
    everything = call("GetAll", NAME, interface="org.freedesktop.DBus.Properties")
    return tuple(everything[name] for name in names)


def windows():
    """The program's main window, by its number; also without a bus that would tell what is in it."""
    return subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^Tendel$"],
                          capture_output=True, text=True).stdout


def interface_of(description):
    """The interface in an introspection, whatever the order of attributes and the white space."""
    [found] = [i for i in ElementTree.fromstring(description).iter("interface") if i.get("name") == NAME]
    return [(element.tag, sorted(element.attrib.items()), len(element)) for element in found.iter()]


class Monitor:
    """gdbus monitor, which prints a line for each signal of the program."""

    def __init__(self):
        self.log = Path(os.environ["HOME"], "signals.txt")
        with self.log.open("w") as log:
            self.process = subprocess.Popen(["gdbus", "monitor", *AT[:3]], stdout=log)
        until(lambda: "is owned by" in self.log.read_text(), "the monitor")

    def take(self, *parts, seconds=40):
        """The first line, of those not taken yet, that holds all these parts."""
        def line():
            return next((l for l in self.log.read_text().splitlines() if all(p in l for p in parts)), None)
        return until(line, f"{parts} among the signals", seconds)

    def stop(self):
        self.process.kill()
        self.process.wait()


class Remote(Case):
    def start(self, *arguments):
        self.tendel.start(*arguments)
        until(lambda: NAME in ask_bus("ListNames"), "the name on the bus")
        self.monitor = Monitor()
        self.addCleanup(self.monitor.stop)

    def assert_refused(self, kind, method, *arguments, says=""):
        name, sentence = error(method, *arguments)
        self.assertEqual(name, kind)
        self.assertRegex(sentence, says + r".*\.$")

    def test_description(self):
        self.start("--at-login")
        told = call("Introspect", interface="org.freedesktop.DBus.Introspectable")
        self.assertEqual(interface_of(told), interface_of((DATA / f"{NAME}.xml").read_text()))
        self.assertIn("org.freedesktop.Application", told)
        # What is wrong before it reaches the program is answered by the bus's own errors.
        self.assertEqual(error("Pause")[0], "org.freedesktop.DBus.Error.UnknownMethod")
        with self.assertRaisesRegex(GLib.Error, "UnknownMethod.*'PauseFor'"):
            Gio.bus_get_sync(Gio.BusType.SESSION).call_sync(NAME, OBJECT, NAME, "PauseFor", GLib.Variant("(s)", ("long",)),
                                                            None, Gio.DBusCallFlags.NONE, 20_000)
        name, _ = error("Set", NAME, "Waiting", "<uint32 7>", interface="org.freedesktop.DBus.Properties")
        self.assertEqual(name, "org.freedesktop.DBus.Error.PropertyReadOnly")

    def test_pause(self):
        self.start()
        self.tendel.wait_until_active()
        self.assertEqual(properties("HoldReason", "HoldUntil", "Waiting"), ("", 0, 0))
        self.assert_refused("NotPaused", "Resume", says="PauseFor")
        for wrong in (0, 525_601):
            self.assert_refused("InvalidArgument", "PauseFor", wrong, says="525600")
        for wrong in (0, int(time.time()) - 5, int(time.time() * 1000), 2**63 - 1):
            self.assert_refused("InvalidArgument", "PauseUntil", wrong, says="seconds since 1970")
        self.assertEqual(self.tendel.status(), "")

        end = call("PauseFor", 45)
        self.assertLess(abs(end - time.time() - 45 * 60), 10)
        self.assert_paused(end)
        self.monitor.take("PropertiesChanged", "'HoldReason': <'pause'>", f"'HoldUntil': <int64 {end}>")
        call("PauseUntil", end := minute_after(3600))
        self.assert_paused(end)
        self.assertEqual(call("PauseUntilTomorrow"), get("HoldUntil"))
        call("Resume")
        until(lambda: self.tendel.status() == "", "the end of the pause in the window")
        self.monitor.take("PropertiesChanged", "'HoldReason': <''>", "'HoldUntil': <int64 0>")
        self.assertNotIn("Focus", self.monitor.log.read_text())  # only what has changed is told

    def assert_paused(self, end):
        self.assertEqual(properties("HoldReason", "HoldUntil"), ("pause", end))
        text = f"Paused until {on_the_clock(self.zone, end)}"
        until(lambda: self.tendel.status() == text, f'"{text}" in the foot of the window')

    def test_desktop_actions(self):
        self.start("--at-login")
        run("desktop-file-validate", str(DATA / f"{NAME}.desktop"))
        entry = configparser.ConfigParser(interpolation=None)
        entry.read(DATA / f"{NAME}.desktop")
        actions = entry["Desktop Entry"]["Actions"].strip(";").split(";")
        effects = {"pause-for-1-hour": lambda: get("HoldReason") == "pause",
                   "resume": lambda: get("HoldReason") == "",
                   "start-focus": lambda: get("FocusPhase") == "focus",
                   "open-stats": lambda: self.tendel.find("Stats", "radio button")}
        self.assertEqual(actions, list(effects))
        for action, has_effect in effects.items():
            # Of a launcher that speaks over the bus, and of one that runs what the entry says.
            if action in ("pause-for-1-hour", "open-stats"):
                call("ActivateAction", action, "[]", "{}", interface="org.freedesktop.Application")
            else:
                started = entry[f"Desktop Action {action}"]["Exec"].replace("tendel", self.tendel.binary, 1).split()
                subprocess.run(started, check=True, timeout=30)
            until(has_effect, f"the effect of {action}")
        refused = subprocess.run([self.tendel.binary, "--action=resume"], capture_output=True, text=True)
        self.assertEqual((refused.returncode, refused.stderr), (1, error("Resume")[1] + "\n"))

    def test_focus(self):
        self.tendel.set(focusPlan={"focusMinutes": 25, "breakMinutes": 5})
        self.start()
        self.tendel.wait_until_active()
        for method in ("PauseFocus", "ResumeFocus", "SkipFocus", "ExtendFocus", "ExtendBreak", "StopFocus"):
            self.assert_refused("NoFocusSession", method, says="StartFocus")
        steps = (("StartFocus", "focus", 1, 1500), ("PauseFocus", "focus", 1, 0), ("ResumeFocus", "focus", 1, 1500),
                 ("SkipFocus", "shortBreak", 1, 300), ("ExtendFocus", "focus", 1, 300), ("SkipFocus", "shortBreak", 1, 300),
                 ("SkipFocus", "ready", 1, 0), ("ExtendBreak", "shortBreak", 1, 300), ("SkipFocus", "ready", 1, 0),
                 ("StartFocus", "focus", 2, 1500), ("StopFocus", "", 0, 0))
        for method, phase, number, seconds in steps:
            call(method)
            *found, paused, left, end = properties("FocusPhase", "FocusRound", "FocusPaused", "FocusPausedRemaining",
                                                   "FocusEndsAt")
            self.assertEqual((found, paused), ([phase, number], method == "PauseFocus"), method)
            self.assertLess(abs((end and end - time.time()) - seconds), 15, method)
            self.assertEqual(1480 < left <= 1500, paused)
            self.assertEqual(properties("HoldReason", "HoldUntil"), ("focus", end) if phase == "focus" and end else ("", 0))
            if method == "PauseFocus":
                self.assert_refused("NotPossibleNow", "PauseFocus", says="ResumeFocus")
                self.monitor.take("PropertiesChanged", "'FocusPaused': <true>", "'HoldReason': <''>")
            if method == "ResumeFocus":
                until(lambda: self.tendel.status().startswith("Focusing"), "the focus in the foot of the window")
                self.assert_refused("NotPossibleNow", "StartFocus", says="runs already")
        blocks = self.tendel.query('SELECT plannedMinutes, "end" IS NOT NULL FROM focusBlocks ORDER BY id')
        self.assertEqual(blocks, ["30|1", "25|1"])

    def test_alert(self):
        self.tendel.set(snoozeMinutes=1)
        self.start()
        self.assert_refused("NoAlert", "AnswerAlert", "done")
        due = minute_after(40)
        self.tendel.create_reminder(TITLE, start=on_the_clock(self.zone, due), interval=60, break_seconds=30)
        self.assertEqual(properties("NextTitle", "NextTime"), (TITLE, due))
        self.monitor.take("PropertiesChanged", f"'NextTime': <int64 {due}>")
        self.work_elsewhere()
        self.wait_for_alert(TITLE)
        answers = ["start", "done", "snooze", "skip", "hadBreak"]
        self.monitor.take("AlertShown", f"('{TITLE}', {answers})")
        self.assertEqual(properties("AlertTitle", "AlertAnswers"), (TITLE, answers))
        self.assert_refused("InvalidArgument", "AnswerAlert", "later", says="start, done, snooze, skip, hadBreak")
        self.assertEqual(self.tendel.outcomes(), [])
        call("AnswerAlert", "snooze")
        self.assertEqual(self.tendel.outcomes(), ["snoozed"])
        self.monitor.take("AlertClosed", f"('{TITLE}', 'snoozed')")
        self.assertLess(abs(get("NextTime") - time.time() - 60), 10)
        self.wait_until_alert_is_gone()

        self.wait_for_alert(TITLE)
        call("AnswerAlert", "start")
        self.assertLess(abs(get("BreakEndsAt") - time.time() - 30), 10)
        self.until(lambda: self.tendel.find(r".*\b0:\d\d\b.*"), "the break in the alert")
        call("AnswerAlert", "skip")
        self.assertEqual(self.tendel.outcomes(), ["snoozed", "skipped"])
        self.monitor.take("AlertClosed", f"('{TITLE}', 'skipped')")
        self.assertEqual(properties("AlertTitle", "AlertAnswers", "BreakEndsAt"), ("", [], 0))
        self.wait_until_alert_is_gone()
        self.other.type("after")

    def test_window_and_quit(self):
        self.start("--at-login")
        self.assert_refused("InvalidArgument", "OpenSection", "library", says="workReminders, focus, stats")
        self.assertIsNone(self.tendel.find("New Reminder"))
        call("OpenSection", "workReminders")
        self.tendel.wait_until_active()
        self.tendel.wait_for("New Reminder", "push button").click()
        self.tendel.wait_for("Title", "text").click()
        type_text("Unsaved")
        until(lambda: self.tendel.find("Title", "text").text == "Unsaved", "the title in the editor")
        self.assert_refused("NotPossibleNow", "Quit", says="not saved")
        self.assertIsNone(self.tendel.process.poll())
        press("alt+F4")
        self.tendel.wait_for("Discard.*", "push button").click()
        self.tendel.wait_gone("New Reminder")
        call("OpenWindow")
        self.tendel.wait_until_active()
        call("Quit")
        self.assertEqual(self.tendel.process.wait(20), 0)

    def test_started_by_the_bus(self):
        services = Path(os.environ["XDG_DATA_HOME"], "dbus-1", "services")
        services.mkdir(parents=True)
        service = (DATA / f"{NAME}.service.in").read_text()
        service = service.replace("@CMAKE_INSTALL_FULL_BINDIR@/tendel", self.tendel.binary)
        (services / f"{NAME}.service").write_text(service)
        ask_bus("ReloadConfig")
        ask_bus("UpdateActivationEnvironment", str({"DISPLAY": os.environ["DISPLAY"], "TZ": self.zone}))
        call("ActivateAction", "pause-for-1-hour", "[]", "{}", interface="org.freedesktop.Application")
        self.assertEqual(get("HoldReason"), "pause")
        self.assertEqual(windows(), "")
        call("Activate", "{}", interface="org.freedesktop.Application")
        until(windows, "the window")
        call("Quit")
        until(lambda: not windows(), "the end")

    def test_no_session_bus(self):
        self.tendel.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent"
        self.tendel.start("--action=open-stats")
        until(windows, "the window")
        self.tendel.process.send_signal(signal.SIGTERM)
        self.assertEqual(self.tendel.process.wait(20), 0)


if __name__ == "__main__":
    main()
