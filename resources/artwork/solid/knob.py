# SPDX-License-Identifier: GPL-3.0-or-later
"""Both knobs as filmstrips of 98 frames, 300 x 300 each: frame k points 180 + 360 k / 98 degrees clockwise from the top.

The light stays where it is while the knob turns. The fluted grip repeats 14 times in a turn, that is every 7 frames, and
cap, ring and skirt look the same in all of them. So each frame is rendered with an eighth of the light paths, and away
from the pointers the grip is the mean of the 14 frames of its phase, the rest the mean of all; only the small window
round the pointer is rendered with all paths.
"""
import math
import os
import sys

import bpy
import numpy as np

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import materials as m
from shapes import arc_profile, lathe
from studio import Studio, develop, fade_to_border, over_shadow, run

FRAMES = 98
SIDE = 300
PHASES = 7  # frames after which the body looks the same again
POINTER_CLEARANCE = 0.11  # units beside the pointer's axis within which a frame keeps its own pixels
POINTER_REACH = (0.45, 1.2)  # from the axis of the knob; covers the pointers of both styles
POINTER_GLOW = 0.42


class Shape:
    """Radii and heights of one style in units of 100 pixels; flutes must be a multiple of 14."""

    def __init__(self, skirt, grip_base, grip_top, ring_inner, height, flutes, flute_depth, pointer_half_width):
        self.skirt, self.grip_base, self.grip_top, self.ring_inner = skirt, grip_base, grip_top, ring_inner
        self.height, self.flutes, self.flute_depth = height, flutes, flute_depth
        self.pointer_half_width = pointer_half_width


STANDARD = Shape(skirt=1.08, grip_base=0.86, grip_top=0.71, ring_inner=0.575, height=0.58, flutes=42, flute_depth=0.035,
                 pointer_half_width=0.042)
LARGE = Shape(skirt=1.16, grip_base=0.95, grip_top=0.79, ring_inner=0.66, height=0.66, flutes=28, flute_depth=0.060,
              pointer_half_width=0.047)


def build(shape, aluminium):
    """Puts a knob into the studio, its pointer upwards; returns the object that turns it."""
    line = dict(colour=m.IVORY, half_width=shape.pointer_half_width, start=shape.ring_inner - 0.085,
                end=shape.skirt - 0.012, glow=POINTER_GLOW)
    graphite = m.with_line(m.solid("graphite", m.GRAPHITE, roughness=0.36, specular=0.5), **line)
    satin = m.with_line(m.solid("satin", m.STEEL, roughness=0.26, metallic=1.0, anisotropic=0.5), **line)
    if aluminium:
        face = m.turned(m.solid("spun aluminium", m.ALUMINIUM, roughness=0.30,
                        metallic=1.0, anisotropic=0.88), 0.03, 0.10)
    else:
        face = m.solid("petrol", m.PETROL, roughness=0.34, specular=0.5, clearcoat=0.5)
    face = m.with_line(face, **line)

    s, h = shape, shape.height
    skirt_top = 0.17
    skirt = [(s.skirt - 0.05, 0.02), (s.skirt, 0.05), (s.skirt, skirt_top - 0.055)]
    skirt += arc_profile(s.skirt - 0.045, skirt_top - 0.05, 0.045, 0, 80)
    skirt += [(s.skirt - 0.10, skirt_top + 0.004), (s.grip_base + 0.02,
                                                    skirt_top + 0.07), (s.grip_base - 0.1, skirt_top + 0.08)]

    grip = [(s.grip_base + 0.018, skirt_top + 0.05)]
    grip += arc_profile(s.grip_base + 0.02, skirt_top + 0.10, 0.04, 260, 190)
    steps, foot = 10, skirt_top + 0.12
    for i in range(steps + 1):
        t = i / steps
        grip.append((s.grip_base - 0.02 + (s.grip_top + 0.015 - s.grip_base + 0.02) * t, foot + (h - 0.06 - foot) * t))
    grip += arc_profile(s.grip_top - 0.045, h - 0.06, 0.06, 8, 90)
    grip += [(s.grip_top - 0.09, h - 0.012), (s.grip_top - 0.10, h - 0.20)]

    def fluted(r, z, angle):
        low, high = skirt_top + 0.05, h - 0.015
        t = min(max((z - low) / 0.10, 0.0), 1.0) * min(max((high - z) / 0.08, 0.0), 1.0)
        if r < s.grip_top - 0.07:
            t = 0.0
        # A rib stands at the pointer; valleys are round, ribs narrow.
        valley = (0.5 - 0.5 * math.cos(s.flutes * angle)) ** 0.8
        return r - s.flute_depth * t * valley

    outer, inner = s.grip_top - 0.085, s.ring_inner
    ring = [(outer, h - 0.08), (outer, h - 0.004)] + arc_profile(outer - 0.018, h - 0.004, 0.018, 0, 90, 5)
    ring += arc_profile(inner + 0.014, h - 0.004, 0.018, 90, 170, 5) + [(inner, h - 0.08)]

    rim = inner - 0.012
    cap = [(rim, h - 0.08), (rim, h - 0.020)] + arc_profile(rim - 0.022, h - 0.024, 0.022, 0, 90, 6)
    dish = 0.03 if aluminium else 0.075
    flat = rim - 0.03
    cap += [(flat * (1 - i / 24), h - 0.003 - dish * (1 - (1 - i / 24) ** 2)) for i in range(1, 24)]
    cap += [(0.002, h - 0.003 - dish)]

    axis = bpy.data.objects.new("axis", None)
    bpy.context.scene.collection.objects.link(axis)
    segments = s.flutes * 16
    for part in (lathe("skirt", skirt, graphite, 288), lathe("grip", grip, graphite, segments, fluted, 50),
                 lathe("ring", ring, satin, 288), lathe("cap", cap, face, 288)):
        part.parent = axis
    return axis


def strip(shape, aluminium, samples):
    """Renders all frames of one style and lays them side by side."""
    studio = Studio(SIDE, SIDE)
    axis = build(shape, aluminium)
    # Weaker than that of lower parts: numerals stand in it.
    shadow = fade_to_border(studio.expose_shadow(samples, strength=0.58, soften=1.2), 24)

    own = np.stack([pointer_weight(k) for k in range(FRAMES)])[..., None]
    frames, pointers = np.empty((2, FRAMES, SIDE, SIDE, 4), np.float32)
    for k in range(FRAMES):
        axis.rotation_euler = (0, 0, -math.radians(pointer_degrees(k)))
        frames[k] = studio.expose(math.ceil(samples / 8), seed=k + 1)
        pointers[k] = studio.expose(samples, seed=FRAMES + k + 1, window=window_of(own[k, ..., 0]))

    def mean(which):
        weights = 1.0 - own[which]
        return (frames[which] * weights).sum(axis=0) / weights.sum(axis=0)

    round_parts, on_grip = mean(slice(None)), grip_weight(shape)[..., None]
    phases = [on_grip * mean(slice(p, None, PHASES)) + (1.0 - on_grip) * round_parts for p in range(PHASES)]

    pictures = []
    for k in range(FRAMES):
        frame = own[k] * pointers[k] + (1.0 - own[k]) * phases[k % PHASES]
        pictures.append(develop(over_shadow(frame, shadow)))
    return np.concatenate(pictures, axis=1)


def pointer_degrees(frame):
    """Direction of a frame's pointer, clockwise from the top."""
    return 180.0 + 360.0 * frame / FRAMES


def window_of(weight):
    """The smallest window (left, top, right, bottom) that holds all weights above zero."""
    rows, columns = np.nonzero(weight.any(axis=1))[0], np.nonzero(weight.any(axis=0))[0]
    return columns[0], rows[0], columns[-1] + 1, rows[-1] + 1


def places():
    """x to the right and y upwards of every pixel's centre, in units from the knob's axis."""
    row, column = np.mgrid[0:SIDE, 0:SIDE]
    return (column + 0.5 - SIDE / 2) / 100.0, (SIDE / 2 - row - 0.5) / 100.0


def grip_weight(shape):
    """1 on the flutes, 0 on what is round; float32 [SIDE, SIDE]."""
    r = np.hypot(*places())
    inside = np.minimum(r - (shape.grip_top - 0.085), shape.grip_base + 0.06 - r)
    return np.clip(inside / 0.03 + 0.5, 0.0, 1.0).astype(np.float32)


def pointer_weight(frame):
    """1 on and near a frame's pointer, 0 well away from it; float32 [SIDE, SIDE]."""
    angle = math.radians(pointer_degrees(frame))
    x, y = places()
    along = x * math.sin(angle) + y * math.cos(angle)
    aside = np.abs(x * math.cos(angle) - y * math.sin(angle))
    distance = np.hypot(aside, np.maximum(np.maximum(POINTER_REACH[0] - along, along - POINTER_REACH[1]), 0.0))
    return np.clip((POINTER_CLEARANCE - distance) / 0.03, 0.0, 1.0).astype(np.float32)


if __name__ == "__main__":
    run({
        "knob-standard": lambda samples: strip(STANDARD, False, samples or 96),
        "knob-large": lambda samples: strip(LARGE, True, samples or 96),
    })
