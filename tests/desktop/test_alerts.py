"""Alerts and the rest of the desktop: its notifications beside them, and how they wait while the user wants to be left
alone."""

import json
import os
import select
import subprocess
import time
import unittest

import desk as desktop
from test_reminders import ReminderCase, record

SWITCHES = {"notifications": ("Desktop Notification with Each", "n"),
            "wait": ("Wait during Full Screen and Do Not Disturb", "w")}


class AlertCase(ReminderCase):
    def setUp(self):
        super().setUp()
        if os.path.exists(self.desk.state_file):
            os.remove(self.desk.state_file)
        self.server = None
        self.desk.install_defaults(**self.defaults)

    def switched_on(self, *names):
        """The program begins with these on."""
        os.makedirs(os.path.dirname(self.desk.state_file), exist_ok=True)
        with open(self.desk.state_file, "w", encoding="utf-8") as file:
            file.write("".join(f"alerts.{name}=1\n" for name in names))

    def serve(self, *options):
        """Starts the notification server."""
        here = os.path.dirname(os.path.abspath(__file__))
        self.server = self.desk.spawn("/usr/bin/python3", os.path.join(here, "notifications.py"), *options,
                                      stdin=subprocess.PIPE, stdout=subprocess.PIPE, bufsize=0)
        for stream in (self.server.stdin, self.server.stdout):
            self.addCleanup(stream.close)
        self.addCleanup(self.server.wait, desktop.PATIENCE)
        self.addCleanup(self.server.terminate)
        self.assertEqual(self.told(), {"ready": True})

    def told(self):
        """The next thing that the server tells, apart from questions for its do-not-disturb."""
        while True:
            self.assertTrue(select.select([self.server.stdout], [], [], desktop.PATIENCE)[0], "the server tells nothing")
            line = json.loads(self.server.stdout.readline())
            if "asked" not in line:
                return line

    def asked(self, now):
        """Waits for a question for do-not-disturb that is answered so."""
        while True:
            self.assertTrue(select.select([self.server.stdout], [], [], desktop.PATIENCE)[0], "nobody asks")
            if json.loads(self.server.stdout.readline()) == {"asked": "Inhibited", "now": now}:
                return

    def do(self, *words):
        self.server.stdin.write(" ".join(str(word) for word in words).encode() + b"\n")
        self.server.stdin.flush()

    def due(self, *titles):
        when = self.minute(room=25)
        self.write(*(record(title, when, "Green & hot") for title in titles))
        return when

    def switch(self, name):
        item, key = SWITCHES[name]
        self.choose_by_keys("alt+x", "Alerts", "a", item, key)

    def click_away(self, window):
        left, top, width, height = self.desk.window_rect(window)
        self.desk.click_at(left + width // 2, top + height // 2)

    def all_gone(self):
        desktop.wait_for(lambda: not self.alerts(), what="the alerts leaving")


class Notifications(AlertCase):
    def test_each_alert_has_one_whose_buttons_answer_it_and_it_goes_with_the_alert(self):
        self.serve()
        when = self.due("Tea", "Bank", "Swim")
        self.switched_on("notifications")
        self.start()
        notes = [self.told() for _ in range(3)]
        self.assertEqual([note["title"] for note in notes], ["Tea", "Bank", "Swim"])
        first = notes[0]
        self.assertRegex(first["text"], rf"^New Reminder: \S+ {when:%H:%M}\nGreen &amp; hot$")
        self.assertEqual((first["name"], first["icon"], first["time"]), ("Voxmate", "voxmate", 0))
        self.assertEqual(first["actions"], ["done", "Done", "snooze", "Snooze"])
        self.assertEqual(first["hints"], {"desktop-entry": "org.voxmate.Voxmate", "urgency": 1})
        desktop.wait_for(lambda: len(self.alerts()) == 3, what="the alerts")
        self.do("press", notes[0]["notify"], "done")
        desktop.wait_for(lambda: self.done() == ["Y", "N", "N"], what="the first one's mark")
        before = self.slots()[1]
        self.do("press", notes[1]["notify"], "snooze")
        desktop.wait_for(lambda: self.slots()[1] != before, what="the second one's new time")
        desktop.wait_for(lambda: len(self.alerts()) == 1, what="two alerts leaving")
        self.assertEqual(self.done(), ["Y", "N", "N"])
        self.click_away(self.alerts()[0])
        self.assertEqual(self.told(), {"close": notes[2]["notify"]})
        desktop.wait_for(lambda: self.done() == ["Y", "N", "Y"], what="the third one's mark")
        self.all_gone()

    def test_the_menu_switches_them_while_an_alert_stands_and_they_go_with_the_program(self):
        self.serve("--plain")
        self.due("Tea")
        self.start_and_settle()
        desktop.wait_for(self.alerts, what="the alert")
        self.switch("notifications")
        note = self.told()
        self.assertEqual((note["title"], note["actions"], note["text"].split("\n")[1]), ("Tea", [], "Green & hot"))
        self.switch("notifications")
        self.assertEqual(self.told(), {"close": note["notify"]})
        self.switch("notifications")
        note = self.told()
        self.choose_by_keys("alt+f", "Exit", "e")
        self.assertEqual(self.told(), {"close": note["notify"]})
        self.has_ended()
        self.assertEqual(self.done(), ["N"])

    def test_a_server_that_comes_late_shows_what_waits_and_one_that_hangs_stops_nothing(self):
        self.serve("--silent")
        self.due("Tea")
        self.switched_on("notifications")
        self.start_and_settle()
        self.assertEqual(self.told(), {"unanswered": "GetCapabilities"})
        desktop.wait_for(self.alerts, what="the alert")
        self.server.terminate()
        self.server.wait()
        self.serve()
        note = self.told()
        self.assertEqual(note["title"], "Tea")
        self.do("close", note["notify"])
        self.server.terminate()
        self.server.wait()
        self.click_away(self.alerts()[0])
        desktop.wait_for(lambda: self.done() == ["Y"], what="the mark in the file")
        self.all_gone()


class Waiting(AlertCase):
    def test_during_do_not_disturb_they_wait_as_the_menu_says_even_for_the_next_start(self):
        self.serve()
        self.do("inhibit")
        self.start_and_settle()
        self.switch("wait")
        self.due("Tea", "Bank")
        self.reload()
        self.asked(now=True)
        self.desk.end(self.program)
        self.assertEqual(self.done(), ["N", "N"])
        self.start()
        self.asked(now=True)
        self.asked(now=True)
        self.assertEqual(self.alerts(), [])
        self.do("allow")
        self.asked(now=False)
        desktop.wait_for(lambda: len(self.alerts()) == 2, what="the alerts")

    def test_xfce_has_a_switch_of_its_own_for_it(self):
        self.waits_while("XFCE", "gdbus", "call", "--session", "--dest", "org.xfce.Xfconf", "--object-path", "/org/xfce/Xfconf", "--method",
                         "org.xfce.Xfconf.SetProperty", "xfce4-notifyd", "/do-not-disturb", values=("<true>", "<false>"))

    def test_gnome_shows_no_banners_then(self):
        self.waits_while("GNOME", "gsettings", "set", "org.gnome.desktop.notifications", "show-banners", values=("false", "true"))

    def waits_while(self, name, *switch, values):
        """Alerts wait in the desktop of that name from the first of these values to the second."""
        on, off = values
        self.desk.run(*switch, on)
        self.addCleanup(self.desk.run, *switch, off)
        self.serve()
        self.switched_on("wait")
        self.due("Tea")
        self.start(XDG_CURRENT_DESKTOP=name)
        for _ in range(2):
            self.asked(now=False)
        self.assertEqual(self.alerts(), [])
        self.desk.run(*switch, off)
        desktop.wait_for(self.alerts, what="the alert")

    def test_while_a_full_screen_window_has_the_keyboard_they_wait(self):
        self.serve()
        self.do("inhibit")
        self.switched_on("wait")
        self.due("Tea")
        self.start_and_settle()
        self.asked(now=True)
        film, window = self.desk.neighbour("Film", "--state", "FULLSCREEN")
        self.addCleanup(film.wait)
        self.addCleanup(film.terminate)
        self.desk.run("xdotool", "windowactivate", window)
        desktop.wait_for(lambda: f"{int(window):#x}" in self.desk.properties(None, "_NET_ACTIVE_WINDOW"), what="the film being active")
        self.do("allow")
        time.sleep(5)  # it looks every four seconds
        self.assertEqual(self.alerts(), [])
        film.terminate()
        self.asked(now=False)
        desktop.wait_for(self.alerts, what="the alert")


if __name__ == "__main__":
    unittest.main()
