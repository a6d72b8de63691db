"""Documents of all kinds that are opened with the program, and read aloud."""

import os
import shutil
import subprocess
import time
import unittest
import wave
import zipfile

import numpy
from gi.repository import Gio

import desk as desktop
import sound
from program import BUILD, IDLE
from test_extras import ExtrasCase, call
from test_reading import WordCase

SENTENCES = [f"This is sentence number {number} of a document that takes long enough to be stopped." for number in
             ("one", "two", "three", "four", "five", "six", "seven", "eight", "nine", "ten")]


def office_document(path, *paragraphs):
    """A small .docx."""
    space = "http://schemas.openxmlformats.org/"
    with zipfile.ZipFile(path, "w") as out:
        out.writestr("[Content_Types].xml", f'<Types xmlns="{space}package/2006/content-types"><Override PartName="/word/document.xml" '
                     'ContentType="application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml"/></Types>')
        out.writestr("_rels/.rels", f'<Relationships xmlns="{space}package/2006/relationships"><Relationship Id="r1" Type='
                     f'"{space}officeDocument/2006/relationships/officeDocument" Target="word/document.xml"/></Relationships>')
        body = "".join(f"<w:p><w:r><w:t>{text}</w:t></w:r></w:p>" for text in paragraphs)
        out.writestr("word/document.xml", f'<w:document xmlns:w="{space}wordprocessingml/2006/main"><w:body>{body}</w:body></w:document>')


class DocumentCase(ExtrasCase):
    def setUp(self):
        super().setUp()
        self.folder = os.path.join(self.desk.home, "documents")
        shutil.rmtree(self.folder, ignore_errors=True)
        os.makedirs(self.folder)
        self.start_and_settle()
        self.listen()

    def file(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(text if isinstance(text, bytes) else text.encode())
        return path

    def open(self, *paths):
        call(self.desk, "Open", "(asa{sv})", ["file://" + path for path in paths], {})

    def page(self, name="page.html", sentences=SENTENCES):
        return self.file(name, "<!DOCTYPE html><body>" + "".join(f"<p>{sentence}</p>" for sentence in sentences))

    def silent(self):
        """Waits until nothing sounds any more and the program is idle."""
        desktop.wait_for(lambda: not self.streams(), what="the end of the sound")
        self.settle()
        self.assertEqual(self.streams(), [])

    def status_is(self, beginning):
        desktop.wait_for(lambda: any(text.startswith(beginning) for text in self.desk.texts()), what=f"the status {beginning!r}")


class Opened(DocumentCase):
    def test_documents_are_read_in_turn_whatever_their_names(self):
        letter = os.path.join(self.folder, "letter.xyz")
        office_document(letter, "The first document is a letter.", "It has two paragraphs.")
        paths = [letter, self.page("page", ["The second document is a page."]),
                 self.file("notes.txt", "The third document is plain."),
                 self.file("rich.dat", r"{\rtf1\ansi The fourth document is rich.\par}"),
                 self.file("list.md", "# List\n\n1. The fifth document is a list.\n")]
        begin = self.now()
        self.open(*paths)
        for text in ("The first document is a letter.", "It has two paragraphs.", "The second document is a page.",
                     "The third document is plain.", "The fourth document is rich.", "1. The fifth document is a list."):
            self.hear(begin, text)
        self.silent()
        self.assertEqual(self.boxes(), [])

    def test_the_command_line_opens_documents_and_waits_for_the_start(self):
        self.desk.end(self.program)
        begin = self.now()
        self.program = self.desk.start(arguments=[self.page(sentences=["A page that the program was started with."])])
        self.hear(begin, "A page that the program was started with.")

    def test_the_status_line_tells_what_is_read_and_stop_ends_it_and_what_waits(self):
        begin = self.now()
        self.open(self.page(), self.page("next.html", ["Never heard."]))
        self.wait_for_sound(begin)
        self.status_is("Reading (")
        self.press("Stop Everything !!!")
        self.silent()
        begin = self.now()
        self.open(self.page())
        self.hear(begin, SENTENCES[0])
        self.desk.key("Escape")
        self.silent()

    def test_a_typed_text_is_spoken_after_the_present_sentences_and_then_the_document_goes_on(self):
        self.type_text("Between two sentences.")
        begin = self.now()
        self.open(self.page(sentences=SENTENCES[:4]))
        self.wait_for_sound(begin)
        self.press("Speak the textbox text")
        for text in (*SENTENCES[:2], "Between two sentences.", SENTENCES[3]):
            self.hear(begin, text)

    def test_hiding_the_character_ends_it(self):
        begin = self.now()
        self.open(self.page())
        self.wait_for_sound(begin)
        self.desk.click_at(*self.open_character_menu()[-1])
        self.silent()

    def test_what_cannot_be_read_is_told_in_a_sentence(self):
        protected = self.file("secret.pdf", b"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + bytes(504) + "EncryptedPackage".encode("utf-16-le"))
        cut = os.path.join(self.folder, "cut.docx")
        office_document(cut, "Lost")
        with open(cut, "rb+") as file:
            file.truncate(os.path.getsize(cut) // 2)
        for path, reason in ((protected, "it is protected by a password or against copying"),
                             (cut, "it is damaged"),
                             (self.file("noise.docx", bytes(range(256)) * 20), "it is of no kind that Voxmate knows"),
                             (self.file("empty.odt", ""), "there is no text in it")):
            with self.subTest(path):
                self.open(path)
                name = os.path.basename(path)
                self.assertEqual(self.answer_box("Voxmate - File Error"), f'"{name}" cannot be read: {reason}.')
                self.settle()

    def test_a_recording_is_played(self):
        rate = 22050
        tone = (8000 * numpy.sin(2 * numpy.pi * 440 * numpy.arange(rate * 2) / rate)).astype("<i2")
        path = os.path.join(self.folder, "tone.dat")
        with wave.open(path, "wb") as out:
            out.setparams((1, 2, rate, 0, "NONE", ""))
            out.writeframes(tone.tobytes())
        begin = self.now()
        self.open(path)
        self.wait_for_sound(begin)
        self.status_is("Playing recording...")
        self.silent()
        self.assertAlmostEqual(self.sound_since(begin), 2, delta=0.09)
        self.open(self.file("song.ogg", b"OggS" + bytes(100)))
        self.assertEqual(self.answer_box("Voxmate - File Error"), '"song.ogg" cannot be played: it is damaged, or of a kind that is not played here.')

    def test_a_document_is_saved_as_the_sound_that_is_heard(self):
        path = os.path.join(self.folder, "saved.wav")
        begin = self.now()
        self.open(self.page(sentences=SENTENCES[:1]))
        self.wait_for_sound(begin)
        self.silent()
        heard = self.recorded(begin)
        self.desk.key("ctrl+s")
        self.active(self.shown("Save as Sound"))
        self.desk.key("Return")
        self.active(self.shown("Save Sound As..."))
        self.desk.key("ctrl+a")
        self.desk.type(path)
        self.desk.key("Return")
        desktop.wait_for(lambda: any(text.startswith("Saved saved.wav") for text in self.desk.texts()), what="the file")
        saved = sound.resampled(*sound.read_wave(path))
        lengths = [numpy.subtract(*reversed(sound.loud_span(samples))) / sound.RATE for samples in (heard, saved)]
        self.assertAlmostEqual(*lengths, delta=0.03)  # a frame of 20 ms, and what a window of loudness is long
        self.assertGreater(sound.likeness(heard, saved[slice(*sound.loud_span(saved))]), 0.9)
        self.assertEqual([name for name in os.listdir(self.folder) if name.startswith(".")], [])

    def test_nothing_is_left_of_the_reader_when_the_program_ends(self):
        begin = self.now()
        # More than is read ahead: the reader waits.
        self.open(self.page(sentences=SENTENCES * 40000))
        self.wait_for_sound(begin)
        readers = self.desk.run("pgrep", "-P", str(self.program.pid), "-x", "voxmate-reader").split()
        self.assertEqual(len(readers), 1)
        self.desk.end(self.program)
        desktop.wait_for(lambda: not os.path.exists(f"/proc/{readers[0].decode()}"), what="the reader's end")


class WhileItReads(DocumentCase):
    def test_one_pauses_and_goes_on_and_moves_by_keys_while_the_text_box_has_the_keyboard(self):
        self.type_text("typed")
        begin = self.now()
        self.open(self.page())
        self.hear(begin, SENTENCES[0])
        # Each time from the beginning: how far it has come since depends on the machine.
        self.desk.key("alt+Home", "alt+Right", "ctrl+p")
        self.status_is("Paused (")
        desktop.wait_for(lambda: not self.streams(), what="silence")
        begin = self.now()
        self.desk.key("ctrl+p")
        self.hear(begin, SENTENCES[1])
        self.status_is("Reading (")
        begin = self.now()
        self.desk.key("alt+Home", "alt+Right", "alt+Right", "alt+Left", "alt+Left")
        self.hear(begin, SENTENCES[0])
        begin = self.now()
        self.desk.key("alt+Home", "alt+Down", "alt+Down", "alt+Right")
        self.hear(begin, SENTENCES[3])
        # It would go on while the menus are opened.
        self.desk.key("alt+Home", "alt+Down", "alt+Down", "alt+Right", "ctrl+p")
        self.status_is("Paused (")
        begin = self.now()
        self.choose_by_keys("alt+x", "Document", "d", "Back a Paragraph", "r")
        self.hear(begin, SENTENCES[2])
        self.assertEqual(self.typed(), "typed")

    def test_a_text_file_pauses_and_goes_on_where_it_was_left_too(self):
        path = self.file("notes.txt", "\r\n\r\n".join(SENTENCES))
        begin = self.now()
        self.open(path)
        self.hear(begin, SENTENCES[0])
        self.desk.key("alt+Right")
        self.hear(begin, *SENTENCES[1:3])
        self.desk.key("ctrl+p")
        self.status_is("Paused (")
        desktop.wait_for(lambda: not self.streams(), what="silence")
        self.press("Stop Everything !!!")
        self.settle()
        begin = self.now()
        self.open(path)
        self.hear(begin, *SENTENCES[1:4])
        self.assertLess(sound.likeness(self.recorded(begin), self.rendered(SENTENCES[0], 60)), 0.8)

    def test_a_paused_document_is_ended_by_stop(self):
        begin = self.now()
        self.open(self.page())
        self.wait_for_sound(begin)
        self.desk.key("ctrl+p")
        self.status_is("Paused (")
        self.press("Stop Everything !!!")
        self.settle()
        self.desk.key("ctrl+p")
        self.silent()


class WhereItWasLeft(DocumentCase):
    def test_a_stopped_document_goes_on_from_its_sentence_in_the_next_run_until_that_is_forgotten(self):
        page = self.page()
        begin = self.now()
        self.open(page)
        self.hear(begin, SENTENCES[2])
        self.desk.key("Escape")
        self.silent()
        self.desk.end(self.program)
        self.start_and_settle()
        copy = os.path.join(self.folder, "copy of it")
        shutil.copy(page, copy)
        begin = self.now()
        self.open(copy)
        self.hear(begin, SENTENCES[3], SENTENCES[4])
        self.assertNotIn(SENTENCES[0], self.said(begin))
        begin = self.now()
        self.desk.key("alt+Home")
        self.hear(begin, SENTENCES[0])
        self.hear(begin, SENTENCES[1])
        self.desk.key("Escape")
        self.silent()
        self.choose_by_keys("alt+x", "Document", "d", "Forget Where Documents Were Left", "o")
        begin = self.now()
        self.open(page)
        self.hear(begin, SENTENCES[0])

    def said(self, begin):
        """Those of the sentences that have been said since that sample."""
        return [text for text in SENTENCES if sound.likeness(self.recorded(begin), self.rendered(text, 60)) > 0.8]


class Dropped(DocumentCase):
    def setUp(self):
        super().setUp()
        self.paths = [self.page("one page.html", ["The first of the dropped files."]),
                      self.file("two.md", "The second of the dropped files.")]
        self.addresses = [Gio.File.new_for_path(path).get_uri() for path in self.paths]

    def source(self, *addresses):
        """Another program's window from which files are dragged; returns a place in it."""
        child = self.desk.spawn(os.path.join(BUILD, "drag_source"), *addresses)
        self.addCleanup(child.wait)
        self.addCleanup(child.terminate)
        window = desktop.wait_for(lambda: self.desk.windows("^Drag from here$"), what="the other window")[0]
        self.desk.run("xdotool", "windowraise", window)
        x, y, width, height = self.desk.window_rect(window)
        return x + width // 2, y + height // 2

    def drop(self, start, end):
        """Drags from one place to another, slowly enough for the two programs to talk about it, and drops."""
        self.desk.run("xdotool", "mousemove", *map(str, start), "mousedown", "1")
        for step in range(1, 11):
            place = (start[at] + (end[at] - start[at]) * step // 10 for at in (0, 1))
            self.desk.run("xdotool", "mousemove", *map(str, place))
            time.sleep(0.03)
        time.sleep(0.3)
        self.desk.run("xdotool", "mouseup", "1")

    def heard_both(self, begin):
        self.hear(begin, "The first of the dropped files.")
        self.hear(begin, "The second of the dropped files.")
        self.assertTrue(all(os.path.exists(path) for path in self.paths), "a drop moves nothing")

    def middle(self, name):
        x, y, width, height = self.desk.rect(self.desk.find(name))
        return x + width // 2, y + height // 2

    def test_files_dropped_on_the_window_or_on_its_text_box_are_read_in_turn(self):
        start = self.source(*self.addresses)
        for name in ("Text to read", "Whisper"):
            with self.subTest(name):
                begin = self.now()
                self.drop(start, self.middle(name))
                self.heard_both(begin)
                self.settle()
                self.assertEqual(self.typed(), "")

    def test_files_dropped_on_the_character_or_the_balloon_are_read_in_turn(self):
        start = self.source(*self.addresses)
        _, (x, y, width, height) = self.character_window()
        begin = self.now()
        self.drop(start, (x + width // 2, y + height // 2))
        self.heard_both(begin)
        self.settle()
        begin = self.now()
        self.type_text("A balloon to drop a file on")
        self.desk.key("ctrl+Return")
        balloon = desktop.wait_for(lambda: self.desk.windows("^Voxmate balloon$"), what="the balloon")[0]
        x, y, width, height = self.desk.window_rect(balloon)
        self.drop(start, (x + width // 2, y + height // 3))
        self.heard_both(begin)

    def test_copied_files_are_pasted_into_the_text_box_to_be_read(self):
        owner = subprocess.Popen(["xclip", "-quiet", "-selection", "clipboard", "-t", "text/uri-list"],
                                 stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=self.desk.env)
        self.addCleanup(owner.wait)
        self.addCleanup(owner.terminate)
        owner.stdin.write("".join(address + "\r\n" for address in self.addresses).encode())
        owner.stdin.close()
        targets = ("xclip", "-selection", "clipboard", "-o", "-t", "TARGETS")
        desktop.wait_for(lambda: b"text/uri-list" in self.desk.run(*targets, check=False), what="the copied files")
        begin = self.now()
        self.desk.click(self.desk.find("Text to read"))
        self.desk.key("ctrl+v")
        self.heard_both(begin)
        self.settle()
        begin = self.now()
        # The accessibility tree does not hold the text box's own menu.
        known = set(self.desk.windows("voxmate", by="--class"))
        self.desk.click(self.desk.find("Text to read"), button=3)
        desktop.wait_for(lambda: set(self.desk.windows("voxmate", by="--class")) - known, what="the text box's menu")
        self.desk.key("p")
        self.heard_both(begin)
        self.assertEqual(self.typed(), "")


@unittest.skipUnless(shutil.which("soffice"), "without a word processor")
class OldWord(WordCase):
    def open(self, path):
        call(self.desk, "Open", "(asa{sv})", ["file://" + path], {})

    def test_the_word_processor_reads_what_nothing_else_does(self):
        path = self.document("letter.bin", "Dear reader.\nThis is an old letter.")
        begin = self.now()
        self.open(path)
        self.hear(begin, "Dear reader.")
        self.hear(begin, "This is an old letter.")
        self.nothing_left()
        desktop.wait_for(lambda: IDLE in self.desk.texts(), what="the end")

    def test_escape_ends_it_while_it_is_opened(self):
        path = self.document("letter.doc", "Never heard. " * 20000)
        self.open(path)
        desktop.wait_for(self.processors, what="the word processor")
        self.desk.key("Escape")
        self.nothing_left()
        self.settle()
        self.assertEqual(self.streams(), [])


if __name__ == "__main__":
    unittest.main()
