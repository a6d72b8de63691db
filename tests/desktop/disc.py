"""A character whose looks show nothing: one disc that never moves."""

import os
import sys

from program import ROOT

sys.path.insert(0, os.path.join(ROOT, "tests", "files"))
from acs_maker import BLANK, animation, frame, image, make  # noqa: E402  pylint: disable=wrong-import-position

DISC = (200, 90, 40)
SIDE = 120
RADIUS = 50


def write_disc(folder, *names, data=None):
    """Makes a folder in which the character's file, or `data`, has these names (Disc)."""
    os.makedirs(folder, exist_ok=True)
    for name in names or ("Disc",):
        with open(os.path.join(folder, name + ".acs"), "wb") as file:
            file.write(data or disc())


def disc(**more):
    """The character's file; `more` adds fields to it."""
    rows = [bytes((x + 0.5 - SIDE / 2) ** 2 + (y + 0.5 - SIDE / 2) ** 2 < RADIUS ** 2 for x in range(SIDE)) for y in range(SIDE)]
    return make({**BLANK, "width": SIDE, "height": SIDE, "names": [(0x0409, "Disc", "", "")],
                 "palette": [(1, 2, 3), DISC], "images": [image(SIDE, rows)],
                 "animations": [animation("RestPose", [frame((0, 0, 0))])], **more}).data
