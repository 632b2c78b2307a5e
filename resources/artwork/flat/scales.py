# SPDX-License-Identifier: GPL-3.0-or-later
"""Scales round the knobs and the trim, beside the fader, and the words beside the switches.

Where a mark stands and what it says comes from the layout. Here is only which marks go without a numeral, how a text is
shortened, and how far from the control everything is.
"""
import layout
from ink import direction
from palette import IVORY, NUMERAL_SIZE, SECONDARY, UNIT_SIZE, WORD_SIZE

SKIRT = {0: 108.0, 1: 116.0}  # radius of the knob in a box of 300, by style
# From the skirt: ticks begin, their length, numerals begin. A tick hugs the knob and is fainter than a numeral, or one that
# lies level would be read as the numeral's minus.
TICK_GAP, TICK_LENGTH, NUMERAL_GAP = 2.0, 7.0, 15.5
TICK_WIDTH = 4.5
WIDER_BY = {"lowFreq": 8.0}  # a scale whose numerals stand close together has them further out
NUMERAL_HALF_HEIGHT = 0.37  # of the size of the font

# Marks that keep their tick but not their numeral, because a neighbour or a readout is in the way.
WITHOUT_NUMERAL = {
    "compMix": {"40", "60"},
    "compHPF": {"100"},
    "lowGain": {"12"},
}

# Units of scales whose marks' texts bear none.
BARE_UNITS = {"compMix": "%", "compHPF": "Hz"}

# What each unit of a scale of two means. A cut is printed without its minus.
MEANINGS = {"lowFreq": {"Hz": "FREQ", "dB": "CUT"}}

UNIT_IN_WORDS = {"highPass"}  # switches whose words bear the unit

SHORT_WORDS = {"Medium": "MED", "Expander": "EXP"}

PLATE_HALF_WIDTH, WORD_GAP = 50, 8
WORD_ROWS = {"high": -46, "middle": 0, "low": 46}  # rows of the marks on the switches' plates
WORDS_ON_THE_LEFT = {"expMode"}


def numeral(text, thousand):
    """A mark as it is printed; thousand is True where hertz are printed as kilohertz."""
    number, unit = layout.split(text)
    try:
        value = float(number)
    except ValueError:
        return number.upper()
    if thousand:
        number = f"{value / 1000.0:g}"
    short = number[1:] if number.startswith("0.") else number
    return short + "s" if unit == "s" else short


def in_thousands(control):
    """Whether a scale in hertz reaches so far up that it is printed in kilohertz."""
    return layout.units(control) == ["Hz"] and any(float(layout.split(m["text"])[0]) >= 1000
                                                   for m in control["scale"] if layout.split(m["text"])[1])


def unit_of(control):
    """What stands after the control's name: the one unit of its scale."""
    if control["parameter"] in BARE_UNITS:
        return BARE_UNITS[control["parameter"]]
    if in_thousands(control):
        return "kHz"
    found = [unit for unit in layout.units(control) if unit != ":1"]
    return found[0] if found else control.get("unit", "")


def clear_of(ink, text, size, degrees, radius):
    """Distance from the scale's middle to a numeral's, so that its box begins at a radius on the ray of the angle."""
    dx, dy = direction(degrees)
    return radius + abs(dx) * ink.width(text, size) / 2.0 + abs(dy) * NUMERAL_HALF_HEIGHT * size


def knob(ink, control):
    x, y = layout.centre(control)
    shrunk = control["w"] / 300.0
    skirt = SKIRT[control["style"]] * shrunk
    thousand = in_thousands(control)
    inner = skirt + TICK_GAP * shrunk
    numerals = skirt + NUMERAL_GAP + WIDER_BY.get(control["parameter"], 0.0)
    for mark in control["scale"]:
        ink.tick(x, y, mark["degrees"], inner, inner + TICK_LENGTH * shrunk, TICK_WIDTH, SECONDARY)
        if mark["text"] not in WITHOUT_NUMERAL.get(control["parameter"], ()):
            text = numeral(mark["text"], thousand)
            if MEANINGS.get(control["parameter"], {}).get(layout.split(mark["text"])[1]) == "CUT":
                text = text.lstrip("-")
            radius = clear_of(ink, text, NUMERAL_SIZE, mark["degrees"], numerals)
            dx, dy = direction(mark["degrees"])
            ink.text(x + radius * dx, y + radius * dy, text, NUMERAL_SIZE, IVORY)
    if control["parameter"] in MEANINGS:
        units_along(ink, control, numerals + 55.0)


def units_along(ink, control, outer):
    """A scale of two units has a bracket along each part, and the part's name and unit outside it."""
    x, y = layout.centre(control)
    for unit in layout.units(control):
        span = [m["degrees"] for m in control["scale"] if layout.split(m["text"])[1] == unit]
        ink.arc(x, y, outer, span[0] - 3, span[-1] + 3, 3.0, SECONDARY)
        dx, dy = direction(span[0] + 0.8 * (span[-1] - span[0]) if unit == "Hz" else (span[0] + span[-1]) / 2.0)
        left, row = x + (outer + 14) * dx, y + (outer + 14) * dy
        drawn = ink.text(left, row, MEANINGS[control["parameter"]][unit], WORD_SIZE, IVORY, "left")
        ink.text(left + drawn + 8, row, unit, UNIT_SIZE, SECONDARY, "left")


def trim(ink, control):
    x, y = layout.centre(control)
    radius = control["w"] / 2.0
    for mark in control["scale"]:
        ink.tick(x, y, mark["degrees"], radius + 5, radius + 13, TICK_WIDTH, IVORY)
        if float(mark["text"]) in (-30, 0, 30):
            distance = clear_of(ink, mark["text"], NUMERAL_SIZE, mark["degrees"], radius + 19)
            dx, dy = direction(mark["degrees"])
            ink.text(x + distance * dx, y + distance * dy, mark["text"], NUMERAL_SIZE, IVORY)


def fader(ink, control, cap_half_width):
    """Marks on both sides of the cap's way, numerals on the left."""
    x = layout.centre(control)[0]
    for mark in control["scale"]:
        is_unity = float(mark["text"]) == 0.0
        for side in (-1, 1):
            start = x + side * (cap_half_width + 10)
            ink.line([(start, mark["y"]), (start + side * (34 if is_unity else 22), mark["y"])],
                     6 if is_unity else TICK_WIDTH, IVORY)
        ink.text(x - cap_half_width - 50, mark["y"], mark["text"], NUMERAL_SIZE + 4 if is_unity else NUMERAL_SIZE, IVORY,
                 "right")


def switch(ink, control):
    x, y = layout.centre(control)
    left = control["parameter"] in WORDS_ON_THE_LEFT
    for mark in control["scale"]:
        word = SHORT_WORDS.get(mark["text"]) or \
            (mark["text"] if control["parameter"] in UNIT_IN_WORDS else numeral(mark["text"], False))
        offset = (PLATE_HALF_WIDTH + WORD_GAP) * (-1 if left else 1)
        ink.text(x + offset, y + WORD_ROWS[mark["lever"]], word, WORD_SIZE, IVORY, "right" if left else "left")
