"""Drives the real program on the desktop of scripts/with-desktop: pointer and keyboard through the X server, what is
shown through the accessibility bus, what is stored with the sqlite3 command."""

import json
import os
import re
import shutil
import signal
import subprocess
import time
from datetime import datetime, timedelta, timezone
from pathlib import Path

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip()


# Seconds that a busy machine is given for what takes a moment on an idle one; only a failure takes so long.
PATIENCE = 40.0


def until(condition, what, seconds=PATIENCE):
    """Waits until the condition holds and returns its value; an AssertionError that says `what` when it never does."""
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"{what}: not within {seconds:g} s")
        time.sleep(0.1)


def at_rest(find, what, seconds=PATIENCE):
    """Waits until the element that `find` gives stays where it is, and returns it."""
    boxes = []

    def found():
        element = find()
        boxes.append(element and element.box)
        return element if element and len(boxes) > 2 and len(set(boxes[-3:])) == 1 else None

    return until(found, what, seconds)


def zone_where_it_is_noon():
    """A zone in which it is about twelve o'clock, so that no case meets midnight or the edge of the working hours."""
    offset = 12 - datetime.now(timezone.utc).hour
    return f"Etc/GMT{-offset:+d}" if offset else "Etc/UTC"


def hours_ahead(zone):
    """Of UTC, of a zone from zone_where_it_is_noon."""
    match = re.fullmatch(r"Etc/GMT([+-]\d+)", zone)
    return -int(match[1]) if match else 0


def local_now(zone):
    return datetime.now(timezone.utc) + timedelta(hours=hours_ahead(zone))


def minute_after(seconds):
    """The first full minute that is at least so many seconds away, in seconds since 1970."""
    return int(time.time() + seconds + 59) // 60 * 60


def on_the_clock(zone, instant):
    """What a clock of the zone shows then: "12:34"."""
    return f"{datetime.fromtimestamp(instant, timezone.utc) + timedelta(hours=hours_ahead(zone)):%H:%M}"


def coming_minute(zone, seconds):
    """The first full minute that is at least so many seconds away, on the clock of the zone."""
    return on_the_clock(zone, minute_after(seconds))


class Element:
    """Something on the screen, as assistive technology sees it."""

    def __init__(self, accessible):
        self.accessible = accessible

    @property
    def name(self):
        return self.accessible.get_name()

    @property
    def description(self):
        return self.accessible.get_description()

    @property
    def role(self):
        return self.accessible.get_role_name()

    @property
    def box(self):
        """Left, top, width and height on the screen."""
        extents = self.accessible.get_component_iface().get_extents(Atspi.CoordType.SCREEN)
        return extents.x, extents.y, extents.width, extents.height

    @property
    def text(self):
        """What an entry holds."""
        text = self.accessible.get_text_iface()
        return text.get_text(0, text.get_character_count()) if text else ""

    def has(self, state):
        return self.accessible.get_state_set().contains(state)

    def click(self):
        left, top, width, height = self.box
        # By way of a point beside it, so that it sees the pointer come in.
        run("xdotool", "mousemove", str(left + width // 2 - 3), str(top + height // 2))
        run("xdotool", "mousemove", str(left + width // 2), str(top + height // 2), "click", "1")


class Tendel:
    """The program, with the home that the environment gives it."""

    def __init__(self, binary, zone):
        self.binary = str(Path(binary).resolve())
        self.zone = zone
        self.environment = {"TZ": zone}  # in addition to the desktop's; None: without that variable
        self.process = None
        self.log = Path(os.environ["HOME"], "tendel.log")

    @property
    def settings(self):
        return Path(os.environ["XDG_CONFIG_HOME"], "tendel", "defaults.json")

    @property
    def store(self):
        return Path(os.environ["XDG_DATA_HOME"], "tendel", "Tendel.store")

    def set(self, **settings):
        self.settings.parent.mkdir(parents=True, exist_ok=True)
        self.settings.write_text(json.dumps(settings), encoding="utf-8")

    def start(self, *arguments):
        environment = {name: value for name, value in {**os.environ, **self.environment}.items() if value is not None}
        with self.log.open("ab") as log:
            self.process = subprocess.Popen([self.binary, *arguments], stdout=log, stderr=log, env=environment)

    def stop(self):
        """Ends it as the end of a session does; its exit code."""
        if self.process is None:
            return None
        self.process.send_signal(signal.SIGTERM)
        try:
            return self.process.wait(10)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
            raise AssertionError("the program did not end within 10 s of being told to") from None
        finally:
            self.process = None

    def query(self, sql):
        """The rows that the sqlite3 command prints, columns parted by |."""
        return run("sqlite3", "-readonly", "-cmd", ".timeout 5000", str(self.store), sql).splitlines()

    def outcomes(self):
        return self.query("SELECT outcomeRaw FROM events ORDER BY id")

    def wait_until_active(self):
        """Waits until the main window has the keyboard and the window manager has put it in its place."""
        until(lambda: subprocess.run(["xdotool", "getactivewindow", "getwindowpid"], capture_output=True, text=True)
              .stdout.strip() == str(self.process.pid), "the keyboard in the main window")
        self.wait_for("New Reminder", "push button")

    def open_page(self):
        """Opens the list of the reminders that may fire at noon today."""
        self.wait_until_active()
        page = "Work Reminders" if local_now(self.zone).weekday() < 5 else "Private Reminders"
        self.wait_for(page, "radio button").click()
        until(lambda: self.find(page, "radio button").has(Atspi.StateType.CHECKED), f"the page {page}")

    def create_reminder(self, title, details="", start="9:00", interval=1, break_seconds=None,
                        before_save=lambda: None):
        """Makes a reminder in the editor with pointer and keyboard, of a kind that may fire now."""
        self.open_page()
        known = self.query("SELECT count(*) FROM reminders")
        self.wait_for("New Reminder", "push button").click()
        self.wait_for("Title", "text").click()
        type_text(title)
        for field, value in (("Details", details), ("Start time", start), ("Interval", interval)):
            if value:
                self.tab_to(field)
                press("ctrl+a")
                type_text(str(value))
        if break_seconds:
            self.tab_to("Timed break")
            press("space")
            self.tab_to("Break length")
            press("ctrl+a")
            type_text(str(break_seconds))
        before_save()
        self.wait_for("Save", "push button").click()
        self.wait_gone("Save")
        until(lambda: self.query("SELECT count(*) FROM reminders") != known, "the reminder in the store")

    def tab_to(self, name):
        """Moves the keyboard to a control with the Tab key."""
        for _ in range(30):
            press("Tab")
            time.sleep(0.05)
            element = self.focused()
            if element and element.name == name:
                return
        raise AssertionError(f'the Tab key does not reach "{name}"')

    def focused(self):
        # The innermost: what holds a focused control may say that it is focused too.
        return next((e for e in reversed(self.elements()) if e.has(Atspi.StateType.FOCUSED)), None)

    def answer(self, name, focus=lambda: None):
        """Clicks a button of the alert once it has stopped moving."""
        def button():
            focus()
            if not self.find(name, "push button"):
                more = self.find("More answers", "push button")
                if more:
                    more.click()
            return self.find(name, "push button")

        at_rest(button, f'"{name}" in the alert').click()

    def elements(self):
        """Everything of the program's that is on the screen now, outermost first."""
        found = []

        def visit(accessible, depth):
            if accessible is None or depth > 30:
                return
            accessible.clear_cache()
            states = accessible.get_state_set()
            if depth and not states.contains(Atspi.StateType.SHOWING):
                return
            if depth:
                found.append(Element(accessible))
            for index in range(accessible.get_child_count()):
                visit(accessible.get_child_at_index(index), depth + 1)

        desktop = Atspi.get_desktop(0)
        desktop.clear_cache()
        for index in range(desktop.get_child_count()):
            application = desktop.get_child_at_index(index)
            try:
                if application and application.get_process_id() == (self.process and self.process.pid):
                    visit(application, 0)
            except GLib.Error:
                pass  # a window went away while it was read; whoever waits looks again
        return found

    def find(self, name, role=None):
        """The first element whose name, and role if given, match these regular expressions as a whole."""
        for element in self.elements():
            try:
                if re.fullmatch(name, element.name or "") and re.fullmatch(role or ".*", element.role):
                    return element
            except GLib.Error:
                continue
        return None

    def wait_for(self, name, role=None, seconds=PATIENCE):
        """The element, once it is on the screen and has come to rest."""
        return at_rest(lambda: self.find(name, role), f'"{name}" on the screen', seconds)

    def wait_gone(self, name, seconds=PATIENCE):
        until(lambda: not self.find(name), f'"{name}" off the screen', seconds)

    def status(self):
        """The foot of the main window; empty when nothing holds reminders back."""
        line = self.find(".*", "status bar")
        return line.name if line else ""

    def describe(self):
        """What is on the screen, in words."""
        if self.process and self.process.poll() is not None:
            return f"(nothing: the program has ended with {self.process.returncode})"
        return "\n".join(f"{e.role}: {e.name} {e.box}" for e in self.elements())


class OtherWindow:
    """A terminal in which the user types while alerts come and go."""

    def __init__(self, *options):
        self.file = Path(os.environ["HOME"], "typed.txt")
        self.process = subprocess.Popen(["xterm", "-fa", "monospace", "-geometry", "60x8+620+600",
                                         "-title", "Other window", *options, "-e", "sh", "-c", f"cat > '{self.file}'"], stderr=subprocess.DEVNULL)
        self.window = until(lambda: self.search(), "the other window")
        run("xdotool", "windowactivate", "--sync", self.window)
        until(lambda: self.has_focus(), "the other window's focus")

    def search(self):
        result = subprocess.run(["xdotool", "search", "--name", "^Other window$"], capture_output=True, text=True)
        return result.stdout.split()[-1] if result.stdout.split() else None

    def has_focus(self):
        return run("xdotool", "getwindowfocus") == self.window

    def type(self, text):
        """Types a line with the keyboard, whoever has its focus, and waits for it to arrive here."""
        run("xdotool", "type", "--delay", "20", text + "\n")
        until(lambda: self.file.exists() and text in self.file.read_text(), f'"{text}" in the other window')

    def close(self):
        self.process.kill()
        self.process.wait()


def type_text(text):
    run("xdotool", "type", "--delay", "10", text)


def press(*keys):
    run("xdotool", "key", "--delay", "20", *keys)


def take_picture(file):
    Path(file).parent.mkdir(parents=True, exist_ok=True)
    subprocess.run(["import", "-window", "root", str(file)], check=False)
    return shutil.which("import") and Path(file).exists()
