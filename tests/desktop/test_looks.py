"""How every window looks on a small screen with a panel, in a dark theme: no part is cut off, and texts, fields and
buttons stand out from their background, as measured on the screen. A picture of each window is saved in
build/tour-dark."""

import datetime
import os
import shutil
import time
import unittest

import numpy
from gi.repository import Gio, GLib

import desk as desktop
import program
from program import BUILD
from test_reminders import QUIET, ReminderCase, record

PANEL = 32  # of the screen's height
TEXT, PART, DISABLED = 4.5, 3.0, 2.5  # required contrasts
ROWS = {"table cell", "tree item", "list item"}
READ = {"label", "push button", "check box", "radio button", "page tab", "table column header", "menu item", "menu"} | ROWS
FIELDS = {"text", "combo box", "spin button"}
INDICATOR = 20  # space for the mark of a check box or option button, in device-independent pixels
ICON = 22  # space for a list row's picture
COLOURS = {"Button": ("49,54,59", "77,77,77", "239,240,241"), "View": ("35,38,41", "49,54,59", "239,240,241"),
           "Window": ("49,54,59", "77,77,77", "239,240,241"), "Tooltip": ("49,54,59", "77,77,77", "239,240,241"),
           "Selection": ("61,174,233", "29,153,243", "239,240,241")}


def dark_theme(desk):
    """Installs the dark colours of a desktop that keeps its colours in a file; returns the environment with which the
    toolkit looks for them."""
    os.makedirs(desk.env["XDG_CONFIG_HOME"], exist_ok=True)
    with open(os.path.join(desk.env["XDG_CONFIG_HOME"], "kdeglobals"), "w", encoding="utf-8") as file:
        for name, (normal, alternate, text) in COLOURS.items():
            file.write(f"[Colors:{name}]\nBackgroundNormal={normal}\nBackgroundAlternate={alternate}\nForegroundNormal={text}\n\n")
    return {"XDG_CURRENT_DESKTOP": "KDE", "KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "5"}


def luminance(pixels):
    parts = numpy.asarray(pixels, dtype=float) / 255
    linear = numpy.where(parts <= 0.03928, parts / 12.92, ((parts + 0.055) / 1.055) ** 2.4)
    return linear @ numpy.array([0.2126, 0.7152, 0.0722])


def contrast(one, other):
    """Contrast as defined by the Web Content Accessibility Guidelines 2.1, of two colours or of many."""
    one, other = luminance(one), luminance(other)
    return (numpy.maximum(one, other) + 0.05) / (numpy.minimum(one, other) + 0.05)


def ground(pixels):
    """The most frequent colour of a picture."""
    colours, counts = numpy.unique(pixels.reshape(-1, 3), axis=0, return_counts=True)
    return colours[counts.argmax()]


class Looks(ReminderCase):
    defaults = dict(QUIET, AutoReadTip=0)
    pictures = ""
    dark = False
    environment = {}
    maxDiff = None

    def setUp(self):
        super().setUp()
        os.makedirs(os.path.join(self.desk.home, "Documents"), exist_ok=True)
        self.panel = self.desk.spawn("trayer", "--edge", "top", "--align", "left", "--widthtype", "percent", "--width", "100",
                                     "--heighttype", "pixel", "--height", str(PANEL), "--SetDockType", "true",
                                     "--SetPartialStrut", "true")
        self.addCleanup(self.panel.terminate)
        self.room = desktop.wait_for(self.room_under_the_panel, what="the panel")

    def room_under_the_panel(self):
        answer = self.desk.run("xprop", "-root", "-notype", "_NET_WORKAREA").decode()
        x, y, width, height = (int(number) for number in answer.split("=")[1].split(",")[:4])
        return (x, y, x + width, y + height) if y == PANEL else None

    # The checks.

    def whole(self, window, framed=True):
        """The window with its frame must lie within the screen, beside the panel. Returns its content's position and
        size."""
        x, y, width, height = self.desk.window_rect(window)
        left, right, top, bottom = 0, 0, 0, 0
        if framed:
            answer = self.desk.run("xprop", "-id", window, "-notype", "_NET_FRAME_EXTENTS").decode()
            left, right, top, bottom = (int(number) for number in answer.split("=")[1].split(","))
        self.assertTrue(x - left >= self.room[0] and y - top >= self.room[1] and x + width + right <= self.room[2]
                        and y + height + bottom <= self.room[3],
                        f"{(x - left, y - top, x + width + right, y + height + bottom)} is not within {self.room}")
        return x, y, width, height

    def look(self, title, picture, framed=True, hint=None, settle=0.4):
        """Measures the newest window of this title after it has settled; returns how many of its parts were measured.
        `hint` names a field that shows a placeholder text."""
        pattern = "^" + title.replace("?", "\\?") + "$"
        window = desktop.wait_for(lambda: self.desk.windows(pattern), what=title)[-1]
        self.desk.run("xdotool", "mousemove", "2", str(self.desk.screen[1] - 2))
        time.sleep(settle)
        x, y, width, height = self.whole(window, framed)
        self.screen = numpy.asarray(self.desk.screenshot().convert("RGB"))
        self.desk.screenshot(os.path.join(BUILD, self.pictures, picture + ".png"),
                             box=(max(x - 8, 0), max(y - 28, 0), x + width + 8, y + height + 8))
        pyatspi = self.desk.accessible()
        tops = [node for name, role, node in self.desk.widgets() if name == title and role in ("frame", "dialog", "alert", "window")]
        faint, seen = [], 0
        for node in [node for top in tops[-1:] for node in self._descendants(top)]:
            states = node.getState()
            try:
                box = self.desk.rect(node)
            except NotImplementedError:  # a row that a list has not laid out
                continue
            if not states.contains(pyatspi.STATE_SHOWING) or box[2] < 4 or box[3] < 4:
                continue
            # A list also reports rows that are scrolled out of view.
            if desktop.role_name(node) in ROWS and not self.within(box, self.desk.rect(node.parent)):
                continue
            self.assertTrue(self.within(box, (x, y, width, height)), f"{desktop.role_name(node)} {node.name!r} is cut off")
            able = states.contains(pyatspi.STATE_SENSITIVE)
            for what, value, wanted in self.measures(node, box, able, node.name == hint):
                seen += 1
                if value < wanted:
                    faint.append(f"{desktop.role_name(node)} {node.name!r}: {what} {value:.2f} < {wanted}")
        self.assertEqual(faint, [], f"in {title}, {picture}")
        return seen

    def within(self, box, outer):
        slack = self.desk.scale - 1  # a window may stand at half a unit
        return (box[0] >= outer[0] - slack and box[1] >= outer[1] - slack and box[0] + box[2] <= outer[0] + outer[2] + slack
                and box[1] + box[3] <= outer[1] + outer[3] + slack)

    def measures(self, node, box, able, hint):
        """The measures of a widget: what, its contrast, the required contrast."""
        role, scale = desktop.role_name(node), self.desk.scale
        x, y, width, height = (int(value) for value in box)
        ticked = role in ("check box", "radio button") and width > 2 * INDICATOR * scale  # not a day of a calendar
        if role in READ and node.name:
            mark = INDICATOR * scale if ticked else 0
            rim = 5 * scale if role == "push button" else 0
            inside = self.screen[y + rim:y + height - rim, x + mark + rim:x + width - rim]
            yield "text", contrast(inside, ground(inside)).max(), TEXT if able else DISABLED
        if ticked and able:
            around = ground(self.screen[y:y + height, x + INDICATOR * scale:x + width])
            marked = self.screen[y + height // 2, x:x + 4 * scale]
            yield "outline", contrast(marked, around).max(), PART
        if role in FIELDS and able and height < 400 * scale:
            edge = self.screen[y + height // 2, x:x + 2 * scale]
            yield "outline from outside", contrast(edge, self.screen[y + height // 2, x - 3 * scale]).max(), PART
            # A drop-down list has a button's face, which shows by itself what it is.
            if role != "combo box":
                yield "outline from inside", contrast(edge, self.screen[y + 3 * scale, x + width // 2]).max(), PART
        if role == "table cell" and ", " in node.name:  # "1, Pending": a number with its picture
            image = self.screen[y:y + height, x:x + ICON * scale]
            yield "picture", contrast(image, ground(image)).max(), PART
        if hint:
            inside = self.screen[y + 3 * scale:y + height - 3 * scale, x + 3 * scale:x + width - 3 * scale]
            yield "hint", contrast(inside, ground(inside)).max(), TEXT

    # The way through all windows.

    def menu(self, *keys):
        self.desk.click(self.desk.find("Text to read"))
        for key in keys:
            self.desk.key(key)
            time.sleep(0.3)

    def close(self, title):
        self.desk.key("Escape")
        desktop.wait_for(lambda: not self.desk.windows("^" + title + "$"), what=f"{title} going away")

    def look_at_all(self):
        shutil.rmtree(os.path.join(BUILD, self.pictures), ignore_errors=True)
        later = datetime.datetime(2099, 3, 7, 9, 5)
        self.write(record("Call the bank", later, "About the card"), record("Tea", datetime.datetime(2004, 3, 7, 9, 5), "Green", "Y"))
        self.start(**self.environment)
        self.desk.find("A desktop assistant")
        self.assertGreater(self.look("Voxmate", "splash", framed=False, settle=0.1), 3)  # it stays for two seconds
        self.desk.find("Text to read")
        self.settle()
        ground_of_main = self.look_at_main()
        self.assertEqual(luminance(ground_of_main) < 0.2, self.dark, "the theme's ground")
        self.look_at_options()
        self.menu("alt+f", "t")
        self.assertGreater(self.look("Tip of the Day", "tip"), 6)
        self.close("Tip of the Day")
        self.menu("alt+h", "a")
        self.assertGreater(self.look("About Voxmate ®", "about"), 3)
        self.close("About Voxmate ®")
        self.menu("alt+h", "h")
        self.assertGreater(self.look("Voxmate - Help", "box"), 1)
        self.close("Voxmate - Help")
        self.menu("alt+r", "s")
        self.assertGreater(self.look("Voxmate Reminders - CURRENTLY ENABLED", "editor"), 60)
        self.press("Close")
        self.press("No")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate Reminders"), what="the editor going away")
        self.press("Open and Read a Text Document")
        self.assertGreater(self.look("Open Text File to Read...", "open"), 8)
        self.close("Open Text File to Read...")
        self.desk.end(self.program)
        self.look_at_notice()

    def look_at_main(self):
        self.assertGreater(self.look("Voxmate", "main", hint="Text to read"), 20)
        x, y, _, height = self.desk.rect(self.desk.find("Voice Settings"))
        inside = ground(self.screen[y:y + height, x:x + 200])
        self.menu("alt+f")
        item = self.desk.find("Exit", role="menu item")
        time.sleep(0.2)
        self.screen = numpy.asarray(self.desk.screenshot(os.path.join(BUILD, self.pictures, "menu.png")).convert("RGB"))
        left, top, width, height = self.desk.rect(item)
        items = [(name, self.desk.rect(node)) for name, role, node in self.desk.widgets() if role in ("menu item", "menu") and name]
        self.assertGreater(len([box for _, box in items if box[0] == left]), 4, items)
        for name, box in items:
            if box[0] == left:
                text = self.screen[box[1]:box[1] + box[3], box[0]:box[0] + box[2]]
                self.assertGreaterEqual(contrast(text, ground(text)).max(), TEXT, name)
        edge = self.screen[top + height // 2, left - 3 * self.desk.scale:left + 3 * self.desk.scale]
        self.assertGreaterEqual(contrast(edge, ground(self.screen[top:top + height, left:left + width])).max(), PART, "the menu's frame")
        self.desk.key("Escape", "Escape")
        return inside

    def look_at_options(self):
        self.press("User Options")
        for tab, parts in (("Character", 20), ("Reading", 12), ("Misc", 14), ("Reminders", 25)):
            self.desk.click(self.desk.find(tab, role="page tab"))
            self.assertGreater(self.look("Voxmate Options", "options-" + tab.lower()), parts)
        self.press("Preview")
        alert = desktop.wait_for(self.alerts, what="the alert")[0]
        desktop.wait_for(lambda: self.desk.window_rect(alert)[1] + self.desk.window_rect(alert)[3] <= self.room[3], what="its rise")
        x, y, width, height = self.whole(alert, framed=False)
        time.sleep(0.5)
        picture = self.desk.screenshot(os.path.join(BUILD, self.pictures, "alert.png"), box=(x, y, x + width, y + height))
        pixels = numpy.asarray(picture.convert("RGB"))
        middle = numpy.median(pixels.reshape(-1, 3), axis=0)
        self.assertGreater(luminance(middle), 0.6, "an alert is pale in every theme")
        self.assertGreaterEqual(contrast(pixels[6:-6, 6:-6], middle).max(), 10, "its black text")
        self.desk.click_at(x + width // 2, y + height // 2)
        self.desk.click(self.desk.find("Character", role="page tab"))
        self.press("Browse")
        self.assertGreater(self.look("Select Characters' Location :", "folder"), 8)
        self.close("Select Characters' Location :")
        self.press("Font")
        self.assertGreater(self.look("Font", "font"), 12)
        self.close("Font")
        self.close("Voxmate Options")

    def look_at_notice(self):
        self.desk.install_defaults(**self.defaults, ReminderType=1)
        self.write(record("Call the bank", datetime.datetime(2004, 3, 7, 9, 5), "About the card, before noon"))
        self.start(**self.environment)
        self.assertGreater(self.look("Voxmate Reminder", "notice"), 10)


class SmallAndDark(Looks):
    pictures = "tour-dark"
    dark = True

    @classmethod
    def setUpClass(cls):
        cls.environment = dark_theme(program.the_desk(screen=(1024, 600)))

    def test_every_window_is_whole_and_readable_on_a_small_screen_in_a_dark_theme(self):
        self.look_at_all()

    def test_no_dialog_comes_up_beneath_the_character(self):
        self.desk.install_defaults(**{**self.defaults, "ShowCharacterAtStart": 1})
        self.start_and_settle(**self.environment)

        def beside(title, picture):
            window = desktop.wait_for(lambda: self.desk.windows("^" + title + "$"), what=title)[-1]
            places = []

            def stands_clear():
                _, (x, y, width, height) = self.character_window()
                left, top, wide, high = self.desk.window_rect(window)
                places.append(((left, top, wide, high), (x, y, width, height)))
                clear = left + wide <= x or left >= x + width or top + high <= y or top >= y + height
                return clear and places[-2:-1] == places[-1:]

            try:
                desktop.wait_for(stands_clear, timeout=10)
            except AssertionError:
                self.fail(f"{title} and the character are at {places[-1]}, and were at {places[0]}")
            finally:
                self.desk.screenshot(os.path.join(BUILD, self.pictures, "beside-" + picture + ".png"))
            self.whole(window)

        self.press("User Options")
        beside("Voxmate Options", "options")
        self.press("Browse")
        beside("Select Characters' Location :", "folder")
        self.close("Select Characters' Location :")
        self.press("Font")
        beside("Font", "font")
        self.close("Font")
        self.close("Voxmate Options")
        self.menu("alt+h", "h")
        beside("Voxmate - Help", "box")
        self.close("Voxmate - Help")


class Changing(Looks):
    """The desktop's theme and font change while windows are open."""
    pictures = "tour-changed"
    dark = True

    @classmethod
    def setUpClass(cls):
        program.the_desk(screen=(1024, 600))

    def setUp(self):
        super().setUp()
        self.environment = dark_theme(self.desk)
        self.file = os.path.join(self.desk.env["XDG_CONFIG_HOME"], "kdeglobals")
        with open(self.file, encoding="utf-8") as file:
            self.dark_colours = file.read()
        self.write_theme("")
        self.bus = Gio.DBusConnection.new_for_address_sync(
            self.desk.env["DBUS_SESSION_BUS_ADDRESS"],
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
        self.addCleanup(self.bus.close_sync)

    def write_theme(self, text):
        """Replaces the file by a new one, as the desktop does."""
        with open(self.file + ".new", "w", encoding="utf-8") as file:
            file.write(text)
        os.replace(self.file + ".new", self.file)

    def tell(self, key, value):
        """Sends the signal that the desktop sends to its programs once the file is written."""
        self.bus.emit_signal(None, "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings", "SettingChanged",
                             GLib.Variant("(ssv)", ("org.kde.kdeglobals.General", key, GLib.Variant("s", value))))
        self.bus.flush_sync()

    def is_dark(self, title):
        x, y, width, height = self.desk.window_rect(self.desk.windows("^" + title + "$")[-1])
        picture = self.desk.screenshot(box=(x, y, x + width, y + height))
        return luminance(ground(numpy.asarray(picture.convert("RGB")))) < 0.2

    def test_open_windows_follow_the_theme_and_the_font(self):
        self.start_and_settle(**self.environment)
        self.menu("alt+f", "t")
        desktop.wait_for(lambda: self.desk.windows("^Tip of the Day$"), what="the tip")
        self.desk.run("xdotool", "windowactivate", "--sync", self.main_window())
        for key in ("alt+h", "h"):
            self.desk.key(key)
            time.sleep(0.3)
        windows = ("Voxmate", "Tip of the Day", "Voxmate - Help")
        for title in windows:
            desktop.wait_for(lambda title=title: self.desk.windows("^" + title + "$"), what=title)
        self.assertEqual([self.is_dark(title) for title in windows], [False, False, False])
        self.write_theme(self.dark_colours)
        self.tell("ColorScheme", "Dark")
        desktop.wait_for(lambda: all(self.is_dark(title) for title in windows), what="the dark windows")
        self.assertGreater(self.look("Voxmate - Help", "box"), 1)
        self.close("Voxmate - Help")
        self.desk.run("xdotool", "windowactivate", "--sync", self.desk.windows("^Tip of the Day$")[-1])
        self.close("Tip of the Day")
        size = self.desk.window_rect(self.main_window())[2:]
        self.write_theme(self.dark_colours + "[General]\nfont=DejaVu Serif,16,-1,5,50,0,0,0,0,0\n")
        self.tell("font", "DejaVu Serif,16,-1,5,50,0,0,0,0,0")
        desktop.wait_for(lambda: self.desk.window_rect(self.main_window())[3] > size[1] + 20, what="the larger window")
        self.assertGreater(self.look("Voxmate", "main"), 20)


if __name__ == "__main__":
    unittest.main()
