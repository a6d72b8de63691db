"""How every window looks on a screen of twice as many pixels to the inch, in a light theme. A picture of each stays in
build/tour-2x."""

import unittest

import program
import test_looks


class LargeAndLight(test_looks.Looks):
    pictures = "tour-2x"
    environment = {"QT_SCALE_FACTOR": "2"}

    @classmethod
    def setUpClass(cls):
        program.the_desk(screen=(2048, 1200)).scale = 2

    def test_every_window_is_whole_and_readable_at_twice_the_size(self):
        self.look_at_all()


if __name__ == "__main__":
    unittest.main()
