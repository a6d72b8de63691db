"""The character under mutter, where it is installed."""

import shutil
import unittest

from managers import Companions as Cases
from program import the_desk

COMMAND = ("mutter", "--x11", "--sm-disable")


@unittest.skipUnless(shutil.which(COMMAND[0]), f"{COMMAND[0]} is not installed")
class Companions(Cases):
    @classmethod
    def setUpClass(cls):
        the_desk(manager=COMMAND)

    def neighbour(self, *options):
        # A window that nobody has called for opens behind the one in use.
        child, window = super().neighbour(*options)
        self.activate(window)
        return child, window


del Cases

if __name__ == "__main__":
    unittest.main()
