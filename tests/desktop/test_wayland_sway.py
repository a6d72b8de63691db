"""The program in a Wayland session under sway."""

import unittest

from wayland import Sessions as Cases


class Sway(Cases):
    compositor = "sway"


del Cases

if __name__ == "__main__":
    unittest.main()
