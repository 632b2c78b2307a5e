# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads catalogue.json: the table of every picture, which redraw, check and the drawing programs share.

"pictures" are built into the module, "parts" are only pasted into other pictures. Paths are relative to resources/.
"""
import collections
import json
import pathlib

ARTWORK = pathlib.Path(__file__).resolve().parent
RESOURCES = ARTWORK.parent

Picture = collections.namedtuple("Picture", "name file width height colours program shows")


def read(section=None):
    """All rows, or those of one section ("pictures" or "parts"), in the table's order."""
    table = json.loads((ARTWORK / "catalogue.json").read_text())
    sections = [section] if section else ["parts", "pictures"]
    return [Picture(**row) for s in sections for row in table[s]]


def choose(names):
    """Rows with these names, or all; a name that is not in the table is an error."""
    rows = read()
    unknown = set(names) - {row.name for row in rows}
    if unknown:
        raise SystemExit("Not in catalogue.json: " + ", ".join(sorted(unknown)))
    return [row for row in rows if row.name in names] if names else rows
