# SPDX-License-Identifier: GPL-3.0-or-later
"""The screwdriver trimmer, 36 x 36, enlarged to 54: a dial that the window turns, and the fixed light that lies over it.

The dial is lit evenly all round, so that it may turn; what the key light adds and takes away is the second picture.
"""
import os
import sys

import numpy as np

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import materials as m
from shapes import arc_profile, lathe, loft, rounded_edge
from studio import Studio, develop, fade_to_border, run

SIDE = 36
ENLARGED = 1.5
RADIUS = 0.185


def build(plain=False):
    """The dial, its mark upwards. plain gives one grey to all of it, on which only the light shows."""
    grey = m.solid("plain", "#808080", roughness=0.6)
    body = grey if plain else m.solid("dial", "#565a60", roughness=0.45)
    groove = grey if plain else m.solid("slot", "#0d0e0f", roughness=0.7)
    mark = grey if plain else m.solid("mark", m.AMBER, roughness=0.5, glow=0.45)
    profile = [(RADIUS, -0.02), (RADIUS, 0.03)] + arc_profile(RADIUS - 0.025, 0.03, 0.025, 0, 90, 6) + [(0.001, 0.056)]
    lathe("dial", profile, body, 128)
    for half_width, half_height, y, material in ((0.028, 0.115, -0.045, groove), (0.024, 0.045, 0.122, mark)):
        bar = loft("bar", [(half_width, half_height, 0.01, 0.03), (half_width, half_height, 0.01, 0.060)], material)
        bar.location.y = y


def dial(samples):
    studio = Studio(SIDE, SIDE, ENLARGED)
    studio.light(key=0.0, rim=0.0, dome=2.4)
    build()
    return develop(studio.expose(samples))


def shadow(samples):
    """Black where the key light is missing, white where it gleams, as alpha over the dial and its surroundings."""
    studio = Studio(SIDE, SIDE, ENLARGED)
    profile = [(RADIUS, -0.02), (RADIUS, 0.03)] + arc_profile(RADIUS - 0.04, 0.02, 0.04, 0, 90, 8) + [(0.001, 0.062)]
    lathe("dial", profile, m.solid("plain", "#808080", roughness=0.45), 128)
    cast = fade_to_border(studio.expose_shadow(samples, strength=0.9, soften=0.7), 4)
    film = studio.expose(samples)
    light = film[..., :3].mean(axis=-1) / np.maximum(film[..., 3], 1e-4)
    centre = light[SIDE // 2 - 3:SIDE // 2 + 3, SIDE // 2 - 3:SIDE // 2 + 3].mean()
    ratio = light / centre
    inside = np.clip(2.0 * film[..., 3] - 1.0, 0.0, 1.0)  # the edge's own pixels are too thin to tell light from noise
    dark = np.clip(1.0 - ratio, 0.0, 0.75) * inside
    bright = np.clip(0.6 * (ratio - 1.0), 0.0, 0.55) * inside
    alpha = np.maximum(dark, bright) + cast * (1 - film[..., 3])
    white = np.where(bright > dark, 1.0, 0.0)
    return develop(np.concatenate([np.repeat((white * alpha)[..., None], 3, axis=-1), alpha[..., None]], axis=-1))


if __name__ == "__main__":
    run({
        "trim-dial": lambda samples: dial(samples or 1024),
        "trim-shadow": lambda samples: shadow(samples or 1024),
    })
