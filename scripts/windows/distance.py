# SPDX-License-Identifier: GPL-3.0-or-later
"""How far two recordings of 32-bit floats lie apart at most: distance.py ONE.wav OTHER.wav"""
import array
import sys


def samples(path):
    with open(path, "rb") as file:
        content = file.read()
    place = content.index(b"data")
    return array.array("f", content[place + 8:place + 8 + int.from_bytes(content[place + 4:place + 8], "little")])


one, other = map(samples, sys.argv[1:])
print(max(abs(a - b) for a, b in zip(one, other)) if len(one) == len(other) else "inf")
