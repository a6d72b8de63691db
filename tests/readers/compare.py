"""Compares what the reader gives with the reference text, word by word."""

import collections
import os
import subprocess
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
READ = os.path.abspath(os.environ.get("VOXMATE_DOCUMENT_TEXT") or
                       os.path.join(ROOT, "build", "release", "document_text"))

Read = collections.namedtuple("Read", "kind level language label text")
Differences = collections.namedtuple("Differences", "words lost invented examples")


def read(path):
    """The blocks of a file, and the sentence about what is wrong with it."""
    done = subprocess.run([READ, path], capture_output=True, timeout=300, check=False)
    found = []
    for line in done.stdout.decode().splitlines():
        kind, level, language, label, text = line.split("|", 4)
        found.append(Read(kind, int(level), language, label, text.replace("\\n", "\n").replace("\\t", "\t")))
    return found, done.stderr.decode().strip()


def main_words(blocks):
    """The words of a text without its footnotes; labels are none."""
    return [word for block in blocks if block.kind not in ("footnote", "page", "chapter")
            for word in block.text.split()]


def note_words(blocks):
    return [word for block in blocks if block.kind == "footnote" for word in block.text.split()]


def reference_words(reference):
    return main_words(reference), [word for block in reference for _, note in block.notes for word in note.split()]


def differences(expected, found):
    """How many words of the expected ones are lost and how many were invented, by the shortest edit."""
    with tempfile.TemporaryDirectory(prefix="voxmate-readers-") as folder:
        paths = [os.path.join(folder, name) for name in ("expected", "found")]
        for path, words in zip(paths, (expected, found)):
            with open(path, "w", encoding="utf-8") as file:
                file.write("".join(word + "\n" for word in words))
        done = subprocess.run(["diff", "--minimal", "--unchanged-line-format=", "--old-line-format=-%L",
                               "--new-line-format=+%L", *paths], capture_output=True, check=False)
    edits = done.stdout.decode().splitlines()
    return Differences(len(expected), sum(edit[0] == "-" for edit in edits), sum(edit[0] == "+" for edit in edits),
                       edits[:12])
