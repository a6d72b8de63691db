"""The options dialog on a real display: its tabs and rules; every setting changed by hand, in the file at once and
still there after a restart; and the keyboard alone."""

import os
import shutil
import time
import unittest

import desk as desktop
from disc import disc, write_disc
from program import BUILD, CALM, ProgramCase, Watch
from test_start import catalogue

TABS = ("Character", "Reading", "Misc", "Reminders")
# Settings that are changed elsewhere: in the main window, the tip, the character's menu.
ELSEWHERE = {"LastCharacter", "LastSpeechEngine", "Pitch", "Speed", "Whisper", "ShowTipAtStartUp", "AutoReadTip"}

# What the user does on each tab, in this order: setting, kind and name of its control, value in the file, and what the
# control then shows if that is not the value.
CHANGES = {
    "Character": [
        ("CharacterSize", "combo box", "Character Size", 2, "Big"),
        ("EnableSoundEffects", "check box", "Enable character sound effects", 1),
        ("BalloonTotalLines", "text", "Total lines", 3),
        ("BalloonCharactersPerLine", "text", "Characters per line", 24),
        ("SizeBallonToText", "check box", "Size to text", 1),
        ("BalloonAutoHide", "check box", "Auto Hide", 0),
        ("BalloonAutoPace", "check box", "Auto Pace", 0),
        ("ShowBalloon", "check box", "Show Balloon", 0)],
    "Reading": [
        ("SpeakTimeInterval", "text", "Speak Time Every, in minutes", 45),
        ("TimeIn24Hour", "check box", "Read time in 24 Hour format", 1),
        ("DateFormat", "combo box", "Read System Date in", 3, "31-DECEMBER"),
        ("ReadTextBoxTextAtLeftClick", "check box", "Read text box text on character left click", 0),
        ("UserName", "text", "Your Name", "Ada Byron"),
        ("ReadNameWithMessages", "check box", "Always read my name before messages and greetings", 0),
        ("ReadMessages", "check box", "Also read application messages when showing", 1)],
    "Misc": [
        ("ShowCharacterAtStart", "check box", "Show character at startup", 1),
        ("GreetingEnabled", "check box", "Enable startup greeting", 1),
        ("GreetingType", "radio button", "Other Only", 2, "on"),
        ("OtherGreeting", "text", "Other Greeting", "Nice to see you"),
        ("CloseToTray", "check box", "When closed minimize to system tray", 1)],
    "Reminders": [
        ("ReminderSentence", "text", "Sentence to speak", "Listen please"),
        ("ReminderSentenceSpeak", "check box", "Speak below sentence while showing reminder", 0),
        ("ReminderTitleSpeak", "check box", "Title", 0),
        ("ReminderDateSpeak", "check box", "Date", 0),
        ("ReminderTimeSpeak", "check box", "Time", 0),
        ("ReminderDescSpeak", "check box", "Description", 0),
        ("ReminderNextSchSpeak", "check box", "Next schedule if snoozed", 0),
        ("RemAlertAction", "radio button", "Fade", 1, "on"),
        ("RemAlertGradient", "radio button", "Corner", 0, "on"),
        ("RemAlertShape", "radio button", "Square", 0, "on"),
        ("RemAlertColor", "radio button", "Red", 2, "on"),
        ("RemAlertClose", "check box", "Auto Close in", 1),
        ("RemAlertCloseTime", "text", "Auto close time in seconds", 7),
        ("ReminderType", "combo box", "Show Reminder as", 1, "Normal Window"),
        ("ReminderOnTop", "check box", "Always on top", 0)],
}

# The tabs from top to bottom: kind | name | shown with the settings of OTHER | shown after Default. Disabled controls
# are in brackets.
ROWS = {
    "Character": """
        label | Characters Location: | |
        text | Characters Location | {path} | {path}
        push button | Browse | |
        label | Character Size | |
        combo box | Character Size | Big | Normal
        label | Character animations available | |
        combo box | Character animations available | RestPose | RestPose
        push button | Animate | |
        check box | Enable character sound effects | on | off
        check box | Show Balloon | off | on
        panel | Balloon Settings | () |
        label | Font: | () |
        label | {font} | () |
        push button | Font | () |
        check box | Size to text | (on) | off
        check box | Auto Hide | (off) | on
        check box | Auto Pace | (off) | on
        label | Total lines | () |
        text | Total lines | (5) | 2
        label | Characters per line | () |
        text | Characters per line | (45) | 32""",
    "Reading": """
        label | Speak Time Every | |
        text | Speak Time Every, in minutes | 120 | 5
        label | minute(s) | |
        check box | Read time in 24 Hour format | off | on
        label | Read System Date in | |
        combo box | Read System Date in | DECEMBER-31 | 31-DECEMBER-2025
        label | format | |
        check box | Read text box text on character left click | off | on
        label | Your Name: | |
        text | Your Name | Ada | Ada
        check box | Always read my name before messages and greetings | off | on
        check box | Also read application messages when showing | off | on""",
    "Misc": """
        check box | Show character at startup | on | on
        check box | Speak character intro at startup | off | on
        check box | Enable startup greeting | on | off
        panel | Greeting | | ()
        radio button | Time Only | off | (off)
        radio button | Date and Time | off | (on)
        radio button | Date Only | off | (off)
        radio button | Date and Time and Other | off | (off)
        radio button | Other Only | on | (off)
        label | Other Greeting: | | ()
        text | Other Greeting | Ahoy | (Ahoy)
        check box | When closed minimize to system tray | off | on""",
    "Reminders": """
        label | Show Reminder as: | |
        combo box | Show Reminder as | Normal Window | Alert Window
        check box | Always on top | off | (on)
        check box | Speak below sentence while showing reminder | off | on
        text | Sentence to speak | (Listen) | Listen
        panel | Speak While Showing | |
        check box | Title | off | on
        check box | Date | off | on
        check box | Time | off | on
        check box | Description | off | on
        check box | Next schedule if snoozed | off | on
        panel | Action | () |
        radio button | Scroll | (off) | on
        radio button | Fade | (on) | off
        panel | Gradiant Type | () |
        radio button | Corner | (on) | off
        radio button | Tube | (off) | on
        panel | Shape | () |
        radio button | Square | (on) | off
        radio button | Round corners | (off) | on
        panel | Color | () |
        radio button | Yellow | (off) | off
        radio button | Red | (off) | off
        radio button | Blue | (on) | off
        radio button | Green | (off) | on
        check box | Auto Close in | (on) | off
        text | Auto close time in seconds | (9) | (4)
        label | seconds | |
        push button | Preview | () |""",
}
BUTTONS = """
        push button | Default | |
        push button | OK | |
        push button | Cancel | |
        push button | Apply | () |"""
OTHER = {
    "CharacterSize": 2, "EnableSoundEffects": 1, "ShowBalloon": 0, "BalloonFontName": "DejaVu Serif", "BalloonFontSize": 14,
    "SizeBallonToText": 1, "BalloonTotalLines": 5, "BalloonCharactersPerLine": 45, "BalloonAutoHide": 0, "BalloonAutoPace": 0,
    "SpeakTimeInterval": 120, "TimeIn24Hour": 0, "DateFormat": 6, "ReadTextBoxTextAtLeftClick": 0, "UserName": "Ada",
    "ReadNameWithMessages": 0, "ReadMessages": 0, "GreetingEnabled": 1, "GreetingType": 2, "OtherGreeting": "Ahoy",
    "CloseToTray": 0, "ReminderType": 1, "ReminderOnTop": 0, "ReminderSentenceSpeak": 0, "ReminderSentence": "Listen",
    "ReminderTitleSpeak": 0, "ReminderDateSpeak": 0, "ReminderTimeSpeak": 0, "ReminderDescSpeak": 0, "ReminderNextSchSpeak": 0,
    "RemAlertAction": 1, "RemAlertGradient": 0, "RemAlertShape": 0, "RemAlertColor": 1, "RemAlertClose": 1, "RemAlertCloseTime": 9}
LISTS = {
    ("Character", "Character Size"): ["Small", "Normal", "Big"],
    ("Character", "Character animations available"): ["RestPose"],
    ("Reading", "Read System Date in"): ["31-DECEMBER-25", "31-DECEMBER-2025", "31-DECEMBER", "DECEMBER-31-25", "DECEMBER-31-2025",
                                         "DECEMBER-31"],
    ("Reminders", "Show Reminder as"): ["Alert Window", "Normal Window"],
}

BALLOON = {"Balloon Settings", "Font", "Size to text", "Auto Hide", "Auto Pace", "Total lines", "Characters per line"}
GREETING = {"Greeting", "Time Only", "Date Only", "Other Only", "Date and Time", "Date and Time and Other", "Other Greeting"}
ALERT = {"Action", "Scroll", "Fade", "Gradiant Type", "Corner", "Tube", "Shape", "Square", "Round corners", "Color", "Yellow", "Red",
         "Blue", "Green", "Auto Close in", "Auto close time in seconds", "Preview"}
# Clicks in sequence, beginning with the program's own defaults, and what is disabled after each; on the third tab also
# which of its first three boxes are ticked.
RULES = {
    "Character": [
        ("Show Balloon", BALLOON), ("Show Balloon", set()), ("Size to text", {"Total lines"}), ("Show Balloon", BALLOON),
        ("Show Balloon", {"Total lines"}), ("Size to text", set())],
    "Misc": [
        ("Speak character intro at startup", GREETING, "show intro"), ("Enable startup greeting", set(), "show greeting"),
        ("Enable startup greeting", GREETING, "show"), ("Show character at startup", GREETING, ""),
        ("Speak character intro at startup", GREETING, "show intro"), ("Show character at startup", GREETING, ""),
        ("Enable startup greeting", set(), "show greeting"), ("Show character at startup", GREETING, "")],
    "Reminders": [
        ("Speak below sentence while showing reminder", {"Always on top", "Auto close time in seconds", "Sentence to speak"}),
        ("Speak below sentence while showing reminder", {"Always on top", "Auto close time in seconds"}),
        ("Auto Close in", {"Always on top"}), ("Normal Window", ALERT), ("Alert Window", {"Always on top"}),
        ("Auto Close in", {"Always on top", "Auto close time in seconds"}), ("Normal Window", ALERT),
        ("Alert Window", {"Always on top", "Auto close time in seconds"})],
}


def in_file(value):
    return f"dword:{value:08x}" if isinstance(value, int) else f'"{value}"'


def shown_for(role, value):
    return ("off", "on")[value] if role == "check box" else str(value)


class OptionsCase(ProgramCase):
    """The program with a character without gestures, so that nothing has to be waited for."""

    values = {}

    def setUp(self):
        super().setUp()
        self.cast = os.path.join(self.desk.home, "cast", "")
        write_disc(self.cast, data=self.character())
        self.install(**self.values)
        self.dialog = self.page = None

    def character(self):
        return disc()

    def install(self, **values):
        """Settings without any speech at the start, apart from `values`."""
        self.desk.install_defaults(**{**CALM, "ReadMessages": 0, "EnableSoundEffects": 0, "CharacterPath": self.cast,
                                      "LastCharacter": "Disc", **values})

    def start_here(self):
        self.start()
        self.desk.find("Text to read")

    def open_options(self):
        self.press("User Options")
        desktop.wait_for(lambda: self.desk.windows("^Voxmate Options$"), what="the dialog")
        self.dialog = self.desk.find("Voxmate Options", role="frame")
        self.page = desktop.wait_for(lambda: self.page_of("Character"), what="the first tab")

    def restart(self):
        self.desk.end(self.program)
        self.start_here()

    def closed(self):
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate Options$"), what="the dialog going away")

    def click(self, node):
        """A quick click; each test waits for its effect itself."""
        x, y, width, height = self.desk.rect(node)
        place = str(x + width // 2), str(y + height // 2)
        self.desk.run("xdotool", "mousemove", *place, "sleep", "0.03", "click", "--delay", "0", "1")

    def is_a(self, node, state):
        return node.getState().contains(getattr(self.desk.accessible(), "STATE_" + state))

    def page_of(self, tab):
        """The dialog's visible widgets by kind and name; a list goes by its label's name. None unless this tab, and no
        other any more, is in front."""
        pyatspi = self.desk.accessible()
        found = {}

        def visit(node):
            for child in node:
                if child is None or not self.is_a(child, "SHOWING"):
                    continue
                role, name = desktop.role_name(child), child.name
                if role == "combo box":
                    name = next(relation.getTarget(0).name for relation in child.getRelationSet()
                                if relation.getRelationType() == pyatspi.RELATION_LABELLED_BY).rstrip(":")
                found[role, name] = child
                if role != "combo box":
                    visit(child)

        visit(self.dialog)
        return found if [other for other in TABS if ("filler", other) in found] == [tab] else None

    def turn_to(self, tab):
        self.click(self.page["page tab", tab])
        self.page = desktop.wait_for(lambda: self.page_of(tab), what=f"the tab {tab}")

    def shown(self, role, name):
        """A control's state: on or off, its text or its entry."""
        node = self.page[role, name]
        if role in ("check box", "radio button"):
            return "on" if self.is_a(node, "CHECKED") else "off"
        return node.queryText().getText(0, -1) if role == "text" else node.name

    def enabled(self, role, name):
        return self.is_a(self.page[role, name], "ENABLED")

    def table(self):
        """The tab's widgets, one line each: kind | name | state, in brackets if disabled."""
        lines = []
        for role, name in self.page:
            if role in ("filler", "layered pane", "page tab", "page tab list"):
                continue
            shown = self.shown(role, name) if role in ("check box", "radio button", "text", "combo box") else ""
            lines.append(f"{role} | {name} | " + (shown if self.enabled(role, name) else f"({shown})"))
        return lines

    def become(self, look, expected, message=None):
        """Waits until look() returns the expected value; fails with the difference if it does not."""
        end = time.monotonic() + desktop.PATIENCE
        while look() != expected and time.monotonic() < end:
            time.sleep(0.03)
        self.assertEqual(look(), expected, message)

    def tick(self, *names, role="check box"):
        for name in names:
            before = self.shown(role, name)
            self.click(self.page[role, name])
            self.become(lambda n=name: self.shown(role, n), "off" if before == "on" else "on", name)

    def choose(self, *names):
        for name in names:
            self.click(self.page["radio button", name])
            self.become(lambda n=name: self.shown("radio button", n), "on", name)

    def put(self, name, text):
        self.click(self.page["text", name])
        self.desk.key("ctrl+a", "Delete")
        self.desk.type(text)

    def entries(self, name):
        return [item.name for part in self.page["combo box", name] for item in part]

    def pick(self, name, entry):
        box = self.page["combo box", name]
        self.click(box)
        desktop.wait_for(lambda: self.is_a(box, "EXPANDED"), what=f"the list {name!r}")
        time.sleep(0.15)  # it takes no click while it unfolds
        self.click(next(item for part in box for item in part if item.name == entry))
        self.become(lambda: box.name, entry)

    def change(self, role, name, value):
        {"check box": lambda: self.tick(name), "radio button": lambda: self.choose(name),
         "text": lambda: self.put(name, value), "combo box": lambda: self.pick(name, value)}[role]()
        self.become(lambda: self.shown(role, name), value, name)

    def apply(self):
        self.become(lambda: self.enabled("push button", "Apply"), True, "the button after a change")
        self.click(self.page["push button", "Apply"])
        self.become(lambda: self.enabled("push button", "Apply"), False, "the button after it was pressed")

    def choose_font(self, name, size):
        self.click(self.page["push button", "Font"])
        self.desk.find("Font", role="dialog")
        self.desk.key("ctrl+a")
        self.desk.type(name)
        self.desk.click(self.desk.find("Size:", role="spin button"))
        self.desk.key("ctrl+a")
        self.desk.type(size)
        self.desk.key("Return")
        desktop.wait_for(lambda: not self.desk.windows("^Font$"), what="the font box going away")

    def browse(self, folder):
        title = "Select Characters' Location :"
        self.click(self.page["push button", "Browse"])
        self.desk.find(title, role="dialog")
        self.become(lambda: self.is_a(self.desk.find("Directory:", role="text"), "FOCUSED"), True, "the keyboard in the field")
        self.desk.key("ctrl+a")
        self.desk.type(folder)
        self.desk.key("Return")
        self.desk.gone(title)

    def settings(self, names):
        settings = self.desk.read_settings()
        return {name: settings[name] for name in names}


class EverySetting(OptionsCase):
    values = {"ShowCharacterAtStart": 0, "CharacterPath": os.path.join(BUILD, "share", "voxmate", "msagent", "chars", ""),
              "LastCharacter": "Nalu"}

    def test_every_setting_is_in_the_file_once_applied_and_back_in_its_control_after_a_restart(self):
        other = os.path.join(self.desk.home, "copied characters", "")
        shutil.copytree(self.values["CharacterPath"], other)
        self.addCleanup(shutil.rmtree, other)
        self.start_here()
        names = set(catalogue()) - ELSEWHERE
        before = self.settings(names)
        expected = dict(before)
        self.open_options()
        for tab in TABS:
            self.turn_to(tab)
            for setting, role, name, value, *entry in CHANGES[tab]:
                if setting == "BalloonTotalLines":
                    self.choose_font("DejaVu Serif", "14")
                    self.browse(other.rstrip("/"))
                self.change(role, name, entry[0] if entry else shown_for(role, value))
                expected[setting] = in_file(value)
        expected.update(BalloonFontName=in_file("DejaVu Serif"), BalloonFontSize=in_file(14), CharacterPath=in_file(other))
        self.assertEqual(self.settings(names), before, "nothing before it is applied")
        self.apply()
        self.become(lambda: self.settings(names), expected)
        changed = {name for name in names if expected[name] != before[name]}

        # The introduction replaces the greeting.
        self.turn_to("Misc")
        self.tick("Speak character intro at startup")
        expected.update(IntroAtStart=in_file(1), GreetingEnabled=in_file(0))
        self.apply()
        self.become(lambda: self.settings(names), expected)
        changed |= {name for name in names if expected[name] != before[name]}
        self.assertEqual(changed, names, "settings that the dialog saves and this does not change")
        self.click(self.page["push button", "OK"])
        self.closed()

        self.restart()
        self.open_options()
        for tab in TABS:
            self.turn_to(tab)
            for setting, role, name, value, *entry in CHANGES[tab]:
                now = "off" if setting == "GreetingEnabled" else entry[0] if entry else shown_for(role, value)
                self.assertEqual(self.shown(role, name), now, name)
            if tab == "Character":
                self.assertEqual(self.shown("text", "Characters Location"), other)
                self.assertIn(("label", "DejaVu Serif"), self.page)
            if tab == "Misc":
                self.assertEqual(self.shown("check box", "Speak character intro at startup"), "on")
        self.settle()  # while something is spoken, Escape silences that
        self.desk.key("Escape")
        self.closed()
        self.assertEqual(self.settings(names), expected)


class Tabs(OptionsCase):
    values = OTHER

    def rows(self, tab, column, font, apply):
        """The rows of a tab in the form of table(), from a column of ROWS."""
        found = []
        for line in (ROWS[tab] + BUTTONS).format(path=self.cast, font=font).strip().split("\n"):
            role, name, *shown = (part.strip() for part in line.split("|"))
            found.append(f"{role} | {name} | " + (apply if name == "Apply" else shown[column]))
        return found

    def check(self, column, font, apply):
        for tab in TABS:
            self.turn_to(tab)
            self.become(self.table, self.rows(tab, column, font, apply), tab)

    def test_every_row_shows_its_setting_default_resets_it_and_cancel_then_changes_nothing(self):
        self.start_here()
        before = self.desk.read_settings()
        self.open_options()
        self.check(0, "DejaVu Serif", "()")
        for (tab, name), entries in LISTS.items():
            self.turn_to(tab)
            self.assertEqual(self.entries(name), entries, name)
        self.click(self.page["push button", "Default"])
        self.check(1, "MS Sans Serif", "")
        self.click(self.page["push button", "Cancel"])
        self.closed()
        self.assertEqual(self.desk.read_settings(), before)
        self.open_options()
        self.check(0, "DejaVu Serif", "()")
        # Until now the greeting has kept the character's box ticked.
        self.turn_to("Misc")
        self.tick("Show character at startup")
        self.click(self.page["push button", "Default"])
        self.become(lambda: self.shown("check box", "Show character at startup"), "on")


class Rules(OptionsCase):
    values = {"GreetingEnabled": 1, "GreetingType": 2, "OtherGreeting": "Ahoy"}

    def disabled(self):
        return {name for role, name in self.page if role != "label" and name != "Apply" and not self.enabled(role, name)}

    def ticked(self):
        names = {"show": "Show character at startup", "intro": "Speak character intro at startup",
                 "greeting": "Enable startup greeting"}
        return " ".join(short for short, name in names.items() if self.shown("check box", name) == "on")

    def colour_of(self, field):
        x, y, width, height = self.desk.rect(self.page["text", field])
        return self.desk.screenshot(box=(x + width - 6, y + 4, x + width - 5, y + 5)).getpixel((0, 0))

    def test_each_click_enables_what_it_should_and_disabled_fields_are_grey(self):
        self.start_here()
        self.open_options()
        white = self.colour_of("Total lines")
        for tab, clicks in RULES.items():
            self.turn_to(tab)
            for name, disabled, *ticked in clicks:
                if name.endswith("Window"):
                    self.pick("Show Reminder as", name)
                else:
                    self.click(self.page["check box", name])
                self.become(self.disabled, disabled, f"after a click on {name!r}")
                if ticked:
                    self.assertEqual(self.ticked(), ticked[0], f"after a click on {name!r}")
                if name == "Size to text":
                    self.become(lambda: self.colour_of("Total lines") == white, not disabled, "white")
            self.assertTrue(self.enabled("push button", "Apply"))


class Failures(OptionsCase):
    values = {"SpeakTimeInterval": 5, "UserName": "Ada"}

    def complaint(self, message, focus):
        self.assertEqual(self.box_text("Voxmate - Options in Error"), message)
        self.desk.key("Return")
        self.desk.gone("Voxmate - Options in Error")
        # The tab with the wrong field has come to the front, with the focus in that field.
        self.become(lambda: self.is_a(self.desk.find(focus, role="text"), "FOCUSED"), True, focus)

    def test_a_number_out_of_range_is_refused_and_nothing_is_saved(self):
        self.start_here()
        before = self.desk.read_settings()
        self.open_options()
        self.put("Characters per line", "7")
        self.turn_to("Reading")
        self.put("Your Name", "Nobody")
        self.click(self.page["push button", "Apply"])
        self.complaint("No. of characters per line must be between 8 and 255", "Characters per line")
        self.page = self.page_of("Character")
        self.put("Characters per line", "8")
        self.put("Total lines", "0")
        self.click(self.page["push button", "Apply"])
        self.complaint("Total number of lines must be between 1 and 128", "Total lines")
        self.put("Total lines", "1")
        # The closing time is checked although it is not in use.
        self.turn_to("Reminders")
        self.tick("Auto Close in")
        self.put("Auto close time in seconds", "")
        self.tick("Auto Close in")
        self.turn_to("Misc")
        self.click(self.page["push button", "Apply"])
        self.assertEqual(self.box_text("Voxmate - Options in Error"), "Auto close time should be between 4 and 20.")
        self.desk.key("Return")
        self.desk.gone("Voxmate - Options in Error")
        self.page = desktop.wait_for(lambda: self.page_of("Reminders"), what="the tab of the box in error")
        self.assertEqual(self.shown("text", "Auto close time in seconds"), "0")
        self.assertEqual(self.desk.read_settings(), before)
        # OK checks again, and closes all the same.
        self.click(self.page["push button", "OK"])
        self.assertEqual(self.box_text("Voxmate - Options in Error"), "Auto close time should be between 4 and 20.")
        self.desk.key("Return")
        self.closed()
        self.assertEqual(self.desk.read_settings(), before)

    def test_fields_of_numbers_take_so_many_digits_and_nothing_else_and_empty_ones_mean_something(self):
        self.start_here()
        self.open_options()
        for tab, name, most in (("Character", "Characters per line", 2), ("Character", "Total lines", 2),
                                ("Reading", "Speak Time Every, in minutes", 3), ("Reminders", "Auto close time in seconds", 2)):
            self.turn_to(tab)
            if tab == "Reminders":
                self.tick("Auto Close in")
            self.put(name, "a1-b.6 8x9")
            self.become(lambda n=name: self.shown("text", n), "1689"[:most], name)
            self.desk.key("BackSpace")
            self.become(lambda n=name: self.shown("text", n), "1689"[:most - 1], name)
            self.desk.type("2")
        self.turn_to("Reading")
        self.put("Speak Time Every, in minutes", "")
        self.put("Your Name", "")
        self.apply()
        expected = {"SpeakTimeInterval": 0, "UserName": "Buddy", "BalloonCharactersPerLine": 12, "BalloonTotalLines": 12,
                    "RemAlertCloseTime": 12}
        self.become(lambda: self.settings(expected), {name: in_file(value) for name, value in expected.items()})
        self.assertEqual(self.shown("text", "Speak Time Every, in minutes"), "0")
        self.assertEqual(self.shown("text", "Your Name"), "Buddy")

    def test_a_folder_without_characters_is_reported_and_no_keeps_the_path(self):
        self.start_here()
        self.open_options()
        self.put("Characters Location", self.desk.home + "/")
        self.click(self.page["push button", "Apply"])
        self.assertIn(self.desk.home, self.box_text("Voxmate - Path Error"))
        self.press("No")
        self.desk.gone("Voxmate - Path Error")
        self.assertEqual(self.desk.read_settings()["CharacterPath"], in_file(self.cast))
        self.become(lambda: self.shown("text", "Characters Location"), self.cast, "the previous path in the box")


class Keyboard(OptionsCase):
    values = {"GreetingEnabled": 1, "GreetingType": 0, "RemAlertClose": 1}

    def focused(self):
        return next((key for key, node in self.page.items() if key[0] != "page tab" and key[0] != "filler"
                     and self.is_a(node, "FOCUSED")), None)

    def press_key(self, key):
        """Presses a key and returns the control that then has the focus."""
        before = self.focused()
        self.desk.key(key)
        end = time.monotonic() + 1
        while self.focused() in (before, None) and time.monotonic() < end:
            time.sleep(0.01)
        return self.focused()

    def group_of(self, key):
        """All option buttons of the frame that a given one is in."""
        names = list(self.page)
        first = max(i for i, (role, _) in enumerate(names[:names.index(key)]) if role == "panel")
        group = []
        for role, name in names[first + 1:]:
            if role != "radio button":
                break
            group.append((role, name))
        return group

    def chosen(self, group):
        """The chosen option of a group, as a list; None while the choice changes."""
        on = [option for option in group if self.shown(*option) == "on"]
        return on if len(on) == 1 else None

    def walk(self, group):
        """Visits all options of a group, which has up to two columns of up to three buttons, by the arrow keys."""
        chosen = set()
        for key in ("Up", "Up", "Left", "Down", "Down", "Up", "Up", "Right", "Down"):
            self.desk.key(key)
            time.sleep(0.03)
            # The choice may move from one button to the next while they are read.
            on = desktop.wait_for(lambda: self.chosen(group), what="one chosen option of " + group[0][1])
            chosen.update(on)
        self.assertEqual(chosen, set(group))

    def test_the_keyboard_alone_reaches_every_control_of_each_tab_and_changes_options(self):
        self.start_here()
        self.open_options()
        kinds = ("push button", "check box", "text", "combo box")
        for number, tab in enumerate(TABS):
            self.page = desktop.wait_for(lambda t=tab: self.page_of(t), what=f"the tab {tab}")
            for _ in range(30):
                if self.focused() == ("push button", "Cancel"):
                    break
                self.press_key("Tab")
            wanted = [key for key in self.page if key[0] in kinds and self.enabled(*key)]
            wanted += [key for key in self.page if key[0] == "radio button" and self.shown(*key) == "on"]
            reached = []
            while not reached or reached[-1] != ("push button", "Cancel"):
                reached.append(self.press_key("Tab"))
                if reached[-1] and reached[-1][0] == "radio button":
                    self.walk(self.group_of(reached[-1]))
                self.assertLess(len(reached), 40, "the keyboard does not go round")
            self.assertEqual(sorted(reached), sorted(wanted + [("page tab list", tab)]), tab)
            # Goes to the next tab, once from the tabs themselves, once from a control.
            if number == 1:
                while self.focused() != ("page tab list", tab):
                    self.press_key("Tab")
                self.desk.key("Right")
            elif number < 3:
                while self.focused()[1] in ("OK", "Cancel", "Apply", "Default"):
                    self.press_key("Tab")
                self.desk.key("ctrl+Tab")

    def test_escape_cancels_and_enter_is_ok(self):
        self.start_here()
        self.settle()  # while the greeting is spoken, Escape silences that
        before = self.desk.read_settings()
        for key, ticked in (("Escape", 0), ("Return", 1)):
            self.open_options()
            self.click(self.page["text", "Total lines"])
            while self.focused() != ("check box", "Auto Hide"):
                self.press_key("shift+Tab")
            self.desk.key("space")
            self.become(lambda: self.shown("check box", "Auto Hide"), "off")
            self.desk.key(key)
            self.closed()
            expected = dict(before, BalloonAutoHide=in_file(1 - ticked))
            self.become(self.desk.read_settings, expected, key)


class Buttons(OptionsCase):
    def test_a_preview_shows_the_chosen_alert_and_touches_no_reminder(self):
        self.start_here()
        self.open_options()
        self.turn_to("Reminders")
        self.choose("Blue", "Corner")
        self.click(self.page["push button", "Preview"])
        window = desktop.wait_for(lambda: self.desk.windows("^frmAlert$"), what="the alert")[0]
        self.assertTrue(any("Test reminder window." in text for text in self.desk.texts()))
        right, bottom = desktop.SCREEN
        # The alert has slid up when its right edge shows the strongest colour in the lower corner.
        edge = (right - 3, bottom - 20, right - 2, bottom - 19)
        self.become(lambda: self.desk.screenshot(box=edge).getpixel((0, 0)), (160, 195, 255))
        desktop.wait_for(lambda: sum(self.desk.window_rect(window)[1::2]) == bottom, what="the alert in its place")
        x, y, width, height = self.desk.window_rect(window)
        self.desk.click_at(x + width // 2, y + height // 2)
        desktop.wait_for(lambda: not self.desk.windows("^frmAlert$"), what="the alert going away")
        self.assertEqual(self.desk.read_settings()["RemAlertColor"], in_file(3))

    def test_the_button_plays_an_animation_and_stops_it(self):
        self.install(CharacterPath=os.path.join(BUILD, "share", "voxmate", "msagent", "chars", ""), LastCharacter="Nalu")
        self.start_and_settle()
        self.open_options()
        self.desk.click(self.desk.find("Acknowledge", role="combo box"))
        time.sleep(0.3)
        # It goes round until it is stopped.
        self.desk.key("h", "e", "a", "Return")
        self.desk.find("Hearing_1", role="combo box")
        _, (x, y, width, height) = self.character_window()
        watch = Watch(self.desk, (x, y, x + width, y + height))
        self.addCleanup(watch.stop)
        self.press("Animate")
        stop = desktop.wait_for(lambda: self.buttons("Stop"), what="the button turning to Stop")[0]
        desktop.wait_for(lambda: len(watch.seen) > 5, what="the character moving")
        self.desk.click(stop)
        desktop.wait_for(lambda: self.buttons("Animate"), what="the button turning back")

    def buttons(self, name):
        return [w[2] for w in self.desk.widgets() if w[:2] == (name, "push button")]


if __name__ == "__main__":
    unittest.main()
