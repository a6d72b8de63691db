#!/usr/bin/env python3
"""Draws the moving logo of the about box: the speech bubble blinks, says something and smiles again. about.gif is for
light themes, about-dark.gif for dark ones.

Usage: about.py OUTPUT.gif [dark]     (needs Pillow)
"""

import math
import sys

from PIL import Image, ImageDraw

SIZE = 288  # pixels: twice as many as the about box shows, for fine screens
OVER = 4  # drawn so much larger, for smooth edges
COLOURS = 95  # and one that shows what was there before
SCALE = 4.4  # of the bubble's own units, in which it is 48 wide and high, as in voxmate.svg
LEFT, TOP = 10, 40

LIGHT, DARK = ("#f6fafd", "#d3e6f3"), ("#3b4652", "#222b33")  # of the card: top, bottom
BUBBLE = ("#4fb3f6", "#5a5fe0")  # upper left, lower right
WHITE = "#ffffff"
SOUND = (74, 140, 238)
STROKE = 3.2


def cubic(start, one, two, end, steps=24):
    for i in range(1, steps + 1):
        t = i / steps
        u = 1 - t
        yield tuple(u ** 3 * a + 3 * u * u * t * b + 3 * u * t * t * c + t ** 3 * d
                    for a, b, c, d in zip(start, one, two, end))


def outline():
    """The bubble's edge, the tail at its lower left."""
    points = [(24, 3)]

    def to(one, two, end):
        points.extend(cubic(points[-1], one, two, end))

    to((12, 3), (3, 10.8), (3, 21))
    to((3, 26.6), (5.8, 31.4), (10.2, 34.7))
    points.append((8.5, 43.2))
    to((8.3, 44.3), (9.4, 45.1), (10.4, 44.6))
    points.append((20.2, 38.7))
    to((21.4, 38.9), (22.7, 39), (24, 39))
    to((36, 39), (45, 31.2), (45, 21))
    to((45, 10.8), (36, 3), (24, 3))
    return points


def smile(depth):
    """A curve between the corners of the mouth, its middle `depth` below them."""
    left, middle, right = (14.5, 26), (24, 26 + depth), (33.5, 26)
    return ([left] + list(cubic(left, (16.8, 26 + depth * 0.65), (20.1, 26 + depth), middle)) +
            list(cubic(middle, (27.9, 26 + depth), (31.2, 26 + depth * 0.65), right)))


def on_canvas(points):
    return [((LEFT + x * SCALE) * OVER, (TOP + y * SCALE) * OVER) for x, y in points]


def rgb(colour):
    return tuple(int(colour[i:i + 2], 16) for i in (1, 3, 5))


def gradient(size, first, last, diagonal):
    """Colours from the top, or the upper left, to the bottom, or the lower right."""
    picture = Image.new("RGB", size)
    pixels = picture.load()
    for y in range(size[1]):
        for x in range(size[0]):
            share = (x + y) / (size[0] + size[1]) if diagonal else y / size[1]
            pixels[x, y] = tuple(round(a + (b - a) * share) for a, b in zip(rgb(first), rgb(last)))
    return picture


class Artist:
    def __init__(self, card):
        big = (SIZE * OVER, SIZE * OVER)
        self.ground = gradient((SIZE, SIZE), *card, diagonal=False).resize(big, Image.BILINEAR)
        mask = Image.new("L", big)
        ImageDraw.Draw(mask).polygon(on_canvas(outline()), fill=255)
        self.ground.paste(gradient((SIZE, SIZE), *BUBBLE, diagonal=True).resize(big, Image.BILINEAR), mask=mask)

    def frame(self, eyes=1.0, mouth=0.0, waves=(0.0, 0.0, 0.0)):
        """`eyes` and `mouth` from shut, 0, to open, 1; `waves`: how clear each sound wave is to be seen."""
        picture = self.ground.copy()
        draw = ImageDraw.Draw(picture)
        for x in (17, 31):
            height = max(4 * eyes, 0.8)
            draw.ellipse(on_canvas([(x - 3, 17.5 - height), (x + 3, 17.5 + height)]), fill=WHITE)
        upper, lower = smile(5.5 - 2.5 * mouth), smile(5.5 + 4.5 * mouth)
        if mouth > 0:
            draw.polygon(on_canvas(upper + lower[::-1]), fill=WHITE)
        for curve in (upper, lower):
            self.stroke(draw, curve, WHITE)
        for number, clear in enumerate(waves):
            if clear > 0:
                self.wave(picture, 4.5 * (number + 1), clear)
        return picture.resize((SIZE, SIZE), Image.LANCZOS)

    def stroke(self, draw, curve, colour, width=STROKE):
        radius = width / 2 * SCALE * OVER
        for x, y in on_canvas(curve):
            draw.ellipse((x - radius, y - radius, x + radius, y + radius), fill=colour)

    def wave(self, picture, distance, clear):
        layer = Image.new("L", picture.size)
        radius = 19 + distance
        arc = [(24 + radius * math.cos(a / 100), 21 + 0.9 * radius * math.sin(a / 100)) for a in range(-42, 43, 2)]
        self.stroke(ImageDraw.Draw(layer), arc, round(255 * clear), width=2.2)
        picture.paste(Image.new("RGB", picture.size, SOUND), mask=layer)


def story():
    """Pairs of a frame's parts and how long it stays, in milliseconds."""
    blink = [({"eyes": eyes}, 60) for eyes in (0.5, 0.1, 0.5)]
    yield {}, 1400
    yield from blink
    yield {}, 900
    # Two short sentences; the waves run outwards as long as the mouth is at work.
    for step in range(22):
        said = step if step < 10 else step - 2
        mouth = 0.0 if step in (10, 11, 21) else 0.25 + 0.75 * abs(math.sin(said * 1.15))
        waves = tuple(max(0.0, math.sin((step - 2 * number) * math.pi / 6)) * 0.8 * min(1, (22 - step) / 4)
                      if step >= 2 * number else 0.0 for number in range(3))
        yield {"mouth": mouth, "waves": waves}, 90
    yield {}, 1000
    yield from blink


def changes(before, after):
    pixels = bytes(COLOURS if new == old else new for old, new in zip(before.tobytes(), after.tobytes()))
    result = Image.frombytes("P", after.size, pixels)
    result.putpalette(before.getpalette())
    return result


def main():
    artist = Artist(DARK if sys.argv[2:] == ["dark"] else LIGHT)
    frames = [(artist.frame(**parts), time) for parts, time in story()]
    # One palette for all, taken from frames that show everything there is.
    sheet = Image.new("RGB", (SIZE * 3, SIZE))
    for place, number in enumerate((0, 12, 16)):
        sheet.paste(frames[number][0], (SIZE * place, 0))
    palette = sheet.quantize(COLOURS, method=Image.MEDIANCUT, dither=Image.Dither.NONE)
    flat = [picture.quantize(palette=palette, dither=Image.Dither.NONE) for picture, _ in frames]
    # Each frame has only what is new in it, so that the file stays small.
    parts = [flat[0]] + [changes(before, after) for before, after in zip(flat, flat[1:])]
    parts[0].save(sys.argv[1], save_all=True, append_images=parts[1:], duration=[time for _, time in frames], loop=0,
                  optimize=False, disposal=1, transparency=COLOURS, palette=bytes(flat[0].getpalette()))


if __name__ == "__main__":
    main()
