"""The options dialog on a real display: every setting changed by hand, in the file at once, in effect, and back after a
restart."""

import time
import unittest

import desk as desktop
from program import ProgramCase, Watch

# What each control of a tab is changed to, and the values then in the file, in the order in which it is done.
CHECKS = {  # tab -> check box -> setting; each is toggled
    "Character": {"Enable character sound effects": "EnableSoundEffects", "Size to text": "SizeBallonToText",
                  "Auto Hide": "BalloonAutoHide", "Auto Pace": "BalloonAutoPace"},
    "Reading": {"Read time in 24 Hour format": "TimeIn24Hour", "Read text box text on character left click": "ReadTextBoxTextAtLeftClick",
                "Always read my name before messages and greetings": "ReadNameWithMessages",
                "Also read application messages when showing": "ReadMessages"},
    "Misc": {"When closed minimize to system tray": "CloseToTray"},
    "Reminders": {"Title": "ReminderTitleSpeak", "Date": "ReminderDateSpeak", "Time": "ReminderTimeSpeak",
                  "Description": "ReminderDescSpeak", "Next schedule if snoozed": "ReminderNextSchSpeak",
                  "Auto Close in": "RemAlertClose"},
}
TEXTS = {  # tab -> text box -> (setting, text)
    "Character": {"Characters per line": ("BalloonCharactersPerLine", "24")},
    "Reading": {"Speak Time Every": ("SpeakTimeInterval", "45"), "Your Name": ("UserName", "Ada")},
    "Misc": {"Other Greeting": ("OtherGreeting", "Nice to see you")},
    "Reminders": {"Sentence to speak": ("ReminderSentence", "Listen please"), "Auto close time": ("RemAlertCloseTime", "7")},
}
CHOICES = {  # tab -> option button -> (setting, index)
    "Misc": {"Other Only": ("GreetingType", 2)},
    "Reminders": {"Fade": ("RemAlertAction", 1), "Corner": ("RemAlertGradient", 0), "Square": ("RemAlertShape", 0),
                  "Red": ("RemAlertColor", 2)},
}
LISTS = {  # tab -> list's present entry -> (setting, keys, index, entry then)
    "Character": {"Normal": ("CharacterSize", "Down", 2, "Big")},
    "Reading": {"31-DECEMBER-": ("DateFormat", "Down", 3, "31-DECEMBER")},
}


class Options(ProgramCase):
    defaults = {"GreetingEnabled": 1, "GreetingType": 0, "SpeakTimeInterval": 0, "ReadMessages": 0, "EnableSoundEffects": 0}

    def open_options(self):
        self.press("User Options")
        desktop.wait_for(lambda: self.desk.windows("^Voxmate Options$"), 5, what="the dialog")
        self.desk.find("Apply", role="push button")

    def turn_to(self, tab):
        self.desk.click(self.desk.find(tab, role="page tab"))
        time.sleep(0.2)

    def number(self, setting):
        return int(self.desk.read_settings()[setting].removeprefix("dword:"), 16)

    def checked(self, name, role="check box"):
        return self.desk.find(name, role=role).getState().contains(self.desk.accessible().STATE_CHECKED)

    def put(self, name, text):
        self.desk.click(self.desk.find(name, role="text"))
        self.desk.key("ctrl+a")
        self.desk.type(text)

    def test_every_setting_is_in_the_file_in_effect_and_back_after_a_restart(self):
        self.start_and_settle()
        _, (_, _, normal_width, _) = self.character_window()
        before = {setting: self.number(setting) for boxes in CHECKS.values() for setting in boxes.values()}
        expected = {setting: 1 - value for setting, value in before.items()}
        self.open_options()
        for tab in ("Character", "Reading", "Misc", "Reminders"):
            self.turn_to(tab)
            for entry, (setting, keys, index, _) in LISTS.get(tab, {}).items():
                self.desk.click(self.desk.find(entry, role="combo box"))
                time.sleep(0.3)
                self.desk.key(keys, "Return")
                expected[setting] = index
            for name in CHECKS[tab]:
                self.desk.click(self.desk.find(name, role="check box"))
            for name, (setting, index) in CHOICES.get(tab, {}).items():
                self.desk.click(self.desk.find(name, role="radio button"))
                expected[setting] = index
            for name, (setting, text) in TEXTS[tab].items():
                self.put(name, text)
                expected[setting] = int(text) if text.isdigit() else f'"{text}"'
        self.desk.click(self.desk.find("Apply", role="push button"))

        def stored():
            settings = self.desk.read_settings()
            return {name: int(settings[name].removeprefix("dword:"), 16) if isinstance(value, int) else settings[name]
                    for name, value in expected.items()}

        for _ in range(50):
            if stored() == expected:
                break
            time.sleep(0.1)
        self.assertEqual(stored(), expected)
        # In effect on the character that stands there.
        desktop.wait_for(lambda: self.character_window()[1][2] > 1.3 * normal_width, 5, what="the big character")
        self.assertFalse(self.desk.find("Apply", role="push button").getState().contains(self.desk.accessible().STATE_ENABLED))
        self.press("OK")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate Options$"), 5, what="the dialog going away")
        self.desk.end(self.program)

        self.start_and_settle()
        self.assertGreater(self.character_window()[1][2], 1.3 * normal_width)
        self.open_options()
        for tab in ("Character", "Reading", "Misc", "Reminders"):
            self.turn_to(tab)
            for name, setting in CHECKS[tab].items():
                self.assertEqual(self.checked(name), expected[setting] == 1, name)
            for name in CHOICES.get(tab, {}):
                self.assertTrue(self.checked(name, "radio button"), name)
            for name, (_, text) in TEXTS[tab].items():
                self.assertEqual(self.desk.find(name, role="text").queryText().getText(0, -1), text)
            for _, _, _, entry in LISTS.get(tab, {}).values():
                self.assertTrue(any(w[:2] == (entry, "combo box") for w in self.desk.widgets()), entry)
        self.assertEqual(stored(), expected)

    def test_a_number_out_of_range_is_refused_and_nothing_is_saved(self):
        self.start_and_settle()
        before = self.desk.read_settings()
        self.open_options()
        self.put("Characters per line", "7")
        self.turn_to("Reading")
        self.put("Your Name", "Nobody")
        self.desk.click(self.desk.find("Apply", role="push button"))
        self.assertEqual(self.box_text("Voxmate - Options in Error"), "No. of characters per line must be between 8 and 255")
        self.desk.key("Return")
        self.desk.gone("Voxmate - Options in Error")
        self.assertEqual(self.desk.read_settings(), before)
        # The tab with the box in error has come to the front, with the keyboard in the box.
        box = self.desk.find("Characters per line", role="text")
        self.assertTrue(box.getState().contains(self.desk.accessible().STATE_FOCUSED))
        self.desk.key("Escape")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate Options$"), 5, what="the dialog going away")
        self.assertEqual(self.desk.read_settings(), before)

    def test_a_preview_shows_the_chosen_alert_and_touches_no_reminder(self):
        self.start_and_settle()
        self.open_options()
        self.turn_to("Reminders")
        self.press("Preview")
        window = desktop.wait_for(lambda: self.desk.windows("^frmAlert$"), 5, what="the alert")[0]
        self.assertTrue(any("Test reminder window." in text for text in self.desk.texts()))
        time.sleep(1.5)
        x, y, width, height = self.desk.window_rect(window)
        self.desk.click_at(x + width // 2, y + height // 2)
        desktop.wait_for(lambda: not self.desk.windows("^frmAlert$"), 8, what="the alert going away")

    def test_a_folder_without_characters_is_reported_and_no_keeps_the_path(self):
        self.start_and_settle()
        path = self.desk.read_settings()["CharacterPath"]
        self.open_options()
        self.put("Characters Location", self.desk.home + "/")
        self.desk.click(self.desk.find("Apply", role="push button"))
        box = self.desk.find("Voxmate - Path Error", role="alert", timeout=5)
        self.assertIsNotNone(box)
        self.press("No")
        self.desk.gone("Voxmate - Path Error")
        self.assertEqual(self.desk.read_settings()["CharacterPath"], path)
        desktop.wait_for(lambda: self.desk.find("Characters Location", role="text").queryText().getText(0, -1) == path.strip('"'),
                         5, what="the previous path in the box")

    def test_the_button_plays_an_animation_and_stops_it(self):
        self.start_and_settle()
        self.open_options()
        self.desk.click(self.desk.find("Acknowledge", role="combo box"))
        time.sleep(0.3)
        self.desk.key("d", "o", "m", "Return")
        self.desk.find("DoMagic1", role="combo box", timeout=3)
        _, (x, y, width, height) = self.character_window()
        watch = Watch(self.desk, (x, y, x + width, y + height))
        self.addCleanup(watch.stop)
        self.press("Animate")
        stop = desktop.wait_for(lambda: self.buttons("Stop"), 3, what="the button turning to Stop")[0]
        desktop.wait_for(lambda: len(watch.seen) > 5, 3, what="the character moving")
        self.desk.click(stop)
        desktop.wait_for(lambda: self.buttons("Animate"), 3, what="the button turning back")

    def buttons(self, name):
        return [w[2] for w in self.desk.widgets() if w[:2] == (name, "push button")]


if __name__ == "__main__":
    unittest.main()
