# SPDX-License-Identifier: GPL-3.0-or-later
"""Draws letters and lines on a transparent sheet and lays the sheet over a picture."""
import functools
import math
import subprocess

import cairo
import numpy as np

FONT = "TeX Gyre Heros Cn"
MINUS_LENGTH = 0.36  # of the font's height: the font's own minus is too long for a scale, its hyphen too short
CAP_HEIGHT = 0.729


@functools.cache
def require_font():
    """Without the font cairo would take any other, and silently."""
    found = subprocess.run(["fc-match", "-f", "%{family}", FONT + ":bold"], check=True, capture_output=True, text=True)
    if not found.stdout.startswith(FONT):
        raise SystemExit(f"The legends need the font {FONT} of Debian's fonts-texgyre")


class Ink:
    """A sheet of width x height pixels whose upper left corner lies at origin. Angles: degrees clockwise from straight up."""

    def __init__(self, width, height, origin=(0, 0)):
        require_font()
        self.surface = cairo.ImageSurface(cairo.FORMAT_ARGB32, width, height)
        self.context = cairo.Context(self.surface)
        self.context.translate(-origin[0], -origin[1])
        self.context.select_font_face(FONT, cairo.FONT_SLANT_NORMAL, cairo.FONT_WEIGHT_BOLD)
        options = cairo.FontOptions()
        options.set_hint_style(cairo.HINT_STYLE_NONE)
        options.set_hint_metrics(cairo.HINT_METRICS_OFF)
        options.set_antialias(cairo.ANTIALIAS_GRAY)
        self.context.set_font_options(options)

    def colour(self, colour, alpha=1.0):
        self.context.set_source_rgba(*(c / 255.0 for c in colour[:3]), alpha)

    def _advance(self, letter, size):
        if letter == "-":
            return (MINUS_LENGTH + 0.09) * size
        return self.context.text_extents(letter).x_advance

    def width(self, text, size, tracking=0.0):
        """Of a line of text, from the first letter's start to the last one's end; tracking is a share of the size."""
        self.context.set_font_size(size)
        return sum(self._advance(letter, size) for letter in text) + tracking * size * max(len(text) - 1, 0)

    def text(self, x, y, text, size, colour, align="centre", tracking=0.0, alpha=1.0):
        """Capitals and figures stand centred on y; x is the middle, or the side that align names."""
        width = self.width(text, size, tracking)
        x -= {"centre": 0.5, "left": 0.0, "right": 1.0}[align] * width
        baseline = y + CAP_HEIGHT * size / 2.0
        self.colour(colour, alpha)
        for letter in text:
            if letter == "-":
                self.context.rectangle(x + 0.03 * size, baseline - 0.30 * size, MINUS_LENGTH * size, 0.115 * size)
                self.context.fill()
            else:
                self.context.move_to(x, baseline)
                self.context.show_text(letter)
            x += self._advance(letter, size) + tracking * size
        return width

    def line(self, points, width, colour, alpha=1.0, round_ends=False, closed=False):
        self.context.set_line_cap(cairo.LINE_CAP_ROUND if round_ends else cairo.LINE_CAP_BUTT)
        self.context.set_line_join(cairo.LINE_JOIN_ROUND)
        self.context.set_line_width(width)
        self.colour(colour, alpha)
        self.path(points, closed)
        self.context.stroke()

    def path(self, points, closed=True):
        self.context.new_path()
        for point in points:
            self.context.line_to(*point)
        if closed:
            self.context.close_path()

    def shape(self, points, colour, alpha=1.0):
        self.path(points)
        self.colour(colour, alpha)
        self.context.fill()

    def rounded(self, x, y, width, height, radius):
        """Puts a rectangle with round corners into the path."""
        self.context.new_path()
        for cx, cy, start in ((x + width - radius, y + radius, -90), (x + width - radius, y + height - radius, 0),
                              (x + radius, y + height - radius, 90), (x + radius, y + radius, 180)):
            self.context.arc(cx, cy, radius, math.radians(start), math.radians(start + 90))
        self.context.close_path()

    def fill_rounded(self, x, y, width, height, radius, colour, alpha=1.0):
        self.rounded(x, y, width, height, radius)
        self.colour(colour, alpha)
        self.context.fill()

    def disc(self, x, y, radius, colour, alpha=1.0):
        self.context.new_path()
        self.context.arc(x, y, radius, 0, 2 * math.pi)
        self.colour(colour, alpha)
        self.context.fill()

    def arc(self, x, y, radius, start, end, width, colour, alpha=1.0):
        self.context.new_path()
        self.context.arc(x, y, radius, math.radians(start - 90), math.radians(end - 90))
        self.context.set_line_width(width)
        self.context.set_line_cap(cairo.LINE_CAP_BUTT)
        self.colour(colour, alpha)
        self.context.stroke()

    def tick(self, x, y, degrees, inner, outer, width, colour, alpha=1.0):
        """A stroke on the ray at an angle from (x, y), between two radii."""
        dx, dy = direction(degrees)
        self.line([(x + inner * dx, y + inner * dy), (x + outer * dx, y + outer * dy)], width, colour, alpha)

    def premultiplied(self):
        """Floats of 0 to 1 [height, width, 4], red first."""
        self.surface.flush()
        height, width = self.surface.get_height(), self.surface.get_width()
        rows = np.frombuffer(self.surface.get_data(), np.uint8).reshape(height, self.surface.get_stride() // 4, 4)
        return rows[:, :width, [2, 1, 0, 3]].astype(np.float32) / 255.0

    def rgba(self):
        """The sheet as 8 bit red, green, blue and alpha."""
        pixels = self.premultiplied()
        alpha = pixels[..., 3:]
        colour = pixels[..., :3] / np.maximum(alpha, 1e-6)
        return (np.concatenate([np.clip(colour, 0, 1), alpha], axis=-1) * 255.0 + 0.5).astype(np.uint8)

    def onto(self, picture, x=0, y=0):
        """Lays the sheet over floats of 0 to 255 [height, width, 3], its corner at (x, y)."""
        pixels = self.premultiplied()
        part = picture[y:y + pixels.shape[0], x:x + pixels.shape[1]]
        part *= 1.0 - pixels[..., 3:]
        part += 255.0 * pixels[..., :3]


def direction(degrees):
    return math.sin(math.radians(degrees)), -math.cos(math.radians(degrees))
