"""A tour of the main window by real input: every button, box, bar and menu item is pressed and does what it says, and
no control is left unpressed. A picture of each is saved in build/tour."""

import datetime
import os
import time
import unittest

import desk as desktop
import test_character
from program import BUILD, IDLE
from test_reminders import record
from tour import BEGINNING, TourCase

CHARACTER_BUTTON = test_character.CHARACTER_BUTTON
OPEN = {  # kinds of files -> the dialog that asks for one
    "Text Files (*.txt)": "Open Text File to Read...",
    "Word Files (*.doc)": "Open Word File to Read...",
    "Wav Files (*.wav)": "Open Text File to Read...",
}
PAGES = {  # help pages of the help menu's items
    ("Help", "Download More Characters", "site1"): "characters",
    ("Help", "Download More Characters", "site2"): "installing",
    ("Help", "Download More Characters", "site3"): "making",
    ("Help", "Download More Voice Types", "site1"): "installing",  # the same page as for the second item above
    ("Help", "Download More Voice Types", "site2"): "voices",
    ("Extras", "Help on Extras"): "extras",
}


class MainTour(TourCase):
    def phrases(self, command):
        """What the program answers to a command now, or would have answered a moment ago."""
        return test_character.Character.phrases(self, command)[:1]

    def tells_the_time(self, act):
        before = self.phrases("time")
        begin = self.now()
        act()
        self.hear(begin, *(before + [phrase for phrase in self.phrases("time") if phrase not in before]), seconds=BEGINNING)
        self.hush()

    def opens_a_file_of(self, kind, act, picture):
        """The file dialog must appear for this kind of file; it is cancelled."""
        act()
        self.opened(OPEN[kind])
        self.assertEqual(self.control("Files of type", "combo box").node.name, kind)
        self.look(OPEN[kind], picture)
        self.use("Cancel", window=OPEN[kind])
        self.closed(OPEN[kind])

    def shows(self, title, act, picture=None):
        act()
        self.opened(title)
        if picture:
            self.look(title, picture)
        self.close_by_escape(title)

    def becomes(self, name):
        """Waits until the character of this name is the present one."""
        self.desk.find(name.upper(), role="label")
        self.saved("LastCharacter", f'"{name}"')
        self.settle()
        self.character_window()

    def copy(self, text):
        """Copies a text to the clipboard; the text box is empty afterwards."""
        self.put("Text to read", text)
        self.desk.key("ctrl+a", "ctrl+c", "Delete")


class Buttons(MainTour):
    def test_every_control_of_the_main_window_does_what_it_says(self):
        self.start_touring(listen=True)
        self.look("Voxmate", "main")
        self.copy("Copied from somewhere")
        self.says(lambda: self.use("Speak Clipboard Text"), "Copied from somewhere")
        self.assertEqual(self.text_in("Text to read"), "Copied from somewhere")
        self.put("Text to read", "Good evening to all of you")
        self.says(lambda: self.use("Speak the textbox text"), "Good evening to all of you")
        self.says(lambda: self.use("What's today's date?"), *self.phrases("date"))
        self.tells_the_time(lambda: self.use("What time is it?"))
        self.says(lambda: self.use("Do you know who am I ?"), *self.phrases("who"))
        self.opens_a_file_of("Text Files (*.txt)", lambda: self.use("Open and Read a Text Document"), "open-text")
        self.opens_a_file_of("Word Files (*.doc)", lambda: self.use("Open and Read a Word Document"), "open-word")
        self.shows("Voxmate Options", lambda: self.use("User Options"))

        self.toggle("Whisper")
        self.saved("Whisper", "dword:00000001")
        self.toggle("Whisper")
        self.saved("Whisper", "dword:00000000")
        for name, key in (("Speed", "Left"), ("Pitch", "Right")):
            def in_file(name=name):
                return int(self.desk.read_settings()[name].removeprefix("dword:"), 16)

            before = in_file()
            self.use(name, "scroll bar")  # to the middle
            self.desk.key(key)
            # By now the file may hold the result of the click or that of the key.
            desktop.wait_for(lambda: in_file() != before and f"= {in_file()}" in self.desk.texts(), what=f"the {name} shown and in the file")
        entry = self.next_entry("Voice Types")
        self.saved("LastSpeechEngine", f'"{entry}"')

        self.the_characters_own_menu()
        # The character is hidden now.
        self.use(CHARACTER_BUTTON)
        desktop.wait_for(lambda: self.desk.windows("^Voxmate character$"), what="the character coming back")
        self.use(CHARACTER_BUTTON, button=3)
        item = self.menu_item(("File", "Characters", "Tock"))
        desktop.wait_for(lambda: self.has(item, "SHOWING"), what="the cast")
        self.desk.click(item)
        self.becomes("Tock")
        self.everything_was_pressed("Voxmate")

    def the_characters_own_menu(self):
        def choose(command):
            places = self.open_character_menu()
            self.check_names()
            if command == "time":
                _, (x, y, width, height) = self.character_window()
                self.picture("character-menu", (x - 60, y - 120, x + width + 60, y + height + 20))
            self.desk.click_at(*places[test_character.COMMANDS[command]])

        self.tells_the_time(lambda: choose("time"))
        self.says(lambda: choose("date"), *self.phrases("date"))
        begin = self.now()
        choose("who")
        self.hear(begin, *self.phrases("who"), seconds=BEGINNING)
        balloon = desktop.wait_for(lambda: self.desk.windows("^Voxmate balloon$"), what="the balloon")[0]
        self.check_names()
        x, y, width, height = self.desk.window_rect(balloon)
        self.picture("balloon", (x - 8, y - 8, x + width + 8, y + height + 240))
        choose("stop")
        self.settle()
        choose("hide")
        desktop.wait_for(lambda: not self.desk.windows("^Voxmate character$"), what="the character going")


class Menus(MainTour):
    def test_every_item_of_every_menu_does_what_it_says(self):
        self.write(record("Tea", datetime.datetime(2099, 3, 7, 9, 5), "Green"))
        tray = self.desk.tray("left")
        self.addCleanup(tray.terminate)
        opened = self.fake("xdg-open")
        self.start_touring(listen=True)
        self.look("Voxmate", "main")
        leaves = set(self.menu_leaves())

        for name in ("Gamp", "Tock", "Nalu"):
            self.choose("File", "Characters", name, picture="menu-characters" if name == "Nalu" else None)
            self.becomes(name)
            self.assertTrue(self.has(self.menu_item(("File", "Characters", name)), "CHECKED"), "its check mark")
        self.opens_a_file_of("Wav Files (*.wav)", lambda: self.choose("File", "Play a WAV File", picture="menu-file"), "open-wave")
        self.shows("Tip of the Day", lambda: self.choose("File", "Tip of the Day"))
        self.shows("Voxmate Options", lambda: self.choose("File", "Options"))

        self.says(lambda: self.choose("Speak", "Who Am I?", picture="menu-speak"), *self.phrases("who"))
        self.says(lambda: self.choose("Speak", "Tell Me the Date"), *self.phrases("date"))
        self.tells_the_time(lambda: self.choose("Speak", "Tell Me the Time"))
        self.copy("Copied from there")
        self.says(lambda: self.choose("Speak", "Read Clipboard"), "Copied from there")
        self.assertEqual(self.text_in("Text to read"), "Copied from there")
        self.opens_a_file_of("Word Files (*.doc)", lambda: self.choose("Speak", "Open Word Document to Read"), "open-word")
        self.opens_a_file_of("Text Files (*.txt)", lambda: self.choose("Speak", "Open Text Document to Read"), "open-text")

        self.shows_the_editor("ENABLED")
        self.switch("Disable", "Are you sure you want to disable the reminders ?")
        self.shows_the_editor("DISABLED")
        self.switch("Enable", None)
        self.shows_the_editor("ENABLED")

        self.choose("Help", "Help", picture="menu-help")
        self.assertEqual(self.box_text("Voxmate - Help"), "Help will be available very soon. Author is preparing the help.")
        self.look("Voxmate - Help", "box-help")
        self.use("OK", window="Voxmate - Help")
        self.closed("Voxmate - Help")
        for path, page in PAGES.items():
            before = len(opened())
            self.choose(*path, picture="menu-pages-" + page)
            desktop.wait_for(lambda: len(opened()) > before, what=f"the page of {path}")
            file = os.path.join(BUILD, "share", "voxmate", "web", page + ".html")
            self.assertEqual(opened()[before:], ["file://" + file], path)
            self.assertTrue(os.path.exists(file), file)
        self.assertEqual(self.boxes(), [])
        self.shows("About Voxmate ®", lambda: self.choose("Help", "About Voxmate"))

        self.put("Text to read", "Spoken from the menu")
        self.says(lambda: self.choose("Extras", "Speak the Text", picture="menu-extras"), "Spoken from the menu")
        begin = self.now()
        self.use("Do you know who am I ?")
        self.wait_for_sound(begin)
        self.choose("Extras", "Stop Everything")
        self.use("Text to read", "text")
        self.desk.key("ctrl+Home")
        self.says(lambda: self.choose("Extras", "Pieces of Text", "Read from the Cursor"), "Spoken from the menu")
        self.choose("Extras", "Pieces of Text", "Read the Selection")
        self.opened("Voxmate - Read")
        self.look("Voxmate - Read", "box-selection")
        self.close_by_escape("Voxmate - Read")
        self.choose("Extras", "Document", "Reading Window")
        self.opened("Voxmate - Reading")
        self.look("Voxmate - Reading", "reading")
        self.desk.key("alt+F4")
        self.closed("Voxmate - Reading")
        self.choose("Extras", "Pronunciation...")
        self.opened("Voxmate - Pronunciation")
        self.put("Written", "Qzx", window="Voxmate - Pronunciation")
        self.put("Said", "Heard instead", window="Voxmate - Pronunciation")
        self.says(lambda: self.use("Hear It", window="Voxmate - Pronunciation"), "Heard instead")
        self.use("Add or Change", window="Voxmate - Pronunciation")
        self.look("Voxmate - Pronunciation", "pronunciation")
        self.use("Qzx", "table cell", window="Voxmate - Pronunciation")
        self.use("Remove", window="Voxmate - Pronunciation")
        self.use("Close", window="Voxmate - Pronunciation")
        self.closed("Voxmate - Pronunciation")
        self.choose("Extras", "Save as Sound...")
        self.opened("Save as Sound")
        self.look("Save as Sound", "save-sound")
        self.close_by_escape("Save as Sound")
        # No document is being read, which these concern; test_documents chooses them.
        for name in ("Pause or Go On", "Back a Sentence", "Forward a Sentence", "Back a Paragraph", "Forward a Paragraph",
                     "From the Beginning"):
            self.assertFalse(self.has(self.menu_item(("Extras", "Document", name)), "ENABLED"), name)
            self.pressed.add(("Extras", "Document", name))
        self.choose("Extras", "Document", "Forget Where Documents Were Left")
        desktop.wait_for(lambda: IDLE in self.desk.texts(), what="the idle status")
        for name in ("Read the Selection of Any Program", "Read the Clipboard from Any Program", "Open It with Each Document",
                     "Say Links and Codes in Short", "Voice for Each Language", "Wait during Full Screen and Do Not Disturb"):
            path = next(leaf for leaf in leaves if leaf[0] == "Extras" and leaf[-1].startswith(name))
            for checked in (True, False):
                self.choose(*path)
                item = self.menu_item(path)
                desktop.wait_for(lambda: self.has(item, "CHECKED") == checked, what=f"the check mark of {name}")
        # There is no notification server, which the item tells while it is on.
        for checked, name in ((True, "Desktop Notification with Each"), (False, "Desktop Notification with Each (none on this desktop)")):
            self.choose("Extras", "Alerts", name)
            item = self.menu_item(("Extras", "Alerts", name))
            desktop.wait_for(lambda: self.has(item, "CHECKED") == checked, what="the check mark of notifications")  # pylint: disable=cell-var-from-loop
        for name in ("Character Stands Aside", "Character Breathes"):
            for checked in (False, True):
                self.choose("Extras", name)
                item = self.menu_item(("Extras", name))
                desktop.wait_for(lambda: self.has(item, "CHECKED") == checked, what=f"the check mark of {name}")  # pylint: disable=cell-var-from-loop
        self.choose("Extras", "Save as Calendar File...")
        self.opened("Save as Calendar File")
        self.look("Save as Calendar File", "save-calendar")
        self.close_by_escape("Save as Calendar File")
        # Nothing was announced while nobody was there; test_reminders chooses it.
        self.assertFalse(self.has(self.menu_item(("Extras", "Missed Reminders...")), "ENABLED"))
        self.pressed.add(("Extras", "Missed Reminders..."))
        for number, name in enumerate(("Start at Log-in", "Greet Me at Log-in", "Greet Me at Log-in", "Start at Log-in")):
            self.choose("Extras", name)
            item = self.menu_item(("Extras", name))
            desktop.wait_for(lambda: self.has(item, "CHECKED") == (number < 2), what=f"the check mark of {name}")

        self.choose("File", "Put in System Tray")
        self.closed("Voxmate")
        self.double_click_icon()
        self.opened("Voxmate")
        self.choose("File", "Exit")
        self.has_ended()
        self.assertEqual(leaves - self.pressed, set(), "nobody has chosen")

    def shows_the_editor(self, state):
        title = "Voxmate Reminders - CURRENTLY " + state
        self.choose("Reminders", "Show All Reminders", picture="menu-reminders")
        self.opened(title)
        self.look(title, "editor-" + state.lower())
        self.desk.key("Escape")
        self.use("No", window="Voxmate - Reminders")
        self.closed(title)

    def switch(self, way, question):
        """Switches reminders on or off, which the menu then shows by a check."""
        self.choose("Reminders", "Enable/Disable Reminders", way + " Reminders", picture=f"menu-{way.lower()}")
        if question:
            self.assertEqual(self.box_text("Voxmate - Reminders"), question)
            self.look("Voxmate - Reminders", f"box-{way.lower()}")
            self.use("Yes", window="Voxmate - Reminders")
            self.closed("Voxmate - Reminders")
        for item in ("Enable", "Disable"):
            node = self.menu_item(("Reminders", "Enable/Disable Reminders", item + " Reminders"))
            desktop.wait_for(lambda: self.has(node, "CHECKED") == (item == way), what=f"the check mark of {item}")

    def double_click_icon(self):
        self.desk.run("xdotool", "mousemove", "16", str(desktop.SCREEN[1] - 16))
        time.sleep(0.3)
        self.desk.run("xdotool", "click", "--repeat", "2", "--delay", "80", "1")


if __name__ == "__main__":
    unittest.main()
