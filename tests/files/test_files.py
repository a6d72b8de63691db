"""Character files made by acs_maker and read by acsinfo: every number, text, pixel and sound must come out as
described."""

import json
import os
import random
import shutil
import tempfile
import unittest

from PIL import Image

import acs_maker
import acs_packer
import samples
import tool
from acs_maker import Same, animation, frame, image, make, wave


def setUpModule():
    global run, FOLDER
    if not os.access(tool.ACSINFO, os.X_OK):
        raise FileNotFoundError(f"{tool.ACSINFO} has not been built")
    run = tool.Runner()
    FOLDER = tempfile.mkdtemp(prefix="acs-")


def tearDownModule():
    run.close()
    shutil.rmtree(FOLDER)


class FilesCase(unittest.TestCase):
    """Writing a file and reading it with acsinfo."""

    maxDiff = 4000

    def write(self, data, name="sample.acs"):
        path = os.path.join(FOLDER, name)
        with open(path, "wb") as file:
            file.write(data)
        return path

    def read(self, path):
        """acsinfo's report on a valid file, with the keys in their order."""
        result = run(path)
        self.assertEqual((result.status, result.err), (0, b""))
        return json.loads(result.out.decode("utf-8"))

    def assert_reads(self, description, **layout):
        """The file made from the description must be valid and reported exactly; returns its path."""
        made = make(description, **layout)
        path = self.write(made.data)
        said, meant = self.read(path), tool.report(description, made, path)
        self.assertEqual(said, meant)
        self.assertEqual(json.dumps(said), json.dumps(meant), "the order of the keys")
        checked = run("--check", path)
        self.assertEqual((checked.status, checked.out.decode(), checked.err), (0, path + ": sound\n", b""))
        return path

    def export(self, path):
        """Exports the file; returns the folder."""
        folder = os.path.join(FOLDER, "export")
        shutil.rmtree(folder, ignore_errors=True)
        result = run("--export", folder, path)
        self.assertEqual((result.status, result.err), (0, b""))
        return folder

    def assert_exports(self, description, path):
        """Every frame and every sound must be exported under its name, exact to the pixel and the byte, and nothing
        else."""
        folder = self.export(path)
        wanted = set()
        animations = description["animations"] or []
        for number, stem in enumerate(tool.export_names([entry.name if isinstance(entry, Same) else entry["name"]
                                                         for entry in animations])):
            for at, one in enumerate(acs_maker.resolve(animations, number)["frames"]):
                name = f"{stem}_{at:03}.png"
                wanted.add(name)
                with Image.open(os.path.join(folder, name)) as picture:
                    self.assertEqual((picture.mode, picture.size),
                                     ("RGBA", (description["width"], description["height"])), name)
                    self.assertEqual(picture.tobytes(), acs_maker.compose(description, one), name)
        sounds = description["sounds"] or []
        for number in range(len(sounds)):
            name = f"sound_{number:03}.wav"
            wanted.add(name)
            with open(os.path.join(folder, name), "rb") as file:
                self.assertEqual(file.read(), acs_maker.resolve(sounds, number), name)
        self.assertEqual(set(os.listdir(folder)), wanted)


def unpacked(data):
    """Unpacks data: a second, slow implementation of the format that checks the packer."""
    bits, at, out = int.from_bytes(data[1:], "little"), 0, bytearray()

    def take(count):
        nonlocal at
        at += count
        return bits >> at - count & (1 << count) - 1

    while True:
        if not take(1):
            out.append(take(8))
            continue
        kind = 0
        while kind < 3 and take(1):
            kind += 1
        width, base = ((6, 1), (9, 65), (12, 577), (20, 4673))[kind]
        value, steps = take(width), 0
        if value == 0xFFFFF:
            return bytes(out)
        while take(1):
            steps += 1
        for _ in range((3 if kind == 3 else 2) + 2 ** steps - 1 + take(steps)):
            out.append(out[-base - value])


class PackerTest(unittest.TestCase):
    """Tests the packer itself, before other tests rely on it."""

    def test_bits_stand_as_worked_out_by_hand(self):
        # A literal 0x41; a copy from 1 back of 3 bytes: 10 000000 10 0; the end mark of 24 ones; ones to fill up.
        # 0 10000010 | 10 000000 10 0 | 1111... read lowest first.
        self.assertEqual(acs_packer.pack_tokens([b"A", (1, 3)]),
                         bytes([0x00, 0b10000010, 0b00000010, 0b11110010, 0xFF, 0xFF, 0xFF]) + b"\xFF" * 6)

    def test_packed_data_unpacks_to_itself(self):
        for seed in range(12):
            dice = random.Random(seed)
            data = bytes(dice.choices(range(1 + seed * seed), k=dice.randint(0, 6000)))
            self.assertEqual(unpacked(acs_packer.pack(data)), data)

    def test_the_packer_uses_all_that_there_is(self):
        data = random.Random(3).randbytes(40)
        data += b"".join(random.Random(at).randbytes(200) + data[:30] for at in range(60)) + bytes(9000) + data
        copies = [token for token in acs_packer.find_tokens(data) if isinstance(token, tuple)]
        kinds = {sum(distance >= base for _, base in acs_packer.WIDTHS) for distance, _ in copies}
        self.assertEqual(kinds, {1, 2, 3, 4})
        self.assertIn(acs_packer.max_length(1), [length for _, length in copies])
        self.assertTrue(any(distance < length for distance, length in copies))


class ReadBackTest(FilesCase):
    """Valid files."""

    def test_reports_pixels_and_sounds_are_as_described(self):
        for title, sample in samples.READ_BACK.items():
            with self.subTest(title):
                description = sample()
                self.assert_exports(description, self.assert_reads(description))

    def test_sections_may_stand_in_any_order_with_gaps_between(self):
        def gap(at):
            return bytes([0xA5]) * (at * 37 % 101)
        for title, order in (("reversed", lambda keys: keys[::-1]), ("as usual", None),
                             ("shuffled", lambda keys: random.Random(4).sample(keys, len(keys)))):
            for description in (samples.rich(), samples.shared()):
                with self.subTest(title):
                    self.assert_exports(description, self.assert_reads(description, order=order, gap=gap))

    def test_a_text_may_hold_the_unit_zero(self):
        self.assert_reads(samples.one_frame(names=[(0x0409, "a\0b", "\0", "\0\0")]))

    def test_half_a_pair_of_units_still_gives_valid_json(self):
        for text in ("\ud800", "a\udc00b", "\udc00\ud800", "\ud800\ud800\udc00"):
            description = samples.one_frame(names=[(0x0409, text, "", "")])
            name = self.read(self.write(make(description).data))["names"][0]["name"]
            self.assertEqual(name, text.encode("utf-16-le", "surrogatepass").decode("utf-16-le", "replace"))

    def test_unknown_flags_mean_nothing(self):
        description = samples.rich()
        made = make(description)
        (flags,) = (field for field in made.fields if field.kind == "bits")
        for bit in set(range(32)) - set(acs_maker.FLAG_BITS.values()):
            data = bytearray(made.data)
            data[flags.position + bit // 8] ^= 1 << bit % 8
            path = self.write(data)
            wanted = tool.report(description, made, path)
            wanted["flags"]["value"] = "0x%08x" % (made.flags | 1 << bit)
            self.assertEqual(self.read(path), wanted, bit)

    def test_any_byte_but_zero_is_true(self):
        description = samples.rich(balloon={**samples.BALLOON, "italic": True})
        made = make(description)
        truths = [field for field in made.fields if field.kind == "flag" and field.value]
        self.assertGreaterEqual(len(truths), 7)
        for field in truths:
            for value in (2, 0x80, 0xFF):
                data = bytearray(made.data)
                data[field.position] = value
                path = self.write(data)
                self.assertEqual(self.read(path), tool.report(description, made, path), (field.name, value))

    def test_the_list_has_the_name_by_which_an_animation_is_called(self):
        description = samples.one_frame(animations=[animation("Wave", [frame((0, 0, 0))]), Same(0, "Greet")])
        self.assert_exports(description, self.assert_reads(description))

    def test_a_return_animation_may_have_no_name(self):
        self.assert_reads(samples.one_frame(animations=[animation("Stare", [frame((0, 0, 0))], "return", "")]))

    def test_a_return_animation_may_be_absent(self):
        self.assert_reads(samples.one_frame(animations=[animation("Stare", [frame((0, 0, 0))], "return", "Away")]))

    def test_packed_data_may_end_by_its_closing_bytes_alone(self):
        rows = samples.blobs(12, 9, 2)
        description = samples.one_frame(rows)
        entry = {**description["images"][0], "packed": True}
        plain = acs_maker.stored_pixels(entry)
        for size in range(8):  # The last byte is full, or has one to seven bits left.
            for variant in ({"end_mark": False}, {"filler": 0}, {"filler": 1}):
                literal = [plain[:size]] + acs_packer.find_tokens(plain[size:])
                with self.subTest(size=size, **variant):
                    packed = acs_packer.pack_tokens(literal, **variant)
                    path = self.write(make({**description, "images": [{**entry, "raw": packed}]}).data)
                    self.assertEqual(self.read(path)["images"][0]["storedSize"], len(packed))
                    self.assert_exports(description, path)


class ExportTest(FilesCase):
    """The names under which frames are exported."""

    def test_names_are_made_harmless_and_differ(self):
        names = ["a/b", "a_b", "A_B", "a\\b", "../../up", "..", "with blank", "x~2", "x_2", "X_2", "dot.dash-", "",
                 "new\nline", "semi;colon", "CON", "a_b"[::-1]]
        description = samples.one_frame(
            animations=[animation(name, [frame((0, at, 0)), frame((0, 0, at))]) for at, name in enumerate(names)])
        path = self.write(make(description).data)
        before = set(os.listdir(FOLDER)) | {"export"}
        self.assert_exports(description, path)
        self.assertEqual(set(os.listdir(FOLDER)), before)

    def test_names_beyond_ascii_give_every_frame_a_file(self):
        names = ["Größe", "Grösse", "日本", "\U0001F600", "\U0001F601", "é", "é"]
        description = samples.one_frame(animations=[animation(name, [frame((0, 0, 0))]) for name in names])
        folder = self.export(self.write(make(description).data))
        self.assertEqual(len(os.listdir(folder)), len(names))

    def test_more_than_a_thousand_frames_and_sounds_keep_their_numbers(self):
        description = samples.one_frame(
            animations=[animation("Long", [frame((0, at % 16, at // 16 % 16)) for at in range(1003)])],
            sounds=[wave(3, seed=at) for at in range(1003)])
        self.assert_exports(description, self.assert_reads(description))

    def test_an_image_too_large_for_its_frame_is_cut(self):
        description = samples.one_frame(samples.noise(50, 50, 2), width=1, height=1)
        self.assert_exports(description, self.assert_reads(description))
        description = samples.one_frame(images=[image(3, [b"\1\0\1"])], width=65535, height=1)
        self.assert_exports(description, self.assert_reads(description))


if __name__ == "__main__":
    unittest.main()
