# SPDX-License-Identifier: GPL-3.0-or-later
"""Every word on the panel: section heads, the controls' names with their units, and the scales."""
import layout
import scales
from palette import HEAD_SIZE, IVORY, NAME_SIZE, SECONDARY, UNIT_SIZE

HEAD_ROW = 58

# Head, left end, row, and where the hairline after it ends. One without a hairline is smaller: buttons follow it.
HEADS = [
    ("INPUT", 40, 1048, 484),
    ("EQUALISER", 544, HEAD_ROW, 1044),
    ("COMPRESSOR", 1104, HEAD_ROW, 1582),
    ("CHANNEL", 1636, HEAD_ROW, 0),
    ("EXPANDER", 1650, 376, 2152),
    ("OUTPUT", 2212, HEAD_ROW, 2614),
]

# How far below its control's middle a name stands; what the names are stands in the layout.
HIGHER_NAMES = {"compRatio": 138, "compHPF": 144}  # a free lower half; the row of the neighbour
SWITCH_NAME_DROP = 88
PUSH_NAME_DROP = 78
# to the right, away from the compressor's border; from a button's name
NAME_SHIFT = {"expThreshold": 12, "highPass": 18}

# The three bands of the equaliser stand at the left of their gain knobs, the names of the knobs below them.
BANDS = {"highGain": "HIGH", "midGain": "MID", "lowGain": "LOW"}
BAND_LEFT = 544

BOTTOM_NAMES_ROW = 1878
BOTTOM_ROW_TOP = 1680

PRODUCT = "TARVIK 41 CHANNEL"


def named(ink, x, y, name, unit="", align="centre"):
    """A control's name, its unit smaller and fainter after it, together centred or flush left on x."""
    gap = 10 if unit else 0
    width = ink.width(name, NAME_SIZE, 0.03) + gap + (ink.width(unit, UNIT_SIZE) if unit else 0)
    left = x - width / 2.0 if align == "centre" else x
    drawn = ink.text(left, y, name, NAME_SIZE, IVORY, "left", 0.03)
    if unit:
        ink.text(left + drawn + gap, y + 1.5, unit, UNIT_SIZE, SECONDARY, "left")


def heads(ink):
    for text, x, y, end in HEADS:
        width = ink.text(x, y, text, HEAD_SIZE if end else UNIT_SIZE, IVORY, "left", 0.08 if end else 0.0)
        if end:
            ink.line([(x + width + 20, y), (end, y)], 3, SECONDARY, 0.45)


def knobs(ink):
    for knob in layout.of("knob"):
        scales.knob(ink, knob)
        parameter, name, unit = knob["parameter"], knob["legend"], scales.unit_of(knob)
        x, y = layout.centre(knob)
        if parameter in BANDS:
            ink.text(BAND_LEFT, y - 22, BANDS[parameter], HEAD_SIZE, IVORY, "left", 0.06)
            named(ink, BAND_LEFT, y + 22, name, unit, "left")
        elif name:
            drop = HIGHER_NAMES.get(parameter, 99 + knob["w"] / 5)
            named(ink, x + NAME_SHIFT.get(parameter, 0), y + drop, name, unit)


def name_row(control, row):
    """The row of a button's name: its own, or the common one of the bottom row."""
    return BOTTOM_NAMES_ROW if control["y"] > BOTTOM_ROW_TOP else row


def buttons(ink):
    for switch in layout.of("switch"):
        scales.switch(ink, switch)
        x, y = layout.centre(switch)
        unit = "" if switch["parameter"] in scales.UNIT_IN_WORDS else scales.unit_of(switch)
        x += NAME_SHIFT.get(switch["parameter"], 0)
        named(ink, x, name_row(switch, y + SWITCH_NAME_DROP), switch["legend"], unit)
    for push in layout.of("push"):
        named(ink, push["x"] + 90, name_row(push, push["y"] + 90 + PUSH_NAME_DROP), push["legend"])


def lights(ink):
    for name, text in (("compressor LED", "LIMITING"), ("expander LED", "ACTIVE")):
        x, y = layout.centre(layout.find("led", name))
        ink.text(x, y - 52, text, UNIT_SIZE, SECONDARY, tracking=0.04)


def output_section(ink, cap_half_width):
    fader = layout.find("fader", "level")
    scales.fader(ink, fader, cap_half_width)
    x = layout.centre(fader)[0]
    named(ink, x, 324, fader["legend"], fader["unit"])
    for key in layout.of("mute") + layout.of("phase"):
        named(ink, layout.centre(key)[0], key["y"] + key["h"] + 6, key["legend"])


def everything(ink, cap_half_width):
    heads(ink)
    knobs(ink)
    buttons(ink)
    lights(ink)
    trim = layout.find("trim", "thd")
    scales.trim(ink, trim)
    x, y = layout.centre(trim)
    named(ink, x, y + 92, trim["legend"], trim["unit"])
    output_section(ink, cap_half_width)
    meters = layout.of("meter")
    middle = meters[0]["x"] + meters[0]["w"] / 2.0
    for meter, text in zip(meters, ("LEVEL", "GAIN REDUCTION")):
        ink.text(middle, meter["y"] + meter["h"] + 116, text, UNIT_SIZE, SECONDARY, tracking=0.08)
    ink.text(middle, 928, PRODUCT, 34, IVORY, tracking=0.14)
