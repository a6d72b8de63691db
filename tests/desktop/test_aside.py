"""The character stands aside when it would cover what a window of the program shows, and for alerts, and comes back."""

import datetime
import os
import re
import time
import unittest

import desk as desktop
from program import CALM, ProgramCase
from test_reminders import QUIET, ReminderCase, record

USED = ("push button", "text", "combo box", "scroll bar", "check box", "label")


def overlap(one, other):
    return one[0] < other[0] + other[2] and other[0] < one[0] + one[2] and one[1] < other[1] + other[3] and other[1] < one[1] + one[3]


class AsideCase(ProgramCase):
    defaults = {**CALM, "LastCharacter": "Nalu", "EnableSoundEffects": 0, "ShowBalloon": 0}

    def figure(self):
        """The part of the screen on which the character is drawn. Without a compositor it is cut out of the screen."""
        shape = self.desk.run("xwininfo", "-shape", "-id", self.character_window()[0]).decode()
        width, height, x, y = map(int, re.search(r"Window shape extents:\s+(\d+)x(\d+)([+-]\d+)([+-]\d+)", shape).groups())
        left, top, _, _ = self.character_window()[1]
        return left + x, top + y, width, height

    def place(self):
        return self.character_window()[1][:2]

    def wait_for_place(self, place):
        desktop.wait_for(lambda: self.place() == place, what=f"the character at {place}")

    def rests(self):
        """Waits until the character has stood in one place for a second, and returns that."""
        last = [None, 0.0]

        def still():
            now = time.monotonic()
            if (place := self.place()) != last[0]:
                last[:] = [place, now]
            return now - last[1] > 1

        desktop.wait_for(still, what="the character standing still")
        return last[0]

    def other_program(self):
        child, window = self.desk.neighbour("Neighbour", "--at", "20,20,200,150")
        self.addCleanup(child.wait)
        self.addCleanup(child.terminate)
        self.leave_for(window)
        return window

    def leave_for(self, other):
        """Activates another program's window, and waits until the main window knows."""
        self.activate(other)
        # The toolkit hears of it a little later, and never if the keyboard is back by then.
        active = self.desk.accessible().STATE_ACTIVE
        desktop.wait_for(lambda: not any(node.getState().contains(active) for name, role, node in self.desk.widgets()
                                         if (name, role) == ("Voxmate", "frame")), what="the main window without the keyboard")

    def compositor(self):
        compositor = self.desk.start_compositor()
        self.addCleanup(compositor.wait)
        self.addCleanup(compositor.terminate)
        time.sleep(1)

    def activate(self, window):
        self.desk.run("xdotool", "windowactivate", "--sync", window)

    def put_main_window(self, x, y):
        """Moves the main window to a place, as its user would, and waits until it is there."""
        window = self.main_window()
        self.desk.run("xdotool", "windowmove", "--sync", window, str(x), str(y))
        desktop.wait_for(lambda: abs(self.desk.window_rect(window)[0] - x) < 40, what="the main window in its place")
        return window

    def covered(self):
        """What the character covers of the window."""
        figure = self.figure()
        return [(role, name) for name, role, node in self.desk.widgets()
                if role in USED and name and overlap(figure, self.desk.rect(node))]

    def film(self, name, seconds, box):
        """A strip of pictures, in build/pictures."""
        from PIL import Image  # pylint: disable=import-outside-toplevel
        end = time.monotonic() + seconds
        pictures = []
        while time.monotonic() < end:
            pictures.append(self.desk.screenshot(box=box))
            time.sleep(0.02)
        chosen = [pictures[number * (len(pictures) - 1) // 7] for number in range(8)]
        width, height = chosen[0].size
        strip = Image.new("RGB", (4 * width, 2 * height))
        for number, picture in enumerate(chosen):
            strip.paste(picture, (number % 4 * width, number // 4 * height))
        path = os.path.join(self.desk.build, "..", "pictures", f"aside-{name}.png")
        os.makedirs(os.path.dirname(path), exist_ok=True)
        strip.save(path)


class Windows(AsideCase):
    def setUp(self):
        super().setUp()
        self.start_and_settle()
        self.home = self.rests()
        self.other = self.other_program()
        self.main = self.put_main_window(self.home[0] - 150, self.home[1] - 150)

    def test_it_walks_aside_when_a_window_is_activated_and_home_when_that_has_been_left_and_moved(self):
        self.assertEqual(self.rests(), self.home, "a window that is only moved")
        self.assertTrue(self.covered())
        self.activate(self.main)
        x, y = self.home
        self.film("window", 2.5, (x - 400, y - 400, desktop.SCREEN[0], desktop.SCREEN[1]))
        self.assertNotEqual(self.rests(), self.home)
        self.settle()
        self.assertEqual(self.covered(), [])
        left, top, width, height = self.character_window()[1]
        self.assertTrue(left >= 0 and top >= 0 and left + width <= desktop.SCREEN[0] and top + height <= desktop.SCREEN[1])
        self.leave_for(self.other)
        self.assertNotEqual(self.rests(), self.home, "the window is still there")
        self.put_main_window(100, 100)
        self.wait_for_place(self.home)

    def test_a_speech_is_neither_delayed_nor_cut(self):
        text = "This sentence goes on while the character glides aside, and so does the one behind it. Here it is."
        self.desk.find("Text to read").queryEditableText().setTextContents(text)
        self.listen()
        begin = self.now()
        self.desk.find("Speak the textbox text").queryAction().doAction(0)
        self.wait_for_sound(begin)
        self.activate(self.main)
        desktop.wait_for(lambda: self.place() != self.home, what="the character going aside")
        self.assertNotIn(desktop.STATUS[0], self.desk.texts(), "it has gone after the speech")
        self.settle()
        length = self.rendered_length(text)
        self.assertAlmostEqual(self.sound_since(begin), length, delta=0.05 * length)
        self.assertNotEqual(self.rests(), self.home)
        self.assertEqual(self.covered(), [])

    def test_it_stays_where_the_user_puts_it_meanwhile(self):
        self.activate(self.main)
        x, y = self.rests()
        self.assertNotEqual((x, y), self.home)
        _, (_, _, width, height) = self.character_window()
        middle = (x + width // 2, y + height // 2)
        self.desk.drag(*((middle[0] - 20 * step, middle[1] - 10 * step) for step in range(11)))
        self.wait_for_place((x - 200, y - 100))
        self.desk.run("xdotool", "windowminimize", self.main)
        time.sleep(2.5)
        self.assertEqual(self.place(), (x - 200, y - 100))

    def test_it_is_switched_off_in_the_menu(self):
        self.put_main_window(100, 100)
        self.activate(self.main)
        self.choose_by_keys("alt+x", "Character Stands Aside", "c")
        desktop.wait_for(lambda: "character.stays" in open(self.desk.state_file, encoding="utf-8").read(), what="the saved choice")
        self.leave_for(self.other)
        self.put_main_window(self.home[0] - 150, self.home[1] - 150)
        self.activate(self.main)
        time.sleep(2.5)
        self.assertEqual(self.place(), self.home)


class Start(AsideCase):
    def test_at_a_start_it_appears_beside_a_window_that_opens_where_it_stands(self):
        self.start_and_settle()
        home = self.rests()
        self.put_main_window(home[0] - 150, home[1] - 150)
        self.activate(self.main_window())
        desktop.wait_for(lambda: "main.geometry" in open(self.desk.state_file, encoding="utf-8").read(), what="the saved place")
        self.settle()
        self.desk.end(self.program)
        self.start()
        desktop.wait_for(lambda: self.desk.windows("^Voxmate character$"), step=0.005, what="the character")
        places = []
        end = time.monotonic() + 6
        while time.monotonic() < end:
            if (place := self.place()) not in places:
                places.append(place)
        self.assertLessEqual(len(places), 2, f"it walks: {places}")
        self.assertNotEqual(places[-1], home)
        self.settle()
        self.assertEqual(self.covered(), [])


class Alerts(AsideCase, ReminderCase):
    defaults = {**QUIET, "ShowCharacterAtStart": 1, "ReminderType": 0, "RemAlertGradient": 1, "RemAlertShape": 1,
                "RemAlertColor": 3, "RemAlertClose": 0, "LastCharacter": "Nalu"}

    def announced(self, name, action, before=lambda: None):
        """An alert comes where the character stands. `before` is done when the program has started."""
        self.desk.install_defaults(**{**self.defaults, "RemAlertAction": action})
        self.start_and_settle()
        home = self.rests()
        left, top, width, height = self.figure()
        before()
        self.addCleanup(os.remove, self.path)  # the other tests have no reminders
        self.write(record("Tea", self.minute(room=15) - datetime.timedelta(days=400), "now"))
        self.reload()
        alert = desktop.wait_for(self.alerts, step=0.005, what="the alert")[0]
        # Not walking: it is gone before the alert is where it stood.
        desktop.wait_for(lambda: self.place() != home, step=0.005, what="the character gone")
        gone = self.place()
        x, y = home
        self.film(name, 2, (x - 300, y - 100, desktop.SCREEN[0], desktop.SCREEN[1]))
        aside = self.rests()
        self.assertEqual(aside, gone, "it walks while the alert comes")
        place = self.desk.window_rect(alert)
        self.assertTrue(overlap(place, (left, top, width, height)), "the alert has come elsewhere")
        self.assertFalse(overlap(place, (left + aside[0] - x, top + aside[1] - y, width, height)))
        self.desk.click_at(place[0] + place[2] // 2, place[1] + place[3] // 2)
        desktop.wait_for(lambda: not self.alerts(), what="the alert going")
        self.wait_for_place(home)

    def test_it_makes_room_for_an_alert_that_slides_up(self):
        self.announced("slide", 0)

    def test_it_makes_room_for_an_alert_that_fades_in(self):
        self.announced("fade", 1, self.compositor)


class Below(AsideCase):
    def clicks_beside_the_drawing_go_beneath(self):
        self.start_and_settle()
        _, (x, y, width, height) = self.character_window()
        seen = os.path.join(self.desk.home, "events")
        with open(seen, "wb") as out:
            below = self.desk.spawn("xev", "-geometry", f"{width + 20}x{height + 20}+{x - 10}+{y - 30}", "-event", "button", stdout=out)
        self.addCleanup(below.wait)
        self.addCleanup(below.terminate)
        window = desktop.wait_for(lambda: self.desk.windows("^Event Tester$"), what="the window beneath")[0]

        def presses():
            with open(seen, encoding="utf-8", errors="replace") as file:
                return file.read().count("ButtonPress")

        self.activate(window)
        # Its corners are transparent, its middle is not.
        for number, (dx, dy) in enumerate(((4, 4), (width - 4, 4), (4, height - 12), (width - 4, height - 12)), 1):
            self.desk.click_at(x + dx, y + dy, button=2)
            desktop.wait_for(lambda: presses() == number, what=f"click number {number} beneath, not {presses()}")  # pylint: disable=cell-var-from-loop
        self.desk.click_at(x + width // 2, y + height // 2, button=2)
        time.sleep(0.5)
        self.assertEqual(presses(), 4, "the character lets a click on its drawing through")

    def test_a_click_beside_the_drawing_goes_to_another_programs_window_with_a_compositor(self):
        self.compositor()
        self.clicks_beside_the_drawing_go_beneath()

    def test_and_without_one(self):
        self.clicks_beside_the_drawing_go_beneath()


if __name__ == "__main__":
    unittest.main()
