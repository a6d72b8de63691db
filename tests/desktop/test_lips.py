"""Lips and balloon follow the sound: the screen shows what has just been heard from the loudspeaker."""

import time
import unittest

import desk as desktop
import lips
import sound
from program import ProgramCase, Watch

# In seconds. When the sound is held, the program is ahead of it by the 15 ms that a screen needs and by the 40 ms for
# which it extrapolates the server's clock.
AHEAD = 0.06
INTO = 0.05   # how far into a mouth or a pause the sound is held
EARLY = 0.2   # greatest error of the moments at which a mouth is seen and a sound is heard

TEXT = ". ".join(lips.TEXT.split(". ")[:2]) + "."


class Lips(ProgramCase):
    def setUp(self):
        super().setUp()
        lips.install_lips(self.desk)

    def begin(self):
        """Starts the program and types the text."""
        self.start_and_settle()
        _, (self.x, self.y, width, height) = self.character_window()
        self.assertEqual((width, height), (lips.SIDE, lips.SIDE))
        self.type_text(TEXT)

    def mouth(self):
        return lips.mouth_in(self.desk.screenshot(box=(self.x + 50, self.y + 50, self.x + 54, self.y + 54)))

    def balloons(self):
        return self.desk.windows("^Voxmate balloon$")

    def words(self):
        """How many words the balloon shows; it appears only with the first."""
        for balloon in self.balloons():
            x, y, width, height = self.desk.window_rect(balloon)
            return lips.words_in(self.desk.screenshot(box=(x + 12, y + 12, x + width - 12, y + height - 30)))
        return 0


class HeldSound(Lips):
    """On a loudspeaker with a long queue whose sound is held, so that there is time to look."""

    def setUp(self):
        super().setUp()
        self.speaker = lips.Speaker(self.desk, patient=True)
        self.addCleanup(self.speaker.stop)

    def begin_held(self):
        """Has the text spoken while the loudspeaker plays nothing."""
        self.begin()
        self.speaker.hold()
        self.press("Speak the textbox text")

    def test_nothing_is_seen_before_it_is_heard(self):
        self.begin_held()
        desktop.wait_for(self.streams, what="the program's stream")
        # Nothing may be seen, however long the sound is held.
        end = time.monotonic() + 2
        while time.monotonic() < end:
            self.assertIsNone(self.mouth())
            self.assertEqual(self.balloons(), [])
        self.speaker.play_to_sound()
        desktop.wait_for(self.mouth, what="the first mouth")
        desktop.wait_for(lambda: self.words() == 1, what="the first word")
        self.speaker.play_on()

    def test_mouths_and_words_are_those_of_the_sound(self):
        speech = lips.Rendering(self.render(TEXT), self.render_events, lips.Speaker.RATE)
        self.begin_held()
        start = self.speaker.play_to_sound() - int(speech.first_sound * speech.rate)
        seen = []
        for begin, mouth in speech.held_mouths(INTO + AHEAD + 0.02):
            self.speaker.play_to(start + int((begin + INTO) * speech.rate))
            words = range(speech.words_at(begin + INTO), speech.words_at(begin + INTO + AHEAD) + 1)
            self.becomes(self.mouth, (mouth,) if mouth else (0, None), f"the mouth at {begin:.2f} s")
            self.becomes(self.words, words, f"the words at {begin:.2f} s")
            seen.append(mouth)
        self.assertGreater(len(seen), 10)
        self.assertIn(0, seen)
        self.assertGreater(len(set(seen)), 3)
        self.speaker.play_on()
        self.settle()
        self.assertIsNone(self.mouth())

    def becomes(self, look, wanted, what):
        try:
            desktop.wait_for(lambda: look() in wanted)
        except AssertionError:
            self.fail(f"{what}: {look()} is none of {list(wanted)}")


class UnheldSound(Lips):
    """On a sink that nobody hurries, with the longest queue the sound server uses: two seconds."""

    def test_nothing_is_seen_before_it_is_heard(self):
        ear = lips.DistantEar(self.desk)
        self.addCleanup(ear.stop)
        self.begin()
        mouth = Watch(self.desk, (0, 0, 1, 1), lambda _: self.mouth())
        balloon = Watch(self.desk, (0, 0, 1, 1), lambda _: bool(self.balloons()))
        pressed = len(ear.heard())
        self.press("Speak the textbox text")
        self.settle()
        mouth.stop()
        balloon.stop()
        first = desktop.wait_for(lambda: sound.loud_span(ear.heard(pressed)), what="the sound")[0]
        heard = ear.time_of(pressed + first)
        opened, shown = (next(by for by, (_, value) in zip(watch.by, watch.seen) if value) for watch in (mouth, balloon))
        # A busy machine makes both late, but never early.
        self.assertGreater(opened, heard - EARLY)
        self.assertGreater(shown, heard - EARLY)
        self.assertIsNone(self.mouth())


if __name__ == "__main__":
    unittest.main()
