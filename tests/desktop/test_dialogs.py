"""A tour by real input of all windows but the main one: options, font box, folder picker, file dialog, tip, about,
editor, notice, alert, and the boxes. Everything that can be pressed is pressed and must do what it says. A picture of
each window is saved in build/tour."""

import datetime
import os
import shutil
import tempfile
import time
import unittest

import desk as desktop
from program import BUILD
from test_reminders import fields, record
from tour import BEGINNING, DAY, TourCase

OPTIONS = "Voxmate Options"
PICKER = "Select Characters' Location :"
OPEN = "Open Text File to Read..."
PAST = datetime.datetime(2004, 3, 7, 9, 5)
FUTURE = datetime.datetime(2099, 3, 7, 9, 5)


class Options(TourCase):
    # These settings enable as many controls as possible.
    defaults = {**TourCase.defaults, "GreetingEnabled": 1, "RemAlertClose": 1}

    def applied(self, **values):
        """Presses Apply, after which the settings file must have these values."""
        self.use("Apply")
        for name, value in values.items():
            self.saved(name, value)

    def boxes_and_buttons(self, without=()):
        """Toggles every enabled check box of the tab, there and back, and chooses every option button."""
        for control in self.walk(OPTIONS):
            if control.role == "check box" and control.name not in without:
                for value in (not self.has(control.node, "CHECKED"), self.has(control.node, "CHECKED")):
                    self.click(control)
                    desktop.wait_for(lambda: self.has(control.node, "CHECKED") == value, what=f"the check of {control.name}")
        for control in self.walk(OPTIONS):
            if control.role == "radio button":
                self.click(control)
                desktop.wait_for(lambda: self.has(control.node, "CHECKED"), what=f"the choice of {control.name}")

    def test_every_control_of_the_options_does_what_it_says(self):
        self.start_touring()
        self.use("User Options")
        self.opened(OPTIONS)
        for tab in ("Character", "Reading", "Misc", "Reminders"):
            self.use(tab, "page tab", OPTIONS)
            desktop.wait_for(lambda: any(c.role == "filler" and c.name == tab for c in self.walk(OPTIONS)), what=f"the page {tab}")
            self.look(OPTIONS, "options-" + tab.lower())
        self.reminders_tab()
        self.use("Misc", "page tab")
        self.boxes_and_buttons(without=("Show character at startup", "Speak character intro at startup", "Enable startup greeting"))
        self.put("Other Greeting", "Nice to see you")
        for name in ("Show character at startup", "Speak character intro at startup", "Enable startup greeting"):
            self.toggle(name)
        self.applied(OtherGreeting='"Nice to see you"', GreetingType="dword:00000002", GreetingEnabled="dword:00000001")
        self.use("Reading", "page tab")
        self.boxes_and_buttons()
        self.put("Speak Time Every, in minutes", "45")
        self.put("Your Name", "Ada")
        self.assertEqual(self.next_entry("Read System Date in"), "31-DECEMBER")
        self.applied(SpeakTimeInterval="dword:0000002d", UserName='"Ada"', DateFormat="dword:00000003")
        self.use("Character", "page tab")
        self.boxes_and_buttons()
        self.put("Total lines", "3")
        self.put("Characters per line", "24")
        self.put("Characters Location", self.desk.home)
        self.assertEqual(self.next_entry("Character Size"), "Big")
        self.next_entry("Character animations available")
        self.use("Animate")
        self.use("Stop")
        self.control("Animate")
        self.font_box()
        self.folder_picker()
        self.applied(BalloonTotalLines="dword:00000003", BalloonCharactersPerLine="dword:00000018", CharacterSize="dword:00000002",
                     BalloonFontName='"DejaVu Serif"', BalloonFontSize="dword:0000000e", CharacterPath=f'"{self.cast}/"')
        self.use("Default")
        desktop.wait_for(lambda: self.text_in("Total lines") == "2", what="the default")
        self.use("Cancel", window=OPTIONS)
        self.closed(OPTIONS)
        self.assertEqual(self.desk.read_settings()["BalloonTotalLines"], "dword:00000003")
        self.use("User Options")
        self.opened(OPTIONS)
        self.assertEqual(self.text_in("Total lines"), "3")
        self.put("Total lines", "4")
        self.use("OK", window=OPTIONS)
        self.closed(OPTIONS)
        self.saved("BalloonTotalLines", "dword:00000004")
        self.everything_was_pressed(OPTIONS, "Font", PICKER)

    def reminders_tab(self):
        self.boxes_and_buttons(without=("Always on top",))
        self.put("Sentence to speak", "Listen please")
        self.put("Auto close time in seconds", "7")
        self.use("Preview")
        alert = desktop.wait_for(self.alerts, what="the alert")[0]
        self.assertTrue(any("Test reminder window to be closed in 7  second(s)." in text for text in self.desk.texts()))
        time.sleep(1)
        self.check_names()
        x, y, width, height = self.desk.window_rect(alert)
        self.picture("alert-preview", (x - 8, y - 8, x + width, y + height))
        self.desk.click_at(x + width // 2, y + height // 2)
        # The other kind of window has no preview, but it can be kept on top.
        self.assertEqual(self.next_entry("Show Reminder as"), "Normal Window")
        self.assertFalse(self.has(self.control("Preview").node, "ENABLED"))
        self.toggle("Always on top")
        self.applied(ReminderSentence='"Listen please"', RemAlertCloseTime="dword:00000007", RemAlertColor="dword:00000003",
                     RemAlertAction="dword:00000001", ReminderType="dword:00000001", ReminderOnTop="dword:00000000")
        desktop.wait_for(lambda: not self.alerts(), what="the alert going away")

    def font_box(self):
        """A typeface is typed, another is clicked, a size is typed. Cancel keeps the old font, OK applies the new
        one."""
        for button in ("Cancel", "OK"):
            self.use("Font", window=OPTIONS)
            self.opened("Font")
            self.put("Font", "DejaVu Sans Mono", window="Font")
            entry = desktop.wait_for(lambda: next((c for c in self.walk("Font") if c.role == "list item" and c.name == "DejaVu Serif"), None), 3,
                                     what="the face in the list")
            self.look("Font", "font")
            self.pressed.add(("Font", "list", "Fonts"))
            self.click_node(entry.node)
            desktop.wait_for(lambda: self.text_in("Font", "Font") == "DejaVu Serif", what="the face in the field")
            self.use("Size", "spin button")
            self.desk.key("ctrl+a")
            self.desk.type("14")
            time.sleep(0.1)
            self.use(button, window="Font")
            self.closed("Font")
            self.assertEqual("DejaVu Serif" in self.desk.texts(), button == "OK")

    def folder_picker(self):
        self.cast = os.path.join(self.desk.home, "cast")
        shutil.rmtree(self.cast, ignore_errors=True)
        shutil.copytree(os.path.join(BUILD, "share", "voxmate", "msagent", "chars"), self.cast)
        self.use("Browse")
        self.opened(PICKER)
        self.look(PICKER, "folder-picker")
        self.around_a_file_dialog(PICKER, "Directories")
        self.use("Cancel", window=PICKER)
        self.closed(PICKER)
        self.assertEqual(self.text_in("Characters Location"), self.desk.home)
        self.use("Browse")
        self.opened(PICKER)
        self.put("Directory", self.cast, window=PICKER)
        self.confirm("Choose", PICKER)
        self.assertEqual(self.text_in("Characters Location"), self.cast + "/")

    def around_a_file_dialog(self, title, kind):
        """Presses what both file dialogs have: buttons that go from folder to folder and back, and two ways to show
        them."""
        folder = self.desk.home
        before = self.shown(title)
        self.use("Places", "list", title)
        self.click_node(next(c.node for c in self.walk(title) if c.role == "list item" and c.name == "/"))
        self.goes_to(title, "/")
        self.use("Back", window=title)
        self.goes_to(title, before)
        self.use("Forward", window=title)
        self.goes_to(title, "/")
        self.use("Look in", "combo box", title)
        time.sleep(0.3)
        self.desk.key("Escape")
        self.use("Back", window=title)
        self.goes_to(title, before)
        self.use("Parent Directory", window=title)
        self.goes_to(title, os.path.dirname(before))
        self.click_node(next(c.node for c in self.walk(title) if c.role == "list item" and c.name == os.path.basename(folder)))
        self.goes_to(title, folder)
        self.use("Create New Folder", window=title)
        desktop.wait_for(lambda: os.path.isdir(os.path.join(folder, "New Folder")), what="the new folder")
        self.desk.key("Return")
        os.rmdir(os.path.join(folder, "New Folder"))
        self.use("List View", window=title)
        self.control("Files", "list", title)
        self.look(title, "file-dialog-list")
        self.use("Files", "list", title)
        self.use("Detail View", window=title)
        self.control("Files", "tree", title)
        self.use("Files", "tree", title)
        for column in ("Name", "Size", "Date Modified"):
            self.use(column, "table column header", title)
        self.use("Files of type", "combo box", title)
        time.sleep(0.3)
        self.desk.key("Escape")
        self.assertEqual(self.control("Files of type", "combo box", title).node.name.removesuffix("."), kind)

    def confirm(self, button, title):
        """Presses the button below a typed name. The first click may only close the list of completions."""
        for _ in range(2):
            self.use(button, window=title)
            time.sleep(0.5)
            if not self.desk.windows("^" + title + "$"):
                return
        self.closed(title)

    def shown(self, title):
        return self.control("Look in", "combo box", title).node.name.removesuffix(".")

    def goes_to(self, title, folder):
        desktop.wait_for(lambda: self.shown(title) == folder, what=f"{title} showing {folder}")

    def test_every_control_of_the_file_dialog_does_what_it_says(self):
        self.start_touring()
        path = os.path.join(self.desk.home, "empty.txt")
        with open(path, "w", encoding="utf-8"):
            pass
        self.use("Open and Read a Text Document")
        self.opened(OPEN)
        self.look(OPEN, "open")
        self.around_a_file_dialog(OPEN, "Text Files (*.txt)")
        self.use("Cancel", window=OPEN)
        self.closed(OPEN)
        self.use("Open and Read a Text Document")
        self.opened(OPEN)
        self.put("File name", path, window=OPEN)
        self.confirm("Open", OPEN)
        self.assertEqual(self.box_text("Voxmate - File Error"), "The below TEXT document you are trying to open is empty:\n" + path)
        self.look("Voxmate - File Error", "box-file")
        self.use("OK", window="Voxmate - File Error")
        self.everything_was_pressed(OPEN, "Voxmate - File Error")


class Small(TourCase):
    defaults = {**TourCase.defaults, "ShowTipAtStartUp": 0}

    def test_every_control_of_the_tip_does_what_it_says(self):
        with open(os.path.join(BUILD, "share", "voxmate", "VoxmateTips.txt"), encoding="utf-8") as file:
            tips = file.read().split("\n")
        self.start_touring(listen=True)
        self.choose("File", "Tip of the Day")
        self.opened("Tip of the Day")
        self.look("Tip of the Day", "tip")

        def tip():
            return next(c.name for c in self.walk("Tip of the Day") if c.role == "label" and c.name in tips)

        seen = {tip()}
        for _ in range(8):  # each tip is one of dozens, by chance
            self.use("Next Tip", window="Tip of the Day")
            time.sleep(0.05)
            seen.add(tip())
        self.assertGreater(len(seen), 2)
        begin = self.now()
        self.use("Read Tip")
        self.hear(begin, tip(), seconds=BEGINNING)
        # The button that would stop the speech is covered.
        self.desk.click_at(*self.open_character_menu()[0])
        self.settle()
        for name, setting in (("Auto Read Tip", "AutoReadTip"), ("Show Tips at Startup", "ShowTipAtStartUp")):
            for value in ("dword:00000001", "dword:00000000"):
                self.toggle(name)
                self.saved(setting, value)
        self.use("OK", window="Tip of the Day")
        self.closed("Tip of the Day")
        self.everything_was_pressed("Tip of the Day")

    def test_every_control_of_the_about_box_does_what_it_says(self):
        self.start_touring()
        self.choose("Help", "About Voxmate")
        self.opened("About Voxmate ®")
        self.look("About Voxmate ®", "about")
        self.assertIn("Version 1.1 - Build 5  - Windows NT/98 and above", self.desk.texts())
        self.use("System Info...")
        self.assertEqual(self.box_text("Voxmate"), "System Information Is Unavailable At This Time")
        self.check_names()
        x, y, width, height = self.desk.rect(self.desk.find("Voxmate", role="alert"))
        self.picture("box-no-information", (x - 8, y - 28, x + width + 8, y + height + 8))
        self.desk.key("Return")
        self.desk.gone("System Information Is Unavailable At This Time")
        started = self.fake("hardinfo")
        self.use("System Info...")
        desktop.wait_for(lambda: started() == [""], what="the tool being started")
        time.sleep(0.3)
        self.assertNotIn("System Information Is Unavailable At This Time", self.desk.texts())
        self.use("OK", window="About Voxmate ®")
        self.closed("About Voxmate ®")
        self.everything_was_pressed("About Voxmate ®")


class Reminders(TourCase):
    EDITOR = "Voxmate Reminders - CURRENTLY ENABLED"
    ASK = "Voxmate - Reminders"

    def month(self):
        """The title above the calendar's days."""
        return next(c.name for c in self.walk(self.EDITOR) if c.role == "label" and c.parents and c.parents[-1] == ("panel", "Date"))

    def rows(self):
        """The texts of the list's second column, from the top."""
        cells = [c for c in self.walk(self.EDITOR) if c.role == "table cell"]
        return [c.name for c in cells[1::4]]

    def answer(self, text, button, picture=None):
        self.assertEqual(self.box_text(self.ASK), text)
        if picture:
            self.look(self.ASK, picture)
        self.use(button, window=self.ASK)
        self.desk.gone(text)

    def test_every_control_of_the_editor_does_what_it_says(self):
        self.write(record("Tea", FUTURE, "Green"), record("Bank", FUTURE + datetime.timedelta(hours=23), "Card", "Y"))
        self.start_touring()
        self.choose("Reminders", "Show All Reminders")
        self.opened(self.EDITOR)
        self.look(self.EDITOR, "editor")
        self.use("Bank", "table cell")
        self.pressed.add((self.EDITOR, "tree", "Reminders"))
        desktop.wait_for(lambda: self.text_in("Title") == "Bank", what="the chosen reminder in the fields")
        self.assertTrue(self.has(self.control("Marked as done", "check box").node, "CHECKED"))
        # The list counts as sorted by its first column, so the first click on that reverses the order.
        for column, order in (("Id", ["Bank", "Tea"]), ("Date", ["Tea", "Bank"]), ("Title", ["Bank", "Tea"]), ("Title", ["Tea", "Bank"]),
                              ("Time", ["Bank", "Tea"])):
            self.use(column, "table column header", self.EDITOR)
            desktop.wait_for(lambda: self.rows() == order, what=f"the order by {column}")
        for arrow, month in (("Year before", "March 2098"), ("Month before", "February 2098"), ("Month after", "March 2098"),
                             ("Year after", "March 2099")):
            self.use(arrow, window=self.EDITOR)
            desktop.wait_for(lambda: self.month() == month, what=month)
        today = datetime.date.today()
        self.use(f"Today, {today:%A}, {today.day} {today:%B} {today.year}")
        desktop.wait_for(lambda: self.month() == f"{today:%B} {today.year}", what="this month")
        self.use("Year after")
        day = next(c for c in self.walk(self.EDITOR) if c.name == DAY and c.node.name.split(", ")[1].startswith("15 "))
        self.pressed.add(day.key())
        self.click_node(day.node)
        desktop.wait_for(lambda: self.has(day.node, "CHECKED"), what="the chosen day")
        when = datetime.datetime(today.year + 1, today.month, 15, 8, 30)

        self.put("Title", "Supper")
        self.put("Time", "08:30")
        self.put("Description", "Soup")
        self.toggle("Marked as done")
        self.use("Add")
        desktop.wait_for(lambda: self.slots()[2:] == [record("Supper", when, "Soup")], what="the added reminder")
        self.put("Title", "Dinner")
        self.use("Update")
        self.answer("Are you sure you want to update the selected reminder ?", "Yes", "box-update")
        desktop.wait_for(lambda: self.slots()[2:] == [record("Dinner", when, "Soup")], what="the changed reminder")
        self.use("Delete")
        self.answer("Are you sure you want to delete the selected reminder ?", "Yes", "box-delete")
        desktop.wait_for(lambda: len(self.slots()) == 2, what="the shorter list")
        self.put("Title", "")
        self.use("Update")
        self.answer("Are you sure you want to update the selected reminder ?", "Yes")
        self.answer("Please input a title to your reminder.", "OK", "box-title")
        self.put("Title", "Thea")
        self.use("Update")
        self.answer("Are you sure you want to update the selected reminder ?", "No")
        self.use("Close")
        self.answer("Do you want to save changes ?", "Cancel", "box-save")
        self.use("Close")
        self.answer("Do you want to save changes ?", "No")
        self.closed(self.EDITOR)
        self.assertEqual(len(self.slots()), 2)
        self.pressed.add((self.ASK, "push button", "Yes"))
        self.everything_was_pressed(self.EDITOR, self.ASK)

    def test_every_control_of_the_notice_does_what_it_says(self):
        self.desk.install_defaults(**{**self.defaults, "ReminderType": 1})
        self.write(record("Call", PAST, "Bank"))
        self.start_touring()
        title = "Voxmate Reminder"
        self.opened(title)
        self.look(title, "notice")
        self.assertEqual(self.text_in("Description"), "Bank")
        self.use("Description", "text", title)
        self.put("Snooze minutes", "0")
        self.use("Snooze", window=title)
        self.assertEqual(self.box_text("Voxmate - Reminders"), "Snooze time should be greater than zero.")
        self.look("Voxmate - Reminders", "box-snooze")
        self.use("OK", window="Voxmate - Reminders")
        self.closed("Voxmate - Reminders")
        self.put("Snooze minutes", "15")
        self.use("Snooze", window=title)
        self.closed(title)
        desktop.wait_for(lambda: fields(self.slots()[0])[3] != "2004", what="another time in the file")
        self.desk.end(self.program)
        self.write(record("Call", PAST, "Bank"))
        self.start_touring()
        self.opened(title)
        self.use("OK", window=title)
        self.closed(title)
        desktop.wait_for(lambda: self.done() == ["Y"], what="the mark in the file")
        self.everything_was_pressed(title, "Voxmate - Reminders")

    def test_a_click_answers_an_alert(self):
        self.write(record("Call", PAST, "Bank"))
        self.start_touring()
        x, y, width, height = self.desk.window_rect(desktop.wait_for(self.alerts, what="the alert")[0])
        desktop.wait_for(lambda: self.places()[0][1] + height == desktop.SCREEN[1], what="the alert in its place")
        self.check_names()
        x, y, width, height = self.places()[0]
        self.picture("alert", (x - 8, y - 8, x + width, y + height))
        self.desk.click_at(x + width // 2, y + height // 2)
        desktop.wait_for(lambda: self.done() == ["Y"], what="the mark in the file")
        desktop.wait_for(lambda: not self.alerts(), what="the alert going away")


class Boxes(TourCase):
    def test_the_splash_and_the_boxes_of_a_bad_start_have_names_and_fit(self):
        with tempfile.TemporaryDirectory() as folder:
            self.desk.install_defaults(**{**self.defaults, "CharacterPath": folder + "/", "UserName": "", "Pitch": 5000})
            self.start()
            desktop.wait_for(lambda: any(c.name == "A desktop assistant that talks" for c in self.walk()), step=0.01, what="the splash")
            self.check_names()
            x, y, width, height = self.desk.window_rect(self.desk.windows("^Voxmate$")[-1])
            self.picture("splash", (x, y, x + width, y + height))
            self.look("Voxmate - Path Error", "box-path")
            self.use("Yes", window="Voxmate - Path Error")
            self.look("Voxmate - Options in Error", "box-settings")
            self.use("OK", window="Voxmate - Options in Error")
            self.settle()

    def test_a_page_that_cannot_be_opened_is_said_and_can_be_pasted(self):
        self.fake("xdg-open", status=3)
        self.start_touring()
        self.choose("Help", "Download More Voice Types", "site2")
        page = f"file://{BUILD}/share/voxmate/web/voices.html"
        title = "Voxmate - URL Open Error"
        self.assertEqual(self.box_text(title), "\n".join([
            "Voxmate is unable to open the following URL:", page, "", "This URL has been copied to your Clipboard.",
            "Open Internet Explorer and paste in the Address Bar and click 'GO' or press 'Enter'"]))
        self.look(title, "box-page")
        self.use("OK", window=title)
        self.closed(title)
        self.use("Text to read", "text")
        self.desk.key("ctrl+v")
        desktop.wait_for(lambda: self.text_in("Text to read") == page, what="the address in the text box")


if __name__ == "__main__":
    unittest.main()
