"""A session without a manager, which ends when its display goes away. This is a file of its own, because each file has
one desktop, whose display is gone afterwards."""

import unittest

import desk as desktop
from test_end import EndCase


class Display(EndCase):

    def test_it_ends_with_the_display_with_all_saved(self):
        disk, speed = self.start_and_hang()
        self.assertNotEqual(self.desk.read_settings()["Speed"], speed)
        display = self.desk.children[0]
        display.terminate()
        display.wait(desktop.PATIENCE)
        disk.answer()
        self.ends_with(speed)


if __name__ == "__main__":
    unittest.main()
