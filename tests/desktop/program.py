"""What the tests of the running program share: one desktop for all of a file, on which each test starts the program
anew, or each class where its tests do not mind."""

import atexit
import json
import os
import subprocess
import tempfile
import threading
import time
import unittest

import desk as desktop
import sound

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.abspath(os.path.join(HERE, "..", ".."))
BUILD = os.environ.get("VOXMATE_BUILD", os.path.join(ROOT, "build", "release"))
IDLE = desktop.STATUS[0]
CALM = {"GreetingEnabled": 0, "SpeakTimeInterval": 0}  # settings with which nothing is said unasked

_desk = None


def ordinal(day):
    """The day of a month as the program says it."""
    return f"{day}" + {1: "st", 21: "st", 31: "st", 2: "nd", 22: "nd", 3: "rd", 23: "rd"}.get(day, "th")


def spoken_time(now, hours=12):
    """What the program says as the time."""
    part = "Morning" if now.hour < 12 else "Afternoon" if 13 <= now.hour <= 17 else "Evening"
    return f"Good {part}, Time now is " + (f"{now.hour % 12 or 12}:{now:%M %p}" if hours == 12 else f"{now:%H:%M}")


def the_desk(**options):
    """The desktop of all tests of this process. The first caller's options apply."""
    global _desk  # pylint: disable=global-statement
    if _desk is None:
        _desk = desktop.Desk(BUILD, **options)
        atexit.register(_desk.close)
    return _desk


class StatusWatch:
    """Records every text that the status line's first panel shows, beginning with the present one."""

    def __init__(self, desk):
        self.out = tempfile.TemporaryFile()
        self.process = desk.spawn("/usr/bin/python3", "-W", "ignore", os.path.join(HERE, "status_watch.py"), stdout=self.out,
                                  stderr=None)
        desktop.wait_for(self.texts, what="the status line's first text")

    def texts(self):
        if self.process.poll():
            raise AssertionError(f"the watch of the status line ended with {self.process.returncode}")
        lines = os.pread(self.out.fileno(), os.fstat(self.out.fileno()).st_size, 0).split(b"\n")[:-1]
        return [json.loads(line) for line in lines]

    def stop(self):
        """Takes a last look and stops. The recorded texts stay."""
        if self.process.poll() is None:
            self.process.terminate()
            self.process.wait()

    def close(self):
        self.stop()
        self.out.close()


class Watch:
    """Looks at a part of the screen as often as it can and records, with its time, each change of the value that `look`
    computes from the picture (by default its bytes). It runs in a thread, so `look` must not use the accessibility
    library."""

    def __init__(self, desk, box, look=lambda picture: picture.tobytes()):
        self.seen = []
        self.by = []  # when the looks that saw those values ended: the values were there by then
        self.worst = 0  # longest time between two looks, in seconds
        self._stop = False
        self._thread = threading.Thread(target=self._run, args=(desk, box, look), daemon=True)
        self._thread.start()

    def _run(self, desk, box, look):
        last = None
        while not self._stop:
            before = time.monotonic()
            value = look(desk.screenshot(box=box))
            after = time.monotonic()
            if last is not None:
                self.worst = max(self.worst, after - last)
            last = after
            if not self.seen or self.seen[-1][1] != value:
                self.by.append(after)
                self.seen.append(((before + after) / 2, value))
            time.sleep(0.002)

    def stop(self):
        self._stop = True
        self._thread.join()


class ProgramCase(unittest.TestCase):
    defaults = {}  # settings that differ from the defaults file
    voices = ()  # the folder of neural voices, where one is rendered
    shared = False  # whether one program serves all cases of the class, which then do not mind their order

    def setUp(self):
        self.desk = the_desk()
        self.program = self.running()
        self.render_events = ""
        if not self.program:
            self.desk.install_defaults(**self.defaults)

    def tearDown(self):
        if not self.shared:
            for program in list(self.desk.programs):
                with self.subTest("the program's end"):
                    self.desk.end(program)

    @classmethod
    def tearDownClass(cls):
        for program in list(the_desk().programs):
            the_desk().end(program)

    def running(self):
        """The program that an earlier case of the class has started."""
        return next(iter(self.desk.programs), None) if self.shared else None

    def listen(self):
        """Records the sound from now on."""
        self.recorder = self.desk.recorder()
        self.addCleanup(self.recorder.stop)

    def now(self):
        """The number of the sample that was recorded last."""
        return int(self.recorder.snapshot()[1][-1])

    def recorded(self, begin):
        """The samples recorded from that one on."""
        return self.recorder.snapshot()[0][begin:]

    def sound_since(self, begin):
        """Seconds of sound from that sample on, without the silence."""
        return sound.loud_seconds(self.recorded(begin))

    def heard_since(self, begin):
        """First and last loud sample, counted from that one on, or None in silence."""
        return sound.loud_span(self.recorded(begin))

    def wait_for_sound(self, begin, what="sound"):
        desktop.wait_for(lambda: self.heard_since(begin), what=what)

    def hear(self, begin, *texts, seconds=60.0):
        """Waits until one of the texts, or the first `seconds` of it, has been said since that sample."""
        renderings = [self.rendered(text, seconds) for text in texts]
        like = [0.0]

        def heard():
            like[0] = max(sound.likeness(self.recorded(begin), rendering) for rendering in renderings)
            return like[0] > 0.8

        try:
            desktop.wait_for(heard, step=0.1)
        except AssertionError:
            self.fail(f"not heard: {texts} (likeness {like[0]:.2f})")

    def streams(self):
        """The sound server's descriptions of the playing streams, one text for each."""
        listed = self.desk.run("pactl", "list", "sink-inputs", check=False).decode()
        return ["Sink Input" + part for part in listed.split("Sink Input")[1:]]

    def start(self, **environment):
        """Starts the program (see Desk.start)."""
        self.program = self.desk.start(**environment)
        return self.program

    def start_and_settle(self, **environment):
        """Starts the program, or silences the one that an earlier case has started, and waits until its window is there
        and it has been idle for half a second."""
        if self.running():
            self.press("Stop Everything !!!")
        else:
            self.start(**environment)
            self.desk.find("Text to read")
        self.settle()

    def settle(self, timeout=desktop.PATIENCE, quiet=0.5):
        since = [None]

        def quiet_long_enough():
            if IDLE not in self.desk.texts():
                since[0] = None
                return False
            since[0] = since[0] or time.monotonic()
            return time.monotonic() - since[0] >= quiet

        desktop.wait_for(quiet_long_enough, timeout, what="the program falling idle")

    def watch_mouth(self):
        """Watches the mouth of the shipped character in its rest pose."""
        _, (x, y, width, height) = self.character_window()
        x, y = x + width // 2, y + height * 5 // 9
        return Watch(self.desk, (x - 24, y - 12, x + 24, y + 16))

    def mouths_during_sound(self, watch, begin):
        """How many different pictures were seen from the first to the last sound after that sample."""
        samples, ends, times = self.recorder.snapshot()
        first, last = (self.recorder.time_of(begin + at, ends, times) for at in sound.loud_span(samples[begin:]))
        return len({picture for when, picture in watch.seen if first <= when <= last})

    def status_panel(self):
        """The status line's first panel."""
        return next(w[2] for w in self.desk.widgets() if w[0] in desktop.STATUS)

    def watch_status(self):
        """Records the texts of the status line from now on."""
        watch = StatusWatch(self.desk)
        self.addCleanup(watch.close)
        return watch

    def box_text(self, title, timeout=desktop.PATIENCE):
        """Waits for a message box and returns its text."""
        box = self.desk.find(title, role="alert", timeout=timeout)
        labels = [node.name for node in self._descendants(box) if desktop.role_name(node) == "label" and node.name]
        self.assertEqual(len(labels), 1, labels)
        return labels[0]

    def answer_box(self, title, button="OK"):
        """Answers a message box, waits until it is gone and returns its text."""
        text = self.box_text(title)
        self.press(button)
        self.desk.gone(title)
        return text

    def press(self, name):
        self.desk.click(self.desk.find(name, role="push button"))

    def type_text(self, text):
        """Types into the main window's text box, in place of what it holds."""
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("ctrl+a", "Delete")
        self.desk.type(text)

    def choose_by_keys(self, menu, *way):
        """Opens a menu of the main window by its access key, and chooses an item: `way` has the name and the access key of
        each item on the way to it, and of itself."""
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key(menu)
        for item, key in zip(way[::2], way[1::2]):
            self.desk.find(item, role="menu item")
            self.desk.key(key)

    def saved(self, name, value):
        """Waits until a setting has this value in the file."""
        desktop.wait_for(lambda: self.desk.read_settings()[name] == value, what=f"{name} = {value} in the file")

    def iconified(self, window):
        """Waits until a window is."""
        desktop.wait_for(lambda: "Iconic" in self.desk.properties(window, "WM_STATE"), what="the iconified window")

    def second_copy_ends(self, **environment):
        """Starts a second copy of the program, which says that there is one already and ends; the first goes on."""
        second = self.desk.start(**environment)
        self.assertEqual(self.box_text("Voxmate - Running"), "Another copy of Voxmate is already running.")
        self.press("OK")
        self.desk.ended(second)
        self.assertIsNone(self.program.poll())

    def has_ended(self, timeout=desktop.PATIENCE, status=0):
        """Waits for the program's end, which this test expects."""
        self.desk.ended(self.program, status, timeout)

    def boxes(self):
        return [w[0] for w in self.desk.widgets() if w[0].startswith("Voxmate - ")]

    def _descendants(self, node):
        for child in node:
            if child is not None:
                yield child
                yield from self._descendants(child)

    def character_window(self):
        """The character's window: id and place."""
        windows = self.desk.windows("^Voxmate character$")
        self.assertEqual(len(windows), 1, windows)
        return windows[0], self.desk.window_rect(windows[0])

    def main_window(self):
        return self.desk.windows("^Voxmate$")[-1]

    def open_character_menu(self):
        """Opens the character's menu with the right button and returns the centres of its five items, top to bottom.
        The accessibility tree does not hold such a pop-up, so they are computed from its place on the screen."""
        _, (x, y, width, height) = self.character_window()
        known = set(self.desk.windows("")) | {self.main_window()}
        self.desk.click_at(x + width // 2, y + height // 2, button=3)

        def popup():
            new = set(self.desk.windows("voxmate", by="--class"))
            return new - known

        window = desktop.wait_for(popup, what="the character's menu").pop()
        time.sleep(0.2)
        left, top, width, height = self.desk.window_rect(window)
        item = (height - 12) / 5  # the separator and the frame take some 12 pixels
        middles = [top + item * (number + 0.5) for number in range(4)] + [top + height - item * 0.6]
        return [(left + width // 2, int(middle)) for middle in middles]

    def render(self, text, voice=None):
        """Renders a text by the engine alone, with the settings in the file, and returns the path of the sound.
        render_events receives the moments of its words and mouths, one a line: kind, sample, value."""
        settings = self.desk.read_settings()
        path = os.path.join(self.desk.home, "rendered.wav")
        voice = voice or settings["LastSpeechEngine"].strip('"')
        numbers = {name: int(settings[name].removeprefix("dword:"), 16) for name in ("Pitch", "Speed", "Whisper")}
        result = subprocess.run([os.path.join(BUILD, "speech_render"), voice, str(numbers["Pitch"]),
                                 str(numbers["Speed"]), str(numbers["Whisper"]), text, path, *self.voices],
                                check=True, stdout=subprocess.PIPE)
        self.render_events = result.stdout.decode()
        return path

    def rendered(self, text, seconds):
        """Samples of a text's rendering, or of its beginning, at the recording's rate and without silence at the
        ends."""
        samples = sound.resampled(*sound.read_wave(self.render(text)))
        first, last = sound.loud_span(samples)
        return samples[first:last][:int(seconds * sound.RATE)]

    def rendered_length(self, text):
        """Seconds of a text's rendering that are not silent."""
        return sound.loud_seconds(*sound.read_wave(self.render(text)))
