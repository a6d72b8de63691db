"""Uses the running program without pause and watches what it consumes: memory, threads, handles, windows, files.

Each round is one user action, chosen at random. Every few rounds the program is brought to rest and measured. At the
end every reminder must have been announced and answered, nothing that the rounds opened may be left, and the memory
during the last tenth of the time may be at most 2 MB above that of the second tenth."""

import csv
import datetime
import os
import random
import statistics
import sys
import time
import unittest
import wave

import numpy
from PIL import Image, ImageDraw

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "desktop"))
import desk as desktop  # noqa: E402  pylint: disable=wrong-import-position
from program import BUILD, IDLE  # noqa: E402  pylint: disable=wrong-import-position
from test_reminders import fields  # noqa: E402  pylint: disable=wrong-import-position
from tour import TourCase  # noqa: E402  pylint: disable=wrong-import-position

RESULTS = os.path.join(BUILD, "soak")
GROWTH = 2048      # KiB by which the program's own memory may grow
REST = 4           # seconds after the last window has gone until the program has given free memory back
LOOKS = 40         # at the memory, 0.2 seconds apart: meanwhile an idle play comes to its end, which needs pictures
VOICES = 8         # entries of the list of voices that are gone through
ROUNDS = 16        # rounds between two measurements
BEGIN = datetime.datetime(2031, 3, 4, 6, 0)  # the program's clock at the start; no soak reaches its midnight
FAKETIME = "/usr/lib/x86_64-linux-gnu/faketime/libfaketime.so.1"
SENTENCE = "The old clock in the hall has stopped again, and nobody knows why. "
OPTIONS = "Voxmate Options"
EDITOR = "Voxmate Reminders - CURRENTLY ENABLED"
NOTICE = "Voxmate Reminder"
WALLPAPER = (0x3b, 0x6e, 0x8f)


class Soak(TourCase):
    defaults = {"GreetingEnabled": 0, "SpeakTimeInterval": 0, "ReminderSentenceSpeak": 0, "RemAlertClose": 0}
    minutes = 60

    # The clock.

    def set_clock(self):
        """Sets the program's clock `ahead` seconds before the machine's."""
        with open(self.clock_file, "w", encoding="ascii") as file:
            file.write(f"{int(self.ahead):+d}")

    def clock(self):
        return datetime.datetime.now() + datetime.timedelta(seconds=self.ahead)

    def move_clock(self, minutes):
        self.ahead += minutes * 60
        self.set_clock()

    # Set-up.

    def set_up_soak(self):
        # For each cell of a list that is read over the accessibility bus the toolkit (6.4) keeps some 100 bytes for good.
        desktop.unread_roles.update(("tree", "table", "list"))
        self.chance = random.Random(7)
        self.clock_file = os.path.join(self.desk.home, "clock")
        self.ahead = (BEGIN - datetime.datetime.now()).total_seconds()
        self.set_clock()
        self.texts = os.path.join(self.desk.home, "texts")
        self.temporary = os.path.join(self.desk.home, "tmp")
        for folder in (self.texts, self.temporary, RESULTS):
            os.makedirs(folder, exist_ok=True)
        with open(os.path.join(self.texts, "short.txt"), "w", encoding="utf-8") as file:
            file.write(SENTENCE * 2)
        with open(os.path.join(self.texts, "letter.doc"), "w", encoding="ascii") as file:
            file.write("{\\rtf1\\ansi " + SENTENCE * 3 + "\\par}")
        with wave.open(os.path.join(self.texts, "tone.wav"), "wb") as file:
            file.setparams((1, 2, 22050, 0, "NONE", ""))
            file.writeframes((8000 * numpy.sin(numpy.arange(33075) * 0.06)).astype("<i2").tobytes())
        self.tray = self.desk.spawn("trayer", "--edge", "bottom", "--align", "right", "--widthtype", "pixel", "--width", "64",
                                    "--height", "32")
        self.panel = desktop.wait_for(lambda: self.desk.windows("^panel$"), what="the tray")[-1]
        self.start_and_settle(TMPDIR=self.temporary, LD_PRELOAD=FAKETIME, FAKETIME_TIMESTAMP_FILE=self.clock_file,
                              FAKETIME_CACHE_DURATION="1", FAKETIME_DONT_FAKE_MONOTONIC="1", NO_FAKE_STAT="1")
        self.titles = []
        self.voices = 0
        self.measured = []

    # User actions, one method each.

    def type_a_text(self):
        self.put("Text to read", SENTENCE * self.chance.randint(1, 2))
        self.press("Speak the textbox text")

    def empty_text(self):
        self.put("Text to read", "")
        self.press("Speak the textbox text")

    def clipboard(self):
        self.put("Text to read", "Copied from here")
        self.desk.key("ctrl+a", "ctrl+c")
        self.press("Speak Clipboard Text")

    def ask(self):
        self.press(self.chance.choice(("What's today's date?", "What time is it?", "Do you know who am I ?")))

    def open_file(self, title, name):
        self.desk.find(title)
        time.sleep(0.3)
        self.desk.key("ctrl+a")
        self.desk.type(os.path.join(self.texts, name))
        self.desk.key("Return")
        self.desk.gone(title)

    def text_file(self):
        self.press("Open and Read a Text Document")
        self.open_file("Open Text File to Read...", "short.txt")

    def document(self):
        self.press("Open and Read a Word Document")
        self.open_file("Open Word File to Read...", "letter.doc")

    def wave_file(self):
        self.choose("File", "Play a WAV File")
        self.open_file("Open Text File to Read...", "tone.wav")

    def voice(self):
        """Goes up and down among the first voices, which are of both engines. What a voice is made of stays loaded, so
        that all of the hundred voices would look like growth."""
        down = self.voices // VOICES % 2 == 0
        self.voices += 1
        self.next_entry("Voice Types", keys=("Down", "Up") if down else ("Up", "Down"))

    def character(self):
        self.choose("File", "Characters", self.chance.choice(("Nalu", "Tock", "Gamp")))
        self.there()

    def there(self):
        """Waits until the character stands where it can be clicked."""
        since = [time.monotonic()]

        def seen():
            windows = self.desk.windows("^Voxmate character$")
            x, y, width, height = self.desk.window_rect(windows[0]) if len(windows) == 1 else (0, 0, 2, 2)
            x, y = x + width // 2, y + height // 2
            # The one before it may still be going, and it itself still coming.
            if self.desk.screenshot(box=(x, y, x + 1, y + 1)).getpixel((0, 0)) == WALLPAPER:
                since[0] = time.monotonic()
            return time.monotonic() - since[0] > 1
        desktop.wait_for(seen, what="the character")

    def tip(self):
        self.choose("File", "Tip of the Day")
        self.use("Next Tip")
        self.use("OK")
        self.closed("Tip of the Day")

    def options(self):
        """Applies a change on each tab, among them the character's size and the kind of reminder windows."""
        self.press("User Options")
        self.opened(OPTIONS)
        self.tab("Reminders")
        self.next_entry("Show Reminder as", OPTIONS)
        self.use("Apply")
        self.tab("Character")
        self.put("Total lines", str(self.chance.randint(2, 9)), OPTIONS)
        self.use("OK", window=OPTIONS)
        self.closed(OPTIONS)

    def tab(self, name):
        self.use(name, "page tab", OPTIONS)
        desktop.wait_for(lambda: any(c.role == "filler" and c.name == name for c in self.walk(OPTIONS)), what=f"the page {name}")

    def hide_and_show(self):
        # A text that is about to be said would show the character again at once.
        self.press("Stop Everything !!!")
        items = self.open_character_menu()
        self.desk.click_at(*items[-1])
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate character$"), what="the character going")
        self.press("Choose Character by Right Click. Show Character on Left Click")
        self.there()

    def into_the_tray(self):
        self.choose("File", "Put in System Tray")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate$"), what="the hidden window")
        x, y, width, height = desktop.wait_for(self.icons, what="the icon")[0]
        self.desk.run("xdotool", "mousemove", str(x + width // 2), str(y + height // 2))
        time.sleep(0.1)
        self.desk.run("xdotool", "click", "--repeat", "2", "--delay", "80", "1")
        desktop.wait_for(lambda: self.desk.windows("^Voxmate$"), what="the window")

    def icons(self):
        tree = self.desk.run("xwininfo", "-tree", "-id", self.panel).decode()
        return [self.desk.window_rect(line.split()[0]) for line in tree.split("\n") if '"voxmate"' in line]

    def sound_server(self):
        """Makes the sound server crash in mid-sentence and come back."""
        self.press("What time is it?")
        time.sleep(0.3)
        self.desk.kill_sound()
        time.sleep(0.5)
        self.desk.start_sound()

    def stop_everything(self):
        self.press("Stop Everything !!!")

    def reminder(self):
        """Enters a reminder, moves the clock to its minute, and answers its announcement."""
        title = f"No {len(self.titles) + 1}"
        self.titles.append(title)
        due = self.clock() + datetime.timedelta(minutes=2)
        self.choose("Reminders", "Show All Reminders")
        self.opened(EDITOR)
        self.put("Title", title, EDITOR)
        self.put("Time", f"{due:%H:%M}", EDITOR)
        self.put("Description", "Kettle", EDITOR)
        # The editor opens with the first reminder's fields, including its mark.
        if self.has(self.control("Marked as done", "check box", EDITOR).node, "CHECKED"):
            self.toggle("Marked as done", window=EDITOR)
        self.use("Add", window=EDITOR)
        desktop.wait_for(lambda: title in [fields(slot)[0] for slot in self.slots()], what=f"{title} in the file")
        self.desk.key("alt+F4")  # Escape would silence what is being spoken
        self.desk.find("Do you want to save changes ?")
        self.use("No")
        self.closed(EDITOR)
        self.move_clock(3)
        desktop.wait_for(self.announcements, what=f"the announcement of {title}")
        self.answer(snooze=self.chance.random() < 0.5)

    def announcements(self):
        return self.desk.windows("^frmAlert$") + self.desk.windows("^" + NOTICE + "$")

    def answer(self, snooze=False):
        """Answers all visible announcements."""
        while before := self.announcements():
            alerts = self.desk.windows("^frmAlert$")
            if alerts:
                x, y, width, height = self.desk.window_rect(alerts[0])
                self.desk.click_at(x + width // 2, y + height // 2)
            else:
                self.answer_notice("Snooze" if snooze else "OK")
            desktop.wait_for(lambda before=before: before != self.announcements() or self.boxes(), what="the announcement going")
            self.clear_boxes()

    def answer_notice(self, button):
        """Presses a button of a notice, unless the last one goes just now, as one does that was answered before."""
        def there():
            if not self.desk.windows("^" + NOTICE + "$"):
                return "gone"
            return next((c for c in self.walk(NOTICE) if c.name == button and c.role == "push button"), None)
        found = desktop.wait_for(there, what=f"{button} in the notice")
        if found != "gone":
            self.click(found)

    def clear_boxes(self):
        for title in self.boxes():
            self.fail(f"a box that nobody expected: {title}: {self.box_text(title)}")

    # Watching.

    def measure(self, begin):
        """Brings the program to rest, with the same character shown each time, and records the figures."""
        self.press("Stop Everything !!!")
        self.answer()
        self.choose("File", "Characters", "Nalu")
        self.there()
        self.settle()
        time.sleep(REST)
        self.clear_boxes()
        pid = self.program.pid
        status = min((self.status() for _ in range(LOOKS)), key=lambda looked: int(looked["RssAnon"].split()[0]))
        tree = self.desk.run("xwininfo", "-root", "-tree").decode()
        files = sum(len(names) for folder in (self.desk.env["XDG_CONFIG_HOME"], self.desk.env["XDG_DATA_HOME"], self.temporary,
                                              self.desk.env["XDG_RUNTIME_DIR"]) for _, _, names in os.walk(folder))
        self.measured.append({"seconds": int(time.monotonic() - begin), "anonymous": int(status["RssAnon"].split()[0]),
                              "resident": int(status["VmRSS"].split()[0]), "threads": int(status["Threads"]),
                              "handles": len(os.listdir(f"/proc/{pid}/fd")), "windows": tree.count('"voxmate"'), "files": files})

    def status(self):
        time.sleep(0.2)
        with open(f"/proc/{self.program.pid}/status", encoding="ascii") as file:
            return dict(line.split(":", 1) for line in file)

    def plot(self):
        width, height, margin = 900, 420, 60
        picture = Image.new("RGB", (width, height), "white")
        draw = ImageDraw.Draw(picture)
        seconds = [row["seconds"] for row in self.measured]
        for kind, colour in (("anonymous", "#0b5fa5"), ("resident", "#b0413e")):
            values = [row[kind] / 1024 for row in self.measured]
            top = max(row["resident"] for row in self.measured) / 1024 * 1.1
            points = [(margin + (width - 2 * margin) * s / max(seconds[-1], 1), height - margin - (height - 2 * margin) * v / top)
                      for s, v in zip(seconds, values)]
            draw.line(points, fill=colour, width=2)
            draw.text((points[-1][0] - 150, points[-1][1] - 16), f"{kind} {values[-1]:.1f} MiB", fill=colour)
        draw.line([(margin, margin), (margin, height - margin), (width - margin, height - margin)], fill="black")
        draw.text((margin, height - margin + 10), f"0 to {seconds[-1] // 60} minutes", fill="black")
        picture.save(os.path.join(RESULTS, "memory.png"))

    def keep(self):
        with open(os.path.join(RESULTS, "figures.csv"), "w", encoding="ascii", newline="") as file:
            table = csv.DictWriter(file, self.measured[0].keys())
            table.writeheader()
            table.writerows(self.measured)

    def runTest(self):  # pylint: disable=invalid-name
        self.set_up_soak()
        try:
            self.soak()
        except BaseException:
            self.desk.screenshot(os.path.join(RESULTS, "failure.png"))
            raise

    def soak(self):
        rounds = [self.type_a_text, self.empty_text, self.clipboard, self.ask, self.text_file, self.document, self.wave_file,
                  self.voice, self.character, self.tip, self.options, self.hide_and_show, self.into_the_tray,
                  self.sound_server, self.stop_everything, self.reminder]
        begin = time.monotonic()
        count = 0
        while time.monotonic() - begin < self.minutes * 60:
            # Each action once before any is repeated.
            for step in self.chance.sample(rounds, len(rounds)):
                count += 1
                print(f"{int(time.monotonic() - begin):5} s  {step.__name__}", flush=True)
                step()
                if count % ROUNDS == 0:
                    self.measure(begin)
                    self.keep()
        self.finish(begin, count)

    def finish(self, begin, count):
        # Lets a snooze of ten minutes pass, and one after it.
        for _ in range(2):
            self.move_clock(12)
            time.sleep(2)
            self.answer()
        self.measure(begin)
        self.keep()
        self.plot()
        states = {fields(slot)[0]: fields(slot)[7] for slot in self.slots()}
        tenth = max(len(self.measured) // 10, 1)
        early = statistics.median(row["anonymous"] for row in self.measured[tenth:2 * tenth] or self.measured)
        late = statistics.median(row["anonymous"] for row in self.measured[-tenth:])
        print(f"{count} rounds, {len(self.titles)} reminders; own memory {early / 1024:.1f} MiB early, {late / 1024:.1f} MiB late")
        for kind in ("threads", "handles", "windows", "files"):
            values = [row[kind] for row in self.measured]
            print(f"{kind}: {values[0]} first, {max(values)} most, {values[-1]} last")
        self.assertEqual(states, {title: "Y" for title in self.titles}, "reminders")
        self.assertLessEqual(late - early, GROWTH, "KiB of growth")
        for kind in ("threads", "handles", "windows", "files"):
            values = [row[kind] for row in self.measured]
            half = len(values) // 2
            self.assertLessEqual(values[-1], max(values[:half or 1]), f"{kind} left over")
        self.assertEqual(os.listdir(self.temporary), [], "left in the folder for temporary files")


if __name__ == "__main__":
    Soak.minutes = int(sys.argv[1])
    result = unittest.TextTestRunner(verbosity=2).run(Soak())
    sys.exit(not result.wasSuccessful())
