# SPDX-License-Identifier: GPL-3.0-or-later
"""The fader's cap, 300 x 500: a long charcoal key, hollowed and ribbed for the finger, with an index line in its middle.

The picture's middle row is the fader's position.
"""
import math
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import materials as m
from shapes import loft, rounded_edge, sheet
from studio import Studio, develop, fade_to_border, over_shadow, run

WIDTH, HEIGHT = 300, 500
HALF_WIDTH, HALF_LENGTH = 0.80, 1.72
RISE = 0.62
HOLLOW = 0.26  # depth of the finger's hollow at the index line
RIB_PITCH, RIB_DEPTH = 0.13, 0.030
LINE_HALF_WIDTH = 0.035


def face(y):
    """Height of the finger face against its rim: a cylinder's hollow along y, with ribs across it."""
    reach = HALF_LENGTH - 0.24
    t = min(abs(y) / reach, 1.0)
    hollow = -HOLLOW * (1 - t * t)
    on_ribs = min(max((abs(y) - 0.15) / 0.05, 0.0), 1.0) * min(max((reach - 0.06 - abs(y)) / 0.08, 0.0), 1.0)
    rib = -RIB_DEPTH * on_ribs * (0.5 - 0.5 * math.cos(2 * math.pi * (abs(y) - 0.15) / RIB_PITCH))
    return hollow + rib


def build():
    charcoal = m.solid("charcoal", m.CHARCOAL, roughness=0.36, grain=0.12, grain_size=80)
    m.with_line(charcoal, m.IVORY, LINE_HALF_WIDTH, -1.0, 1.0, glow=0.32, across="Y")
    w, l = HALF_WIDTH, HALF_LENGTH
    sides = [(w, l, 0.10, 0.06), (w, l, 0.10, 0.10), (w - 0.065, l - 0.09, 0.09, RISE - 0.12)]
    sides += rounded_edge(w - 0.07, l - 0.10, 0.10, RISE, 0.07)
    loft("sides", sides, charcoal, lid=False)
    sheet("finger face", w - 0.138, l - 0.168, lambda x, y: RISE + face(y), charcoal, columns=4, rows=700)


def draw(samples):
    studio = Studio(WIDTH, HEIGHT)
    build()
    shadow = fade_to_border(studio.expose_shadow(samples, strength=0.85, soften=1.5), 40)
    return develop(over_shadow(studio.expose(samples), shadow))


if __name__ == "__main__":
    run({"fader-cap": lambda samples: draw(samples or 128)})
