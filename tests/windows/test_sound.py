"""What is heard of the sound output for Windows under Wine, recorded at a sound server of its own."""

import os
import subprocess
import sys
import time
import unittest

import numpy

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "desktop"))
import desk as desktop  # pylint: disable=wrong-import-position
import sound  # pylint: disable=wrong-import-position

TONE = os.path.join(HERE, "..", "..", "build", "windows", "tone.exe")
RATE = 22050  # of the tone's samples
NO_SUPPORT = 1


def monotonic(seconds):
    """A moment by the clock that Wine gives its programs, by this system's clock that the recorder uses."""
    return seconds - time.clock_gettime(time.CLOCK_MONOTONIC_RAW) + time.monotonic()


class Sound(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desk = desktop.Desk(os.path.join(HERE, "..", "..", "build", "release"))
        cls.addClassCleanup(cls.desk.close)

    def play(self, *arguments, **environment):
        """Plays a tone, and returns the status, the lines that were printed and the recorded samples."""
        env = {**os.environ, "PULSE_SERVER": self.desk.env["PULSE_SERVER"], **environment}
        self.recorder = self.desk.recorder()
        self.addCleanup(self.recorder.stop)
        done = subprocess.run(["wine", TONE, *map(str, arguments)], env=env, timeout=60, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        lines = [line.split() for line in done.stdout.decode().splitlines()]
        begin = time.monotonic()
        # All that was played has been recorded when blocks have come that are younger.
        desktop.wait_for(lambda: self.recorder.snapshot()[2][-1] > begin + 0.3, what="the end of the recording")
        return done.returncode, lines, self.recorder.snapshot()

    def test_a_tone_is_heard_whole_and_unbroken(self):
        status, lines, (samples, _, _) = self.play(440, 3000)
        self.assertEqual((status, lines[0], lines[-1]), (0, ["check", "0"], ["drained"]))
        first, last = sound.loud_span(samples)
        self.assertAlmostEqual((last - first) / sound.RATE, 3.0, delta=0.03)
        loud = numpy.flatnonzero(numpy.abs(samples) > 0.01)
        self.assertLess(numpy.diff(loud).max() / sound.RATE, 0.002)
        part = samples[first + sound.RATE // 2:last - sound.RATE // 2]
        levels = numpy.abs(numpy.fft.rfft(part * numpy.hanning(len(part))))
        self.assertAlmostEqual(levels.argmax() * sound.RATE / len(part), 440, delta=1)
        self.assertAlmostEqual(numpy.abs(part).max() * 32768, 10000, delta=200)

    def test_what_is_told_to_be_heard_is_heard(self):
        _, lines, (samples, ends, times) = self.play(440, 3000)
        first, _ = sound.loud_span(samples)
        begin = self.recorder.time_of(first, ends, times)
        told = numpy.array([(int(line[1]) / RATE, monotonic(int(line[2]) / 1e6)) for line in lines if line[0] == "heard"])
        told = told[(told[:, 0] > 0.1) & (told[:, 0] < 2.9)]
        self.assertGreater(len(told), 50)
        late = told[:, 1] - begin - told[:, 0]
        print(f"told {late.mean() * 1000:.0f} ms after it was recorded, within {late.std() * 1000:.0f} ms", end=" ")
        self.assertLess(abs(late.mean()), 0.04)
        self.assertLess(late.std(), 0.04)

    def test_a_stop_is_silent_at_once(self):
        status, lines, (samples, _, _) = self.play(440, 5000, 1000)
        self.assertEqual(status, 0)
        first, last = sound.loud_span(samples)
        self.assertAlmostEqual((last - first) / sound.RATE, int(lines[-1][1]) / RATE, delta=0.04)

    def test_without_a_device_there_is_no_stream(self):
        status, lines, _ = self.play(440, 1000, PULSE_SERVER="unix:/nowhere", ALSA_CONFIG_PATH="/dev/null")
        self.assertEqual((status, lines), (2, [["check", str(NO_SUPPORT)]]))


if __name__ == "__main__":
    unittest.main()
