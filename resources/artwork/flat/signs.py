# SPDX-License-Identifier: GPL-3.0-or-later
"""What is printed or lit on solid parts: the amber line of a push button that is in, and the mark of a switch's middle
position where the plate marks the ends only."""
import pathlib

import numpy as np
from PIL import Image

import output
from palette import AMBER, IVORY

PARTS = pathlib.Path(__file__).resolve().parent.parent / "parts"

# Of the line, in the pixels of the cap's picture: it lies across the upper part of the sunk face.
LINE = (60, 66, 122, 84, 7)
LINE_CORE = (255, 214, 146)  # brighter than the panel's amber in its middle, as a lamp is
GLOW_REACH, GLOW = 7.0, 0.45

# Of the smaller mark, at both sides of the lever; the others are 15 wide and 6 high.
MARK_HALF_WIDTH, MARK_HALF_HEIGHT = 3.5, 2.5
MARK_XS, MARK_Y = (52.5, 127.5), 90.0


def part(name):
    """A solid part's colours and its alpha, floats of 0 to 255."""
    pixels = np.asarray(Image.open(PARTS / f"{name}.png").convert("RGBA"), np.float32)
    return pixels[..., :3].copy(), pixels[..., 3:]


def distance(shape, x0, y0, x1, y1, radius):
    """From each pixel's middle to a rectangle with round corners, negative inside."""
    y, x = np.mgrid[0:shape[0], 0:shape[1]].astype(np.float32) + 0.5
    x = np.abs(x - (x0 + x1) / 2) - (x1 - x0) / 2 + radius
    y = np.abs(y - (y0 + y1) / 2) - (y1 - y0) / 2 + radius
    return (np.hypot(np.maximum(x, 0), np.maximum(y, 0)) + np.minimum(np.maximum(x, y), 0) - radius)[..., None]


def laid_over(colour, under, share):
    return under * (1 - share) + np.asarray(colour, np.float32) * share


def pressed():
    colour, alpha = part("push-cap-pressed")
    away = distance(colour.shape, *LINE)
    glow = GLOW * np.exp(-np.clip(away, 0, None) / GLOW_REACH) * (1 - colour / 255.0)
    colour += glow * np.asarray(AMBER, np.float32)
    colour = laid_over((24, 20, 14), colour, 0.6 * np.clip(2.0 - away, 0, 1))  # the slot
    colour = laid_over(AMBER, colour, np.clip(0.5 - away, 0, 1))
    colour = laid_over(LINE_CORE, colour, np.clip(-away / 4.0, 0, 1))
    return output.rounded(np.concatenate([colour, alpha], axis=-1))


def ends_and_middle():
    colour, alpha = part("toggle-plate-ends")
    for x in MARK_XS:
        away = distance(colour.shape, x - MARK_HALF_WIDTH, MARK_Y - MARK_HALF_HEIGHT, x + MARK_HALF_WIDTH,
                        MARK_Y + MARK_HALF_HEIGHT, 1.2)
        colour = laid_over(IVORY, colour, np.clip(0.5 - away, 0, 1))
    return output.rounded(np.concatenate([colour, alpha], axis=-1))


if __name__ == "__main__":
    output.run({"push-pressed": pressed, "toggle-plate-2": ends_and_middle})
