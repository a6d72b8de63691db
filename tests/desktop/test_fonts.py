"""A desktop whose font is larger than usual: in every window each text has the room that its letters need, and icons are
as much larger as the letters. A picture of each window is saved in build/tour-fonts."""

import datetime
import os
import re
import time
import unittest

from PIL import ImageFont

import desk as desktop
import program
from test_looks import BUILD, dark_theme
from test_reminders import QUIET, ReminderCase, record

FACE = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"
USUAL = 10  # points
# Sides at the usual size, in pixels: a picture button, a large one, a check mark, the width of an alert.
BUTTON, SPEAK, CHECK, ALERT = 40, 52, 12, 159
ON_ONE_LINE = ("push button", "check box", "radio button", "page tab", "table column header", "menu")
EDITOR = "Voxmate Reminders - CURRENTLY ENABLED"


class Fonts(ReminderCase):
    defaults = dict(QUIET, ShowTipAtStartUp=0, AutoReadTip=0)
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.environment = dark_theme(program.the_desk(screen=(2600, 1600)))

    def start_with(self, points, **settings):
        self.points = points
        self.font = ImageFont.truetype(FACE, round(points * 96 / 72))
        font = f"DejaVu Sans,{points},-1,5,50,0,0,0,0,0"
        with open(os.path.join(self.desk.env["XDG_CONFIG_HOME"], "kdeglobals"), "w", encoding="utf-8") as file:
            file.write(f"[General]\nfont={font}\nmenuFont={font}\n")
        self.desk.install_defaults(**{**self.defaults, **settings})
        self.start(**self.environment)

    def nodes(self, title):
        """The showing widgets of the newest window of this title that have a name: role, name and size."""
        top = desktop.wait_for(lambda: [node for name, role, node in self.desk.widgets()
                                        if name == title and role in ("frame", "dialog", "alert", "window")], what=title)[-1]
        showing = self.desk.accessible().STATE_SHOWING
        return [(desktop.role_name(node), node.name, self.desk.rect(node)[2:]) for node in self._descendants(top)
                if node.name and node.getState().contains(showing)]

    def words(self, role, name):
        """What a widget shows in one line, as far as its name tells; nothing where that is a picture."""
        day = re.match(r"\w+, (\d+) \w+ \d+$", name)
        if day and role in ("push button", "check box"):
            return day.group(1)
        if role == "label" and name.endswith("day"):
            return name[:2]  # above the calendar's days
        pictures = ("Year ", "Month ", "Today, ")
        drawn = role == "push button" and (name in self.icons or name.startswith(pictures))
        return "" if drawn else name

    def has_room(self, title):
        """Measures the texts of a window and takes its picture. Returns how many were measured."""
        window = desktop.wait_for(lambda: self.desk.windows("^" + title + "$"), what=title)[-1]
        time.sleep(0.3)  # painted
        left, top, wide, high = self.desk.window_rect(window)
        folder = os.path.join(BUILD, "tour-fonts")
        os.makedirs(folder, exist_ok=True)
        name = re.sub(r"\W+", "-", title).lower()
        self.taken = getattr(self, "taken", 0) + 1
        self.desk.screenshot(os.path.join(folder, f"{self.points}-{self.taken}-{name}.png"), box=(left, top, left + wide, top + high))
        # Letters without what hangs below their line or stands above the capitals.
        tall = -self.font.getbbox("E", anchor="ls")[1]
        narrow, seen = [], 0
        for role, name, (width, height) in self.nodes(title):
            if role not in ON_ONE_LINE and not (role == "label" and len(name) < 25):
                continue
            text = self.words(role, name)
            seen += 1
            if width < self.font.getlength(text) - 1 or height < tall:
                narrow.append((role, name, (width, height), (self.font.getlength(text), tall)))
        self.assertEqual(narrow, [], title)
        return seen

    icons = ()

    def close(self, title):
        self.desk.key("Escape")
        desktop.wait_for(lambda: not self.desk.windows("^" + title + "$"), what=f"{title} going away")

    def open(self, title, *keys):
        self.desk.run("xdotool", "windowactivate", "--sync", self.main_window())
        for key in keys:
            self.desk.key(key)
            time.sleep(0.3)
        desktop.wait_for(lambda: self.desk.windows("^" + title + "$"), what=title)

    def grown(self, size):
        return size * self.points // USUAL - 1

    def windows_at(self, points):
        self.write(record("Call the bank", datetime.datetime(2099, 3, 7, 9, 5), "About the card"))
        self.start_with(points)
        self.desk.find("Text to read")
        self.settle()
        sizes = {name: size for role, name, size in self.nodes("Voxmate") if role == "push button"}
        self.icons = tuple(sizes)
        for name, size in sizes.items():
            usual = SPEAK if name in ("Speak the textbox text", "Stop Everything !!!") else BUTTON
            self.assertGreaterEqual(min(size), self.grown(usual), name)
        self.assertGreater(self.has_room("Voxmate"), 15)
        self.icons = ()
        self.open("Voxmate Options", "alt+f", "o")
        for tab, key, parts in (("Character", "alt+h", 20), ("Reading", "alt+r", 12), ("Misc", "alt+m", 12), ("Reminders", "alt+e", 25)):
            self.desk.key(key)
            desktop.wait_for(lambda tab=tab: (tab, "filler") in [(name, role) for name, role, _ in self.desk.widgets()], what=tab)
            self.assertGreater(self.has_room("Voxmate Options"), parts)
        box = self.desk.rect(self.desk.find("Auto Close in", role="check box"))
        self.assertGreaterEqual(box[2], self.font.getlength("Auto Close in") + self.grown(CHECK))
        self.close("Voxmate Options")
        self.open(EDITOR, "alt+r", "s")
        self.assertGreater(self.has_room(EDITOR), 60)
        self.desk.key("alt+c")
        self.desk.find("Do you want to save changes ?")
        self.desk.key("alt+n")
        desktop.wait_for(lambda: not self.desk.windows("^" + EDITOR + "$"), what="the editor going away")
        for title, keys, parts in (("Tip of the Day", ("alt+f", "t"), 5), ("About Voxmate ®", ("alt+h", "a"), 2),
                                   ("Voxmate - Help", ("alt+h", "h"), 0)):
            self.open(title, *keys)
            self.assertGreater(self.has_room(title), parts)
            self.close(title)
        self.desk.end(self.program)
        self.write(record("Call the bank", datetime.datetime(2004, 3, 7, 9, 5), "About the card"))
        self.start_with(points, ReminderType=1)
        self.assertGreater(self.has_room("Voxmate Reminder"), 8)
        self.desk.end(self.program)
        self.start_with(points, ReminderType=0, RemAlertAction=0, RemAlertClose=0)
        alert = desktop.wait_for(self.alerts, what="the alert")[0]
        self.assertGreaterEqual(self.desk.window_rect(alert)[2], self.grown(ALERT))

    def test_every_text_has_room_and_every_icon_grows_at_14_points(self):
        self.windows_at(14)

    def test_every_text_has_room_and_every_icon_grows_at_20_points(self):
        self.windows_at(20)

    def test_every_text_has_room_and_every_icon_grows_at_28_points(self):
        self.windows_at(28)


if __name__ == "__main__":
    unittest.main()
