"""Runs the benchmarks of the running program on a private desktop and prints their figures.

Usage: /usr/bin/python3 bench/run.py [BUILD_FOLDER]
"""

import glob
import os
import statistics
import subprocess
import sys

ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), ".."))
sys.path.insert(0, os.path.join(ROOT, "tests", "desktop"))
import desk as desktop  # noqa: E402  pylint: disable=wrong-import-position

QUIET = {"GreetingEnabled": 0, "SpeakTimeInterval": 0}


def main():
    build = os.path.abspath(sys.argv[1] if len(sys.argv) > 1 else os.path.join(ROOT, "build", "release"))
    desk = desktop.Desk(build)
    # Switched off, because a screen reader makes any program larger and busier, and none runs here.
    desk.env.pop("QT_LINUX_ACCESSIBILITY_ALWAYS_ON")

    def tool(name, *arguments):
        result = subprocess.run([os.path.join(build, name), *arguments], env=desk.env, stdout=subprocess.PIPE,
                                stderr=subprocess.DEVNULL, check=True)
        return result.stdout.decode()

    try:
        program, empty = os.path.join(build, "voxmate"), os.path.join(build, "empty_window")
        desk.install_defaults(**QUIET)
        print(tool("process_cost", "start", "15", empty), end="", flush=True)
        print(tool("process_cost", "start", "15", program), end="", flush=True)
        times = sorted(float(tool("program_cost", "startup")) for _ in range(15))
        print(f"RunStartUp: median {statistics.median(times):.1f} ms (quartiles {times[3]:.1f} to {times[11]:.1f}, "
              f"extremes {times[0]:.1f} to {times[-1]:.1f}, n = 15)", flush=True)
        print(tool("program_cost", "pitch"), end="", flush=True)
        print(tool("program_cost", "speech"), end="", flush=True)
        cast = sorted(glob.glob(os.path.join(build, "share", "voxmate", "msagent", "chars", "*.acs")))
        print(tool("character_file", *cast), end="", flush=True)
        print(tool("frame_timing", cast[0]), end="", flush=True)
        print(tool("character_memory"), end="", flush=True)
        print(tool("text_file"), end="", flush=True)
        print(tool("word_parts"), end="", flush=True)
        desk.install_defaults(**QUIET)
        print(tool("process_cost", "idle", "5", "30", empty), end="", flush=True)
        print(tool("process_cost", "idle", "10", "30", program), end="", flush=True)
        desk.install_defaults(**QUIET, ShowCharacterAtStart=0)
        print("With the character hidden: " + tool("process_cost", "idle", "10", "30", program), end="", flush=True)
    finally:
        desk.close()


if __name__ == "__main__":
    main()
