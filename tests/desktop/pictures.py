"""Takes the pictures of every window: splash, main window, character with its balloon, the balloon's styles, options, tip,
about box, reminder editor and announcements in every style, and each message box, at scale 1 and 2, from the running
program, and some of them once more in a dark theme. With names (main, balloons, dialogs, reminders, alerts, boxes, dark)
only those. The program is that of build/release; the pictures are left in build/pictures. With --pages those that a page
of the project shows are put into docs/pictures as well.

Usage: pictures.py [--pages] [NAME...]     (as root: the program is photographed where a user has it)
"""

import datetime
import glob
import os
import re
import shutil
import subprocess
import sys
import time

from PIL import Image, ImageDraw, ImageFont

import desk as desktop
from test_looks import dark_theme
from test_reminders import record

QUIET = {"GreetingEnabled": 0, "SpeakTimeInterval": 0}
MARGIN = 12  # pixels of desktop around a window
SCREENS = {1: (1280, 800), 2: (2560, 1600)}  # by scale
ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", ".."))
BUILD = os.environ.get("VOXMATE_BUILD", os.path.join(ROOT, "build", "release"))
OUT = os.path.join(ROOT, "build", "pictures")
PLACE = "/opt/voxmate"
HOME = "/home/buddy"


class Photographer:
    def __init__(self, desk, out, scale):
        self.desk = desk
        self.out = out
        self.scale = scale
        desk.scale = scale
        self.environment = {} if scale == 1 else {"QT_SCALE_FACTOR": str(scale)}
        self.suffix = ""

    def path(self, name):
        return os.path.join(self.out, name + self.suffix + ("" if self.scale == 1 else f"@{self.scale}x") + ".png")

    def window(self, name, title):
        """Takes a picture of the newest window of that title with its frame and a little of the desktop."""
        window = desktop.wait_for(lambda: self.desk.windows(title), what=title)[-1]
        time.sleep(0.4)
        self.content(name, self.desk.window_rect(window))

    def content(self, name, rect):
        x, y, width, height = rect
        margin, bar = MARGIN * self.scale, 22
        box = (max(0, x - margin), max(0, y - bar - margin), min(self.desk.screen[0], x + width + margin),
               min(self.desk.screen[1], y + height + margin))
        self.desk.screenshot(self.path(name), box)
        print(self.path(name), flush=True)

    def start(self, **settings):
        self.desk.install_defaults(**{**QUIET, **settings})
        return self.desk.start(**self.environment)

    def press(self, name):
        self.desk.click(self.desk.find(name, role="push button"))

    def main_windows(self):
        program = self.start(ShowCharacterAtStart=1)
        self.window("splash", "^Voxmate$")
        text = self.desk.find("Text to read")
        time.sleep(3)
        self.desk.click(text)
        self.desk.type("Good morning! Whatever you type here, I read aloud for you, and my balloon reads along.")
        self.window("main", "^Voxmate$")
        self.press("Speak the textbox text")
        time.sleep(3.6)
        self.desk.screenshot(self.path("desktop"))
        character = self.desk.window_rect(self.desk.windows("^Voxmate character$")[0])
        balloon = self.desk.window_rect(self.desk.windows("^Voxmate balloon$")[0])
        margin = MARGIN * self.scale
        self.desk.screenshot(self.path("character"), (
            min(character[0], balloon[0]) - margin, min(character[1], balloon[1]) - margin,
            min(self.desk.screen[0], max(character[0] + character[2], balloon[0] + balloon[2]) + margin),
            min(self.desk.screen[1], max(character[1] + character[3], balloon[1] + balloon[3]) + margin)))
        self.press("Stop Everything !!!")
        second = self.desk.spawn(os.path.join(self.desk.build, "voxmate"), env=dict(self.desk.env, **self.environment))
        self.window("box-running", "Voxmate - Running")
        self.press("OK")
        second.wait(desktop.PATIENCE)
        self.desk.click(text)
        self.desk.key("alt+f")
        self.desk.key("Right")
        time.sleep(0.5)
        x, y, width, height = self.desk.window_rect(self.desk.windows("^Voxmate$")[-1])
        self.desk.screenshot(self.path("menu"), (x - margin, y - 22 - margin, x + width + margin, y + height + margin))
        self.desk.end(program)

    def balloons(self):
        """One picture that shows, with all characters, everything a balloon can be set to do and the positions it
        takes."""
        on = dict(ShowBalloon=1, SizeBallonToText=1, BalloonAutoPace=0, BalloonAutoHide=0, BalloonCharactersPerLine=24)
        short = "Good morning! I read to you."
        text = "Whatever you type here I read aloud, word by word, for as long as you like to listen to me."
        panels = [
            ("Size to text", "Nalu", {}, text, 1.5, None),
            ("Auto pace", "Tock", dict(BalloonAutoPace=1), text, 3.4, None),
            ("Two lines, scrolling along", "Gamp", dict(SizeBallonToText=0, BalloonTotalLines=2), text, 4.4, None),
            ("Auto hide off: stays after the voice", "Nalu", {}, short, 6.5, None),
            ("Auto hide on: gone after the voice", "Tock", dict(BalloonAutoHide=1), short, 6.5, None),
            ("Balloon off", "Gamp", dict(ShowBalloon=0), text, 2, None),
            ("No room above: beside", "Nalu", dict(BalloonFontName="DejaVu Serif"), text, 1.5, (0.4, 0)),
            ("At the left edge", "Tock", dict(BalloonCharactersPerLine=16), text, 1.5, (0, 0.6)),
            ("In the upper right corner", "Gamp", {}, text, 1.5, (1, 0)),
        ]
        cells = [(caption, self.balloon({**on, **settings}, name, say, wait, place))
                 for caption, name, settings, say, wait, place in panels]
        font = ImageFont.truetype("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", 14 * self.scale)
        gap, title = 12 * self.scale, 26 * self.scale
        width, height = cells[0][1].size
        sheet = Image.new("RGB", (3 * (width + gap) + gap, 3 * (height + title + gap) + gap), "#f4f7f9")
        draw = ImageDraw.Draw(sheet)
        for number, (caption, picture) in enumerate(cells):
            x, y = gap + number % 3 * (width + gap), gap + number // 3 * (height + title + gap)
            draw.text((x, y + 2 * self.scale), caption, fill="#22303c", font=font)
            sheet.paste(picture, (x, y + title))
        sheet.save(self.path("balloons"))
        print(self.path("balloons"), flush=True)

    def balloon(self, settings, name, say, wait, place):
        program = self.start(LastCharacter=name, **settings)
        text = self.desk.find("Text to read")
        time.sleep(3)
        self.desk.click(text)
        self.desk.type(say)
        window = self.desk.windows("^Voxmate character$")[0]
        if place:
            x, y, width, height = self.desk.window_rect(window)
            to = (place[0] * (self.desk.screen[0] - width), place[1] * (self.desk.screen[1] - height))
            self.drag(x + width // 2, y + height // 2, int(to[0]) + width // 2, int(to[1]) + height // 2)
        main = self.desk.windows("^Voxmate$")[-1]
        self.press("Speak the textbox text")
        self.desk.run("xdotool", "windowminimize", main)
        time.sleep(wait)
        picture = self.desk.screenshot()
        x, y, width, height = self.desk.window_rect(window)
        balloon = self.desk.windows("^Voxmate balloon$")
        box = (x, y, x + width, y + height)
        if balloon:
            bx, by, bw, bh = self.desk.window_rect(balloon[0])
            box = (min(x, bx), min(y, by), max(box[2], bx + bw), max(box[3], by + bh))
        cell = (440 * self.scale, 360 * self.scale)
        left = max(0, min(self.desk.screen[0] - cell[0], (box[0] + box[2] - cell[0]) // 2))
        top = max(0, min(self.desk.screen[1] - cell[1], (box[1] + box[3] - cell[1]) // 2))
        self.desk.end(program)
        return picture.crop((left, top, left + cell[0], top + cell[1]))

    def drag(self, from_x, from_y, to_x, to_y):
        self.desk.run("xdotool", "mousemove", str(from_x), str(from_y), "mousedown", "1")
        for step in range(1, 21):
            self.desk.run("xdotool", "mousemove", str(from_x + (to_x - from_x) * step // 20),
                          str(from_y + (to_y - from_y) * step // 20))
        self.desk.run("xdotool", "mouseup", "1")
        time.sleep(0.3)

    def dialogs(self):
        program = self.start(ShowCharacterAtStart=0, AutoReadTip=0, ReadMessages=0)
        text = self.desk.find("Text to read")
        time.sleep(3)
        self.press("User Options")
        for tab in ("Character", "Reading", "Misc", "Reminders"):
            self.desk.click(self.desk.find(tab, role="page tab"))
            self.window("options-" + tab.lower(), "^Voxmate Options$")
        self.desk.key("Escape")
        for name, title, keys in (("tip", "^Tip of the Day$", ("alt+f", "t")), ("about", "^About Voxmate", ("alt+h", "a")),
                                  ("box-help", "^Voxmate - Help$", ("alt+h", "h"))):
            self.menu(text, *keys)
            self.window(name, title)
            self.desk.key("Escape")
            time.sleep(0.3)
        self.desk.end(program)

    def menu(self, text, *keys):
        self.desk.click(text)
        for key in keys:
            self.desk.key(key)
            time.sleep(0.3)

    def reminders_file(self, *reminders):
        folder = os.path.join(self.desk.env["XDG_DATA_HOME"], "voxmate")
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, "VoxmateReminders.txt"), "wb") as file:
            file.write(b"".join(record(*reminder) for reminder in reminders))

    def reminders(self):
        later = datetime.datetime(2030, 3, 7, 9, 5)
        titles = (("Call the bank", "About the new card", "N"), ("Tea with Ann", "The green one, in the garden", "Y"),
                  ("Water the plants", "Not the cactus", "N"), ("Dentist", "Bring the old pictures along", "Y"),
                  ("Birthday: Ben", "He is seven now; the kite is in the cupboard", "N"), ("Train to the sea", "Platform 4, seat 61", "N"))
        self.reminders_file(*[(title, later + datetime.timedelta(days=11 * i, minutes=75 * i), text, done)
                              for i, (title, text, done) in enumerate(titles)])
        program = self.start(ShowCharacterAtStart=0, ReadMessages=0)
        text = self.desk.find("Text to read")
        time.sleep(3)
        self.menu(text, "alt+r", "s")
        self.window("editor", "^Voxmate Reminders")
        self.press("Update")
        self.window("box-question", "^Voxmate - Reminders$")
        self.desk.end(program)
        self.reminders_file(("Call the bank", datetime.datetime(2026, 3, 7, 9, 5), "About the new card, before they close at noon", "N"))
        program = self.start(ShowCharacterAtStart=0, ReminderType=1)
        self.window("notice", "^Voxmate Reminder$")
        self.desk.end(program)
        self.reminders_file()

    def alerts(self):
        """Every style of the alert window on one sheet."""
        font = ImageFont.truetype("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", 12 * self.scale)
        colors = ("Yellow", "Blue", "Red", "Green")
        cell, gap, title = (184 * self.scale, 176 * self.scale), 10 * self.scale, 20 * self.scale
        sheet = Image.new("RGB", (4 * (cell[0] + gap) + gap, 4 * (cell[1] + title + gap) + gap), "#f4f7f9")
        draw = ImageDraw.Draw(sheet)
        for shape, shape_name in enumerate(("Square", "Round corners")):
            for gradient, gradient_name in enumerate(("Corner", "Tube")):
                for color, color_name in enumerate(colors):
                    self.reminders_file(("Tea with Ann", datetime.datetime(2026, 3, 7, 16, 0), "The green one", "N"))
                    program = self.start(ShowCharacterAtStart=0, ReminderType=0, RemAlertAction=0, RemAlertClose=0, RemAlertShape=shape,
                                         RemAlertGradient=gradient, RemAlertColor=color, ReminderSentenceSpeak=0, ReminderTitleSpeak=0,
                                         ReminderDateSpeak=0, ReminderTimeSpeak=0, ReminderDescSpeak=0)
                    desktop.wait_for(lambda: self.desk.windows("^frmAlert$"), what="the alert")
                    time.sleep(2)
                    right, bottom = self.desk.screen
                    picture = self.desk.screenshot(box=(right - cell[0], bottom - cell[1], right, bottom))
                    self.desk.end(program)
                    x, y = gap + color * (cell[0] + gap), gap + (2 * shape + gradient) * (cell[1] + title + gap)
                    draw.text((x, y), f"{shape_name}, {gradient_name}, {color_name}", fill="#22303c", font=font)
                    sheet.paste(picture, (x, y + title))
        sheet.save(self.path("alerts"))
        print(self.path("alerts"), flush=True)
        self.reminders_file()

    def dark(self):
        """The windows with the most content, and the desktop with all of them, in a dark theme."""
        self.suffix = "-dark"
        environment, self.environment = self.environment, {**self.environment, **dark_theme(self.desk)}
        self.main_windows()
        self.dialogs()
        self.reminders()
        self.environment, self.suffix = environment, ""

    def boxes(self):
        program = self.start(SpeakTimeInterval=547)
        box = self.desk.find("Voxmate", role="alert")
        time.sleep(0.4)
        self.content("box-runtime-error", self.desk.rect(box))
        self.desk.end(program)

        self.desk.remove_settings()
        program = self.desk.start(**self.environment)
        self.window("box-path", "Voxmate - Path Error")
        self.press("Yes")
        self.window("box-options", "Voxmate - Options in Error")
        self.desk.end(program)

        program = self.start()
        self.desk.find("Text to read")
        self.desk.end(program)
        program = self.desk.start(PULSE_SERVER="unix:/nonexistent/sound", **self.environment)
        self.desk.click(self.desk.find("Text to read"))
        self.desk.type("Anybody there?")
        self.press("Speak the textbox text")
        self.window("box-audio", "Voxmate - Audio Output Problem")
        self.desk.end(program)

        program = self.desk.start_without_engines(**self.environment)
        if program:
            self.window("box-no-engine", "Voxmate - Unhandled Error")
            self.desk.end(program)

        folder = os.path.join(HOME, "Voxmate")
        os.makedirs(folder)
        try:
            chars = os.path.join(folder, "chars")
            shipped = os.path.join(self.desk.build, "share", "voxmate", "msagent", "chars", "Nalu.acs")
            os.makedirs(chars)
            shutil.copy(shipped, chars)
            shutil.copy(shipped, os.path.join(chars, "Other.acs"))
            program = self.start(CharacterPath=chars)
            text = self.desk.find("Text to read")
            time.sleep(3)
            os.remove(os.path.join(chars, "Other.acs"))
            self.desk.click(text)
            for key in ("alt+f", "Return", "Down", "Return"):
                self.desk.key(key)
                time.sleep(0.3)
            self.window("box-file", "Voxmate - File Error")
            self.desk.end(program)

            with open(os.path.join(chars, "Nalu.acs"), "wb") as file:
                file.write(b"\xC3\xAB\xCD\xAB" + bytes(20))
            program = self.start(CharacterPath=chars)
            self.window("box-unhandled", "Voxmate - Unhandled Error")
            self.desk.end(program)

            shutil.copy(os.path.join(self.desk.build, "voxmate"), folder)
            shutil.copytree(os.path.join(self.desk.build, "share", "voxmate", "icons"),
                            os.path.join(folder, "share", "voxmate", "icons"))
            self.desk.install_defaults(CharacterPath=os.path.join(folder, "nowhere"))
            program = self.desk.start(path=os.path.join(folder, "voxmate"), PATH="/nonexistent", **self.environment)
            self.desk.find("Voxmate - Path Error")
            self.press("Yes")
            time.sleep(1)
            self.window("box-download", "Voxmate - Path Error")
            self.press("Yes")
            self.window("box-url", "Voxmate - URL Open Error")
            self.desk.end(program)
        finally:
            shutil.rmtree(folder)


def shown_by_pages():
    """The file names of the pictures in docs/pictures that a page shows."""
    shown = set()
    for page in glob.glob(os.path.join(ROOT, "*.md")) + glob.glob(os.path.join(ROOT, "docs", "**", "*.*"), recursive=True):
        if page.endswith((".md", ".html")):
            with open(page, encoding="utf-8") as file:
                shown.update(re.findall(r"pictures/([\w@-]+\.png)", file.read()))
    return shown


def refresh_pages(since):
    """Puts what has been photographed since then, and is shown by a page, where the page looks for it."""
    for name in sorted(shown_by_pages()):
        picture = os.path.join(OUT, name)
        if os.path.exists(picture) and os.path.getmtime(picture) >= since:
            print(shutil.copy(picture, os.path.join(ROOT, "docs", "pictures")), flush=True)


def main():
    names = sys.argv[1:]
    pages = "--pages" in names
    if pages:
        names.remove("--pages")
    if any(name.startswith("-") for name in names):
        sys.exit(__doc__)
    os.makedirs(OUT, exist_ok=True)
    begin = time.time()
    for folder in (PLACE, HOME):
        if os.path.exists(folder):
            sys.exit(f"{folder} is in use")
    os.makedirs(PLACE)
    shutil.copy(os.path.join(BUILD, "voxmate"), PLACE)
    shutil.copytree(os.path.join(BUILD, "share"), os.path.join(PLACE, "share"))
    try:
        # A process can use the accessibility library for one desktop only.
        for scale in SCREENS:
            subprocess.run([sys.executable, "-W", "ignore", __file__, "--scale", str(scale), *names], check=True)
    finally:
        shutil.rmtree(PLACE)
    if pages:
        refresh_pages(begin)


def photograph(scale, names):
    desk = desktop.Desk(PLACE, compositor=True, screen=SCREENS[scale], home=HOME)
    try:
        if shutil.which("hsetroot"):
            desk.run("hsetroot", "-add", "#7fb7c9", "-add", "#2f5d7c", "-gradient", "0")
        photographer = Photographer(desk, OUT, scale)
        parts = {"main": photographer.main_windows, "balloons": photographer.balloons, "dialogs": photographer.dialogs,
                 "reminders": photographer.reminders, "alerts": photographer.alerts, "boxes": photographer.boxes, "dark": photographer.dark}
        for name in names or parts:
            parts[name]()
    finally:
        desk.close()


if __name__ == "__main__":
    if sys.argv[1:2] == ["--scale"]:
        photograph(int(sys.argv[2]), sys.argv[3:])
    else:
        main()
