"""Packs pixels and regions of a character file, from tokens or by searching for copies. Uses only Python's standard
library.

The first byte is 0, then follow bits, lowest first, then six bytes 0xFF. These may be the end mark themselves, or
follow one written before them: the file format leaves that open, so a reader must accept both.
"""

# Distances of a copy: number of bits of the value, and the distance that the value 0 means.
WIDTHS = ((6, 1), (9, 65), (12, 577), (20, 4673))
END_VALUE = 0xFFFFF
MAX_DISTANCE = WIDTHS[3][1] + END_VALUE - 1
LENGTH_BITS = 11


def max_length(distance):
    """The longest copy from `distance` bytes back."""
    return (2 if distance < WIDTHS[3][1] else 3) + 2 * ((1 << LENGTH_BITS) - 1)


class BitWriter:
    """Writes bits, lowest first."""

    def __init__(self):
        self.bytes = bytearray(b"\0")
        self._pending = 0
        self._count = 0

    def put(self, value, bits):
        self._pending |= value << self._count
        self._count += bits
        while self._count >= 8:
            self.bytes.append(self._pending & 0xFF)
            self._pending >>= 8
            self._count -= 8

    def ones(self, count):
        self.put((1 << count) - 1, count)

    def finish(self, filler):
        """Pads the last byte with the bit `filler` and ends the data."""
        if self._count:
            self.put(0xFF if filler else 0, 8 - self._count)
            self._pending = 0
        return bytes(self.bytes) + b"\xFF" * 6


def put_copy(bits, distance, length):
    """One copy of `length` bytes from `distance` bytes back."""
    kind = sum(distance >= base for _, base in WIDTHS) - 1
    width, base = WIDTHS[kind]
    if not 1 <= distance <= MAX_DISTANCE or not (2 if kind < 3 else 3) <= length <= max_length(distance):
        raise ValueError(f"no copy of {length} bytes from {distance} back")
    bits.ones(1 + kind)
    if kind < 3:
        bits.put(0, 1)
    bits.put(distance - base, width)
    extra = length - (2 if kind < 3 else 3)
    steps = (extra + 1).bit_length() - 1
    bits.ones(steps)
    bits.put(0, 1)
    bits.put(extra - ((1 << steps) - 1), steps)


def pack_tokens(tokens, end_mark=True, filler=1):
    """Packs bytes objects (literals) and (distance, length) copies. Without `end_mark` the closing bytes serve as end
    mark, so the rest of the last byte must be ones."""
    bits = BitWriter()
    for token in tokens:
        if isinstance(token, tuple):
            put_copy(bits, *token)
        else:
            for byte in token:
                bits.put(byte << 1, 9)
    if end_mark:
        bits.ones(4)
        bits.put(END_VALUE, 20)
    return bits.finish(filler)


def expand(tokens):
    """The bytes that the tokens stand for."""
    out = bytearray()
    for token in tokens:
        if not isinstance(token, tuple):
            out += token
            continue
        distance, length = token
        if not 1 <= distance <= len(out):
            raise ValueError("a copy from before the beginning")
        while length:
            run = bytes(out[len(out) - distance:][:length])
            out += run
            length -= len(run)
    return bytes(out)


def find_tokens(data):
    """Greedy tokens for `data`: the longest copy of three bytes or more, else a copy of two from nearby, else a
    literal."""
    tokens, triples, pairs, at = [], {}, {}, 0
    while at < len(data):
        best, distance = 0, 0
        for earlier in triples.get(data[at:at + 3], ())[-8:]:
            back = at - earlier
            if back > MAX_DISTANCE:
                continue
            length, limit = 3, min(max_length(back), len(data) - at)
            length = min(length, limit)
            while length < limit and data[earlier + length] == data[at + length]:
                length += 1
            if length >= 3 and length >= best:
                best, distance = length, back
        if best < 3 and at + 2 <= len(data) and at - pairs.get(data[at:at + 2], -1000) <= 64:
            best, distance = 2, at - pairs[data[at:at + 2]]
        step = best or 1
        tokens.append((distance, best) if best else data[at:at + 1])
        for place in range(at, at + step):
            triples.setdefault(data[place:place + 3], []).append(place)
            pairs[data[place:place + 2]] = place
        at += step
    return tokens


def pack(data):
    """Packed `data`."""
    return pack_tokens(find_tokens(data))
