# SPDX-License-Identifier: GPL-3.0-or-later
"""The console's background, 2700 x 2030, and the word OUTPUT that is laid over the INPUT of its VU meter."""
import functools
import pathlib

import numpy as np
from PIL import Image, ImageFilter

import layout
import legends
import meters
import output
from ink import Ink
from palette import BAY, FIELD, SLATE
from surface import Region, brushed, light_fall, recess

PARTS = pathlib.Path(__file__).resolve().parent.parent / "parts"
SEED = 41
RADIUS = 18
FIELD_RATIO = np.array(FIELD, np.float32) / np.array(SLATE, np.float32)
BAY_RATIO = np.array(BAY, np.float32) / np.array(SLATE, np.float32)

CAP_HALF_WIDTH = 80  # of the fader's cap
SLOT_HALF_WIDTH = 13
TONGUE, TONGUE_RADIUS = (1500, 1342, 1917, 1692), 146  # the compressor's OUTPUT stands in the expander's column
SCREWS = [(44, 1972), (2656, 1972), (2656, 46)]
SCREW_SIZE = 52
GLASS_MARGIN = 12
PRINT_REACH, PRINT_SHARE = 9, 0.12  # how far a border keeps off the print, and from which share of ink on
METER_SCREW_SIZE = 40


def metal():
    """Anodised slate, finely brushed, a little lighter at the top."""
    height, width = layout.HEIGHT, layout.WIDTH
    texture = brushed(height, width, SEED)[..., None]
    return np.array(SLATE, np.float32) * texture * light_fall(height)


def fields(picture, print_there):
    """Five sections, and two dark bays for the meters and the channel plate. Right and lower borders are the next one's.
    Where print_there, 0 to 1, comes near a border it is interrupted."""
    open_field = picture * FIELD_RATIO
    channel = Region(1610, 14, 2178, 324, RADIUS)
    compressor = Region(1078, 14, 1622, 2012, RADIUS, margin=320).cut(channel, 6).add(*TONGUE, TONGUE_RADIUS, 30)
    expander = Region(1628, 332, 2178, 2012, RADIUS).cut(Region(*TONGUE, TONGUE_RADIUS, margin=120), 6)
    for region in (Region(14, 1004, 510, 2012, RADIUS), Region(518, 14, 1070, 2012, RADIUS), compressor, expander,
                   Region(2186, 14, 2686, 2012, RADIUS)):
        recess(picture, region, FIELD_RATIO, bevel=4)
    near = near_print(print_there)
    picture += (open_field - picture) * near
    for region in (Region(14, 14, 510, 996, RADIUS), channel):
        recess(picture, region, BAY_RATIO, bevel=4, dark=0.6, bright=0.4, inner_shadow=0.25)


def near_print(print_there):
    """1 on and close to the print, down to 0 at some distance [height, width, 1]."""
    blurred = Image.fromarray((print_there * 255).astype(np.uint8)).filter(ImageFilter.GaussianBlur(PRINT_REACH))
    return np.clip(np.asarray(blurred, np.float32)[..., None] / 255.0 / PRINT_SHARE - 0.15, 0, 1)


def windows(picture):
    """Dark glass behind both readouts, wider than the labels, which their longest texts fill."""
    for name in ("filter readout", "mix readout"):
        label = layout.find("label", name)
        x, y = layout.centre(label)
        half_width, half_height = label["w"] / 2.0 + GLASS_MARGIN, 25
        recess(picture, Region(x - half_width, y - half_height, x + half_width, y + half_height, 9), 0.36, bevel=3,
               dark=0.7, bright=0.5, inner_shadow=0.4, shadow_reach=12)


def fader_slot(picture):
    fader = layout.find("fader", "level")
    x = layout.centre(fader)[0]
    ends = [mark["y"] for mark in fader["scale"]]
    recess(picture, Region(x - 40, min(ends) - 56, x + 40, max(ends) + 56, 20), 0.80, bevel=4, dark=0.4, bright=0.3)
    recess(picture, Region(x - SLOT_HALF_WIDTH, min(ends) - 34, x + SLOT_HALF_WIDTH, max(ends) + 34, SLOT_HALF_WIDTH),
           0.16, bevel=3, dark=0.6, bright=0.9, inner_shadow=0.6, shadow_reach=9)


def cradle(picture):
    """A well under the trim, so that it looks set into the panel."""
    trim = layout.find("trim", "thd")
    x, y = layout.centre(trim)
    r = trim["w"] / 2.0 + 1
    recess(picture, Region(x - r, y - r, x + r, y + r, r), 0.35, bevel=3, dark=0.6, bright=0.8)


def wells(picture):
    """Shallow dark openings round the push buttons' caps and under the mute and phase keys."""
    for push in layout.of("push"):
        x, y = push["x"] + 90, push["y"] + 91
        recess(picture, Region(x - 53, y - 53, x + 53, y + 53, 15), 0.52, bevel=3, dark=0.6, bright=0.5)


@functools.cache
def part(name, width, height):
    """A solid part's picture, premultiplied floats of 0 to 255, at another size if need be."""
    image = Image.open(PARTS / f"{name}.png").convert("RGBa")
    if image.size != (width, height):
        image = image.resize((width, height), Image.Resampling.BOX if width < image.width else Image.Resampling.BICUBIC)
    return np.asarray(image, np.float32)


def paste(picture, name, x, y, width, height):
    pixels = part(name, int(width), int(height))
    x, y = int(round(x)), int(round(y))
    under = picture[y:y + pixels.shape[0], x:x + pixels.shape[1]]
    under *= 1.0 - pixels[..., 3:] / 255.0
    under += pixels[..., :3]


def contacts(picture):
    """The dark round the knobs' feet, below the print: the knobs' own shadows lie above it."""
    for knob in layout.of("knob"):
        paste(picture, "knob-contact", knob["x"], knob["y"], knob["w"], knob["h"])


def fittings(picture):
    for lamp in layout.of("lamp"):
        paste(picture, lamp["picture"].replace("lamp-", "lamp-socket-"), lamp["x"], lamp["y"], lamp["w"], lamp["h"])
    for name, colour in (("compressor LED", "red"), ("expander LED", "green")):
        led = layout.find("led", name)
        paste(picture, f"led-socket-{colour}", led["x"], led["y"], led["w"], led["h"])
    for x, y in SCREWS:
        paste(picture, "screw", x - SCREW_SIZE / 2, y - SCREW_SIZE / 2, SCREW_SIZE, SCREW_SIZE)
    for meter in layout.of("meter"):
        for x in (meter["x"] - 2, meter["x"] + meter["w"] + 2):
            y = meter["y"] + meter["h"] + 38
            paste(picture, "screw", x - METER_SCREW_SIZE / 2, y -
                  METER_SCREW_SIZE / 2, METER_SCREW_SIZE, METER_SCREW_SIZE)


@functools.cache
def draw():
    """The panel and the legend that covers a part of it."""
    sheet = Ink(layout.WIDTH, layout.HEIGHT)
    legends.everything(sheet, CAP_HALF_WIDTH)
    picture = metal()
    fields(picture, sheet.premultiplied()[..., 3])
    windows(picture)
    fader_slot(picture)
    cradle(picture)
    wells(picture)
    vu, reduction = layout.find("meter", "VU"), layout.find("meter", "gain reduction")
    for meter in (vu, reduction):
        meters.glass(picture, meter)
    contacts(picture)
    sheet.onto(picture)
    meters.print_on(picture, reduction, "GR", "dB")
    box = layout.find("picture", "output legend")
    rows, columns = slice(box["y"], box["y"] + box["h"]), slice(box["x"], box["x"] + box["w"])
    other = picture.copy()
    meters.print_on(other, vu, "VU", "OUTPUT", over_from=0)
    meters.print_on(picture, vu, "VU", "INPUT", over_from=0)
    fittings(picture)
    grain = np.random.default_rng(SEED + 9).uniform(-0.5, 0.5, picture.shape[:2])[..., None]  # against bands of colour
    return output.rounded(picture + grain), output.rounded(other[rows, columns] + grain[rows, columns])


if __name__ == "__main__":
    output.run({"panel": lambda: draw()[0], "legend-output": lambda: draw()[1]})
