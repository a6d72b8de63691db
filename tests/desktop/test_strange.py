"""Faulty character files: what the user is told, and that the program goes on."""

import math
import os
import shutil
import sys
import time
import unittest

import desk as desktop
from disc import DISC, RADIUS, SIDE, disc, write_disc
from program import CALM, ROOT, ProgramCase
from test_character import CHARACTER_BUTTON

sys.path.insert(0, os.path.join(ROOT, "tests", "files"))
from acs_maker import animation, frame, image  # noqa: E402  pylint: disable=wrong-import-position


def picture(colour, side=SIDE, radius=RADIUS):
    """A disc in one colour of the palette."""
    rows = []
    for y in range(side):
        half = round(math.sqrt(max(0, radius ** 2 - (y + 0.5 - side / 2) ** 2)))
        rows.append(bytes(side // 2 - half) + bytes([colour]) * (2 * half) + bytes(side // 2 - half))
    return image(side, rows, packed=side == SIDE)


class Strange(ProgramCase):
    def install(self, name, data, **settings):
        """Makes a character file the one that the program loads; returns its path."""
        folder = os.path.join(self.desk.home, "strange", "")
        shutil.rmtree(folder, ignore_errors=True)
        write_disc(folder, name, data=data)
        values = {**CALM, "CharacterPath": folder, "LastCharacter": name, "ReadMessages": 0, **settings}
        self.desk.install_defaults(**values)
        return folder + name + ".acs"

    def disc_pixels(self):
        """How many of the screen's pixels in the character's window have the disc's colour."""
        windows = self.desk.windows("^Voxmate character$")
        if not windows:
            return 0
        x, y, width, height = self.desk.window_rect(windows[0])
        shot = self.desk.screenshot(box=(x, y, x + width, y + height)).convert("RGB")
        return sum(count for count, colour in shot.getcolors(1 << 24) if colour == DISC)

    def speak(self, text="Hello there"):
        """Has a text spoken and waits until it is heard."""
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("ctrl+a")
        self.desk.type(text)
        begin = self.now()
        self.press("Speak the textbox text")
        desktop.wait_for(lambda: self.sound_since(begin) > 0.2, what="the voice")


class Damaged(Strange):
    def test_damaged_pictures_are_told_of_once_and_the_character_goes_on_with_the_others(self):
        # The neutral pose uses a colour that the palette does not have; another pose is valid.
        path = self.install("Disc", disc(images=[picture(7), picture(1)], animations=[
            animation("RestPose", [frame((0, 0, 0))]), animation("Greet", [frame((1, 0, 0))])]))
        self.start()
        self.assertEqual(self.box_text("Voxmate - File Error"),
                         f'The character file "{path}" cannot be used: image 0 shows colour 7, which does not exist.')
        desktop.wait_for(lambda: self.disc_pixels() > 7000, what="the sound picture")
        self.press("OK")
        self.settle()
        self.listen()
        self.speak()
        self.settle()
        self.assertEqual(self.boxes(), [])
        self.assertIsNone(self.program.poll())

    def test_a_packed_picture_that_is_cut_short_is_told_of(self):
        short = picture(1)
        path = self.install("Disc", disc(images=[{**short, "raw": bytes([0, 0xFF, 0xFF, 0xFF, 0xFF]) + b"\xff" * 900}]))
        self.start()
        text = self.box_text("Voxmate - File Error")
        self.assertTrue(text.startswith(f'The character file "{path}" cannot be used: image 0 is damaged, its '), text)
        self.press("OK")
        self.settle()
        self.assertIsNone(self.program.poll())


class Endless(Strange):
    def test_a_showing_and_a_hiding_without_an_end_lock_nothing(self):
        self.install("Disc", disc(
            images=[picture(1)],
            animations=[animation("RestPose", [frame((0, 0, 0))]),
                        animation("Show", [frame((0, 0, 0)), frame((0, 0, 0), branches=[(0, 100)])]),
                        animation("Hide", [frame((0, 0, 0), branches=[(0, 100)])])],
            states=[("Showing", ["Show"]), ("Hiding", ["Hide"])]))
        self.start()
        self.desk.find("Text to read")
        desktop.wait_for(lambda: self.desk.windows("^Voxmate character$"), what="the character")
        self.listen()
        self.press("Stop Everything !!!")
        self.speak()
        self.settle()
        hide = self.open_character_menu()[4]
        self.desk.click_at(*hide)
        self.press(CHARACTER_BUTTON)
        self.speak()
        self.settle()
        self.assertEqual(len(self.desk.windows("^Voxmate character$")), 1)


class Large(Strange):
    def test_a_character_larger_than_the_screen_is_seen_and_the_program_can_be_used(self):
        # 2000 by 2000 pixels at twice their size, with another picture every 100 ms.
        side = 2000
        pictures = [picture(1, side, 900 + 10 * number) for number in range(4)]
        frames = [frame((number, 0, 0), branches=[(0, 100)] if number == 3 else ()) for number in range(4)]
        self.install("Disc", disc(width=side, height=side, images=pictures,
                                  animations=[animation("RestPose", [frame((0, 0, 0))]), animation("Turn", frames)],
                                  states=[("IdlingLevel1", ["Turn"])]), CharacterSize=2)
        self.start_and_settle()
        desktop.wait_for(lambda: self.disc_pixels() > 500000, what="the character")
        self.listen()
        panel, times = self.status_panel(), []
        for _ in range(200):
            begin = time.monotonic()
            self.assertIsNotNone(panel.name)
            times.append(1000 * (time.monotonic() - begin))
            time.sleep(0.02)
        times.sort()
        print(f"an accessibility call beside the large character: {times[100]:.0f} ms, of 200 calls the slowest "
              f"{times[-1]:.0f} ms", file=sys.stderr)
        self.speak()
        self.settle()


class Names(Strange):
    def test_the_character_is_found_whatever_the_case_of_its_name_in_the_settings(self):
        self.install("Nalu", disc(names=[(0x0409, "Nalu", "", "")]), LastCharacter="nALU")
        folder = os.path.join(self.desk.home, "strange", "")
        write_disc(folder, "Another")
        self.start_and_settle()
        self.desk.find("NALU")
        self.saved("LastCharacter", '"Nalu"')
        self.assertEqual(self.boxes(), [])


if __name__ == "__main__":
    unittest.main()
