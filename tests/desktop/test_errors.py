"""Unforeseen errors: memory runs out in the middle of the work."""

import datetime
import os
import resource
import unittest

from test_reading import wait_and_type
from test_reminders import ReminderCase, record

FUTURE = datetime.datetime(2099, 3, 7, 9, 5)
TEXT_SIZE = 300 * 1024 * 1024  # bytes of a text too large for the memory left
ROOM = 100 * 1024 * 1024       # bytes the program may still allocate


class Errors(ReminderCase):
    def leave_little_memory(self):
        """Limits the program to ROOM more bytes of address space."""
        with open(f"/proc/{self.program.pid}/statm", encoding="ascii") as file:
            taken = int(file.read().split()[0]) * os.sysconf("SC_PAGE_SIZE")
        resource.prlimit(self.program.pid, resource.RLIMIT_AS, (taken + ROOM, taken + ROOM))

    def test_memory_that_runs_out_while_a_text_is_read_ends_in_the_report_with_the_reminders_safe(self):
        self.write(record("Tea", FUTURE, "Green"))
        self.start_and_settle()
        path = os.path.join(self.desk.home, "long.txt")
        with open(path, "wb") as file:
            file.write(b"All work and no play. " * (TEXT_SIZE // 22))
        self.addCleanup(os.remove, path)
        self.leave_little_memory()
        self.press("Open and Read a Text Document")
        wait_and_type(self.desk, "Open Text File to Read...", path)
        text = self.box_text("Voxmate - Unhandled Error")
        self.assertIn("\nError No. - 7\nError Description - Out of memory\nFunction/Module ID - 4\n", text)
        self.press("OK")
        self.has_ended()
        self.assertEqual(self.slots(), [record("Tea", FUTURE, "Green")])


if __name__ == "__main__":
    unittest.main()
