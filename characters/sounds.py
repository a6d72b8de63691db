#!/usr/bin/env python3
"""Makes the short sounds of the characters: characters/<name>/<sound>.wav.

    python3 characters/sounds.py [character ...]

Each sound is one function below. It returns samples of any level; `finished` takes away what lies below hearing, fades
both ends and brings the peak to -9 dBFS. Nothing is random from one run to the next, so the same files come out.
"""

import math
import os
import random
import struct
import sys
import wave

RATE = 22050
PEAK = 10 ** (-9 / 20)


# --- Building blocks. Times are seconds, pitches hertz; a sound is a list of samples. ---


def silence(seconds):
    return [0.0] * round(seconds * RATE)


def times(seconds):
    return (i / RATE for i in range(round(seconds * RATE)))


def mixed(seconds, *placed):
    """Lays sounds over one another: each of `placed` is (start, level, sound). What is still heard at the end of its
    sound or of the whole is faded within 15 ms."""
    out = silence(seconds)
    for start, level, sound in placed:
        first = round(start * RATE)
        length = min(len(sound), len(out) - first)
        for i in range(length):
            out[first + i] += level * sound[i] * min(1, (length - i) / (0.015 * RATE))
    return out


def tone(seconds, pitch, level):
    """A sine; `pitch` and `level` are functions of the time since its start."""
    out = []
    phase = 0.0
    for t in times(seconds):
        out.append(level(t) * math.sin(phase))
        phase += 2 * math.pi * pitch(t) / RATE
    return out


def rung(seconds, pitch, partials):
    """Something struck: `partials` are (ratio to the pitch, level, seconds to fade to a third)."""
    out = silence(seconds)
    for ratio, level, fade in partials:
        if pitch * ratio < 0.45 * RATE:
            part = tone(seconds, lambda t: pitch * ratio, lambda t: level * min(1, t / 0.0015) * math.exp(-t / fade))
            out = [a + b for a, b in zip(out, part)]
    return out


def noise(seconds, seed):
    chance = random.Random(seed)
    return [chance.uniform(-1, 1) for _ in times(seconds)]


def band(sound, pitch, width):
    """Lets through what lies about `pitch` (a number or a function of the time), `width` hertz wide."""
    out = []
    y1 = y2 = 0.0
    r = math.exp(-math.pi * width / RATE)
    for i, x in enumerate(sound):
        centre = pitch(i / RATE) if callable(pitch) else pitch
        y = (1 - r) * x + 2 * r * math.cos(2 * math.pi * centre / RATE) * y1 - r * r * y2
        y2, y1 = y1, y
        out.append(y)
    return out


def shaped(sound, level):
    return [level(i / RATE) * x for i, x in enumerate(sound)]


def hump(seconds, top=0.5):
    """A level that swells to 1 at `top` of the time and sinks again."""
    def level(t):
        part = t / seconds
        side = part / top if part < top else (1 - part) / (1 - top)
        return math.sin(0.5 * math.pi * max(0.0, side)) ** 2
    return level


def finished(sound):
    """No rumble, no click at either end, the peak at -9 dBFS."""
    out = []
    low = 0.0
    for x in sound:
        low += (x - low) * 2 * math.pi * 25 / RATE
        out.append(x - low)
    rise, fall = round(0.002 * RATE), round(0.03 * RATE)
    for i in range(rise):
        out[i] *= i / rise
    for i in range(fall):
        out[-1 - i] *= 0.5 - 0.5 * math.cos(math.pi * i / fall)
    loudest = max(abs(x) for x in out)
    return [x * PEAK / loudest for x in out]


# --- Nalu: water. A bubble is a short tone that rises while it fades; a drop is one with glass in it. ---


def bubble(pitch, seconds=0.09, rise=0.9):
    return tone(seconds, lambda t: pitch * (1 + rise * (t / seconds) ** 1.5),
                lambda t: min(1, t / 0.004) * math.exp(-3.2 * t / seconds))


def drop(pitch, fade=0.12):
    ring = rung(4 * fade, pitch, [(1, 1, fade), (2.01, 0.25, fade / 2), (3.9, 0.12, fade / 4)])
    return mixed(4 * fade, (0, 0.7, bubble(pitch * 0.55, 0.035, 0.8)), (0.012, 1, ring))


def splash(seconds, seed):
    return shaped(band(noise(seconds, seed), lambda t: 900 + 2600 * math.exp(-7 * t / seconds), 1500),
                  lambda t: min(1, t / 0.006) * math.exp(-4 * t / seconds))


def nalu_appear():
    run = [(0.05 * i, 0.35 + 0.04 * i, bubble(300 + 45 * i + 60 * (i % 3), 0.08)) for i in range(12)]
    return mixed(0.8, *run, (0.70, 0.9, bubble(900, 0.05, 1.6)), (0.70, 1.6, splash(0.1, 3)))


def nalu_vanish():
    run = [(0.055 * i, 0.9 - 0.05 * i, bubble(420 * 1.11 ** i, 0.09 - 0.004 * i)) for i in range(10)]
    return mixed(0.7, *run, (0.56, 0.5, bubble(1800, 0.04, 1.2)), (0.565, 0.6, splash(0.08, 5)))


def nalu_chime():
    return mixed(0.8, (0, 1, drop(1174.7, 0.11)), (0.16, 1, drop(1568, 0.15)))


def nalu_magic():
    scale = [587.3, 739.99, 880, 1174.7, 1480, 1760, 2349.3]
    run = [(0.05 * i, 0.8 - 0.05 * i, drop(pitch, 0.09)) for i, pitch in enumerate(scale)]
    foam = shaped(band(noise(0.7, 11), lambda t: 2000 + 4000 * t, 1200), hump(0.7, 0.45))
    return mixed(0.8, *run, (0.02, 0.5, foam))


def nalu_cheer():
    tune = [(0.05, 587.3), (0.15, 739.99), (0.25, 880), (0.38, 1174.7)]
    notes = [(start, 0.9, drop(pitch, 0.1)) for start, pitch in tune]
    return mixed(0.8, (0, 1.6, splash(0.3, 21)), *notes, (0.40, 1.2, splash(0.35, 22)),
                 (0.46, 0.4, bubble(1300, 0.05)), (0.53, 0.35, bubble(1650, 0.05)), (0.6, 0.3, bubble(1500, 0.05)))


def nalu_sigh():
    voice = tone(0.55, lambda t: 520 * math.exp(-1.1 * t), hump(0.55, 0.25))
    breath = shaped(band(noise(0.6, 31), lambda t: 900 - 700 * t, 500), hump(0.6, 0.3))
    return mixed(0.75, (0, 0.5, voice), (0, 0.8, breath), (0.5, 0.5, bubble(260, 0.1, 0.5)),
                 (0.6, 0.3, bubble(220, 0.1, 0.4)))


def nalu_tick():
    return mixed(0.16, (0, 1, bubble(760, 0.05, 1.3)), (0.035, 0.5, bubble(1350, 0.05, 0.6)))


def nalu_horn():
    """A conch: two long low breaths into a shell."""
    def breath(seconds):
        out = silence(seconds)
        for k in range(1, 9):
            level = lambda t: (min(1, t / 0.05) * min(1, (seconds - t) / 0.08)
                               * math.exp(-0.55 * k * (1.35 - min(1, t / 0.12))) * (1 + 0.06 * math.sin(34 * t)))
            part = tone(seconds, lambda t: k * (233.1 - 26 * math.exp(-t / 0.03)), level)
            out = [a + b for a, b in zip(out, part)]
        return mixed(seconds, (0, 1, out), (0, 0.25, shaped(band(noise(seconds, 41), 700, 500), hump(seconds, 0.3))))
    return mixed(0.8, (0, 0.9, breath(0.24)), (0.3, 1, breath(0.46)))


# --- Tock: clockwork. Clicks of a ratchet and very small bells. ---


def click(pitch=2600, seed=1):
    bite = shaped(band(noise(0.03, seed), pitch, 1400), lambda t: math.exp(-t / 0.004))
    return mixed(0.05, (0, 2.4, bite), (0, 0.5, rung(0.05, pitch * 0.6, [(1, 1, 0.008), (2.3, 0.5, 0.005)])))


def bell(pitch, fade=0.22):
    return rung(min(0.8, 4 * fade), pitch, [(0.5, 0.12, fade), (1, 1, fade), (2.0, 0.35, fade * 0.6),
                                            (2.76, 0.3, fade * 0.4), (5.4, 0.16, fade * 0.2)])


def tock_appear():
    clicks = [(0.5 * (i / 11) ** 0.75, 0.5 + 0.03 * i, click(2000 + 110 * i, i)) for i in range(12)]
    return mixed(0.8, *clicks, (0.53, 0.9, bell(1975.5, 0.1)))


def tock_vanish():
    clicks = [(0.06 + 0.56 * (i / 9) ** 1.5, 0.8 - 0.04 * i, click(2700 - 130 * i, 20 + i)) for i in range(10)]
    return mixed(0.8, (0, 0.6, bell(1318.5, 0.1)), *clicks, (0.7, 0.8, click(900, 40)))


def tock_chime():
    return mixed(0.8, (0, 0.5, click(3000, 50)), (0, 1, bell(1318.5, 0.16)), (0.2, 0.5, click(3000, 51)),
                 (0.2, 1, bell(1046.5, 0.2)))


def tock_magic():
    scale = [1046.5, 1318.5, 1568, 1975.5, 2093, 2637, 3136]
    run = [(0.055 * i, 0.9 - 0.05 * i, bell(pitch, 0.12)) for i, pitch in enumerate(scale)]
    pins = [(0.055 * i, 0.3, click(3800, 60 + i)) for i in range(7)]
    return mixed(0.8, *run, *pins)


def tock_cheer():
    tune = [(0.0, 1046.5), (0.1, 1046.5), (0.2, 1318.5), (0.3, 1568), (0.44, 2093)]
    notes = [(start, 0.9, bell(pitch, 0.13)) for start, pitch in tune]
    rattle = [(0.46 + 0.035 * i, 0.35, click(2400 + 300 * (i % 2), 70 + i)) for i in range(7)]
    return mixed(0.8, *notes, *rattle)


def tock_sigh():
    """The spring runs down: the clicks grow rare and low, and the wheel hums lower."""
    clicks = [(0.62 * (i / 11) ** 1.7, 0.9 - 0.03 * i, click(2000 - 120 * i, 80 + i)) for i in range(12)]
    pitch = lambda t: 330 * math.exp(-1.6 * t)
    hum = [math.tanh(3 * x) for x in tone(0.7, pitch, lambda t: 1.0)]
    return mixed(0.75, *clicks, (0, 0.5, shaped(band(hum, 500, 500), hump(0.7, 0.15))))


def tock_tick():
    return mixed(0.3, (0, 1, click(2900, 90)), (0.09, 0.8, click(2300, 91)), (0.18, 1, click(2900, 92)))


# --- Gamp: wood, cloth and a plucked low string. ---


def pluck(pitch, seconds=0.7, seed=1, bright=0.5):
    """A string: noise that goes round in a loop as long as a period and is smoothed each time."""
    period = RATE / pitch - 0.5
    loop = noise(math.ceil(period) / RATE, seed)
    for _ in range(3):
        loop = [(1 - 0.5 * bright) * loop[i] + 0.5 * bright * loop[i - 1] for i in range(len(loop))]
    mean = sum(loop) / len(loop)
    loop = [x - mean for x in loop]
    whole = len(loop)
    part = whole - period  # the loop is tuned by reading between two of its samples
    out = []
    for i in range(round(seconds * RATE)):
        a, b, c = loop[i % whole], loop[(i + 1) % whole], loop[(i + 2) % whole]
        here = (1 - part) * a + part * b
        there = (1 - part) * b + part * c
        out.append(here)
        loop[i % whole] = 0.996 * 0.5 * (here + there)
    box = [band(out, f, w) for f, w in ((110, 60), (220, 80), (400, 150), (800, 300))]
    return [0.5 * x + sum(2.0 * b[i] for b in box) for i, x in enumerate(out)]


def knock(pitch=420, seed=1):
    wood = rung(0.14, pitch, [(1, 1, 0.022), (2.14, 0.6, 0.014), (3.7, 0.35, 0.008), (0.5, 0.4, 0.03)])
    return mixed(0.14, (0, 1, wood), (0, 1.2, shaped(band(noise(0.02, seed), 1500, 1500), lambda t: math.exp(-t / 0.004))))


def cloth(seconds, seed, low=350, high=1300, beats=17.0, top=0.4):
    """Cloth in the wind: noise that swells, with the beat of its folds."""
    swell = hump(seconds, top)
    beat = lambda t: 0.55 + 0.45 * math.sin(2 * math.pi * beats * t * (1 - 0.3 * t / seconds))
    sweep = lambda t: low + (high - low) * swell(t)
    return shaped(band(noise(seconds, seed), sweep, 700), lambda t: swell(t) * beat(t))


def gamp_appear():
    return mixed(0.8, (0, 1.6, cloth(0.45, 101, beats=14, top=0.75)), (0.36, 0.7, knock(300, 102)),
                 (0.38, 1, pluck(146.83, 0.42, 103)))


def gamp_vanish():
    return mixed(0.7, (0, 0.8, pluck(110, 0.3, 111)), (0.08, 1.6, cloth(0.45, 112, 250, 1000, 22, 0.25)),
                 (0.5, 0.9, knock(360, 113)))


def gamp_chime():
    return mixed(0.8, (0, 0.8, knock(520, 121)), (0.0, 0.9, pluck(196, 0.5, 122)), (0.2, 0.8, knock(600, 123)),
                 (0.2, 0.9, pluck(293.66, 0.6, 124)))


def gamp_magic():
    scale = [146.83, 185.0, 220, 293.66, 369.99, 440]
    run = [(0.07 * i, 0.9, pluck(pitch, 0.6, 131 + i, 0.4)) for i, pitch in enumerate(scale)]
    return mixed(0.8, *run, (0.1, 1.1, cloth(0.65, 140, 600, 2400, 11, 0.5)))


def gamp_cheer():
    tune = [(0.0, 146.83), (0.11, 185.0), (0.22, 220), (0.38, 293.66), (0.38, 146.83)]
    notes = [(start, 0.9, pluck(pitch, 0.45, 150 + i)) for i, (start, pitch) in enumerate(tune)]
    flaps = [(0.4 + 0.11 * i, 1.2, cloth(0.12, 160 + i, 300, 1200, 3, 0.3)) for i in range(3)]
    return mixed(0.8, *notes, *flaps, (0, 0.5, knock(450, 170)), (0.22, 0.5, knock(450, 171)))


def gamp_sigh():
    """A low string bowed downwards by a minor third, and cloth that sinks."""
    pitch = lambda t: 146.83 * 2 ** (-3 / 12 * min(1, max(0, (t - 0.18) / 0.3))) * (1 + 0.006 * math.sin(33 * t))
    bowed = silence(0.75)
    for k in range(1, 12):
        part = tone(0.75, lambda t: k * pitch(t), lambda t: hump(0.75, 0.3)(t) / k ** 1.25)
        bowed = [a + b for a, b in zip(bowed, part)]
    return mixed(0.78, (0, 1, bowed), (0.2, 0.5, cloth(0.5, 181, 250, 500, 7, 0.3)))


def gamp_tick():
    return mixed(0.28, (0, 1, knock(440, 191)), (0.13, 0.9, knock(470, 192)))


SOUNDS = {
    "nalu": {"appear": nalu_appear, "vanish": nalu_vanish, "chime": nalu_chime, "magic": nalu_magic,
             "cheer": nalu_cheer, "sigh": nalu_sigh, "tick": nalu_tick, "horn": nalu_horn},
    "tock": {"appear": tock_appear, "vanish": tock_vanish, "chime": tock_chime, "magic": tock_magic,
             "cheer": tock_cheer, "sigh": tock_sigh, "tick": tock_tick},
    "gamp": {"appear": gamp_appear, "vanish": gamp_vanish, "chime": gamp_chime, "magic": gamp_magic,
             "cheer": gamp_cheer, "sigh": gamp_sigh, "tick": gamp_tick},
}


def main(names):
    here = os.path.dirname(os.path.abspath(__file__))
    for name in names or SOUNDS:
        for sound, make in SOUNDS[name].items():
            samples = finished(make())
            with wave.open(os.path.join(here, name, sound + ".wav"), "wb") as out:
                out.setnchannels(1)
                out.setsampwidth(2)
                out.setframerate(RATE)
                out.writeframes(struct.pack("<%dh" % len(samples), *(round(32767 * x) for x in samples)))


if __name__ == "__main__":
    main(sys.argv[1:])
