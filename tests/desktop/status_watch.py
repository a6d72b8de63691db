"""Prints each text that the first panel of the program's status line shows, a line of JSON each. A process of its own,
because the accessibility library must not be used by two threads of one. When it is asked to end it looks once more, so
that nothing shown before is left out."""

import json
import signal
import time

import pyatspi
from gi.repository import GLib

import desk as desktop


def main():
    panel = desktop.wait_for(lambda: next((w[2] for w in desktop.showing(pyatspi) if w[0] in desktop.STATUS), None),
                             what="the status line")
    asked = []
    signal.signal(signal.SIGTERM, lambda *_: asked.append(True))
    last, ends = None, False
    while not ends:
        ends = bool(asked)
        try:
            text = panel.name
        except (GLib.Error, LookupError):  # a busy program has not answered in time, or there is no program any more
            text = last
        if text != last:
            print(json.dumps(text), flush=True)
            last = text
        time.sleep(0.005)


if __name__ == "__main__":
    main()
