"""What a user sees of an installed Voxmate, in a home folder of his own: run as that user, one class at a time, by
`inside` and by tests/desktop/test_install.py. VOXMATE names the installed program."""

import os
import sys
import tempfile
import unittest

ROOT = os.path.abspath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
sys.path.insert(0, os.path.join(ROOT, "tests", "desktop"))

import desk as desktop  # pylint: disable=wrong-import-position
import sound  # pylint: disable=wrong-import-position
from demo import wait_until_idle  # pylint: disable=wrong-import-position

PROGRAM = os.environ.get("VOXMATE", "/usr/bin/voxmate")
HOME = os.environ["HOME"]
OWN_SETTINGS = os.path.join(HOME, ".config", "voxmate", "registry.reg")
OWN_TIPS = os.path.join(HOME, ".local", "share", "voxmate", "VoxmateTips.txt")
OWN_TIP = "A tip of my own."
SENTENCE = "I was installed a minute ago."


class UserCase(unittest.TestCase):
    """A desktop on which a user without any settings for the desktop itself starts the installed program."""

    def setUp(self):
        self.desk = desktop.Desk(os.path.dirname(PROGRAM), screen=(1280, 800),
                                 home=os.path.join(tempfile.mkdtemp(), "desk"))
        self.addCleanup(self.desk.close)
        self.desk.env["HOME"] = HOME
        for name in ("XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME", "XDG_CONFIG_DIRS"):
            del self.desk.env[name]
        self.recorder = self.desk.recorder()
        self.addCleanup(self.recorder.stop)
        self.seen = set()

    def start(self):
        """Starts the program and waits until its window is there and it has said what it says at a start. Notes every
        message box on the way."""
        self.program = self.desk.start(path=PROGRAM)
        self.desk.find("Text to read")
        self.heard_since(0)
        wait_until_idle(self.desk, desktop.PATIENCE)
        self.boxes()

    def boxes(self):
        self.seen.update(w[0] for w in self.desk.widgets() if w[0].startswith("Voxmate - "))
        return self.seen

    def now(self):
        return int(self.recorder.snapshot()[1][-1])

    def heard_since(self, begin):
        """Waits for sound after that sample, and notes the message boxes meanwhile."""
        def heard():
            self.boxes()
            return sound.loud_span(self.recorder.snapshot()[0][begin:])
        desktop.wait_for(heard, step=0.1, what="sound")

    def reads_a_sentence(self):
        wait_until_idle(self.desk, desktop.PATIENCE)
        begin = self.now()
        self.desk.click(self.desk.find("Text to read"))
        self.desk.type(SENTENCE)
        self.desk.click(self.desk.find("Speak the textbox text"))
        self.heard_since(begin)
        wait_until_idle(self.desk, desktop.PATIENCE)
        seconds = sound.loud_seconds(self.recorder.snapshot()[0][begin:])
        self.assertGreater(seconds, 1, "a sentence of six words")

    def tip_is_shown_and_closed(self):
        self.desk.find("Tip of the Day")
        # Not Escape, which only silences while something is spoken.
        self.desk.key("Return")
        self.desk.gone("Tip of the Day")

    def checked(self, name):
        pyatspi = self.desk.accessible()
        return self.desk.find(name, role="check box").getState().contains(pyatspi.STATE_CHECKED)

    def ends(self):
        self.desk.end(self.program)


class First(UserCase):
    def test_a_new_user_is_greeted_and_read_to_and_sees_no_box(self):
        self.assertFalse(os.path.exists(OWN_SETTINGS))
        self.start()
        self.assertEqual(self.seen, set())
        self.tip_is_shown_and_closed()
        x, y, width, height = self.desk.window_rect(self.desk.windows("^Voxmate character$")[0])
        colours = self.desk.screenshot(box=(x, y, x + width, y + height)).convert("RGB").getcolors(1 << 20)
        self.assertGreater(len(colours), 50, "the character is drawn")
        self.assertIn("NALU", self.desk.texts())
        self.reads_a_sentence()
        # What is the user's own, for later.
        self.assertFalse(self.checked("Whisper"))
        self.desk.click(self.desk.find("Whisper", role="check box"))
        desktop.wait_for(lambda: os.path.exists(OWN_SETTINGS) and '"Whisper"=dword:00000001' in self.own_settings(),
                         what="the setting in the user's file")
        with open(OWN_TIPS, "a", encoding="utf-8") as file:
            file.write(OWN_TIP + "\n")
        self.assertEqual(self.boxes(), set())
        self.ends()

    def own_settings(self):
        with open(OWN_SETTINGS, encoding="utf-8") as file:
            return file.read()


class ReadOnly(UserCase):
    def test_a_home_that_cannot_be_written_is_said_and_the_program_goes_on(self):
        self.assertFalse(os.access(HOME, os.W_OK))
        self.start()
        self.assertEqual(self.seen, {"Voxmate - Reminders"})
        said = [w[0] for w in self.desk.widgets() if w[0].startswith("The reminders could not be read: ")]
        self.assertEqual(len(said), 1, self.desk.texts())
        self.assertIn("Reminders are disabled until the file has been read.", said[0])
        self.desk.click(self.desk.find("OK", role="push button"))
        self.desk.gone("Voxmate - Reminders")
        self.tip_is_shown_and_closed()
        self.reads_a_sentence()
        self.ends()


class Again(UserCase):
    def test_after_an_upgrade_the_users_own_things_are_as_they_were(self):
        self.start()
        self.assertEqual(self.seen, set())
        self.tip_is_shown_and_closed()
        self.assertTrue(self.checked("Whisper"))
        with open(OWN_TIPS, encoding="utf-8") as file:
            self.assertTrue(file.read().endswith(OWN_TIP + "\n"))
        self.reads_a_sentence()
        self.ends()


if __name__ == "__main__":
    unittest.main()
