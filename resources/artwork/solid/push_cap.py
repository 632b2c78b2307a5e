# SPDX-License-Identifier: GPL-3.0-or-later
"""The cap of the twelve push buttons, released and, still without its light, pressed, 180 x 180. The 35 rows above it stay
clear for the lamp."""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import materials as m
from shapes import loft, rounded_edge
from studio import Studio, develop, fade_to_border, over_shadow, run

SIDE = 180
CLEAR_ROWS = 35
HALF_WIDTH = 0.46  # 92 pixels wide
CENTRE_Y = -0.01
SINK = 0.04  # how far the pressed cap sits lower in the picture


def build(rise, centre_y):
    """A moulded key: skirt with drafted sides, a brighter top face that is dished for the finger."""
    body = m.solid("key side", m.KEY_GREY, roughness=0.48, grain=0.25, grain_size=90)
    w = HALF_WIDTH
    outlines = [(w, w, 0.11, -0.10), (w, w, 0.11, rise - 0.30 + 0.16), (w - 0.006, w - 0.006, 0.108, rise - 0.125)]
    outlines += rounded_edge(w - 0.07, w - 0.07, 0.10, rise, 0.045)
    key = loft("key", outlines, body, dish=lambda x, y: -0.06 * (1 - min(1.0, (x * x + y * y) / 0.16)))
    key.location.y = centre_y


def draw(pressed, samples):
    studio = Studio(SIDE, SIDE)
    build(0.16 if pressed else 0.30, CENTRE_Y - (SINK if pressed else 0.0))
    if pressed:
        studio.light(key=0.72, dome=0.78)
    shadow = fade_to_border(studio.expose_shadow(samples, strength=0.6 if pressed else 0.85, soften=1.2), 26)
    film = over_shadow(studio.expose(samples), shadow)
    film[:CLEAR_ROWS] = 0
    return develop(film)


if __name__ == "__main__":
    run({
        "push-released": lambda samples: draw(False, samples or 128),
        "push-cap-pressed": lambda samples: draw(True, samples or 128),
    })
