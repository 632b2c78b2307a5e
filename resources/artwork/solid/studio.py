# SPDX-License-Identifier: GPL-3.0-or-later
"""The one studio in which every solid part is photographed: camera, light, film, and the pictures' way to the disk.

One Blender unit is 100 design pixels (the panel is 2700 x 2030 of them). The camera looks straight down, +y is up in the
picture, and the panel's surface is z = 0. The light never moves: a warm key from the upper left, a faint cool rim from
the lower right, and a dome that is bright overhead, so that metal has something to mirror.

Cycles writes linear light as floats; the film curve, shadows and edges are done here in numpy, since this Blender has no
denoiser and 8 bits are too few to add pictures in.
"""
import argparse
import math
import os
import sys
import tempfile

import bpy
import numpy as np
from PIL import Image

PIXELS_PER_UNIT = 100.0

# Azimuths are clockwise from the top of the picture, elevations above the panel; both in degrees.
KEY = dict(azimuth=-42.0, elevation=46.0, distance=11.0, size=4.6, watts=1500.0, colour=(1.0, 0.945, 0.86))
RIM = dict(azimuth=135.0, elevation=24.0, distance=9.0, size=2.2, watts=150.0, colour=(0.72, 0.86, 1.0))


class Studio:
    """An empty scene for one picture of width x height pixels; design_per_pixel is above 1 where the window enlarges it."""

    def __init__(self, width, height, design_per_pixel=1.0):
        bpy.ops.wm.read_factory_settings(use_empty=True)
        self.width, self.height = width, height
        scene = self.scene = bpy.context.scene
        scene.render.engine = "CYCLES"
        scene.cycles.device = "CPU"
        scene.cycles.use_denoising = False
        scene.cycles.use_adaptive_sampling = False
        scene.cycles.sample_clamp_indirect = 4.0
        scene.cycles.max_bounces, scene.cycles.diffuse_bounces, scene.cycles.glossy_bounces = 4, 2, 3
        scene.cycles.filter_width = 1.25
        scene.render.film_transparent = True
        scene.render.use_persistent_data = True
        scene.render.resolution_x, scene.render.resolution_y = width, height
        scene.render.image_settings.file_format = "OPEN_EXR"
        scene.render.image_settings.color_mode = "RGBA"
        scene.render.image_settings.color_depth = "32"

        camera = bpy.data.cameras.new("camera")
        camera.type = "ORTHO"
        camera.ortho_scale = max(width, height) * design_per_pixel / PIXELS_PER_UNIT
        self.camera = bpy.data.objects.new("camera", camera)
        self.camera.location = (0, 0, 20)
        scene.collection.objects.link(self.camera)
        scene.camera = self.camera

        self.key, self.rim = _area_light("key", **KEY), _area_light("rim", **RIM)
        self.world = _dome()
        scene.world = self.world

    def light(self, key=1.0, rim=1.0, dome=1.0):
        """Scales the three lights' strength; 0 switches one off."""
        self.key.data.energy = KEY["watts"] * key
        self.rim.data.energy = RIM["watts"] * rim
        self.world.node_tree.nodes["Background"].inputs["Strength"].default_value = dome

    def expose(self, samples, seed=0, window=None):
        """Renders; returns linear light as float32 [height, width, 4], top row first, colour multiplied by alpha.

        window (left, top, right, bottom), in pixels, leaves everything outside it black and clear.
        """
        self.scene.cycles.samples = samples
        self.scene.cycles.seed = seed
        render = self.scene.render
        render.use_border = window is not None
        if window:
            left, top, right, bottom = window
            render.border_min_x, render.border_max_x = left / self.width, right / self.width
            render.border_min_y, render.border_max_y = 1 - bottom / self.height, 1 - top / self.height
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "film.exr")
            self.scene.render.filepath = path
            with _quiet():
                bpy.ops.render.render(write_still=True)
            film = bpy.data.images.load(path)
            pixels = np.empty(self.width * self.height * 4, np.float32)
            film.pixels.foreach_get(pixels)
            bpy.data.images.remove(film)
        return pixels.reshape(self.height, self.width, 4)[::-1].copy()

    def expose_shadow(self, samples, z=0.0, strength=1.0, soften=0.0):
        """The shadow that what stands in the studio casts on a plane at height z: alpha only, float32 [height, width].

        soften is the sigma, in pixels, of a blur that takes the noise out.
        """
        floor = _plane(z)
        floor.is_shadow_catcher = True
        solids = [o for o in self.scene.objects if o.type in ("MESH", "FONT", "CURVE") and o is not floor]
        for solid in solids:
            solid.visible_camera = False
        alpha = self.expose(samples)[..., 3] * strength
        for solid in solids:
            solid.visible_camera = True
        bpy.data.objects.remove(floor)
        return np.clip(blur(alpha, soften) if soften else alpha, 0.0, 1.0)


def develop(film):
    """Linear light, multiplied by alpha, to the 8-bit RGBA that a PNG holds (not multiplied). Highlights roll off softly."""
    alpha = np.clip(film[..., 3:], 0.0, 1.0)
    colour = np.where(alpha > 1e-4, film[..., :3] / np.maximum(alpha, 1e-4), 0.0)
    colour = np.maximum(colour, 0.0)
    knee = 0.72
    over = np.maximum(colour - knee, 0.0)
    colour = np.minimum(colour, knee) + (1.0 - knee) * (1.0 - np.exp(-over / (1.0 - knee)))
    encoded = np.where(colour <= 0.0031308, 12.92 * colour, 1.055 * np.power(colour, 1 / 2.4) - 0.055)
    picture = np.concatenate([encoded, alpha], axis=-1)
    picture = np.round(np.clip(picture, 0.0, 1.0) * 255.0).astype(np.uint8)
    picture[picture[..., 3] == 0] = 0
    return picture


def over_shadow(film, shadow):
    """Puts a black shadow (alpha, [height, width]) under a film."""
    result = film.copy()
    result[..., 3] = film[..., 3] + shadow * (1.0 - film[..., 3])
    return result


def fade_to_border(shadow, margin):
    """Lets an alpha fall smoothly to zero over the last margin pixels before each border."""
    height, width = shadow.shape
    y, x = np.mgrid[0:height, 0:width]
    distance = np.minimum(np.minimum(x, width - 1 - x), np.minimum(y, height - 1 - y))
    t = np.clip((distance - 0.5) / margin, 0.0, 1.0)
    return shadow * t * t * (3.0 - 2.0 * t)


def blur(picture, sigma):
    """Gaussian blur of a 2-D array, sigma in pixels; zero beyond the borders."""
    radius = max(1, int(math.ceil(3 * sigma)))
    kernel = np.exp(-0.5 * (np.arange(-radius, radius + 1) / sigma) ** 2)
    kernel /= kernel.sum()
    for axis in (0, 1):
        picture = np.apply_along_axis(lambda line: np.convolve(
            line, kernel, mode="full")[radius:-radius], axis, picture)
    return picture


def run(drawings):
    """Command line of a program: drawings maps a picture's name to a function of the sample count that returns RGBA bytes.

    blender -b --factory-startup --python PROGRAM -- --out FOLDER [--samples N] [NAME=FILE ...]
    """
    arguments = sys.argv[sys.argv.index("--") + 1:] if "--" in sys.argv else []
    parser = argparse.ArgumentParser(prog="artwork")
    parser.add_argument("--samples", type=int, default=None,
                        help="light paths per pixel; each drawing has its own default")
    parser.add_argument("names", nargs="+", metavar="NAME=FILE")
    options = parser.parse_args(arguments)

    for pair in options.names:
        name, path = pair.split("=", 1)
        picture = drawings[name](options.samples)
        Image.fromarray(picture, "RGBA").save(path)


def _area_light(name, azimuth, elevation, distance, size, watts, colour):
    data = bpy.data.lights.new(name, "AREA")
    data.shape = "DISK"
    data.size, data.energy, data.color = size, watts, colour
    light = bpy.data.objects.new(name, data)
    a, e = math.radians(azimuth), math.radians(elevation)
    light.location = (distance * math.sin(a) * math.cos(e), distance *
                      math.cos(a) * math.cos(e), distance * math.sin(e))
    light.rotation_euler = (-light.location).to_track_quat("-Z", "Y").to_euler()
    bpy.context.scene.collection.objects.link(light)
    return light


def _dome():
    """World light that grows from the horizon to the zenith, a little stronger on the key's side."""
    world = bpy.data.worlds.new("dome")
    world.use_nodes = True
    nodes, links = world.node_tree.nodes, world.node_tree.links
    background = nodes["Background"]
    direction = nodes.new("ShaderNodeNewGeometry").outputs["Incoming"]
    split = nodes.new("ShaderNodeSeparateXYZ")
    links.new(direction, split.inputs[0])
    height = nodes.new("ShaderNodeMath")
    height.operation = "MULTIPLY"
    height.inputs[1].default_value = -1.0  # the incoming vector points away from the sky
    links.new(split.outputs["Z"], height.inputs[0])
    ramp = nodes.new("ShaderNodeValToRGB")
    ramp.color_ramp.elements[0].position, ramp.color_ramp.elements[0].color = 0.0, (0.050, 0.055, 0.062, 1)
    ramp.color_ramp.elements[1].position, ramp.color_ramp.elements[1].color = 1.0, (0.50, 0.51, 0.53, 1)
    middle = ramp.color_ramp.elements.new(0.55)
    middle.color = (0.15, 0.16, 0.17, 1)
    links.new(height.outputs[0], ramp.inputs[0])
    links.new(ramp.outputs[0], background.inputs["Color"])
    return world


def _plane(z):
    mesh = bpy.data.meshes.new("floor")
    mesh.from_pydata([(-30, -30, z), (30, -30, z), (30, 30, z), (-30, 30, z)], [], [(0, 1, 2, 3)])
    floor = bpy.data.objects.new("floor", mesh)
    bpy.context.scene.collection.objects.link(floor)
    return floor


class _quiet:
    """Keeps Blender's progress lines off the terminal while it renders."""

    def __enter__(self):
        sys.stdout.flush()
        self.saved = os.dup(1)
        null = os.open(os.devnull, os.O_WRONLY)
        os.dup2(null, 1)
        os.close(null)

    def __exit__(self, *_):
        sys.stdout.flush()
        os.dup2(self.saved, 1)
        os.close(self.saved)
