"""The notification-area icon, in a tray such as other desktops' panels have."""

import os
import re
import subprocess
import time
import unittest

from gi.repository import Gio, GLib

import desk as desktop
from program import CALM, ProgramCase

ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"


class TrayCase(ProgramCase):
    defaults = {**CALM, "ShowCharacterAtStart": 0}

    def hide(self):
        """Puts the window into the tray through the menu."""
        self.choose_by_keys("alt+f", "Put in System Tray", "s")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate$"), what="the hidden window")

    def visible(self):
        """Positions of the program's visible windows; a hidden window's menu is not on the accessibility bus."""
        ids = self.desk.windows("voxmate", by="--class")
        return [self.desk.window_rect(window) for window in ids]

    def choose_exit(self, before):
        """Clicks the only item of the menu that has appeared."""
        x, y, width, height = desktop.wait_for(lambda: [p for p in self.visible() if p not in before], what="the menu")[0]
        self.assertLess(height, 40, "more than one item")
        self.desk.click_at(x + width // 2, y + height // 2)
        self.has_ended()


class Tray(TrayCase):

    def setUp(self):
        super().setUp()
        self.tray = self.desk.tray("right")
        self.addCleanup(self.tray.wait, desktop.PATIENCE)
        self.addCleanup(self.tray.terminate)
        self.panel = self.desk.windows("^panel$")[-1]

    def icons(self):
        """Positions of the icons in the tray."""
        tree = self.desk.run("xwininfo", "-tree", "-id", self.panel).decode()
        ids = [line.split()[0] for line in tree.split("\n") if '"voxmate"' in line]
        return [self.desk.window_rect(window) for window in ids]

    def put_in_tray(self):
        self.hide()
        return desktop.wait_for(self.icons, what="the icon")[0]

    def click_icon(self, *options):
        x, y, width, height = self.icons()[0]
        self.desk.run("xdotool", "mousemove", str(x + width // 2), str(y + height // 2))
        time.sleep(0.1)
        self.desk.run("xdotool", "click", *options)

    def test_a_double_click_brings_the_window_back_and_the_icon_stays(self):
        self.start_and_settle()
        self.put_in_tray()
        self.click_icon("1")
        time.sleep(1)
        self.assertFalse(self.desk.windows("^Voxmate$"), "one click shows the window")
        self.click_icon("--repeat", "2", "--delay", "80", "1")
        desktop.wait_for(lambda: self.desk.windows("^Voxmate$"), what="the window")
        self.assertEqual(len(self.icons()), 1)
        # Once more: the icon exists already.
        self.put_in_tray()
        self.assertEqual(len(self.icons()), 1)
        self.click_icon("--repeat", "2", "--delay", "80", "1")
        desktop.wait_for(lambda: self.desk.windows("^Voxmate$"), what="the window again")

    def test_a_right_click_offers_exit_alone_and_exit_ends_the_program_at_once(self):
        self.start_and_settle()
        self.put_in_tray()
        before = self.visible()
        self.click_icon("3")
        self.choose_exit(before)
        desktop.wait_for(lambda: not self.icons(), what="the icon going away")

    def test_a_right_click_brings_the_shown_window_to_the_front_before_it_offers_exit(self):
        self.start_and_settle()
        window = self.main_window()
        self.put_in_tray()
        self.click_icon("--repeat", "2", "--delay", "80", "1")
        desktop.wait_for(lambda: self.desk.windows("^Voxmate$"), what="the window")
        x, y, width, height = self.desk.window_rect(window)
        above = self.desk.spawn("xev", "-geometry", f"{width}x{height}+{x}+{y}", "-event", "button")
        self.addCleanup(above.terminate)
        other = desktop.wait_for(lambda: self.desk.windows("^Event Tester$"), what="the window above")[0]
        self.desk.run("xdotool", "windowactivate", "--sync", other)
        self.assertEqual(self.front(), (other, other))
        before = self.visible()
        self.click_icon("3")
        desktop.wait_for(lambda: self.front() == (window, window), what="the window coming to the front")
        self.choose_exit(before)

    def test_the_icon_offers_exit_while_a_box_is_up(self):
        self.start_and_settle(PATH="/nonexistent")  # no system information tool
        self.choose_by_keys("alt+h", "About Voxmate", "a")
        about = desktop.wait_for(lambda: self.desk.windows("^About Voxmate"), what="the about box")[-1]
        self.desk.run("xdotool", "windowmove", "--sync", about, "10", "10")
        self.put_in_tray()
        self.press("System Info...")
        self.desk.find("System Information Is Unavailable At This Time")
        before = self.visible()
        self.click_icon("3")
        self.choose_exit(before)

    def front(self):
        """The active window and the uppermost ordinary one."""
        active = int(self.desk.run("xdotool", "getactivewindow"))
        ordinary = {int(window) for title in ("^Voxmate$", "^Event Tester$") for window in self.desk.windows(title)}
        return str(active), str([window for window in self.desk.stacking() if window in ordinary][-1])

    def test_a_second_copy_says_so_and_brings_the_firsts_window_back_from_the_tray(self):
        self.start_and_settle()
        self.put_in_tray()
        self.second_copy_ends()
        desktop.wait_for(lambda: self.desk.windows("^Voxmate$"), what="the first copy's window")
        self.assertEqual(len(self.icons()), 1)

    def test_the_window_comes_back_iconified_when_the_tray_dies(self):
        self.start_and_settle()
        window = self.desk.windows("^Voxmate$")[-1]
        self.put_in_tray()
        self.tray.terminate()
        self.tray.wait(desktop.PATIENCE)
        self.iconified(window)
        self.desk.run("xdotool", "windowactivate", "--sync", window)
        self.desk.find("Text to read")

    def test_closing_puts_it_in_the_tray_when_the_user_wants_that(self):
        self.desk.install_defaults(**self.defaults, CloseToTray=1)
        self.start_and_settle()
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("alt+F4")
        desktop.wait_for(self.icons, what="the icon")
        self.assertFalse(self.desk.windows("^Voxmate$"))
        self.assertIsNone(self.program.poll())

    def test_closing_ends_the_program_when_the_user_wants_that(self):
        self.start_and_settle()
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("alt+F4")
        self.has_ended()
        self.assertEqual(self.icons(), [])


class Notifier(TrayCase):
    """The other kind of tray, which reports clicks over the session's bus."""

    def setUp(self):
        super().setUp()
        self.host = self.desk.spawn("/usr/bin/python3", os.path.join(os.path.dirname(__file__), "notifier_host.py"),
                                    stdout=subprocess.PIPE)
        self.addCleanup(self.host.stdout.close)
        self.addCleanup(self.host.wait, desktop.PATIENCE)
        self.addCleanup(self.host.terminate)
        self.assertEqual(self.host.stdout.readline(), b"ready\n")
        self.bus = Gio.DBusConnection.new_for_address_sync(
            self.desk.env["DBUS_SESSION_BUS_ADDRESS"],
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
        self.addCleanup(self.bus.close_sync)

    def put_in_tray(self):
        self.hide()
        return self.host.stdout.readline().decode().strip()

    def tell(self, item, method):
        self.desk.run("dbus-send", "--session", "--print-reply", "--dest=" + item, "/StatusNotifierItem",
                      "org.kde.StatusNotifierItem." + method, "int32:100", "int32:100")

    def menu(self, item):
        """The icon's exported menu, which the panel shows for a right click: its path and the visible entries as
        (number, label)."""
        path = self.ask(item, "/StatusNotifierItem", "org.freedesktop.DBus.Properties.Get", GLib.Variant("(ss)", (ITEM, "Menu")))[0]
        self.assertNotEqual(path, "/NO_DBUSMENU")
        self.ask(item, path, MENU + ".AboutToShow", GLib.Variant("(i)", (0,)))
        layout = self.ask(item, path, MENU + ".GetLayout", GLib.Variant("(iias)", (0, -1, [])))[1]
        return path, [(entry[0], entry[1]["label"]) for entry in layout[2] if entry[1].get("visible", True)]

    def ask(self, item, path, method, arguments):
        interface, name = method.rsplit(".", 1)
        return self.bus.call_sync(item, path, interface, name, arguments, None, Gio.DBusCallFlags.NONE, 5000, None).unpack()

    def test_one_activation_brings_the_window_back_and_the_icon_stays(self):
        self.start_and_settle()
        item = self.put_in_tray()
        for _ in range(2):
            self.tell(item, "Activate")
            desktop.wait_for(lambda: self.desk.windows("^Voxmate$"), what="the window")
            self.hide()

    def test_a_double_click_that_the_panel_tells_as_two_activations_brings_it_back_once(self):
        self.start_and_settle()
        item = self.put_in_tray()
        self.tell(item, "Activate")
        self.tell(item, "Activate")
        desktop.wait_for(lambda: self.desk.windows("^Voxmate$"), what="the window")
        self.assertEqual(len(self.desk.windows("^Voxmate$")), 1)

    def test_the_panel_can_show_the_icons_menu_which_is_exit_alone(self):
        self.start_and_settle()
        item = self.put_in_tray()
        path, entries = self.menu(item)
        self.assertEqual([label for _, label in entries], ["_Exit"])
        # No answer is waited for, because the program ends.
        self.bus.call(item, path, MENU, "Event", GLib.Variant("(isvu)", (entries[0][0], "clicked", GLib.Variant("i", 0), 0)), None,
                      Gio.DBusCallFlags.NONE, -1, None, None)
        self.bus.flush_sync()
        self.has_ended()

    def test_its_tool_tip_tells_how_much_of_a_document_is_left(self):
        self.start_and_settle()
        item = self.put_in_tray()

        def tip():
            return self.ask(item, "/StatusNotifierItem", "org.freedesktop.DBus.Properties.Get",
                            GLib.Variant("(ss)", (ITEM, "ToolTip")))[0][2]

        self.assertEqual(tip(), "Voxmate")
        page = os.path.join(self.desk.home, "page.html")
        with open(page, "w", encoding="utf-8") as file:
            file.write("<p>" + "This sentence is read aloud, and there are many more of its kind. " * 40)
        second = self.desk.start(arguments=[page])
        self.desk.ended(second)
        desktop.wait_for(lambda: re.fullmatch(r"Voxmate - Reading, \d minutes? left: page\.html", tip()), what="the time that is left")
        self.press("Stop Everything !!!")
        desktop.wait_for(lambda: tip() == "Voxmate", what="the icon's own tip")

    def test_the_right_button_offers_exit(self):
        self.start_and_settle()
        item = self.put_in_tray()
        before = self.visible()
        self.tell(item, "ContextMenu")
        self.choose_exit(before)

    def test_the_window_comes_back_iconified_when_the_panel_dies(self):
        self.start_and_settle()
        window = self.desk.windows("^Voxmate$")[-1]
        self.put_in_tray()
        self.host.terminate()
        self.host.wait(desktop.PATIENCE)
        self.iconified(window)


if __name__ == "__main__":
    unittest.main()
