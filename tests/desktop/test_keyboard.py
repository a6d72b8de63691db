"""The whole program by keyboard alone: Tab reaches every control of every window, Enter and Escape do what they should,
and every menu item has its keys. The mouse is not used."""

import datetime
import os
import shutil
import time
import unittest

import desk as desktop
import test_character
from program import BUILD
from test_reminders import record
from tour import BEGINNING, PRESSED, TourCase

OPTIONS = "Voxmate Options"
PICKER = "Select Characters' Location :"
PAST = datetime.datetime(2004, 3, 7, 9, 5)


def takes_keyboard(control):
    # A page tab claims the focus whenever it is in front; the list of tabs reports the focus correctly.
    return (control.role in PRESSED - {"page tab", "table column header"} | {"page tab list"}
            or (control.role, control.name) == ("panel", "Date"))


class KeyboardCase(TourCase):
    def start_by_keys(self, listen=False):
        # Moves the pointer away, so that it opens no menu item.
        self.desk.run("xdotool", "mousemove", "2", "2")
        self.start_touring(listen)
        self.activate(self.main_window())

    def activate(self, window):
        """Activates the window, as a desktop's own keys do."""
        self.desk.run("xdotool", "windowactivate", "--sync", window)

    def focused(self, window):
        """The control of the window that has the focus."""
        return next((c for c in self.walk(window) if takes_keyboard(c) and self.has(c.node, "FOCUSED")), None)

    def tab(self, window, before):
        """Presses Tab and returns the control that then has the focus."""
        def another():
            control = self.focused(window)
            return control if control and control.key() != before else None
        self.desk.key("Tab")
        return desktop.wait_for(another, what=f"the keyboard leaving {before}")

    def tab_to(self, name, window, role=None):
        """Presses Tab until the control of this name has the focus."""
        control = desktop.wait_for(lambda: self.focused(window), what=f"the keyboard in {window}")
        for _ in range(40):
            if control.name == name and (role is None or control.role == role):
                return
            control = self.tab(window, control.key())
        self.fail(f"the keyboard does not reach {name}")

    def goes_round(self, window):
        """Tab must reach each usable control of the window and come back to where it began."""
        wanted = {c.key() for c in self.walk(window) if takes_keyboard(c) and c.role != "radio button"
                  and self.has(c.node, "FOCUSABLE") and self.has(c.node, "ENABLED")}
        self.assertTrue(wanted)
        first = desktop.wait_for(lambda: self.focused(window), what=f"the keyboard in {window}").key()
        reached = [first]
        while len(reached) == 1 or reached[-1] != first:
            reached.append(self.tab(window, reached[-1]).key())
            self.assertLess(len(reached), 60, "the keyboard does not come round")
        self.assertEqual(wanted - set(reached), set(), window)

    def keys(self, *keys):
        for key in keys:
            self.desk.key(key)
            time.sleep(0.15)

    def open_by(self, title, *keys):
        self.keys(*keys)
        self.opened(title)
        desktop.wait_for(lambda: self.focused(title), what=f"the keyboard in {title}")


class Windows(KeyboardCase):
    def test_a_setting_is_changed_and_a_reminder_added(self):
        self.start_by_keys()
        self.goes_round("Voxmate")
        self.open_by(OPTIONS, "alt+f", "o")
        self.tab_to("Show Balloon", OPTIONS)
        self.keys("space")
        self.tab_to("Apply", OPTIONS)
        self.keys("space")
        self.saved("ShowBalloon", "dword:00000000")
        self.close_by_escape(OPTIONS)
        self.activate(self.main_window())
        editor = "Voxmate Reminders - CURRENTLY ENABLED"
        self.open_by(editor, "alt+r", "s")
        self.goes_round(editor)
        when = datetime.datetime.now().replace(hour=23, minute=59, second=0, microsecond=0) + datetime.timedelta(days=1)
        for name, text in (("Title", "Sleep"), ("Time", "23:59"), ("Description", "Lights out")):
            self.tab_to(name, editor, role="text")
            self.desk.type(text)
        # Back to the calendar: the next day.
        self.desk.key("shift+Tab", "shift+Tab", "shift+Tab")
        self.keys("Right")
        self.tab_to("Add", editor)
        self.keys("space")
        desktop.wait_for(lambda: os.path.exists(self.path) and self.slots() == [record("Sleep", when, "Lights out")], 5,
                         what="the reminder in the file")

    def default_button(self, title):
        """The button of a window that is marked as the one for Enter."""
        state = self.desk.accessible().STATE_IS_DEFAULT
        return next((c.name for c in self.walk(title) if c.role == "push button" and c.node.getState().contains(state)), None)

    def test_tip_about_and_boxes(self):
        self.start_by_keys()
        tip = "Tip of the Day"
        self.open_by(tip, "alt+f", "t")
        self.goes_round(tip)
        for key, name in (("alt+a", "AutoReadTip"), ("alt+s", "ShowTipAtStartUp")):
            for value in ("dword:00000001", "dword:00000000"):
                self.keys(key)
                self.saved(name, value)
        self.keys("alt+r")
        desktop.wait_for(lambda: "Busy..." in self.desk.texts(), what="the busy status")
        self.keys("alt+n")
        # While the tip is read, Escape stops that; only then it closes the window.
        self.keys("Escape")
        self.settle(quiet=0.1)
        self.opened(tip)
        self.close_by_escape(tip)
        # Enter presses the button drawn as the default, at first OK.
        self.open_by(tip, "alt+f", "t")
        self.assertEqual(self.default_button(tip), "OK")
        self.keys("Return")
        self.closed(tip)
        self.open_by(tip, "alt+f", "t")
        self.tab_to("Next Tip", tip)
        desktop.wait_for(lambda: self.default_button(tip) == "Next Tip", what="Next Tip as the default")
        self.tab_to("Auto Read Tip", tip)
        desktop.wait_for(lambda: self.default_button(tip) == "OK", what="OK as the default")
        self.close_by_escape(tip)
        # Enter presses the focused button, or else OK.
        self.open_by(tip, "alt+f", "t")
        self.tab_to("Auto Read Tip", tip)
        self.keys("Return")
        self.closed(tip)

        about = "About Voxmate ®"
        self.open_by(about, "alt+h", "a")
        self.goes_round(about)
        self.keys("alt+s")
        self.assertEqual(self.box_text("Voxmate"), "System Information Is Unavailable At This Time")
        self.keys("Return")
        self.desk.gone("System Information Is Unavailable At This Time")
        self.close_by_escape(about)
        self.open_by(about, "alt+h", "a")
        self.keys("Return")
        self.closed(about)

        for key in ("Return", "Escape", "space"):
            self.open_by("Voxmate - Help", "alt+h", "h")
            self.keys(key)
            self.closed("Voxmate - Help")
        ask = "Voxmate - Reminders"
        for keys, state in ((("Escape",), "ENABLED"), (("alt+n",), "ENABLED"), (("alt+y",), "DISABLED")):
            self.open_by(ask, "alt+r", "r", "d")
            self.goes_round(ask)
            self.keys(*keys)
            self.closed(ask)
            editor = "Voxmate Reminders - CURRENTLY " + state
            self.open_by(editor, "alt+r", "s")
            self.close_by_escape(editor)

    def test_font_box_and_folder_picker(self):
        cast = os.path.join(self.desk.home, "cast")
        shutil.rmtree(cast, ignore_errors=True)
        shutil.copytree(os.path.join(BUILD, "share", "voxmate", "msagent", "chars"), cast)
        self.start_by_keys()
        self.open_by(OPTIONS, "alt+f", "o")
        self.goes_round(OPTIONS)
        self.tab_to("Font", OPTIONS, role="push button")
        self.open_by("Font", "space")
        self.goes_round("Font")
        # The focus begins in the name, with all of it selected.
        for key, face in (("Escape", "DejaVu Serif"), ("Return", "DejaVu Sans Mono")):
            if not self.desk.windows("^Font$"):
                self.open_by("Font", "space")
            self.tab_to("Font", "Font", role="text")
            self.desk.key("ctrl+a")
            self.desk.type(face)
            self.keys(key)
            self.closed("Font")
            self.assertEqual(face in self.desk.texts(), key == "Return")
        self.open_by("Font", "space")
        self.keys("alt+s", "Up", "Return")
        self.closed("Font")

        self.tab_to("Browse", OPTIONS)
        self.open_by(PICKER, "space")
        self.goes_round(PICKER)
        self.close_by_escape(PICKER)
        self.open_by(PICKER, "space")
        self.desk.type(cast)
        self.keys("Return")
        self.closed(PICKER)
        self.assertEqual(self.text_in("Characters Location"), cast + "/")
        # Enter means OK unless another button has the focus.
        self.tab_to("Characters per line", OPTIONS)
        self.keys("Return")
        self.closed(OPTIONS)
        self.saved("CharacterPath", f'"{cast}/"')
        self.saved("BalloonFontName", '"DejaVu Sans Mono"')
        self.saved("BalloonFontSize", "dword:0000000b")

    def test_notice(self):
        self.desk.install_defaults(**{**self.defaults, "ReminderType": 1})
        self.write(record("Call", PAST, "Bank"))
        self.start_by_keys()
        title = "Voxmate Reminder"
        self.opened(title)
        # The window does not take the focus by itself.
        self.assertIsNone(self.focused(title))
        self.activate(self.desk.windows("^" + title + "$")[-1])
        self.goes_round(title)
        self.tab_to("Snooze minutes", title)
        self.desk.key("ctrl+a")
        self.desk.type("15")
        self.keys("Return")
        self.closed(title)
        self.assertEqual(self.done(), ["N"])
        self.desk.end(self.program)
        self.write(record("Call", PAST, "Bank"))
        self.start_by_keys()
        self.opened(title)
        self.activate(self.desk.windows("^" + title + "$")[-1])
        self.tab_to("OK", title)
        self.keys("space")
        self.closed(title)
        desktop.wait_for(lambda: self.done() == ["Y"], what="the mark in the file")

    def test_an_alert_which_takes_no_keys_is_answered_by_a_screen_reader(self):
        self.write(record("Call", PAST, "Bank"))
        self.start_by_keys()
        desktop.wait_for(self.alerts, what="the alert")
        alert = next(c.node for c in self.walk() if c.role == "alert")
        actions = alert.queryAction()
        self.assertEqual([actions.getName(number) for number in range(actions.nActions)], ["Press"])
        actions.doAction(0)
        desktop.wait_for(lambda: self.done() == ["Y"], what="the mark in the file")
        desktop.wait_for(lambda: not self.alerts(), what="the alert going away")


class Menus(KeyboardCase):
    def says_by_keys(self, command, *keys):
        """Chooses what is said, then ends it by the Stop button, which has the focus."""
        phrases = test_character.Character.phrases(self, command)[:1] if command else ["Copied from there"]
        begin = self.now()
        self.keys("alt+s", *keys)
        self.hear(begin, *phrases, seconds=BEGINNING)
        self.keys("space")
        self.settle(quiet=0.1)

    def opens(self, title, *keys):
        self.keys(*keys)
        self.opened(title)
        self.close_by_escape(title)

    def test_every_item_has_its_keys(self):
        opened = self.fake("xdg-open")
        self.start_by_keys(listen=True)
        self.tab_to("Text to read", "Voxmate")
        self.desk.type("Copied from there")
        self.desk.key("ctrl+a", "ctrl+c")
        self.tab_to("Stop Everything !!!", "Voxmate")

        for number, name in enumerate(("Gamp", "Nalu", "Tock")):
            self.keys("alt+f", "c", *["Down"] * number, "Return")
            self.saved("LastCharacter", f'"{name}"')
        self.keys("alt+f", "c", "Down", "Return")
        self.saved("LastCharacter", '"Nalu"')
        self.settle()
        self.opens("Open Text File to Read...", "alt+f", "p")
        self.opens("Tip of the Day", "alt+f", "t")
        self.opens(OPTIONS, "alt+f", "o")
        # Two items have the key W, two have T: such a key moves from one to the other, and Enter chooses. It begins at
        # the first item.
        self.says_by_keys("who", "w", "w", "Return")
        self.says_by_keys("date", "d")
        self.says_by_keys("time", "t", "Return")
        self.says_by_keys(None, "c")
        self.opens("Open Word File to Read...", "alt+s", "w", "Return")
        self.opens("Open Text File to Read...", "alt+s", "t", "t", "Return")
        self.opens("Voxmate Reminders - CURRENTLY ENABLED", "alt+r", "s")
        self.open_by("Voxmate - Reminders", "alt+r", "r", "d")
        self.keys("alt+y")
        self.opens("Voxmate Reminders - CURRENTLY DISABLED", "alt+r", "s")
        self.keys("alt+r", "r", "e")
        self.opens("Voxmate Reminders - CURRENTLY ENABLED", "alt+r", "s")
        self.opens("Voxmate - Help", "alt+h", "h")
        pages = (("c", 0, "characters"), ("c", 1, "installing"), ("c", 2, "making"), ("v", 0, "installing"), ("v", 1, "voices"))
        for number, (key, down, page) in enumerate(pages):
            self.keys("alt+h", key, *["Down"] * down, "Return")
            desktop.wait_for(lambda: len(opened()) > number, what=f"the page {page}")
            self.assertEqual(os.path.basename(opened()[-1]), page + ".html")
        self.opens("About Voxmate ®", "alt+h", "a")
        # Without a tray the window is minimised.
        window = self.main_window()
        self.keys("alt+f", "s")
        self.iconified(window)
        self.activate(window)
        self.opened("Voxmate")
        self.keys("alt+f", "e")
        self.has_ended()


if __name__ == "__main__":
    unittest.main()
