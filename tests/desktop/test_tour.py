"""A tour of the whole program by real input: every button, menu item, tab and box is opened, has a name for those who
cannot see it, and fits a small screen; a picture of each stays in build/tour. And the first evening of a new user."""

import datetime
import os
import shutil
import time
import unittest

import desk as desktop
from program import BUILD
from test_reminders import ReminderCase, record

PICTURES = os.path.join(BUILD, "tour")
SMALL_SCREEN = (1024, 600 - 32)  # a panel takes some of it
# What a person acts on or reads; each must say what it is. (A cell of a list says what is in it, which may be nothing.)
NAMED = {"push button", "toggle button", "check box", "radio button", "text", "password text", "combo box", "page tab", "page tab list",
         "slider", "scroll bar", "spin button", "list", "table", "tree table", "tree", "column header", "menu", "menu item",
         "frame", "dialog", "alert", "panel", "label", "image", "calendar"}


class Tour(ReminderCase):
    defaults = {"GreetingEnabled": 0, "SpeakTimeInterval": 0, "ReadMessages": 0, "EnableSoundEffects": 0, "AutoReadTip": 0,
                "ShowCharacterAtStart": 0}

    def look(self, title, picture):
        """Looks at the window or box of this title: names, size, picture."""
        time.sleep(0.4)
        window = desktop.wait_for(lambda: self.desk.windows("^" + title.replace("?", "\\?") + "$"), 5, what=title)[-1]
        x, y, width, height = self.desk.window_rect(window)
        self.assertTrue(width <= SMALL_SCREEN[0] and height <= SMALL_SCREEN[1] - 24, f"{title} does not fit: {width} x {height}")
        pyatspi = self.desk.accessible()
        for name, role, node in self.desk.widgets():
            # The bars of a field that scrolls belong to the toolkit.
            inside = role == "scroll bar" and node.parent is not None and node.parent.getRoleName() == "filler"
            labelled = any(relation.getRelationType() == pyatspi.RELATION_LABELLED_BY for relation in node.getRelationSet())
            if role in NAMED and not name and not labelled and not inside:
                parents = []
                while node is not None and len(parents) < 8:
                    parents.append((node.getRoleName(), node.name))
                    node = node.parent
                self.fail(f"nameless in {title}: {parents}")
        self.desk.screenshot(os.path.join(PICTURES, picture + ".png"), box=(max(x - 8, 0), max(y - 28, 0), x + width + 8, y + height + 8))

    def menu(self, *keys):
        self.desk.click(self.desk.find("Text to read"))
        for key in keys:
            self.desk.key(key)
            time.sleep(0.3)

    def close_by_escape(self, title):
        self.desk.key("Escape")
        desktop.wait_for(lambda: not self.desk.windows("^" + title + "$"), 5, what=f"{title} going away")

    def test_every_window_is_reached_has_names_and_fits(self):
        shutil.rmtree(PICTURES, ignore_errors=True)
        self.write(record("Call the bank", datetime.datetime(2099, 3, 7, 9, 5), "About the card"),
                   record("Tea", datetime.datetime(2004, 3, 7, 9, 5), "Green", "Y"))
        self.start_and_settle()
        self.look("Voxmate", "main")
        for number, (key, item) in enumerate((("alt+f", "Exit"), ("alt+s", "Who Am I?"), ("alt+r", "Show All Reminders"), ("alt+h", "About Voxmate"))):
            self.menu(key)
            self.desk.find(item, role="menu item")
            self.desk.screenshot(os.path.join(PICTURES, f"menu{number + 1}.png"), box=self.around_main())
            self.desk.key("Escape", "Escape")
        self.press("User Options")
        for tab in ("Character", "Reading", "Misc", "Reminders"):
            self.desk.click(self.desk.find(tab, role="page tab"))
            self.look("Voxmate Options", "options-" + tab.lower())
        self.close_by_escape("Voxmate Options")
        self.menu("alt+f", "t")
        self.look("Tip of the Day", "tip")
        self.press("Next Tip")
        self.press("OK")
        desktop.wait_for(lambda: not self.desk.windows("^Tip of the Day$"), 5, what="the tip going away")
        self.menu("alt+h", "a")
        self.look("About Voxmate ®", "about")
        self.press("OK")
        self.menu("alt+h", "h")
        self.look("Voxmate - Help", "box-help")
        self.assertEqual(self.box_text("Voxmate - Help"), "Help will be available very soon. Author is preparing the help.")
        self.close_by_escape("Voxmate - Help")
        self.menu("alt+r", "s")
        self.look("Voxmate Reminders - CURRENTLY ENABLED", "editor")
        self.press("Update")
        self.look("Voxmate - Reminders", "box-question")
        self.close_by_escape("Voxmate - Reminders")
        self.press("Close")
        self.look("Voxmate - Reminders", "box-save")
        self.press("No")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate Reminders"), 5, what="the editor going away")
        self.menu("alt+r", "r", "d")
        self.assertEqual(self.box_text("Voxmate - Reminders"), "Are you sure you want to disable the reminders ?")
        self.press("Yes")
        self.desk.gone("Voxmate - Reminders")
        self.menu("alt+r", "s")
        self.look("Voxmate Reminders - CURRENTLY DISABLED", "editor-disabled")
        self.press("Close")
        self.press("No")
        self.press("Open and Read a Text Document")
        self.look("Open Text File to Read...", "open-text")
        self.close_by_escape("Open Text File to Read...")

    def around_main(self):
        x, y, width, height = self.desk.window_rect(self.main_window())
        return (x - 8, y - 28, x + width + 200, y + height + 60)

    def test_the_keyboard_alone_reaches_every_control_of_the_main_window(self):
        self.start_and_settle()
        pyatspi = self.desk.accessible()
        self.desk.run("xdotool", "windowactivate", "--sync", self.main_window())

        def focused():
            return next((w[0] for w in self.desk.widgets() if w[2].getState().contains(pyatspi.STATE_FOCUSED) and w[1] != "frame"), None)

        wanted = {w[0] for w in self.desk.widgets() if w[2].getState().contains(pyatspi.STATE_FOCUSABLE)
                  and w[1] in ("push button", "check box", "combo box", "scroll bar", "text")}
        reached = set()
        for _ in range(len(wanted) + 6):
            name = desktop.wait_for(focused, 3, what="the focus")
            reached.add(name)
            self.desk.key("Tab")
            time.sleep(0.15)
        self.assertEqual(wanted - reached, set())

    def test_a_setting_is_changed_and_a_reminder_added_by_keyboard_alone(self):
        self.start_and_settle()
        pyatspi = self.desk.accessible()
        self.desk.run("xdotool", "windowactivate", "--sync", self.main_window())
        self.menu_by_keys("alt+f", "o")
        self.desk.find("Characters Location", role="text")
        self.tab_to("Show Balloon", pyatspi)
        self.desk.key("space")
        self.tab_to("Apply", pyatspi)
        self.desk.key("space")
        desktop.wait_for(lambda: self.desk.read_settings()["ShowBalloon"] == "dword:00000000", 5, what="the setting in the file")
        self.close_by_escape("Voxmate Options")
        self.desk.run("xdotool", "windowactivate", "--sync", self.main_window())
        self.menu_by_keys("alt+r", "s")
        self.desk.find("Description", role="text")
        tomorrow = datetime.datetime.now().replace(hour=23, minute=59, second=0, microsecond=0)
        for name, text in (("Title", "Sleep"), ("Time", "23:59"), ("Description", "Lights out")):
            self.tab_to(name, pyatspi, role="text")
            self.desk.type(text)
        self.tab_to("Add", pyatspi)
        self.desk.key("space")
        desktop.wait_for(lambda: self.slots() == [record("Sleep", tomorrow, "Lights out")], 5, what="the reminder in the file")

    def menu_by_keys(self, *keys):
        for key in keys:
            self.desk.key(key)
            time.sleep(0.4)

    def tab_to(self, name, pyatspi, role=None):
        """Presses Tab until the control of this name has the keyboard."""
        for _ in range(40):
            for widget, kind, node in self.desk.widgets():
                if widget.removesuffix(":") == name and (role is None or kind == role) and node.getState().contains(pyatspi.STATE_FOCUSED):
                    return
            self.desk.key("Tab")
            time.sleep(0.1)
        self.fail(f"the keyboard does not reach {name}")


class FirstEvening(ReminderCase):
    """From the first greeting to the last word, in one go and one recording."""

    defaults = {"SpeakTimeInterval": 0, "ReminderType": 0, "RemAlertClose": 0}

    def heard_since(self, begin):
        return desktop.loud_windows(self.recorder.snapshot()[0][begin:]).sum() * 0.005

    def now(self):
        return int(self.recorder.snapshot()[1][-1])

    def add_reminder(self, title, description):
        """Sets a reminder for the next minute in the editor."""
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("alt+r")
        self.desk.find("Show All Reminders", timeout=5)
        self.desk.key("s")
        field = self.desk.find("Description", role="text")
        when = self.minute(room=20) + datetime.timedelta(minutes=1)
        for name, text in (("Title", title), ("Time", f"{when:%H:%M}"), ("Description", description)):
            self.desk.click(self.desk.find(name, role="text") if name != "Description" else field)
            self.desk.key("ctrl+a")
            self.desk.type(text)
        self.press("Add")
        desktop.wait_for(lambda: len(self.slots()) == 1, 5, what="the reminder in the file")
        self.press("Close")
        self.desk.find("Do you want to save changes ?", timeout=5)
        self.press("No")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate Reminders"), 5, what="the editor going away")

    def test_greeted_read_to_reminded_told_a_tip_put_away_and_gone(self):
        tray = self.desk.spawn("trayer", "--edge", "bottom", "--align", "left", "--widthtype", "pixel", "--width", "64", "--height", "32")
        self.addCleanup(tray.terminate)
        self.recorder = self.desk.recorder()
        self.addCleanup(self.recorder.stop)
        begin = self.now()
        self.start()
        self.desk.find("Text to read", timeout=20)
        desktop.wait_for(lambda: self.heard_since(begin) > 3, 30, what="the greeting")
        self.settle()

        begin = self.now()
        text = "Good evening, this is my first text."
        self.desk.click(self.desk.find("Text to read"))
        self.desk.type(text)
        self.press("Speak the textbox text")
        desktop.wait_for(lambda: self.heard_since(begin) > 0, 5, what="the text")
        self.settle()
        self.assertAlmostEqual(self.heard_since(begin), self.rendered_length(text), delta=0.3)

        begin = self.now()
        self.add_reminder("Tea", "Green tea")
        window = desktop.wait_for(self.alerts, 75, what="the alert")[0]
        time.sleep(2)
        self.desk.screenshot(os.path.join(PICTURES, "alert.png"))
        self.settle()
        self.assertGreater(self.heard_since(begin), 2, "the reminder")

        # As long as it waits for its answer it is announced in the other kind of window, too.
        self.press("User Options")
        self.desk.click(self.desk.find("Reminders", role="page tab"))
        self.desk.click(self.desk.find("Alert Window", role="combo box"))
        time.sleep(0.3)
        self.desk.key("Down", "Return")
        self.press("OK")
        desktop.wait_for(lambda: self.desk.read_settings()["ReminderType"] == "dword:00000001", 5, what="the setting")
        desktop.wait_for(lambda: self.desk.windows("^Voxmate Reminder$"), 10, what="the notice")
        self.settle()
        self.desk.screenshot(os.path.join(PICTURES, "notice.png"))
        self.press("OK")
        desktop.wait_for(lambda: self.done() == ["Y"], 5, what="the mark in the file")
        x, y, width, height = self.desk.window_rect(window)
        self.desk.click_at(x + width // 2, y + height // 2)
        desktop.wait_for(lambda: not self.alerts(), 10, what="the alert going away")
        self.settle()

        begin = self.now()
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("alt+f")
        self.desk.find("Tip of the Day", timeout=5)
        self.desk.key("t")
        desktop.wait_for(lambda: self.desk.windows("^Tip of the Day$"), 5, what="the tip")
        self.settle()
        if self.heard_since(begin) < 1:
            self.press("Read Tip")
            self.settle()
        self.assertGreater(self.heard_since(begin), 1, "the tip")
        self.press("OK")

        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("alt+f")
        self.desk.find("Put in System Tray", timeout=5)
        self.desk.key("s")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate$"), 5, what="the hidden window")
        self.desk.run("xdotool", "mousemove", "16", str(desktop.SCREEN[1] - 16))
        time.sleep(0.3)
        self.desk.run("xdotool", "click", "--repeat", "2", "--delay", "80", "1")
        desktop.wait_for(lambda: self.desk.windows("^Voxmate$"), 5, what="the window")
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("alt+f")
        self.desk.find("Exit", timeout=5)
        self.desk.key("e")
        self.has_ended()
        time.sleep(0.5)
        begin = self.now()
        time.sleep(0.5)
        self.assertEqual(self.heard_since(begin), 0, "silence at the end")


if __name__ == "__main__":
    unittest.main()
