"""The character under KWin, where it is installed."""

import shutil
import unittest

from managers import Companions as Cases
from program import the_desk

COMMAND = ("kwin_x11", "--replace")


@unittest.skipUnless(shutil.which(COMMAND[0]), f"{COMMAND[0]} is not installed")
class Companions(Cases):
    @classmethod
    def setUpClass(cls):
        the_desk(manager=COMMAND)


del Cases

if __name__ == "__main__":
    unittest.main()
