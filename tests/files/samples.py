"""Descriptions of character files: a small one with a little of everything, and one for each point that a reader could
get wrong."""

import random
import struct

from acs_maker import BLANK, Same, animation, frame, image, overlay, wave
from acs_packer import MAX_DISTANCE, expand, max_length, pack_tokens

ENGINE = bytes.fromhex("00112233445566778899aabbccddeeff")
MODE = bytes.fromhex("f0e1d2c3b4a5968778695a4b3c2d1e0f")
VOICE = {"engine": ENGINE, "mode": MODE, "speed": 150, "pitch": 110, "details": None}
BALLOON = {"lines": 2, "columns": 28, "text": (1, 2, 3), "background": (255, 255, 231), "border": (4, 5, 6),
           "font": "Sans", "height": -13, "weight": 400, "italic": False}
PALETTE = [(255, 0, 255), (0, 0, 0), (255, 255, 255), (200, 10, 20), (10, 200, 30), (30, 40, 220)]
MANY_COLOURS = [(index, 255 - index, index * 7 % 256) for index in range(256)]


def description(**changes):
    """The blank description with some values replaced."""
    unknown = set(changes) - set(BLANK)
    if unknown:
        raise KeyError(f"no such part: {unknown}")
    return {**BLANK, **changes}


def noise(width, height, colours, seed=1):
    """Rows of random palette entries."""
    dice = random.Random(seed)
    return [bytes(dice.randrange(colours) for _ in range(width)) for _ in range(height)]


def blobs(width, height, colours, seed=1):
    """Rows like a drawing's: runs of equal entries, and rows similar to the one before."""
    dice, rows, row = random.Random(seed), [], b""
    for _ in range(height):
        if not rows or dice.random() < 0.4:
            row = b"".join(bytes([dice.randrange(colours)]) * dice.randint(1, 9) for _ in range(width))[:width]
        rows.append(row)
    return rows


def rich(**changes):
    """A small file with a little of everything."""
    swapped = {
        "version": (2, 1), "animation_set": (2, 3), "guid": bytes(range(200, 216)),
        "names": [(0x0409, "Ada", "A lady", "Hello"), (0x0407, "Ada \U0001F600", "", "Tag")],
        "width": 9, "height": 7, "transparent": 0, "flags": ("sizeToText", "autoPaceOff", "standardSet"),
        "voice": {**VOICE, "details": (0x0809, "Scots", 1, 30, "Calm")}, "balloon": BALLOON, "palette": PALETTE,
        "tray": (bytes(range(8)), bytes(range(20, 32))),
        "states": [("Showing", ["Show"]), ("Speaking", ["Wave", "Show"]), ("Hearing", [])],
        "animations": [
            animation("Show", [
                frame((0, 0, 0), sound=0, duration=7),
                frame(duration=0, branches=[(3, 40), (2, 30)]),
                frame((1, -2, 1), (0, 3, 2), duration=12, leave=3, branches=[(0, 25)], overlays=[
                    overlay("closed", 2, 1, 2, 5, 3, unused=9),
                    overlay("wide3", 3, -1, -2, 4, 4, replace=True, region=b"region")]),
                frame((2, 5, 5), duration=9)], "return", "Wave"),
            animation("Wave", [frame((3, 0, 0), (2, 8, 6), sound=1, duration=100)], "exit"),
            animation("Empty", [])],
        "images": [
            image(5, noise(5, 4, 6, 1)),
            image(7, blobs(7, 6, 6, 2), packed=True, region=bytes(24) + b"box", pack_region=True),
            image(4, noise(4, 2, 6, 3), region=b"a region as it is"),
            image(6, blobs(6, 5, 6, 4), packed=True)],
        "sounds": [wave(6, seed=1), wave(5, channels=1, rate=8000, bits=8, seed=2)],
    }
    return description(**{**swapped, **changes})


# ---------------------------------------------------------------------------------------------- one point at a time

def one_frame(rows=None, **changes):
    """One image in one frame."""
    rows = rows or noise(8, 8, 2)
    part = {"images": [image(len(rows[0]), rows)], "animations": [animation("RestPose", [frame((0, 1, 1))])]}
    return description(**{**part, **changes})


def odd_widths():
    """Every width from 1 to 17, stored and packed, so that rows end at every position within four bytes. The padding
    bytes are not in the palette."""
    images = [image(width, noise(width, 5, 6, width), packed=packed, fill=0xEE)
              for packed in (False, True) for width in range(1, 18)]
    frames = [frame((number, 2, 3)) for number in range(len(images))]
    return description(width=21, height=10, palette=PALETTE, images=images, animations=[animation("Widths", frames)])


def regions():
    """Stored and packed regions, each with stored and with packed pixels; short, long, and none."""
    long_one = struct.pack("<8I", 32, 1, 40, 640, 0, 0, 9, 9) + b"".join(
        struct.pack("<4i", 0, row, 9, row + 1) for row in range(40))
    images = [image(9, blobs(9, 9, 6, seed), packed=packed, region=region, pack_region=bool(region) and pack_region)
              for seed, region in enumerate((b"", b"\xFF", b"short", long_one, b"\0" * 3000))
              for packed in (False, True) for pack_region in (False, True)]
    frames = [frame((number, 0, 0)) for number in range(len(images))]
    return description(palette=PALETTE, images=images, animations=[animation("Regions", frames)])


def languages():
    """Names with every kind of character that could be damaged in a text or its JSON form."""
    return one_frame(names=[
        (0x0409, "Quote \" backslash \\ slash /", "tab\tline\nreturn\rform\fback\b", "bell\a unit\x1f delete\x7f"),
        (0x0407, "Zoë Größe", "ﬁ \u0301 \u200d \u2028 \u2029", "\ufeff\ufffd\uffff"),
        (0x0411, "日本語 \U0001F600", "\U00010000\U0010FFFF\U0001D11E", "\U0001F469\u200d\U0001F680"),
        (0x0401, "العربية", "עברית", "</script>"),
        (0xFFFF, "", "", ""),
        (0x0000, "x" * 5000, "\U0001F600" * 3000, " ")])


def bare():
    """A description without any of the optional things."""
    return description(names=None, images=None, sounds=None, animations=None, palette=[])


def empty_lists():
    """All lists exist and are empty."""
    return description(palette=[], states=[("", []), ("Showing", [])])


def empty_texts():
    """Every text without a single unit."""
    return one_frame(names=[(0x0409, "", "", "")], voice={**VOICE, "details": (0, "", 0, 0, "")},
                     balloon={**BALLOON, "font": ""}, states=[("", ["", ""])],
                     animations=[animation("", [frame((0, 0, 0))])], tray=(b"", b""))


def balloon_extremes():
    return one_frame(balloon={**BALLOON, "lines": 255, "columns": 255, "font": "Größe \U0001F600",
                              "height": -2147483648, "weight": 2147483647, "italic": True, "text": (255, 128, 0)},
                     voice={**VOICE, "speed": 0xFFFFFFFF, "pitch": 0xFFFF})


def all_flags():
    return one_frame(balloon=BALLOON, voice=VOICE,
                     flags=("balloonDisabled", "sizeToText", "autoHideOff", "autoPaceOff", "standardSet"))


def many_animations(count):
    """Exactly `count` animations, each with a name and a frame of its own."""
    images = [image(3, noise(3, 3, 2, seed)) for seed in range(7)]
    return description(images=images, states=[("IdlingLevel1", [f"Act {number}" for number in range(count)])],
                       animations=[animation(f"Act {number}", [frame((number % 7, number % 16, number // 16 % 16),
                                                                     duration=number)])
                                   for number in range(count)])


def leaving():
    """Exit branches, named return animations, and chances that add up to less than 100. Chances of more than 100 in all
    have no meaning; test_hostile has them."""
    still = (0, 0, 0)
    return one_frame(animations=[
        animation("Look", [
            frame(still, duration=5, leave=2),
            frame(still, duration=0, leave=-1, branches=[(0, 50), (2, 49)]),
            frame(still, duration=0xFFFF, leave=1, branches=[(0, 0), (1, 100)]),
            frame(still, duration=1, leave=-32768, branches=[(0, 1), (1, 1), (2, 1)])], "exit"),
        animation("Gaze", [frame(still)], "return", "GazeReturn"),
        animation("GazeReturn", [frame(still)], "none", "not meant"),
        animation("Peek", [frame(still, branches=[(0, 1)] * 100 + [(0, 0)] * 155)], "return", "gazeRETURN"),
        animation("Longer than others", [frame(still, duration=number, leave=number) for number in range(1200)],
                  "exit")])


def mouths():
    """A frame with every mouth, over and in place of its image, with and without regions; and a frame with the most
    mouths possible."""
    kinds = ("closed", "wide1", "wide2", "wide3", "wide4", "medium", "narrow")
    each = [overlay(mouth, at % 3, -at, at * 7, at, 65535 - at, replace=bool(at % 2),
                    region=bytes(at) if at % 3 else None, unused=at) for at, mouth in enumerate(kinds)]
    full = [overlay(kinds[at % 7], 2, 32767, -32768, 0, 65535) for at in range(255)]
    images = [image(5, blobs(5, 5, 2, seed)) for seed in range(3)]
    return description(images=images, animations=[animation("Speak", [
        frame((0, 3, 3), (1, 5, 5), overlays=each), frame((2, 1, 1), overlays=full), frame(overlays=each[:1])])])


def outside():
    """Images that extend beyond every edge of the frame, lie wholly outside it, or are larger than it."""
    images = [image(8, noise(8, 8, 6, 1)), image(40, noise(40, 30, 6, 2), packed=True)]
    places = [(-3, -3), (-7, 2), (9, -5), (15, 15), (-8, 0), (0, -8), (16, 0), (0, 12), (8, 4), (-32768, -32768),
              (32767, 32767), (-32768, 3), (3, 32767), (-1, -1)]
    frames = [frame((0, x, y)) for x, y in places]
    frames += [frame((1, x, y)) for x, y in places + [(-24, -18), (-12, -9)]]
    frames += [frame((0, -4, -4), (0, 12, 8), (1, -20, -15))]
    return description(width=16, height=12, palette=PALETTE, images=images, animations=[animation("Edges", frames)])


def layers():
    """Frames of several images that hide each other, and a frame without images."""
    images = [image(6, noise(6, 6, 6, seed), packed=bool(seed % 2)) for seed in range(5)]
    frames = [frame((0, 2, 2), (1, 4, 4), (2, 0, 0)), frame((2, 0, 0), (1, 4, 4), (0, 2, 2)), frame(),
              frame(*[(at % 5, at % 11, at % 9) for at in range(40)]), frame((3, 1, 1), (3, 1, 1), (4, 1, 1))]
    return description(palette=PALETTE, images=images, animations=[animation("Layers", frames)])


def transparency(entry):
    """The transparent entry is `entry`, not the first one."""
    images = [image(7, noise(7, 7, len(PALETTE), 5)), image(7, noise(7, 7, len(PALETTE), 6), packed=True)]
    return description(palette=PALETTE, transparent=entry, images=images,
                       animations=[animation("Glass", [frame((0, 2, 3), (1, 4, 5)), frame((1, 0, 0))])])


def full_palette():
    """All 256 entries, the last one transparent."""
    rows = [bytes(range(start, start + 32)) for start in range(0, 256, 32)]
    return description(width=33, height=9, palette=MANY_COLOURS, transparent=255,
                       images=[image(32, rows), image(32, rows, packed=True)],
                       animations=[animation("Colours", [frame((0, 0, 0)), frame((1, 1, 1), (0, 0, 0))])])


def sounds():
    """Wave files, plain and with chunks before the data, and a sound that is not a wave file."""
    listed = struct.pack("<4sI", b"LIST", 5) + b"INFOx\0"
    return one_frame(
        animations=[animation("Sing", [frame((0, 0, 0), sound=number) for number in range(8)] + [frame((0, 0, 0))])],
        sounds=[wave(100), wave(101, channels=2), wave(33, bits=8, rate=8000), wave(0), wave(9, extra=listed),
                b"no wave at all", wave(40, channels=2, bits=8, rate=44100), wave(1, rate=11025, bits=8)])


def shared():
    """Lists in which several entries point at the same bytes."""
    part = layers()
    return {**part, "images": part["images"][:3] + [Same(1), Same(0)],
            "animations": [animation("Twice", part["animations"][0]["frames"]),
                           animation("Sounds", [frame((4, 0, 0), sound=0), frame((3, 5, 5), sound=1)])],
            "sounds": [wave(50), Same(0)]}


def every_distance():
    """A packed image larger than the farthest copy reaches. It has copies at both ends of every width of the distance
    and with every count of length bits, and is seen through a small frame in several places."""
    dice = random.Random(7)
    tokens, size = [dice.randbytes(5000)], 5000
    width, height = 1028, 1040

    def copy(distance, length):
        nonlocal size
        tokens.append((distance, length))
        size += length

    for distance in (1, 2, 64, 65, 576, 577, 4672, 4673, 4999):
        least = 2 if distance < 4673 else 3
        for extra in [0, 1, 2, 3, 6, 7, 14, 15, 30, 62, 126, 254, 510, 511, 1022, 2046, 2047, 4093, 4094]:
            copy(distance, least + extra)
            tokens.append(dice.randbytes(1))
            size += 1
    while size < MAX_DISTANCE:
        copy(4999, min(max_length(4999), MAX_DISTANCE - size) if MAX_DISTANCE - size > 2 else 3)
    copy(MAX_DISTANCE, 4097)
    copy(MAX_DISTANCE - 1, 3)
    copy(1, 4096)
    tokens.append(dice.randbytes(width * height - size))
    data = expand(tokens)
    rows = [data[at:at + width] for at in range(0, len(data), width)][::-1]
    if len(data) != width * height or width % 4:
        raise ValueError("the tokens do not make whole rows without filling")
    places = [(0, 0), (-1000, -1010), (-500, -3), (-900, -700), (5, -1035), (-1023, 0)]
    return description(width=40, height=30, palette=MANY_COLOURS, images=[image(width, rows, raw=pack_tokens(tokens))],
                       animations=[animation("Far", [frame((0, x, y)) for x, y in places])])


READ_BACK = {
    "a little of everything": rich, "one frame": one_frame, "odd widths": odd_widths, "regions": regions,
    "several languages": languages, "nothing but the character": bare, "empty lists": empty_lists,
    "empty texts": empty_texts,
    "no names": lambda: one_frame(names=None), "names counted none": lambda: one_frame(names=[]),
    "voice without details": lambda: one_frame(voice=VOICE),
    "voice with details": lambda: one_frame(voice={**VOICE, "details": (0x0409, "Texan", 2, 65535, "Businessy")}),
    "voice and no balloon": lambda: one_frame(voice=VOICE, flags=("standardSet",)),
    "balloon and no voice": lambda: one_frame(balloon=BALLOON), "balloon extremes": balloon_extremes,
    "balloon disabled": lambda: one_frame(flags=("balloonDisabled",)),
    "balloon disabled yet described": lambda: one_frame(balloon=BALLOON, flags=("balloonDisabled",)),
    "all flags": all_flags,
    "tray icon": lambda: one_frame(tray=(bytes(128), bytes(range(256)) * 3)),
    "tray icon of colours only": lambda: one_frame(tray=(b"", b"colours")),
    "1001 animations": lambda: many_animations(1001), "1002 animations": lambda: many_animations(1002),
    "leaving": leaving, "mouths": mouths, "outside": outside, "layers": layers,
    "transparent 1": lambda: transparency(1), "transparent last": lambda: transparency(5),
    "transparent beyond the palette": lambda: transparency(6), "full palette": full_palette,
    "one colour": lambda: one_frame([b"\0\0\0"] * 3, palette=[(9, 8, 7)], transparent=255),
    "wide and low": lambda: one_frame([bytes(65535)] * 2), "tall and narrow": lambda: one_frame([b"\1"] * 65535),
    "sounds": sounds, "shared locators": shared, "every distance": every_distance,
    "state of an absent animation": lambda: one_frame(states=[("Showing", ["RestPose", "Absent"])]),
    "minor version 0": lambda: one_frame(version=(2, 0), animation_set=(1, 5)),
}
