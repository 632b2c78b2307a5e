# SPDX-License-Identifier: GPL-3.0-or-later
"""The channel's display plates, 540 x 196: a slim dark frame round a strip of warm ivory, lit from behind.

The program writes the name and the numbers. The plate shows a field for each number, under the number's label.
"""
import numpy as np

import layout
import output
from ink import Ink
from palette import PLATE, PLATE_FRAME
from surface import Region, noise

FRAME = 5
FIELD_COLOUR = (214, 206, 186)
FIELDS = {"plate-mono": ["left channel number"], "plate-stereo": ["left channel number", "right channel number"]}


def plate(name):
    box = layout.find("picture", "channel display")
    width, height = box["w"], box["h"]
    picture = np.empty((height, width, 3), np.float32)
    picture[:] = PLATE_FRAME
    pane = Region(FRAME, FRAME, width - FRAME, height - FRAME, 9, margin=12, limits=(width, height))
    y, x = np.mgrid[0:height, 0:width].astype(np.float32)
    lit = 1.0 - 0.10 * (np.abs(x / width - 0.5) * 2) ** 2.5 - 0.08 * (np.abs(y / height - 0.45) * 2) ** 2.5
    lit = lit * (1.0 + 0.006 * noise(height, width, 3, 3, 7))
    depth = -pane.distance
    lit = lit * (1.0 - 0.30 * np.exp(-np.clip(depth, 0, None) / 5.0))
    inside = pane.inside()
    picture = picture * (1 - inside) + np.array(PLATE, np.float32) * lit[..., None] * inside
    sheet = Ink(width, height)
    for label in FIELDS[name]:
        place = layout.find("label", label)
        sheet.fill_rounded(place["x"] - box["x"] + FRAME + 3, place["y"] - box["y"] + FRAME + 3, place["w"] - 2 * FRAME + 4,
                           place["h"] - FRAME - 4, 7, FIELD_COLOUR)
    first = layout.find("label", "channel name")
    top = first["y"] - box["y"] - 1
    sheet.line([(14, top), (width - 14, top)], 2, FIELD_COLOUR)
    sheet.onto(picture)
    return output.rounded(picture)


if __name__ == "__main__":
    output.run({name: (lambda name=name: plate(name)) for name in FIELDS})
