"""Announcements on two monitors of different heights with a panel on each, and at a scale that splits pixels."""

import datetime
import unittest

import desk as desktop
from program import the_desk
from test_reminders import QUIET, ReminderCase, record

FIRST = (0, 0, 1000, 1080)
SECOND = (1000, 0, 600, 1100)
PANEL = 60


class Monitors(ReminderCase):
    defaults = {**QUIET, "ReminderType": 0, "RemAlertAction": 1, "RemAlertClose": 0}

    @classmethod
    def setUpClass(cls):
        the_desk(monitors=(FIRST, SECOND))

    def panel(self, monitor):
        """A panel at the bottom of a monitor; its strut counts from the bottom of the whole screen."""
        x, y, width, height = monitor
        depth = desktop.SCREEN[1] - (y + height - PANEL)
        strut = [0, 0, 0, depth] + [0] * 6 + [x, x + width - 1]
        child, _ = self.desk.neighbour("Panel", "--type", "DOCK", "--at", f"{x},{y + height - PANEL},{width},{PANEL}",
                                       "--state", "STICKY", "--strut", *map(str, strut))
        self.addCleanup(child.wait)
        self.addCleanup(child.terminate)

    def corner(self, **environment):
        """The lower right corner of an announcement after it has stopped moving."""
        self.write(record("Tea", datetime.datetime(2004, 3, 7, 9, 5), "Green"))
        self.start(**environment)
        left, top, width, height = desktop.wait_for(self.places, what="the alert")[0]
        return left + width, top + height

    def test_a_panel_on_the_monitor_of_the_announcement_is_not_covered(self):
        self.panel(FIRST)
        self.assertEqual(self.corner(), (1000, 1080 - PANEL))

    def test_a_panel_on_the_other_monitor_moves_nothing(self):
        self.panel(SECOND)
        self.assertEqual(self.corner(), (1000, 1080))

    def test_at_a_scale_of_one_and_a_half_the_announcement_stays_on_its_monitor(self):
        for scale in ("1.5", "1.25", "1.75"):
            with self.subTest(scale):
                right, bottom = self.corner(QT_SCALE_FACTOR=scale)
                self.assertLessEqual(right, 1000)
                self.assertLessEqual(bottom, 1080)
                # The corner is only a few of the program's own pixels away.
                self.assertGreater(right, 1000 - 2 * float(scale))
                self.assertGreater(bottom, 1080 - 3 * float(scale))
                self.desk.end(self.program)

    def test_a_window_whose_monitor_has_gone_comes_back_on_the_other(self):
        self.start_and_settle()
        place = (SECOND[0] + 50, SECOND[1] + 100)
        self.desk.run("xdotool", "windowmove", self.main_window(), *map(str, place))
        desktop.wait_for(lambda: self.desk.window_rect(self.main_window())[0] >= place[0], what="the window on the second monitor")
        self.desk.end(self.program)
        self.start_and_settle()
        self.assertGreaterEqual(self.desk.window_rect(self.main_window())[0], place[0])
        self.desk.end(self.program)
        self.desk.run("xrandr", "--delmonitor", "part1")
        self.addCleanup(self.desk.monitor, 1, *SECOND)
        self.start_and_settle()
        x, y, width, height = self.desk.window_rect(self.main_window())
        self.assertTrue(x >= 0 and y >= 0 and x + width <= FIRST[2] and y + height <= FIRST[3], (x, y, width, height))


if __name__ == "__main__":
    unittest.main()
