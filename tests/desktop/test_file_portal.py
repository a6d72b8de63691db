"""The desktop's own dialog for files, which stands in a process of its own and answers over the session's bus."""

import json
import os
import select
import subprocess
import tempfile
import unittest

import desk as desktop
from program import CALM, IDLE, ProgramCase

OPENER = "Open and Read a Text Document"
TITLE = "Open Text File to Read..."
TEXT = "Nine green bottles stood on the wall."


class Portal(ProgramCase):
    defaults = {**CALM, "EnableSoundEffects": 0}  # the character hums while the dialog is up

    def setUp(self):
        super().setUp()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = os.path.join(folder.name, "bottles & walls é.txt")
        with open(self.path, "w", encoding="utf-8") as file:
            file.write(TEXT)

    def serve(self, *options):
        """Starts the portal, and the program in a desktop's session."""
        self.portal = self.desk.spawn("/usr/bin/python3", os.path.join(os.path.dirname(__file__), "file_portal.py"), *options,
                                      stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        for stream in (self.portal.stdin, self.portal.stdout):
            self.addCleanup(stream.close)
        self.addCleanup(self.portal.wait, desktop.PATIENCE)
        self.addCleanup(self.portal.terminate)
        self.assertEqual(self.told(), {"ready": True})
        self.start_and_settle(XDG_CURRENT_DESKTOP="X-Test")

    def told(self):
        """The next thing that the portal tells."""
        lines = select.select([self.portal.stdout], [], [], desktop.PATIENCE)[0]
        self.assertTrue(lines, "the portal tells nothing")
        return json.loads(self.portal.stdout.readline())

    def answer(self, line):
        self.portal.stdin.write(line.encode() + b"\n")
        self.portal.stdin.flush()

    def blocked(self):
        """Whether a click into the text box leaves the keyboard where it is: nothing that is typed arrives."""
        self.desk.click(self.desk.find("Text to read"))
        self.desk.type("x")
        return self.text() == ""

    def text(self):
        return self.desk.find("Text to read").queryText().getText(0, -1)

    def is_usable(self):
        self.type_text("free")
        desktop.wait_for(lambda: self.text() == "free", what="the window taking the keyboard")

    def test_a_file_chosen_there_is_read(self):
        self.serve()
        self.listen()
        begin = self.now()
        self.press(OPENER)
        question = self.told()
        self.assertEqual((question["title"], question["directory"]), (TITLE, False))
        self.assertEqual(question["filters"], [["Text Files", [[0, "*.txt"]]]])
        self.assertIn(str(int(question["over"].removeprefix("x11:"), 16)), self.desk.windows("^Voxmate$"))
        self.assertEqual(self.desk.windows(f"^{TITLE}$"), [], "the toolkit's dialog came up, too")
        self.assertTrue(self.blocked())
        self.answer(self.path)
        self.hear(begin, TEXT)
        self.is_usable()
        # The next dialog begins where this one was left.
        self.press(OPENER)
        self.assertEqual(self.told()["folder"], os.path.dirname(self.path))
        self.answer("cancel")
        self.is_usable()

    def test_a_portal_that_names_its_question_itself_is_understood(self):
        self.serve("--old")
        self.listen()
        begin = self.now()
        self.press(OPENER)
        self.told()
        self.answer(self.path)
        self.hear(begin, TEXT)

    def test_the_character_takes_clicks_beside_it(self):
        self.serve()
        self.press(OPENER)
        self.told()
        self.open_character_menu()
        self.desk.key("Escape")
        self.answer("cancel")
        self.is_usable()

    def test_escape_silences_what_is_read_meanwhile(self):
        self.serve()
        self.type_text("One two three four five six seven eight nine ten eleven twelve. " * 9)
        self.press("Speak the textbox text")
        desktop.wait_for(lambda: IDLE not in self.desk.texts(), what="the speech")
        self.press(OPENER)
        self.told()
        self.desk.run("xdotool", "windowactivate", self.desk.windows("^Voxmate$")[-1])
        self.desk.key("Escape")
        desktop.wait_for(lambda: IDLE in self.desk.texts(), what="the silence")
        self.answer("cancel")
        self.is_usable()

    def test_a_portal_that_goes_away_meanwhile_cancels(self):
        self.serve()
        self.press(OPENER)
        self.told()
        self.answer("leave")
        self.is_usable()
        self.assertEqual(self.desk.windows(f"^{TITLE}$"), [])

    def test_the_toolkits_dialog_stands_in_for_a_desktop_that_has_none(self):
        self.serve("--refuse")
        for _ in range(2):
            self.press(OPENER)
            desktop.wait_for(lambda: self.desk.windows(f"^{TITLE}$"), what="the toolkit's dialog")
            self.desk.find(TITLE)
            self.desk.key("Escape")
            desktop.wait_for(lambda: not self.desk.windows(f"^{TITLE}$"), what="its end")
        self.told()
        self.portal.terminate()
        self.assertEqual(self.portal.stdout.readline(), b"", "it was asked again after it had refused")

    def test_a_folder_is_chosen_there(self):
        self.serve()
        self.press("User Options")
        self.desk.find("Browse", role="push button")
        self.press("Browse")
        question = self.told()
        self.assertEqual((question["title"], question["directory"], question["filters"]),
                         ("Select Characters' Location :", True, []))
        self.assertTrue(question["folder"].rstrip("/").endswith("chars"), question["folder"])
        folder = os.path.join(self.desk.home, "cast")
        os.makedirs(folder, exist_ok=True)
        self.answer(folder)
        desktop.wait_for(lambda: folder in self.desk.find("Characters Location").queryText().getText(0, -1),
                         what="the folder in its field")
        self.press("Cancel")


if __name__ == "__main__":
    unittest.main()
