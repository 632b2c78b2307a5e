# SPDX-License-Identifier: GPL-3.0-or-later
"""Test signals, WAV files and measurements, with nothing beside Python's own library. Samples are floats, one list per
channel."""
import array
import math
import random
import struct

RATE = 48000


def drums(seconds, seed):
    """Struck, dying tones with a little hiss: dynamics have something to do, and no two channels are alike."""
    rng = random.Random(seed)
    samples = [0.0] * int(seconds * RATE)
    for start in range(0, len(samples), RATE // 4):
        frequency, peak = rng.uniform(60, 900), rng.uniform(0.1, 0.6)
        for i in range(start, len(samples)):
            t = (i - start) / RATE
            if t > 0.5:
                break
            samples[i] += peak * math.exp(-12 * t) * (math.sin(2 * math.pi * frequency * t) + rng.uniform(-0.2, 0.2))
    return [0.7 * s for s in samples]


def tone(seconds, frequency, peak):
    return [peak * math.sin(2 * math.pi * frequency * i / RATE) for i in range(int(seconds * RATE))]


def write(path, channels):
    """32-bit floating point, so that nothing is rounded on the way."""
    interleaved = array.array("f", (s for frame in zip(*channels) for s in frame))
    data, width = interleaved.tobytes(), 4 * len(channels)
    with open(path, "wb") as file:
        file.write(b"RIFF" + struct.pack("<I", 36 + len(data)) + b"WAVEfmt ")
        file.write(struct.pack("<IHHIIHH", 16, 3, len(channels), RATE, RATE * width, width, 32))
        file.write(b"data" + struct.pack("<I", len(data)) + data)


def read(path):
    """The channels of a WAV file of 32-bit floats or of 16, 24 or 32-bit integers."""
    with open(path, "rb") as file:
        content = file.read()
    position, channels, kind, bits = 12, 0, 0, 0
    while position + 8 <= len(content):
        name, size = content[position:position + 4], struct.unpack_from("<I", content, position + 4)[0]
        body = position + 8
        if name == b"fmt ":
            kind, channels, rate, _, _, bits = struct.unpack_from("<HHIIHH", content, body)
            if kind == 0xFFFE:  # the extensible form: the true kind stands after the channel mask
                kind = struct.unpack_from("<H", content, body + 24)[0]
            if rate != RATE:
                raise ValueError(f"{path}: {rate} Hz instead of {RATE}")
        elif name == b"data":
            data = content[body:body + size]
            if kind == 3 and bits == 32:
                samples = array.array("f", data[:len(data) // 4 * 4])
            else:
                step, scale = bits // 8, 2.0 ** (1 - bits)
                samples = [int.from_bytes(data[i:i + step], "little", signed=True) * scale
                           for i in range(0, len(data) // step * step, step)]
            return [list(samples[c::channels]) for c in range(channels)]
        position = body + size + size % 2
    raise ValueError(f"{path}: no samples")


def decibels(value):
    return 20 * math.log10(value) if value > 0 else -math.inf


def rms(samples):
    return decibels(math.sqrt(sum(s * s for s in samples) / len(samples))) if samples else -math.inf


def difference(left, right):
    """The largest difference of two equally long channels, in dB of full scale."""
    if len(left) != len(right):
        raise ValueError(f"{len(left)} samples against {len(right)}")
    return decibels(max((abs(a - b) for a, b in zip(left, right)), default=0.0))
