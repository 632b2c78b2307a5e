# SPDX-License-Identifier: GPL-3.0-or-later
"""Every word on the panel: section heads, names of controls with their units, and the scales."""
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

# Names under the knobs. Those of the equaliser's gains stand beside them, those of its low switch along its scale.
KNOB_NAMES = {
    "gain": "GAIN", "compHPF": "SC FILTER", "compMix": "MIX", "midFreq": "FREQ", "compRatio": "RATIO",
    "compRelease": "RELEASE", "compThreshold": "THRESHOLD", "compInput": "INPUT", "compOutput": "OUTPUT",
    "expRange": "RANGE", "expRelease": "RELEASE", "expThreshold": "THRESHOLD",
}
KNOB_NAME_DROP = {300: 159, 240: 147}  # by the side of the knob's box
KNOB_NAME_SHIFT = {"expThreshold": 12}  # to the right, away from the compressor's border
HIGHER_NAMES = {"compRatio": 138, "compHPF": 144}  # a free lower half; the row of the neighbour

# The three bands of the equaliser stand at the left of their gain knobs.
BANDS = [("HIGH", "highGain"), ("MID", "midGain"), ("LOW", "lowGain")]
BAND_LEFT = 544

SWITCH_NAMES = {"highPass": "HIGH PASS", "expMode": "MODE",
                "highFreq": "FREQ", "compAttack": "ATTACK", "expAttack": "ATTACK"}
SWITCH_NAME_DROP = 88
SWITCH_NAME_SHIFT = {"highPass": 18}  # to the right, away from the button's name beside it

PUSH_NAMES = {
    "pad": "PAD", "meter mode": "VU INPUT", "unity": "UNITY", "equalizer": "EQ IN", "eqPost": "POST", "midMode": "BOOST",
    "compLimit": "LIMITER", "compIn": "DYN IN", "compNiveau": "NIVEAU", "compNuke": "SMASH", "expHold": "HOLD",
    "expInverted": "INVERT",
}
PUSH_NAME_DROP = 78
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
        if knob["parameter"] in KNOB_NAMES:
            x, y = layout.centre(knob)
            drop = HIGHER_NAMES.get(knob["parameter"], KNOB_NAME_DROP[knob["w"]])
            named(ink, x + KNOB_NAME_SHIFT.get(knob["parameter"], 0), y +
                  drop, KNOB_NAMES[knob["parameter"]], scales.unit_of(knob))


def bands(ink):
    for name, gain in BANDS:
        knob = layout.find("knob", gain)
        y = layout.centre(knob)[1]
        ink.text(BAND_LEFT, y - 22, name, HEAD_SIZE, IVORY, "left", 0.06)
        named(ink, BAND_LEFT, y + 22, "GAIN", scales.unit_of(knob), "left")


def name_row(control, row):
    """The row of a button's name: its own, or the common one of the bottom row."""
    return BOTTOM_NAMES_ROW if control["y"] > BOTTOM_ROW_TOP else row


def buttons(ink):
    for switch in layout.of("switch"):
        scales.switch(ink, switch)
        x, y = layout.centre(switch)
        unit = "" if switch["parameter"] in scales.UNIT_IN_WORDS else scales.unit_of(switch)
        name = switch["parameter"]
        named(ink, x + SWITCH_NAME_SHIFT.get(name, 0), name_row(switch, y + SWITCH_NAME_DROP), SWITCH_NAMES[name], unit)
    for push in layout.of("push"):
        name = PUSH_NAMES[push.get("parameter", push.get("name"))]
        named(ink, push["x"] + 90, name_row(push, push["y"] + 90 + PUSH_NAME_DROP), name)


def lights(ink):
    for name, text in (("compressor LED", "LIMITING"), ("expander LED", "ACTIVE")):
        x, y = layout.centre(layout.find("led", name))
        ink.text(x, y - 52, text, UNIT_SIZE, SECONDARY, tracking=0.04)


def output_section(ink, cap_half_width):
    fader = layout.find("fader", "level")
    scales.fader(ink, fader, cap_half_width)
    x = layout.centre(fader)[0]
    named(ink, x, 324, "LEVEL", fader["unit"])
    for kind, text in (("mute", "MUTE"), ("phase", "PHASE")):
        key = layout.of(kind)[0]
        named(ink, layout.centre(key)[0], key["y"] + key["h"] + 6, text)


def everything(ink, cap_half_width):
    heads(ink)
    knobs(ink)
    bands(ink)
    buttons(ink)
    lights(ink)
    trim = layout.find("trim", "thd")
    scales.trim(ink, trim)
    x, y = layout.centre(trim)
    named(ink, x, y + 92, "THD", trim["unit"])
    output_section(ink, cap_half_width)
    meters = layout.of("meter")
    middle = meters[0]["x"] + meters[0]["w"] / 2.0
    for meter, text in zip(meters, ("LEVEL", "GAIN REDUCTION")):
        ink.text(middle, meter["y"] + meter["h"] + 116, text, UNIT_SIZE, SECONDARY, tracking=0.08)
    ink.text(middle, 928, PRODUCT, 34, IVORY, tracking=0.14)
