# SPDX-License-Identifier: GPL-3.0-or-later
"""The three-way switches, 180 x 180 each: three plates, and the lever in its three positions to be laid over a plate.

Plate 1 is plain; plate 2 marks both ends, and its middle mark is printed on afterwards, smaller; plate 3 marks all three.
The marks' rows are what the panel's legends line up with.
"""
import math
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import materials as m
from shapes import arc_profile, lathe, loft, rounded_edge
from studio import Studio, develop, fade_to_border, over_shadow, run

SIDE = 180
TILT_DEGREES = 18.0
MARK_ROWS = {1: (), 2: (-0.44, 0.44), 3: (-0.44, 0.0, 0.44)}  # units above the middle
MARK_X = 0.375
PLATE_HALF_WIDTH, PLATE_HALF_HEIGHT = 0.50, 0.66
PLATE_TOP = 0.05
LEVER_LENGTH = 1.45


def plate(number, samples):
    studio = Studio(SIDE, SIDE)
    dark = m.solid("plate", "#1d2023", roughness=0.40, metallic=0.0, grain=0.12, grain_size=120)
    ivory = m.solid("mark", m.LEGEND_IVORY, roughness=0.6, glow=0.25)
    outlines = [(PLATE_HALF_WIDTH, PLATE_HALF_HEIGHT, 0.12, 0.0)]
    outlines += rounded_edge(PLATE_HALF_WIDTH, PLATE_HALF_HEIGHT, 0.12, PLATE_TOP, 0.028)
    loft("plate", outlines, dark)
    for y in MARK_ROWS[number]:
        for side in (-1, 1):
            mark = loft("mark", [(0.070, 0.026, 0.012, PLATE_TOP - 0.01),
                        (0.070, 0.026, 0.012, PLATE_TOP + 0.002)], ivory)
            mark.location.x, mark.location.y = side * MARK_X, y
    shadow = fade_to_border(studio.expose_shadow(samples, strength=0.7, soften=1.2), 20)
    return develop(over_shadow(studio.expose(samples), shadow))


def lever(position, samples):
    """position is -1, 0 or 1: low, middle, high."""
    studio = Studio(SIDE, SIDE)
    steel = m.solid("steel", m.STEEL, roughness=0.36, metallic=1.0, grain=0.04, grain_size=40)
    brushed = m.solid("brushed steel", "#a9abad", roughness=0.34, metallic=1.0, anisotropic=0.6)
    black = m.solid("bushing", m.BLACK, roughness=0.5)

    nut = [(0.285, PLATE_TOP - 0.01), (0.285, PLATE_TOP + 0.085)]
    nut += arc_profile(0.26, PLATE_TOP + 0.085, 0.025, 0, 90, 6) + [(0.20, PLATE_TOP + 0.11), (0.185, PLATE_TOP + 0.10)]
    lathe("nut", nut, brushed, 144, lambda r, z, a: r - (0.010 * (0.5 - 0.5 * math.cos(36 * a)) if r > 0.27 else 0.0))
    thread = [(0.187, PLATE_TOP + 0.05), (0.187, PLATE_TOP + 0.19)] + \
        arc_profile(0.167, PLATE_TOP + 0.19, 0.02, 0, 90, 4)
    thread += [(0.135, PLATE_TOP + 0.205), (0.115, PLATE_TOP + 0.17),
               (0.11, PLATE_TOP + 0.02), (0.001, PLATE_TOP + 0.02)]
    lathe("bushing", thread, steel, 96)
    lathe("hole", [(0.112, PLATE_TOP + 0.10), (0.001, PLATE_TOP + 0.10)], black, 48)

    # The bat: slim at the pivot, swelling to a round end.
    bat = [(0.088, 0.0), (0.090, 0.25)]
    for i in range(1, 17):
        t = i / 16
        bat.append((0.090 + 0.070 * (t * t * (3 - 2 * t)), 0.25 + (LEVER_LENGTH - 0.40) * t))
    bat += arc_profile(0.0, LEVER_LENGTH - 0.15, 0.160, 0, 88, 14)[1:]
    stick = lathe("bat", bat, steel, 96, smooth_degrees=60)
    stick.location.z = PLATE_TOP - 0.05
    stick.rotation_euler = (-math.radians(TILT_DEGREES) * position, 0, 0)

    shadow = fade_to_border(studio.expose_shadow(samples, z=PLATE_TOP, strength=0.75, soften=1.2), 20)
    return develop(over_shadow(studio.expose(samples), shadow))


if __name__ == "__main__":
    drawings = {f"toggle-plate-{name}": (lambda samples, n=n: plate(n, samples or 128))
                for n, name in ((1, "1"), (2, "ends"), (3, "3"))}
    drawings |= {f"toggle-lever-{name}": (lambda samples, p=p: lever(p, samples or 128))
                 for name, p in (("low", -1), ("middle", 0), ("high", 1))}
    run(drawings)
