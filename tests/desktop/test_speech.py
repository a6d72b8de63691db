"""The program's main job: a sentence is typed, read aloud by the character, and stopped."""

import os
import signal
import time
import unittest

import desk as desktop
import sound
from hold import held, threads
from program import CALM, IDLE, ProgramCase

SENTENCE = "The quick brown fox jumps over the lazy dog, and the dog does not mind at all."


class SpeechCase(ProgramCase):
    defaults = CALM


class Speech(SpeechCase):
    shared = True

    def setUp(self):
        super().setUp()
        self.listen()

    def test_a_typed_sentence_is_heard_and_as_much_of_it_as_the_engine_makes(self):
        self.start_and_settle()
        self.type_text(SENTENCE)
        begin = self.now()
        status = self.watch_status()
        mouth = self.watch_mouth()
        self.press("Speak the textbox text")
        self.wait_for_sound(begin)
        self.settle()
        mouth.stop()
        status.stop()
        # Silence is not counted, because a busy sound server may insert some.
        self.assertAlmostEqual(self.sound_since(begin) / self.rendered_length(SENTENCE), 1.0, delta=0.05)
        # (Before the press the character may be looking around.)
        self.assertGreaterEqual(self.mouths_during_sound(mouth, begin), 5)
        texts = status.texts()
        self.assertEqual(texts[:2], [IDLE, "Busy..."])
        self.assertEqual(texts[-1], IDLE)

    def test_stop_in_mid_sentence_is_silence(self):
        self.start_and_settle()
        self.type_text(SENTENCE * 3)
        begin = self.now()
        self.press("Speak the textbox text")
        self.wait_for_sound(begin)
        self.press("Stop Everything !!!")
        desktop.wait_for(lambda: not self.streams(), what="the end of the sound")
        self.assertLess(self.sound_since(begin), 0.5 * self.rendered_length(SENTENCE * 3))
        self.assertIn(IDLE, self.desk.texts())
        self.assertIsNone(self.program.poll())

    def test_a_second_sentence_waits_for_the_first(self):
        self.start_and_settle()
        self.type_text(SENTENCE)
        begin = self.now()
        self.press("Speak the textbox text")
        self.wait_for_sound(begin)
        self.press("Speak the textbox text")
        self.settle(quiet=0.8)
        self.assertGreater(self.sound_since(begin), 1.9 * self.rendered_length(SENTENCE))

    def test_mixers_show_the_programs_own_name_and_icon(self):
        self.start_and_settle()
        self.type_text(SENTENCE)
        self.press("Speak the textbox text")
        stream = desktop.wait_for(self.streams, what="the program's stream")[0]
        shown = [line.strip() for line in stream.split("\n")]
        for line in ('application.name = "Voxmate"', 'application.id = "voxmate"',
                     'application.icon_name = "voxmate"', 'media.name = "Voice"', 'media.icon_name = "voxmate"',
                     'media.role = "a11y"'):
            self.assertIn(line, shown)

    def test_nothing_to_read_is_complained_about_aloud(self):
        self.start_and_settle()
        self.type_text("")
        begin = self.now()
        self.press("Speak the textbox text")
        self.wait_for_sound(begin)
        self.assertEqual(self.boxes(), [])

    def test_a_left_click_on_the_character_reads_the_text_box(self):
        self.start_and_settle()
        self.type_text(SENTENCE)
        _, (x, y, width, height) = self.character_window()
        begin = self.now()
        self.desk.click_at(x + width // 2, y + height // 2)
        self.wait_for_sound(begin)


class SoundServer(SpeechCase):
    def is_heard(self):
        recorder = self.desk.recorder()
        try:
            self.press("Speak the textbox text")
            desktop.wait_for(lambda: sound.loud_span(recorder.snapshot()[0]), what="sound")
        finally:
            recorder.stop()

    def test_speech_goes_on_after_the_sound_server_crashed_in_mid_sentence_and_came_back(self):
        self.start_and_settle()
        self.type_text(SENTENCE)
        self.is_heard()
        self.desk.kill_sound()
        try:
            self.settle()
            self.press("Speak the textbox text")
            self.assertEqual(self.answer_box("Voxmate - Audio Output Problem"), "There is no support for audio output.")
        finally:
            self.desk.start_sound()
        self.is_heard()
        self.assertIsNone(self.program.poll())

    def test_a_sink_that_stops_playing_in_mid_sentence_ends_the_sentence(self):
        self.start_and_settle()
        self.type_text(SENTENCE)
        self.is_heard()
        self.desk.run("pactl", "suspend-sink", "rec", "1")
        self.settle()
        self.desk.run("pactl", "suspend-sink", "rec", "0")
        self.is_heard()

    def heard_whole(self, text, speak, most=1.06):
        """Lets `speak(recorder)` speak the text and disturb that, and compares what is heard with the text's length, of
        which it may be `most` times as much."""
        self.type_text(text)
        recorder = self.desk.recorder()
        try:
            speak(recorder)
            self.settle()
            heard = sound.loud_seconds(recorder.snapshot()[0])
        finally:
            recorder.stop()
        self.assertGreater(heard / self.rendered_length(text), 0.94)
        self.assertLess(heard / self.rendered_length(text), most)

    # What follows is disturbed for longer than a sound server that takes nothing is waited for.

    def test_a_voice_that_is_slow_to_speak_is_waited_for(self):
        self.start_and_settle()
        self.type_text(SENTENCE)
        others = threads(self.program.pid)
        self.is_heard()
        self.settle()
        voice = threads(self.program.pid) - others
        self.assertTrue(voice, "no thread has come with the first sentence")

        def hold_from_the_start(_):
            with held(voice):
                self.press("Speak the textbox text")
                time.sleep(5)

        def hold_in_the_middle(recorder):
            self.press("Speak the textbox text")
            desktop.wait_for(lambda: sound.loud_span(recorder.snapshot()[0]), what="sound")
            with held(voice):
                # It has spoken two seconds ahead.
                time.sleep(8)

        self.heard_whole(SENTENCE, hold_from_the_start)
        self.heard_whole(SENTENCE * 3, hold_in_the_middle)

    def test_a_program_that_stood_still_in_mid_sentence_goes_on(self):
        self.start_and_settle()

        def stand_still(recorder):
            self.press("Speak the textbox text")
            desktop.wait_for(lambda: sound.loud_span(recorder.snapshot()[0]), what="sound")
            self.program.send_signal(signal.SIGSTOP)
            time.sleep(5)
            self.program.send_signal(signal.SIGCONT)

        # Where the sound breaks off, a busy machine has added 7 percent. A fault loses most of the sentence.
        self.heard_whole(SENTENCE, stand_still, most=1.2)

    def test_a_sound_server_that_comes_after_the_program_is_found(self):
        self.desk.kill_sound()
        try:
            self.start_and_settle()
            self.press("Speak the textbox text")
            self.answer_box("Voxmate - Audio Output Problem")
        finally:
            self.desk.start_sound()
        self.is_heard()


class Greeting(ProgramCase):
    defaults = {"EnableSoundEffects": 0}  # so that only the voice is heard

    def test_the_start_up_greeting_is_heard(self):
        self.listen()
        self.start()
        self.wait_for_sound(0, "the greeting")
        self.settle(quiet=1.0)
        first, last = self.heard_since(0)
        self.assertGreater((last - first) / sound.RATE, 3)

    def test_it_is_heard_although_the_sound_server_answers_late(self):
        self.listen()
        os.kill(self.desk.sound.pid, signal.SIGSTOP)
        try:
            self.start()
            # The main window appears while the splash is still shown, and then the greeting.
            desktop.wait_for(lambda: len(self.desk.windows("^Voxmate$")) == 2, what="the main window")
            # By then the program has wanted to speak for a while.
            time.sleep(1)
        finally:
            os.kill(self.desk.sound.pid, signal.SIGCONT)
        self.wait_for_sound(0, "the greeting")
        self.settle()
        self.assertEqual(self.boxes(), [])


if __name__ == "__main__":
    unittest.main()
