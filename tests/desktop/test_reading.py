"""Everything that can be read aloud, with the real program: buttons and menu, clipboard, text files, Word documents,
wave files."""

import os
import shutil
import signal
import subprocess
import sys
import unittest
import wave

import numpy

import desk as desktop
import sound
from program import CALM, IDLE, ROOT, ProgramCase

sys.path.insert(0, os.path.join(ROOT, "tests", "files"))
import word_maker as maker  # noqa: E402  pylint: disable=wrong-import-position

SILENT = {**CALM, "EnableSoundEffects": 0, "ReadMessages": 0}
SENTENCE = "The old clock in the hall has stopped again, and nobody knows why. "


def focused_text(desk):
    """The text field that has the focus, or None."""
    focused = desk.accessible().STATE_FOCUSED
    return next((node for _, role, node in desk.widgets() if role == "text" and node.getState().contains(focused)), None)


def wait_and_type(desk, title, text):
    """Types a file's name into the open dialog."""
    desk.find(title)
    field = desktop.wait_for(lambda: focused_text(desk), what="the field for the file's name")
    desk.key("ctrl+a")
    desk.type(text)
    desktop.wait_for(lambda: field.queryText().getText(0, -1) == text, what="the typed name")
    desk.key("Return")


class ReadingCase(ProgramCase):
    defaults = SILENT

    def setUp(self):
        super().setUp()
        self.folder = os.path.join(self.desk.home, "texts")
        shutil.rmtree(self.folder, ignore_errors=True)
        os.makedirs(self.folder)
        self.temporary = os.path.join(self.desk.home, "tmp")
        os.makedirs(self.temporary, exist_ok=True)
        self.start_and_settle(TMPDIR=self.temporary)
        self.listen()

    def file(self, name, data):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as out:
            out.write(data)
        return path

    def stop_reading(self):
        """Presses Stop, after which nothing more may sound."""
        self.press("Stop Everything !!!")
        desktop.wait_for(lambda: not self.streams(), what="the end of the sound")
        self.settle()
        self.assertEqual(self.streams(), [])

    def open_text(self, path):
        self.press("Open and Read a Text Document")
        wait_and_type(self.desk, "Open Text File to Read...", path)

    def check_refusal(self, number):
        """An unexpected error ends the program with its report."""
        text = self.box_text("Voxmate - Unhandled Error")
        self.assertIn(f"\nError No. - {number}\n", text)
        self.assertIn("\nFunction/Module ID - 4\n", text)
        self.press("OK")
        self.has_ended()


class Reading(ReadingCase):
    shared = True

    def test_every_button_is_there_by_its_tool_tip(self):
        names = [name for name, role, _ in self.desk.widgets() if role == "push button"]
        for tip in ("What's today's date?", "What time is it?", "Speak Clipboard Text", "Do you know who am I ?",
                    "Open and Read a Text Document", "Open and Read a Word Document", "Speak the textbox text",
                    "Stop Everything !!!"):
            self.assertIn(tip, names)

    def test_a_text_file_is_read_in_each_encoding(self):
        text = "Käthe und Jürgen.\r\nBye"
        for name, data in (("utf8.txt", text.encode()), ("ansi.TXT", text.encode("cp1252")),
                           ("utf16.txt", text.encode("utf-16")), ("unmarked.txt", text.encode("utf-16-le")),
                           ("stray.txt", "Käthe und J".encode() + b"\xfcrgen.\r\nBye")):
            with self.subTest(name):
                path = self.file(name, data)
                begin = self.now()
                self.open_text(path)
                self.wait_for_sound(begin, "the text")
                self.settle()
                expected = self.rendered_length("Käthe und Jürgen. \nBye")
                self.assertAlmostEqual(self.sound_since(begin) / expected, 1, delta=0.1)

    def test_the_clipboard_is_put_into_the_text_box_and_read(self):
        self.type_text("Copied from here")
        self.desk.key("ctrl+a", "ctrl+c", "Delete")
        begin = self.now()
        self.press("Speak Clipboard Text")
        self.wait_for_sound(begin, "the clipboard's text")
        box = self.desk.find("Text to read")
        self.assertEqual(box.queryText().getText(0, -1), "Copied from here")

    def test_another_programs_clipboard_is_read_that_says_how_its_text_is_encoded(self):
        text = "Käthe kopiert."
        with subprocess.Popen(["xclip", "-quiet", "-selection", "clipboard", "-t", "text/plain;charset=utf-8"],
                              stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              env=self.desk.env) as owner:
            # The other program provides the clipboard's text as long as it runs.
            try:
                owner.stdin.write(text.encode())
                owner.stdin.close()
                box = self.desk.find("Text to read")

                def read():
                    # It takes a moment until the other program owns the clipboard.
                    self.press("Speak Clipboard Text")
                    return box.queryText().getText(0, -1) == text

                begin = self.now()
                desktop.wait_for(read, step=0.5, what="the clipboard's text")
                self.wait_for_sound(begin, "the clipboard's text being spoken")
            finally:
                owner.terminate()

    def test_a_cancelled_dialog_is_quiet_and_wrong_files_are_said(self):
        self.press("Open and Read a Text Document")
        self.desk.find("Open Text File to Read...")
        desktop.wait_for(lambda: focused_text(self.desk), what="the field for the file's name")
        self.desk.key("Escape")
        self.desk.gone("Open Text File to Read...")
        self.assertIn(IDLE, self.desk.texts())
        # A folder is opened, whatever its name.
        folder = os.path.join(self.folder, "folder.txt")
        os.mkdir(folder)
        self.open_text(folder)
        desktop.wait_for(lambda: focused_text(self.desk).queryText().getText(0, -1) == "", what="the folder being entered")
        self.desk.find("Open Text File to Read...")
        self.desk.key("Escape")
        self.desk.gone("Open Text File to Read...")
        self.assertEqual(self.boxes(), [])
        empty = self.file("empty.txt", b"")
        page = self.file("page.html", b"<p>")
        gone = os.path.join(self.folder, "gone.txt")
        for path, sentence in ((gone, "File not found:"),
                               (page, "The below document you are trying to open is not a TEXT document:"),
                               (empty, "The below TEXT document you are trying to open is empty:")):
            with self.subTest(path):
                self.open_text(path)
                self.assertEqual(self.answer_box("Voxmate - File Error"), sentence + "\n" + path)
                self.assertIn(IDLE, self.desk.texts())

    def test_a_wave_file_comes_out_with_its_own_length(self):
        rate = 22050
        at = numpy.arange(rate * 3) / rate
        tone = ((1.2 + numpy.sin(2 * numpy.pi * at)) * 6000 * numpy.sin(2 * numpy.pi * 440 * at)).astype("<i2")
        path = os.path.join(self.folder, "tone.wav")
        with wave.open(path, "wb") as out:
            out.setparams((1, 2, rate, 0, "NONE", ""))
            out.writeframes(tone.tobytes())
        # Alternately loud and quiet, so that the mouth has something to follow.
        begin = self.now()
        mouth = self.watch_mouth()
        self.play(path)
        self.wait_for_sound(begin, "the tone")
        self.settle()
        mouth.stop()
        self.assertAlmostEqual(self.sound_since(begin), 3, delta=0.09)
        self.assertGreaterEqual(self.mouths_during_sound(mouth, begin), 3)
        # Of a file cut off within its samples, the remaining ones are played.
        with open(path, "rb") as file:
            data = file.read()
        begin = self.now()
        self.play(self.file("half.wav", data[:44 + rate * 3]))
        self.wait_for_sound(begin, "half of the tone")
        self.settle()
        self.assertAlmostEqual(self.sound_since(begin), 1.5, delta=0.09)

    def test_wave_files_are_heard_whose_header_or_channels_are_odd(self):
        rate = 22050
        tone = 8000 * numpy.sin(2 * numpy.pi * 440 * numpy.arange(rate * 2) / rate)
        silence = numpy.zeros(rate * 2)
        for name, channels in (("one.wav", [tone]), ("opposite.wav", [tone, -tone]),
                               ("centre.wav", [silence, silence, tone, silence, silence, silence])):
            with wave.open(os.path.join(self.folder, name), "wb") as out:
                out.setparams((len(channels), 2, rate, 0, "NONE", ""))
                out.writeframes(numpy.column_stack(channels).astype("<i2").tobytes())
        # The header as left by a program that cannot go back to it: without the length.
        with open(os.path.join(self.folder, "one.wav"), "rb") as file:
            data = file.read()
        self.file("streamed.wav", data[:40] + bytes(4) + data[44:])
        levels = {}
        for name in ("one.wav", "streamed.wav", "opposite.wav", "centre.wav"):
            with self.subTest(name):
                begin = self.now()
                self.play(os.path.join(self.folder, name))
                self.wait_for_sound(begin, "the tone")
                self.settle()
                first, last = self.heard_since(begin)
                self.assertAlmostEqual((last - first) / sound.RATE, 2, delta=0.09)
                samples = self.recorded(begin)[first:last]
                levels[name] = numpy.sqrt((samples ** 2).mean())
                self.assertAlmostEqual(levels[name] / levels["one.wav"], 1, delta=0.1)

    def play(self, path):
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("alt+f")
        self.desk.find("Play a WAV File")
        self.desk.key("p")
        wait_and_type(self.desk, "Open Text File to Read...", path)

    def test_bad_files_leave_the_program_idle(self):
        whole = os.path.join(self.folder, "whole.wav")
        with wave.open(whole, "wb") as out:
            out.setparams((1, 2, 22050, 0, "NONE", ""))
            out.writeframes(bytes(44100))
        with open(whole, "rb") as file:
            data = file.read()
        for name, content in (("cut.wav", data[:30]), ("none.wav", b""), ("noise.wav", bytes(range(256)) * 9)):
            with self.subTest(name):
                self.play(self.file(name, content))
                self.settle()
                self.assertEqual(self.boxes(), [])
        binary = self.file("binary.txt", bytes(range(256)) * 4)
        self.open_text(binary)
        desktop.wait_for(lambda: "Busy..." in self.desk.texts(), what="the reading")
        self.press("Stop Everything !!!")
        self.settle()
        self.assertIsNone(self.program.poll())
        for name, number in (("huge.txt", 7), ("pipe.txt", 70)):
            with self.subTest(name):
                path = os.path.join(self.folder, name)
                if name == "pipe.txt":
                    os.mkfifo(path)
                else:
                    with open(path, "wb") as out:
                        out.truncate(4 << 30)
                self.open_text(path)
                self.check_refusal(number)
                if name == "huge.txt":
                    self.start_and_settle()

    def test_a_second_reading_queues_behind_the_first_and_stop_ends_both(self):
        first, second = "The first text.", "And this is the second one."
        files = [self.file(name, text.encode()) for name, text in (("a.txt", first), ("b.txt", second))]
        expected = self.rendered_length(first) + self.rendered_length(second)
        begin = self.now()
        for path in files:
            self.open_text(path)
        desktop.wait_for(lambda: self.sound_since(begin) > 0.9 * expected, what="both texts")
        self.settle()
        self.assertAlmostEqual(self.sound_since(begin) / expected, 1, delta=0.1)
        long = self.file("long.txt", (SENTENCE * 10).encode())
        begin = self.now()
        for path in (long, files[0]):
            self.open_text(path)
        self.wait_for_sound(begin, "the long text")
        self.stop_reading()


class WithoutRights(ReadingCase):
    without = ()

    def setUp(self):
        if os.geteuid() == 0:
            # A user with the right to read every file starts the program without it.
            self.without = ("setpriv", "--bounding-set", "-dac_override,-dac_read_search", "--inh-caps", "-all")
            if subprocess.run([*self.without, "true"], stderr=subprocess.DEVNULL, check=False).returncode != 0:
                self.skipTest("the right to read every file cannot be given up here")
        super().setUp()

    def start(self, **environment):
        self.program = self.desk.start(without=self.without, **environment)
        return self.program

    def test_a_file_that_may_not_be_read_is_reported(self):
        path = self.file("mine.txt", b"hello")
        os.chmod(path, 0)
        self.open_text(path)
        self.check_refusal(70)


@unittest.skipUnless(shutil.which("soffice") or os.path.exists("/usr/bin/soffice"), "without a word processor")
class WordCase(ReadingCase):
    def document(self, name, text):
        """Makes a .doc from a text, by the word processor."""
        source = self.file("source.txt", text.encode())
        self.convert(source, "doc:MS Word 97", os.path.join(self.desk.home, "maker"))
        path = os.path.join(self.folder, name)
        os.rename(os.path.join(self.folder, "source.doc"), path)
        return path

    def convert(self, source, kind, profile):
        subprocess.run(["soffice", "--headless", f"-env:UserInstallation=file://{profile}", "--convert-to", kind,
                        "--outdir", self.folder, source], check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, env=self.desk.env, timeout=120)

    def processors(self):
        """The processes of word processors that run for the program."""
        listed = subprocess.run(["pgrep", "-f", f"soffice.*{self.temporary}"], stdout=subprocess.PIPE, check=False)
        return listed.stdout.split()

    def nothing_left(self):
        desktop.wait_for(lambda: not self.processors() and not os.listdir(self.temporary), what="all being cleaned up")

    def open_word(self, path):
        self.press("Open and Read a Word Document")
        wait_and_type(self.desk, "Open Word File to Read...", path)


class Word(WordCase):
    def test_a_document_is_read_part_by_part(self):
        path = self.document("letter.doc", SENTENCE * 1500)
        begin = self.now()
        status = self.watch_status()
        self.open_word(path)
        self.wait_for_sound(begin, "the first part")
        desktop.wait_for(lambda: "Busy..." in status.texts(), what="the reading to be queued")
        status.stop()
        parts = [seen for seen in status.texts() if seen and seen.startswith("Reading part ")]
        self.assertIn("Opening Word Document. Please wait...", status.texts())
        # The parts pass as fast as they are queued: a busy machine shows few of them, or none.
        self.assertTrue(all(seen.endswith(" of 101 . Click STOP to Cancel Reading...") for seen in parts), parts)
        numbers = [int(seen.split()[2]) for seen in parts]
        self.assertEqual(numbers, sorted(set(numbers)))
        self.nothing_left()
        self.stop_reading()

    def test_bad_documents_are_quiet_and_other_formats_are_read(self):
        whole = self.document("whole.doc", "Hello")
        with open(whole, "rb") as file:
            data = file.read()
        for name, content in (("cut.doc", data[:700]), ("noise.doc", bytes(range(256)) * 40),
                              ("picture.doc", b"\x89PNG\r\n\x1a\n" + bytes(2000)),
                              ("damaged.doc", data[:512] + bytes(1024) + data[1536:]), ("protected.doc", self.protected(whole))):
            with self.subTest(name):
                begin = self.now()
                path = self.file(name, content)
                self.open_word(path)
                desktop.wait_for(lambda: IDLE in self.desk.texts(), what="the end of " + name)
                self.settle()
                self.assertEqual(self.boxes(), [])
                self.assertIsNone(self.heard_since(begin))
                self.nothing_left()
        empty = self.file("zero.doc", b"")
        self.open_word(empty)
        self.assertEqual(self.answer_box("Voxmate - File Error"),
                         "The below WORD document you are trying to open contains no text:\n" + empty)
        self.assertIn(IDLE, self.desk.texts())
        page = "<html><body><p>Hello</p></body></html>"
        expected = self.rendered_length("Hello")
        for path in (self.file("rich.doc", b"{\\rtf1\\ansi Hello\\par}"),
                     maker.write_xml(os.path.join(self.folder, "new.doc"), maker.paragraph("Hello")),
                     self.file("text.doc", b"Hello"), self.file("page.doc", page.encode()),
                     self.file("archive.doc", maker.web_archive(page, "windows-1252")),
                     self.file("flat.doc", maker.paragraphs(["Hello"]).encode())):
            with self.subTest(path):
                begin = self.now()
                self.open_word(path)
                self.wait_for_sound(begin, "the document")
                self.settle()
                self.assertAlmostEqual(self.sound_since(begin) / expected, 1, delta=0.1)
                self.assertEqual(self.boxes(), [])
                self.nothing_left()

    def protected(self, path):
        """The document, encrypted so that it opens only with a password."""
        office = maker.Office(self.folder)
        office.profile = os.path.join(self.desk.home, "maker")
        with open(office.protect(path, os.path.join(self.folder, "closed.doc"), "secret"), "rb") as file:
            return file.read()

    def open_dialog(self):
        """Opens the dialog for documents and waits until the word processor has started."""
        self.press("Open and Read a Word Document")
        self.desk.find("Open Word File to Read...")
        desktop.wait_for(self.processors, what="the word processor")

    def test_the_word_processor_starts_with_the_dialog_and_gives_the_first_word(self):
        path = self.document("letter.doc", "Dear reader.")
        self.open_dialog()
        folders = set(os.listdir(self.temporary))

        def heard():
            folders.update(os.listdir(self.temporary))
            return self.heard_since(begin)

        begin = self.now()
        wait_and_type(self.desk, "Open Word File to Read...", path)
        desktop.wait_for(heard, what="the first word")
        # Each word processor has a folder of its own: there was no second one.
        self.assertEqual(len(folders), 1, folders)
        self.hear(begin, "Dear reader.")
        self.nothing_left()

    def test_a_document_whose_name_stands_in_the_dialog_is_converted_before_it_is_opened(self):
        path = self.document("letter.doc", "Dear reader.")
        self.press("Open and Read a Word Document")
        self.desk.find("Open Word File to Read...")
        field = desktop.wait_for(lambda: focused_text(self.desk), what="the field for the file's name")
        self.desk.type(path)
        desktop.wait_for(lambda: field.queryText().getText(0, -1) == path, what="the typed name")
        # The word processor that has given its text is ended.
        self.nothing_left()
        begin = self.now()
        self.desk.key("Return")
        self.hear(begin, "Dear reader.")
        self.assertEqual(os.listdir(self.temporary), [])

    def test_a_cancelled_dialog_ends_the_word_processor_and_the_next_has_its_own(self):
        path = self.document("letter.doc", "Dear reader.")
        for _ in range(2):
            self.open_dialog()
            self.desk.key("Escape")
            self.desk.gone("Open Word File to Read...")
            self.nothing_left()
            self.assertIn(IDLE, self.desk.texts())
        for _ in range(2):
            begin = self.now()
            self.open_word(path)
            self.hear(begin, "Dear reader.")
            self.settle()
        self.nothing_left()

    def test_a_word_processor_that_is_killed_while_the_dialog_is_up_is_replaced(self):
        path = self.document("letter.doc", "Dear reader.")
        self.open_dialog()
        for process in self.processors():
            subprocess.run(["kill", "-KILL", process], check=False)
        begin = self.now()
        wait_and_type(self.desk, "Open Word File to Read...", path)
        self.hear(begin, "Dear reader.")
        self.nothing_left()

    def test_nothing_is_left_when_the_program_is_killed_while_the_dialog_is_up(self):
        self.open_dialog()
        self.program.kill()
        self.has_ended(status=-signal.SIGKILL)
        self.nothing_left()

    def test_stop_while_a_document_is_opened_ends_the_word_processor(self):
        path = self.document("long.doc", SENTENCE * 30000)
        x, y, width, height = self.desk.rect(self.desk.find("Stop Everything !!!"))
        begin = self.now()
        status = self.watch_status()
        self.open_word(path)
        desktop.wait_for(lambda: "Opening Word Document. Please wait..." in status.texts(), step=0.01, what="the opening")
        desktop.wait_for(self.processors, step=0.01, what="the word processor")
        self.desk.click_at(x + width // 2, y + height // 2)
        desktop.wait_for(lambda: status.texts()[-1] == IDLE, what="the end")
        status.stop()
        self.assertIn("Opening Word Document. Please wait...", status.texts())
        self.assertFalse([seen for seen in status.texts() if seen and seen.startswith("Reading part")])
        self.nothing_left()
        self.assertIsNone(self.heard_since(begin))


class WholeDocument(WordCase):
    defaults = {**SILENT, "Speed": 400}

    def test_all_of_a_document_is_heard_and_stop_in_a_later_part_ends_it(self):
        # Each sentence is followed by so many empty paragraphs that it makes a part of its own.
        sentence = SENTENCE.strip()
        path = self.document("letter.doc", " ".join([sentence + "\n" * 940] * 4))
        long = self.document("long.doc", " ".join([sentence + "\n" * 940] * 20))
        one = self.rendered_length(sentence)
        begin = self.now()
        self.open_word(path)
        desktop.wait_for(lambda: self.sound_since(begin) > 3.5 * one, what="the fourth part")
        self.settle()
        self.assertAlmostEqual(self.sound_since(begin) / (4 * one), 1, delta=0.05)
        begin = self.now()
        self.open_word(long)
        desktop.wait_for(lambda: self.sound_since(begin) > 1.2 * one, what="the second part")
        self.stop_reading()
        # On a busy machine the button is pressed some parts later.
        self.assertLess(self.sound_since(begin), 15 * one)
        self.nothing_left()


if __name__ == "__main__":
    unittest.main()
