# SPDX-License-Identifier: GPL-3.0-or-later
"""Turned and moulded shapes: everything on the panel is either a profile spun round z or a stack of outlines."""
import math

import bpy


def lathe(name, profile, material, segments=192, radius=None, smooth_degrees=38.0, lid=True):
    """Spins profile, a list of (r, z) from the outside or bottom towards the centre or top.

    radius (r, z, angle) may bend r with the angle, which is clockwise from the top of the picture, in radians. lid closes
    the hole that the last ring leaves.
    """
    vertices, faces = [], []
    for r, z in profile:
        for i in range(segments):
            angle = 2 * math.pi * i / segments
            bent = radius(r, z, angle) if radius else r
            vertices.append((bent * math.sin(angle), bent * math.cos(angle), z))
    for ring in range(len(profile) - 1):
        for i in range(segments):
            j = (i + 1) % segments
            a, b = ring * segments, (ring + 1) * segments
            faces.append((a + i, b + i, b + j, a + j))
    if lid:
        top = (len(profile) - 1) * segments
        faces.append(tuple(range(top + segments - 1, top - 1, -1)))
    return _object(name, vertices, faces, material, smooth_degrees)


def loft(name, outlines, material, smooth_degrees=38.0, dish=None, lid=True, corner_steps=10, edge_steps=24):
    """Stacks rounded rectangles (half_width, half_height, corner, z) from the bottom up; lid closes the top.

    dish (x, y) lowers or lifts the top face, which is then filled with rings that shrink to its centre.
    """
    rings = list(outlines)
    w, h, c, z = outlines[-1]
    if dish:
        inner_rings = 24
        for i in range(1, inner_rings + 1):
            t = 1.0 - i / inner_rings
            rings.append((w * t, h * t, c * t, z))
    vertices, faces = [], []
    count = 0
    for index, (w, h, c, z) in enumerate(rings):
        outline = _rounded_rectangle(w, h, c, corner_steps, edge_steps)
        count = len(outline)
        on_top = index >= len(outlines) - 1
        vertices += [(x, y, z + (dish(x, y) if dish and on_top else 0.0)) for x, y in outline]
    for ring in range(len(rings) - 1):
        for i in range(count):
            j = (i + 1) % count
            a, b = ring * count, (ring + 1) * count
            faces.append((a + i, b + i, b + j, a + j))
    if lid and not dish:
        top = (len(rings) - 1) * count
        faces.append(tuple(range(top + count - 1, top - 1, -1)))
    return _object(name, vertices, faces, material, smooth_degrees)


def rounded_edge(half_width, half_height, corner, z, bevel, steps=6):
    """Outlines of a quarter-round edge that ends at height z, bevel inside the given rectangle."""
    outlines = []
    for i in range(steps + 1):
        t = 0.5 * math.pi * i / steps
        inset = bevel * (1 - math.cos(t))
        outlines.append((half_width - inset, half_height - inset,
                        max(corner - inset, 0.005), z - bevel * (1 - math.sin(t))))
    return outlines


def sheet(name, half_width, half_height, height, material, columns, rows, smooth_degrees=60.0):
    """A fine rectangular grid round the origin whose z is height (x, y)."""
    vertices = []
    for j in range(rows + 1):
        for i in range(columns + 1):
            x, y = half_width * (2 * i / columns - 1), half_height * (2 * j / rows - 1)
            vertices.append((x, y, height(x, y)))
    faces = []
    for j in range(rows):
        for i in range(columns):
            corner = j * (columns + 1) + i
            faces.append((corner, corner + 1, corner + columns + 2, corner + columns + 1))
    return _object(name, vertices, faces, material, smooth_degrees)


def arc_profile(centre_r, centre_z, radius, start_degrees, end_degrees, steps=8):
    """Points of a circular arc in a lathe's profile; 0 degrees points outwards, 90 up."""
    points = []
    for i in range(steps + 1):
        t = math.radians(start_degrees + (end_degrees - start_degrees) * i / steps)
        points.append((centre_r + radius * math.cos(t), centre_z + radius * math.sin(t)))
    return points


def lettering(text, font_path, size, material, z, depth=0.004):
    """A word in the given font, centred by its ink on the origin, standing on height z; size is the em in units."""
    curve = bpy.data.curves.new(text, "FONT")
    curve.body = text
    curve.font = bpy.data.fonts.load(font_path)
    curve.size = size
    curve.extrude = depth
    letters = bpy.data.objects.new(text, curve)
    bpy.context.scene.collection.objects.link(letters)
    bpy.context.view_layer.update()
    xs = [corner[0] for corner in letters.bound_box]
    ys = [corner[1] for corner in letters.bound_box]
    letters.location = (-(min(xs) + max(xs)) / 2, -(min(ys) + max(ys)) / 2, z)
    letters.data.materials.append(material)
    return letters


def _rounded_rectangle(w, h, c, corner_steps, edge_steps):
    """Anticlockwise outline; the corner's radius is limited to the shorter half side."""
    c = min(c, w, h)
    points = []
    for corner, (sx, sy) in enumerate(((1, 1), (-1, 1), (-1, -1), (1, -1))):
        start = 0.5 * math.pi * corner
        for i in range(corner_steps + 1):
            t = start + 0.5 * math.pi * i / corner_steps
            points.append((sx * (w - c) + c * math.cos(t), sy * (h - c) + c * math.sin(t)))
        ax, ay = points[-1]
        bx, by = ((-(w - c), h), (-w, -(h - c)), (w - c, -h), (w, h - c))[corner]
        for i in range(1, edge_steps):
            t = i / edge_steps
            points.append((ax + (bx - ax) * t, ay + (by - ay) * t))
    return points


def _object(name, vertices, faces, material, smooth_degrees):
    mesh = bpy.data.meshes.new(name)
    mesh.from_pydata(vertices, [], faces)
    mesh.update()
    mesh.polygons.foreach_set("use_smooth", [True] * len(mesh.polygons))
    mesh.use_auto_smooth = True
    mesh.auto_smooth_angle = math.radians(smooth_degrees)
    mesh.materials.append(material)
    solid = bpy.data.objects.new(name, mesh)
    bpy.context.scene.collection.objects.link(solid)
    return solid
