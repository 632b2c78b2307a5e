# SPDX-License-Identifier: GPL-3.0-or-later
"""The mute and phase keys, 110 x 110, enlarged to 165: square lenses in a dark frame, dull when off, lit from below when on."""
import math
import os
import sys

import numpy as np

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import materials as m
from shapes import lathe, lettering, loft, rounded_edge
from studio import Studio, blur, develop, fade_to_border, over_shadow, run

SIDE = 110
ENLARGED = 1.5
FONT = "/usr/share/texmf/fonts/opentype/public/tex-gyre/texgyreheroscn-bold.otf"  # Debian's fonts-texgyre
HALF = 0.53
RISE = 0.22
KEYS = {"mute": m.RED, "phase": m.AMBER}


def legend(kind, material):
    """MUTE as a word, phase as the crossed circle."""
    z = RISE + 0.002
    if kind == "mute":
        return [lettering("MUTE", FONT, 0.40, material, z)]
    ring = lathe("circle", [(0.225, z), (0.225, z + 0.006), (0.165, z + 0.006), (0.165, z)], material, 128, lid=False)
    ring.data.polygons.foreach_set("use_smooth", [False] * len(ring.data.polygons))
    bar = loft("slash", [(0.030, 0.33, 0.01, z), (0.030, 0.33, 0.01, z + 0.010)], material)
    bar.rotation_euler.z = -math.radians(38)
    return [ring, bar]


def draw(kind, on, samples):
    studio = Studio(SIDE, SIDE, ENLARGED)
    frame = m.solid("frame", "#191b1d", roughness=0.38)
    colour = KEYS[kind]
    if on:
        face = m.solid("lit lens", colour, roughness=0.32, glow=0.30, clearcoat=0.3)
        ink = m.solid("ink", "#1c0d05", roughness=0.8, specular=0.1)
    else:
        face = m.solid("dull lens", m.KEY_GREY, roughness=0.40, clearcoat=0.2, grain=0.12, grain_size=80)
        ink = m.solid("ink", m.LEGEND_IVORY, roughness=0.6, glow=0.22)

    outer = [(HALF + 0.085, HALF + 0.085, 0.13, 0.0)] + rounded_edge(HALF + 0.085, HALF + 0.085, 0.13, 0.07, 0.04)
    outer += [(HALF + 0.008, HALF + 0.008, 0.085, 0.065), (HALF + 0.006, HALF + 0.006, 0.08, 0.0)]
    loft("frame", outer, frame)
    key = [(HALF, HALF, 0.08, -0.05), (HALF, HALF, 0.08, RISE - 0.13)] + \
        rounded_edge(HALF - 0.03, HALF - 0.03, 0.09, RISE, 0.045)
    loft("key", key, face, dish=lambda x, y: -0.035 * (1 - min(1.0, (x * x + y * y) / 0.20)))
    legend(kind, ink)

    shadow = fade_to_border(studio.expose_shadow(samples, strength=0.8, soften=0.8), 12)
    film = studio.expose(samples)
    if on:
        y, x = np.mgrid[0:SIDE, 0:SIDE]
        reach = HALF * 100 / ENLARGED
        inside = (np.maximum(abs(x + 0.5 - SIDE / 2), abs(y + 0.5 - SIDE / 2)) < reach).astype(np.float64)
        glow = fade_to_border(0.5 * blur(inside, 7.0), 10)[..., None] * (1 - film[..., 3:])
        over = over_shadow(film, shadow)
        light = np.array(m.linear(colour)[:3])
        film = np.concatenate([over[..., :3] + light * glow, np.maximum(over[..., 3:], glow)], axis=-1)
        return develop(film)
    return develop(over_shadow(film, shadow))


if __name__ == "__main__":
    run({f"{kind}-{state}": (lambda samples, kind=kind, on=on: draw(kind, on, samples or 256))
         for kind in KEYS for state, on in (("off", False), ("on", True))})
