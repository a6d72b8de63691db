"""Prints what reading a document of 200 pages takes, beside other programs that give a document's text.

Usage: /usr/bin/python3 bench/readers.py [PAGES]

LibreOffice, pandoc and groff make the files. Each program reads each file five times; the medians are printed: the
milliseconds to the first block (Voxmate only) and to the end, and the most memory in megabytes. The reader's memory is
that of its process, LibreOffice's that of the largest of its processes. Programs that are not installed are left out."""

import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), ".."))
sys.path.insert(0, os.path.join(ROOT, "tests", "readers"))
import compare  # noqa: E402  pylint: disable=wrong-import-position
import makers  # noqa: E402  pylint: disable=wrong-import-position
import reference  # noqa: E402  pylint: disable=wrong-import-position

ROUNDS = 5
# A small process that starts the programs: a child's peak memory begins with its parent's.
LAUNCHER = """
import os, resource, sys, time
out = os.open(os.devnull, os.O_WRONLY)
start = time.monotonic()
child = os.posix_spawn(sys.argv[1], sys.argv[1:], os.environ,
                       file_actions=[(os.POSIX_SPAWN_DUP2, out, 1), (os.POSIX_SPAWN_DUP2, out, 2)])
_, status, usage = os.wait4(child, 0)
print((time.monotonic() - start) * 1000, usage.ru_maxrss, status)
"""

# Its output and its profile go to the folder of the files.
OFFICE = ["soffice", "-env:UserInstallation=file://FOLDER/profile", "--headless", "--convert-to", "txt:Text", "--outdir",
          "FOLDER/converted"]
OTHERS = {
    "txt": [["cat"]],
    "md": [["pandoc", "-f", "gfm", "-t", "plain"]],
    "html": [["pandoc", "-f", "html", "-t", "plain"]],
    "docx": [["pandoc", "-f", "docx", "-t", "plain"], OFFICE],
    "odt": [["odt2txt"], ["pandoc", "-f", "odt", "-t", "plain"], OFFICE],
    "epub": [["pandoc", "-f", "epub", "-t", "plain"]],
    "rtf": [["catdoc"], ["unrtf", "--text"], OFFICE],
    "pdf": [["pdftotext"]],
    "doc": [["catdoc"], ["antiword"], OFFICE],
}


def other(command, path):
    folder = os.path.dirname(path)
    command = [shutil.which(command[0]), *(part.replace("FOLDER", folder) for part in command[1:]), path] + (["-"] if command[0] == "pdftotext" else [])
    times, memory = [], 0
    for _ in range(ROUNDS):
        out = subprocess.run([sys.executable, "-I", "-S", "-c", LAUNCHER, *command], capture_output=True, check=True)
        elapsed, kilobytes, status = out.stdout.split()
        if status != b"0":
            return None
        times.append(float(elapsed))
        memory = max(memory, int(kilobytes))
    return statistics.median(times), memory / 1024


def own(path):
    firsts, ends, words, memory = [], [], 0, 0
    for _ in range(ROUNDS):
        out = subprocess.run([compare.READ, "--time", path], capture_output=True, check=False).stdout.split()
        firsts.append(float(out[0]))
        ends.append(float(out[1]))
        words = int(out[2])
        memory = max(memory, int(out[3]))
    return statistics.median(firsts), statistics.median(ends), words, memory / 1024


def main():
    pages = int(sys.argv[1]) if len(sys.argv) > 1 else 200
    folder = tempfile.mkdtemp(prefix="voxmate-readers-")
    try:
        maker = makers.Maker(folder, reference.blocks(pages))
        files = {"md": maker.markdown(), "html": maker.office_page()}
        for ending in ("docx", "odt", "epub", "rtf", "pdf", "doc"):
            files[ending] = maker.office(ending)
        files["txt"] = maker.path("reference.txt")
        with open(files["txt"], "w", encoding="utf-8") as file:
            file.write("\n\n".join(block.text for block in maker.blocks))
        time.sleep(1)
        for ending, path in files.items():
            size = os.path.getsize(path) / 1024
            if ending == "doc":
                print(f".doc, {size:.0f} kB: left to the word processor")
            else:
                first, end, words, memory = own(path)
                print(f".{ending}, {size:.0f} kB, {words} words: first block {first:.0f} ms, all {end:.0f} ms, "
                      f"{memory:.0f} MB", flush=True)
            for command in OTHERS[ending]:
                figures = other(command, path) if makers.has(command[0]) else None
                if figures:
                    print(f"    {command[0]}: {figures[0]:.0f} ms, {figures[1]:.0f} MB", flush=True)
    finally:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
