"""What Tendel costs as a whole process, beside the least Qt program with a tray icon.

    scripts/with-desktop /usr/bin/python3 bench/process/measure.py build/release [--seconds 60] [--starts 9]

Both are started alone, one after the other, on the same desktop with the same tray host, an audio server and a login
manager (a mock of logind). Tendel has a store with ten years of history (250,000 events) and twenty armed reminders,
and its window is never opened. Prints for each figure Tendel's, the minimal program's and the ratio. A wake-up is a
voluntary context switch of any of its threads. `--tendel` measures another program file in place of the build's.
"""

import argparse
import os
import signal
import sqlite3
import statistics
import subprocess
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scripts"))
from audio_server import AudioServer  # noqa: E402
from login_manager import LoginManager  # noqa: E402
from tray_host import TrayHost  # noqa: E402


def start(host, command):
    """Starts a program and waits for its tray icon; the process and the seconds that it took."""
    begin = time.monotonic()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        host.wait_for_icon()
    except AssertionError:
        process.kill()
        raise
    return process, host.arrivedAt - begin


def stop(process):
    process.send_signal(signal.SIGTERM)
    try:
        process.wait(10)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


def at_rest(pid, seconds):
    """Memory and threads of a process that has settled, and its wake-ups and processor time a minute."""
    def scheduled():
        """By thread, since one may end or begin meanwhile."""
        return {task.name: (int(field(task / "status", "voluntary_ctxt_switches")),
                            int((task / "schedstat").read_text().split()[0]))
                for task in Path(f"/proc/{pid}/task").iterdir()}

    time.sleep(5)
    before = scheduled()
    time.sleep(seconds)
    after = scheduled()
    wakeUps, nanoseconds = (sum(now[i] - before.get(task, (0, 0))[i] for task, now in after.items()) for i in (0, 1))
    memory = Path(f"/proc/{pid}/smaps_rollup")
    private = sum(int(field(memory, name)) for name in ("Private_Clean", "Private_Dirty"))
    return {
        "PSS, MB": int(field(memory, "Pss")) / 1024,
        "private memory, MB": private / 1024,
        "threads": len(list(Path(f"/proc/{pid}/task").iterdir())),
        "wake-ups a minute": wakeUps * 60 / seconds,
        "processor time a minute, ms": nanoseconds / 1e6 * 60 / seconds,
    }


def field(file, name):
    for line in file.read_text().splitlines():
        if line.startswith(name + ":"):
            return line.split()[1]
    raise KeyError(f"{file}: {name}")


def fill(store):
    """Ten years of history, and twenty reminders that are armed but due far from now."""
    hour = (time.localtime().tm_hour + 12) % 24
    with sqlite3.connect(store) as database:
        for number in range(20):
            database.execute(
                "INSERT INTO reminders (kindRaw, title, details, startHour, startMinute, intervalMinutes, isOn,"
                " createdAt) VALUES (?, ?, '', ?, ?, 1440, 1, 0)",
                (("work", "private")[number % 2], f"Reminder {number}", hour, number))
        database.execute(
            "INSERT INTO events (reminder, fireDate, respondedAt, outcomeRaw, reminderTitle, kindRaw)"
            " WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 249999)"
            " SELECT 1 + i % 20, t, t + 8000000, 'done', 'Reminder ' || (i % 20), 'work'"
            " FROM (SELECT i, (? - (250000 - i) * 1260) * 1000000 AS t FROM n)", (int(time.time()),))
    database.close()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--tendel", help="a program file in place of the build's")
    parser.add_argument("--seconds", type=int, default=60, help="how long each rests")
    parser.add_argument("--starts", type=int, default=9, help="how often each is started for the start time")
    options = parser.parse_args()
    os.environ.pop("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", None)
    os.environ.pop("QT_ACCESSIBILITY", None)

    programs = {"Tendel": [options.tendel or f"{options.build}/src/tendel", "--at-login"],
                "minimal": [f"{options.build}/bench/process/minimal_tray"]}
    login, audio = LoginManager(), AudioServer()
    os.environ.update(login.environment)
    try:
        measure(programs, options)
    finally:
        audio.stop()
        login.stop()


def measure(programs, options):
    host = TrayHost()
    process, _ = start(host, programs["Tendel"])  # makes the store
    stop(process)
    fill(Path(os.environ["XDG_DATA_HOME"], "tendel", "Tendel.store"))

    figures = {}
    for name, command in programs.items():
        starts = []
        for _ in range(options.starts + 1):
            process, seconds = start(host, command)
            starts.append(seconds * 1000)
            time.sleep(0.5)
            stop(process)
        process, _ = start(host, command)
        figures[name] = at_rest(process.pid, options.seconds)
        figures[name]["warm start to tray icon, ms"] = statistics.median(starts[1:])
        stop(process)

    print(f"{'':30}{'Tendel':>10}{'minimal':>10}{'ratio':>8}")
    for figure, ours in figures["Tendel"].items():
        theirs = figures["minimal"][figure]
        ratio = f"{ours / theirs:8.2f}" if theirs else "       –"
        print(f"{figure:30}{ours:10.1f}{theirs:10.1f}{ratio}")


if __name__ == "__main__":
    main()
