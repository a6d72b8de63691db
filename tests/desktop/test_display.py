"""A session without a manager, at whose end the display goes. In a file of its own, because each file has one desktop, whose
display is gone afterwards."""

import unittest

from test_end import EndCase


class Display(EndCase):

    def test_it_ends_with_the_display_with_all_saved(self):
        self.start_and_settle()
        before = self.desk.read_settings()["Speed"]
        speed = self.set_speed()
        self.assertNotEqual(before, speed)
        self.desk.children[0].terminate()
        self.ends_with(speed)


if __name__ == "__main__":
    unittest.main()
