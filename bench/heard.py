"""Measures and prints how soon a typed sentence is heard and a stop is silent, how far lips and balloon are from the
sound on three kinds of sinks. Nothing else may run on the machine.

Usage: /usr/bin/python3 -W ignore bench/heard.py [sentence] [lips]
"""

import difflib
import os
import sys
import time

import numpy

ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), ".."))
sys.path.insert(0, os.path.join(ROOT, "tests", "desktop"))
# pylint: disable=wrong-import-position
import desk as desktop  # noqa: E402
import lips  # noqa: E402
import sound  # noqa: E402
from program import Watch  # noqa: E402
from test_speech import SENTENCE, SpeechCase  # noqa: E402

RUNS = 10
SILENCE = 0.08  # seconds of silence that are a pause and not part of a consonant


def spread(values):
    """The size of the deviations regardless of direction, and the median deviation with its sign."""
    if not len(values):
        return "nothing measured"
    apart = numpy.abs(values) * 1000
    return (f"median {numpy.median(apart):.0f} ms, 95th percentile {numpy.percentile(apart, 95):.0f}, "
            f"largest {apart.max():.0f} (n = {len(apart)}; late by {numpy.median(values) * 1000:.0f})")


class Sentence(SpeechCase):
    def measure(self):
        self.listen()
        self.start_and_settle()
        self.type_text(SENTENCE)
        starts, stops = [], []
        for _ in range(RUNS):
            self.point_at("Speak the textbox text")
            begin = self.now()
            pressed = time.monotonic()
            self.desk.run("xdotool", "click", "1")
            desktop.wait_for(lambda: self.sound_since(begin), what="sound")
            starts.append(self.moment(begin, 0) - pressed)
            self.point_at("Stop Everything !!!")
            pressed = time.monotonic()
            self.desk.run("xdotool", "click", "1")
            self.settle(quiet=1.5)
            stops.append(self.moment(begin, 1) - pressed)
        print(f"Press to first sound: {spread(numpy.array(starts))}")
        print(f"Stop to last sound: {spread(numpy.array(stops))}", flush=True)

    def point_at(self, name):
        x, y, width, height = self.desk.rect(self.desk.find(name, role="push button"))
        self.desk.run("xdotool", "mousemove", str(x + width // 2), str(y + height // 2))
        time.sleep(0.3)

    def moment(self, begin, which):
        """When the first (0) or the last (1) sound after a sample was heard."""
        samples, ends, times = self.recorder.snapshot()
        at = begin + sound.loud_span(samples[begin:])[which]
        return self.recorder.time_of(min(at, len(samples) - 1), ends, times)


class CloseEar:
    """Records the desk's sink and thereby makes its queue as short as possible."""

    RATE = sound.RATE

    def __init__(self, desk):
        self.recorder = desk.recorder()

    def heard(self, begin=0):
        return self.recorder.snapshot()[0][begin:]

    def time_of(self, sample):
        _, ends, times = self.recorder.snapshot()
        return self.recorder.time_of(sample, ends, times)

    def stop(self):
        self.recorder.stop()


class Lips(SpeechCase):
    def measure(self):
        for name, kind in (("with a short queue", CloseEar), ("at its default", lips.DistantEar),
                           ("with a queue of half a second", lips.Speaker)):
            lips.install_lips(self.desk)
            ear = kind(self.desk)
            try:
                self.measure_on(ear, name)
            finally:
                self.desk.end(self.program)
                ear.stop()

    def measure_on(self, ear, name):
        self.start_and_settle()
        _, (x, y, _, _) = self.character_window()
        self.type_text(lips.TEXT)
        mouth = Watch(self.desk, (x + 50, y + 50, x + 54, y + 54), lips.mouth_in)
        begin = len(ear.heard())
        self.press("Speak the textbox text")
        balloon = desktop.wait_for(lambda: self.desk.windows("^Voxmate balloon$"), step=0.001, what="the balloon")
        came = time.monotonic()
        bx, by, bw, bh = self.desk.window_rect(balloon[0])
        words = Watch(self.desk, (bx + 12, by + 12, bx + bw - 12, by + bh - 30), lips.words_in)
        self.settle(timeout=60)
        mouth.stop()
        words.stop()
        speech = lips.Rendering(self.render(lips.TEXT), self.render_events, ear.RATE)
        time.sleep(4)  # the recording of a sink with a long queue arrives late
        heard_at, aligned = self.align(ear, begin, speech)

        lags, missed = self.mouth_lags(mouth, speech, heard_at)
        openings = self.openings(mouth, aligned, ear.RATE, heard_at)
        there = words.seen[0][1]  # words that were there before the first look
        shown = [next((when for when, count in words.seen if count > word), None) for _, word in speech.words]
        delays = [when - heard_at(seconds) for when, (seconds, word) in zip(shown, speech.words) if when and word >= there]
        first = heard_at(speech.first_sound)
        opened = next((when for when, value in mouth.seen if value), numpy.nan)
        print(f"Sink {name}:\n  sound to first mouth {(opened - first) * 1000:.0f} ms, to first word "
              f"{(came - first) * 1000:.0f} ms\n  phoneme to mouth: {spread(numpy.array(lags))}, {missed} not seen\n"
              f"  sound after a pause to open mouth: {spread(numpy.array(openings))}\n"
              f"  word to balloon: {spread(numpy.array(delays))}\n"
              f"  looks at most {mouth.worst * 1000:.0f} and {words.worst * 1000:.0f} ms apart", flush=True)

    def align(self, ear, begin, speech):
        """Returns a function that tells when a second of the speech was heard, and the recording of the speech. A sound
        server that had to wait inserts silence, so each second of the speech is searched for separately."""
        recording = ear.heard(begin)
        start = lips.place_in(recording, speech.samples)
        rate, shifts = ear.RATE, {}
        for second in range(len(speech.samples) // rate):
            part = speech.samples[second * rate:(second + 1) * rate]
            first = max(0, start + second * rate - rate // 5)
            around = recording[first:first + rate + rate * 2 // 5]
            if numpy.abs(part).max() < 0.02 or len(around) < len(part):
                continue
            place = lips.place_in(around, part)
            heard = around[place:place + len(part)]
            if len(heard) == len(part) and numpy.corrcoef(heard, part)[0, 1] > 0.9:
                shifts[second] = first + place - start - second * rate
        assert len(shifts) > 12, "the recording is not that of the text"

        def heard_at(seconds):
            shift = shifts[min(shifts, key=lambda second: abs(second - seconds))]
            return ear.time_of(begin + start + int(seconds * rate) + shift)

        return heard_at, recording[start:start + len(speech.samples)]

    def mouth_lags(self, mouth, speech, heard_at):
        """Matches heard and seen mouths by their order, regardless of their times. Returns the delays, and how many
        mouths that were long enough to be seen were not."""
        seen = [(when, value) for when, value in mouth.seen if value is not None]
        order = difflib.SequenceMatcher(None, [value for _, value in speech.mouths], [value for _, value in seen], False)
        pairs = [(block.a + i, block.b + i) for block in order.get_matching_blocks() for i in range(block.size)]
        ends = [begin for begin, _ in speech.mouths[1:]] + [len(speech.samples) / speech.rate]
        missed = set(range(1, len(speech.mouths))) - {heard for heard, _ in pairs}
        return ([seen[shown][0] - heard_at(speech.mouths[heard][0]) for heard, shown in pairs],
                sum(ends[index] - speech.mouths[index][0] > max(0.04, mouth.worst + 0.02) for index in missed))

    def openings(self, mouth, aligned, rate, heard_at):
        """For each pause: the time from the next sound to the nearest opening of the mouth."""
        size = int(rate * 0.005)
        loud = numpy.abs(aligned[:len(aligned) // size * size]).reshape(-1, size).max(axis=1) > 0.02
        quiet, onsets = 1e9, []
        for index, is_loud in enumerate(loud):
            if is_loud and quiet * 0.005 >= SILENCE:
                onsets.append(index * 0.005)
            quiet = 0 if is_loud else quiet + 1
        opened = [when for (_, before), (when, value) in zip(mouth.seen, mouth.seen[1:]) if not before and value]
        return [min((when - heard_at(seconds) for when in opened), key=abs) for seconds in onsets]


def main():
    wanted = sys.argv[1:]
    for name, case in (("sentence", Sentence), ("lips", Lips)):
        if wanted and name not in wanted:
            continue
        measured = case()
        try:
            measured.setUp()
            measured.measure()
        finally:
            measured.tearDown()
            measured.doCleanups()


if __name__ == "__main__":
    main()
