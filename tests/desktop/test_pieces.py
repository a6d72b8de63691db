"""Pieces of text that are read: what is selected in the text box or follows its cursor, and what is selected or copied in
any other program, by keys of the whole desktop."""

import os
import subprocess
import unittest

import desk as desktop
from test_extras import ExtrasCase

TEXT = "The first sentence stays. The second one is read."
SECOND = "The second one is read."
LINE = "Written in another program"


class Pieces(ExtrasCase):
    def setUp(self):
        super().setUp()
        self.start_and_settle()
        self.listen()

    def select_second(self):
        self.type_text(TEXT)
        text = self.desk.find("Text to read").queryText()
        self.desk.key("ctrl+End")
        desktop.wait_for(lambda: text.caretOffset == len(TEXT), what="the cursor at the end")
        self.desk.run("xdotool", "key", "--repeat", str(len(SECOND)), "--delay", "12", "shift+Left")
        desktop.wait_for(lambda: text.getNSelections() == 1 and text.getSelection(0)[0] == TEXT.index(SECOND),
                         what="the selection")

    def test_the_selection_is_read_by_its_key(self):
        self.select_second()
        begin = self.now()
        self.desk.key("ctrl+r")
        self.hear(begin, SECOND)
        self.settle()
        self.assertLess(self.sound_since(begin), self.rendered_length(TEXT) * 0.85)
        self.assertEqual(self.typed(), TEXT)

    def test_the_boxs_own_menu_reads_too(self):
        self.select_second()
        # The accessibility tree does not hold the text box's own menu.
        known = set(self.desk.windows("voxmate", by="--class"))

        def opened():
            desktop.wait_for(lambda: set(self.desk.windows("voxmate", by="--class")) - known, what="the text box's menu")

        begin = self.now()
        self.desk.click(self.desk.find("Text to read"), button=3)
        opened()
        self.desk.key("e")
        self.hear(begin, SECOND)
        self.settle()
        self.desk.key("Left")
        begin = self.now()
        self.desk.key("Menu")
        opened()
        self.desk.key("m")
        self.hear(begin, SECOND)
        self.settle()
        self.assertLess(self.sound_since(begin), self.rendered_length(TEXT) * 0.85)
        self.assertEqual(self.typed(), TEXT)

    def test_nothing_selected_is_told_of(self):
        self.type_text("Nothing of this is selected")
        self.desk.key("ctrl+r")
        self.assertEqual(self.answer_box("Voxmate - Read"), "There is nothing selected in the textbox.")


class Keys(ExtrasCase):
    def setUp(self):
        super().setUp()
        self.start_and_settle()
        self.listen()

    def switch(self, item, key):
        self.choose_by_keys("alt+x", "Pieces of Text", "p", item, key)
        self.desk.gone("Speak the Text")

    def elsewhere(self):
        """A terminal has the keyboard, and in it a line is selected."""
        terminal = self.desk.spawn("xterm", "-T", "elsewhere", "-geometry", "60x10+20+20", "-e",
                                   f"printf '{LINE}'; sleep 1000")
        self.addCleanup(terminal.wait)
        self.addCleanup(terminal.terminate)
        self.window = self.shown("elsewhere")
        self.select_line()

    def select_line(self):
        self.desk.run("xdotool", "windowactivate", self.window)
        self.active(self.window)

        def selected():
            x, y = self.desk.window_rect(self.window)[:2]
            self.desk.run("xdotool", "mousemove", str(x + 40), str(y + 8), "click", "--repeat", "3", "--delay", "60", "1")
            return self.desk.run("xclip", "-o", "-selection", "primary", check=False).decode().strip() == LINE

        desktop.wait_for(selected, step=0.5, what="the selected line")

    def test_the_selection_of_another_program_is_read_by_a_key_that_is_switched_on(self):
        self.elsewhere()
        begin = self.now()
        self.desk.key("ctrl+alt+s")
        self.switch("Read the Selection of Any Program", "a")
        self.settle()
        self.assertIsNone(self.heard_since(begin), "the key was off")
        self.select_line()
        begin = self.now()
        self.desk.key("ctrl+alt+s")
        self.hear(begin, LINE)
        self.active(self.window)
        self.settle()
        # It works in the next run, too, and Caps Lock does not matter.
        self.desk.end(self.program)
        self.start_and_settle()
        self.select_line()
        self.desk.key("Caps_Lock")
        self.addCleanup(self.desk.key, "Caps_Lock")
        begin = self.now()
        self.desk.key("ctrl+alt+s")
        self.hear(begin, LINE)

    def test_the_clipboard_is_read_while_another_program_has_the_keyboard(self):
        self.switch("Read the Clipboard from Any Program", "y")
        self.elsewhere()
        owner = self.desk.spawn("xclip", "-selection", "clipboard", stdin=subprocess.PIPE)
        owner.communicate(b"Copied in another program")
        begin = self.now()
        self.desk.key("ctrl+alt+c")
        self.hear(begin, "Copied in another program")

    def test_a_key_that_another_program_holds_is_told_of(self):
        holder = self.desk.spawn("/usr/bin/python3", os.path.join(os.path.dirname(os.path.abspath(__file__)), "key_holder.py"),
                                 stdout=subprocess.PIPE)
        self.assertEqual(holder.stdout.readline().strip(), b"held")
        self.choose_by_keys("alt+x", "Pieces of Text", "p", "Read the Selection of Any Program", "a")
        self.assertEqual(self.answer_box("Voxmate - Keys"), "Another program holds the key Ctrl+Alt+S.")
        holder.terminate()
        holder.wait()
        holder.stdout.close()
        self.switch("Read the Selection of Any Program", "a")
        self.elsewhere()
        begin = self.now()
        self.desk.key("ctrl+alt+s")
        self.hear(begin, LINE)


class Portal(Keys):
    """The same by the portal, where the session has one."""

    def portal(self, *options):
        here = os.path.dirname(os.path.abspath(__file__))
        self.stand_in = self.desk.spawn("/usr/bin/python3", os.path.join(here, "portal.py"), *options,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.addCleanup(self.stand_in.stdout.close)
        self.addCleanup(self.stand_in.stdin.close)
        self.addCleanup(self.stand_in.wait)
        self.addCleanup(self.stand_in.terminate)
        self.asked("ready")

    def asked(self, line):
        self.assertEqual(self.stand_in.stdout.readline().decode().strip(), line)

    def test_the_selection_of_another_program_is_read_by_a_key_that_is_switched_on(self):
        self.portal()
        self.switch("Read the Selection of Any Program", "a")
        self.asked("bind read-selection CTRL+ALT+s Read the selected text aloud")
        self.elsewhere()
        begin = self.now()
        self.stand_in.stdin.write(b"read-selection\n")
        self.stand_in.stdin.flush()
        self.hear(begin, LINE)
        self.settle()
        self.desk.key("ctrl+alt+s")
        self.choose_by_keys("alt+x", "Pieces of Text", "p", "Read the Selection of Any Program (Meta+F7)", "a")
        self.asked("close")

    def test_a_key_that_another_program_holds_is_told_of(self):
        self.portal("--refuse")
        self.choose_by_keys("alt+x", "Pieces of Text", "p", "Read the Selection of Any Program", "a")
        self.assertEqual(self.answer_box("Voxmate - Keys"), "Another program holds the key Ctrl+Alt+S.")

    def test_the_clipboard_is_read_while_another_program_has_the_keyboard(self):
        self.portal()
        self.switch("Read the Clipboard from Any Program", "y")
        self.asked("bind read-clipboard CTRL+ALT+c Read the clipboard aloud")


if __name__ == "__main__":
    unittest.main()
