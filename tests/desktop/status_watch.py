"""Prints each text that the first panel of the program's status line shows, as one line of JSON each. This is a process
of its own, because only one thread of a process may use the accessibility library. When asked to end it looks once
more, so that nothing shown before is missed."""

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
        except (GLib.Error, LookupError):  # the program is too busy to answer in time, or has ended
            text = last
        if text != last:
            print(json.dumps(text), flush=True)
            last = text
        time.sleep(0.005)


if __name__ == "__main__":
    main()
