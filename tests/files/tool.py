"""Runs acsinfo under a memory limit and measures its time and peak memory; computes the report that it must give on a
description. The program is $VOXMATE_ACSINFO, else that of the release build. $VOXMATE_ACSINFO_MEGABYTES limits its
address space (0: no limit, for a build with sanitizers)."""

import collections
import json
import os
import subprocess
import sys
import tempfile

import acs_maker

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
ACSINFO = os.path.abspath(os.environ.get("VOXMATE_ACSINFO") or os.path.join(ROOT, "build", "release", "acsinfo"))
MEGABYTES = int(os.environ.get("VOXMATE_ACSINFO_MEGABYTES", "400"))

# `seconds` is processor time, so that a busy machine makes no difference.
Result = collections.namedtuple("Result", "status out err seconds kilobytes")


class Runner:
    """Starts programs from a small process, so that this one's memory is not counted as theirs."""

    def __init__(self):
        launcher = os.path.join(os.path.dirname(os.path.abspath(__file__)), "launcher.py")
        self._process = subprocess.Popen([sys.executable, "-I", "-S", launcher, str(MEGABYTES)],
                                         stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self._folder = tempfile.TemporaryDirectory(prefix="acs-run-")
        self.peak = Result(None, b"", b"", 0.0, 0)
        self.runs = 0

    def __call__(self, *arguments):
        """Runs acsinfo with the arguments; `status` is the exit code, or minus the signal that ended it."""
        return self.start(ACSINFO, *arguments)

    def start(self, *command):
        paths = [os.path.join(self._folder.name, name) for name in ("out", "err")]
        self._process.stdin.write(json.dumps([*paths, *command]).encode() + b"\n")
        self._process.stdin.flush()
        status, seconds, kilobytes = json.loads(self._process.stdout.readline())
        texts = []
        for path in paths:
            with open(path, "rb") as file:
                texts.append(file.read())
        result = Result(status, *texts, seconds, kilobytes)
        self.runs += 1
        if command[0] == ACSINFO and kilobytes > self.peak.kilobytes:
            self.peak = result
        return result

    def close(self):
        self._process.stdin.close()
        self._process.wait()
        self._process.stdout.close()
        self._folder.cleanup()


def guid_text(data):
    """Sixteen bytes as a GUID: a u32 and two u16, little-endian, then eight bytes in order."""
    first, second, third = data[3::-1], data[5:3:-1], data[7:5:-1]
    return "{" + "-".join(part.hex() for part in (first, second, third, data[8:10], data[10:])) + "}"


def colour_text(rgb):
    return "#%02x%02x%02x" % rgb


def sound_report(data):
    """The report on a sound: its size and, for a plain wave file, its format."""
    report, at = {"size": len(data)}, 12
    channels = rate = bits = frames = None
    while data[:4] == b"RIFF" and data[8:12] == b"WAVE" and at + 8 <= len(data):
        kind, size = data[at:at + 4], int.from_bytes(data[at + 4:at + 8], "little")
        if kind == b"fmt ":
            channels, rate = (int.from_bytes(data[at + 10:at + 12], "little"),
                              int.from_bytes(data[at + 12:at + 16], "little"))
            bits = int.from_bytes(data[at + 22:at + 24], "little")
        if kind == b"data" and channels:
            frames = size // (channels * bits // 8)
        at += 8 + size + size % 2
    if frames is not None:
        report.update(channels=channels, sampleRate=rate, bits=bits, frames=frames)
    return report


def frame_report(one):
    return {
        "images": [{"image": number, "x": x, "y": y} for number, x, y in one["images"]],
        "sound": one["sound"], "duration": one["duration"],
        "exitFrame": one["leave"] if one["leave"] >= 0 else None,
        "branches": [{"frame": target, "percent": percent} for target, percent in one["branches"]],
        "overlays": [{**{key: over[key] for key in ("mouth", "replace", "image", "x", "y", "width", "height")},
                      "region": None if over["region"] is None else len(over["region"])}
                     for over in one["overlays"]]}


def animation_report(entries, number):
    entry, name = acs_maker.resolve(entries, number), getattr(entries[number], "name", None)
    return {"name": entry["name"] if name is None else name, "transition": entry["transition"],
            "returnAnimation": entry["returns"], "frames": [frame_report(one) for one in entry["frames"]]}


def voice_report(voice):
    if voice is None:
        return None
    report = {"engine": guid_text(voice["engine"]), "mode": guid_text(voice["mode"]), "speed": voice["speed"],
              "pitch": voice["pitch"]}
    if voice["details"] is not None:
        language, dialect, gender, age, style = voice["details"]
        report.update(language="0x%04x" % language, dialect=dialect, gender=gender, age=age, style=style)
    return report


def balloon_report(balloon):
    if balloon is None:
        return None
    return {"lines": balloon["lines"], "charactersPerLine": balloon["columns"],
            **{key: colour_text(balloon[key]) for key in ("text", "background", "border")},
            **{key: balloon[key] for key in ("font", "height", "weight", "italic")}}


def report(description, made, path):
    """What `acsinfo path` must print for a file made from the description, with the keys in their order."""
    version, animation_set, tray = (description[key] for key in ("version", "animation_set", "tray"))
    images = description["images"] or []
    flags = {"value": "0x%08x" % made.flags}
    flags.update((name, bool(made.flags >> bit & 1)) for name, bit in acs_maker.FLAG_BITS.items())
    whole = [acs_maker.resolve(images, number) for number in range(len(images))]
    sounds = description["sounds"] or []
    return {
        "file": path, "size": len(made.data),
        "version": {"major": version[0], "minor": version[1]},
        "animationSet": {"major": animation_set[0], "minor": animation_set[1]},
        "guid": guid_text(description["guid"]),
        "names": [{"language": "0x%04x" % language, "name": name, "description": about, "extra": extra}
                  for language, name, about, extra in description["names"] or []],
        "width": description["width"], "height": description["height"],
        "transparentIndex": description["transparent"], "flags": flags,
        "voice": voice_report(description["voice"]), "balloon": balloon_report(description["balloon"]),
        "palette": [colour_text(colour) for colour in description["palette"]],
        "trayIcon": tray and {"maskSize": len(tray[0]), "colourSize": len(tray[1])},
        "states": [{"name": name, "animations": members} for name, members in description["states"]],
        "animations": [animation_report(description["animations"], number)
                       for number in range(len(description["animations"] or []))],
        "images": [{"width": entry["width"], "height": len(entry["rows"]), "compressed": entry["packed"],
                    "storedSize": size} for entry, size in zip(whole, made.stored)],
        "sounds": [sound_report(acs_maker.resolve(sounds, number)) for number in range(len(sounds))]}


def export_names(names):
    """The file name stems under which animations' frames are exported: only plain characters, and each stem unique
    regardless of case."""
    stems, taken = [], collections.Counter()
    for name in names:
        stem = "".join(c if c.isascii() and c.isalnum() or c in "_-. " else "_" for c in name)
        taken[stem.lower()] += 1
        times = taken[stem.lower()]
        stems.append(stem if times == 1 else f"{stem}~{times}")
    return stems
