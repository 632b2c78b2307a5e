# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs a drawing program: NAME=PATH pairs on the command line say which of its pictures go where."""
import sys

import numpy as np
from PIL import Image


def rounded(picture):
    """Floats of 0 to 255 as 8 bit numbers."""
    return np.clip(picture + 0.5, 0, 255).astype(np.uint8)


def run(drawings):
    """drawings: name -> function that returns 8 bit pixels, [height, width, 3] or [height, width, 4]."""
    for pair in sys.argv[1:]:
        name, path = pair.split("=", 1)
        if name not in drawings:
            raise SystemExit(f"{sys.argv[0]} draws no {name}")
        Image.fromarray(drawings[name]()).save(path)
