"""What the program does in the Wayland session of any compositor. test_wayland_weston, test_wayland_sway and test_wayland_mutter run this under
one each."""

import os
import re
import time

import numpy

import desk as desktop
import program
from compositors import Session, installed
from program import BUILD, CALM
from test_alerts import AlertCase
from test_reminders import QUIET

SCREEN = (1200, 900)
BALLOON = (255, 248, 236)  # Nalu's balloon and body, in the colours of its file
BODY = (255, 189, 171)


def the_session(compositor):
    """The session of all tests of this process; None where the compositor is not installed."""
    if not installed(compositor):
        return None
    if program._desk is None:  # pylint: disable=protected-access
        program._desk = Session(BUILD, compositor, xwayland=True, screen=SCREEN)  # pylint: disable=protected-access
        program.atexit.register(program._desk.close)  # pylint: disable=protected-access
    return program._desk  # pylint: disable=protected-access


class Sessions(AlertCase):
    defaults = {**CALM, "LastCharacter": "Nalu", "EnableSoundEffects": 0}
    compositor = ""

    @classmethod
    def tearDownClass(cls):
        if installed(cls.compositor):
            super().tearDownClass()

    def setUp(self):
        if not the_session(self.compositor):
            self.skipTest(f"{self.compositor} is not installed")
        super().setUp()

    def tearDown(self):
        if installed(self.compositor):
            super().tearDown()

    def place(self, title):
        """Where the session's X server has a window: x, y, width, height; None if it is not shown."""
        seen = self.desk.in_x_server("xwininfo", "-name", title)
        if "IsViewable" not in seen:
            return None
        return tuple(int(re.search(rf"{name}:\s+(-?\d+)", seen)[1])
                     for name in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))

    def seen(self, colour):
        """The rectangle of what has about this colour on the screen: left, top, right, bottom; None without any."""
        picture = numpy.asarray(self.desk.screenshot().convert("RGB")).astype(int)
        ys, xs = numpy.nonzero(numpy.abs(picture - colour).max(axis=2) <= 3)
        if len(xs) < 500:
            return None
        return int(xs.min()), int(ys.min()), int(xs.max()), int(ys.max())

    def speak(self):
        self.desk.find("Text to read").queryEditableText().setTextContents("A sentence that is long enough to be seen. " * 3)
        self.desk.find("Speak the textbox text").queryAction().doAction(0)

    def assert_balloon_over_body(self):
        left, _, right, bottom = desktop.wait_for(lambda: self.seen(BALLOON), what="the balloon")
        body = desktop.wait_for(lambda: self.seen(BODY), what="the character")
        middle = (body[0] + body[2]) // 2
        self.assertLess(left, middle)
        self.assertGreater(right, middle)
        self.assertLess(bottom, body[1] + 10)
        self.assertLess(body[1] - bottom, 60)

    def test_with_an_x_server_the_character_stands_in_its_corner_without_a_box_around_it(self):
        self.start_and_settle()
        _, _, width, height = desktop.wait_for(lambda: self.place("Voxmate character"), what="the character")
        corner = (SCREEN[0] - width - 40, SCREEN[1] - height - 16)
        desktop.wait_for(lambda: self.place("Voxmate character")[:2] == corner, what="the character in its corner")
        desktop.wait_for(lambda: self.seen(BODY), what="its picture")
        x, y = corner

        def pixel(left, top):
            return self.desk.screenshot(box=(left, top, left + 1, top + 1)).getpixel((0, 0))

        for beside, far in (((x + 2, y + 1), (x + 2, y - 60)), ((x - 3, y + height - 20), (x - 60, y + height - 20))):
            self.assertLess(max(abs(a - b) for a, b in zip(pixel(*beside), pixel(*far))), 40, f"a box at {beside}")
        self.drag_body(desktop.wait_for(lambda: self.seen(BODY), what="the character"))
        self.clicks_beside_the_body_go_beneath()
        self.speak()
        self.assert_balloon_over_body()

    def test_natively_the_balloon_points_at_the_character_and_both_are_dragged(self):
        self.start_and_settle(QT_QPA_PLATFORM="wayland")
        self.assertEqual([name for name in self.connections() if "X11-unix" in name], [])
        body = desktop.wait_for(lambda: self.seen(BODY), what="the character")
        self.drag_body(body)
        self.speak()
        self.assert_balloon_over_body()

    def test_natively_an_alert_is_a_notification_and_where_there_is_none_a_window(self):
        self.desk.install_defaults(**{**self.defaults, **QUIET})
        self.serve()
        self.due("Tea", "Bank")
        self.start_and_settle(QT_QPA_PLATFORM="wayland")
        tea, bank = (self.told() for _ in range(2))
        self.assertEqual([tea["title"], bank["title"], tea["time"]], ["Tea", "Bank", 0])
        self.do("press", tea["notify"], "done")
        desktop.wait_for(lambda: self.done() == ["Y", "N"], what="the mark in the file")
        self.assertEqual(self.alert_windows(), [])
        self.server.terminate()
        desktop.wait_for(lambda: len(self.alert_windows()) == 1, what="the other alert's window")
        self.assertIn("Title: Bank", self.alert_windows()[0])
        self.assertEqual(self.done(), ["Y", "N"])

    def alert_windows(self):
        """What the program's alert windows say."""
        return sorted({text for text in self.desk.texts() if text.startswith("(CLICK TO CLOSE)")})

    def clicks_beside_the_body_go_beneath(self):
        """Another program's window that comes later is beneath the character, and gets the clicks beside its drawing."""
        log = os.path.join(self.desk.home, "clicks")
        with open(log, "wb") as out:
            other = self.desk.spawn("xev", "-geometry", "1100x700+50+100", "-event", "button", stdout=out,
                                    env={**self.desk.env, **self.desk.session})
        self.addCleanup(other.wait)
        self.addCleanup(other.terminate)
        white = (255, 255, 255)

        def beneath():
            # There is nothing of the main window there; sway gives each of the two a half of the screen.
            x, y = self.beside(self.seen(BODY))
            return self.desk.screenshot(box=(x, y, x + 1, y + 1)).convert("RGB").getpixel((0, 0)) == white

        desktop.wait_for(beneath, what="the other window beneath the character")

        def presses():
            with open(log, encoding="utf-8", errors="replace") as file:
                return file.read().count("ButtonPress")

        body = desktop.wait_for(lambda: self.seen(BODY), what="the character")
        self.click_slowly(*self.beside(body))
        desktop.wait_for(lambda: presses() == 1, what="the click beside the drawing")
        self.click_slowly(*self.middle(body))
        self.click_slowly(*self.beside(body))
        desktop.wait_for(lambda: presses() > 1, what="another click beside it")
        self.assertEqual(presses(), 2, "the character lets a click on its drawing through")

    @staticmethod
    def middle(body):
        return (body[0] + body[2]) // 2, (body[1] + body[3]) // 2

    def beside(self, body):
        """A point within the character's window, in its upper right corner, on which nothing is drawn."""
        x, y = self.middle(body)
        return x + 100, y - 110

    def point_at(self, x, y):
        """Moves the pointer as a hand does, not at one stroke: compositors look for the window under it between two moves."""
        for offset in (4, 2, 0):
            self.desk.run("xdotool", "mousemove", str(x - offset), str(y))
            time.sleep(0.2)

    def click_slowly(self, x, y):
        self.point_at(x, y)
        self.desk.run("xdotool", "click", "2")

    def drag_body(self, body):
        x, y = self.middle(body)
        # An X server in the session knows of no pointer before that has been over one of its windows.
        self.point_at(SCREEN[0] // 2 - 100, SCREEN[1] // 2)
        self.point_at(x, y)
        self.desk.run("xdotool", "mousedown", "1")
        self.addCleanup(self.desk.run, "xdotool", "mouseup", "1")
        step = [0]

        # The compositor takes the window over at one of the first steps; from then on it follows the pointer.
        def moved():
            step[0] += 1
            self.desk.run("xdotool", "mousemove", str(x - min(6 * step[0], 120)), str(y - min(4 * step[0], 80)))
            now = self.seen(BODY)
            return now and now[0] <= body[0] - 40 and now[1] <= body[1] - 25

        desktop.wait_for(moved, what="the character where it was dragged to")
        self.desk.run("xdotool", "mouseup", "1")

    def test_where_no_screen_can_be_opened_it_says_so_and_what_may_be_missing(self):
        program_ = self.desk.start(QT_QPA_PLATFORM="nothing")
        log = self.desk.programs[program_]
        self.desk.ended(program_, status=1)
        with open(log, encoding="utf-8") as file:
            self.assertIn("voxmate: no screen could be opened. In a Wayland session without an X server, Qt's part for "
                          "Wayland must be installed (Debian: qt6-wayland).\n", file.read())

    def connections(self):
        """The sockets that the program is connected to, by the names of their other ends."""
        inodes = set()
        for number in os.listdir(f"/proc/{self.program.pid}/fd"):
            try:
                target = os.readlink(f"/proc/{self.program.pid}/fd/{number}")
            except FileNotFoundError:
                continue
            if found := re.fullmatch(r"socket:\[(\d+)\]", target):
                inodes.add(found[1])
        listed = self.desk.run("ss", "-xH").decode().split("\n")
        names = []
        for line in listed:
            fields = line.split()
            # type, state, queues, name, inode, the other end's name and inode
            if len(fields) >= 8 and fields[7] in inodes:
                names.append(fields[4])
        self.assertTrue(any("wayland" in name for name in names), names)
        return names
