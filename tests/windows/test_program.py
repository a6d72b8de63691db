"""The program for Windows under Wine, as a user would meet it: seen, heard, and its settings in the registry."""

import datetime
import os
import struct
import subprocess
import time
import unittest

import numpy

from wine import CALM, PROGRAM, WineCase, desktop, sound


def reminder(title, when, description):
    """One slot of the reminder file."""
    fields = [title, f"{when:%d}", f"{when:%m}", f"{when:%Y}", f"{when:%H}", f"{when:%M}", description, "N"]
    data = b"".join(struct.pack("<H", len(field.encode())) + field.encode() for field in fields)
    return data.ljust(128, b"\0")


def colours(picture):
    return len(set(picture.convert("RGB").resize((160, 110)).getdata()))


class Program(WineCase):
    def test_it_starts_greets_and_stands_there(self):
        self.set(ShowTipAtStartUp=0, SpeakTimeInterval=0)
        begin = self.seconds()
        self.start()
        self.window("^Voxmate$")
        self.window("Voxmate character")
        self.wait_for_sound(begin, 1)
        self.window("Voxmate balloon")
        self.picture("greeting")
        self.wait_for_silence()
        self.assertGreater(sound.loud_seconds(self.heard_since(begin)), 3)
        # Everything that it draws is on show: icons, the character in its colours, no black where nothing is drawn.
        self.front("^Voxmate$")
        main = self.picture("main", "^Voxmate$")
        self.assertGreater(colours(main), 60)
        dark = (numpy.asarray(main.convert("L")) < 8).mean()
        self.assertLess(dark, 0.03)
        character = numpy.asarray(self.picture("character", "Voxmate character").convert("RGB")).astype(int)
        corner = character[2, 2]
        self.assertGreater((abs(character - corner).sum(axis=2) > 60).mean(), 0.2)
        self.assertGreater((abs(character - corner).sum(axis=2) < 6).mean(), 0.2)

    def test_a_typed_sentence_is_spoken_and_stop_ends_it(self):
        self.start_calmly()
        self.front("^Voxmate$")
        begin = self.seconds()
        self.desk.type("This sentence was typed under another system.")
        self.desk.key("ctrl+Return")
        self.wait_for_sound(begin)
        self.window("Voxmate balloon")
        self.wait_for_silence()
        self.assertGreater(sound.loud_seconds(self.heard_since(begin)), 1.5)
        self.desk.key("ctrl+a")
        self.desk.type(" ".join(["A long text has many words."] * 20))
        begin = self.seconds()
        self.desk.key("ctrl+Return")
        self.wait_for_sound(begin, 1)
        self.desk.key("Escape")
        stopped = self.seconds()
        self.wait_for_silence()
        # What the sink itself still had is heard, and no more.
        self.assertLess(sound.loud_seconds(self.heard_since(stopped)), 0.7)

    def test_settings_go_to_the_registry_and_come_from_there(self):
        self.start_calmly(Pitch=120)
        self.assertEqual(self.value("Pitch"), 120)
        self.front("^Voxmate$")
        self.desk.key("alt+p")
        self.desk.key("Right")
        desktop.wait_for(lambda: self.value("Pitch") == 121, what="the pitch in the registry", step=0.5)
        self.desk.key("alt+f")
        self.desk.key("o")
        self.window("Options")
        self.picture("options", "Options")
        self.desk.key("Escape")
        self.gone("Options")

    def test_tip_about_and_reminders_come_up(self):
        self.set(**{**CALM, "ShowTipAtStartUp": 1, "AutoReadTip": 0})
        self.start()
        self.window("Tip of the Day")
        self.picture("tip", "Tip of the Day")
        self.front("Tip of the Day")
        self.desk.key("Return")
        self.gone("Tip of the Day")
        self.front("^Voxmate$")
        for menu, item, title, name, close in (("alt+h", "a", "About", "about", "Escape"),
                                               ("alt+r", "s", "Reminder", "editor", "alt+c")):
            self.desk.key(menu)
            self.desk.key(item)
            self.window(title)
            # It is there before it is drawn.
            desktop.wait_for(lambda title=title, name=name: colours(self.picture(name, title)) > 20, what="its picture")
            self.desk.key(close)
            self.gone(title)
        self.desk.key("alt+x")
        self.picture("extras")
        self.desk.key("Escape")

    def test_a_reminder_is_announced_in_its_window(self):
        self.due(ReminderType=1)
        self.window("Remind")
        self.picture("notice")

    def test_a_reminder_slides_up_as_an_alert(self):
        self.due(ReminderType=0, RemAlertClose=1, RemAlertCloseTime=4)
        alert = desktop.wait_for(self.alert, timeout=120, what="the alert")
        self.picture("alert")
        heights = [alert[1]]

        def ended():
            place = self.alert()
            if place:
                heights.append(place[1])
            return not place

        desktop.wait_for(ended, what="the alert's end")
        self.assertGreater(len(set(heights)), 2, "the alert stood still")

    def due(self, **values):
        """Starts the program with a reminder that fell due in this minute."""
        os.makedirs(self.folder, exist_ok=True)
        while datetime.datetime.now().second > 25:
            time.sleep(0.2)
        with open(os.path.join(self.folder, "VoxmateReminders.txt"), "wb") as file:
            file.write(reminder("Tea", datetime.datetime.now(), "Milk"))
        self.set(**{**CALM, **values})
        self.start()

    def alert(self):
        """The place of the program's window that has none of the usual names; None where there is none."""
        usual = {window for title in ("^Voxmate$", "Voxmate character", "Voxmate balloon", "^Tip")
                 for window in self.desk.windows(title)}
        for window in self.desk.windows("voxmate.exe", by="--class"):
            try:
                place = self.desk.window_rect(window)
            except AssertionError:  # gone meanwhile
                continue
            if window not in usual and place[2] > 60 and place[3] > 30:
                return place
        return None

    def test_the_character_is_dragged(self):
        self.start_calmly()
        x, y, width, height = self.desk.window_rect(self.window("Voxmate character"))
        from_, to = (x + width // 2, y + height // 2), (500, 400)
        steps = [(from_[0] + (to[0] - from_[0]) * i // 8, from_[1] + (to[1] - from_[1]) * i // 8) for i in range(9)]
        self.desk.drag(*steps)
        self.assertLess(abs(self.desk.window_rect(self.window("Voxmate character"))[0] + width // 2 - 500), 60)

    def test_a_click_beside_the_character_goes_through_its_window(self):
        self.start_calmly()
        x, y, _, _ = self.desk.window_rect(self.window("Voxmate character"))
        self.desk.run("xdotool", "mousemove", str(x + 3), str(y + 3))
        under = self.desk.run("xdotool", "getmouselocation", "--shell").decode()
        self.assertNotIn(f"WINDOW={self.window('Voxmate character')}", under)

    def test_a_second_copy_brings_the_first_to_the_front_and_ends(self):
        self.start_calmly()
        x, y, _, _ = self.desk.window_rect(self.window("^Voxmate$"))
        other = self.desk.neighbour("Other window")[1]
        self.desk.run("xdotool", "windowactivate", "--sync", str(other))
        second = self.start()
        # It says that there is another one.
        box = desktop.wait_for(lambda: [w for w in self.desk.windows("Voxmate")
                                        if self.desk.window_rect(w)[:2] != (x, y) and self.desk.window_rect(w)[3] < 250
                                        and self.desk.window_rect(w)[2] > 260], what="the box of the second copy")
        self.picture("second")
        self.desk.run("xdotool", "windowactivate", "--sync", box[-1])
        self.desk.key("Return")
        self.assertEqual(second.wait(desktop.PATIENCE), 0)

    def test_it_hides_in_the_tray_and_comes_back(self):
        tray = self.desk.tray("right")
        self.addCleanup(tray.wait, desktop.PATIENCE)
        self.addCleanup(tray.terminate)
        self.start_calmly(ShowCharacterAtStart=1)
        self.front("^Voxmate$")
        self.desk.key("alt+f")
        self.desk.key("s")
        self.gone("^Voxmate$")
        panel = self.desk.windows("^panel$")[-1]
        x, y, width, height = self.desk.window_rect(panel)
        place = (x + width - height // 2, y + height // 2)
        self.picture("tray")
        for _ in range(2):
            self.desk.run("xdotool", "mousemove", *map(str, place), "click", "1")
        self.window("^Voxmate$")

    def test_without_a_sound_device_it_says_so(self):
        self.set(**CALM)
        self.start(PULSE_SERVER="unix:/nowhere", ALSA_CONFIG_PATH="/dev/null")
        self.window("^Voxmate$")
        self.window("Voxmate character")
        self.front("^Voxmate$")
        self.desk.type("Nobody hears this.")
        self.desk.key("ctrl+Return")
        self.picture("no-device")
        self.window("Voxmate - ")

    def test_help_and_version_are_printed(self):
        done = subprocess.run(["wine", PROGRAM, "--version"], env=self.env, stdout=subprocess.PIPE, check=True)
        self.assertIn(b"Voxmate", done.stdout)


if __name__ == "__main__":
    unittest.main()
