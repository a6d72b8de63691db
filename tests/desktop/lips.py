"""What the test and the benchmark of the lips share: a character whose mouths are colours, what a text should show at
each moment, and a loudspeaker that plays only as far as it is told."""

import os
import subprocess
import sys
import threading
import time

import numpy

import desk as desktop
import sound
from program import ROOT

sys.path.insert(0, os.path.join(ROOT, "tests", "files"))
from acs_maker import BLANK, MOUTHS, animation, frame, image, make, overlay  # noqa: E402  pylint: disable=wrong-import-position

# Every clause begins with a vowel, so that the sound after each pause has an open mouth.
TEXT = ("Every evening at eight, all animals of the old farm meet under one apple tree. A brown owl opens the evening. "
        "Under her eyes, a family of foxes plays with a paper boat. Other animals prefer to watch, eating apples, "
        "emptying bowls, or asking about tomorrow. An hour before midnight, everybody moves home. "
        "Only a mouse remains, and it is happy.")
COLOURS = [(250, 250, 250), (250, 0, 0), (0, 250, 0), (0, 0, 250), (250, 250, 0), (0, 250, 250), (250, 0, 250)]
AT_REST = (90, 90, 90)
SIDE = 120
LOUD = 0.01  # of full scale


def lips_character():
    """A character that is a square with a different colour for each mouth."""
    square = [bytes([1]) * SIDE] * SIDE
    images = [image(SIDE, square)]
    images += [image(SIDE, [bytes([2 + mouth]) * SIDE] * SIDE) for mouth in range(7)]
    rest = frame((0, 0, 0), overlays=[overlay(name, 1 + mouth, 0, 0, SIDE, SIDE, replace=True)
                                      for mouth, name in enumerate(MOUTHS)])
    made = make({**BLANK, "width": SIDE, "height": SIDE, "names": [(0x0409, "Lips", "", "")],
                 "palette": [(1, 2, 3), AT_REST, *COLOURS], "images": images,
                 "animations": [animation("RestPose", [rest])]})
    return bytes(made.data)


def install_lips(desk, **settings):
    """Makes the program use that character, with a balloon whose words appear as they are spoken, and without any other
    sounds; `settings` replace further ones."""
    folder = os.path.join(desk.home, "lips", "")
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, "Lips.acs"), "wb") as file:
        file.write(lips_character())
    desk.install_defaults(GreetingEnabled=0, SpeakTimeInterval=0, EnableSoundEffects=0, CharacterPath=folder,
                          LastCharacter="Lips", ShowBalloon=1, BalloonAutoPace=1, SizeBallonToText=1,
                          BalloonCharactersPerLine=40, **settings)


def mouth_in(picture):
    """The mouth shown in a picture of the character; None at rest."""
    return {AT_REST: None, **{colour: mouth for mouth, colour in enumerate(COLOURS)}}[picture.getpixel((1, 1))]


def words_in(picture):
    """How many words a picture of the balloon's text shows: stretches of ink separated by more than a letter's gap."""
    grey = numpy.asarray(picture.convert("L"), dtype=int)
    ink = numpy.abs(grey - grey[0, 0]) > 60
    words, rows = 0, ink.any(axis=1)
    edges = numpy.flatnonzero(numpy.diff(numpy.concatenate([[0], rows.astype(int), [0]])))
    for top, bottom in zip(edges[::2], edges[1::2]):
        columns = numpy.flatnonzero(ink[top:bottom].any(axis=0))
        words += 1 + int((numpy.diff(columns) > 3).sum())
    return words


class Rendering:
    """A text's speech made without the program: its samples, and the seconds at which its mouths and words begin."""

    def __init__(self, path, events, rate):
        """From a wave file and the lines of events that came with it, converted to `rate` samples a second."""
        samples, made = sound.read_wave(path)
        self.rate = rate
        self.samples = sound.resampled(samples, made, rate)
        self.first_sound = self.seconds_of_first_sound()
        self.mouths, self.words = [], []
        for line in events.split("\n"):
            if line:
                kind, at, value = line.split()
                known = self.mouths if kind == "mouth" else self.words
                if kind in ("mouth", "word") and (not known or known[-1][1] != int(value)):
                    known.append((int(at) / made, int(value)))

    def seconds_of_first_sound(self):
        return int(numpy.flatnonzero(numpy.abs(self.samples) > LOUD)[0]) / self.rate

    def held_mouths(self, at_least):
        """Beginning and shape of each mouth that lasts at least so many seconds, without the last one."""
        ends = [begin for begin, _ in self.mouths[1:]] + [len(self.samples) / self.rate]
        # The last one ends the speech.
        return [(begin, mouth) for (begin, mouth), end in zip(self.mouths[:-1], ends) if end - begin >= at_least]

    def words_at(self, seconds):
        """How many words have begun by that time."""
        return max((word + 1 for begin, word in self.words if begin <= seconds), default=0)


def place_in(recording, rendered):
    """Where a rendering begins in a recording, in samples: the position of the highest correlation."""
    size = 1 << (len(recording) + len(rendered)).bit_length()
    product = numpy.fft.irfft(numpy.fft.rfft(recording, size) * numpy.conj(numpy.fft.rfft(rendered, size)), size)
    return int(numpy.argmax(product[:len(recording)]))


class DistantEar:
    """Records what the desk's sink plays without shortening the sink's queue, so that the recording arrives late and in
    large pieces. The moment of each sound is computed from clicks that a hurried recorder hears as well, because the
    sink plays the same number of samples every second throughout. A busy machine hears a click late but never early, so
    the earliest estimate counts."""

    RATE = sound.RATE
    CLICKS = 5

    def __init__(self, desk):
        self.recorder = desk.recorder(hurried=False)
        close = desk.recorder()
        try:
            self.origin = min(self._click(desk, close) for _ in range(self.CLICKS))
        finally:
            close.stop()

    def _click(self, desk, close):
        """Plays a click and returns the time at which, judged by it, the recording began."""
        begins = [len(recorder.snapshot()[0]) for recorder in (close, self.recorder)]
        click = numpy.full(self.RATE // 20, 16000, dtype="<i2").tobytes()
        subprocess.run(["pacat", "--raw", "--format=s16le", "--channels=1", f"--rate={self.RATE}"], input=click,
                       env=desk.env, check=True)
        spans = []
        for recorder, begin in zip((close, self.recorder), begins):
            span = desktop.wait_for(lambda r=recorder, b=begin: sound.loud_span(r.snapshot()[0][b:], 0.1), what="a click")
            # Waits for the whole click, so that its rest is not taken for the next one.
            desktop.wait_for(lambda r=recorder, end=begin + span[0] + self.RATE // 5: len(r.snapshot()[0]) > end,
                             what="the end of the click")
            spans.append(begin + span[0])
        here, there = spans
        _, ends, times = close.snapshot()
        return close.time_of(here, ends, times) - there / self.RATE

    def heard(self, begin=0):
        """The samples recorded from a sample on."""
        return self.recorder.snapshot()[0][begin:]

    def time_of(self, sample):
        return self.origin + sample / self.RATE

    def stop(self):
        self.recorder.stop()


class Speaker:
    """A sink with a queue of half a second, like that of a wireless headset. The number of samples it has played is
    exact, and it can be held at any sample for any time."""

    RATE = 64000  # at this rate a pipe's 64 KiB hold 0.512 s

    def __init__(self, desk, patient=False):
        """Becomes the desk's default sink. A patient one plays on only when the sound server has more to play, so that
        the sound has no gaps even on a busy machine."""
        self.desk, self.patient = desk, patient
        self.step = 2048 if patient else 320  # samples played at once; the server writes 2048
        path = os.path.join(desk.home, "speaker")
        self.module = desk.run("pactl", "load-module", "module-pipe-sink", "sink_name=speaker", "file=" + path,
                               "format=s16le", f"rate={self.RATE}", "channels=1").decode().strip()
        self.pipe = os.open(path, os.O_RDONLY | os.O_NONBLOCK)
        desk.run("pactl", "set-default-sink", "speaker")
        self.lock = threading.Condition()
        self.blocks = []
        self.times = []
        self.played = 0
        self.end = None  # the sample to hold at, or None
        self.at_sound = False  # whether to hold at the first sound
        self.running = True
        self.thread = threading.Thread(target=self._play, daemon=True)
        self.thread.start()

    def _play(self):
        due = time.monotonic()
        while self.running:
            due = max(due + self.step / self.RATE, time.monotonic() - 0.05)
            time.sleep(max(0.0, due - time.monotonic()))
            if self.patient and not self._has_more():
                continue
            with self.lock:
                count = self.step if self.end is None else min(self.step, self.end - self.played)
                if count <= 0:
                    continue
                try:
                    data = os.read(self.pipe, 2 * count)
                except BlockingIOError:
                    continue
                block = numpy.frombuffer(data, dtype="<i2").astype(float) / 32768
                self.blocks.append(block)
                self.played += len(block)
                self.times.append(time.monotonic())
                if self.at_sound and numpy.abs(block).max(initial=0) > LOUD:
                    self.at_sound, self.end = False, self.played
                self.lock.notify_all()

    def _has_more(self):
        """Whether the sound server holds more sound of its programs than playing the next step takes."""
        listed = self.desk.run("pactl", "list", "sink-inputs", check=False).decode()
        waiting = [int(line.split()[2]) for line in listed.split("\n") if "Buffer Latency:" in line]
        return all(microseconds > 1.25e6 * self.step / self.RATE for microseconds in waiting)

    def hold(self):
        """Stops playing and returns the number of samples played."""
        with self.lock:
            self.end = self.played
            return self.played

    def play_to(self, sample, timeout=60):
        """Plays to that sample and holds there."""
        with self.lock:
            self.end = sample
            if not self.lock.wait_for(lambda: self.played >= sample, timeout):
                raise AssertionError(f"played {self.played} of {sample} samples")

    def play_to_sound(self, timeout=60):
        """Plays until there is sound and holds there; returns the number of its first sample."""
        with self.lock:
            begin = self.played
            self.at_sound, self.end = True, None
            if not self.lock.wait_for(lambda: self.end is not None, timeout):
                raise AssertionError("nothing was heard")
        return begin + int(numpy.flatnonzero(numpy.abs(self.heard(begin)) > LOUD)[0])

    def play_on(self):
        with self.lock:
            self.end = None

    def heard(self, begin=0):
        """The samples played from a sample on."""
        with self.lock:
            return numpy.concatenate([numpy.zeros(0), *self.blocks])[begin:]

    def time_of(self, sample):
        """When that sample was played."""
        with self.lock:
            ends = numpy.cumsum([len(block) for block in self.blocks])
            index = int(numpy.searchsorted(ends, sample + 1))
            return self.times[index] - (ends[index] - sample) / self.RATE

    def stop(self):
        """Removes the sink; the desk's other one becomes the default again."""
        self.running = False
        self.thread.join()
        self.desk.run("pactl", "unload-module", self.module, check=False)
        os.close(self.pipe)
