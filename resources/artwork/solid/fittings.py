# SPDX-License-Identifier: GPL-3.0-or-later
"""Fittings that the panel's picture is dressed with: a screw, and the dark that a knob leaves round its foot."""
import math
import os
import sys

import numpy as np

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import knob
import materials as m
from shapes import arc_profile, lathe
from studio import Studio, develop, fade_to_border, over_shadow, run

SCREW_SIDE = 72


def screw(samples):
    """A countersunk socket-head screw with a hexagonal hole, in a shallow recess."""
    studio = Studio(SCREW_SIDE, SCREW_SIDE)
    steel = m.solid("black steel", "#6c6f72", roughness=0.32, metallic=1.0, anisotropic=0.4)
    black = m.solid("hole", "#050505", roughness=0.9)
    head = [(0.235, 0.0), (0.235, 0.04)] + arc_profile(0.195, 0.045, 0.04, 0, 90, 8)
    head += [(0.125, 0.088), (0.118, 0.080), (0.117, -0.28), (0.001, -0.28)]

    def hexagon(r, z, angle):
        if r > 0.13:
            return r
        sector = (angle + math.radians(17)) % (math.pi / 3) - math.pi / 6
        return r * math.cos(math.pi / 6) / math.cos(sector)

    lathe("head", head, steel, 192, hexagon, 30)
    lathe("bottom", [(0.10, -0.22), (0.001, -0.22)], black, 48)
    lathe("washer", [(0.275, 0.0), (0.275, 0.012), (0.262, 0.018), (0.235, 0.018)],
          m.solid("washer", "#1a1c1e", roughness=0.5), 128)
    shadow = fade_to_border(studio.expose_shadow(samples, strength=0.8, soften=0.8), 8)
    return develop(over_shadow(studio.expose(samples), shadow))


def contact(samples):
    """Soft occlusion all round a large knob's foot; the strips bring their own cast shadow."""
    studio = Studio(300, 300)
    studio.light(key=0.0, rim=0.0)
    knob.build(knob.LARGE, True)
    alpha = fade_to_border(studio.expose_shadow(samples, strength=0.5, soften=2.0), 24)
    film = np.zeros(alpha.shape + (4,), np.float32)
    film[..., 3] = alpha
    return develop(film)


if __name__ == "__main__":
    run({"screw": lambda samples: screw(samples or 512), "knob-contact": lambda samples: contact(samples or 64)})
