# SPDX-License-Identifier: GPL-3.0-or-later
"""Puts audio files into a saved Ardour session: its Lua interpreter can do everything else, but not import."""
import os
import xml.etree.ElementTree as ElementTree

import audio

SUPERCLOCKS_PER_SAMPLE = 282240000 // audio.RATE  # Ardour 7 counts time in these


def _time(samples):
    return f"a{samples * SUPERCLOCKS_PER_SAMPLE}"


def _length(samples):
    return f"{_time(samples)}@a0"


def add(folder, name, placed, end):
    """`placed`: for each track's name the second at which its channels begin, and these. `end`: seconds of the session."""
    path = os.path.join(folder, name + ".ardour")
    tree = ElementTree.parse(path)
    session = tree.getroot()
    files = os.path.join(folder, "interchange", name, "audiofiles")
    next_id = int(session.get("id-counter"))

    def new_id():
        nonlocal next_id
        next_id += 1
        return str(next_id)

    for track, (start, channels) in placed.items():
        sources = {}
        for index, samples in enumerate(channels):
            file = f"{track}-{index}.wav"
            audio.write(os.path.join(files, file), [samples])
            source = new_id()
            sources[f"source-{index}"] = sources[f"master-source-{index}"] = source
            ElementTree.SubElement(session.find("Sources"), "Source", {
                "name": file, "take-id": "", "type": "audio", "flags": "", "id": source, "channel": "0", "origin": "", "gain": "1"})

        region = {
            "name": track, "type": "audio", "id": new_id(), "channels": str(len(channels)), "start": "a0",
            "length": f"{_time(len(channels[0]))}@{_time(int(start * audio.RATE))}", "muted": "0", "opaque": "1", "locked": "0",
            "automatic": "0", "whole-file": "0", "sync-position": "a0", "ancestral-start": "a0",
            "ancestral-length": _length(len(channels[0])), "stretch": "1", "shift": "1", "layering-index": "0", "tags": "",
            "envelope-active": "0", "default-fade-in": "0", "default-fade-out": "0", "fade-in-active": "0", "fade-out-active": "0",
            "scale-amplitude": "1", "first-edit": "nothing", **sources}
        ElementTree.SubElement(session.find(f"Playlists/Playlist[@name='{track}']"), "Region", region)

    ElementTree.SubElement(session.find("Locations"), "Location", {
        "id": new_id(), "name": "session", "start": _time(0), "end": _time(int(end * audio.RATE)), "flags": "IsSessionRange",
        "locked": "0"})
    session.set("id-counter", str(next_id + 1))
    session.set("session-range-is-free", "0")
    tree.write(path, encoding="UTF-8", xml_declaration=True)
