"""The first evening of a new user, from the first greeting to the last word."""

import datetime
import os
import time
import unittest
import wave

import numpy

import desk as desktop
import sound
from program import BUILD, ROOT, ordinal
from tour import BEGINNING, PICTURES, TourCase

REMINDED = "You have a reminder"


class FirstEvening(TourCase):
    """From the command that the README names first to the last word, in one run and one recording, with a new user's
    settings."""

    def start_as_new_user(self):
        self.desk.remove_settings()
        if BUILD == os.path.join(ROOT, "build", "release"):
            return self.start(path=os.path.join(ROOT, "run"))
        # What the command does if it has nothing to build.
        self.desk.run(os.path.join(ROOT, "packaging", "install-defaults"), os.path.join(BUILD, "share", "voxmate"))
        return self.start()

    def keep_recording(self):
        os.makedirs(PICTURES, exist_ok=True)
        with wave.open(os.path.join(PICTURES, "evening.wav"), "wb") as file:
            file.setparams((1, 2, sound.RATE, 0, "NONE", ""))
            file.writeframes((self.recorder.snapshot()[0] * 32767).astype(numpy.int16).tobytes())

    def add_reminder(self, title, description):
        """Sets a reminder for the next minute in the editor."""
        self.open_editor()
        field = self.desk.find("Description", role="text")
        when = self.minute(room=12) + datetime.timedelta(minutes=1)
        for name, text in (("Title", title), ("Time", f"{when:%H:%M}"), ("Description", description)):
            self.desk.click(self.desk.find(name, role="text") if name != "Description" else field)
            self.desk.key("ctrl+a")
            self.desk.type(text)
        self.press("Add")
        desktop.wait_for(lambda: len(self.slots()) == 1, what="the reminder in the file")
        self.press("Close")
        self.desk.find("Do you want to save changes ?")
        self.press("No")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate Reminders"), what="the editor going away")

    def test_greeted_read_to_reminded_told_a_tip_put_away_and_gone(self):
        tray = self.desk.tray("left")
        self.addCleanup(tray.terminate)
        self.listen()
        begin = self.now()
        self.start_as_new_user()
        self.desk.find("Text to read")
        today = datetime.datetime.now()
        self.hear(begin, f"Today is {today:%A}, {ordinal(today.day)} of {today:%B, %Y} and Time now is {today:%-I:%M %p}",
                  seconds=BEGINNING)
        desktop.wait_for(lambda: self.desk.windows("^Tip of the Day$"), what="the tip of the first start")
        self.settle(60)
        self.press("OK")

        begin = self.now()
        text = "Good evening, this is my first text."
        self.type_text(text)
        self.press("Speak the textbox text")
        self.wait_for_sound(begin, "the text")
        self.settle()
        self.assertAlmostEqual(self.sound_since(begin), self.rendered_length(text), delta=0.3)

        self.add_reminder("Tea", "Green tea")
        window = desktop.wait_for(self.alerts, 90, what="the alert")[0]
        self.hear(self.now() - 2 * sound.RATE, REMINDED, seconds=BEGINNING)
        time.sleep(1)
        self.desk.screenshot(os.path.join(PICTURES, "evening-alert.png"))
        self.settle()

        # A reminder that waits for its answer is announced in the other kind of window, too.
        self.press("User Options")
        self.desk.click(self.desk.find("Reminders", role="page tab"))
        self.desk.click(self.desk.find("Alert Window", role="combo box"))
        time.sleep(0.3)
        self.desk.key("Down", "Return")
        begin = self.now()
        self.press("OK")
        self.saved("ReminderType", "dword:00000001")
        desktop.wait_for(lambda: self.desk.windows("^Voxmate Reminder$"), what="the notice")
        self.hear(begin, REMINDED, seconds=BEGINNING)
        self.settle()
        self.desk.screenshot(os.path.join(PICTURES, "evening-notice.png"))
        self.press("OK")
        desktop.wait_for(lambda: self.done() == ["Y"], what="the mark in the file")
        x, y, width, height = self.desk.window_rect(window)
        self.desk.click_at(x + width // 2, y + height // 2)
        desktop.wait_for(lambda: not self.alerts(), what="the alert going away")
        self.settle()

        begin = self.now()
        self.choose_by_keys("alt+f", "Tip of the Day", "t")
        desktop.wait_for(lambda: self.desk.windows("^Tip of the Day$"), what="the tip")
        self.settle()
        if self.sound_since(begin) < 1:
            self.press("Read Tip")
            self.settle()
        self.assertGreater(self.sound_since(begin), 1, "the tip")
        self.press("OK")

        self.choose_by_keys("alt+f", "Put in System Tray", "s")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate$"), what="the hidden window")
        self.desk.run("xdotool", "mousemove", "16", str(desktop.SCREEN[1] - 16))
        time.sleep(0.3)
        self.desk.run("xdotool", "click", "--repeat", "2", "--delay", "80", "1")
        desktop.wait_for(lambda: self.desk.windows("^Voxmate$"), what="the window")
        self.choose_by_keys("alt+f", "Exit", "e")
        self.has_ended()
        time.sleep(0.5)
        begin = self.now()
        time.sleep(0.5)
        self.assertEqual(self.sound_since(begin), 0, "silence at the end")
        self.keep_recording()


if __name__ == "__main__":
    unittest.main()
