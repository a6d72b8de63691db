"""The character under xfwm4."""

import unittest

from managers import Companions as Cases
from program import the_desk


class Companions(Cases):
    @classmethod
    def setUpClass(cls):
        the_desk(manager=("xfwm4", "--compositor=off"))


del Cases

if __name__ == "__main__":
    unittest.main()
