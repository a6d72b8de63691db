"""Writes character files byte by byte from a plain description, without any of the program's own code, so that the
program's reader is tested by an independent implementation. Uses only Python's standard library.

A description is a dictionary with the keys of BLANK below. The file format leaves some points open; these are the
choices made here:
  - the animation set's version is stored as major, minor, unlike the file's own version (minor, major);
  - an absent list (None) is the locator 0, 0; an empty one ([]) is a section whose count is 0;
  - a text's closing zero is not counted, and a text without units has none;
  - checksums and unused bytes mean nothing to a reader, so arbitrary values are written;
  - bytes that pad a row of pixels mean nothing either and may exceed the palette;
  - an image's region does not affect how a frame is drawn, only the transparent palette entry does;
  - an absent pixel of a composed frame has the colour 0, 0, 0, 0.
"""

import dataclasses
import random
import struct

from acs_packer import pack

SIGNATURE = 0xABCDABC3
NO_SOUND = 0xFFFF
TRANSITIONS = ("return", "exit", "none")
MOUTHS = ("closed", "wide1", "wide2", "wide3", "wide4", "medium", "narrow")
FLAG_BITS = {"voice": 5, "balloonDisabled": 8, "balloon": 9, "sizeToText": 16, "autoHideOff": 17, "autoPaceOff": 18,
             "standardSet": 20}

BLANK = {
    "version": (2, 1), "animation_set": (2, 0), "guid": bytes(range(16)),
    "names": [],        # or None: (language, name, description, extra)
    "width": 16, "height": 16, "transparent": 0,
    "flags": (),        # names in FLAG_BITS except voice and balloon, which follow from the next two
    "voice": None,      # engine, mode, speed, pitch, details: None or (language, dialect, gender, age, style)
    "balloon": None,    # lines, columns, text, background, border, font, height, weight, italic
    "palette": [(0, 0, 0), (255, 255, 255)],
    "tray": None,       # (mask, colour image)
    "states": [],       # (name, [animation name])
    "animations": [],   # or None: animation(...), or same(...)
    "images": [],       # or None: image(...), or same(...)
    "sounds": [],       # or None: bytes, or same(...)
}


def animation(name, frames, transition="none", returns=""):
    """An animation. `transition` is one of TRANSITIONS, `returns` the name of its return animation."""
    return {"name": name, "frames": frames, "transition": transition, "returns": returns}


def frame(*images, sound=None, duration=10, leave=-1, branches=(), overlays=()):
    """A frame. `images` are (number, x, y), front-most first; `leave` is the exit frame, negative for none; `branches`
    are (frame, percent)."""
    return {"images": images, "sound": sound, "duration": duration, "leave": leave, "branches": branches,
            "overlays": overlays}


def overlay(mouth, number, x=0, y=0, width=1, height=1, replace=False, region=None, unused=0):
    """A mouth drawn over a frame, or in place of its front-most image. `region` is None or bytes."""
    return {"mouth": mouth, "image": number, "x": x, "y": y, "width": width, "height": height, "replace": replace,
            "region": region, "unused": unused}


def image(width, rows, packed=False, region=b"", pack_region=False, raw=None, raw_region=None, fill=0xEE, unused=0):
    """An image of `rows` (bytes, from the top down). `raw` and `raw_region` replace the packer's output by the given
    bytes, valid or not; `fill` is the byte that pads each row."""
    return {"width": width, "rows": rows, "packed": packed or raw is not None, "region": region,
            "pack_region": pack_region or raw_region is not None, "raw": raw, "raw_region": raw_region, "fill": fill,
            "unused": unused}


@dataclasses.dataclass(frozen=True)
class Same:
    """A list entry with the same locator as another entry; an animation still has its own `name` in the list."""
    number: int
    name: str = ""


# ---------------------------------------------------------------------------------------------------------- writing

@dataclasses.dataclass(frozen=True)
class Field:
    """A number in the file. `kind`: free (every value is valid), number (of a thing; there are `limit` of them, and
    `none` or a negative value means no thing), count, size, offset, dimension, flag, choice, bits, signature, version,
    wave (inside a sound) or loose (a reader may or may not object to its value). `shown` is its place in the reader's
    report."""
    name: str
    position: int
    width: int
    signed: bool
    kind: str
    value: int
    limit: int = 0
    none: int = -1
    shown: tuple = ()
    hex: bool = False


class Section:
    """A part of the file that a locator points to."""

    def __init__(self, name):
        self.name = name
        self.bytes = bytearray()
        self.fields = []
        self.locators = []

    def put(self, width, value, name, kind, signed=False, **more):
        full = f"{self.name}: {name}"
        self.fields.append(Field(full, len(self.bytes), width, signed, kind, value, **more))
        self.bytes += value.to_bytes(width, "little", signed=signed)

    def u8(self, value, name, kind, **more):
        self.put(1, value, name, kind, **more)

    def u16(self, value, name, kind, **more):
        self.put(2, value, name, kind, **more)

    def i16(self, value, name, kind, **more):
        self.put(2, value, name, kind, signed=True, **more)

    def u32(self, value, name, kind, **more):
        self.put(4, value, name, kind, **more)

    def i32(self, value, name, kind, **more):
        self.put(4, value, name, kind, signed=True, **more)

    def text(self, text, name):
        units = text.encode("utf-16-le", "surrogatepass")
        self.u32(len(units) // 2, name + ", length", "count")
        self.bytes += units + (b"\0\0" if units else b"")

    def block(self, data, name):
        self.u32(len(data), name + ", size", "size")
        self.bytes += data

    def colour(self, rgb):
        red, green, blue = rgb
        self.bytes += bytes((blue, green, red, 0))

    def locator(self, key, name):
        self.locators.append((len(self.bytes), key, name))
        self.bytes += bytes(8)


@dataclasses.dataclass(frozen=True)
class Made:
    """A written file: its bytes, its numbers by position, and the size of the pixel block of every image."""
    data: bytes
    fields: list
    stored: list
    flags: int


def stored_pixels(entry):
    """The rows as stored: from the bottom up, each padded to a multiple of four bytes."""
    filler = bytes([entry["fill"]]) * (-entry["width"] % 4)
    return b"".join(row + filler for row in reversed(entry["rows"]))


def flags_of(description):
    flags = sum(1 << FLAG_BITS[name] for name in description["flags"])
    for name in ("voice", "balloon"):
        flags |= (description[name] is not None) << FLAG_BITS[name]
    return flags


def write_character(description):
    out = Section("character")
    major, minor = description["version"]
    out.u16(minor, "minor version", "free", shown=("version", "minor"))
    out.u16(major, "major version", "version")
    out.locator("names" if description["names"] is not None else None, "names")
    out.bytes += description["guid"]
    out.u16(description["width"], "width", "loose")
    out.u16(description["height"], "height", "loose")
    out.u8(description["transparent"], "transparent entry", "loose")
    out.u32(flags_of(description), "flags", "bits")
    major, minor = description["animation_set"]
    out.u16(major, "animation set, major", "free", shown=("animationSet", "major"))
    out.u16(minor, "animation set, minor", "free", shown=("animationSet", "minor"))
    if description["voice"] is not None:
        write_voice(out, description["voice"])
    if description["balloon"] is not None:
        write_balloon(out, description["balloon"])
    out.u32(len(description["palette"]), "palette, count", "count")
    for colour in description["palette"]:
        out.colour(colour)
    out.u8(description["tray"] is not None, "tray icon present", "flag")
    for name, data in zip(("mask", "colours"), description["tray"] or ()):
        out.block(data, "tray icon, " + name)
    out.u16(len(description["states"]), "states, count", "count")
    for number, (state, members) in enumerate(description["states"]):
        out.text(state, f"state {number}, name")
        out.u16(len(members), f"state {number}, count", "count")
        for member, name in enumerate(members):
            out.text(name, f"state {number}, animation {member}")
    return out


def write_voice(out, voice):
    out.bytes += voice["engine"] + voice["mode"]
    out.u32(voice["speed"], "voice, speed", "free", shown=("voice", "speed"))
    out.u16(voice["pitch"], "voice, pitch", "free", shown=("voice", "pitch"))
    out.u8(voice["details"] is not None, "voice, details", "flag")
    if voice["details"] is not None:
        language, dialect, gender, age, style = voice["details"]
        out.u16(language, "voice, language", "free", shown=("voice", "language"), hex=True)
        out.text(dialect, "voice, dialect")
        out.u16(gender, "voice, gender", "free", shown=("voice", "gender"))
        out.u16(age, "voice, age", "free", shown=("voice", "age"))
        out.text(style, "voice, style")


def write_balloon(out, balloon):
    out.u8(balloon["lines"], "balloon, lines", "free", shown=("balloon", "lines"))
    out.u8(balloon["columns"], "balloon, columns", "free", shown=("balloon", "charactersPerLine"))
    for name in ("text", "background", "border"):
        out.colour(balloon[name])
    out.text(balloon["font"], "balloon, font")
    out.i32(balloon["height"], "balloon, height", "free", shown=("balloon", "height"))
    out.i32(balloon["weight"], "balloon, weight", "free", shown=("balloon", "weight"))
    out.u8(balloon["italic"], "balloon, italic", "flag")
    out.u8(0x5A, "balloon, last byte", "free")


def write_names(names):
    out = Section("names")
    out.u16(len(names), "count", "count")
    for number, (language, *texts) in enumerate(names):
        out.u16(language, f"{number}, language", "free", shown=("names", number, "language"), hex=True)
        for kind, text in zip(("name", "description", "extra"), texts):
            out.text(text, f"{number}, {kind}")
    return out


def write_animation(number, entry, images, sounds):
    out = Section(f"animation {number}")
    out.text(entry["name"], "name")
    out.u8(TRANSITIONS.index(entry["transition"]), "transition", "choice")
    out.text(entry["returns"], "return animation")
    out.u16(len(entry["frames"]), "frames, count", "count")
    for at, one in enumerate(entry["frames"]):
        write_frame(out, f"frame {at}", one, len(entry["frames"]), images, sounds,
                    ("animations", number, "frames", at))
    return out


def write_frame(out, name, one, frames, images, sounds, shown):
    out.u16(len(one["images"]), name + ", images, count", "count")
    for at, (image_number, x, y) in enumerate(one["images"]):
        place = (*shown, "images", at)
        out.u32(image_number, f"{name}, image {at}", "number", limit=images, shown=(*place, "image"))
        out.i16(x, f"{name}, image {at}, x", "free", shown=(*place, "x"))
        out.i16(y, f"{name}, image {at}, y", "free", shown=(*place, "y"))
    out.u16(NO_SOUND if one["sound"] is None else one["sound"], name + ", sound", "number", limit=sounds,
            none=NO_SOUND, shown=(*shown, "sound"))
    # A duration of 0 in a frame with branches may make an endless loop, which a reader may refuse.
    out.u16(one["duration"], name + ", duration", "loose" if one["branches"] else "free", shown=(*shown, "duration"))
    out.i16(one["leave"], name + ", exit frame", "number", limit=frames, shown=(*shown, "exitFrame"))
    out.u8(len(one["branches"]), name + ", branches, count", "count")
    for at, (target, percent) in enumerate(one["branches"]):
        out.u16(target, f"{name}, branch {at}", "number", limit=frames, shown=(*shown, "branches", at, "frame"))
        out.u16(percent, f"{name}, branch {at}, percent", "loose")
    out.u8(len(one["overlays"]), name + ", overlays, count", "count")
    for at, over in enumerate(one["overlays"]):
        place = (*shown, "overlays", at)
        title = f"{name}, overlay {at}, "
        out.u8(MOUTHS.index(over["mouth"]), title + "mouth", "choice")
        out.u8(over["replace"], title + "replace", "flag")
        out.u16(over["image"], title + "image", "number", limit=images, shown=(*place, "image"))
        out.u8(over["unused"], title + "unused", "free")
        out.u8(over["region"] is not None, title + "region present", "flag")
        out.i16(over["x"], title + "x", "free", shown=(*place, "x"))
        out.i16(over["y"], title + "y", "free", shown=(*place, "y"))
        out.u16(over["width"], title + "width", "free", shown=(*place, "width"))
        out.u16(over["height"], title + "height", "free", shown=(*place, "height"))
        if over["region"] is not None:
            out.block(over["region"], title + "region")


def write_image(number, entry):
    """Returns the section and the size of its pixel block."""
    out = Section(f"image {number}")
    out.u8(entry["unused"], "unused", "free")
    out.u16(entry["width"], "width", "dimension")
    out.u16(len(entry["rows"]), "height", "dimension")
    out.u8(entry["packed"], "compressed", "flag")
    pixels, region = stored_pixels(entry), entry["region"]
    if entry["packed"]:
        pixels = pack(pixels) if entry["raw"] is None else entry["raw"]
    out.block(pixels, "pixels")
    if entry["pack_region"]:
        region = pack(region) if entry["raw_region"] is None else entry["raw_region"]
    out.u32(len(region) if entry["pack_region"] else 0, "region, packed size", "size")
    out.u32(len(entry["region"]), "region, full size", "loose" if entry["pack_region"] else "size")
    out.bytes += region
    return out, len(pixels)


def write_sound(number, data):
    out = Section(f"sound {number}")
    for position, width, name in ((4, 4, "RIFF size"), (16, 4, "format size"), (20, 2, "format"), (22, 2, "channels"),
                                  (24, 4, "rate"), (28, 4, "bytes a second"), (32, 2, "frame size"),
                                  (34, 2, "bits"), (40, 4, "data size")):
        if len(data) >= position + width:
            value = int.from_bytes(data[position:position + width], "little")
            out.fields.append(Field(f"{out.name}: {name}", position, width, False, "wave", value))
    out.bytes += data
    return out


def write_list(name, entries, with_checksum):
    out = Section(name + " list")
    out.u32(len(entries), "count", "count")
    for number, entry in enumerate(entries):
        shared = isinstance(entry, Same)
        if not with_checksum:
            out.text(entry.name if shared else entry["name"], f"{number}, name")
        out.locator((name, entry.number if shared else number), str(number))
        if with_checksum:
            out.u32(random.Random(number).getrandbits(32), f"{number}, checksum", "free")
    return out


def make(description, order=None, gap=None):
    """Writes the file. `order` takes the list of all sections but the header and returns it in the order in which they
    are to be stored; `gap` takes a section's position in that order and returns bytes to be put before it."""
    images, sounds, animations = (description[key] for key in ("images", "sounds", "animations"))
    sections = {"character": write_character(description)}
    if description["names"] is not None:
        sections["names"] = write_names(description["names"])
    stored = [0] * len(images or ())
    if animations is not None:
        sections["animation list"] = write_list("animation", animations, False)
        for number, entry in enumerate(animations):
            if not isinstance(entry, Same):
                sections["animation", number] = write_animation(number, entry, len(images or ()), len(sounds or ()))
    if images is not None:
        sections["image list"] = write_list("image", images, True)
        for number, entry in enumerate(images):
            if not isinstance(entry, Same):
                sections["image", number], stored[number] = write_image(number, entry)
        stored = [stored[entry.number] if isinstance(entry, Same) else size for entry, size in zip(images, stored)]
    if sounds is not None:
        sections["sound list"] = write_list("sound", sounds, True)
        for number, entry in enumerate(sounds):
            if not isinstance(entry, Same):
                sections["sound", number] = write_sound(number, entry)

    header = Section("header")
    header.u32(SIGNATURE, "signature", "signature")
    for key in ("character", "animation list", "image list", "sound list"):
        header.locator(key if key in sections else None, key)
    return Made(*lay_out(header, sections, order, gap), stored, flags_of(description))


def lay_out(header, sections, order, gap):
    """Places the sections after the header and fills in the locators; returns the bytes and all numbers."""
    keys = list(sections)
    places, data = {}, bytearray(len(header.bytes))
    for at, key in enumerate(order(keys) if order else keys):
        data += gap(at) if gap else b""
        places[key] = len(data)
        data += sections[key].bytes
    fields = []
    for section, start in [(header, 0)] + [(sections[key], places[key]) for key in keys]:
        written = bytearray(section.bytes)
        for position, key, name in section.locators:
            where, size = (places[key], len(sections[key].bytes)) if key is not None else (0, 0)
            struct.pack_into("<II", written, position, where, size)
            title = f"{section.name}: {name}, "
            fields.append(Field(title + "offset", start + position, 4, False, "offset", where))
            fields.append(Field(title + "size", start + position + 4, 4, False, "size", size))
        data[start:start + len(written)] = written
        fields += [dataclasses.replace(field, position=start + field.position) for field in section.fields]
    return bytes(data), sorted(fields, key=lambda field: field.position)


# -------------------------------------------------------------------------------------------------------- composing

def resolve(entries, number):
    """The entry that `number` refers to, also through a shared locator."""
    entry = entries[number]
    return entries[entry.number] if isinstance(entry, Same) else entry


def compose(description, one):
    """Composes the frame without a mouth: rows from the top down, four bytes a pixel (red, green, blue, alpha)."""
    width, height = description["width"], description["height"]
    rows = [bytearray(4 * width) for _ in range(height)]
    colours = [bytes((*rgb, 255)) for rgb in description["palette"]]
    for number, left, top in reversed(one["images"]):
        entry = resolve(description["images"], number)
        for y in range(max(0, top), min(height, top + len(entry["rows"]))):
            source = entry["rows"][y - top]
            for x in range(max(0, left), min(width, left + entry["width"])):
                index = source[x - left]
                if index != description["transparent"]:
                    rows[y][4 * x:4 * x + 4] = colours[index]
    return b"".join(rows)


def wave(frames, channels=1, rate=22050, bits=16, extra=b"", seed=1):
    """A complete wave file of noise; `extra` is a chunk to be put before the data."""
    size = frames * channels * bits // 8
    body = random.Random(seed).randbytes(size)
    block = channels * bits // 8
    chunks = struct.pack("<4sIHHIIHH", b"fmt ", 16, 1, channels, rate, rate * block, block, bits) + extra
    chunks += struct.pack("<4sI", b"data", size) + body + bytes(size % 2)
    return struct.pack("<4sI4s", b"RIFF", 4 + len(chunks), b"WAVE") + chunks
