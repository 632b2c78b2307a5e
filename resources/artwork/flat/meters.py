# SPDX-License-Identifier: GPL-3.0-or-later
"""Both meters' dark glasses. The needle is the program's: it ends where the scale begins, and hides below the cover."""
import numpy as np

import layout
from ink import Ink, direction
from palette import AMBER, GLASS, IVORY, OVER_ZONE, SECONDARY
from scales import clear_of
from surface import Region, recess

# Round the meter's own area, in design pixels.
LEFT, TOP, RIGHT, BOTTOM = 40, 36, 40, 82
BEZEL = 11
COVER_TOP = 6  # below the meter's area, so that nothing shows where the needle is cut off
SCALE_GAP = 7  # from the needle's tip to the scale's line
NUMERAL_SIZE, UNIT_SIZE, WORD_SIZE = 30, 54, 26
WORD_SQUEEZE = 0.82  # narrower letters, because OUTPUT has to fit into the legend that the program lays over INPUT
EVERY = 5  # decibels between numerals


def glass(picture, control):
    """The housing, the lit glass and the cover over the needle's pivot, without any print."""
    x0, y0 = control["x"] - LEFT, control["y"] - TOP
    x1, y1 = control["x"] + control["w"] + RIGHT, control["y"] + control["h"] + BOTTOM
    housing = Region(x0, y0, x1, y1, 20)
    recess(picture, housing, 0.30, bevel=5, dark=0.75, bright=0.5)
    pane = Region(x0 + BEZEL, y0 + BEZEL, x1 - BEZEL, y1 - BEZEL, 12)
    part, inside = pane.of(picture), pane.inside()
    rows = np.arange(pane.top, pane.bottom, dtype=np.float32)[:, None] + 0.5
    columns = np.arange(pane.left, pane.right, dtype=np.float32)[None, :] + 0.5
    from_lamp = np.hypot((columns - control["pivotX"]) * 0.72, rows - control["pivotY"])
    glow = 0.30 * np.exp(-(from_lamp / 185.0) ** 2)[..., None]
    face = np.asarray(GLASS, np.float32) * (1 - glow) + np.asarray(AMBER, np.float32) * 0.62 * glow
    part[:] = part * (1 - inside) + face * inside
    recess(picture, pane, 1.0, bevel=3, dark=0.5, bright=0.25, inner_shadow=0.55, shadow_reach=26)
    # One slanted reflection of the window, faint enough to read through.
    slant = np.clip(1.0 - np.abs((columns - x0) * 0.9 + (rows - y0) - 170.0) / 60.0, 0, 1)[..., None]
    part += 5.0 * slant * inside

    cover = Region(x0 + BEZEL, control["y"] + control["h"] + COVER_TOP, x1 - BEZEL, y1 - BEZEL, 10)
    part, inside = cover.of(picture), cover.inside()
    shade = np.linspace(1.25, 0.85, part.shape[0], dtype=np.float32)[:, None, None]
    part[:] = part * (1 - inside) + np.asarray((24, 27, 29), np.float32) * shade * inside
    depth = -cover.distance[..., None]
    lit = np.exp(-((depth - 1.5) / 1.6) ** 2) * np.clip(-cover.facing(), 0, 1)
    part += 34.0 * lit


def marks(ink, control, over_from=None):
    """The arc with its ticks and numerals. From over_from decibels on, the arc is doubled by a broad red one."""
    x, y = control["pivotX"], control["pivotY"]
    arc = control["needleRadius"] + SCALE_GAP
    scale = control["scale"]
    ink.arc(x, y, arc, scale[0]["degrees"] - 0.5, scale[-1]["degrees"] + 0.5, 3.5, IVORY)
    if over_from is not None:
        start = next(mark["degrees"] for mark in scale if mark["decibels"] == over_from)
        ink.arc(x, y, arc + 4, start, scale[-1]["degrees"] + 0.5, 11, OVER_ZONE)
    for mark in scale:
        decibels, degrees = mark["decibels"], mark["degrees"]
        is_over = over_from is not None and decibels > over_from
        colour = OVER_ZONE if is_over else IVORY
        if decibels % EVERY == 0:
            ink.tick(x, y, degrees, arc - 2, arc + 17, 5, colour)
            dx, dy = direction(degrees)
            text = f"{abs(decibels):g}" if over_from is None else f"{decibels:g}"
            radius = clear_of(ink, text, NUMERAL_SIZE, degrees, arc + 23)
            ink.text(x + radius * dx, y + radius * dy, text, NUMERAL_SIZE, colour)
        elif scale[0]["decibels"] < decibels:
            ink.tick(x, y, degrees, arc, arc + 9, 3, colour if is_over else SECONDARY)


def print_on(picture, control, unit, word, over_from=None):
    """Scale, unit, and the word that stands below it."""
    ink = Ink(control["w"] + 2 * LEFT, control["h"] + TOP + BOTTOM, (control["x"] - LEFT, control["y"] - TOP))
    marks(ink, control, over_from)
    middle = control["x"] + control["w"] / 2.0
    ink.text(middle, control["y"] + 118, unit, UNIT_SIZE, IVORY, tracking=0.04)
    if ink.width(word, WORD_SIZE) * WORD_SQUEEZE > layout.find("picture", "output legend")["w"] - 2:
        raise SystemExit(f"{word} is wider than its legend")
    ink.context.translate(middle, 0)
    ink.context.scale(WORD_SQUEEZE, 1)
    ink.text(0, control["y"] + word_drop(), word, WORD_SIZE, IVORY)
    ink.onto(picture, control["x"] - LEFT, control["y"] - TOP)


def word_drop():
    """How far below a meter's upper edge its word stands: in the middle of the legend that the program lays over the VU's."""
    return layout.centre(layout.find("picture", "output legend"))[1] - layout.find("meter", "VU")["y"]
