"""Reminders on a real display: announced in both kinds of window, answered, kept in the file; and the editor used by
real input."""

import datetime
import fcntl
import glob
import os
import struct
import time
import unittest

import desk as desktop
from program import CALM, ProgramCase, Watch

SLOT = 128
QUIET = {**CALM, "ReadMessages": 0, "EnableSoundEffects": 0, "ShowCharacterAtStart": 0,
         "ReminderSentenceSpeak": 0, "ReminderTitleSpeak": 0, "ReminderDateSpeak": 0, "ReminderTimeSpeak": 0,
         "ReminderDescSpeak": 0, "ReminderNextSchSpeak": 0}
TALKING = dict(QUIET, ReminderSentenceSpeak=1, ReminderTitleSpeak=1, ReminderDescSpeak=1)


def record(title, when, description, done="N"):
    """One slot of the file: eight fields, each a two-byte length and its text, padded with zeros."""
    fields = [title, f"{when:%d}", f"{when:%m}", f"{when:%Y}", f"{when:%H}", f"{when:%M}", description, done]
    data = b"".join(struct.pack("<H", len(field.encode())) + field.encode() for field in fields)
    assert len(data) <= SLOT
    return data.ljust(SLOT, b"\0")


def fields(slot):
    texts = []
    at = 0
    for _ in range(8):
        length = struct.unpack_from("<H", slot, at)[0]
        texts.append(slot[at + 2:at + 2 + length].decode())
        at += 2 + length
    return texts


class ReminderCase(ProgramCase):
    defaults = QUIET

    def setUp(self):
        super().setUp()
        self.folder = os.path.join(self.desk.env["XDG_DATA_HOME"], "voxmate")
        os.makedirs(self.folder, exist_ok=True)
        self.path = os.path.join(self.folder, "VoxmateReminders.txt")
        for path in glob.glob(os.path.join(self.folder, "VoxmateReminders*")):
            os.remove(path)

    def write(self, *records):
        with open(self.path, "wb") as file:
            file.write(b"".join(records))

    def slots(self):
        """The file's slots. While the program replaces the file, there is none for a moment."""
        def content():
            try:
                with open(self.path, "rb") as file:
                    return (file.read(),)
            except FileNotFoundError:
                return None

        data, = desktop.wait_for(content, what="the reminder file")
        return [data[at:at + SLOT] for at in range(0, len(data), SLOT)]

    def done(self):
        try:
            return [fields(slot)[7] for slot in self.slots()]
        except struct.error:
            return None

    def minute(self, room=20):
        """The present minute, with at least `room` seconds of it left."""
        while datetime.datetime.now().second > 59 - room:
            time.sleep(0.2)
        return datetime.datetime.now().replace(second=0, microsecond=0)

    def open_editor(self):
        self.choose_by_keys("alt+r", "Show All Reminders", "s")
        desktop.wait_for(lambda: self.desk.windows("^Voxmate Reminders - "), what="the editor")

    def reload(self):
        """Makes the running program load the file by opening and closing its editor."""
        self.open_editor()
        self.desk.find("Update", role="push button")
        self.desk.key("alt+F4")  # Escape would silence what is being spoken
        self.desk.find("Do you want to save changes ?")
        self.desk.key("alt+n")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate Reminders - "), what="the editor going away")

    def alerts(self):
        return self.desk.windows("^frmAlert$")

    def places(self):
        return [self.desk.window_rect(window) for window in self.alerts()]


class Alerts(ReminderCase):
    def settings(self, **values):
        self.desk.install_defaults(**{**self.defaults, "ReminderType": 0, "RemAlertAction": 0, "RemAlertGradient": 1,
                                      "RemAlertShape": 1, "RemAlertColor": 3, "RemAlertClose": 0, **values})

    def test_one_that_is_due_slides_up_is_spoken_and_marked_when_it_is_clicked_away(self):
        self.settings(**TALKING, ShowBalloon=0)
        when = self.minute(room=25)
        self.write(record("Tea", when, "Green tea with Ann"))
        self.listen()
        begin = self.now()
        self.start()
        window = desktop.wait_for(self.alerts, step=0.005, what="the alert")[0]
        tops = []
        for _ in range(400):
            tops.append(self.desk.window_rect(window)[1])
            if len(tops) > 30 and len(set(tops[-10:])) == 1:
                break
            time.sleep(0.02)
        self.assertGreater(len(set(tops)), 4, "it does not slide")
        # It only moves up. Its last step of 50 twips may go beyond its place, to which it then returns.
        self.assertLessEqual(max(after - before for before, after in zip(tops, tops[1:])), 4, tops)
        left, top, width, height = self.desk.window_rect(window)
        self.assertEqual((left + width, top + height), desktop.SCREEN, "the corner of the work area")
        texts = " ".join(self.desk.texts())
        for piece in ("(CLICK TO CLOSE)", "New Reminder", "Rem. Id: 1", "Title: Tea", f"Time: {when:%H:%M}", "Desc: Green tea with Ann"):
            self.assertIn(piece, texts)
        self.settle()
        sentence = self.desk.read_settings()["ReminderSentence"].strip('"')
        spoken = sum(self.rendered_length(text) for text in (sentence, "Title: Tea", "Description: Green tea with Ann"))
        self.assertAlmostEqual(self.sound_since(begin), spoken, delta=0.05 * spoken)
        self.assertEqual(self.done(), ["N"])
        self.desk.click_at(left + width // 2, top + height // 2)
        desktop.wait_for(lambda: not self.alerts(), what="the alert sliding away")
        desktop.wait_for(lambda: self.done() == ["Y"], what="the mark in the file")
        time.sleep(1.2)
        self.assertEqual(self.alerts(), [], "announced again")

    def test_one_that_fades_closes_by_itself_after_its_seconds(self):
        compositor = self.desk.start_compositor()
        self.addCleanup(compositor.terminate)
        time.sleep(1)
        self.settings(RemAlertAction=1, RemAlertClose=1, RemAlertCloseTime=4)
        self.write(record("Bus", self.minute(room=5), "Line 7"))
        # Watches its lower right corner, where the colour is strongest.
        watch = Watch(self.desk, (desktop.SCREEN[0] - 40, desktop.SCREEN[1] - 30, desktop.SCREEN[0] - 10, desktop.SCREEN[1] - 10))
        self.addCleanup(watch.stop)
        self.start()
        desktop.wait_for(self.alerts, what="the alert")
        desktop.wait_for(lambda: not self.alerts(), what="the alert going away")
        watch.stop()
        moments = [moment for moment, _ in watch.seen]
        lasts, number = max((after - before, i) for i, (before, after) in enumerate(zip(moments[1:], moments[2:]), 1))
        # Fading takes half a second each way, 2 % a tick; between them are the seconds asked for.
        self.assertLess(abs(lasts - 4), 0.3, "seconds at full strength")
        self.assertGreater(number - 1, 4, "it does not fade in")
        self.assertGreater(len(moments) - number - 1, 4, "it does not fade out")
        self.assertEqual(watch.seen[0][1], watch.seen[-1][1], "something is left behind")
        desktop.wait_for(lambda: self.done() == ["Y"], what="the mark in the file")

    def test_three_at_once_stand_above_one_another_and_take_no_keys(self):
        self.settings()
        soon = self.minute() - datetime.timedelta(days=400)
        self.start_and_settle()
        self.write(*[record(name, soon, "now") for name in ("One", "Two", "Three")])
        self.reload()
        self.desk.click(self.desk.find("Text to read"))
        self.desk.type("abcdefghijklmnopqrstuvwxyz" * 4)
        desktop.wait_for(lambda: len(self.alerts()) == 3, what="three alerts")
        desktop.wait_for(lambda: len({place[1] for place in self.places()}) == 3, what="three places")
        self.assertEqual(self.desk.find("Text to read").queryText().getText(0, -1), "abcdefghijklmnopqrstuvwxyz" * 4)


class NoticeCase(ReminderCase):
    defaults = {**QUIET, "ReminderType": 1}

    def notices(self):
        return self.desk.windows("^Voxmate Reminder$")


class Notices(NoticeCase):
    def test_ok_marks_it_done(self):
        self.write(record("Call", datetime.datetime(2004, 3, 7, 9, 5), "Bank"))
        self.start()
        desktop.wait_for(self.notices, what="the notice")
        texts = self.desk.texts()
        for text in ("Missed Reminder", "Call", "09:05", "1"):
            self.assertIn(text, texts)
        self.press("OK")
        desktop.wait_for(lambda: self.done() == ["Y"], what="the mark in the file")
        desktop.wait_for(lambda: not self.notices(), what="the notice going away")
        self.assertEqual(self.slots(), [record("Call", datetime.datetime(2004, 3, 7, 9, 5), "Bank", "Y")])

    def test_snooze_sets_it_again_from_now(self):
        self.write(record("Call", datetime.datetime(2004, 3, 7, 9, 5), "Bank"))
        self.start()
        desktop.wait_for(self.notices, what="the notice")
        field = self.desk.find("Snooze minutes")
        self.desk.click(field)
        self.desk.key("ctrl+a")
        self.desk.type("a1x5")
        self.assertEqual(field.queryText().getText(0, -1), "15")
        now = self.minute(room=3)
        self.press("Snooze")
        desktop.wait_for(lambda: not self.notices(), what="the notice going away")
        then = now + datetime.timedelta(minutes=15)
        if then.date() == now.date():
            self.assertEqual(self.slots(), [record("Call", then, "Bank")])

    def test_three_due_at_once_do_not_hide_one_another_and_closing_one_leaves_it_pending(self):
        past = datetime.datetime(2004, 3, 7, 9, 5)
        self.write(*[record(name, past, "x" * 60) for name in ("One", "Two", "Three")])
        self.start()
        desktop.wait_for(lambda: len(self.notices()) == 3, what="three notices")
        places = [self.desk.window_rect(window) for window in self.notices()]
        self.assertEqual(len({place[:2] for place in places}), 3)
        for x, y, width, height in places:
            others = [place for place in places if place[:2] != (x, y)]
            covered = sum(max(0, min(x + width, ox + ow) - max(x, ox)) * max(0, min(y + height, oy + oh) - max(y, oy))
                          for ox, oy, ow, oh in others)
            self.assertLess(covered, 0.9 * width * height)
        self.assertEqual(self.done(), ["N", "N", "N"])


class Kept(NoticeCase):
    """What cannot be written now is written later."""

    call = datetime.datetime(2004, 3, 7, 9, 5)

    def answer(self):
        self.press("OK")
        desktop.wait_for(lambda: not self.notices(), what="the notice going away")

    def test_an_answer_given_while_another_program_has_the_file_is_in_it_afterwards(self):
        self.write(record("Call", self.call, "Bank"))
        self.start()
        desktop.wait_for(self.notices, what="the notice")
        with open(self.path, "rb") as held:
            fcntl.flock(held, fcntl.LOCK_EX)
            self.answer()
            self.assertEqual(self.done(), ["N"])
        desktop.wait_for(lambda: self.done() == ["Y"], what="the mark in the file")
        self.assertEqual(self.boxes(), [])

    def test_a_file_that_is_held_at_the_start_is_read_when_it_is_free(self):
        self.write(record("Call", self.call, "Bank"))
        with open(self.path, "rb") as held:
            fcntl.flock(held, fcntl.LOCK_EX)
            self.start()
            text = self.box_text("Voxmate - Reminders")
            self.assertTrue(text.startswith("The reminders could not be read: another program has the file open"), text)
            self.assertEqual(self.notices(), [])
        self.press("OK")
        self.desk.gone("Voxmate - Reminders")
        desktop.wait_for(self.notices, what="the notice")
        self.answer()
        desktop.wait_for(lambda: self.done() == ["Y"], what="the mark in the file")

    def test_an_answer_that_cannot_be_written_is_told_of_once_and_written_when_it_can_be(self):
        self.write(record("Call", self.call, "Bank"), record("Tea", self.call, "Green"))
        self.start()
        desktop.wait_for(lambda: len(self.notices()) == 2, what="two notices")
        obstacle = os.path.join(self.folder, "VoxmateReminders.tmp.new")
        os.mkdir(obstacle)
        self.addCleanup(lambda: os.path.isdir(obstacle) and os.rmdir(obstacle))
        self.press("OK")
        text = self.box_text("Voxmate - Reminders")
        self.assertTrue(text.startswith("The reminders could not be saved: "), text)
        self.assertIn("Your answer is kept in memory", text)
        self.assertEqual(self.done(), ["N", "N"])
        os.rmdir(obstacle)
        desktop.wait_for(lambda: sorted(self.done() or []) == ["N", "Y"], what="the mark in the file")

    def test_a_file_that_is_a_symbolic_link_stays_one(self):
        target = os.path.join(self.desk.home, "cloud")
        os.makedirs(target, exist_ok=True)
        target = os.path.join(target, "Reminders of mine.txt")
        with open(target, "wb") as file:
            file.write(record("Call", self.call, "Bank"))
        os.symlink(target, self.path)
        self.addCleanup(os.remove, self.path)
        self.start()
        desktop.wait_for(self.notices, what="the notice")
        self.answer()
        desktop.wait_for(lambda: self.done() == ["Y"], what="the mark in the file")
        self.assertEqual(os.readlink(self.path), target)
        self.assertEqual(self.slots(), [record("Call", self.call, "Bank", "Y")])

    def test_a_text_of_an_older_system_is_shown_and_kept_byte_for_byte(self):
        old = record("Call", self.call, "Bank").replace(b"\x04\0Call", b"\x04\0Caf\xe9")
        self.write(old)
        self.start()
        desktop.wait_for(self.notices, what="the notice")
        self.assertIn("Caf\u00e9", self.desk.texts())
        self.answer()
        desktop.wait_for(lambda: self.slots() == [old.replace(b"\x01\0N", b"\x01\0Y")], what="the mark in the file")


class InvalidFile(ReminderCase):
    bad = record("Call", datetime.datetime(2004, 2, 3, 9, 5), "Bank").replace(b"\x02\x0003\x02\x0002", b"\x02\x0031\x02\x0002")

    def question(self):
        self.write(self.bad)
        self.start()
        text = self.box_text("Voxmate - Reminders")
        self.assertTrue(text.startswith("Reminders file is not having valid data. Its recommended that you delete the below file:"))
        self.assertIn(self.path, text)

    def test_yes_makes_a_new_file_and_reminders_are_on(self):
        self.question()
        self.press("Yes")
        self.desk.gone("Voxmate - Reminders")
        desktop.wait_for(lambda: os.path.getsize(self.path) == 0, what="the empty file")
        copies = glob.glob(os.path.join(self.folder, "VoxmateReminders-*.txt"))
        self.assertEqual(len(copies), 1, "a dated copy of what was in it")
        with open(copies[0], "rb") as file:
            self.assertEqual(file.read(), self.bad)
        self.settle()

    def test_no_keeps_the_file_and_reminders_are_off(self):
        self.question()
        self.press("No")
        desktop.wait_for(lambda: "Reminders will not be available until following file is deleted:" in
                         self.box_text("Voxmate - Reminders"), 10, what="the second box")
        self.press("OK")
        self.desk.gone("Voxmate - Reminders")
        self.assertEqual(self.slots(), [self.bad])
        # Switching them on is refused.
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("alt+r", "r")
        self.desk.find("Enable Reminders")
        self.desk.key("e")
        self.assertTrue(self.box_text("Voxmate - Reminders").startswith("Following reminders file is not having valid data:"))
        self.press("OK")


class Editor(ReminderCase):
    def put(self, name, text):
        self.desk.click(self.desk.find(name, role="text"))
        self.desk.key("ctrl+a")
        self.desk.type(text)

    def answer(self, text, button):
        self.assertEqual(self.box_text("Voxmate - Reminders"), text)
        self.desk.click([w[2] for w in self.desk.widgets() if w[0].replace("&", "") == button and w[1] == "push button"][-1])
        desktop.wait_for(lambda: text not in self.desk.texts(), what="the box going away")

    def test_reminders_are_added_changed_and_deleted_by_hand(self):
        self.start_and_settle()
        self.open_editor()
        self.assertTrue(self.desk.windows("^Voxmate Reminders - CURRENTLY ENABLED$"))
        today = datetime.datetime.now().replace(hour=23, minute=59, second=0, microsecond=0)
        self.put("Title", "Tea")
        self.put("Time", "x23:59")
        self.put("Description", "Green tea")
        self.press("Add")
        desktop.wait_for(lambda: os.path.exists(self.path) and self.slots() == [record("Tea", today, "Green tea")], 5,
                         what="the added reminder")
        self.put("Title", "Late")
        self.put("Time", "00:00")
        self.put("Description", "Yesterday's news")
        self.press("Add")
        if datetime.datetime.now().strftime("%H:%M") != "00:00":
            self.answer("You are adding a back dated reminder. Proceed anyway ?", "No")
        self.assertEqual(len(self.slots()), 1)
        self.put("Title", "Supper")
        self.put("Time", "23:59")
        self.press("Update")
        self.answer("Are you sure you want to update the selected reminder ?", "Yes")
        desktop.wait_for(lambda: self.slots() == [record("Supper", today, "Yesterday's news")], what="the changed reminder")
        self.press("Delete")
        self.answer("Are you sure you want to delete the selected reminder ?", "No")
        self.assertEqual(len(self.slots()), 1)
        self.press("Delete")
        self.answer("Are you sure you want to delete the selected reminder ?", "Yes")
        desktop.wait_for(lambda: self.slots() == [], what="the empty file")
        self.press("Close")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate Reminders"), what="the editor going away")


if __name__ == "__main__":
    unittest.main()
