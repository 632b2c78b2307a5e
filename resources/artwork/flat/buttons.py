# SPDX-License-Identifier: GPL-3.0-or-later
"""Flat buttons: the channel's arrows, random and link keys, and the editor's menu, slot and copy buttons."""
import output
from ink import Ink
from palette import AMBER, IVORY, KEY, SECONDARY

PLATE_INK = (74, 66, 54)  # arrows stand on the ivory plate
DARK = (22, 26, 29)
LIFT = {"normal": 1.0, "over": 1.28, "pressed": 0.72}  # brightness of a key's face


def shaded(colour, factor):
    return tuple(min(255, c * factor) for c in colour)


def key(width, height, state, edge=3, radius=8, face=KEY):
    """A low key with a dark border; a lit upper edge, or none while it is held."""
    ink = Ink(width, height)
    ink.fill_rounded(edge - 2, edge - 2, width - 2 * edge + 4, height - 2 * edge + 4, radius + 2, DARK, 0.9)
    body = shaded(face, LIFT[state])
    ink.fill_rounded(edge, edge, width - 2 * edge, height - 2 * edge, radius, body)
    if state != "pressed":
        ink.rounded(edge + 1, edge + 1, width - 2 * edge - 2, height - 2 * edge - 2, radius - 1)
        ink.context.clip()
        ink.line([(edge, edge + 2), (width - edge, edge + 2)], 2.5, IVORY, 0.30)
        ink.line([(edge, height - edge - 2), (width - edge, height - edge - 2)], 2.5, DARK, 0.45)
        ink.context.reset_clip()
    return ink


def arrow(side, state):
    """A triangle to the left (-1) or the right (1), printed on the plate; amber while it is held."""
    width, height = 48, 40
    ink = Ink(width, height)
    if state != "normal":
        ink.fill_rounded(2, 2, width - 4, height - 4, 9, PLATE_INK, 0.14 if state == "over" else 0.75)
    colour = AMBER if state == "pressed" else PLATE_INK
    x, y = width / 2 + side * 8, height / 2
    ink.shape([(x, y), (x - side * 17, y - 11), (x - side * 17, y + 11)], colour)
    ink.line([(x, y), (x - side * 17, y - 11), (x - side * 17, y + 11)], 3, colour, closed=True)
    return ink.rgba()


def die(ink, x, y, side, colour, pips, hole):
    ink.fill_rounded(x - side / 2, y - side / 2, side, side, side * 0.2, colour)
    d = side * 0.27
    places = {5: [(-1, -1), (1, -1), (0, 0), (-1, 1), (1, 1)], 3: [(-1, -1), (0, 0), (1, 1)]}[pips]
    for px, py in places:
        ink.disc(x + px * d, y + py * d, side * 0.105, hole)


def random(for_all, state):
    """One die, or three for all instances."""
    ink = key(60, 50, state)
    colour = AMBER if state == "pressed" else IVORY
    hole = shaded(KEY, 0.6)
    if not for_all:
        die(ink, 30, 25, 27, colour, 5, hole)
    else:
        for x, y in ((17, 30), (43, 30), (30, 16)):
            die(ink, x, y, 17, colour, 3, hole)
    return ink.rgba()


def link(is_on, state):
    """Two links of a chain, apart or joined; amber while joined."""
    ink = key(60, 50, state)
    colour = AMBER if is_on else (IVORY if state == "over" else SECONDARY)
    apart = 9.0 if is_on else 13.0
    for side in (-1, 1):
        ink.rounded(30 + side * apart - 11, 18, 22, 14, 7)
        ink.colour(colour)
        ink.context.set_line_width(4.5)
        ink.context.stroke()
    if is_on:
        ink.line([(23, 25), (37, 25)], 4.5, colour, round_ends=True)
    return ink.rgba()


def menu(state):
    """Three bars."""
    ink = Ink(72, 72)
    if state != "normal":
        ink.fill_rounded(6, 6, 60, 60, 12, KEY, 0.75 if state == "over" else 1.0)
    colour = {"normal": SECONDARY, "over": IVORY, "pressed": AMBER}[state]
    for y in (23, 36, 49):
        ink.line([(20, y), (52, y)], 5.5, colour, round_ends=True)
    return ink.rgba()


def slot(letter, state):
    """The slot's letter on a small tile. The pressed picture is also that of the current slot, amber throughout."""
    ink = Ink(72, 72)
    if state == "pressed":
        ink.fill_rounded(9, 9, 54, 54, 10, AMBER)
        ink.text(36, 36.5, letter, 44, DARK)
    else:
        ink.fill_rounded(9, 9, 54, 54, 10, KEY, 0.55 if state == "normal" else 1.0)
        ink.text(36, 36.5, letter, 44, SECONDARY if state == "normal" else IVORY)
    return ink.rgba()


def copy(side, state):
    """An arrow from one slot to the other: to B, on the right, or to A."""
    width, height = 30, 72
    ink = Ink(width, height)
    colour = {"normal": SECONDARY, "over": IVORY, "pressed": AMBER}[state]
    x, y = width / 2 + side * 11, height / 2
    ink.line([(width / 2 - side * 11, y), (x - side * 6, y)], 5.5, colour)
    ink.shape([(x, y), (x - side * 12, y - 11), (x - side * 12, y + 11)], colour)
    return ink.rgba()


STATES = ("normal", "over", "pressed")

if __name__ == "__main__":
    drawings = {}
    for s in STATES:
        drawings[f"previous-{s}"] = lambda s=s: arrow(-1, s)
        drawings[f"next-{s}"] = lambda s=s: arrow(1, s)
        drawings[f"random-{s}"] = lambda s=s: random(False, s)
        drawings[f"random-all-{s}"] = lambda s=s: random(True, s)
        drawings[f"menu-{s}"] = lambda s=s: menu(s)
        drawings[f"copy-to-a-{s}"] = lambda s=s: copy(-1, s)
        drawings[f"copy-to-b-{s}"] = lambda s=s: copy(1, s)
        for name in "ab":
            drawings[f"slot-{name}-{s}"] = lambda s=s, name=name: slot(name.upper(), s)
        for is_on in (False, True):
            ending = ("on" if is_on else "off") + ("" if s == "normal" else f"-{s}")
            drawings[f"link-{ending}"] = lambda s=s, is_on=is_on: link(is_on, s)
    output.run(drawings)
