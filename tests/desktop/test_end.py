"""Others than the user ask the program to end: signals and the end of the session. It must end at once, with all
settings in its file, even where closing its window would put it into the tray."""

import os
import signal
import subprocess
import tempfile
import unittest

import desk as desktop
from test_tray import TrayCase

HERE = os.path.dirname(os.path.abspath(__file__))


class SilentDisk:
    """A slow disk for a program started with its library: from hold() on, saves wait until answer()."""

    def __init__(self, case):
        folder = tempfile.TemporaryDirectory(prefix="voxmate-end-test-", dir="/tmp")
        case.addCleanup(folder.cleanup)
        self.stand_in, self.asked, self.answered = (os.path.join(folder.name, name) for name in ("disk.so", "asked", "answered"))
        # Replaces the C library's fdatasync.
        source = ('#include <fcntl.h>\n#include <unistd.h>\nextern "C" int fdatasync(int) { creat("%s", 0600); '
                  'while (access("%s", F_OK) != 0) usleep(1000); return 0; }\n' % (self.asked, self.answered))
        subprocess.run(["c++", "-shared", "-fPIC", "-x", "c++", "-o", self.stand_in, "-"], input=source.encode(), check=True)

    def hold(self):
        for path in (self.asked, self.answered):
            if os.path.exists(path):
                os.remove(path)

    def answer(self):
        open(self.answered, "wb").close()

    def wait_for_a_save(self):
        desktop.wait_for(lambda: os.path.exists(self.asked), what="a save that waits for the disk")


class EndCase(TrayCase):
    defaults = {**TrayCase.defaults, "CloseToTray": 1}

    def set_speed(self):
        """Moves the speed bar and returns the value that the settings file must then have."""
        self.desk.click(self.desk.find("Speed", role="scroll bar"))
        self.desk.key("Home", "Right", "Right", "Right")
        self.desk.find("= 43", role="label")
        return "dword:0000002b"

    def start_and_hang(self):
        """Starts the program and moves the speed bar while the disk does not answer; returns the disk, and the value
        that is then to be saved."""
        disk = SilentDisk(self)
        disk.answer()
        self.start_and_settle(LD_PRELOAD=disk.stand_in)
        disk.hold()
        speed = self.set_speed()
        disk.wait_for_a_save()
        return disk, speed

    def ends_with(self, speed):
        self.has_ended()
        self.assertEqual(self.desk.read_settings()["Speed"], speed)


class Signals(EndCase):

    def test_each_signal_that_asks_for_the_end_ends_the_program_with_all_saved(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(signal=number.name):
                self.desk.install_defaults(**self.defaults)
                self.start_and_settle()
                speed = self.set_speed()
                self.program.send_signal(number)
                self.ends_with(speed)

    def test_two_signals_at_once_end_it_as_one_does(self):
        self.start_and_settle()
        speed = self.set_speed()
        for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGTERM):
            self.program.send_signal(number)
        self.ends_with(speed)

    def test_it_ends_with_a_box_and_a_menu_open(self):
        self.start_and_settle(PATH="/nonexistent")  # no system information tool
        self.choose_by_keys("alt+h", "About Voxmate", "a")
        self.press("System Info...")
        self.desk.find("System Information Is Unavailable At This Time")
        self.program.terminate()
        self.has_ended()
        self.start_and_settle()
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("alt+f")
        self.desk.find("Put in System Tray")
        self.program.terminate()
        self.has_ended()

    def test_it_ends_while_its_splash_is_up(self):
        self.start()
        self.desk.find("A desktop assistant")
        self.program.terminate()
        self.has_ended()


class Crashes(EndCase):
    """A fault at the program's end or before it must fail the test in which it happens."""

    def test_a_program_that_has_ended_by_itself_is_a_failure(self):
        self.start_and_settle()
        self.program.send_signal(signal.SIGSEGV)
        self.program.wait(desktop.PATIENCE)
        with self.assertRaisesRegex(AssertionError, "^the program has ended by itself, with -11:"):
            self.desk.end(self.program)

    def test_a_program_that_crashes_while_it_is_ended_is_a_failure(self):
        self.start_and_settle()
        self.program.send_signal(signal.SIGABRT)
        with self.assertRaisesRegex(AssertionError, "^the program ended with -6 and not with 0:"):
            self.has_ended()

    def test_a_fault_that_the_log_tells_of_is_a_failure(self):
        for fault in ("free(): invalid pointer", "terminate called after throwing an instance of 'int'"):
            with self.subTest(fault):
                self.start_and_settle()
                with open(f"/proc/{self.program.pid}/fd/2", "a", encoding="ascii") as log:
                    log.write(fault + "\n")
                with self.assertRaisesRegex(AssertionError, "^the program's log tells of a fault:"):
                    self.desk.end(self.program)


class Session(EndCase):
    """A session with a manager and a tray, as on a desktop."""

    def setUp(self):
        super().setUp()
        self.tray = self.desk.tray("right")
        self.addCleanup(self.tray.wait, desktop.PATIENCE)
        self.addCleanup(self.tray.terminate)
        self.manager = self.desk.spawn("/usr/bin/python3", os.path.join(HERE, "session_manager.py"), stdin=subprocess.PIPE,
                                       stdout=subprocess.PIPE)
        self.addCleanup(self.manager.stdout.close)
        self.addCleanup(self.manager.wait, desktop.PATIENCE)
        self.addCleanup(self.manager.stdin.close)
        self.address = self.manager.stdout.readline().decode().strip()
        self.assertIn("unix", self.address)

    def tell(self, word):
        self.manager.stdin.write(word.encode() + b"\n")
        self.manager.stdin.flush()

    def told(self):
        return self.manager.stdout.readline().decode().strip()

    def start_in_session(self):
        self.start_and_settle(SESSION_MANAGER=self.address)
        self.assertEqual(self.told(), "saved")  # as every program saves when it joins a session

    def is_saved(self):
        self.tell("save")
        self.assertEqual(self.told(), "saved")

    def test_it_ends_with_the_session_with_all_saved(self):
        self.start_in_session()
        speed = self.set_speed()
        self.is_saved()
        self.assertEqual(self.desk.read_settings()["Speed"], speed)
        self.tell("die")
        self.ends_with(speed)
        self.assertEqual(self.told(), "gone")

    def test_it_ends_with_the_session_while_it_speaks_and_a_box_is_up(self):
        self.start_in_session()
        self.type_text("one two three four five six seven eight nine ten eleven twelve thirteen fourteen")
        self.press("Speak the textbox text")
        self.desk.find("Busy...")
        self.choose_by_keys("alt+h", "About Voxmate", "h")
        self.box_text("Voxmate - Help")
        self.is_saved()
        self.tell("die")
        self.has_ended()

    def test_it_ends_with_the_session_when_it_is_in_the_tray(self):
        self.start_in_session()
        self.hide()
        self.is_saved()
        self.tell("die")
        self.has_ended()

    def test_it_goes_on_when_the_user_stays(self):
        self.start_in_session()
        self.is_saved()
        self.tell("cancel")
        self.set_speed()
        self.assertTrue(self.desk.windows("^Voxmate$"))
        self.is_saved()
        self.tell("die")
        self.has_ended()


class Disk(EndCase):
    """A disk that no longer answers, like a network folder whose server is gone."""

    def test_a_signal_ends_it_although_its_settings_cannot_be_saved(self):
        self.start_and_hang()
        self.program.terminate()
        self.has_ended()

    def test_exit_ends_it_although_its_settings_cannot_be_saved(self):
        self.start_and_hang()
        self.choose_by_keys("alt+f", "Exit", "e")
        self.has_ended()


if __name__ == "__main__":
    unittest.main()
