"""What goes beyond the original windows: the menu Extras, keys, the window's size and place, starting at log-in, and calls
from other programs."""

import datetime
import os
import shutil
import signal
import subprocess
import time
import unittest

from gi.repository import Gio, GLib

import desk as desktop
from program import BUILD, CALM, ProgramCase
from test_reminders import ReminderCase, record

NAME, PATH, INTERFACE = "org.voxmate.Voxmate", "/org/voxmate/Voxmate", "org.freedesktop.Application"
CAST = os.path.join(BUILD, "share", "voxmate", "msagent", "chars")
LONG = "This is a sentence that takes long enough to be stopped by a key before it has come to its end, " * 3


class ExtrasCase(ProgramCase):
    defaults = {**CALM, "EnableSoundEffects": 0, "ReadMessages": 0}

    def shown(self, title="Voxmate"):
        return desktop.wait_for(lambda: self.desk.windows(f"^{title}$"), what=f"the window {title!r}")[-1]

    def gone(self, title="Voxmate"):
        desktop.wait_for(lambda: not self.desk.windows(f"^{title}$"), what=f"the window {title!r} going away")

    def active(self, window):
        """Waits until a window has the keyboard."""
        desktop.wait_for(lambda: self.desk.run("xdotool", "getactivewindow", check=False).decode().strip() == window,
                         what="the window with the keyboard")

    def typed(self):
        return self.desk.find("Text to read").queryText().getText(0, -1)

    def file(self, name, text):
        path = os.path.join(self.desk.home, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def tray(self):
        tray = self.desk.tray("right")
        self.addCleanup(tray.wait, desktop.PATIENCE)
        self.addCleanup(tray.terminate)
        return self.desk.windows("^panel$")[-1]

    def icons(self, panel):
        return self.desk.run("xwininfo", "-tree", "-id", panel).decode().count('"voxmate"')

    def hide(self):
        """Puts the window into the tray."""
        self.choose_by_keys("alt+f", "Put in System Tray", "s")
        self.gone()


class Keys(ExtrasCase):
    def setUp(self):
        super().setUp()
        self.desk.run("xdotool", "mousemove", "2", "2")
        self.start_and_settle()
        self.listen()

    def speak_long(self):
        """Has a long sentence spoken."""
        begin = self.now()
        self.desk.find("Text to read").queryEditableText().setTextContents(LONG)
        self.press("Speak the textbox text")
        self.wait_for_sound(begin)

    def silent(self):
        """Waits until the program is idle."""
        self.settle(timeout=10, quiet=0.2)

    def test_typing_begins_at_once_and_control_and_enter_speaks(self):
        begin = self.now()
        self.desk.type("Typed without a click")
        desktop.wait_for(lambda: self.typed() == "Typed without a click", what="the typed text")
        self.desk.key("ctrl+Return")
        self.hear(begin, "Typed without a click")
        self.assertEqual(self.typed(), "Typed without a click")
        self.settle()
        begin = self.now()
        # Wherever the keyboard is, and with the other Enter key, too.
        self.desk.click(self.desk.find("Whisper"))
        self.desk.click(self.desk.find("Whisper"))
        self.desk.key("ctrl+KP_Enter")
        self.hear(begin, "Typed without a click")

    def test_escape_stops_everything_in_the_main_window(self):
        self.speak_long()
        self.desk.key("Escape")
        self.silent()
        self.assertTrue(self.desk.windows("^Voxmate$"))

    def test_escape_in_another_window_first_stops_what_is_spoken_and_then_closes_that(self):
        self.speak_long()
        self.press("User Options")
        self.active(self.shown("Voxmate Options"))
        self.desk.key("Escape")
        self.silent()
        self.assertTrue(self.desk.windows("^Voxmate Options$"))
        self.desk.key("Escape")
        self.gone("Voxmate Options")

    def test_escape_first_silences_a_message_box_and_then_closes_it(self):
        self.desk.end(self.program)
        self.desk.install_defaults(**{**self.defaults, "ReadMessages": 1})
        self.start_and_settle()
        begin = self.now()
        self.choose_by_keys("alt+h", "Help", "h")
        self.box_text("Voxmate - Help")
        self.wait_for_sound(begin)
        self.desk.key("Escape")
        self.silent()
        self.assertTrue(self.desk.windows("^Voxmate - Help$"))
        self.desk.key("Escape")
        self.gone("Voxmate - Help")

    def test_escape_closes_a_menu_even_while_something_is_spoken(self):
        self.speak_long()
        self.desk.key("alt+x")
        self.desk.find("Speak the Text", role="menu item")
        begin = self.now()
        self.desk.key("Escape")
        self.desk.gone("Speak the Text")
        self.wait_for_sound(begin)


class Window(ExtrasCase):
    def place(self):
        return self.desk.window_rect(self.main_window())

    def resize(self, width, height):
        self.desk.run("xdotool", "windowsize", self.main_window(), str(width), str(height))
        desktop.wait_for(lambda: self.place()[2:] == (width, height), what="the other size")

    def maximise(self):
        """Clicks the button in the window's frame that maximises it, or gives it back its own size."""
        x, y, width, _ = self.place()
        self.desk.click_at(x + width - 26, y - 10)

    def kept(self):
        """The state file's line about the window, when it has rested."""
        desktop.wait_for(lambda: os.path.exists(self.desk.state_file), what="the state file")
        with open(self.desk.state_file, encoding="utf-8") as file:
            return [line for line in file.read().split("\n") if line.startswith("main.geometry=")]

    def again(self):
        """Ends the program and starts it once more."""
        self.desk.end(self.program)
        self.start_and_settle()

    def test_the_text_box_takes_the_room_of_a_larger_window(self):
        self.start_and_settle()
        _, _, width, height = self.place()
        text, voice = (self.desk.rect(self.desk.find(name)) for name in ("Text to read", "Voice Types"))
        self.resize(width + 200, height + 150)
        desktop.wait_for(lambda: self.desk.rect(self.desk.find("Text to read"))[2:] == (text[2] + 200, text[3] + 150),
                         what="the larger text box")
        self.assertEqual(self.desk.rect(self.desk.find("Voice Types"))[3], voice[3])

    def test_size_and_place_come_back_and_do_not_wander(self):
        self.start_and_settle()
        self.resize(760, 640)
        self.desk.run("xdotool", "windowmove", self.main_window(), "120", "90")
        time.sleep(0.5)
        place = self.place()
        for _ in range(3):
            self.again()
            desktop.wait_for(lambda: self.place() == place, what="the former place")
        self.assertEqual(len(self.kept()), 1)

    def test_the_end_of_the_session_loses_nothing(self):
        self.start_and_settle()
        self.resize(700, 600)
        # At once, before the window has rested.
        self.again()
        self.assertEqual(self.place()[2:], (700, 600))

    def test_a_maximised_window_comes_back_maximised_and_then_has_its_own_size(self):
        self.start_and_settle()
        size = self.place()[2:]
        self.maximise()
        desktop.wait_for(lambda: self.place()[2] > 1500, what="the maximised window")
        self.again()
        desktop.wait_for(lambda: self.place()[2] > 1500, what="the maximised window again")
        self.maximise()
        desktop.wait_for(lambda: self.place()[2:] == size, what="its own size")

    def test_a_damaged_state_file_stops_nothing_and_is_kept(self):
        os.makedirs(os.path.dirname(self.desk.state_file), exist_ok=True)
        with open(self.desk.state_file, "wb") as file:
            file.write(b"main.geometry=\xff\xfe nonsense\nof a later version=1\n\x00\n")
        self.start_and_settle()
        self.assertEqual(self.boxes(), [])
        self.resize(700, 600)
        self.desk.end(self.program)
        with open(self.desk.state_file, "rb") as file:
            lines = file.read().split(b"\n")
        self.assertEqual(lines[1:], [b"of a later version=1", b"\x00", b""])
        self.assertTrue(lines[0].startswith(b"main.geometry=") and b"nonsense" not in lines[0])

    def test_a_state_that_cannot_be_written_stops_nothing(self):
        os.makedirs(self.desk.state_file)
        self.addCleanup(shutil.rmtree, self.desk.state_file)
        self.start_and_settle()
        self.resize(700, 600)
        self.assertEqual(self.boxes(), [])


class Login(ReminderCase, ExtrasCase):
    defaults = {**ReminderCase.defaults, "EnableSoundEffects": 0, "ReadMessages": 0}

    def setUp(self):
        super().setUp()
        self.entry = os.path.join(self.desk.env["XDG_CONFIG_HOME"], "autostart", "org.voxmate.Voxmate.desktop")
        shutil.rmtree(os.path.dirname(self.entry), ignore_errors=True)

    def start_quietly(self):
        """Starts the program as at log-in; returns the titles of all its windows seen until it is in the tray."""
        self.program = self.desk.start(arguments=["--quiet"])
        seen = set()

        def in_tray():
            seen.update(*(self.titles(title) for title in ("^Voxmate", "Tip of the Day")))
            return self.icons(self.panel)
        desktop.wait_for(in_tray, step=0.01, what="the icon")
        return seen

    def titles(self, title):
        """The titles of the visible windows with such a title. (The icon is found by its class alone.)"""
        return {self.desk.run("xdotool", "getwindowname", window, check=False).decode().strip() for window in self.desk.windows(title)}

    def checked(self, name="Start at Log-in"):
        state = self.desk.accessible().STATE_CHECKED
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("alt+x")
        checked = self.desk.find(name, role="menu item").getState().contains(state)
        self.desk.key("Escape", "Escape")
        self.desk.gone(name)
        return checked

    def test_the_menu_switches_it_and_shows_what_another_program_does_to_it(self):
        self.start_and_settle()
        self.assertFalse(self.checked())
        self.choose_by_keys("alt+x", "Start at Log-in", "l")
        desktop.wait_for(lambda: os.path.exists(self.entry), what="the entry")
        with open(self.entry, encoding="utf-8") as file:
            entry = file.read()
        self.assertIn(f"\nExec={os.path.join(BUILD, 'voxmate')} --quiet\n", entry)
        self.assertTrue(self.checked())
        with open(self.entry, "a", encoding="utf-8") as file:
            file.write("Hidden=true\n")
        self.assertFalse(self.checked())
        self.choose_by_keys("alt+x", "Start at Log-in", "l")
        desktop.wait_for(lambda: "Hidden" not in open(self.entry, encoding="utf-8").read(), what="the entry shown again")
        self.choose_by_keys("alt+x", "Start at Log-in", "l")
        desktop.wait_for(lambda: not os.path.exists(self.entry), what="the entry going")
        self.assertFalse(self.checked())

    def test_the_quiet_start_shows_and_says_nothing_and_the_icon_brings_the_window(self):
        self.desk.install_defaults(**{**self.defaults, "GreetingEnabled": 1, "ShowTipAtStartUp": 1})
        self.panel = self.tray()
        self.listen()
        begin = self.now()
        self.assertEqual(self.start_quietly(), set())
        time.sleep(2)
        self.assertEqual(self.sound_since(begin), 0)
        self.assertFalse(self.desk.windows("^Voxmate"))
        call(self.desk, "Activate", "(a{sv})", {})
        self.active(self.shown())

    def test_a_reminder_due_at_log_in_is_announced(self):
        self.desk.install_defaults(**{**self.defaults, "ReminderSentenceSpeak": 1})
        self.write(record("Call", datetime.datetime(2004, 3, 7, 9, 5), "Bank"))
        self.panel = self.tray()
        self.listen()
        begin = self.now()
        self.start_quietly()
        desktop.wait_for(self.alerts, what="the alert")
        self.wait_for_sound(begin)
        self.assertFalse(self.desk.windows("^Voxmate$"))

    def test_who_wants_to_be_greeted_is(self):
        self.desk.install_defaults(**{**self.defaults, "GreetingEnabled": 1})
        os.makedirs(os.path.dirname(self.desk.state_file), exist_ok=True)
        with open(self.desk.state_file, "w", encoding="utf-8") as file:
            file.write("login.greeting=1\n")
        self.panel = self.tray()
        self.listen()
        begin = self.now()
        self.assertEqual(self.start_quietly() - {"Voxmate character", "Voxmate balloon"}, set())
        self.hear(begin, "Hello Buddy. ")

    def test_a_panel_that_comes_after_the_program_gets_the_icon(self):
        self.program = self.desk.start(arguments=["--quiet"])
        desktop.wait_for(lambda: on_bus(self.desk), what="the name on the bus")
        time.sleep(2)
        self.assertEqual(self.desk.windows("^Voxmate"), [])
        self.panel = self.tray()
        desktop.wait_for(lambda: self.icons(self.panel), what="the icon")
        self.assertEqual(self.desk.windows("^Voxmate"), [])

    def test_a_second_quiet_start_disturbs_nobody(self):
        self.panel = self.tray()
        self.start_quietly()
        second = self.desk.start(arguments=["--quiet"])
        self.desk.ended(second)
        self.assertEqual(self.desk.windows("^Voxmate"), [])
        self.assertIsNone(self.program.poll())


def call(desk, method, signature, *arguments, flags=Gio.DBusCallFlags.NO_AUTO_START):
    """Calls the program over the bus, as a launcher does."""
    bus = Gio.DBusConnection.new_for_address_sync(
        desk.env["DBUS_SESSION_BUS_ADDRESS"],
        Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
    try:
        bus.call_sync(NAME, PATH, INTERFACE, method, GLib.Variant(signature, arguments), None, flags, desktop.PATIENCE * 1000, None)
    finally:
        bus.close_sync()


def on_bus(desk):
    return b"boolean true" in desk.run("dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
                                       "org.freedesktop.DBus.NameHasOwner", "string:" + NAME)


class Called(ExtrasCase):
    def cover(self):
        """Shows another program's window over the main window, and waits until it has the keyboard."""
        x, y, width, height = self.desk.window_rect(self.main_window())
        child, window = self.desk.neighbour("Neighbour", "--at", f"{x},{y},{width},{height}")
        self.addCleanup(child.wait)
        self.addCleanup(child.terminate)
        self.desk.run("xdotool", "windowactivate", "--sync", window)
        return int(window)

    def above(self, other):
        """Waits until the main window is active and above another one."""
        window = self.main_window()
        self.active(window)
        desktop.wait_for(lambda: self.desk.stacking().index(int(window)) > self.desk.stacking().index(other), what="the window above")

    def test_activate_raises_the_window_and_brings_it_from_the_tray(self):
        panel = self.tray()
        self.start_and_settle()
        other = self.cover()
        call(self.desk, "Activate", "(a{sv})", {})
        self.above(other)
        self.hide()
        call(self.desk, "Activate", "(a{sv})", {})
        self.active(self.shown())
        self.assertEqual(self.icons(panel), 1)
        self.desk.run("xdotool", "windowminimize", self.main_window())
        self.gone()
        call(self.desk, "Activate", "(a{sv})", {})
        self.active(self.shown())

    def test_a_second_start_raises_the_window_of_the_first(self):
        self.start_and_settle()
        other = self.cover()
        second = self.desk.start()
        self.above(other)
        self.assertEqual(self.answer_box("Voxmate - Running"), "Another copy of Voxmate is already running.")
        self.desk.ended(second)

    def test_open_reads_text_files_and_answers_others_in_a_sentence(self):
        self.start_and_settle()
        self.listen()
        begin = self.now()
        path = self.file("ä note.txt", "This comes from a file manager")
        song = self.file("song.mp3", "")
        call(self.desk, "Open", "(asa{sv})", [Gio.File.new_for_path(path).get_uri(), "file://" + song, "sftp://host/x.txt"], {})
        # Documents wait for their turn.
        for text in ("The following file is not on this computer:\nsftp://host/x.txt",
                     '"song.mp3" cannot be read: there is no text in it.'):
            desktop.wait_for(lambda: self.box_text("Voxmate - File Error").replace("\r", "") == text, what=text)
            self.press("OK")
        self.desk.gone("Voxmate - File Error")
        self.hear(begin, "This comes from a file manager")

    def test_actions_of_the_launcher(self):
        panel = self.tray()
        self.start_and_settle()
        self.type_text("Copied")
        self.desk.key("ctrl+a", "ctrl+c")
        self.hide()
        self.listen()
        begin = self.now()
        call(self.desk, "ActivateAction", "(sava{sv})", "read-clipboard", [], {})
        self.hear(begin, "Copied")
        second = self.desk.start(arguments=["--action", "show-reminders"])
        self.desk.ended(second)
        self.shown("Voxmate Reminders - CURRENTLY ENABLED")
        self.assertFalse(self.desk.windows("^Voxmate$"))
        self.assertEqual(self.icons(panel), 1)

    def test_files_of_the_command_line_are_read_by_the_program_that_runs(self):
        self.start_and_settle()
        self.listen()
        begin = self.now()
        second = self.desk.start(arguments=[self.file("a.txt", "Read by the first program")])
        self.desk.ended(second)
        self.hear(begin, "Read by the first program")
        self.assertEqual(self.boxes(), [])

    def test_files_of_the_command_line_are_read_when_no_program_runs(self):
        self.listen()
        begin = self.now()
        self.program = self.desk.start(arguments=[self.file("a.txt", "Read after the start")])
        self.hear(begin, "Read after the start")

    def test_the_bus_starts_the_program_for_a_file(self):
        services = os.path.join(self.desk.env["XDG_DATA_HOME"], "dbus-1", "services")
        os.makedirs(services, exist_ok=True)
        self.addCleanup(shutil.rmtree, services)
        with open(os.path.join(services, NAME + ".service"), "w", encoding="utf-8") as file:
            file.write(f"[D-BUS Service]\nName={NAME}\nExec=/usr/bin/env PULSE_SERVER={self.desk.env['PULSE_SERVER']} {BUILD}/voxmate\n")
        to_bus = ("dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus")
        self.desk.run(*to_bus, "org.freedesktop.DBus.ReloadConfig")
        self.listen()
        begin = self.now()
        call(self.desk, "Open", "(asa{sv})", ["file://" + self.file("a.txt", "Started by the bus")], {}, flags=Gio.DBusCallFlags.NONE)
        process = int(self.desk.run(*to_bus, "org.freedesktop.DBus.GetConnectionUnixProcessID", "string:" + NAME).split()[-1])
        try:
            self.hear(begin, "Started by the bus")
            self.assertEqual(self.boxes(), [])
        finally:
            os.kill(process, signal.SIGTERM)
            desktop.wait_for(lambda: not os.path.exists(f"/proc/{process}"), what="the program's end")

    def test_without_a_bus_a_second_start_with_files_says_that_there_is_another_copy(self):
        self.start_and_settle()
        second = self.desk.start(arguments=["/nonexistent.txt"], DBUS_SESSION_BUS_ADDRESS="unix:path=/nonexistent")
        title = "^Voxmate - Running$"
        self.active(desktop.wait_for(lambda: self.desk.windows(title), what="the box")[-1])
        self.desk.key("Return")
        self.desk.ended(second)

    def test_a_bus_that_hangs_delays_the_start_for_seconds_only(self):
        os.kill(self.desk.bus_pid, signal.SIGSTOP)
        self.addCleanup(os.kill, self.desk.bus_pid, signal.SIGCONT)
        begin = time.monotonic()
        self.program = self.desk.start()
        splash = desktop.wait_for(lambda: self.desk.windows("^Voxmate$"), what="the splash")
        self.active(desktop.wait_for(lambda: [w for w in self.desk.windows("^Voxmate$") if w not in splash], what="the window")[0])
        self.listen()
        sound = self.now()
        self.desk.type("Spoken without a bus")
        self.desk.key("ctrl+Return")
        self.hear(sound, "Spoken without a bus")
        self.assertLess(time.monotonic() - begin, desktop.PATIENCE)
        self.desk.end(self.program)
        os.kill(self.desk.bus_pid, signal.SIGCONT)

    def test_help_and_version_need_no_display(self):
        for option, text in (("--help", "Usage: voxmate"), ("--version", "Voxmate 1.1 - Build 5")):
            told = subprocess.run([os.path.join(BUILD, "voxmate"), option], env={}, capture_output=True, check=True)
            self.assertTrue(told.stdout.decode().startswith(text))
        wrong = subprocess.run([os.path.join(BUILD, "voxmate"), "--loud"], env=self.desk.env, capture_output=True, check=False)
        self.assertEqual(wrong.returncode, 1)
        self.assertTrue(wrong.stderr.decode().startswith('voxmate: "--loud" is not understood.\n\nUsage: voxmate'))


class Editor(ReminderCase):
    """The reminder editor's help with entering one."""
    ADDS = "Today at {:%H:%M}: tea"

    def open_editor(self):
        super().open_editor()
        title = desktop.wait_for(lambda: next((node for name, role, node in self.desk.widgets() if (name, role) == ("Title", "text")), None),
                                 what="the title")
        desktop.wait_for(lambda: title.getState().contains(self.desk.accessible().STATE_FOCUSED), what="the cursor in the title")
        return title

    def beginning(self):
        """The present minute, which is not one of the day's last: what is added then is for today."""
        now = self.minute()
        if now.hour == 23 and now.minute > 40:
            self.skipTest("the day ends")
        return now

    def test_a_title_that_says_when_is_shown_told_and_added_by_enter(self):
        now = self.beginning()
        self.start_and_settle()
        title = self.open_editor()
        hint = self.desk.find("Reminders", role="tree").description
        self.assertTrue(hint.startswith("There are no reminders in the list."), hint)
        self.desk.type("tea in 15 minutes")
        when = now + datetime.timedelta(minutes=15)
        told = [self.ADDS.format(when + datetime.timedelta(minutes=late)) for late in (0, 1)]
        desktop.wait_for(lambda: set(told) & set(self.desk.texts()), what=told[0])
        self.assertIn(title.description, told)
        self.assertFalse(os.path.exists(self.path))
        self.desk.key("Return")
        desktop.wait_for(lambda: os.path.exists(self.path) and len(self.slots()) == 1, what="the reminder in the file")
        self.assertIn(self.slots()[0], [record("tea", when + datetime.timedelta(minutes=late), "tea") for late in (0, 1)])
        self.assertEqual(self.desk.find("Reminders", role="tree").description, "")

    def test_a_reminder_that_comes_again_and_again_is_refused(self):
        self.start_and_settle()
        self.open_editor()
        self.desk.type("pills every day at 9")
        self.desk.find("A reminder comes once. Please give one day and one time.")
        self.desk.key("alt+a")
        self.assertTrue(self.box_text("Voxmate - Reminders").startswith("A reminder comes once. Please give one day and one time."))
        self.desk.key("Return")
        self.desk.gone("Voxmate - Reminders")
        self.assertFalse(os.path.exists(self.path))

    def test_a_title_without_a_time_gets_the_next_quarter_of_an_hour_and_is_added_by_the_keys_of_the_editor(self):
        now = self.beginning()
        self.start_and_settle()
        self.open_editor()
        self.desk.type("Bank")
        quarter = now.replace(minute=0) + datetime.timedelta(minutes=now.minute // 15 * 15 + 15)
        later = quarter + datetime.timedelta(minutes=15)  # when the quarter ends meanwhile
        self.desk.key("alt+d")
        self.desk.type("The card")
        self.desk.key("alt+a")
        desktop.wait_for(lambda: os.path.exists(self.path) and len(self.slots()) == 1, what="the reminder in the file")
        self.assertIn(self.slots()[0], [record("Bank", quarter, "The card"), record("Bank", later, "The card")])
        for key, name in (("alt+t", "Title"), ("alt+m", "Time"), ("alt+d", "Description:")):
            self.desk.key(key)
            desktop.wait_for(lambda name=name: next(node for found, role, node in self.desk.widgets() if (found, role) == (name, "text"))
                             .getState().contains(self.desk.accessible().STATE_FOCUSED), what=f"the cursor in {name}")


class Missed(ExtrasCase):
    """The list of what was announced while nobody was there, as the run before has left it."""

    def kept(self):
        with open(self.desk.state_file, encoding="utf-8") as file:
            return [line for line in file.read().split("\n") if line.startswith("reminders.missed=")]

    def test_the_list_comes_with_the_first_input_leaves_the_keyboard_and_is_empty_once_closed(self):
        os.makedirs(os.path.dirname(self.desk.state_file), exist_ok=True)
        with open(self.desk.state_file, "w", encoding="utf-8") as file:
            file.write("reminders.missed=11/23/2026\t09:05\tWater the plants\\n11/23/2026\t09:30\tCall Ann\\n\n")
        self.start_and_settle()
        self.type_text("Here")
        self.shown("Voxmate - Missed Reminders")
        for text in ("11/23/2026", "09:05", "Water the plants", "09:30", "Call Ann"):
            self.desk.find(text, role="table cell")
        self.desk.key("exclam")
        desktop.wait_for(lambda: self.typed() == "Here!", what="the text of who goes on typing")
        self.choose_by_keys("alt+x", "Missed Reminders...", "m")
        self.active(self.shown("Voxmate - Missed Reminders"))
        self.desk.key("Escape")
        self.gone("Voxmate - Missed Reminders")
        desktop.wait_for(lambda: self.kept() == ["reminders.missed="], what="an empty list in the file")


class CalendarFiles(ReminderCase, ExtrasCase):
    """Calendar files become reminders, and reminders a calendar file."""
    CALENDAR = ("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nDTSTART;TZID=Asia/Tokyo:20990301T090000\r\nSUMMARY:Caf\u00e9\\, wi\r\n"
                " th Ann\r\nDESCRIPTION:One\\nTwo\r\nEND:VEVENT\r\nBEGIN:VEVENT\r\nDTSTART;VALUE=DATE:20200105\r\n"
                "SUMMARY:Old\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n")

    def box(self, text):
        desktop.wait_for(lambda: self.box_text("Voxmate - Reminders").replace("\r", "") == text, what=text)

    def test_a_calendar_becomes_reminders_and_these_a_calendar_that_brings_them_back(self):
        # Japan has no summer time, so this is 00:00 in UTC.
        self.start_and_settle(TZ="UTC")
        path = self.file("team.ics", self.CALENDAR)
        uri = Gio.File.new_for_path(path).get_uri()
        call(self.desk, "Open", "(asa{sv})", [uri], {})
        self.box("1 of the 2 entries is in the past. Do you want to add it as well?\n\n"
                 "What is in the past and not marked as done is announced at once as missed.")
        self.desk.key("Return")  # No
        self.box('1 reminder was added from "team.ics".\n1 entry is in the past and was left out.')
        self.desk.key("Return")
        self.desk.gone("Voxmate - Reminders")
        cafe = record("Caf\u00e9, with Ann", datetime.datetime(2099, 3, 1), "One\r\nTwo")
        self.assertEqual(self.slots(), [cafe])

        target = os.path.join(self.desk.home, "mine.ics")
        self.choose_by_keys("alt+x", "Save as Calendar File...", "e")
        self.active(self.shown("Save as Calendar File"))
        self.desk.key("ctrl+a")
        self.desk.type(target)
        self.desk.key("Return")
        self.box(f"1 reminder was saved in the following file:\n{target}")
        self.desk.key("Return")
        self.desk.gone("Voxmate - Reminders")
        with open(target, "rb") as file:
            self.assertIn(b"\r\nDTSTART:20990301T000000\r\n", file.read())

        self.desk.end(self.program)
        os.remove(self.path)
        self.start_and_settle(TZ="UTC")
        call(self.desk, "Open", "(asa{sv})", [Gio.File.new_for_path(target).get_uri()], {})
        self.box('1 reminder was added from "mine.ics".')
        self.desk.key("Return")
        self.assertEqual(self.slots(), [cafe])


class Install(ExtrasCase):
    def setUp(self):
        super().setUp()
        self.cast = os.path.join(self.desk.home, "cast") + "/"
        shutil.rmtree(self.cast, ignore_errors=True)
        os.makedirs(self.cast)
        shutil.copy(os.path.join(CAST, "Nalu.acs"), self.cast)
        self.desk.install_defaults(**{**self.defaults, "CharacterPath": self.cast})
        self.robo = os.path.join(self.desk.home, "Robo.acs")
        shutil.copy(os.path.join(CAST, "Tock.acs"), self.robo)

    def open(self, path):
        call(self.desk, "Open", "(asa{sv})", ["file://" + path], {})

    def test_a_character_is_looked_at_installed_and_shown(self):
        self.start_and_settle()
        self.open(self.robo)
        text = self.box_text("Voxmate - Install Character").replace("\r", "").split("\n")
        self.assertEqual(text[:3], ["Do you want to install this character?", "", "Name: Tock"])
        self.assertTrue(text[3].startswith("Description: ") and len(text[3]) > 30, text)
        self.assertRegex(text[4], r"^Size: \d+(\.\d)? (kB|MB)$")
        self.assertEqual(text[5:], ["File: " + self.robo])
        self.press("Yes")
        desktop.wait_for(lambda: "is installed" in self.box_text("Voxmate - Install Character"), what="the second question")
        self.assertTrue(os.path.exists(self.cast + "Robo.acs"))
        self.press("Yes")
        self.desk.find("ROBO", role="label")
        self.saved("LastCharacter", '"Robo"')
        self.saved("CharacterPath", f'"{self.cast}"')
        with open(self.robo, "rb") as source, open(self.cast + "Robo.acs", "rb") as copy:
            self.assertEqual(source.read(), copy.read())

    def test_where_the_folder_is_read_only_the_users_own_takes_its_place(self):
        without = ()
        if os.geteuid() == 0:
            # The right to write everywhere is given up.
            without = ("setpriv", "--bounding-set", "-dac_override", "--inh-caps", "-all")
            if subprocess.run([*without, "true"], stderr=subprocess.DEVNULL, check=False).returncode != 0:
                self.skipTest("the right to write everywhere cannot be given up here")
        own = os.path.join(self.desk.env["XDG_DATA_HOME"], "voxmate", "Character") + "/"
        shutil.rmtree(own, ignore_errors=True)
        os.chmod(self.cast, 0o555)
        self.addCleanup(os.chmod, self.cast, 0o755)
        self.program = self.desk.start(without=without)
        self.desk.find("Text to read")
        self.settle()
        self.open(self.robo)
        self.press("Yes")
        desktop.wait_for(lambda: "is installed" in self.box_text("Voxmate - Install Character"), what="the second question")
        self.answer_box("Voxmate - Install Character", "No")
        self.assertEqual(sorted(os.listdir(own)), ["Nalu.acs", "Robo.acs"])
        self.assertEqual(os.readlink(own + "Nalu.acs"), self.cast + "Nalu.acs")
        self.saved("CharacterPath", f'"{own}"')
        self.saved("LastCharacter", '"Nalu"')
        self.assertEqual(os.listdir(self.cast), ["Nalu.acs"])
        # The other characters are still there.
        self.desk.end(self.program)
        self.start_and_settle()
        self.assertEqual(self.boxes(), [])
        self.character_window()

    def test_nothing_is_installed_without_a_yes_or_from_a_damaged_file(self):
        self.start_and_settle()
        self.open(self.robo)
        self.answer_box("Voxmate - Install Character", "No")
        with open(self.robo, "r+b") as file:
            file.truncate(1000)
        self.open(self.robo)
        self.assertTrue(self.answer_box("Voxmate - File Error").startswith(f'The character file "{self.robo}" cannot be used: '))
        self.assertEqual(os.listdir(self.cast), ["Nalu.acs"])


if __name__ == "__main__":
    unittest.main()
