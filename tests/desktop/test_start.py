"""Start and end: settings, boxes, the second copy, and machines that lack something."""

import os
import shutil
import signal
import tempfile
import time
import unittest

import desk as desktop
from program import BUILD, CALM, ROOT, ProgramCase


def catalogue():
    """Value name and display name of each setting, in the order of the program's catalogue."""
    names = []
    with open(os.path.join(ROOT, "packaging", "registry.reg.in"), encoding="utf-8") as file:
        for line in file:
            if line.startswith('"'):
                names.append(line.split('"')[1])
    return names


DISPLAY_NAMES = [
    "Balloon Font Name", "Balloon Font Size", "Character Path", "Character Size", "Put in System Tray on Close",
    "System Date Format", "Enable Greeting", "Greeting Type", "Character Introduction At Start Up",
    "Last Loaded Character", "Other Greeting String", "Pitch", "Read Messages While Showing",
    "Read Name With Messages", "Read Name With Messages", "Show Balloon", "Show Character At Start Up",
    "Show Character At Start Up", "Speed", "Speak System Time in 24 hour format", "Your Name",
    "Voice Type Last Used", "Whisper", "Enable Sound Effects", "Speak Time Every x Minute(s)", "Balloon Auto Hide",
    "Balloon Auto Pace", "Balloon Characters per Line", "Balloon Total Number of Lines", "Show Tip at Startup",
    "Auto Read Tip at Startup", "Show Reminder on Top", "Speak Alert for Reminder ", "Reminder Alert Sentence",
    "Speak Reminder Title", "Speak Reminder Date", "Speak Reminder Time", "Speak Reminder Description",
    "Speak Next Reminder Schedule if Snoozed", "Reminder Type", "Alert Reminder Action", "Alert Reminder Gradient",
    "Alert Reminder Shape", "Alert Reminder Color", "Alert Reminder Auto Close", "Alert Reminder Auto Close Time"]


def plain(text):
    """A box's text as the toolkit shows it: line ends are one character."""
    return text.replace("\r\n", "\n")


class FirstStart(ProgramCase):
    def test_with_the_defaults_file_no_box_shows_at_all(self):
        self.start()
        seen = set()
        self.desk.find("Text to read")
        end = time.monotonic() + 6
        while time.monotonic() < end:
            seen.update(self.boxes())
            time.sleep(0.1)
        self.assertEqual(seen, set())
        self.assertIsNone(self.program.poll())

    def test_without_a_settings_file_everything_is_reported_and_written_and_the_second_start_is_silent(self):
        self.desk.remove_settings()
        self.start()
        path = os.path.join(self.desk.env["XDG_DATA_HOME"], "voxmate", "Character") + "/"
        self.assertEqual(plain(self.box_text("Voxmate - Path Error")), "\n".join([
            "Following folder containing the characters does not exist:", path,
            "Do you want to let Voxmate load characters from windows system directory ?",
            "If no then Voxmate will end."]))
        self.press("Yes")
        text = plain(self.box_text("Voxmate - Options in Error"))
        self.assertEqual(text, "\n".join(
            ["Following option(s) not found (or inavlid values found) in your system registry:", ""] + DISPLAY_NAMES +
            ["", "Default value(s) will be used for all these option(s)"]))
        self.press("OK")
        self.desk.gone("Voxmate - Options in Error")
        written = self.desk.read_settings()
        self.assertEqual(set(written), set(catalogue()))
        with open(os.path.join(ROOT, "packaging", "registry.reg.in"), encoding="utf-8") as file:
            shipped = {line.split('"')[1]: line.strip().split("=", 1)[1] for line in file if line.startswith('"')}
        own = {"CharacterPath", "LastCharacter", "LastSpeechEngine", "Pitch", "Speed"}
        for name, value in written.items():
            if name not in own:
                self.assertEqual(value, shipped[name], name)
        self.assertEqual(written["Pitch"], "dword:00000032")
        self.assertEqual(written["Speed"], "dword:0000009c")
        share = os.path.join(BUILD, "share", "voxmate")
        self.assertEqual(written["CharacterPath"], f'"{share}/msagent/chars/"')
        self.desk.end(self.program)

        self.start_and_settle()
        self.assertEqual(self.boxes(), [])

    def test_what_is_not_written_back_is_reported_until_its_own_writer_has_stored_it(self):
        with open(self.desk.settings_file, encoding="utf-8") as file:
            kept = [line for line in file if not line.startswith(('"LastCharacter"', '"LastSpeechEngine"', '"Pitch"'))]
        with open(self.desk.settings_file, "w", encoding="utf-8") as file:
            file.writelines(kept)
        self.start()
        text = plain(self.box_text("Voxmate - Options in Error"))
        self.assertEqual(text.split("\n")[2:-2], ["Last Loaded Character", "Pitch", "Voice Type Last Used"])
        self.press("OK")


class Instances(ProgramCase):
    defaults = CALM

    def test_a_second_copy_says_so_and_ends_and_the_first_goes_on(self):
        self.start_and_settle()
        self.second_copy_ends()

    def test_a_second_copy_in_another_session_says_so_too_because_the_folder_of_data_is_one(self):
        self.start_and_settle()
        with tempfile.TemporaryDirectory() as runtime:
            os.chmod(runtime, 0o700)
            self.second_copy_ends(XDG_RUNTIME_DIR=runtime)

    def test_a_crash_leaves_nothing_that_blocks_the_next_start(self):
        self.start_and_settle()
        self.program.send_signal(signal.SIGKILL)
        self.has_ended(status=-signal.SIGKILL)
        self.start_and_settle()
        self.assertEqual(self.boxes(), [])

    def test_exit_from_the_menu_by_the_keyboard_ends_the_program(self):
        self.start_and_settle()
        self.choose_by_keys("alt+f", "Exit", "e")
        self.has_ended()

    def test_closing_the_window_ends_the_program(self):
        self.start_and_settle()
        window = self.desk.windows("^Voxmate$")[0]
        self.desk.run("xdotool", "windowfocus", "--sync", window)
        self.desk.key("alt+F4")
        self.has_ended()


class Lacking(ProgramCase):
    defaults = CALM

    def test_without_a_sound_device_a_box_says_so_and_the_program_goes_on(self):
        self.start(PULSE_SERVER="unix:/nonexistent/sound")
        self.desk.find("Text to read")
        self.settle()
        self.type_text("Anybody there?")
        self.press("Speak the textbox text")
        self.assertEqual(self.answer_box("Voxmate - Audio Output Problem"), "There is no support for audio output.")
        self.assertIsNone(self.program.poll())

    def test_without_characters_both_boxes_show_and_the_program_ends(self):
        with tempfile.TemporaryDirectory() as folder:
            os.makedirs(os.path.join(folder, "share"))
            shutil.copy(os.path.join(BUILD, "voxmate"), folder)
            shutil.copytree(os.path.join(BUILD, "share", "voxmate"), os.path.join(folder, "share", "voxmate"),
                            ignore=shutil.ignore_patterns("*.acs"))
            empty = os.path.join(folder, "empty") + "/"
            os.makedirs(empty)
            self.desk.install_defaults(**CALM, CharacterPath=empty)
            self.start(path=os.path.join(folder, "voxmate"))
            self.assertEqual(plain(self.box_text("Voxmate - Path Error")), "\n".join([
                "No characters found in the following path:", empty,
                "Do you want to let Voxmate load characters from windows system directory ?",
                "If no then Voxmate will end."]))
            self.press("Yes")
            share = os.path.join(folder, "share", "voxmate")
            desktop.wait_for(lambda: "download" in self.box_text("Voxmate - Path Error"), what="the second box")
            self.assertEqual(plain(self.box_text("Voxmate - Path Error")), "\n".join([
                "No characters found in the following path:", f"{share}/msagent/chars/",
                "Please goto following MS Agents' download page and install MS Agent.",
                f"file://{share}/web/characters.html", "Do you want to goto download site now ?"]))
            self.press("No")
            self.has_ended()

    def test_without_an_engine_the_box_explains_and_the_program_ends(self):
        self.program = self.desk.start_without_engines()
        if self.program is None:
            self.skipTest("this machine does not let a process hide files from itself")
        share = os.path.join(BUILD, "share", "voxmate")
        self.assertEqual(plain(self.box_text("Voxmate - Unhandled Error")), "\n".join([
            "No speech engine is loaded on this machine. Please load a speech engine and then try again.",
            "Voxmate will end now.",
            "Please goto following MS Agents' download page and install atleast one Speech Engine.",
            f"file://{share}/web/voices.html", "Do you want to goto download site now ?"]))
        self.press("No")
        self.has_ended()

    def test_an_error_nobody_caught_is_shown_and_ends_the_program(self):
        self.desk.install_defaults(GreetingEnabled=0, SpeakTimeInterval=547)
        self.start()
        self.assertEqual(plain(self.box_text("Voxmate")), "Run-time error '6':\n\nOverflow")
        self.press("OK")
        self.has_ended()

    def test_a_page_that_cannot_be_opened_is_copied_and_said(self):
        self.desk.install_defaults(GreetingEnabled=0, CharacterPath=self.desk.home + "/nowhere")
        with tempfile.TemporaryDirectory() as folder:
            shutil.copy(os.path.join(BUILD, "voxmate"), folder)
            shutil.copytree(os.path.join(BUILD, "share", "voxmate", "icons"),
                            os.path.join(folder, "share", "voxmate", "icons"))
            self.start(path=os.path.join(folder, "voxmate"), PATH="/nonexistent")
            self.box_text("Voxmate - Path Error")
            self.press("Yes")
            desktop.wait_for(lambda: "download" in self.box_text("Voxmate - Path Error"), what="the second box")
            self.press("Yes")
            page = f"file://{folder}/share/voxmate/web/characters.html"
            self.assertEqual(plain(self.box_text("Voxmate - URL Open Error")), "\n".join([
                "Voxmate is unable to open the following URL:", page, "", "This URL has been copied to your Clipboard.",
                "Open Internet Explorer and paste in the Address Bar and click 'GO' or press 'Enter'"]))
            self.press("OK")
            self.has_ended()

    def test_a_damaged_character_is_reported_with_its_name_and_the_program_ends(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "Broken.acs")
            with open(path, "wb") as file:
                file.write(b"\xC3\xAB\xCD\xAB" + bytes(20))
            self.desk.install_defaults(**CALM, CharacterPath=folder, LastCharacter="Broken")
            self.start()
            text = plain(self.box_text("Voxmate - Unhandled Error"))
            self.assertIn(path, text)
            self.assertIn("Function/Module ID - 2", text)
            self.press("OK")
            self.has_ended()


if __name__ == "__main__":
    unittest.main()
