# SPDX-License-Identifier: GPL-3.0-or-later
"""The fader's cap, 300 x 500: a long charcoal key, hollowed and ribbed for the finger, with an index line in its middle.

The picture's middle row is the fader's position.
"""
import math
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import materials as m
from shapes import loft, rounded_edge
from studio import Studio, develop, fade_to_border, over_shadow, run

WIDTH, HEIGHT = 300, 500
HALF_WIDTH, HALF_LENGTH = 0.80, 1.72
RISE = 0.62
HOLLOW = 0.26  # depth of the finger's hollow at the index line
RIB_PITCH, RIB_DEPTH = 0.13, 0.030
LINE_HALF_WIDTH = 0.035


def face(x, y):
    """Height of the finger face against its rim: a cylinder's hollow along y, with ribs across it."""
    reach = HALF_LENGTH - 0.26
    t = min(abs(y) / reach, 1.0)
    hollow = -HOLLOW * (1 - t * t)
    on_ribs = min(max((abs(y) - 0.15) / 0.05, 0.0), 1.0) * min(max((reach - 0.06 - abs(y)) / 0.08, 0.0), 1.0)
    rib = -RIB_DEPTH * on_ribs * (0.5 - 0.5 * math.cos(2 * math.pi * (abs(y) - 0.15) / RIB_PITCH))
    return hollow + rib


def build():
    charcoal = m.solid("charcoal", m.CHARCOAL, roughness=0.42, grain=0.15, grain_size=80)
    ivory = m.solid("index", m.IVORY, roughness=0.5, glow=0.22)
    w, l = HALF_WIDTH, HALF_LENGTH
    sides = [(w, l, 0.10, 0.06), (w, l, 0.10, 0.10), (w - 0.045, l - 0.05, 0.09, RISE - 0.10)]
    sides += rounded_edge(w - 0.05, l - 0.06, 0.10, RISE, 0.055)
    loft("cap sides", sides, charcoal)
    bpy_remove_top("cap sides")

    # The finger face is a fine grid, so that the ribs have round tops.
    grid_face(w - 0.103, l - 0.113, charcoal)
    index_line(w - 0.103, ivory)


def bpy_remove_top(name):
    import bmesh
    import bpy
    mesh = bpy.data.objects[name].data
    editable = bmesh.new()
    editable.from_mesh(mesh)
    top = max(editable.faces, key=lambda polygon: len(polygon.verts))
    bmesh.ops.delete(editable, geom=[top], context="FACES_ONLY")
    editable.to_mesh(mesh)
    editable.free()


def grid_face(half_width, half_length, material, rows=700, columns=24):
    from shapes import _object
    vertices = [(half_width * (2 * i / columns - 1), y, RISE + face(0, y))
                for y in (half_length * (2 * j / rows - 1) for j in range(rows + 1)) for i in range(columns + 1)]
    stride = columns + 1
    faces = [(j * stride + i, j * stride + i + 1, (j + 1) * stride + i + 1, (j + 1) * stride + i)
             for j in range(rows) for i in range(columns)]
    return _object("finger face", vertices, faces, material, 60)


def index_line(half_width, material):
    z = RISE + face(0, 0)
    loft("index", [(half_width, LINE_HALF_WIDTH, 0.005, z - 0.02), (half_width, LINE_HALF_WIDTH, 0.005, z + 0.012)], material)


def draw(samples):
    studio = Studio(WIDTH, HEIGHT)
    build()
    shadow = fade_to_border(studio.expose_shadow(2 * samples, strength=0.85), 40)
    return develop(over_shadow(studio.expose(samples), shadow))


if __name__ == "__main__":
    run({"fader-cap": lambda samples: draw(samples or 256)})
