# SPDX-License-Identifier: GPL-3.0-or-later
"""Colours of everything that is printed or flat, red, green and blue of 0 to 255, and the sizes of the legends."""


def rgb(colour):
    """#rrggbb as three numbers."""
    return tuple(int(colour[i:i + 2], 16) for i in (1, 3, 5))


SLATE = rgb("#2A3136")
FIELD = rgb("#30383E")
BAY = rgb("#1D2226")
GROOVE = rgb("#1B2024")
IVORY = rgb("#E4E3DE")
SECONDARY = rgb("#A9B0B3")
AMBER = rgb("#F2A43A")
GLASS = rgb("#15191B")
OVER_ZONE = rgb("#E0563F")
PLATE = rgb("#EDE8DA")
PLATE_FRAME = rgb("#22282C")
KEY = rgb("#3B444A")
BLACK = rgb("#000000")

# Heights of the font in design pixels, three of which make one at 100 %.
HEAD_SIZE = 40
NAME_SIZE = 33
UNIT_SIZE = 31
NUMERAL_SIZE = 30
WORD_SIZE = 28
