"""Malicious character files: cut short, with every number set to its extremes, or made to expand enormously. acsinfo
either reads such a file or refuses it in one line that names it. It never crashes, never takes long and never fills the
memory."""

import collections
import json
import os
import shutil
import struct
import sys
import tempfile
import unittest

import samples
import tool
from acs_maker import Same, animation, frame, image, make, wave
from acs_packer import MAX_DISTANCE, BitWriter, pack_tokens

EXTRA_SECONDS = 0.1  # Seconds a file may take in addition to the start of the process.
BATCH = 100


def setUpModule():
    global run, FOLDER, start_seconds, slowest
    if not os.access(tool.ACSINFO, os.X_OK):
        raise FileNotFoundError(f"{tool.ACSINFO} has not been built")
    run = tool.Runner()
    FOLDER = tempfile.mkdtemp(prefix="acs-", dir="/dev/shm" if os.access("/dev/shm", os.W_OK) else None)
    empty = os.path.join(FOLDER, "empty.acs")
    open(empty, "wb").close()
    start_seconds = sorted(run(empty).seconds for _ in range(15))[7]
    slowest = (0.0, "none")


def tearDownModule():
    nothing = run.start("/bin/true").kilobytes
    print(f"acsinfo: {run.runs} runs; peak memory {run.peak.kilobytes} KB ({nothing} KB is the test's own share); "
          f"start {1000 * start_seconds:.1f} ms; slowest file {1000 * slowest[0]:.1f} ms beyond it ({slowest[1]})",
          file=sys.stderr)
    run.close()
    shutil.rmtree(FOLDER)


def extremes(field, size):
    """Extreme values (as stored, unsigned) for a field of a file of `size` bytes."""
    top = (1 << 8 * field.width) - 1
    now = field.value & top
    values = {0, 1, 2, now - 1, now + 1, top, top - 1, top >> 1, (top >> 1) + 1, (top >> 1) + 2, (top >> 1) - 1,
              size - 1, size, size + 1, field.limit - 1, field.limit, field.limit + 1, 0x100, 0x10000}
    if field.kind in ("count", "size", "offset", "loose", "dimension"):
        values |= {size - now, size - now + 1, size - field.position - field.width,
                   size - field.position - field.width + 1, 0x15555556, 0x20000000, 0x3FFFFFFF, 0x40000000,
                   0x55555556, 0xFFFFFFF0, 0xFFFFFFDC}
    return sorted(value for value in values if 0 <= value <= top and value != now)


def verdict(field, value, size):
    """The required outcome for a file whose field has the value: "sound", "refused", or None for either."""
    top = 1 << 8 * field.width
    number = value - top if field.signed and value >= top // 2 else value
    if field.kind in ("free", "wave"):
        return "sound"
    if field.kind == "signature":
        return "refused"
    if field.kind == "number":
        if number == field.none or number < 0:
            return "sound"
        # Another valid branch target may make an endless loop.
        return "refused" if number >= field.limit else None if "branch" in field.name else "sound"
    if field.kind in ("count", "size", "offset") and number > size or field.kind == "offset" and number == size:
        return "refused"
    if field.kind == "dimension" and number > 4096:
        return "refused"
    return None


def patched(made, *changes):
    """The file with some fields changed: (field, value as stored)."""
    data = bytearray(made.data)
    for field, value in changes:
        data[field.position:field.position + field.width] = value.to_bytes(field.width, "little")
    return bytes(data)


class HostileCase(unittest.TestCase):
    """Checks many files at once and a few alone."""

    def write(self, name, data):
        path = os.path.join(FOLDER, name + ".acs")
        with open(path, "wb") as file:
            file.write(data)
        return path

    def timed(self, *arguments, title):
        """Runs acsinfo, again up to twice while it seems slow, because even processor time varies on a busy machine."""
        global slowest
        best = None
        for _ in range(3):
            result = run(*arguments)
            if best is None or result.seconds < best.seconds:
                best = result
            if best.seconds < start_seconds + EXTRA_SECONDS or best.seconds > 1:
                break
        if (best.seconds - start_seconds, title) > slowest:
            slowest = (best.seconds - start_seconds, title)
        return best

    def assert_refusal(self, text, path, title):
        """The text must be one line that names the file."""
        self.assertTrue(text.endswith("\n") and text.count("\n") == 1 and f'"{path}" cannot be used: ' in text,
                        f"{title}: {text[:300]!r}")

    def check(self, files):
        """Checks files of (title, bytes, verdict) in batches; returns how many were valid and how many refused. A fault
        in a batch, slowness included, is traced to its file by checking each file alone."""
        tally = collections.Counter()
        for at in range(0, len(files), BATCH):
            batch = [(title, self.write(str(number), data), wanted)
                     for number, (title, data, wanted) in enumerate(files[at:at + BATCH])]
            result = run("--check", *(path for _, path, _ in batch))
            if result.seconds > start_seconds + EXTRA_SECONDS or not self.judge(batch, result, tally):
                for one in batch:
                    alone = self.timed("--check", one[1], title=one[0])
                    with self.subTest(one[0]):
                        self.assertLess(alone.seconds, start_seconds + EXTRA_SECONDS)
                        self.assertTrue(self.judge([one], alone, tally),
                                        f"status {alone.status}, {alone.out[:300]!r} {alone.err[:300]!r}, "
                                        f"wanted {one[2]}")
            else:
                global slowest
                slowest = max(slowest, (result.seconds - start_seconds, f"a batch of {len(batch)}"))
        return tally

    def judge(self, batch, result, tally):
        """Whether a run of --check gave the required outcome for every file of the batch."""
        lines = result.out.decode("utf-8").splitlines(keepends=True)
        if len(lines) != len(batch):
            return False
        found = collections.Counter()
        for line, (title, path, wanted) in zip(lines, batch):
            said = "sound" if line == path + ": sound\n" else "refused"
            if said == "refused" and f'"{path}" cannot be used: ' not in line or wanted not in (said, None):
                return False
            found[said] += 1
        if result.err or result.status != (1 if found["refused"] else 0):
            return False
        tally += found
        return True

    def single(self, path, title):
        """acsinfo's report on one file alone, or None if it refuses the file."""
        result = self.timed(path, title=title)
        self.assertLess(result.seconds, start_seconds + EXTRA_SECONDS, title)
        if result.status == 0:
            self.assertEqual(result.err, b"", title)
            return json.loads(result.out.decode("utf-8"))
        self.assertEqual((result.status, result.out), (1, b""), title)
        self.assert_refusal(result.err.decode("utf-8"), path, title)
        return None


class DamagedFileTest(HostileCase):
    """One small file with a little of everything, damaged in all ways."""

    @classmethod
    def setUpClass(cls):
        cls.description = samples.rich()
        cls.made = make(cls.description)

    def test_a_file_cut_anywhere_is_refused(self):
        data = self.made.data
        tally = self.check([(f"cut after {size} bytes", data[:size], "refused") for size in range(len(data))])
        self.assertEqual(tally, {"refused": len(data)})
        for size in range(0, len(data), 97):
            self.assertIsNone(self.single(self.write("cut", data[:size]), f"cut after {size} bytes"))

    def test_a_file_cut_anywhere_is_refused_whatever_stands_last(self):
        for order in (lambda keys: keys[::-1], lambda keys: sorted(keys, key=str)):
            data = make(self.description, order=order).data
            tally = self.check([(f"cut after {size} bytes", data[:size], "refused")
                                for size in range(36, len(data), 3)])
            self.assertGreater(tally["refused"], 300)

    def test_only_version_two_is_read(self):
        (field,) = (field for field in self.made.fields if field.kind == "version")
        read = [major for major in (0, 1, 2, 3, 0x102, 0x200, 0xFFFF)
                if self.single(self.write("version", patched(self.made, (field, major))), f"version {major}")]
        self.assertEqual(read, [2])

    def test_any_number_may_be_extreme(self):
        data, files = self.made.data, []
        for field in self.made.fields:
            for value in extremes(field, len(data)):
                files.append((f"{field.name} = {value:#x}", patched(self.made, (field, value)),
                              verdict(field, value, len(data))))
        tally = self.check(files)
        self.assertEqual(sum(tally.values()), len(files))
        kinds = collections.Counter(wanted for _, _, wanted in files)
        print(f"{len(self.made.fields)} numbers of a file of {len(data)} bytes in {len(files)} extremes: "
              f"{tally['sound']} sound, {tally['refused']} refused ({kinds['sound']} and {kinds['refused']} had to be)",
              file=sys.stderr)

    def test_any_byte_may_be_another(self):
        data = self.made.data
        files = [(f"byte {at} is {value:#x}", data[:at] + bytes([value]) + data[at + 1:], None)
                 for at in range(len(data)) for value in {data[at] ^ 0xFF, data[at] ^ 0x80, data[at] ^ 1}]
        self.assertEqual(sum(self.check(files).values()), len(files))

    def test_a_free_number_is_reported_as_it_stands(self):
        shown = 0
        for field in self.made.fields:
            if not field.shown or field.kind not in ("free", "number"):
                continue
            for value in extremes(field, len(self.made.data)):
                if verdict(field, value, len(self.made.data)) != "sound":
                    continue
                if value not in (0, 1, 0xFF, 0x7FFF, 0x8000, 0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF):
                    continue
                path = self.write("free", patched(self.made, (field, value)))
                wanted = tool.report(self.description, self.made, path)
                place = wanted
                for key in field.shown[:-1]:
                    place = place[key]
                place[field.shown[-1]] = self.as_shown(field, value)
                self.assertEqual(self.single(path, field.name), wanted, f"{field.name} = {value:#x}")
                shown += 1
                if shown % 40 == 0:
                    self.assertEqual(run("--export", os.path.join(FOLDER, "export"), path).status, 0)
        self.assertGreater(shown, 150)

    @staticmethod
    def as_shown(field, value):
        top = 1 << 8 * field.width
        number = value - top if field.signed and value >= top // 2 else value
        if field.kind == "number" and (number < 0 or number == field.none):
            return None
        return "0x%04x" % number if field.hex else number

    def test_a_file_alone_fares_as_it_does_among_others(self):
        data = self.made.data
        for at, field in enumerate(self.made.fields[::2]):
            values = extremes(field, len(data))
            value = values[at % len(values)]
            title, path = f"{field.name} = {value:#x}", self.write("alone", patched(self.made, (field, value)))
            alone, checked = self.single(path, title), run("--check", path)
            self.assertIn(checked.status, (0, 1), title)
            self.assertEqual(alone is not None, checked.status == 0, title)
            if verdict(field, value, len(data)) == "sound":
                self.assertIsNotNone(alone, title)

    def test_locators_may_overflow_or_point_anywhere(self):
        made, files = self.made, []
        by_name = {field.name: field for field in made.fields}
        offsets = [field for field in made.fields if field.kind == "offset"]
        self.assertGreaterEqual(len(offsets), 14)
        size = len(made.data)
        for field in offsets:
            extent = by_name[field.name.removesuffix("offset") + "size"]
            for offset, length, wanted in (
                    (0xFFFFFFF0, 0x20, "refused"), (0xFFFFFFFF, 1, "refused"), (1, 0xFFFFFFFF, "refused"),
                    (size, 1, "refused"), (size, 0, None), (0, size, None), (0, 0, None), (0xFFFFFFFF, 0, None),
                    (0x80000000, 0x80000000, "refused"), (0, 36, None), (size - 1, 1, None)):
                files.append((f"{field.name} {offset:#x}, size {length:#x}",
                              patched(made, (field, offset), (extent, length)), wanted))
            for other in offsets:  # Every locator is pointed at everything else, also at itself and its own list.
                files.append((f"{field.name} of {other.name}",
                              patched(made, (field, other.value),
                                      (extent, by_name[other.name.removesuffix("offset") + "size"].value)),
                              "sound" if other is field else None))
        self.assertEqual(sum(self.check(files).values()), len(files))

    def test_what_is_no_file_of_this_kind_is_refused_by_name(self):
        folder = os.path.join(FOLDER, "folder.acs")
        os.makedirs(folder, exist_ok=True)
        for path in (self.write("empty", b""), self.write("zeros", bytes(5000)), self.write("ones", b"\xFF" * 5000),
                     self.write("a wave", wave(1000)), folder, os.path.join(FOLDER, "absent.acs"),
                     self.write("ein größeres 日本 \U0001F600 %s %n", b"\xC3"), "/dev/null"):
            self.assertIsNone(self.single(path, path))
            result = run("--export", os.path.join(FOLDER, "export of none"), path)
            self.assertEqual((result.status, result.out), (1, b""), path)
            self.assert_refusal(result.err.decode("utf-8"), path, path)
        names = [self.write(name, data) for name, data in (("good", self.made.data), ("bad", b""))]
        result = run("--check", names[0], names[1], names[0])
        self.assertEqual((result.status, result.err), (1, b""))
        self.assertEqual([line.endswith(": sound") for line in result.out.decode().splitlines()], [True, False, True])


class LyingPixelsTest(HostileCase):
    """Packed data with errors."""

    PIXELS = bytes(range(6)) * 8  # The pixels of an image of 8 by 6.

    def file(self, packed, region=None):
        """A file with one image whose packed pixels or packed region are the given bytes."""
        entry = image(8, samples.noise(8, 6, 6), raw=packed, region=self.PIXELS, raw_region=region)
        return make(samples.description(palette=samples.PALETTE, images=[entry],
                                        animations=[animation("Wave", [frame((0, 0, 0))])])).data

    def cases(self):
        pixels, good = self.PIXELS, pack_tokens([self.PIXELS])

        def bits(*parts):
            writer = BitWriter()
            for value, count in parts:
                writer.put(value, count)
            return writer.finish(1)

        byte = (0, 9)  # The literal 0.
        return [
            ("as it should be", good, "sound"),
            ("nothing", b"", "refused"), ("one byte", b"\0", "refused"), ("the frame of nothing", bits(), "refused"),
            ("an end at once", pack_tokens([]), "refused"),
            ("a byte too few", pack_tokens([pixels[:-1]]), "refused"),
            ("a byte too many", pack_tokens([pixels + b"\0"]), "refused"),
            ("a copy that runs over", pack_tokens([pixels[:-1], (6, 4000)]), "refused"),
            ("a long copy of too much", pack_tokens([pixels] + [(1, 4096)] * 500), "refused"),
            ("a copy before anything", pack_tokens([(1, 48)]), "refused"),
            ("a copy from one too far", pack_tokens([pixels[:10], (11, 38)]), "refused"),
            ("a copy from far too far", pack_tokens([pixels[:40], (5000, 8)]), "refused"),
            ("the farthest copy", pack_tokens([pixels[:40], (MAX_DISTANCE, 8)]), "refused"),
            ("a length of twelve bits", bits(byte, (1, 2), (0, 6), (0xFFF, 13), (0, 12)), "refused"),
            ("a length of thirty ones", bits(byte, (1, 2), (0, 6), (0x3FFFFFFF, 31), (0, 30)), "refused"),
            ("a length without end", b"\0" + bits(byte, (1, 2), (0, 6))[1:-6] + b"\xFF" * 4000, "refused"),
            ("nothing but ones", b"\0" + b"\xFF" * 500, "refused"),
            ("nothing but zeros", bytes(500), "refused"),
            ("zeros to the closing bytes", bytes(500) + b"\xFF" * 6, "refused"),
            ("no end", b"\0" + good[1:-9], "refused"),
            ("a first byte that is not 0", b"\1" + good[1:], None),
            ("closing bytes that are not 0xFF", good[:-1] + b"\0", None),
            ("closing bytes cut", good[:-1], None),
            ("bytes between the end and the closing bytes", good[:-6] + b"\x55" * 30 + good[-6:], None),
        ]

    def test_pixels_that_lie_are_refused(self):
        files = [(title, self.file(packed), wanted) for title, packed, wanted in self.cases()]
        self.assertEqual(sum(self.check(files).values()), len(files))

    def test_regions_that_lie_are_harmless(self):
        files = [(title, self.file(None, region=packed), "sound" if wanted == "sound" else None)
                 for title, packed, wanted in self.cases()]
        self.assertEqual(sum(self.check(files).values()), len(files))

    def test_pixels_beyond_the_palette_are_refused(self):
        # With more entries than a pixel can name, either outcome is allowed. The transparent entry needs no colour.
        files = [(f"a palette of {count}, entry {entry} transparent",
                  make(samples.one_frame([bytes(range(256))], palette=[(1, 2, 3)] * count, transparent=entry)).data,
                  None if count > 256 else "sound" if count + (entry == 255) >= 256 else "refused")
                 for count in (0, 1, 2, 254, 255, 256, 257, 1000) for entry in (0, 1, 255)]
        self.assertEqual(sum(self.check(files).values()), len(files))

    def test_what_the_pictures_lie_about_is_refused_without_asking_for_a_check(self):
        for title, packed, wanted in self.cases():
            said = self.single(self.write("alone", self.file(packed)), title)
            if wanted:
                self.assertEqual(said is not None, wanted == "sound", title)
        folder = os.path.join(FOLDER, "pictures")
        result = run("--export", folder, self.write("alone", self.file(pack_tokens([self.PIXELS[:-1]]))))
        self.assertEqual((result.status, result.out), (1, b""))
        self.assertFalse(os.path.exists(folder))


class GreedyFileTest(HostileCase):
    """Small files that claim to hold, or really expand to, very much."""

    def greedy(self, title, data, wanted=None):
        """Checks the file, and then reads it alone."""
        self.check([(title, data, wanted)])
        with self.subTest(title + ", alone"):
            report = self.single(self.write("greedy", data), title)
            if wanted == "sound":
                self.assertIsNotNone(report)

    def sized(self, made, width, height):
        """The file with other claimed sizes for image 0."""
        fields = {field.name: field for field in made.fields}
        return patched(made, (fields["image 0: width"], width), (fields["image 0: height"], height))

    def test_images_of_huge_sizes(self):
        rows = [bytes(8)] * 8
        for packed in (False, True):
            made = make(samples.one_frame(images=[image(8, rows, packed=packed)]))
            for width, height in ((65535, 65535), (65535, 8), (8, 65535), (32768, 32768), (65535, 0), (0, 65535),
                                  (0, 0), (46341, 46341)):
                title = f"{'packed' if packed else 'stored'} image of {width} by {height}"
                self.greedy(title, self.sized(made, width, height), "refused" if width * height else None)

    def bomb(self, width, height, as_region=False):
        """An image that really unpacks to width * height zeros, or a small one whose region does."""
        size = width * height
        whole, rest = divmod(size - 1, 4096)
        packed = pack_tokens([bytes(1 + rest)] + [(1, 4096)] * whole)
        region, pixels = (packed, bytes(64)) if as_region else (b"", packed)
        entry = struct.pack("<BHHBI", 0, *((8, 8, 0) if as_region else (width, height, 1)), len(pixels))
        return entry + pixels + struct.pack("<II", len(region), size if region else 0) + region

    def with_image(self, section):
        """A file whose image 0 is the given bytes, put at the end of the file."""
        made = make(samples.one_frame([bytes(8)] * 8))
        fields = {field.name: field for field in made.fields}
        return patched(made, (fields["image list: 0, offset"], len(made.data)),
                       (fields["image list: 0, size"], len(section))) + section

    def test_packed_data_that_truly_is_huge(self):
        for as_region in (False, True):
            section = self.bomb(20000, 20000, as_region)
            self.greedy(f"{'a region' if as_region else 'an image'} of 400 MB in {len(section)} bytes",
                        self.with_image(section))
        # Sizes that a real character might have must not be refused.
        self.greedy("an image of 1200 by 1000", self.with_image(self.bomb(1200, 1000)), "sound")

    def test_frames_of_huge_sizes(self):
        for width, height in ((65535, 65535), (65535, 1), (1, 65535), (65535, 4000), (0, 0), (0, 65535),
                              (16000, 16000)):
            self.greedy(f"a frame of {width} by {height}", make(samples.one_frame(width=width, height=height)).data)

    def test_lists_that_name_the_same_thing_over_and_over(self):
        big = image(2000, [bytes(2000)] * 2000, raw=pack_tokens([b"\0"] + [(1, 4000)] * 999 + [(1, 3999)]))
        self.greedy("one image 20000 times", make(samples.description(
            images=[big] + [Same(0)] * 20000, animations=[animation("Wave", [frame((0, 0, 0))])])).data)
        self.greedy("one sound 10000 times", make(samples.one_frame(
            sounds=[wave(200000)] + [Same(0)] * 10000)).data)
        self.greedy("one animation of 20000 frames 20000 times", make(samples.one_frame(animations=[animation(
            "Wave", [frame((0, 0, 0))] * 20000)] + [Same(0, "Wave")] * 20000)).data)

    def test_frames_of_very_many_images(self):
        rows = [bytes([1]) * 500] * 500
        crowd = [frame(*[(0, 0, 0)] * 5000)] * 3
        self.greedy("3 frames of 5000 images of 500 by 500", make(samples.description(
            width=500, height=500, images=[image(500, rows, packed=True)],
            animations=[animation("Crowd", crowd)])).data)
        self.greedy("3 frames of 5000 images of 1 by 1", make(samples.description(
            images=[image(1, [b"\1"])], animations=[animation("Crowd", crowd)])).data, "sound")

    def test_circles(self):
        still = (0, 0, 0)
        circles = {
            "a frame of no duration that leads to itself": [frame(still, duration=0, branches=[(0, 100)])],
            "two that lead to each other": [frame(still, duration=0, branches=[(1, 100)]),
                                            frame(still, duration=0, branches=[(0, 100)])],
            "many in a ring": [frame(still, duration=0, branches=[((at + 1) % 1000, 100)]) for at in range(1000)],
            "one that leads to itself by chance": [frame(still, duration=0, branches=[(0, 99)])],
            "a way into a ring": [frame(still), frame(still, duration=0, branches=[(2, 50)]),
                                  frame(still, duration=0, branches=[(1, 100)])],
            "a whole animation of no duration": [frame(still, duration=0)] * 500,
            "exits in a ring": [frame(still, leave=1), frame(still, leave=0), frame(still, leave=2)],
            "branches to every frame": [frame(still, duration=0, branches=[(to, 0) for to in range(255)])] * 255}
        for title, frames in circles.items():
            data = make(samples.one_frame(animations=[animation("Ring", frames, "exit")])).data
            self.greedy(title, data)
            result = run("--export", os.path.join(FOLDER, "ring"), self.write("ring", data))
            self.assertIn(result.status, (0, 1), title)
        returns = [animation(name, [frame(still)], "return", to) for name, to in ("aa", "bc", "cb")]
        self.greedy("return animations in a ring", make(samples.one_frame(animations=returns)).data)

    def test_chances_of_more_than_all(self):
        for chances in ([101], [100, 1], [65535], [65535] * 255, [32768, 32768]):
            frames = [frame((0, 0, 0), branches=[(0, chance) for chance in chances])]
            self.greedy(f"chances of {sum(chances)}", make(samples.one_frame(animations=[animation("A", frames)])).data)

    def test_animations_of_one_name(self):
        for names in (("Wave", "Wave"), ("Wave", "WAVE"), ("", "")):
            self.greedy(f"animations {names}", make(samples.one_frame(
                animations=[animation(name, [frame((0, 0, 0))]) for name in names])).data)

    def test_an_animation_list_that_lies_about_itself(self):
        made = make(samples.rich())
        fields = {field.name: field for field in made.fields}
        whole = (fields["header: animation list, offset"].value, fields["header: animation list, size"].value)
        for number in range(3):
            self.greedy(f"animation {number} is its own list", patched(
                made, (fields[f"animation list: {number}, offset"], whole[0]),
                (fields[f"animation list: {number}, size"], whole[1])))
        for name in ("character", "image list", "sound list"):
            self.greedy(f"the {name} is the animation list", patched(
                made, (fields[f"header: {name}, offset"], whole[0]), (fields[f"header: {name}, size"], whole[1])))


if __name__ == "__main__":
    unittest.main()
