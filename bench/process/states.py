"""What each state of the menu bar costs Tendel as a whole process.

    scripts/with-desktop /usr/bin/python3 bench/process/states.py build/release [--seconds 120]

One program after the other, each with ten years of history: at rest, with the label counting down to the next reminder,
with the live pill showing a silent focus session beside a simulated notch, and at rest before and after its panel was opened
and closed. The tray host does not fetch the new icons that it is told of; most would.
"""

import argparse
import json
import os
import subprocess
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))
from measure import at_rest, fill, start, stop  # noqa: E402
from audio_server import AudioServer  # noqa: E402
from login_manager import LoginManager  # noqa: E402
from tray_host import TrayHost  # noqa: E402


def call(method, *arguments):
    subprocess.run(["gdbus", "call", "--session", "--dest", "app.tendel.Tendel", "--object-path", "/app/tendel/Tendel",
                    "--method", f"app.tendel.Tendel.{method}", *arguments], check=True, stdout=subprocess.DEVNULL)


def windows(pid):
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(pid)], capture_output=True, text=True)
    return set(found.stdout.split())


def panel_opened_and_closed(host, process):
    for _ in range(3):
        before = windows(process.pid)
        host.icon.click("Activate", 1200, 10)
        time.sleep(2)
        assert windows(process.pid) - before, "the panel did not open"
        subprocess.run(["xdotool", "key", "Escape"], check=True)
        time.sleep(1)
        assert not windows(process.pid) - before, "the panel did not close"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--seconds", type=int, default=120)
    options = parser.parse_args()
    for name in ("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "QT_ACCESSIBILITY"):
        os.environ.pop(name, None)
    command = [f"{options.build}/src/tendel", "--at-login"]
    settings = Path(os.environ["XDG_CONFIG_HOME"], "tendel", "defaults.json")
    login, audio = LoginManager(), AudioServer()
    os.environ.update(login.environment)
    host = TrayHost()
    figures = {}
    try:
        process, _ = start(host, command)
        stop(process)
        fill(Path(os.environ["XDG_DATA_HOME"], "tendel", "Tendel.store"))

        process, _ = start(host, command)
        figures["at rest"] = at_rest(process.pid, options.seconds)
        panel_opened_and_closed(host, process)
        figures["after the panel"] = at_rest(process.pid, options.seconds)
        stop(process)

        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text(json.dumps({"showsMenuBarCountdown": True}))
        process, _ = start(host, command)
        figures["label counts down"] = at_rest(process.pid, options.seconds)
        stop(process)

        settings.write_text(json.dumps({"soundVolume": 0}))
        os.environ["TENDEL_SIMULATE_NOTCH"] = "200x32"
        process, _ = start(host, command)
        call("StartFocus")
        figures["pill shows focus"] = at_rest(process.pid, options.seconds)
        stop(process)
    finally:
        audio.stop()
        login.stop()

    print(f"{'':32}" + "".join(f"{state:>20}" for state in figures))
    for figure in figures["at rest"]:
        print(f"{figure:32}" + "".join(f"{state[figure]:20.1f}" for state in figures.values()))


if __name__ == "__main__":
    main()
