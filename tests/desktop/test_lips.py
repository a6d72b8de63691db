"""Lips and balloon keep to the sound: what is seen on the screen beside what is heard from the sink."""

import difflib
import os
import sys
import unittest
import wave

import numpy

import desk as desktop
from program import ROOT, ProgramCase, Watch

sys.path.insert(0, os.path.join(ROOT, "tests", "files"))
from acs_maker import BLANK, MOUTHS, animation, frame, image, make, overlay  # noqa: E402  pylint: disable=wrong-import-position

# Every clause begins with a vowel, so that the sound after each pause is that of an open mouth.
TEXT = ("Every evening at eight, all animals of the old farm meet under one apple tree. A brown owl opens the evening. "
        "Under her eyes, a family of foxes plays with a paper boat. Other animals prefer to watch, eating apples, "
        "emptying bowls, or asking about tomorrow. An hour before midnight, everybody moves home. "
        "Only a mouse remains, and it is happy.")
COLOURS = [(250, 250, 250), (250, 0, 0), (0, 250, 0), (0, 0, 250), (250, 250, 0), (0, 250, 250), (250, 0, 250)]
SIDE = 120
MEDIAN, TAIL = 0.040, 0.080  # seconds
WORD = 0.100
SILENCE = 0.08  # a pause in speech that is no part of a consonant


def lips_character():
    """A character that is one square, of another colour for each mouth."""
    square = [bytes([1]) * SIDE] * SIDE
    images = [image(SIDE, square)]
    images += [image(SIDE, [bytes([2 + mouth]) * SIDE] * SIDE) for mouth in range(7)]
    rest = frame((0, 0, 0), overlays=[overlay(name, 1 + mouth, 0, 0, SIDE, SIDE, replace=True)
                                      for mouth, name in enumerate(MOUTHS)])
    made = make({**BLANK, "width": SIDE, "height": SIDE, "names": [(0x0409, "Lips", "", "")],
                 "palette": [(1, 2, 3), (90, 90, 90), *COLOURS], "images": images,
                 "animations": [animation("RestPose", [rest])]})
    return bytes(made.data)


def spread(values):
    """How far off, whichever way, and which way on average."""
    apart = numpy.abs(values) * 1000
    return (f"median {numpy.median(apart):.0f} ms, 95th percentile {numpy.percentile(apart, 95):.0f}, "
            f"largest {apart.max():.0f} (n = {len(apart)}; late by {numpy.median(values) * 1000:.0f})")


def place_in(recording, rendered):
    """Where in a recording a rendering begins, in samples: the place of the highest correlation."""
    size = 1 << (len(recording) + len(rendered)).bit_length()
    product = numpy.fft.irfft(numpy.fft.rfft(recording, size) * numpy.conj(numpy.fft.rfft(rendered, size)), size)
    return int(numpy.argmax(product[:len(recording)]))


def shifts_by_second(recording, rendered, start):
    """How many samples later than its place each second of a rendering is recorded (a sound server that had to wait
    inserts silence); seconds that are not found again are left out."""
    found, reach = {}, desktop.RATE // 5
    for second in range(len(rendered) // desktop.RATE):
        part = rendered[second * desktop.RATE:(second + 1) * desktop.RATE]
        first = max(0, start + second * desktop.RATE - reach)
        around = recording[first:first + desktop.RATE + 2 * reach]
        if numpy.abs(part).max() < 0.02 or len(around) < len(part):
            continue
        place = place_in(around, part)
        heard = around[place:place + len(part)]
        if len(heard) == len(part) and numpy.corrcoef(heard, part)[0, 1] > 0.9:
            found[second] = first + place - start - second * desktop.RATE
    return found


class Lips(ProgramCase):
    def setUp(self):
        super().setUp()
        folder = os.path.join(self.desk.home, "lips", "")
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, "Lips.acs"), "wb") as file:
            file.write(lips_character())
        self.desk.install_defaults(GreetingEnabled=0, SpeakTimeInterval=0, CharacterPath=folder, LastCharacter="Lips",
                                   ShowBalloon=1, BalloonAutoPace=1, SizeBallonToText=1, BalloonCharactersPerLine=40)
        self.listen()

    def speak(self):
        """Has the text spoken; returns the changes of the mouth and of the balloon, and the recording."""
        self.start_and_settle()
        window, (x, y, width, height) = self.character_window()
        self.assertEqual((width, height), (SIDE, SIDE), window)
        self.desk.click(self.desk.find("Text to read"))
        self.desk.type(TEXT)
        mouths = {(90, 90, 90): None, **{colour: mouth for mouth, colour in enumerate(COLOURS)}}
        mouth = Watch(self.desk, (x + 50, y + 50, x + 54, y + 54), lambda picture: mouths[picture.getpixel((1, 1))])
        begin = int(self.recorder.snapshot()[1][-1])
        self.press("Speak the textbox text")
        balloon = desktop.wait_for(lambda: self.desk.windows("^Voxmate balloon$"), what="the balloon")
        bx, by, bw, bh = self.desk.window_rect(balloon[0])
        self.assertGreater(bw * bh, 0)
        words = Watch(self.desk, (bx + 12, by + 12, bx + bw - 12, by + bh - 30), lambda picture: hash(picture.tobytes()))
        self.settle(timeout=60)
        mouth.stop()
        words.stop()
        samples, ends, times = self.recorder.snapshot()
        recording = samples[begin:]
        return mouth, words, recording, lambda sample: self.recorder.time_of(begin + sample, ends, times)

    def rendered(self):
        """The same speech without the program: its samples, as many a second as in the recording, and the seconds at
        which its mouths and words begin."""
        path = self.render(TEXT)
        with wave.open(path) as file:
            rate = file.getframerate()
            samples = numpy.frombuffer(file.readframes(file.getnframes()), dtype="<i2").astype(float) / 32768
        there = numpy.arange(int(len(samples) * desktop.RATE / rate)) * rate / desktop.RATE
        events = {"mouth": [], "word": []}
        for line in self.render_events.split("\n"):
            if line:
                kind, at, value = line.split()
                known = events[kind]
                if not known or known[-1][1] != int(value):
                    known.append((int(at) / rate, int(value)))
        return numpy.interp(there, numpy.arange(len(samples)), samples), events

    def test_mouths_and_words_are_seen_when_they_are_heard(self):
        mouth, words, recording, time_of = self.speak()
        samples, events = self.rendered()
        start = place_in(recording, samples)
        aligned = recording[start:start + len(samples)]
        shifts = shifts_by_second(recording, samples, start)
        self.assertGreater(len(shifts), 12, "the recording is that of the rendering")

        def heard_at(seconds):
            at = int(seconds * desktop.RATE)
            return time_of(start + at + shifts[min(shifts, key=lambda second: abs(second - seconds))])

        # Each phoneme's place in the sound, and its mouth on the screen: what was heard and what was seen, laid side by
        # side in their order, whenever it was.
        seen = [(when, value) for when, value in mouth.seen if value is not None]
        changes = events["mouth"]
        order = difflib.SequenceMatcher(None, [value for _, value in changes], [value for _, value in seen], False)
        pairs = [(block.a + i, block.b + i) for block in order.get_matching_blocks() for i in range(block.size)]
        lags = [seen[shown][0] - heard_at(changes[heard][0]) for heard, shown in pairs]
        missed = []
        for index in set(range(1, len(changes))) - {heard for heard, _ in pairs}:
            until = changes[index + 1][0] if index + 1 < len(changes) else changes[index][0] + 1
            missed.append((round(changes[index][0], 3), changes[index][1], round(until - changes[index][0], 3)))
        # The sound itself: after each pause, when it is heard and when the mouth opens.
        size = int(desktop.RATE * 0.005)
        loud = numpy.abs(aligned[:len(aligned) // size * size]).reshape(-1, size).max(axis=1) > 0.02
        quiet, onsets = 1e9, []
        for index, is_loud in enumerate(loud):
            if is_loud and quiet * 0.005 >= SILENCE:
                onsets.append(index * 0.005)
            quiet = 0 if is_loud else quiet + 1
        opened = [when for (_, before), (when, value) in zip(mouth.seen, mouth.seen[1:]) if not before and value]
        openings = [min((when - heard_at(seconds) for when in opened), key=abs) for seconds in onsets]
        # The balloon: each change of its picture is one more word, but for its own coming.
        due = [heard_at(seconds) for seconds, _ in events["word"]]
        shown = [when for when, _ in words.seen[1:]][:len(due) - 1]
        delays = [when - wanted for when, wanted in zip(shown, due[1:])]
        print(f"\n  phoneme to mouth: {spread(lags)}, {len(missed)} not seen; sound after a pause to open mouth: "
              f"{spread(openings)}; word to balloon: {spread(delays)}; looks at most {mouth.worst * 1000:.0f} and "
              f"{words.worst * 1000:.0f} ms apart", flush=True)

        self.assertGreater(len(lags), 100)
        self.assertLess(numpy.median(numpy.abs(lags)), MEDIAN)
        self.assertLess(numpy.percentile(numpy.abs(lags), 95), TAIL)
        # Only a mouth too short to be seen between two looks may be left out.
        self.assertEqual([entry for entry in missed if entry[2] > max(0.04, mouth.worst + 0.02)], [])
        self.assertGreaterEqual(len(onsets), 8)
        self.assertLess(numpy.median(numpy.abs(openings)), MEDIAN)
        self.assertLess(numpy.percentile(numpy.abs(openings), 95), TAIL)
        # A voice may run two short words together.
        self.assertGreaterEqual(len(due), len(TEXT.split()) - 2)
        self.assertEqual(len(delays), len(due) - 1)
        # A busy machine may look away at a single word.
        self.assertLess(numpy.percentile(numpy.abs(delays), 95), WORD)
        self.assertLess(numpy.abs(delays).max(), 2 * WORD)


if __name__ == "__main__":
    unittest.main()
