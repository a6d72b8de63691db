"""The character on the desktop: its menu and commands, its size, the cast, and what its events do to the program."""

import datetime
import glob
import os
import time
import unittest

import desk as desktop
import sound
from disc import DISC, write_disc
from program import CALM, IDLE, ProgramCase, Watch, ordinal, spoken_time

CHARACTER_BUTTON = "Choose Character by Right Click. Show Character on Left Click"
SENTENCE = "This is a sentence of some length, so that there is time to interrupt it before it comes to its end."
COMMANDS = {"stop": 0, "time": 1, "date": 2, "who": 3, "hide": 4}


class Character(ProgramCase):
    # Sound effects are off, so that only the voice is heard.
    defaults = {**CALM, "LastCharacter": "Nalu", "EnableSoundEffects": 0}

    shared = True

    def setUp(self):
        super().setUp()
        self.start_and_settle()
        self.listen()

    def choose(self, command):
        self.desk.click_at(*self.open_character_menu()[COMMANDS[command]])

    def speak(self, text=SENTENCE):
        self.type_text(text)
        begin = self.now()
        self.press("Speak the textbox text")
        self.wait_for_sound(begin)

    def phrases(self, command):
        """What the character answers to a command, with the default settings."""
        now = datetime.datetime.now()
        if command == "time":
            return [spoken_time(now)]
        if command == "date":
            settings = self.desk.read_settings()
            self.assertEqual((settings["DateFormat"], settings["TimeIn24Hour"]), ("dword:00000002", "dword:00000000"))
            return [f"Today is {now:%A}, {ordinal(now.day)} of {now:%B}, {now.year}"]
        name = self.desk.read_settings()["UserName"].strip('"')
        return [f"Hello {name}. My name is Nalu", "Hey, do you know, beside reading text in the text box, I can also "
                "read TEXT and WORD documents."]

    def silences(self, command, tolerance=0.3):
        """A command chosen while the character speaks silences it within `tolerance` seconds."""
        self.speak()
        place = self.open_character_menu()[COMMANDS[command]]
        self.desk.run("xdotool", "mousemove", *map(str, place))
        moment = time.monotonic()
        self.desk.run("xdotool", "click", "1")
        time.sleep(tolerance + 1.0)
        samples, ends, times = self.recorder.snapshot()
        span = sound.loud_span(samples)
        self.assertIsNotNone(span)
        self.assertLess(self.recorder.time_of(span[1], ends, times) - moment, tolerance)

    def test_time_date_and_introduction_are_told_from_the_menu(self):
        for command in ("time", "date", "who"):
            with self.subTest(command):
                begin = self.now()
                expected = sum(self.rendered_length(text) for text in self.phrases(command))
                status = self.watch_status()
                self.choose(command)
                self.wait_for_sound(begin, command)
                self.settle()
                status.stop()
                self.assertAlmostEqual(self.sound_since(begin) / expected, 1, delta=0.06)
                self.assertIn("Busy...", status.texts())
                self.assertEqual(status.texts()[-1], IDLE)

    def test_an_open_menu_stays_open_when_the_balloon_comes(self):
        self.choose("hide")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate character$"), what="the character going")
        self.type_text(SENTENCE)
        self.press("Speak the textbox text")
        self.desk.key("alt+f")
        self.desk.find("Exit")
        self.assertFalse(self.desk.windows("^Voxmate balloon$"))
        desktop.wait_for(lambda: self.desk.windows("^Voxmate balloon$"), what="the balloon")
        time.sleep(0.3)
        self.assertIn("Exit", self.desk.texts())
        self.desk.key("Escape")
        self.press(CHARACTER_BUTTON)
        self.comes_back()

    def test_it_breathes_while_it_waits_and_stands_still_when_that_is_switched_off(self):
        if any(open(status, encoding="utf-8").read().strip() == "Discharging" for status in glob.glob("/sys/class/power_supply/*/status")):
            self.skipTest("on battery it stands still")
        still = 2.5  # seconds; between two idle plays are three and more, and a breath pauses for less than one

        def longest_rest(watch):
            moments = [moment for moment, _ in watch.seen]
            return max((after - before for before, after in zip(moments, moments[1:] + [time.monotonic()])), default=0)
        _, (x, y, width, height) = self.character_window()
        for breathes in (True, False):
            with self.subTest(breathes=breathes):
                watch = Watch(self.desk, (x, y, x + width, y + height))
                try:
                    if breathes:
                        desktop.wait_for(lambda: watch.seen and watch.seen[-1][0] - watch.seen[0][0] > 6, what="six seconds of breath")  # pylint: disable=cell-var-from-loop
                        self.assertLess(longest_rest(watch), still)
                    else:
                        desktop.wait_for(lambda: longest_rest(watch) > still, what="stillness between two plays")  # pylint: disable=cell-var-from-loop
                finally:
                    watch.stop()
            self.choose_by_keys("alt+x", "Character Breathes", "b")

    def test_stop_from_the_menu_silences_the_voice(self):
        self.silences("stop")
        self.settle()

    def comes_back(self):
        desktop.wait_for(lambda: self.desk.windows("^Voxmate character$"), what="the character coming back")

    def test_hiding_the_character_silences_it_and_the_button_brings_it_back(self):
        self.silences("hide")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate character$"), what="the character going")
        self.assertFalse(self.desk.windows("^Voxmate balloon$"))
        self.press(CHARACTER_BUTTON)
        self.comes_back()
        self.settle()
        begin = self.now()
        self.press("Speak the textbox text")
        self.wait_for_sound(begin, "sound after the character has come back")

    def test_the_right_button_shows_the_cast_and_each_of_it_takes_the_stage(self):
        for name in ("Tock", "Gamp", "Nalu"):
            with self.subTest(name):
                self.desk.click(self.desk.find(CHARACTER_BUTTON), button=3)
                time.sleep(0.3)
                # The characters are listed by name; the present one is checked.
                for _ in range(("Gamp", "Nalu", "Tock").index(name) + 1):
                    self.desk.key("Down")
                self.desk.key("Return")
                self.desk.find(name.upper())
                self.saved("LastCharacter", f'"{name}"')
                self.settle()
                self.assertEqual(len(self.desk.windows("^Voxmate character$")), 1)
                self.speak("Hello")
                self.settle()
                self.desk.key("ctrl+a", "Delete")
        self.assertIsNone(self.program.poll())

    def test_a_character_that_is_dragged_takes_its_balloon_along(self):
        self.speak()
        balloon = desktop.wait_for(lambda: self.desk.windows("^Voxmate balloon$"), what="the balloon")[0]
        _, (x, y, width, height) = self.character_window()
        bx, by, _, _ = self.desk.window_rect(balloon)
        self.desk.run("xdotool", "mousemove", str(x + width // 2), str(y + height // 2), "mousedown", "1")
        for step in range(1, 31):
            self.desk.run("xdotool", "mousemove", str(x + width // 2 - 10 * step), str(y + height // 2 - 5 * step))
            if step == 20:
                time.sleep(0.05)
                nx, ny = self.character_window()[1][:2]
                moved = self.desk.window_rect(balloon)[:2]
                self.assertEqual((moved[0] - bx, moved[1] - by), (nx - x, ny - y))
        self.desk.run("xdotool", "mouseup", "1")
        _, (x2, y2, _, _) = self.character_window()
        self.assertEqual((x2 - x, y2 - y), (-300, -150))


class Sizes(ProgramCase):
    def test_small_normal_and_big_are_half_once_and_twice_the_size_and_take_the_mouse_where_they_are_drawn(self):
        sizes = {}
        folder = os.path.join(self.desk.home, "disc", "")
        write_disc(folder)
        for size, scale in ((0, 1), (1, 1), (2, 1), (1, 2)):
            self.desk.install_defaults(**CALM, CharacterSize=size, CharacterPath=folder,
                                       LastCharacter="Disc")
            self.start_and_settle(QT_SCALE_FACTOR=str(scale))
            window, (x, y, width, height) = self.character_window()
            sizes[size, scale] = (width, height)
            # It takes the mouse exactly where something is drawn. Tested along its vertical middle line, at the first
            # drawn pixel and at those above it.
            picture = self.desk.screenshot(box=(x, y, x + width, y + height))
            drawn = next(row for row in range(height) if picture.getpixel((width // 2, row)) == DISC)
            self.assertAlmostEqual(drawn, height * 10 / 120, delta=1)
            seen = os.path.join(self.desk.home, f"events{size}{scale}")
            with open(seen, "wb") as out:
                below = self.desk.spawn("xev", "-geometry", f"{width + 60}x{height + 20}+{x - 30}+{y - 40}", "-event",
                                        "button", stdout=out)
            try:
                desktop.wait_for(lambda: self.desk.windows("^Event Tester$"), what="the window beneath")
                time.sleep(0.5)
                for row, beneath in ((drawn - 2, 1), (drawn + 2, 1), (drawn - 1, 2)):
                    self.desk.click_at(x + width // 2, y + row, button=2)
                    time.sleep(0.4)
                    with open(seen, encoding="utf-8", errors="replace") as file:
                        presses = file.read().count("ButtonPress")
                    self.assertEqual(presses, beneath, f"size {size} at {scale}x, row {row - drawn} from the first drawn one")
            finally:
                below.terminate()
                below.wait()
            self.desk.end(self.program)
        self.assertEqual(sizes, {(0, 1): (60, 60), (1, 1): (120, 120), (2, 1): (240, 240), (1, 2): (240, 240)})


if __name__ == "__main__":
    unittest.main()
