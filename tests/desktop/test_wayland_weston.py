"""The program in a Wayland session under weston."""

import unittest

from wayland import Sessions as Cases


class Weston(Cases):
    compositor = "weston"


del Cases

if __name__ == "__main__":
    unittest.main()
