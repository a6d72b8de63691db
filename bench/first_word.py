"""Measures how soon a Word document of one page and one of 200 pages are heard after Enter in the open dialog: with the
dialog up for two seconds, the name typed at their beginning or at their end, with the name typed and confirmed at once,
and with nothing prepared; beside antiword and catdoc, whose text espeak-ng speaks. All in one run, in turns, on one private display and sound server. Nothing else may
run on the machine.

Usage: /usr/bin/python3 -W ignore bench/first_word.py [RUNS]
"""

import os
import random
import shutil
import statistics
import subprocess
import sys
import time

ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), ".."))
sys.path.insert(0, os.path.join(ROOT, "tests", "desktop"))
# pylint: disable=wrong-import-position
import desk as desktop  # noqa: E402
import sound  # noqa: E402
from test_reading import WordCase, focused_text  # noqa: E402

RUNS = int(sys.argv[1]) if len(sys.argv) > 1 else 5
WORDS_ON_A_PAGE = 500  # a page of plain text with single spacing
PAGES = (1, 200)
DIALOG_SECONDS = 2.0
PEERS = ("antiword", "catdoc")
TITLE = "Open Word File to Read..."

# Stands before the converter's own commands and lets nothing start in advance.
COLD = """#!/bin/sh
case " $* " in *" --convert-to "*) exec {0} "$@" ;; esac
exit 1
"""


def prose(words, seed):
    """Paragraphs of a hundred words."""
    chance = random.Random(seed)
    known = "a quick brown fox jumps over the lazy dog while rain falls on tin and nobody knows why it never stops".split()
    picked = [chance.choice(known) for _ in range(words)]
    return "\n".join(" ".join(picked[at:at + 100]).capitalize() + "." for at in range(0, words, 100))


class FirstWord(WordCase):
    def measure(self):
        self.desk.end(self.program)
        self.paths = {pages: self.document(f"pages{pages}.doc", prose(pages * WORDS_ON_A_PAGE, pages)) for pages in PAGES}
        self.figures = {}
        cold = self.cold_folder()
        for _ in range(RUNS):
            self.start_and_settle(TMPDIR=self.temporary)
            for pages in PAGES:
                self.add("Voxmate, named for 2 s", pages, self.open_after(pages, DIALOG_SECONDS))
                self.add("Voxmate, named after 2 s", pages, self.open_after(pages, 0, DIALOG_SECONDS))
                self.add("Voxmate, confirmed at once", pages, self.open_after(pages, 0))
            self.desk.end(self.program)
            self.start_and_settle(TMPDIR=self.temporary, PATH=cold + ":" + self.desk.env["PATH"])
            for pages in PAGES:
                self.add("Voxmate, nothing prepared", pages, self.open_after(pages, DIALOG_SECONDS))
            self.desk.end(self.program)
            for pages in PAGES:
                for peer in filter(shutil.which, PEERS):
                    self.add(f"{peer} and espeak-ng", pages, self.peer_speaks(peer, pages))
                    self.add(f"{peer}, whole text only", pages, self.peer_writes(peer, pages))
        self.report()

    def cold_folder(self):
        """A folder with stand-ins for the converter's commands that start it only for a document."""
        folder = os.path.join(self.desk.home, "cold")
        os.makedirs(folder, exist_ok=True)
        real = os.path.dirname(os.path.realpath(shutil.which("soffice")))
        for name in ("soffice", "oosplash"):
            if os.path.exists(os.path.join(real, name)):
                with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
                    file.write(COLD.format(os.path.join(real, name)))
                os.chmod(file.name, 0o755)
        shutil.copy(os.path.join(real, "versionrc"), folder)
        return folder

    def add(self, way, pages, seconds):
        self.figures.setdefault(way, {}).setdefault(pages, []).append(seconds * 1000)

    def open_after(self, pages, least, idle=0):
        """Seconds from Enter in the open dialog to the first sound. The name is typed when the dialog has been up for
        `idle` seconds, and Enter pressed when it has been up for `least` seconds at least."""
        self.press("Open and Read a Word Document")
        self.desk.find(TITLE)
        opened = time.monotonic()
        time.sleep(idle)
        field = desktop.wait_for(lambda: focused_text(self.desk), what="the field for the file's name")
        self.desk.key("ctrl+a")
        self.desk.type(self.paths[pages])
        desktop.wait_for(lambda: field.queryText().getText(0, -1) == self.paths[pages], what="the typed name")
        time.sleep(max(0.0, opened + least - time.monotonic()))
        begin = self.now()
        pressed = time.monotonic()
        self.desk.key("Return")
        first = self.first_sound(begin)
        self.stop_reading()
        self.nothing_left()
        return first - pressed

    def first_sound(self, begin):
        """When the first sound after a sample of the recording was heard."""
        desktop.wait_for(lambda: self.heard_since(begin), 120, what="sound")
        samples, ends, times = self.recorder.snapshot()
        return self.recorder.time_of(begin + sound.loud_span(samples[begin:])[0], ends, times)

    def peer_speaks(self, peer, pages):
        """Seconds from the command to the first sound."""
        begin = self.now()
        started = time.monotonic()
        command = subprocess.Popen(["sh", "-c", f"{peer} '{self.paths[pages]}' | exec espeak-ng"], env=self.desk.env,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
        first = self.first_sound(begin)
        os.killpg(command.pid, 9)
        command.wait()
        desktop.wait_for(lambda: not self.streams(), what="the end of the sound")
        time.sleep(0.3)
        return first - started

    def peer_writes(self, peer, pages):
        """Seconds from the command to the end of its text."""
        started = time.monotonic()
        subprocess.run([peer, self.paths[pages]], env=self.desk.env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                       check=True)
        return time.monotonic() - started

    def report(self):
        heads = "".join(f"{f'{pages} pages' if pages > 1 else '1 page':>30}" for pages in PAGES)
        print(f"Milliseconds from Enter, or from the command, to the first sound: median (extremes), n = {RUNS}")
        print(f"{'':<32}{heads}")
        for way, by_pages in self.figures.items():
            cells = "".join(f"{f'{statistics.median(ms):.0f} ({min(ms):.0f} to {max(ms):.0f})':>30}"
                            for ms in (by_pages[pages] for pages in PAGES))
            print(f"{way:<32}{cells}", flush=True)


def main():
    measured = FirstWord()
    try:
        measured.setUp()
        measured.measure()
    finally:
        measured.tearDown()
        measured.doCleanups()


if __name__ == "__main__":
    main()
