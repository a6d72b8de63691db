"""The main job for real: a sentence is typed, read aloud by the character, and stopped."""

import time
import unittest
import wave

import numpy

import desk as desktop
from program import IDLE, ProgramCase, StatusWatch, Watch

SENTENCE = "The quick brown fox jumps over the lazy dog, and the dog does not mind at all."
QUIET = {"GreetingEnabled": 0, "SpeakTimeInterval": 0}


def read_wave(path):
    with wave.open(path) as file:
        samples = numpy.frombuffer(file.readframes(file.getnframes()), dtype="<i2").astype(float) / 32768
        return samples, file.getframerate()


class Speech(ProgramCase):
    defaults = QUIET

    def setUp(self):
        super().setUp()
        self.listen()

    def type_sentence(self):
        self.desk.click(self.desk.find("Text to read"))
        self.desk.type(SENTENCE)
        # The pointer rests on the button, so that what is measured from the press on is the program alone.
        x, y, width, height = self.desk.rect(self.desk.find("Speak the textbox text"))
        self.desk.run("xdotool", "mousemove", str(x + width // 2), str(y + height // 2))
        time.sleep(0.2)

    def press_pointer(self):
        pressed = time.monotonic()
        self.desk.run("xdotool", "click", "1")
        return pressed

    def sound_since(self, start):
        """The samples recorded since a sample number, and what tells their times."""
        samples, ends, times = self.recorder.snapshot()
        return samples[start:], lambda sample: self.recorder.time_of(start + sample, ends, times)

    def samples_now(self):
        return int(self.recorder.snapshot()[1][-1])

    def test_a_typed_sentence_is_heard_at_once_and_as_long_as_the_engine_makes_it(self):
        self.start_and_settle()
        self.type_sentence()
        _, (x, y, width, height) = self.character_window()
        begin = self.samples_now()
        status = StatusWatch(self.status_panel())
        # The mouth of the character that ships, where it stands at rest.
        mouth_x, mouth_y = x + width // 2, y + height * 5 // 9
        frames = Watch(self.desk, (mouth_x - 24, mouth_y - 12, mouth_x + 24, mouth_y + 16))
        pressed = self.press_pointer()
        desktop.wait_for(lambda: desktop.loud_span(self.sound_since(begin)[0]), 5, what="sound")
        self.settle(quiet=0.8)
        frames.stop()
        status.stop()

        samples, time_of = self.sound_since(begin)
        first, last = desktop.loud_span(samples)
        delay = time_of(first) - pressed
        heard = (last - first) / desktop.RATE
        rendered, rate = read_wave(self.render(SENTENCE))
        size = int(rate * 0.005)
        blocks = numpy.abs(rendered[:len(rendered) // size * size]).reshape(-1, size).max(axis=1)
        loud = numpy.flatnonzero(blocks > 0.01)
        expected = (loud[-1] + 1 - loud[0]) * 0.005
        print(f"\n  press to sound {delay * 1000:.0f} ms; heard {heard:.3f} s, rendered {expected:.3f} s; "
              f"{len(frames.seen)} pictures", flush=True)
        self.assertLess(delay, 0.300)
        self.assertAlmostEqual(heard / expected, 1.0, delta=0.03)

        # The mouth takes many shapes while there is sound and rests once it has ended. (Before the press the character may
        # be looking round.)
        start, end = time_of(first), time_of(last)
        shapes = {picture for when, picture in frames.seen if start <= when <= end}
        self.assertGreaterEqual(len(shapes), 5)
        self.assertGreater(sum(start <= when <= end for when, _ in frames.seen) / heard, 4)
        self.assertEqual([when - end for when, _ in frames.seen if when > end + 0.25], [])
        texts = status.texts()
        self.assertEqual(texts[:2], [IDLE, "Busy..."])
        self.assertEqual(texts[-1], IDLE)

    def test_stop_in_mid_sentence_is_silence_at_once(self):
        self.start_and_settle()
        self.type_sentence()
        stop = self.desk.rect(self.desk.find("Stop Everything !!!"))
        begin = self.samples_now()
        self.press_pointer()
        desktop.wait_for(lambda: desktop.loud_span(self.sound_since(begin)[0]), 5, what="sound")
        time.sleep(1.0)
        self.desk.run("xdotool", "mousemove", str(stop[0] + stop[2] // 2), str(stop[1] + stop[3] // 2))
        pressed = self.press_pointer()
        time.sleep(1.5)
        samples, time_of = self.sound_since(begin)
        _, last = desktop.loud_span(samples)
        print(f"\n  stop to silence {(time_of(last) - pressed) * 1000:.0f} ms", flush=True)
        self.assertLess(time_of(last) - pressed, 0.150)
        self.assertIn(IDLE, self.desk.texts())
        self.assertIsNone(self.program.poll())

    def test_a_second_sentence_waits_for_the_first(self):
        self.start_and_settle()
        self.type_sentence()
        begin = self.samples_now()
        self.press_pointer()
        time.sleep(0.5)
        self.press_pointer()
        self.settle(quiet=0.8)
        samples, _ = self.sound_since(begin)
        first, last = desktop.loud_span(samples)
        rendered, rate = read_wave(self.render(SENTENCE))
        self.assertGreater((last - first) / desktop.RATE, 1.9 * len(rendered) / rate)

    def test_nothing_to_read_is_complained_about_aloud(self):
        self.start_and_settle()
        begin = self.samples_now()
        self.press("Speak the textbox text")
        desktop.wait_for(lambda: desktop.loud_span(self.sound_since(begin)[0]), 10, what="the complaint")
        self.assertEqual(self.boxes(), [])

    def test_a_left_click_on_the_character_reads_the_text_box(self):
        self.start_and_settle()
        self.type_sentence()
        _, (x, y, width, height) = self.character_window()
        begin = self.samples_now()
        self.desk.click_at(x + width // 2, y + height // 2)
        desktop.wait_for(lambda: desktop.loud_span(self.sound_since(begin)[0]), 5, what="sound")


class SoundServer(ProgramCase):
    defaults = QUIET

    def hear(self):
        recorder = self.desk.recorder()
        try:
            self.press("Speak the textbox text")
            desktop.wait_for(lambda: desktop.loud_span(recorder.snapshot()[0]), 10, what="sound")
        finally:
            recorder.stop()

    def test_speech_goes_on_after_the_sound_server_crashed_in_mid_sentence_and_came_back(self):
        self.start_and_settle()
        self.desk.click(self.desk.find("Text to read"))
        self.desk.type(SENTENCE)
        self.hear()
        self.desk.kill_sound()
        try:
            self.settle()
            self.press("Speak the textbox text")
            self.assertEqual(self.box_text("Voxmate - Audio Output Problem"), "There is no support for audio output.")
            self.press("OK")
            self.desk.gone("Voxmate - Audio Output Problem")
        finally:
            self.desk.start_sound()
        self.hear()
        self.assertIsNone(self.program.poll())

    def test_a_sound_server_that_comes_after_the_program_is_found(self):
        self.desk.kill_sound()
        try:
            self.start_and_settle()
            self.press("Speak the textbox text")
            self.box_text("Voxmate - Audio Output Problem")
            self.press("OK")
            self.desk.gone("Voxmate - Audio Output Problem")
        finally:
            self.desk.start_sound()
        self.hear()


class Greeting(ProgramCase):
    defaults = {"EnableSoundEffects": 0}  # what is heard is the voice

    def test_the_start_up_greeting_is_heard(self):
        recorder = self.desk.recorder()
        try:
            self.start()
            desktop.wait_for(lambda: desktop.loud_span(recorder.snapshot()[0]), 20, what="the greeting")
            self.settle(quiet=1.0)
            samples = recorder.snapshot()[0]
            first, last = desktop.loud_span(samples)
            self.assertGreater((last - first) / desktop.RATE, 3)
        finally:
            recorder.stop()


if __name__ == "__main__":
    unittest.main()
