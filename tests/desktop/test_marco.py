"""The character under marco."""

import unittest

from managers import Companions as Cases
from program import the_desk


class Companions(Cases):
    @classmethod
    def setUpClass(cls):
        the_desk(manager=("marco", "--no-composite", "--sm-disable"))


del Cases

if __name__ == "__main__":
    unittest.main()
