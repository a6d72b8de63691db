"""How every window looks on a screen with twice the pixel density, in a light and in a dark theme. A picture of each is
saved in build/tour-2x and build/tour-dark-2x."""

import unittest

import program
import test_looks


class Large(test_looks.Looks):
    environment = {"QT_SCALE_FACTOR": "2"}

    @classmethod
    def setUpClass(cls):
        cls.desk = program.the_desk(screen=(2048, 1200))
        cls.desk.scale = 2


class LargeAndDark(Large):
    pictures = "tour-dark-2x"
    dark = True

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.environment = {**Large.environment, **test_looks.dark_theme(cls.desk)}

    def test_every_window_is_whole_and_readable_at_twice_the_size_in_a_dark_theme(self):
        self.look_at_all()


class LargeAndLight(Large):
    pictures = "tour-2x"

    def test_every_window_is_whole_and_readable_at_twice_the_size(self):
        self.look_at_all()


if __name__ == "__main__":
    unittest.main()
