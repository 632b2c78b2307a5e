#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Recomputes the component tables without C++, libm or a library's generator, and prints one 64-bit FNV-1a hash of the
bits of each table's values. ComponentTableTest.cpp holds what this prints:

    python3 tests/dsp/componentTables.py
"""
import struct
from decimal import Decimal, getcontext

getcontext().prec = 60

EQUALISER = (
    [(180000.0, 0.01), (5100.0, 0.01), (50000.0, 0.01), (10.0, 0.05)]
    + [(c, 0.05) for c in (2.2e-8, 3.3e-8, 4.7e-8, 6.8e-8, 1.1e-7, 2e-5, 6.8e-7, 1.8e-7, 4.7e-8, 2.2e-8)]
    + [(22000.0, 0.01), (470.0, 0.01), (25000.0, 0.01), (1.0, 0.05)]
    + [(0.68, 0.05)] * 3 + [(0.22, 0.05)] * 5
    + [(c, 0.05) for c in (7.8e-8, 3.6e-8, 1.8e-8, 3.2e-8, 1.2e-8, 1e-8, 4.7e-9, 3.3e-9)]
    + [(c, 0.05) for c in (1e-8, 8.2e-9, 6.8e-9, 4.3e-9, 2.2e-9, 1e-12)]
    + [(c, 0.05) for c in (5.6e-10, 1e-9, 1.5e-9, 2.2e-9, 3.3e-9)]
    + [(r, 0.01) for r in (56000.0, 33000.0, 15000.0, 8200.0, 3300.0)])
SATURATION = [(6.0, 0.03), (0.5, 0.03), (35000.0, 0.03), (0.55, 0.03), (1.0, 0.01)]


def bits(x):
    return struct.unpack("<Q", struct.pack("<d", x))[0]


def mersenne_twister(seed):
    state = [seed]
    for i in range(1, 624):
        state.append((1812433253 * (state[-1] ^ (state[-1] >> 30)) + i) & 0xFFFFFFFF)
    while True:
        for i in range(624):
            y = (state[i] & 0x80000000) | (state[(i + 1) % 624] & 0x7FFFFFFF)
            state[i] = state[(i + 397) % 624] ^ (y >> 1) ^ (0x9908B0DF if y & 1 else 0)
        for y in state:
            y ^= y >> 11
            y ^= (y << 7) & 0x9D2C5680
            y ^= (y << 15) & 0xEFC60000
            yield y ^ (y >> 18)


def normals(seed):
    words = mersenne_twister(seed)

    def uniform():
        low = next(words)
        return (low + next(words) * 2.0**32) / 2.0**64

    while True:
        u = 2.0 * uniform() - 1.0
        v = 2.0 * uniform() - 1.0
        s = u * u + v * v
        if s < 1.0:
            # Each step rounded to the nearest double: logarithm, quotient, root.
            log = float(Decimal(s).ln())
            w = float(Decimal(-2.0 * log / s).sqrt())
            yield w * u
            yield w * v


def values(row, nominal, tolerance):
    p = bits(row * nominal)
    draws = normals((p >> 32) ^ (p & 0xFFFFFFFF))
    return [nominal] + [next(draws) * tolerance * nominal + nominal for _ in range(31)]


for table in (EQUALISER, SATURATION):
    h = 0xCBF29CE484222325
    for row, (nominal, tolerance) in enumerate(table):
        for value in values(row, nominal, tolerance):
            h = ((h ^ bits(value)) * 0x100000001B3) & 0xFFFFFFFFFFFFFFFF
    print(f"0x{h:016x}")
