"""The program in a Wayland session under mutter."""

import unittest

from wayland import Sessions as Cases


class Mutter(Cases):
    compositor = "mutter"


del Cases

if __name__ == "__main__":
    unittest.main()
