"""Servers of the desktop that a case starts for itself and that end with it."""

import subprocess


class Service:
    """A program that runs beside the case, and never outlives it."""

    def __init__(self, *command, **options):
        self.process = subprocess.Popen(["setpriv", "--pdeathsig", "KILL", *command], stderr=subprocess.DEVNULL,
                                        **options)

    def stop(self):
        self.process.terminate()
        try:
            self.process.wait(5)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
