"""Word documents as the program gets them through LibreOffice: the main text and nothing else, documents that cannot be
opened, interrupted conversions, and leftovers. The program under test is word_text, $VOXMATE_WORD_TEXT or that of the
release build."""

import collections
import glob
import http.server
import os
import random
import re
import signal
import subprocess
import tempfile
import threading
import time
import unittest

import no_namespaces
import word_maker as maker

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
WORD_TEXT = os.path.abspath(os.environ.get("VOXMATE_WORD_TEXT") or os.path.join(ROOT, "build", "release", "word_text"))

Result = collections.namedtuple("Result", "error milliseconds length pause text")


def dead_sockets():
    """LibreOffice's sockets without an owner; other programs may have live ones at the same time."""
    found = set(glob.glob("/tmp/OSL_PIPE_*"))
    with open("/proc/net/unix", encoding="utf-8") as file:
        return found - {line.split()[-1] for line in file}


def pieces(count, seed=1):
    """Lines of words that add up to `count` characters, with each line's end counted."""
    chance, words = random.Random(seed), "a quick brown fox jumps over the lazy Übermut 😀 while rain falls on tin".split()
    lines = []
    while count > 0:
        line = " ".join(chance.choice(words) for _ in range(60))[:min(count, 300) - 1].rstrip()
        line += "." * (min(count, 300) - 1 - len(line))
        lines.append(line)
        count -= len(line) + 1
    return lines


# What the program may do before it opens a document: nothing, prepare the word processor, name the document as well.
WAYS = ((), ("--ahead", "1500"), ("--expect", "1500"))


class WordCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="voxmate-word-test-", dir="/tmp")
        cls.addClassCleanup(folder.cleanup)
        cls.folder = folder.name
        cls.home, cls.temp = cls.path("home"), cls.path("temp")
        os.mkdir(cls.home)
        os.mkdir(cls.temp)
        cls.office = maker.Office(cls.folder)

    @classmethod
    def path(cls, name):
        return os.path.join(cls.folder, name)

    @classmethod
    def write(cls, name, content):
        with open(cls.path(name), "wb") as file:
            file.write(content)
        return cls.path(name)

    def start(self, *arguments, before=None):
        environment = {**os.environ, "HOME": self.home, "TMPDIR": self.temp, "LC_ALL": "C.UTF-8"}
        for name in ("XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"):
            environment.pop(name, None)
        return subprocess.Popen([WORD_TEXT, *arguments], stdout=subprocess.PIPE, env=environment, preexec_fn=before)

    def read(self, *arguments, before=None):
        """Opens a document. Whatever the result, nothing may be left behind."""
        sockets = dead_sockets()
        with self.start(*arguments, before=before) as process:
            out = process.communicate(timeout=120)[0].decode()
        self.assert_nothing_left()
        self.assertEqual(dead_sockets() - sockets, set())
        first, _, text = out.partition("\n")
        if failed := re.fullmatch(r"error (\d+) Command failed after (\d+) ms", first):
            self.assertEqual(process.returncode, 1)
            return Result(int(failed[1]), int(failed[2]), None, None, None)
        opened = re.fullmatch(r"(\d+) characters, opened in (\d+) ms, longest pause ([\d.]+) ms, .*", first)
        self.assertIsNotNone(opened, out[:200])
        return Result(0, int(opened[2]), int(opened[1]), float(opened[3]), text)

    def processes(self):
        """The command lines of all processes that use the test's folder for temporary files."""
        found = []
        for path in glob.glob("/proc/[0-9]*/cmdline"):
            try:
                with open(path, "rb") as file:
                    line = file.read().replace(b"\0", b" ").decode(errors="replace")
            except OSError:
                continue
            if self.temp + "/" in line:
                found.append(line)
        return found

    def assert_nothing_left(self):
        self.assertEqual(self.processes(), [])
        self.assertEqual(os.listdir(self.temp), [])
        self.assertEqual(os.listdir(self.home), [])


class MainText(WordCase):
    def check(self, kind):
        path = self.office.save(kind, maker.sample(), kind)
        for way in WAYS:
            with self.subTest(way):
                result = self.read(*way, path)
                self.assertEqual(result.text, maker.SAMPLE)
                self.assertEqual(result.length, len(maker.SAMPLE))

    def test_a_binary_document_gives_its_main_text_and_nothing_else(self):
        self.check("doc")

    def test_an_xml_document_gives_its_main_text_and_nothing_else(self):
        self.check("docx")

    def test_rich_text_gives_its_main_text_and_nothing_else(self):
        self.check("rtf")

    def test_positioned_paragraphs_and_floating_tables_are_main_text_and_text_boxes_are_not(self):
        frame = '<w:framePr w:w="2000" w:wrap="around" w:vAnchor="text" w:hAnchor="page" w:x="6000" w:y="500"/>'
        drop_cap = '<w:framePr w:dropCap="drop" w:lines="3" w:wrap="around" w:vAnchor="text" w:hAnchor="text"/>'
        floating = '<w:tblpPr w:vertAnchor="text" w:horzAnchor="margin" w:tblpX="500" w:tblpY="200"/>'
        path = maker.write_xml(self.path("frames.doc"), "".join([
            "<w:p><w:r><w:t>Anchor</w:t>%s<w:t>ed.</w:t></w:r></w:p>" % maker.text_box("BOX"),
            maker.paragraph("Framed.", frame), maker.paragraph("Behind the frame."),
            maker.paragraph("D", drop_cap), maker.paragraph("rop cap."),
            maker.table([["F1", "F2"], ["F3", "F4"]], floating), maker.paragraph("Behind the table.")]))
        self.assertEqual(self.read(path).text, "Anchored.\rFramed.\rBehind the frame.\rDrop cap.\rF1\rF2\rF3\rF4\r"
                                               "Behind the table.\r")

    def test_fields_give_their_results(self):
        path = maker.write_xml(self.path("fields.doc"), "<w:p>%s<w:r><w:t>or</w:t></w:r>%s<w:r><w:t>.</w:t></w:r></w:p>" % (
            maker.field(' MERGEFIELD Name ', "«Name»"), maker.field(' IF 1 = 1 "yes" "no" ', "yes")))
        self.assertEqual(self.read(path).text, "«Name»oryes.\r")

    def test_a_document_without_text_has_no_length(self):
        result = self.read(self.office.save("empty", maker.paragraphs(["", ""])))
        self.assertEqual((result.error, result.length, result.text), (0, 0, ""))

    def test_a_million_characters_come_whole_and_the_program_lives_meanwhile(self):
        lines = pieces(1_000_000)
        result = self.read(self.office.save("big", maker.paragraphs(lines)))
        self.assertEqual(result.length, 1_000_000)
        self.assertEqual(result.text, "".join(line + "\r" for line in lines))
        # A pause of a tenth of a second would be noticed; the limit leaves room for a busy machine.
        self.assertLess(result.pause, 300)


class OtherFormats(WordCase):
    """Files named .doc with other contents."""

    TEXT = "Käthe & Jürgen.\rTwo.\r"
    PAGE = "<html>%s<body><p>Käthe &amp; Jürgen.</p><p>Two.</p></body></html>"

    def check(self, name, content):
        self.assertEqual(self.read(self.write(name, content)).text, self.TEXT, name)

    def test_what_other_programs_save_is_read(self):
        document = maker.paragraphs(["Käthe &amp; Jürgen.", "Two."])
        for kind in ("odt", "xml"):
            self.assertEqual(self.read(self.office.save(kind, document, kind)).text, self.TEXT, kind)
        self.check("flat.doc", document.encode())

    def test_plain_text_is_read_in_each_encoding(self):
        text = "Käthe & Jürgen.\r\nTwo.\r\n"
        for encoding in ("utf-8", "cp1252", "utf-16", "utf-16-be"):
            self.check("text-%s.doc" % encoding, text.encode(encoding))

    def test_web_pages_are_read_in_each_encoding(self):
        for encoding, head in (("utf-8", ""), ("cp1252", ""), ("utf-16", ""), ("iso-8859-15", '<head><meta charset="iso-8859-15"></head>')):
            self.check("page-%s.doc" % encoding, (self.PAGE % head).encode(encoding))

    def test_web_archives_are_read(self):
        self.check("archive.doc", maker.web_archive(self.PAGE % "", "windows-1252"))

    def test_a_text_without_text_has_no_length(self):
        self.assertEqual(self.read(self.write("zero.doc", b"")).length, 0)


class Refusals(WordCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        with open(cls.office.save("good", maker.sample()), "rb") as file:
            cls.good = file.read()

    def refused(self, name, content):
        path = self.write(name, content)
        for way in WAYS:
            with self.subTest(name, way=way):
                self.assertEqual(self.read(*way, path).error, 4198)

    def test_what_is_no_document_is_refused(self):
        self.refused("picture.doc", b"\x89PNG\r\n\x1a\n" + bytes(2000))
        self.refused("book.doc", self.good.replace("WordDocument".encode("utf-16le"), "WordDokument".encode("utf-16le")))

    def test_a_protected_document_is_refused(self):
        path = self.office.protect(self.path("good.doc"), self.path("protected.doc"), "secret")
        with open(path, "rb") as file:
            self.assertNotIn("Überschrift".encode("latin-1"), file.read())
        for way in WAYS:
            with self.subTest(way):
                self.assertEqual(self.read(*way, path).error, 4198)

    def test_damaged_documents_are_refused(self):
        for size in (600, 5000, len(self.good) * 2 // 3):
            self.refused("cut-%d.doc" % size, self.good[:size])
        self.refused("blank.doc", self.good[:512] + bytes(1024) + self.good[1536:])

    def test_damaged_xml_documents_are_refused(self):
        with open(maker.write_xml(self.path("whole.doc"), maker.paragraph("Hello.") * 300), "rb") as file:
            whole = bytearray(file.read())
        self.assertEqual(self.read(self.path("whole.doc")).length, 300 * len("Hello.\r"))
        self.refused("half.doc", whole[:len(whole) // 2])
        start = whole.index(b"word/document.xml") + 20
        for at in range(start, start + 60):
            whole[at] ^= 0x55
        self.refused("noise.doc", whole)

    def test_a_document_that_is_not_there_is_refused(self):
        self.assertEqual(self.read(self.path("nowhere.doc")).error, 4198)


class BreakingOff(WordCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.big = cls.office.save("big", maker.paragraphs(pieces(1_000_000)))
        # One that is not converted before it is opened.
        cls.huge = cls.office.save("huge", maker.paragraphs(pieces(5_000_000)))
        cls.office.save("small", maker.paragraphs(["Hello."]))

    def test_a_conversion_is_broken_off_at_any_time(self):
        for moment in (0, 50, 200, 500, 1000):
            result = self.read("--stop", str(moment), self.big)
            self.assertEqual(result.error, 4198)
            self.assertLess(result.milliseconds, moment + 1500)

    def test_a_conversion_by_a_prepared_word_processor_is_broken_off_at_any_time(self):
        for way in WAYS[1:]:
            for moment in (0, 50, 200):
                with self.subTest(way, moment=moment):
                    self.assertEqual(self.read(*way, "--stop", str(moment), self.huge).error, 4198)

    def test_a_prepared_word_processor_is_ended_at_any_time(self):
        for moment in (1, 50, 200, 500, 1000, 1500):
            with self.subTest(moment=moment):
                self.assertEqual(self.read("--ready", str(moment), "--ahead", "1000", self.path("small.doc")).text, "Hello.\r")

    def test_a_conversion_that_takes_too_long_is_ended(self):
        result = self.read("--limit", "600", self.big)
        self.assertEqual(result.error, 4198)
        self.assertLess(result.milliseconds, 2100)

    def test_nothing_is_left_when_the_program_is_killed_meanwhile(self):
        for way in ((), ("--ahead", "60000"), ("--expect", "60000")):
            with self.subTest(way):
                self.check_killing(*way)

    def check_killing(self, *way):
        sockets = dead_sockets()
        with self.start(*way, self.big) as process:
            end = time.monotonic() + 30
            while not any("soffice.bin" in line for line in self.processes()):
                self.assertLess(time.monotonic(), end)
                time.sleep(0.02)
            time.sleep(0.5)
            self.assertNotEqual(self.processes(), [])
            process.send_signal(signal.SIGKILL)
        end = time.monotonic() + 10
        while (self.processes() or os.listdir(self.temp)) and time.monotonic() < end:
            time.sleep(0.05)
        self.assert_nothing_left()
        self.assertEqual(dead_sockets() - sockets, set())


class Connection(http.server.BaseHTTPRequestHandler):
    """Records every client that connects, whatever it sends, and answers that nothing is there."""

    def setup(self):
        super().setup()
        self.server.asked.append(self.client_address)

    def log_message(self, *_):
        pass

    def do_GET(self):
        self.send_error(404)

    do_HEAD = do_OPTIONS = do_PROPFIND = do_GET


class Network(WordCase):
    """Reading may not send anything. Each document is read in an empty network namespace, if the system grants one, and
    once more where the system refuses one, as some do to ordinary users."""

    def setUp(self):
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Connection)
        self.addCleanup(self.server.server_close)
        self.server.asked = self.asked = []
        threading.Thread(target=self.server.serve_forever, daemon=True).start()
        self.addCleanup(self.server.shutdown)
        self.address = "http://127.0.0.1:%d/" % self.server.server_port

    def check(self, path, expected):
        for refused in (False, True):
            for way in WAYS[:2]:
                with self.subTest(os.path.basename(path), namespaces="refused" if refused else "as they are", way=way):
                    self.asked.clear()
                    self.assertEqual(self.read(*way, path, before=no_namespaces.refuse if refused else None).text, expected)
                    self.assertEqual(self.asked, [])

    def check_that_it_asks(self, path):
        """Makes sure that the document does ask for something where nothing prevents it. LibreOffice 25 asks for nothing
        when it converts; there, what was read without a request shows nothing of our guard."""
        self.asked.clear()
        self.office.run("--convert-to", "odt", "--outdir", self.path("out"), path)
        if not self.asked and self.office.version() >= (24, 0):
            self.skipTest("this LibreOffice requests nothing, even where nothing prevents it")
        self.assertNotEqual(self.asked, [])

    def picture(self):
        return maker.flat("<text:p>A picture: %s.</text:p>" % maker.flat_picture(self.address + "picture.png"))

    def test_a_binary_document_loads_no_linked_picture(self):
        path = self.office.save("picture", self.picture())
        with open(path, "rb") as file:
            self.assertIn('INCLUDEPICTURE  "'.encode("utf-16le"), file.read().replace(b"\"\0 \0", b"\"\0"))
        self.check(path, "A picture: .\r")
        self.check_that_it_asks(path)

    def test_an_xml_document_loads_no_picture_no_text_and_no_template(self):
        path = maker.write_xml(
            self.path("links.doc"), "<w:p><w:r><w:t>A picture: </w:t></w:r><w:r>%s</w:r></w:p><w:p>%s</w:p>" % (
                maker.linked_picture("rId9"), maker.field(' INCLUDETEXT "%sinclude.docx" ' % self.address, "included")),
            [("rId9", "image", self.address + "picture.png")],
            [("rId1", "attachedTemplate", self.address + "template.dotm")])
        self.check(path, "A picture:\rincluded\r")
        self.check_that_it_asks(path)

    def test_a_web_page_and_an_archived_one_load_nothing(self):
        page = ('<html><head><link rel="stylesheet" href="%s.css"></head><body><p>A picture: <img src="%s.png">.</p><iframe src='
                '"%s.html"></iframe></body></html>') % ((self.address + "file",) * 3)
        self.check(self.write("page.doc", page.encode()), "A picture: .\r\r")
        self.check(self.write("archive.doc", maker.web_archive(page, "utf-8")), "A picture: .\r\r")
        self.check_that_it_asks(self.path("page.doc"))

    def test_xml_loads_no_entities(self):
        # The document is read as a web page, in which the names of the entities are plain text.
        page = '<?xml version="1.0"?><!DOCTYPE a SYSTEM "%sa.dtd" [<!ENTITY b SYSTEM "%sb.txt"><!ENTITY %% c SYSTEM "%sc.ent"> %%c;]>'
        self.check(self.write("xml.doc", (page % ((self.address,) * 3) + "<a>&b;</a>").encode()), "%c;]>&b;\r")

    def test_rich_text_with_a_linked_picture_gives_what_stands_for_it(self):
        """LibreOffice 7.4 requests no picture, text, template or object of rich text even where it could, so this test
        shows only what is read, and not what prevents the requests."""
        self.check(self.write("rich.doc", (r'{\rtf1\ansi A picture: {\field{\*\fldinst INCLUDEPICTURE "%spicture.png" \\d}'
                                           r'{\fldrslt here}}.\par}' % self.address).encode()), "A picture: here.\r")


class Manners(WordCase):
    def test_an_open_libreoffice_of_the_users_is_neither_used_nor_ended(self):
        path = self.office.save("plain", maker.paragraphs(["Hello."]))
        pipe = "voxmate-test-%d" % os.getpid()
        with subprocess.Popen(["/usr/lib/libreoffice/program/soffice.bin",
                               "-env:UserInstallation=file://" + self.office.profile, "--headless", "--norestore",
                               "--accept=pipe,name=%s;urp;" % pipe], stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL) as users:
            end = time.monotonic() + 30
            while not glob.glob("/tmp/OSL_PIPE_*_" + pipe):
                self.assertLess(time.monotonic(), end)
                time.sleep(0.05)
            self.assertEqual(self.read(path).text, "Hello.\r")
            self.assertEqual(self.read("--stop", "300", path).error, 4198)
            self.assertIsNone(users.poll())
            self.assertNotEqual(glob.glob("/tmp/OSL_PIPE_*_" + pipe), [])
            users.terminate()
            users.wait(30)
        for socket in glob.glob("/tmp/OSL_PIPE_*_" + pipe):
            os.unlink(socket)


if __name__ == "__main__":
    unittest.main()
