# SPDX-License-Identifier: GPL-3.0-or-later
"""What frames the panel: the shadow strips above and below it, the bottom bar's logo and buttons, the About panel's logos."""
import numpy as np

import output
from ink import Ink
from palette import AMBER, BLACK, IVORY, SECONDARY, SLATE


def shadow(height, is_top):
    """From black at the editor's strip to the panel's slate, drawn a third as high."""
    way = (np.arange(height, dtype=np.float32) + 0.5) / height
    way = way if is_top else way[::-1]
    light = (way * way * (3 - 2 * way))[:, None, None]
    rim = 16.0 * np.exp(-((way - 0.90) / 0.06) ** 2)[:, None, None] * (1.0 if is_top else 0.3)
    level = 1.05 if is_top else 0.92
    picture = np.broadcast_to(np.array(SLATE, np.float32) * level * light + rim, (height, 2700, 3)).copy()
    grain = np.random.default_rng(5).uniform(-0.5, 0.5, (height, 2700, 1))
    return output.rounded(picture + grain)


def mark(ink, x, y, size, colour, accent):
    """Our mark: three fader slots with caps at different heights."""
    for i, height in enumerate((0.28, -0.22, 0.06)):
        cx = x + (i - 1) * size * 0.34
        ink.line([(cx, y - size / 2), (cx, y + size / 2)], size * 0.075, colour, 0.75, round_ends=True)
        cap = size * 0.24
        ink.fill_rounded(cx - cap / 2, y + height * size - size * 0.10, cap, size * 0.20, size * 0.04,
                         accent if i == 1 else colour)


def bar_logo(state):
    ink = Ink(480, 96)
    colour = IVORY if state == "normal" else AMBER
    mark(ink, 56, 48, 52, colour, AMBER)
    ink.text(104, 48.5, "TARVIK PLUGINS", 42, colour, "left", 0.07)
    return ink.rgba()


def on_black(draw):
    """A 48 x 48 button of the bar, without transparency."""
    ink = Ink(48, 48)
    ink.fill_rounded(0, 0, 48, 48, 0.01, BLACK)
    draw(ink)
    return ink.rgba()[..., :3].copy()


def colour_of(state):
    return SECONDARY if state == "normal" else AMBER


def links(state):
    """An arrow that leaves a page."""
    def draw(ink):
        c = colour_of(state)
        ink.line([(24, 14), (12, 14), (12, 36), (34, 36), (34, 26)], 3.5, c)
        ink.line([(22, 26), (36, 12)], 3.5, c)
        ink.line([(27, 12), (36, 12), (36, 21)], 3.5, c)
    return on_black(draw)


def licence(state):
    """A key."""
    def draw(ink):
        c = colour_of(state)
        ink.arc(16, 24, 7, 0, 360, 3.5, c)
        ink.line([(23, 24), (39, 24), (39, 31)], 3.5, c)
        ink.line([(32, 24), (32, 30)], 3.5, c)
    return on_black(draw)


def shop(state):
    """A bag."""
    def draw(ink):
        c = colour_of(state)
        ink.line([(12, 18), (36, 18), (34, 38), (14, 38)], 3.5, c, closed=True)
        ink.line([(18, 22), (18, 15), (21, 10), (27, 10), (30, 15), (30, 22)], 3.2, c)
    return on_black(draw)


def about_a():
    """The mark alone, beside the family's name."""
    ink = Ink(180, 72)
    mark(ink, 36, 36, 50, IVORY, AMBER)
    ink.text(78, 24, "TARVIK", 32, IVORY, "left", 0.04)
    ink.text(79, 52, "41 SERIES", 22, SECONDARY, "left", 0.04)
    return ink.rgba()


def about_b():
    ink = Ink(276, 64)
    mark(ink, 32, 32, 40, IVORY, AMBER)
    ink.text(66, 32.5, "TARVIK PLUGINS", 30, IVORY, "left", 0.05)
    return ink.rgba()


if __name__ == "__main__":
    drawings = {"shadow-top": lambda: shadow(24, True), "shadow-bottom": lambda: shadow(25, False), "about-logo-a": about_a,
                "about-logo-b": about_b}
    for s in ("normal", "pressed"):
        drawings[f"bar-logo-{s}"] = lambda s=s: bar_logo(s)
        for name, draw in (("links", links), ("licence", licence), ("shop", shop)):
            drawings[f"bar-{name}-{s}"] = lambda s=s, draw=draw: draw(s)
    output.run(drawings)
