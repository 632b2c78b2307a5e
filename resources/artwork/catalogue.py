# SPDX-License-Identifier: GPL-3.0-or-later
"""The table of every picture, which redraw, check and the drawing programs share.

What is built into the module stands in source/editor/PictureCatalogue.h, whose rows are read here as the build reads them.
programs.json says who draws what: for each program the names of its pictures, and the parts, which are only pasted into
other pictures. Paths of pictures are relative to resources/.
"""
import collections
import fnmatch
import json
import pathlib
import re

ARTWORK = pathlib.Path(__file__).resolve().parent
RESOURCES = ARTWORK.parent
HEADER = RESOURCES.parent / "source/editor/PictureCatalogue.h"
ROW = re.compile(r'^ +X \(\w+, +"([a-z0-9-]+)", +(\d+), +(\d+), +(rgba?), +"', re.MULTILINE)

Picture = collections.namedtuple("Picture", "name file width height colours program")


def program_of(name, programs):
    """The one program whose patterns have a name."""
    found = [program for program, patterns in programs.items() if any(fnmatch.fnmatch(name, p) for p in patterns)]
    if len(found) != 1:
        raise SystemExit(f"programs.json has {len(found)} programs for {name}")
    return found[0]


def read():
    """All rows, parts first, because pictures are made of them."""
    table = json.loads((ARTWORK / "programs.json").read_text())
    parts = [Picture(row["name"], f"artwork/parts/{row['name']}.png", row["width"], row["height"], "RGBA", row["program"])
             for row in table["parts"]]
    pictures = [Picture(name, f"pictures/{name}.png", int(width), int(height), colours.upper(),
                        program_of(name, table["pictures"]))
                for name, width, height, colours in ROW.findall(HEADER.read_text())]
    if not pictures:
        raise SystemExit(f"{HEADER} has no rows that can be read")
    return parts + pictures


def choose(names):
    """Rows with these names, or all; a name that is not in the table is an error."""
    rows = read()
    unknown = set(names) - {row.name for row in rows}
    if unknown:
        raise SystemExit("There is no picture called " + ", ".join(sorted(unknown)))
    return [row for row in rows if row.name in names] if names else rows
