"""Sound as numbers: how loud it is, how long, and how much like another."""

import wave

import numpy

RATE = 44100  # samples per second of the recordings, and wherever no other rate is told
WINDOW = 0.005  # seconds; a sound or a silence is told in steps of so many


def read_wave(path):
    """The samples of a mono wave file, as floats from -1 to 1, and their number per second."""
    with wave.open(path) as file:
        samples = numpy.frombuffer(file.readframes(file.getnframes()), dtype="<i2").astype(float) / 32768
        return samples, file.getframerate()


def resampled(samples, made, rate=RATE):
    """Samples of `made` a second as samples of `rate` a second."""
    there = numpy.arange(int(len(samples) * rate / made)) * made / rate
    return numpy.interp(there, numpy.arange(len(samples)), samples)


def loud_windows(samples, threshold=0.01, rate=RATE):
    """True for each window whose peak is above the threshold (0.01: -40 dB of full scale)."""
    size = int(rate * WINDOW)
    count = len(samples) // size
    return numpy.abs(samples[:count * size]).reshape(count, size).max(axis=1) > threshold


def loud_seconds(samples, rate=RATE):
    """Seconds of sound, without the silence."""
    return loud_windows(samples, rate=rate).sum() * WINDOW


def loud_span(samples, threshold=0.01):
    """First and last loud sample, or None in silence."""
    loud = numpy.flatnonzero(loud_windows(samples, threshold))
    if len(loud) == 0:
        return None
    size = int(RATE * WINDOW)
    return loud[0] * size, (loud[-1] + 1) * size


def spectrum(samples):
    """The loudness of a sound in 24 bands of hearing (100 to 7000 Hz), 100 times a second: one row for each time,
    logarithmic."""
    step = RATE // 100
    count = max(0, len(samples) // step - 2)
    windows = numpy.stack([samples[i * step:(i + 3) * step] for i in range(count)]) * numpy.hanning(3 * step)
    levels = numpy.abs(numpy.fft.rfft(windows, 2048))
    frequencies = numpy.fft.rfftfreq(2048, 1 / RATE)
    edges = 700 * (10 ** (numpy.linspace(*numpy.log10(1 + numpy.array([100, 7000]) / 700), 25)) - 1)
    bands = [levels[:, (frequencies >= low) & (frequencies < high)].mean(axis=1) for low, high in zip(edges, edges[1:])]
    return numpy.log(numpy.stack(bands, axis=1) + 0.05)


def best_match(rows, part):
    """How similar the best-matching stretch of `rows` is to `part`, which has as many columns, from 0 to 1: their
    correlation, with each column's mean subtracted."""
    part = part - part.mean(axis=0)
    best = 0.0
    for at in range(len(rows) - len(part) + 1):
        there = rows[at:at + len(part)]
        there = there - there.mean(axis=0)
        best = max(best, float((there * part).sum() / numpy.sqrt((there ** 2).sum() * (part ** 2).sum() + 1e-9)))
    return best


def likeness(recording, rendering):
    """How similar the heard text is to its rendering, from 0 to 1. Every part of 0.6 seconds is correlated with the
    best place in the recording, and the least of these values counts. Spectra are compared, because a sentence's wave
    differs when others have been said before it. Another word, number or name gives 0.65 and less, the same ones 0.88
    and more."""
    if len(recording) < max(len(rendering), RATE // 10):
        return 0.0
    heard, expected = spectrum(recording), spectrum(rendering)
    least, last = 1.0, max(0, len(expected) - 60)
    for start in [*range(0, last, 60), last]:
        least = min(least, best_match(heard, expected[start:start + 60]))
    return least
