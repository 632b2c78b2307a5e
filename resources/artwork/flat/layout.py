# SPDX-License-Identifier: GPL-3.0-or-later
"""The panel's controls, where they are and what their scales say: layout.json, which the offline tool writes.

    tarvik41-render list layout > resources/artwork/layout.json
"""
import json
import pathlib

_PATH = pathlib.Path(__file__).resolve().parent.parent / "layout.json"
_TABLE = json.loads(_PATH.read_text())

WIDTH, HEIGHT = _TABLE["width"], _TABLE["height"]
CONTROLS = _TABLE["controls"]


def of(kind):
    return [control for control in CONTROLS if control["kind"] == kind]


def find(kind, name):
    """The one control of a kind that serves a parameter or has a name."""
    found = [control for control in of(kind) if name in (control.get("parameter"), control.get("name"))]
    if len(found) != 1:
        raise SystemExit(f"layout.json has {len(found)} of {kind} {name}")
    return found[0]


def centre(control):
    return control["x"] + control["w"] / 2.0, control["y"] + control["h"] / 2.0


def split(text):
    """A mark's number and its unit: "10 kHz" gives "10" and "kHz"; "20:1" gives "20" and ":1"; a word has no unit."""
    if text.endswith(":1"):
        return text[:-2], ":1"
    number, _, unit = text.partition(" ")
    return number, unit


def units(control):
    """The units that a control's marks are written in, in the order of the scale."""
    found = [split(mark["text"])[1] for mark in control["scale"]]
    return list(dict.fromkeys(unit for unit in found if unit))
