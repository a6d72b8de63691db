"""Compares ways to the loudspeaker: figures of each in turn, several times, and what each does when the sound server is
restarted in mid-sentence, comes late, hangs, or loses the device. The server is PulseAudio, or PipeWire's own.

Usage: /usr/bin/python3 bench/sound_outputs.py [--pipewire] [BUILD_FOLDER [RUNS]]
"""

import argparse
import os
import signal
import subprocess
import sys
import tempfile
import time

ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), ".."))
sys.path.insert(0, os.path.join(ROOT, "tests", "desktop"))
import desk as desktop  # noqa: E402  pylint: disable=wrong-import-position

LONGEST = 15  # seconds that an event is waited for


class PipeWireDesk(desktop.Desk):
    """A desk whose sound server is PipeWire's own."""

    core = None

    def start_sound(self):
        runtime = self.env["XDG_RUNTIME_DIR"]
        socket = os.path.join(runtime, "pulse", "native")
        if not self.core:
            self.core = self.spawn("pipewire")
            desktop.wait_for(lambda: os.path.exists(os.path.join(runtime, "pipewire-0")), what="PipeWire")
            self.spawn("wireplumber")
        elif os.path.exists(socket):
            os.remove(socket)
        self.sound = self.spawn("pipewire-pulse")
        self.env["PULSE_SERVER"] = "unix:" + socket
        desktop.wait_for(lambda: self.run("pactl", "info", check=False), what="the sound server")
        self.run("pactl", "load-module", "module-null-sink", "sink_name=rec")
        desktop.wait_for(lambda: b"Default Sink: rec" in self.run("pactl", "info"), what="the sink")


class Player:
    """Plays a tone without end through one of the outputs, and hears what becomes of it."""

    def __init__(self, desk, tool, name):
        self.desk = desk
        self.out = tempfile.TemporaryFile()
        self.process = subprocess.Popen([tool, name, "events"], env=desk.env, stdout=self.out, stderr=subprocess.DEVNULL)

    def told(self):
        return os.pread(self.out.fileno(), 100_000, 0).decode().split("\n")[:-1]

    def playing(self):
        """Whether the sound server has a stream that runs on."""
        return b"Corked: no" in self.desk.run("pactl", "list", "sink-inputs", check=False)

    def until(self, done, since):
        """Milliseconds from `since` until `done`, or words."""
        while time.monotonic() - since < LONGEST:
            if self.process.poll() is not None:
                return f"the player ended with {self.process.returncode}"
            if done():
                return f"{(time.monotonic() - since) * 1000:.0f} ms"
            time.sleep(0.005)
        return f"not within {LONGEST} s"

    def count(self, what):
        return sum(line.endswith(what) for line in self.told())

    def close(self):
        self.process.kill()
        self.process.wait()
        self.out.close()


def restarted(desk, player):
    player.until(player.playing, time.monotonic())
    begin = time.monotonic()
    desk.kill_sound()
    noticed = player.until(lambda: player.count("failed"), begin)
    desk.start_sound()
    return f"noticed after {noticed}; playing again {player.until(player.playing, time.monotonic())} after it is back"


def hanging(desk, player):
    player.until(player.playing, time.monotonic())
    begin = time.monotonic()
    desk.sound.send_signal(signal.SIGSTOP)
    noticed = player.until(lambda: player.count("failed"), begin)
    desk.sound.send_signal(signal.SIGCONT)
    return f"noticed after {noticed}; playing {player.until(player.playing, time.monotonic())} after it goes on"


def losing_the_device(desk, player):
    player.until(player.playing, time.monotonic())
    first = next(line.split()[0] for line in desk.run("pactl", "list", "short", "modules").decode().split("\n") if "rec" in line)
    desk.run("pactl", "load-module", "module-null-sink", "sink_name=other")
    desk.run("pactl", "unload-module", first)
    return f"playing on the other {player.until(player.playing, time.monotonic())} later ({player.count('failed')} failure told)"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--pipewire", action="store_true")
    parser.add_argument("build", nargs="?", default=os.path.join(ROOT, "build", "release"))
    parser.add_argument("runs", nargs="?", default="20")
    arguments = parser.parse_args()
    build = os.path.abspath(arguments.build)
    tool = os.path.join(build, "sound_outputs")
    names = [name for name in ("pulse", "cubeb")
             if subprocess.run([tool, name], stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False).returncode == 2]
    desk = PipeWireDesk(build) if arguments.pipewire else desktop.Desk(build)
    try:
        for _ in range(2):
            for name in names:
                result = subprocess.run([tool, name, "figures", arguments.runs], env=desk.env, stdout=subprocess.PIPE,
                                        stderr=subprocess.DEVNULL, check=False)
                print(f"{name}:\n{result.stdout.decode()}", end="", flush=True)
        for name in names:
            desk.kill_sound()
            player = Player(desk, tool, name)
            refused = player.until(lambda p=player: p.count("refused"), time.monotonic())
            desk.start_sound()
            print(f"{name}, a server that comes late: refused after {refused}; playing "
                  f"{player.until(player.playing, time.monotonic())} after it has come", flush=True)
            player.close()
            for what in (restarted, hanging, losing_the_device):
                player = Player(desk, tool, name)
                print(f"{name}, {what.__name__.replace('_', ' ')}: {what(desk, player)}", flush=True)
                player.close()
            desk.kill_sound()
            desk.start_sound()
    finally:
        desk.close()


if __name__ == "__main__":
    main()
