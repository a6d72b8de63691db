"""The main window and the character by mouse and keyboard."""

import os
import time
import unittest

import desk as desktop
from program import CALM, ProgramCase


class WindowCase(ProgramCase):
    defaults = CALM

    def setUp(self):
        super().setUp()
        self.start_and_settle()
        self.desk.click(self.desk.find("Text to read"))


class Window(WindowCase):
    shared = True

    def focused(self):
        pyatspi = self.desk.accessible()
        names = [name for name, _, node in self.desk.widgets() if node.getState().contains(pyatspi.STATE_FOCUSED)]
        return names[0] if names else None

    def test_the_window_is_narrow_and_never_smaller_than_what_it_shows(self):
        _, _, width, height = self.desk.window_rect(self.main_window())
        self.assertLess(width, 515)
        self.desk.run("xdotool", "windowsize", self.main_window(), "100", "100")
        time.sleep(0.5)
        self.assertEqual(self.desk.window_rect(self.main_window())[2:], (width, height))

    def test_the_keyboard_goes_round_all_controls(self):
        # A drop-down list is named by its chosen entry; its label names it to a screen reader.
        expected = ["Speak the textbox text", "Stop Everything !!!", "eSpeak English (Great Britain)", "Speed", "Pitch",
                    "Whisper", "What's today's date?", "What time is it?", "Speak Clipboard Text",
                    "Do you know who am I ?", "Open and Read a Text Document", "Open and Read a Word Document", "User Options",
                    "Choose Character by Right Click. Show Character on Left Click", "Text to read"]
        seen = []
        for _ in expected:
            self.desk.key("Tab")
            time.sleep(0.15)
            seen.append(self.focused())
        self.assertEqual(seen, expected)

    def test_the_character_is_dragged_and_does_not_take_the_drag_for_a_click(self):
        _, (x, y, width, height) = self.character_window()
        self.desk.drag(*((x + width // 2 - 20 * step, y + height // 2 - 10 * step) for step in range(21)))
        time.sleep(0.5)
        _, (new_x, new_y, _, _) = self.character_window()
        self.assertEqual((new_x - x, new_y - y), (-400, -200))
        self.assertFalse(self.desk.windows("^Voxmate balloon$"))

    def test_a_click_beside_the_drawing_goes_to_what_lies_beneath(self):
        _, (x, y, width, height) = self.character_window()
        seen = os.path.join(self.desk.home, "events")
        with open(seen, "wb") as out:
            below = self.desk.spawn("xev", "-geometry", f"{width + 60}x{height + 20}+{x - 30}+{y - 40}", "-event", "button",
                                    stdout=out)

        def presses():
            with open(seen, encoding="utf-8", errors="replace") as file:
                return file.read().count("ButtonPress")

        try:
            desktop.wait_for(lambda: self.desk.windows("^Event Tester$"), what="the window beneath")
            time.sleep(0.5)
            self.desk.click_at(x + width // 2, y + height // 2, button=2)
            time.sleep(0.5)
            self.assertEqual(presses(), 0, "the character lets a click on its drawing through")
            self.desk.click_at(x + 3, y + 3, button=2)
            desktop.wait_for(lambda: presses() == 1, what="the click beneath")
        finally:
            below.terminate()


class Voice(WindowCase):
    def test_each_control_of_the_voice_is_reached_by_its_key_and_saved_at_once(self):
        self.desk.key("alt+p")
        self.desk.key(*["Right"] * 5)
        self.desk.find("= 195")
        self.saved("Pitch", "dword:000000c3")
        self.desk.key("Home")
        self.desk.find("= 40")
        self.saved("Pitch", "dword:00000028")
        self.desk.key("alt+d")
        self.desk.key("End")
        self.desk.find("= 400")
        self.saved("Speed", "dword:00000190")
        self.desk.key("alt+w")
        self.saved("Whisper", "dword:00000001")
        self.desk.key("alt+t")
        self.desk.key("End")
        desktop.wait_for(lambda: "Great Britain)" not in self.desk.read_settings()["LastSpeechEngine"], what="another voice")

    def test_dragging_a_bar_with_the_mouse_saves_where_it_ends(self):
        x, y, width, height = self.desk.rect(self.desk.find("Pitch", role="scroll bar"))
        handle = x + width * 44 // 100
        self.desk.drag(*((handle + 6 * step, y + height // 2) for step in range(11)))
        time.sleep(0.5)
        label = next(text for text in self.desk.texts() if text.startswith("= ") and text != "= 156")
        self.assertGreater(int(label[2:]), 200)
        self.saved("Pitch", f"dword:{int(label[2:]):08x}")


class CloseToTray(ProgramCase):
    defaults = {**CALM, "CloseToTray": 1}

    def test_without_a_tray_closing_iconifies_and_exit_still_ends_the_program(self):
        self.start_and_settle()
        window = self.desk.windows("^Voxmate$")[-1]
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("alt+F4")
        self.iconified(window)
        self.assertIsNone(self.program.poll())
        self.desk.run("xdotool", "windowactivate", "--sync", window)
        # Without a click, which may come while the window manager still moves the focus.
        self.desk.find("Text to read")
        self.desk.key("alt+f")
        self.desk.find("Exit", role="menu item")
        self.desk.key("e")
        self.has_ended()


if __name__ == "__main__":
    unittest.main()
