"""A neural voice reads for half an hour, or for as many minutes as VOXMATE_TEST_MINUTES says: what it takes of the memory
must not grow, and it must not fall silent. Run by tests/voices/run test_long."""

import os
import time
import unittest

from test_neural import MODEL, NeuralCase, TEXT, WORDS

MINUTES = float(os.environ.get("VOXMATE_TEST_MINUTES", "30"))


@unittest.skipUnless(MODEL, "no neural voice is given")
class Long(NeuralCase):
    def memory(self):
        """What the program takes, in megabytes."""
        with open(f"/proc/{self.program.pid}/status", encoding="ascii") as status:
            return next(int(line.split()[1]) for line in status if line.startswith("VmRSS:")) / 1024

    def test_a_book_is_read_without_growth(self):
        path = os.path.join(self.desk.home, "book.txt")
        with open(path, "w", encoding="ascii") as file:
            for chapter in range(int((MINUTES + 2) * 156 / WORDS)):
                file.write(f"Chapter {chapter + 1}. {TEXT}\n\n")
        self.prepare()
        begin = self.now()
        self.desk.ended(self.desk.start(arguments=[path]))
        self.wait_for_sound(begin)
        start = time.monotonic()
        taken = []
        while time.monotonic() - start < MINUTES * 60:
            begin = self.now()
            time.sleep(10)
            taken.append(self.memory())
            self.assertGreater(self.sound_since(begin), 5, "it fell silent")
        first, last = taken[len(taken) // 5], taken[-1]
        print(f"{MINUTES:.0f} minutes: {first:.1f} MB after the first fifth, {last:.1f} MB at the end, most {max(taken):.1f} MB")
        self.assertLess(last, first + 10)
        self.press("Stop Everything !!!")
        self.settle()


if __name__ == "__main__":
    unittest.main()
