# SPDX-License-Identifier: GPL-3.0-or-later
"""Metal, recesses and bays, drawn with arrays. Light comes from the upper left everywhere."""
import numpy as np
from PIL import Image

LIGHT_FALL = 0.12  # how much darker the panel's lower edge is than its upper one


def noise(height, width, grain_height, grain_width, seed):
    """Smooth random floats around 0 whose standard deviation is 1, grains of the given size in pixels."""
    rows, columns = max(2, int(np.ceil(height / grain_height))), max(2, int(np.ceil(width / grain_width)))
    coarse = np.random.default_rng(seed).standard_normal((rows, columns)).astype(np.float32)
    fine = np.asarray(Image.fromarray(coarse).resize((width, height), Image.Resampling.BICUBIC))
    return fine / fine.std()


def brushed(height, width, seed, contrast=0.02):
    """A factor around 1: fine horizontal brushing over faint clouds, grains of three sizes."""
    return 1.0 + contrast * (0.45 * noise(height, width, 1.5, 60, seed) + 0.30 * noise(height, width, 2, 2, seed + 1)
                             + 0.35 * noise(height, width, 160, 260, seed + 2))


def light_fall(height, top=0, whole=None):
    """A factor per row [height, 1, 1]: 1 in the panel's middle, more above it and less below."""
    rows = (np.arange(top, top + height, dtype=np.float32) + 0.5) / (whole or height)
    return (1.0 + LIGHT_FALL * (0.5 - rows))[:, None, None]


class Region:
    """Signed distances to a shape's edge in pixels, negative inside, over a window of the picture."""

    def __init__(self, x0, y0, x1, y1, radius, margin=24, limits=(2700, 2030)):
        self.left, self.top = max(0, int(x0) - margin), max(0, int(y0) - margin)
        self.right, self.bottom = min(limits[0], int(x1) + margin), min(limits[1], int(y1) + margin)
        self.distance = self._box(x0, y0, x1, y1, radius)

    def _box(self, x0, y0, x1, y1, radius):
        x = np.abs(np.arange(self.left, self.right, dtype=np.float32) + 0.5 - (x0 + x1) / 2) - (x1 - x0) / 2 + radius
        y = np.abs(np.arange(self.top, self.bottom, dtype=np.float32) + 0.5 - (y0 + y1) / 2) - (y1 - y0) / 2 + radius
        x, y = x[None, :], y[:, None]
        return np.hypot(np.maximum(x, 0), np.maximum(y, 0)) + np.minimum(np.maximum(x, y), 0) - radius

    def add(self, x0, y0, x1, y1, radius, blend=18.0):
        """Unites the shape with a box; the corners between them are filled with a fillet of about the blend's size."""
        other = self._box(x0, y0, x1, y1, radius)
        near = np.clip(0.5 + 0.5 * (other - self.distance) / blend, 0, 1)
        self.distance = other + (self.distance - other) * near - blend * near * (1 - near) * 0.5
        return self

    def cut(self, other, gap):
        """Takes another region and a gap round it away."""
        window = np.full_like(self.distance, 1e6)
        x0, y0 = max(self.left, other.left), max(self.top, other.top)
        x1, y1 = min(self.right, other.right), min(self.bottom, other.bottom)
        window[y0 - self.top:y1 - self.top, x0 - self.left:x1 - self.left] = \
            other.distance[y0 - other.top:y1 - other.top, x0 - other.left:x1 - other.left]
        outside = gap - window
        blend = 14.0
        near = np.clip(0.5 + 0.5 * (self.distance - outside) / blend, 0, 1)
        self.distance = outside + (self.distance - outside) * near + blend * near * (1 - near) * 0.5
        return self

    def of(self, picture):
        return picture[self.top:self.bottom, self.left:self.right]

    def inside(self):
        """Share of each pixel within the shape [height, width, 1]."""
        return np.clip(0.5 - self.distance, 0, 1)[..., None]

    def facing(self):
        """-1 where the edge looks away from the light as a recess's upper left side does, 1 at its lower right side."""
        dy, dx = np.gradient(self.distance)
        return (dx * 0.6 + dy * 0.8)[..., None]


def recess(picture, region, colour, bevel=4.0, dark=0.42, bright=0.22, inner_shadow=0.0, shadow_reach=22.0):
    """Sinks a region into the picture: its own colour (or factor), a shaded rim and, if deep, the upper rim's shadow."""
    part, inside, facing = region.of(picture), region.inside(), region.facing()
    depth = -region.distance[..., None]
    factor = np.asarray(colour, np.float32)
    fill = part * factor
    if inner_shadow:
        height, width = region.distance.shape
        fallen = np.roll(np.roll(depth, 5, axis=0), 4, axis=1)
        fill = fill * (1.0 - inner_shadow * np.exp(-np.clip(fallen, 0, None) / shadow_reach * 2.2))
    part[:] = part * (1 - inside) + fill * inside
    rim = np.exp(-((depth - 0.5) / bevel) ** 2 * 2.0)
    part *= 1.0 + rim * np.where(facing > 0, bright, dark) * facing
