"""Unforeseen errors: memory runs out in the middle of the work."""

import datetime
import os
import resource
import shutil
import subprocess
import unittest

import desk as desktop
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

    def start_unwritable(self, **environment):
        """Starts the program, which cannot write into the folder of its settings."""
        folder = os.path.dirname(self.desk.settings_file)
        steps = f'mount --bind "{folder}" "{folder}" && mount -o remount,bind,ro "{folder}" && exec "$0"'
        self.program = self.desk.start(without=("unshare", "-m", "sh", "-c", steps), **environment)

    @unittest.skipUnless(subprocess.run(["unshare", "-m", "true"], stderr=subprocess.DEVNULL, check=False).returncode == 0,
                         "the system lets no program have its own view of the files")
    def test_a_home_that_cannot_be_written_is_told_of_once_when_something_is_set(self):
        self.start_unwritable()
        self.desk.find("Text to read")
        self.settle()
        self.assertEqual(self.boxes(), [])
        whisper = self.desk.find("Whisper", role="check box")
        self.desk.click(whisper)
        self.assertEqual(self.answer_box("Voxmate - File Error"),
                         f"Settings cannot be saved in the following file:\n{self.desk.settings_file}\n"
                         "What you change holds until Voxmate ends.")
        self.assertTrue(whisper.getState().contains(self.desk.accessible().STATE_CHECKED))
        self.desk.click(whisper)
        desktop.wait_for(lambda: not whisper.getState().contains(self.desk.accessible().STATE_CHECKED), what="the check going")
        self.settle()
        self.assertEqual(self.boxes(), [])

    @unittest.skipUnless(subprocess.run(["unshare", "-m", "true"], stderr=subprocess.DEVNULL, check=False).returncode == 0,
                         "the system lets no program have its own view of the files")
    def test_a_start_on_the_systems_settings_loses_nothing_and_says_nothing(self):
        self.desk.install_defaults(ShowTipAtStartUp=1)
        system = os.path.join(self.desk.home, "system", "voxmate")
        os.makedirs(system)
        shutil.move(self.desk.settings_file, os.path.join(system, "registry.reg"))
        self.start_unwritable(XDG_CONFIG_DIRS=os.path.dirname(system))
        self.desk.find("Tip of the Day")
        self.settle()
        self.assertEqual(self.boxes(), [])
        self.desk.key("Return")
        self.desk.gone("Tip of the Day")
        self.assertEqual(self.boxes(), [])


if __name__ == "__main__":
    unittest.main()
