"""What is applied in the options dialog takes effect at once: on the present character and its balloon, in what is
heard, at the next start, and in coming reminders."""

import datetime
import os
import sys
import threading
import time
import unittest

import desk as desktop
from disc import disc, write_disc
from program import IDLE, ROOT, Watch, ordinal, spoken_time
from test_options import OptionsCase
from test_reminders import QUIET, ReminderCase, record

sys.path.insert(0, os.path.join(ROOT, "tests", "files"))
from acs_maker import animation, frame, wave  # noqa: E402  pylint: disable=wrong-import-position

WHEN = datetime.datetime(2004, 3, 7, 9, 5)
TEXT = "One two three four five six seven eight"
LOUD = 0.005  # seconds of sound that count as heard


class EffectsCase(OptionsCase):
    """Recognises by the sound what is said: the recording is compared with the engine's own rendering of the words."""

    def install(self, **values):
        # The only voice that says the same text always in the same way.
        super().install(**{"LastSpeechEngine": "Flite KAL (American English)", "Pitch": 105, "Speed": 220, **values})

    def setUp(self):
        super().setUp()
        self.listen()

    def start_here(self):
        super().start_here()
        # The windows stand beside one another, so that each can be clicked.
        self.desk.run("xdotool", "windowmove", self.main_window(), "720", "40")

    def open_options(self):
        super().open_options()
        window = desktop.wait_for(lambda: self.desk.windows("^Voxmate Options$"), what="the dialog")[-1]
        self.desk.run("xdotool", "windowmove", window, "20", "40")
        # The toolkit learns of the move a little later.
        desktop.wait_for(lambda: self.desk.rect(self.dialog)[0] < 40, what="the dialog beside the main window")

    def set(self, tab, *changes):
        """Makes changes on a tab, each a kind, a name and the value that the control then shows, and applies them."""
        self.turn_to(tab)
        for change in changes:
            self.change(*change)
        self.apply()

    def silence(self):
        self.press("Stop Everything !!!")
        self.desk.find(IDLE)

    def quiet(self, begin, seconds=1.0):
        time.sleep(seconds)
        self.assertLess(self.sound_since(begin), LOUD)


class AlertWatch:
    """Looks at the alert from before it comes until it is gone: its places, and pictures of it that are whole."""

    def __init__(self, desk):
        self.desk = desk
        self.came = self.went = None
        self.places = []
        self.pictures = []
        self._thread = threading.Thread(target=self._run, daemon=True)
        self._thread.start()

    def _run(self):
        end = time.monotonic() + desktop.PATIENCE
        while self.went is None and time.monotonic() < end:
            windows = self.desk.windows("^frmAlert$")
            if windows:
                self.came = self.came or time.monotonic()
                self._look(windows[0])
            elif self.came:
                self.went = time.monotonic()

    def _look(self, window):
        try:
            place = self.desk.window_rect(window)
            picture = self.desk.screenshot(box=(place[0], place[1], place[0] + place[2], place[1] + place[3]))
            # It may have gone on sliding, or gone, while the picture was taken.
            if self.desk.window_rect(window) == place:
                self.pictures.append(picture)
        except (AssertionError, KeyError):
            return
        self.places.append(place)

    def gone(self):
        self._thread.join()
        return self.went is not None

    def shows(self, place, colour, most=8):
        """Whether a pixel was like a colour: right and bottom are counted from the other side where they are negative."""
        pixels = [picture.getpixel((place[0] % picture.width, place[1] % picture.height)) for picture in self.pictures]
        return any(max(abs(a - b) for a, b in zip(pixel, colour)) < most for pixel in pixels)


class AtOnce(EffectsCase, ReminderCase):
    # During all of this the program counts the seconds until it tells the time again.
    values = dict(QUIET, ShowCharacterAtStart=1, SpeakTimeInterval=240, BalloonAutoHide=0, BalloonCharactersPerLine=20,
                  ReadTextBoxTextAtLeftClick=0, ReadNameWithMessages=0, UserName="Ada", RemAlertCloseTime=9)

    def character(self):
        gestures = [animation("RestPose", [frame((0, 0, 0))]), animation("DoMagic2", [frame((0, 0, 0), sound=0, duration=30)])]
        return disc(animations=gestures, sounds=[wave(6000)])

    def test_character_balloon_voice_reminders_messages_and_window_follow_each_setting(self):
        started = time.monotonic()
        self.start_here()
        self.type_text(TEXT)
        self.assertGreater(self.speak(), 4, "a word at a time")
        self.open_options()
        for follow in (self.size_follows, self.balloon_follows, self.click_follows, self.sound_effects_follow,
                       self.time_and_date_follow, self.reminders_follow, self.messages_follow, self.folder_follows,
                       self.closing_follows):
            follow()
        self.the_minute_follows(started)
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("alt+F4")
        self.has_ended()

    def size_follows(self):
        for entry, side in (("Big", 240), ("Small", 60), ("Normal", 120)):
            self.set("Character", ("combo box", "Character Size", entry))
            self.become(lambda s=side: self.character_window()[1][2:], (side, side), entry)

    def balloon(self):
        windows = self.desk.windows("^Voxmate balloon$")
        return self.desk.window_rect(windows[0]) if windows else None

    def picture(self):
        x, y, width, height = self.balloon()
        return self.desk.screenshot(box=(x + 10, y + 10, x + width - 10, y + height - 10)).tobytes()

    def speak(self):
        """Has the text in the box spoken; returns how many different pictures of the balloon were seen."""
        begin = self.now()
        self.press("Speak the textbox text")
        desktop.wait_for(lambda: self.sound_since(begin) > 0.1 and self.balloon(), what="the balloon")
        x, y, width, height = self.balloon()
        watch = Watch(self.desk, (x + 10, y + 10, x + width - 10, y + height - 10))
        self.desk.find(IDLE)
        watch.stop()
        return len({picture for _, picture in watch.seen})

    def resized(self, before, what):
        """Waits until the balloon's size changes and returns the new one."""
        return desktop.wait_for(lambda: self.balloon() and self.balloon()[2:] != before and self.balloon()[2:], what=what)

    def balloon_follows(self):
        # The balloon does not hide by itself and stays for the next steps.
        first = self.balloon()[2:]
        self.set("Character", ("text", "Total lines", "4"))
        higher = self.resized(first, "a balloon of four lines")
        self.assertEqual(higher[0], first[0])
        line = (higher[1] - first[1]) / 2
        self.assertGreater(line, 8)
        self.set("Character", ("text", "Characters per line", "40"))
        wider = self.resized(higher, "a balloon twice as wide")
        self.assertEqual(wider[1], higher[1])
        self.assertAlmostEqual(wider[0] / higher[0], 2, delta=0.3)
        self.set("Character", ("check box", "Size to text", "on"))
        fitting = self.resized(wider, "a balloon as high as its text")
        self.assertAlmostEqual(fitting[1], wider[1] - 3 * line, delta=1)
        self.choose_font("DejaVu Serif", "24")
        self.apply()
        larger = self.resized(fitting, "larger letters")
        self.assertGreater(larger[0], 1.7 * fitting[0])
        before = self.picture()
        self.choose_font("DejaVu Sans Mono", "24")
        self.apply()
        desktop.wait_for(lambda: self.picture() != before, what="other letters")
        self.set("Character", ("check box", "Auto Pace", "off"))
        self.assertEqual(self.speak(), 1, "all words at once")
        self.set("Character", ("check box", "Show Balloon", "off"))
        desktop.wait_for(lambda: not self.balloon(), what="the balloon going")
        self.set("Character", ("check box", "Show Balloon", "on"))
        desktop.wait_for(self.balloon, what="the balloon coming back")
        time.sleep(0.5)
        self.assertTrue(self.balloon(), "it stays")
        self.set("Character", ("check box", "Auto Hide", "on"))
        desktop.wait_for(lambda: not self.balloon(), what="the balloon hiding by itself")

    def click_character(self):
        _, (x, y, width, height) = self.character_window()
        begin = self.now()
        self.desk.click_at(x + width // 2, y + height // 2)
        return begin

    def click_follows(self):
        self.quiet(self.click_character(), 0.7)
        self.set("Reading", ("check box", "Read text box text on character left click", "on"))
        self.hear(self.click_character(), TEXT, seconds=1)
        self.silence()

    def sound_effects_follow(self):
        begin = self.now()
        self.set("Character", ("check box", "Enable character sound effects", "on"))
        desktop.wait_for(lambda: self.sound_since(begin) > 0.2, what="the sound of the gesture that follows")
        time.sleep(0.3)
        begin = self.now()
        self.set("Character", ("check box", "Enable character sound effects", "off"))
        self.quiet(begin)

    def clock(self, hours):
        """What the program may say as the time from now on: the minute may end before it is asked."""
        now = datetime.datetime.now()
        return [spoken_time(now + datetime.timedelta(minutes=minute), hours) for minute in (0, 1)]

    def ask(self, button, *answers):
        begin = self.now()
        self.press(button)
        self.hear(begin, *answers)
        self.silence()

    def time_and_date_follow(self):
        self.set("Reading", ("check box", "Read time in 24 Hour format", "on"))
        self.ask("What time is it?", *self.clock(24))
        self.set("Reading", ("check box", "Read time in 24 Hour format", "off"))
        self.ask("What time is it?", *self.clock(12))
        self.set("Reading", ("combo box", "Read System Date in", "DECEMBER-31"))
        now = datetime.datetime.now()
        self.ask("What's today's date?", f"Today is {now:%A}, {now:%B} {ordinal(now.day)}")

    def announce(self):
        """Makes the running program find an overdue reminder in its file."""
        self.write(record("Tea", WHEN, "Green"))
        begin = self.now()
        self.reload()
        return begin

    def says(self, begin, *texts):
        for text in texts:
            self.hear(begin, text)
        self.settle()
        expected = sum(self.rendered_length(text) for text in texts)
        self.assertAlmostEqual(self.sound_since(begin) / expected, 1, delta=0.06, msg="and nothing else")

    def notice(self):
        """Waits for the notice's window; returns whether it is kept above others."""
        window = desktop.wait_for(lambda: self.desk.windows("^Voxmate Reminder$"), what="the notice")[0]
        self.desk.find("Snooze", role="push button")
        return "_NET_WM_STATE_ABOVE" in self.desk.properties(window, "_NET_WM_STATE")

    def snooze(self):
        self.settle()
        begin = self.now()
        self.press("Snooze")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate Reminder$"), what="the notice going away")
        return begin

    def alert(self):
        return desktop.wait_for(self.alerts, step=0.005, what="the alert")[0]

    def reminders_follow(self):
        self.set("Reminders", ("combo box", "Show Reminder as", "Normal Window"), ("check box", "Always on top", "off"),
                 ("check box", "Speak below sentence while showing reminder", "on"), ("text", "Sentence to speak", "Listen please"),
                 ("check box", "Title", "on"), ("check box", "Time", "on"), ("check box", "Next schedule if snoozed", "on"))
        begin = self.announce()
        # Users know it so: the notice is kept above other windows when the box is not ticked.
        self.assertTrue(self.notice())
        self.says(begin, "Listen please", "Title: Tea\r\n", "Time: 9:05 AM\r\n")
        self.hear(self.snooze(), "Your reminder has been snoozed by 10 minute(s)\r\nNew schedule for this reminder is",
                  seconds=1.5)
        self.silence()

        self.set("Reminders", ("check box", "Always on top", "on"), ("check box", "Speak below sentence while showing reminder", "off"),
                 ("check box", "Title", "off"), ("check box", "Time", "off"), ("check box", "Date", "on"),
                 ("check box", "Description", "on"), ("check box", "Next schedule if snoozed", "off"))
        begin = self.announce()
        self.assertFalse(self.notice())
        self.says(begin, "Date: Sunday, March 7th\r\n", "Description: Green")
        self.quiet(self.snooze())

        self.set("Reminders", ("check box", "Date", "off"), ("check box", "Description", "off"),
                 ("combo box", "Show Reminder as", "Alert Window"), ("radio button", "Fade", "on"),
                 ("radio button", "Corner", "on"), ("radio button", "Square", "on"), ("radio button", "Red", "on"),
                 ("check box", "Auto Close in", "on"), ("text", "Auto close time in seconds", "4"))
        watch = AlertWatch(self.desk)
        begin = self.announce()
        self.assertTrue(watch.gone(), "it does not close by itself")
        self.assertEqual(len({place[1] for place in watch.places}), 1, "it slides")
        self.assertTrue(watch.shows((3, 3), (255, 255, 255), 10), "white in the upper corner: the colour comes from the lower one")
        self.assertTrue(watch.shows((-3, -3), (255, 200, 200)), "red, and in the very corner")
        # It comes and goes in half a second each; before, it was set to stay for nine.
        self.assertGreater(watch.went - watch.came, 4)
        self.assertLess(watch.went - watch.came, 9)
        self.become(self.done, ["Y"])
        self.quiet(begin, 0)

        self.set("Reminders", ("radio button", "Scroll", "on"), ("radio button", "Tube", "on"), ("radio button", "Round corners", "on"),
                 ("radio button", "Yellow", "on"), ("check box", "Auto Close in", "off"))
        watch = AlertWatch(self.desk)
        self.announce()
        window = self.alert()
        bottom = desktop.SCREEN[1]
        desktop.wait_for(lambda: sum(self.desk.window_rect(window)[1::2]) == bottom, what="the alert in its place")
        desktop.wait_for(lambda: watch.shows((80, 3), (255, 255, 192)), what="yellow above")
        desktop.wait_for(lambda: watch.shows((-3, -3), (0x3b, 0x6e, 0x8f), 1), what="the desktop beside a round corner")
        x, y, width, height = self.desk.window_rect(window)
        self.desk.click_at(x + width // 2, y + height // 2)
        self.assertTrue(watch.gone(), "it does not go at a click")
        self.assertGreater(len({place[1] for place in watch.places}), 3, "it does not slide")

    def help_box(self, said):
        """Makes the program show a message; its first second or two must be read aloud if `said` is given, otherwise
        nothing."""
        begin = self.now()
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("alt+h", "h")
        self.desk.find("Voxmate - Help", role="alert")
        if said:
            self.hear(begin, said, seconds=1.5)
        else:
            self.quiet(begin)
        self.desk.key("Return")
        self.desk.gone("Voxmate - Help")
        if said:
            self.silence()

    def messages_follow(self):
        message = "Help will be available very soon. Author is preparing the help."
        self.help_box(None)
        self.set("Reading", ("check box", "Also read application messages when showing", "on"))
        self.help_box(message)
        self.set("Reading", ("check box", "Always read my name before messages and greetings", "on"), ("text", "Your Name", "Tom"))
        self.help_box("Dear Tom, \r\n" + message)

    def folder_follows(self):
        other = os.path.join(self.desk.home, "others", "")
        write_disc(other, "Dot", "Spot")
        self.turn_to("Character")
        self.browse(other.rstrip("/"))
        self.apply()
        self.desk.find("DOT")
        self.assertEqual(len(self.desk.windows("^Voxmate character$")), 1)
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("alt+f", "c")
        desktop.wait_for(lambda: {"Dot", "Spot"} <= set(self.desk.texts()), what="the characters in the menu")
        self.assertNotIn("Disc", self.desk.texts())
        self.desk.key("Escape", "Escape", "Escape")

    def closing_follows(self):
        # Without a tray the window is minimised.
        window = self.main_window()
        self.set("Misc", ("check box", "When closed minimize to system tray", "on"))
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("alt+F4")
        self.iconified(window)
        self.desk.run("xdotool", "windowactivate", "--sync", window)
        self.desk.find("Text to read")
        self.set("Misc", ("check box", "When closed minimize to system tray", "off"))

    def the_minute_follows(self, started):
        begin = self.now()
        self.set("Reading", ("text", "Speak Time Every, in minutes", "1"))
        # A minute after the start, or within a second if that has passed.
        rest = 60 - (time.monotonic() - started)
        if rest > 4:
            self.quiet(begin, rest - 4)
        desktop.wait_for(lambda: self.sound_since(begin) > 0.5, what="the time told by itself")
        self.hear(begin, *self.clock(12), seconds=1.2)


class NextStart(EffectsCase):
    values = {"ShowCharacterAtStart": 0, "UserName": "Ada"}

    def restart(self):
        """Starts the program anew and returns the sample from which to listen."""
        self.silence()
        begin = self.now()
        super().restart()
        return begin

    def test_greeting_introduction_and_character_come_as_set(self):
        self.start_here()
        self.settle()
        self.assertFalse(self.desk.windows("^Voxmate character$"))
        self.open_options()
        self.set("Misc", ("check box", "Enable startup greeting", "on"), ("radio button", "Other Only", "on"),
                 ("text", "Other Greeting", "Nice to see you"))
        begin = self.restart()
        self.hear(begin, "Hello Ada.")
        self.hear(begin, "Nice to see you")
        self.assertTrue(self.desk.windows("^Voxmate character$"))
        self.open_options()
        self.set("Misc", ("check box", "Speak character intro at startup", "on"))
        begin = self.restart()
        self.hear(begin, "Hello Ada. My name is Disc")
        self.open_options()
        self.set("Misc", ("check box", "Show character at startup", "off"))
        begin = self.restart()
        self.settle()
        self.assertFalse(self.desk.windows("^Voxmate character$"))
        self.quiet(begin, 0)


if __name__ == "__main__":
    unittest.main()
