# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes and reads qtractor's session files, in which the LV2 plug-in's state is held as text."""
import base64
import os
import re
import struct
import xml.etree.ElementTree as ElementTree
import zlib

import audio

URI = "urn:nomvale:tarvik41channel"
GAIN = URI + ":gain"
GAIN_INDEX = "17288893729461651291"  # what qtractor makes of that name: with another number it leaves the curve out
STATE_KEY, STATE_TYPE = "urn:qtractor:state#key", "urn:qtractor:state#type"
TICKS_PER_BEAT, BEATS_PER_SECOND = 960, 2  # at 120 beats a minute
JUCE_DIGITS = ".ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+"


def _juce_text(data):
    """JUCE's own notation of a memory block: its size, a dot, and six bits a digit, the lowest first."""
    bits, digits = int.from_bytes(data, "little"), (len(data) * 8 + 5) // 6
    return f"{len(data)}." + "".join(JUCE_DIGITS[bits >> 6 * i & 63] for i in range(digits))


def _packed(turtle):
    return base64.b64encode(struct.pack(">I", len(turtle.encode())) + zlib.compress(turtle.encode())).decode()


def _unpacked(text):
    return zlib.decompress(base64.b64decode(re.sub(r"\s", "", text))[4:]).decode()


def _configuration(state):
    """What qtractor stores for an instance with that state, as our renderer saves it: lilv's text, packed."""
    length, = struct.unpack_from("<I", state, 4)
    state = state[:8 + length + 1]  # a mark, the length, the text and a zero; after it, what belongs to VST3
    return _packed(f"<urn:qtractor:state>\n\ta pset:Preset ;\n\tlv2:appliesTo <{URI}> ;\n"
                   f"\tstate:state [\n\t\t<{URI}:StateString> \"{_juce_text(state)}\"\n\t] .\n")


def _length(value):
    """A number as MIDI files count: seven bits a byte, the highest first, all but the last one marked."""
    content = [value & 127]
    while value := value >> 7:
        content.insert(0, value & 127 | 128)
    return bytes(content)


def _curve_file(path, points):
    """A curve as qtractor keeps it: a MIDI file of non-registered parameter 0, 14 bits over the parameter's range.
    `points`: seconds and share of the range."""
    track, last = b"", 0
    for seconds, share in points:
        tick = round(seconds * BEATS_PER_SECOND * TICKS_PER_BEAT)
        value = round(share * 0x3fff)
        for controller, data in ((99, 0), (98, 0), (6, value >> 7), (38, value & 127)):
            track += _length(tick - last) + bytes([0xb0, controller, data])
            last = tick
    track += bytes([0, 0xff, 0x2f, 0])
    with open(path, "wb") as file:
        file.write(b"MThd" + struct.pack(">IHHH", 6, 1, 1, TICKS_PER_BEAT) +
                   b"MTrk" + struct.pack(">I", len(track)) + track)


def _add(parent, tag, text=None, /, **attributes):
    child = ElementTree.SubElement(parent, tag, attributes)
    child.text = None if text is None else str(text)
    return child


def write(folder, name, buses, tracks):
    """`buses`: names and numbers of channels. `tracks`: for each name a bus, the second at which its channels begin, these,
    the state of its instance or None without one, whether its latency is made up for, and the curve of its gain or None."""
    session = ElementTree.Element("session", {"name": name, "version": "Qtractor 0.9.31"})
    properties = _add(session, "properties")
    for key, value in (("directory", folder), ("sample-rate", audio.RATE), ("tempo", 60 * BEATS_PER_SECOND),
                       ("ticks-per-beat", TICKS_PER_BEAT), ("beats-per-bar", 4)):
        _add(properties, key, value)

    engine = _add(_add(session, "devices"), "audio-engine")
    for bus, channels in buses.items():
        place = _add(engine, "audio-bus", name=bus, mode="duplex")
        _add(place, "channels", channels)
        _add(place, "auto-connect", 0)

    place = _add(session, "tracks")
    for track, (bus, start, channels, state, compensated, curve) in tracks.items():
        file = track + ".wav"
        audio.write(os.path.join(folder, file), channels)
        element = _add(place, "track", name=track, type="audio")
        properties = _add(element, "properties")
        _add(properties, "input-bus", bus)
        _add(properties, "output-bus", bus)
        _add(properties, "plugin-list-latency", int(compensated))

        clip = _add(_add(element, "clips"), "clip", name=track)
        properties = _add(clip, "properties")
        for key, value in (("name", track), ("start", round(start * audio.RATE)), ("offset", 0), ("length", len(channels[0]))):
            _add(properties, key, value)
        _add(_add(clip, "audio-clip"), "filename", file)

        if state is not None:
            plugin = _add(_add(element, "plugins"), "plugin", type="LV2")
            _add(plugin, "filename", URI)
            _add(plugin, "index", 0)
            _add(_add(plugin, "configs"), "config", _configuration(state), key=STATE_KEY, type=STATE_TYPE)
            if curve:
                _curve_file(os.path.join(folder, track + ".mid"), curve)
                place_of_curve = _add(plugin, "curve-file")
                item = _add(_add(place_of_curve, "curve-items"), "curve-item",
                            name=GAIN, index=GAIN_INDEX, mode="Linear")
                for key, value in (("type", "NONREGPARAM"), ("channel", 0), ("param", 0), ("process", 1), ("capture", 0)):
                    _add(item, key, value)
                _add(place_of_curve, "filename", track + ".mid")
            _add(plugin, "activated", 1)

    path = os.path.join(folder, name + ".qtr")
    with open(path, "wb") as file:
        file.write(b"<!DOCTYPE qtractorSession>\n" + ElementTree.tostring(session))
    return path


def _plugins(session):
    for track in session.iter("track"):
        for plugin in track.iter("plugin"):
            yield track.get("name"), plugin


def states(path):
    """The LV2 states in a session file, by the tracks' names."""
    found = {}
    for track, plugin in _plugins(ElementTree.parse(path)):
        for config in plugin.iter("config"):
            if config.get("key") == STATE_KEY:
                found[track] = _unpacked(config.text)
    return found


def switch_off(path, by_port, by_host):
    """Switches one track's instance off by its own switch, which is a control port, and another's by qtractor's."""
    tree = ElementTree.parse(path)
    for track, plugin in _plugins(tree):
        if track == by_port:
            # It stands twice there, and what is in the state counts.
            next(p for p in plugin.iter("param") if p.get("name") == "Enabled").text = "0"
            state = next(plugin.iter("config"))
            state.text = _packed(re.sub(r'("enabled" ;\s+pset:value) 1\.0', r"\1 0.0", _unpacked(state.text)))
        elif track == by_host:
            plugin.find("activated").text = "0"
    tree.write(path)
