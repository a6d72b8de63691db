"""The program for Windows under Wine, on a desktop of its own whose sound is recorded. It has a folder of Wine's for itself,
so that neither registry nor files of another run are there."""

import os
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.join(HERE, "..", "..")
sys.path.insert(0, os.path.join(HERE, "..", "desktop"))
import desk as desktop  # pylint: disable=wrong-import-position
import sound  # pylint: disable=wrong-import-position

PROGRAM = os.path.join(ROOT, "build", "windows", "Voxmate", "voxmate.exe")
SETUP = os.path.join(ROOT, "build", "windows", "voxmate-setup.exe")
PICTURES = os.path.join(ROOT, "build", "windows", "pictures")
KEY = r"HKLM\SOFTWARE\Voxmate"
# Nothing is said unasked.
CALM = {"GreetingEnabled": 0, "SpeakTimeInterval": 0, "ShowTipAtStartUp": 0}


class WineCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        os.makedirs(PICTURES, exist_ok=True)
        cls.desk = desktop.Desk(os.path.join(ROOT, "build", "release"), compositor=True)
        cls.addClassCleanup(cls.desk.close)
        cls.prefix = tempfile.mkdtemp(prefix="voxmate-wine-")
        cls.addClassCleanup(shutil.rmtree, cls.prefix, True)
        cls.env = {**cls.desk.env, "WINEPREFIX": cls.prefix, "WINEARCH": "win64", "WINEDEBUG": "-all",
                   "WINEDLLOVERRIDES": "mscoree,mshtml="}
        cls.addClassCleanup(subprocess.run, ["wineserver", "--kill"], env=cls.env, check=False)
        subprocess.run(["wine", "wineboot", "--init"], env=cls.env, check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)

    def setUp(self):
        self.programs = []
        self.wine("reg", "delete", KEY, "/f")
        self.wine("reg", "delete", r"HKCU\Software\Voxmate", "/f")
        shutil.rmtree(self.folder, ignore_errors=True)
        self.recorder = self.desk.recorder()
        self.addCleanup(self.recorder.stop)
        self.addCleanup(self.end_all)

    @property
    def folder(self):
        """The program's own folder, as this system sees it."""
        return os.path.join(self.home, "AppData", "Local", "Voxmate")

    @property
    def home(self):
        users = os.path.join(self.prefix, "drive_c", "users")
        return os.path.join(users, next(name for name in os.listdir(users) if name != "Public"))

    def wine(self, *command, seconds=120):
        """Runs a program to its end; its status and what it wrote."""
        done = subprocess.run(["wine", *command], env=self.env, timeout=seconds, check=False, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        return done.returncode, done.stdout.decode(errors="replace")

    def set(self, **values):
        for name, value in values.items():
            kind = ("REG_DWORD", str(value)) if isinstance(value, int) else ("REG_SZ", value)
            self.wine("reg", "add", KEY, "/v", name, "/t", kind[0], "/d", kind[1], "/f")

    def value(self, name):
        """A setting as the registry has it; None where it has none."""
        for line in self.wine("reg", "query", KEY, "/v", name)[1].splitlines():
            words = line.split(None, 2)
            if words and words[0] == name:
                return int(words[2], 16) if words[1] == "REG_DWORD" else words[2].strip() if len(words) > 2 else ""
        return None

    def start(self, *arguments, path=PROGRAM, **environment):
        program = subprocess.Popen(["wine", path, *arguments], env={**self.env, **environment}, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.programs.append(program)
        return program

    def start_calmly(self, **values):
        """Starts the program with nothing to say, and waits until its character stands there."""
        self.set(**{**CALM, **values})
        program = self.start()
        self.window("^Voxmate$")
        self.window("Voxmate character")
        self.wait_for_silence()
        return program

    def end_all(self):
        for program in self.programs:
            if program.poll() is None:
                program.terminate()
        for program in self.programs:
            program.wait(desktop.PATIENCE)

    def window(self, title):
        """The visible window of that title, once it is there."""
        return desktop.wait_for(lambda: self.desk.windows(title), what=f"the window {title}")[-1]

    def gone(self, title):
        desktop.wait_for(lambda: not self.desk.windows(title), what=f"the end of the window {title}")

    def picture(self, name, title=None):
        """Takes a picture of a window, or of the screen, for people to look at; returns it."""
        box = None
        if title:
            x, y, width, height = self.desk.window_rect(self.window(title))
            box = (x, y, x + width, y + height)
        return self.desk.screenshot(os.path.join(PICTURES, name + ".png"), box)

    def front(self, title):
        self.desk.run("xdotool", "windowactivate", "--sync", self.window(title))

    def seconds(self):
        """Where the recording is, in seconds."""
        return len(self.recorder.snapshot()[0]) / sound.RATE

    def heard_since(self, begin):
        return self.recorder.snapshot()[0][int(begin * sound.RATE):]

    def wait_for_sound(self, begin, seconds=0.3):
        desktop.wait_for(lambda: sound.loud_seconds(self.heard_since(begin)) > seconds, what="sound")

    def wait_for_silence(self, quiet=1.5):
        """Waits until nothing was heard for so many seconds."""
        begin = self.seconds()
        desktop.wait_for(lambda: self.seconds() - begin > quiet and
                         not sound.loud_seconds(self.heard_since(self.seconds() - quiet)), timeout=180, what="silence")
