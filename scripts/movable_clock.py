"""A wall clock and a time zone setting of the program's own (see tests/e2e/movable_clock.cpp)."""

import os
import signal
import struct
from pathlib import Path


class MovableClock:
    """Made before the program starts, which is started with `environment`."""

    def __init__(self, library, zone):
        self.offset = Path(os.environ["HOME"], "clock-offset")
        self.etc = Path(os.environ["HOME"], "etc")
        self.etc.mkdir()
        self.set_offset(0)
        self.set_zone(zone)
        self.environment = {"LD_PRELOAD": library, "MOVABLE_CLOCK_OFFSET": str(self.offset),
                            "MOVABLE_CLOCK_ETC": str(self.etc), "TZ": None}

    def set_offset(self, seconds):
        # Written into the file as it is, which the program has mapped.
        with self.offset.open("r+b" if self.offset.exists() else "wb") as file:
            file.write(struct.pack("=q", seconds))

    def move(self, process, seconds):
        """Sets the clock of the running program to so many seconds ahead of the computer's."""
        self.set_offset(seconds)
        process.send_signal(signal.SIGUSR2)

    def set_zone(self, zone):
        """Replaces the link to the zone, as the desktop's settings do."""
        link = self.etc / "localtime.new"
        link.symlink_to(f"/usr/share/zoneinfo/{zone}")
        link.rename(self.etc / "localtime")
