"""Documents that mean harm, read by the program's own reader in its process. Whatever they ask for: nothing is fetched,
nothing is left behind, memory and time are limited, and one sentence names the file and the reason.

    /usr/bin/python3 -W ignore -m unittest discover -s tests/readers -p 'test_hostile.py'"""

import array
import ctypes
import http.server
import math
import os
import re
import shutil
import stat
import struct
import subprocess
import tempfile
import threading
import unittest
import zipfile
import zlib

import compare

MEGABYTE = 1 << 20
# The reader's limits (app/reader.cpp): a gigabyte besides the file, and a minute of processor time.
MOST_MEMORY = 1 << 30
MOST_SECONDS = 60
NOBODY = 65534

TEXT_NAMES = ("xmlns:office='urn:oasis:names:tc:opendocument:xmlns:office:1.0' "
              "xmlns:text='urn:oasis:names:tc:opendocument:xmlns:text:1.0' "
              "xmlns:draw='urn:oasis:names:tc:opendocument:xmlns:drawing:1.0' "
              "xmlns:xlink='http://www.w3.org/1999/xlink'")
WORD_NAMES = ("xmlns:w='http://schemas.openxmlformats.org/wordprocessingml/2006/main' "
              "xmlns:r='http://schemas.openxmlformats.org/officeDocument/2006/relationships'")
RELATION = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/"


# libsndfile's numbers for kinds of files, and for the coding in them.
SOUND_KINDS = {"wav": 0x010002, "flac": 0x170002, "ogg": 0x200060, "mp3": 0x230082, "aiff": 0x020002, "au": 0x030002}
RATE = 22050
LOUDEST = 12000


class SoundInfo(ctypes.Structure):
    _fields_ = [("frames", ctypes.c_int64), ("rate", ctypes.c_int), ("channels", ctypes.c_int), ("kind", ctypes.c_int),
                ("sections", ctypes.c_int), ("seekable", ctypes.c_int)]


def write_tone(path, kind):
    """A file with two seconds of a tone."""
    library = ctypes.CDLL("libsndfile.so.1")
    library.sf_open.restype = ctypes.c_void_p
    library.sf_writef_short.restype = ctypes.c_int64
    samples = [round(LOUDEST * math.sin(2 * math.pi * 440 * i / RATE)) for i in range(2 * RATE)]
    info = SoundInfo(rate=RATE, channels=1, kind=kind)
    file = ctypes.c_void_p(library.sf_open(path.encode(), 0x20, ctypes.byref(info)))
    data = (ctypes.c_short * len(samples))(*samples)
    assert file and library.sf_writef_short(file, data, ctypes.c_int64(len(samples))) == len(samples), path
    library.sf_close(file)


def pdf(objects, header=b"%PDF-1.5\n"):
    """A PDF file of these objects, numbered from 1; the first is its catalogue."""
    file = bytearray(header)
    offsets = []
    for number, content in enumerate(objects, 1):
        offsets.append(len(file))
        file += b"%d 0 obj\n%s\nendobj\n" % (number, content)
    start = len(file)
    file += b"xref\n0 %d\n0000000000 65535 f \n" % (len(objects) + 1)
    for offset in offsets:
        file += b"%010d 00000 n \n" % offset
    file += b"trailer\n<< /Size %d /Root 1 0 R >>\nstartxref\n%d\n%%%%EOF\n" % (len(objects) + 1, start)
    return bytes(file)


def stream(content, extra=b"", length=None):
    return b"<< /Length %d %s >>\nstream\n%s\nendstream" % (len(content) if length is None else length, extra, content)


def one_page(content, resources=b"", kids=b"[3 0 R]", count=1, more=()):
    """A file of one page with this content stream."""
    return pdf([b"<< /Type /Catalog /Pages 2 0 R >>", b"<< /Type /Pages /Kids %s /Count %d >>" % (kids, count),
                b"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Contents 4 0 R /Resources << /Font << /F1 "
                b"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >> >> %s >> >>" % resources, content, *more])


def line(text):
    return b"BT /F1 12 Tf 72 700 Td (%s) Tj ET\n" % text


def deflated(pieces):
    """Many bytes packed into few, without ever being in memory together."""
    packer = zlib.compressobj(9)
    return b"".join([packer.compress(piece) for piece in pieces] + [packer.flush()])


def package(path, parts):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, content in parts:
            archive.writestr(name, content)


class HostileCase(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="voxmate-hostile-")
        self.addCleanup(shutil.rmtree, self.folder)
        # Folders of their own for all that a program could leave behind.
        self.places = {name: os.path.join(self.folder, "left", name)
                       for name in ("TMPDIR", "XDG_RUNTIME_DIR", "XDG_CACHE_HOME", "HOME")}
        for place in self.places.values():
            os.makedirs(place, 0o700)

    def write(self, name, content):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(content.encode() if isinstance(content, str) else content)
        return path

    def run_reader(self, path, before=(), where=None, read=compare.READ):
        """What was read, and the sentence about what is wrong; `seconds` and `memory` tell what it took. Nothing may be
        left behind."""
        with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as trouble:
            # pylint: disable-next=consider-using-with
            reader = subprocess.Popen(["timeout", "150", *before, read, path], stdout=out, stderr=trouble,
                                      env={**os.environ, **self.places}, cwd=where or self.folder)
            # Of all the processes there were.
            _, status, usage = os.wait4(reader.pid, 0)
            reader.returncode = os.waitstatus_to_exitcode(status)
            out.seek(0)
            trouble.seek(0)
            text, sentence = out.read().decode(), trouble.read().decode()
        self.seconds = usage.ru_utime + usage.ru_stime
        self.memory = usage.ru_maxrss * 1024
        left = [os.path.join(root, name) for place in self.places.values()
                for root, folders, files in os.walk(place) for name in folders + files]
        self.assertEqual(left, [])
        self.assertIn(reader.returncode, (0, 1), sentence)
        return text, sentence


class _Watched(http.server.BaseHTTPRequestHandler):
    def do_GET(self):  # pylint: disable=invalid-name
        self.server.asked.append(self.path)
        self.send_error(404)

    def log_message(self, *_):
        pass


@unittest.skipUnless(shutil.which("strace"), "strace is not installed")
class NothingIsFetchedTest(HostileCase):
    def setUp(self):
        super().setUp()
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), _Watched)
        self.server.asked = []
        self.addCleanup(self.server.server_close)
        thread = threading.Thread(target=self.server.serve_forever)
        thread.start()
        self.addCleanup(thread.join)
        self.addCleanup(self.server.shutdown)
        self.url = "http://127.0.0.1:%d/" % self.server.server_address[1]
        self.secret = self.write("secret.txt", "Nobody else's words.")

    def documents(self):
        """Documents of each kind that refer to the server and to another file in every way their kind has."""
        url, secret = self.url, "file://" + self.secret
        entities = ("<!DOCTYPE html SYSTEM '%sx.dtd' [<!ENTITY e SYSTEM '%s'><!ENTITY f SYSTEM '%sf'>"
                    "<!ENTITY %% p SYSTEM '%sp.dtd'>%%p;]>") % (url, secret, url, url)
        yield self.write("page.html", "<!doctype html><head><base href='%s'><link rel=stylesheet href='%ss.css'>"
                         "<meta http-equiv=refresh content='0;%sr'><style>@import '%si.css';</style></head><body "
                         "background='%sb'><p>Words here</p><img src='%sp.png'><iframe src='%sf'></iframe><object data="
                         "'%so'></object><script src='%sj.js'></script><audio src='%sa'></audio><a href='%sl'>Link</a>"
                         % ((url,) * 11))
        yield self.write("page.xhtml", "<?xml version='1.0'?><?xml-stylesheet href='%ss.xsl' type='text/xsl'?>%s<html "
                         "xmlns='http://www.w3.org/1999/xhtml' xmlns:xi='http://www.w3.org/2001/XInclude'><body><p>Words "
                         "here &e; &f;</p><xi:include href='%sx'/></body></html>" % (url, entities, url))
        body = ("%s<office:document @ %s><office:body><office:text><text:p>Words here</text:p><draw:frame><draw:image "
                "xlink:href='%sp.png'/></draw:frame><text:section><text:section-source xlink:href='%ss.odt'/>"
                "</text:section></office:text></office:body></office:document@>") % (entities, TEXT_NAMES, url, url)
        content = body.replace("document @", "document-content").replace("document@", "document-content")
        yield self.write("flat.fodt", "<?xml version='1.0'?>" + body.replace("@", ""))
        package(os.path.join(self.folder, "open.odt"),
                [("mimetype", "application/vnd.oasis.opendocument.text"), ("content.xml", content)])
        yield os.path.join(self.folder, "open.odt")
        relations = "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>%s</Relationships>"
        package(os.path.join(self.folder, "word.docx"), [
            ("[Content_Types].xml", "<Types/>"),
            ("_rels/.rels", relations % ("<Relationship Id='r' Type='%sofficeDocument' Target='word/document.xml'/>"
                                         % RELATION)),
            ("word/_rels/document.xml.rels", relations % "".join(
                "<Relationship Id='r%d' Type='%s%s' Target='%s%s' TargetMode='External'/>" % (i, RELATION, kind, url, kind)
                for i, kind in enumerate(("attachedTemplate", "image", "styles", "hyperlink", "subDocument", "footnotes")))),
            ("word/document.xml", "%s<w:document %s><w:body><w:p><w:r><w:t>Words here</w:t></w:r></w:p><w:subDoc "
             "r:id='r4'/></w:body></w:document>" % (entities, WORD_NAMES))])
        yield os.path.join(self.folder, "word.docx")
        package(os.path.join(self.folder, "book.epub"), [
            ("mimetype", "application/epub+zip"),
            ("META-INF/container.xml", "<container><rootfiles><rootfile full-path='b.opf'/></rootfiles></container>"),
            ("b.opf", "<package><manifest><item id='a' href='a.xhtml' media-type='application/xhtml+xml'/><item id='b' "
             "href='%sb.xhtml' media-type='application/xhtml+xml'/></manifest><spine><itemref idref='a'/><itemref "
             "idref='b'/></spine></package>" % url),
            ("a.xhtml", "%s<html><head><link rel='stylesheet' href='%ss.css'/></head><body><p>Words here</p><img src='%sp'/>"
             "</body></html>" % (entities, url, url))])
        yield os.path.join(self.folder, "book.epub")
        yield self.write("rich.rtf", "{\\rtf1{\\*\\template %st.dot}Words here{\\field{\\*\\fldinst INCLUDEPICTURE \"%sp.png\""
                         "}{\\fldrslt }}{\\field{\\*\\fldinst INCLUDETEXT \"%s\"}{\\fldrslt }}\\par}" % (url, url, secret))
        action = ("/OpenAction << /S /URI /URI (%su) >> /AA << /WC << /S /Launch /F (/bin/sh) >> >>" % url).encode()
        outside = ("<< /Length 0 /F << /FS /URL /F (%sf) >> >>\nstream\n\nendstream" % url).encode()
        content = one_page(stream(line(b"Words here")), more=(outside,))
        yield self.write("print.pdf", content.replace(b"/Type /Catalog", b"/Type /Catalog " + action)
                         .replace(b"/Contents 4 0 R", b"/Contents [4 0 R 5 0 R]"))
        yield self.write("notes.md", "Words here\n\n![picture](%sp.png)\n\n<img src='%sq.png'>\n" % (url, url))
        yield self.write("dates.ics", "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nSUMMARY:Words here\r\nDTSTART:20261201T090000Z\r\n"
                         "ATTACH:%sa\r\nURL:%su\r\nBEGIN:VALARM\r\nACTION:AUDIO\r\nATTACH:%ss.wav\r\nTRIGGER:-PT5M\r\n"
                         "END:VALARM\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n" % (url, url, url))

    @staticmethod
    def content(path):
        """A document's bytes, unpacked, as a text."""
        if zipfile.is_zipfile(path):
            with zipfile.ZipFile(path) as archive:
                return " ".join(archive.read(name).decode() for name in archive.namelist())
        with open(path, encoding="utf-8", errors="replace") as file:
            return file.read()

    def test_nothing_is_fetched_and_no_other_file_opened(self):
        trace = os.path.join(self.folder, "trace")
        for path in self.documents():
            with self.subTest(os.path.basename(path)):
                text, trouble = self.run_reader(path, ("strace", "-f", "-qq", "-e", "trace=all", "-o", trace))
                # What declares parts outside itself may be refused. Nothing else is.
                self.assertIn("cannot be read: it is damaged" if trouble else "Words here", trouble or text)
                self.assertTrue(not trouble or "DOCTYPE" in self.content(path), trouble)
                self.assertNotIn("Nobody else", text)
                with open(trace, encoding="utf-8", errors="replace") as file:
                    calls = file.read()
                self.assertIn("voxmate-reader", calls)
                self.assertNotRegex(calls, r"\d+ +(socket|connect|sendto|sendmsg|bind|accept4?)\(")
                # From then on it is kept from the system, too; what it opens are tables of the libraries.
                before, begun, kept = calls.partition("seccomp(SECCOMP_SET_MODE_FILTER")
                self.assertTrue(begun)
                self.assertRegex(before, r"openat\(")
                for opened in re.findall(r'open(?:at)?\((?:AT_FDCWD, )?"([^"]*)".*= \d', kept):
                    self.assertRegex(opened, r"^/usr/(share/(poppler|zoneinfo)|lib(64)?/(\S+/)?gconv)/")
        self.assertEqual(self.server.asked, [])

    def test_recordings_are_decoded_without_the_network_and_other_files(self):
        trace = os.path.join(self.folder, "trace")
        decoder = os.path.join(os.path.dirname(compare.READ), "voxmate-decoder")
        for ending, kind in SOUND_KINDS.items():
            with self.subTest(ending):
                path = os.path.join(self.folder, "sound." + ending)
                write_tone(path, kind)
                with open(path, "rb") as file:
                    decoded = subprocess.run(("strace", "-f", "-qq", "-o", trace, decoder), stdin=file,
                                             stdout=subprocess.PIPE, check=True).stdout
                rate, length = struct.unpack_from("=qq", decoded)
                self.assertEqual((rate, length), (RATE, 2 * RATE))
                samples = array.array("h", decoded[16:])
                self.assertEqual(len(samples), length)
                self.assertAlmostEqual(max(samples), LOUDEST, delta=LOUDEST / 10)
                with open(trace, encoding="utf-8", errors="replace") as file:
                    calls = file.read()
                self.assertNotRegex(calls, r"\d+ +(socket|connect|sendto|sendmsg|bind|accept4?)\(")
                before, begun, kept = calls.partition("seccomp(SECCOMP_SET_MODE_FILTER")
                self.assertTrue(begun)
                self.assertRegex(before, r"openat\(")
                self.assertNotRegex(kept, r"open(at)?\(.* = \d")


class RefusalTest(HostileCase):
    def test_a_file_without_the_right_to_read_it(self):
        path = self.write("locked.txt", "Not for everybody.")
        os.chmod(path, 0)
        os.chmod(self.folder, 0o755)
        before, read = (), compare.READ
        if os.geteuid() == 0:
            # Who may do everything may read it, too. Another user may not come to where the programs are.
            for program in (read, os.path.join(os.path.dirname(read), "voxmate-reader")):
                shutil.copy(program, self.folder)
            read = os.path.join(self.folder, os.path.basename(read))
            before = ("setpriv", "--reuid=%d" % NOBODY, "--regid=%d" % NOBODY, "--clear-groups")
        sentence = '"locked.txt" cannot be read: it is no file that may be read.\n'
        self.assertEqual(self.run_reader(path, before, "/", read), ("", sentence))
        os.chmod(path, stat.S_IRUSR | stat.S_IRGRP | stat.S_IROTH)
        self.assertEqual(self.run_reader(path, before, "/", read), ("paragraph|0|||Not for everybody.\n", ""))

    def test_four_gigabytes_of_each_kind(self):
        beginnings = {"txt": b"Text", "md": b"# Title\n", "html": b"<!doctype html>", "pdf": one_page(stream(line(b"x"))),
                      "docx": b"PK\x03\x04", "rtf": b"{\\rtf1 ", "doc": b"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1",
                      "fodt": b"<?xml version='1.0'?><office:document>", "ics": b"BEGIN:VCALENDAR\r\n",
                      "wav": b"RIFF\0\0\0\0WAVEfmt ", "flac": b"fLaC", "mp3": b"ID3", "bin": b"\x7FELF"}
        for ending, beginning in beginnings.items():
            with self.subTest(ending):
                path = self.write("huge." + ending, beginning)
                os.truncate(path, 4 << 30)
                self.assertEqual(self.run_reader(path), ("", '"huge.%s" cannot be read: it is too large.\n' % ending))
                self.assertLess(self.seconds, 5)
                os.remove(path)


class EndlessPrintTest(HostileCase):
    """PDF files without an end."""

    def documents(self):
        # As much as is read in a second or two. What is more takes longer, to the limit, and no more memory.
        blanks = [b" " * MEGABYTE] * 200
        packed = b"/Filter /FlateDecode"
        yield "blanks.pdf", one_page(stream(deflated(blanks), packed))
        yield "lines.pdf", one_page(stream(deflated([line(b"Words, words.") * 300]), packed))
        yield "twice.pdf", one_page(stream(deflated([deflated(blanks)]), b"/Filter [/FlateDecode /FlateDecode]"))
        # Objects in a stream that unpacks to much more.
        yield "objects.pdf", one_page(stream(line(b"Words here")), more=(
            stream(deflated(blanks), b"/Type /ObjStm /N 100000000 /First 10 " + packed),)).replace(
                b"/Contents 4 0 R", b"/Contents 4 0 R /Rotate 9 0 R")
        yield "length.pdf", one_page(stream(line(b"Words here"), length=2_000_000_000))
        yield "negative.pdf", one_page(stream(line(b"Words here"), length=-5))
        yield "itself.pdf", one_page(stream(line(b"Words here"), length=0).replace(b"/Length 0", b"/Length 4 0 R"))
        yield "loop.pdf", one_page(stream(line(b"Words here")), kids=b"[2 0 R 2 0 R 3 0 R]", count=2_000_000_000)
        yield "again.pdf", one_page(stream(line(b"Words here")), kids=b"[" + b"3 0 R " * 100_000 + b"]", count=100_000)
        # A drawing that draws itself twice, and forms that each draw the next four times.
        draws = stream(b"/X Do /X Do " + line(b"Words here"), b"/Type /XObject /Subtype /Form /BBox [0 0 612 792] /Resources "
                       b"<< /XObject << /X 5 0 R >> >>")
        yield "drawing.pdf", one_page(stream(b"/X Do"), b"/XObject << /X 5 0 R >>", more=(draws,))
        forms = [stream(b"/X Do " * 4 if i < 4 else line(b"Words"), b"/Type /XObject /Subtype /Form /BBox [0 0 612 792] "
                        b"/Resources << /XObject << /X %d 0 R >> /Font << /F1 << /Type /Font /Subtype /Type1 /BaseFont "
                        b"/Helvetica >> >> >>" % (i + 6)) for i in range(5)]
        yield "forms.pdf", one_page(stream(b"/X Do"), b"/XObject << /X 5 0 R >>", more=forms)
        yield "contents.pdf", one_page(stream(line(b"Words here"))).replace(
            b"/Contents 4 0 R", b"/Contents [" + b"4 0 R " * 300 + b"]")
        whole = one_page(stream(line(b"Words here")))
        yield "tables.pdf", whole.replace(b"trailer\n<<", b"trailer\n<< /Prev %d" % whole.index(b"xref\n0"))
        yield "deep.pdf", one_page(stream(b"[" * 1_000_000 + line(b"Words here")))
        yield "outline.pdf", whole.replace(b"/Type /Catalog", b"/Type /Catalog /Outlines 5 0 R").replace(
            b"xref\n0 5", b"5 0 obj\n<< /First 5 0 R /Last 5 0 R /Next 5 0 R /Title (A) /Count 9999 >>\nendobj\nxref\n0 5", 1)

    def test_they_end_within_the_limits(self):
        for name, content in self.documents():
            with self.subTest(name):
                path = self.write(name, content)
                text, trouble = self.run_reader(path)
                print("%s: %d kB, %d lines, %.1f s, %d MB, %s" % (
                    name, len(content) // 1024, text.count("\n"), self.seconds, self.memory // MEGABYTE, trouble.strip()),
                    flush=True)
                if trouble:
                    self.assertRegex(trouble, '^"%s" cannot be read( to its end)?: [a-z ]+\\.\n$' % re.escape(name))
                else:
                    self.assertIn("Words", text)
                self.assertLess(self.seconds, MOST_SECONDS / 2)
                self.assertLess(self.memory, MOST_MEMORY + len(content))


if __name__ == "__main__":
    unittest.main()
