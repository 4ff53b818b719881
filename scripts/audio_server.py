"""An audio server of the case's own, with a microphone that hears nothing."""

import os
import subprocess
from pathlib import Path

from desktop import until
from services import Service

MICROPHONE = "microphone"


class AudioServer(Service):
    """PulseAudio where every client of the runtime folder finds it."""

    def __init__(self):
        socket = Path(os.environ["XDG_RUNTIME_DIR"], "pulse", "native")
        socket.parent.mkdir(mode=0o700, exist_ok=True)
        super().__init__("pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                         f"--load=module-native-protocol-unix socket={socket}",
                         f"--load=module-null-source source_name={MICROPHONE}")
        until(lambda: MICROPHONE in self.list("sources"), "the microphone")

    def list(self, what):
        return subprocess.run(["pactl", "list", "short", what], capture_output=True, text=True).stdout


class Call(Service):
    """A program that records from the microphone, as one does in which people talk."""

    def __init__(self, server):
        super().__init__("parec", f"--device={MICROPHONE}", "--client-name=Talk", stdout=subprocess.DEVNULL)
        until(lambda: server.list("source-outputs"), "the recording")
