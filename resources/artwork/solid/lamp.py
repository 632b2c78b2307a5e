# SPDX-License-Identifier: GPL-3.0-or-later
"""Lit lamps (34 x 34, enlarged to 51) and LEDs (80 x 80, enlarged to 120), and their unlit sockets for the panel.

A lit picture holds only light: the glowing lens and its halo, laid over the socket that the panel shows.
"""
import os
import sys

import numpy as np

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import materials as m
from shapes import arc_profile, lathe
from studio import Studio, blur, develop, fade_to_border, over_shadow, run

ENLARGED = 1.5  # design pixels per pixel of the lit pictures


class Lens:
    """Radii in units: the lens, the bezel round it, and the lens's rise above the panel."""

    def __init__(self, side, lens, bezel, rise):
        self.side, self.lens, self.bezel, self.rise = side, lens, bezel, rise


LAMP = Lens(34, lens=0.125, bezel=0.18, rise=0.10)
LED = Lens(80, lens=0.21, bezel=0.29, rise=0.15)
COLOURS = {"amber": ("#FFA832", "#FFE0A0"), "green": ("#4FDC4E", "#D2FFC4"), "red": ("#FF3A24", "#FFAA8C")}


def lens_profile(kind):
    """A shallow dome."""
    points = [(kind.lens, 0.02)]
    for i in range(15):
        t = i / 14
        points.append((kind.lens * np.cos(t * np.pi / 2) + 0.0005, 0.03 + (kind.rise - 0.03) * np.sin(t * np.pi / 2)))
    return points


def bezel(kind, material):
    ring = [(kind.bezel, 0.0), (kind.bezel, 0.035)] + arc_profile(kind.bezel - 0.025, 0.035, 0.025, 0, 90, 6)
    ring += arc_profile(kind.lens + 0.022, 0.04, 0.02, 90, 170, 5) + [(kind.lens + 0.002, 0.0)]
    return lathe("bezel", ring, material, 128)


def lit(kind, colour, samples):
    """The lens as it glows: hot in the middle, its own colour at the rim, a halo that dies before the border."""
    outer, inner = (np.array(m.linear(c)[:3]) for c in COLOURS[colour])
    studio = Studio(kind.side, kind.side, ENLARGED)
    glass = m.solid("lens", "#ffffff", roughness=0.12, clearcoat=0.6)
    lathe("lens", lens_profile(kind), glass, 128)
    studio.light(key=0.35, rim=0.4, dome=0.4)
    film = studio.expose(samples)
    mask = film[..., 3]
    gloss = film[..., :3].mean(axis=-1, keepdims=True)

    y, x = np.mgrid[0:kind.side, 0:kind.side]
    r = np.hypot(x + 0.5 - kind.side / 2, y + 0.5 - kind.side / 2) * ENLARGED / 100.0 / kind.lens
    heart = np.exp(-(r / 0.50) ** 2)[..., None]
    rim = np.clip(1.0 - 0.45 * r[..., None] ** 3, 0.4, 1.0)
    colour_map = (outer * (1 - heart) + inner * heart) * rim + 0.10 * gloss
    lens_film = np.concatenate([colour_map * mask[..., None], mask[..., None]], axis=-1)

    scale = kind.side / 34.0
    halo = 0.48 * blur(mask.astype(np.float64), 2.0 * scale) + 0.50 * blur(mask.astype(np.float64), 4.2 * scale)
    halo = fade_to_border(np.clip(halo, 0, 1), 9 * scale)[..., None]
    glow = np.concatenate([outer * halo, halo], axis=-1)
    return develop(lens_film + glow * (1 - mask[..., None]))


def socket(kind, side, tint, samples):
    """The unlit lens in its black bezel, at the design's own size."""
    studio = Studio(side, side)
    bezel(kind, m.solid("bezel", "#17181a", roughness=0.3, specular=0.6))
    lathe("lens", lens_profile(kind), m.solid("dark lens", tint, roughness=0.10, specular=0.7, clearcoat=0.8), 128)
    shadow = fade_to_border(studio.expose_shadow(samples, strength=0.8, soften=0.8), side * 0.14)
    return develop(over_shadow(studio.expose(samples), shadow))


TINTS = {"amber": "#5a3812", "green": "#153f17", "red": "#551610"}

if __name__ == "__main__":
    drawings = {f"lamp-{c}": (lambda samples, c=c: lit(LAMP, c, samples or 512)) for c in ("red", "green", "amber")}
    drawings |= {f"led-{c}": (lambda samples, c=c: lit(LED, c, samples or 512)) for c in ("red", "green")}
    drawings |= {f"lamp-socket-{c}": (lambda samples, c=c: socket(LAMP, 51, TINTS[c], samples or 512))
                 for c in ("red", "green", "amber")}
    drawings |= {f"led-socket-{c}": (lambda samples, c=c: socket(LED, 120,
                                     TINTS[c], samples or 512)) for c in ("red", "green")}
    run(drawings)
