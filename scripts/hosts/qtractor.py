# SPDX-License-Identifier: GPL-3.0-or-later
"""qtractor with the plug-in, without a screen or a sound card: qtractor.py MODULE FORMAT RENDERER FOLDER

MODULE is the LV2 bundle, FORMAT LV2, RENDERER our offline host, FOLDER an empty one. docs/hosts.md tells what is found."""
import os
import shutil
import sys

import audio
import qtractor_session
from checks import check, finish, home, render
from qtractor_host import Qtractor
from screen import Screen

module, form, renderer, folder = sys.argv[1:]
reference_module = os.environ["REFERENCE_MODULE"]

LATENCY = 52
LENGTH = 2.0
# qtractor lets a clip die away in its last 19 ms.
HEARD = int(LENGTH * audio.RATE) - 1024
# Where things are in the tracks' list, that of the first track's plug-ins being empty at first.
FIRST_LIST, TRACK_HEIGHT = (177, 178), 96
FIRST_FOUND = (60, 55)  # in the window that lists plug-ins
FEWEST_COLOURS = 50  # of a window in which something is drawn
SETTLING = 20.0  # seconds until an instance is still to the last bits; those in qtractor have had eight at least
PLAYED = 20  # seconds
EQUAL_DB = -100.0

buses = {"Master": 2, "Mono": 1}
clips = {
    "added": ("Master", 8.0, [audio.drums(LENGTH, 6), audio.drums(LENGTH, 7)]),
    "mono": ("Mono", 8.0, [audio.drums(LENGTH, 1)]),
    "stereo": ("Master", 11.0, [audio.drums(LENGTH, 2), audio.drums(LENGTH, 3)]),
    "automated": ("Master", 14.0, [audio.tone(3.0, 200, 0.02)]),
    # An export begins with the first clip, or 52 samples before it as a track's latency is made up for. Here it has none.
    "dry": ("Master", 0.0, [[0.0] * audio.RATE + audio.drums(LENGTH, seed) for seed in (4, 5)]),
}
options = {"added": [], "stereo": ["--program", "Drum Buss 1"], "automated": [],
           "mono": ["--set", "gain=6", "--set", "highGain=4 dB", "--set", "compThreshold=-10"]}
delays = {"stereo": 0, "added": LATENCY, "mono": LATENCY, "automated": LATENCY}  # made up for on the first alone
slope = [(0.0, 0.2), (15.0, 0.2), (16.0, 0.4)]  # of the gain, -12 to 48 dB: 0 dB and 12 dB

with open(shutil.which("qtractor"), "rb") as file:
    check(b"VST3 Plug-in support disabled." in file.read(),
          "this qtractor has no VST3, so that the LV2 bundle is what it can load")


def prepare():
    """Each track's reference and the state that its instance begins with."""
    wanted, states = {}, {}
    for track, chosen in options.items():
        source, target, state = (os.path.join(folder, track + end) for end in ("-in.wav", "-out.wav", ".state"))
        silence = [0.0] * int(SETTLING * audio.RATE)
        audio.write(source, [silence + c for c in (clips[track][2] * 2)[:2]])
        render(renderer, reference_module, source, target, environment, [*chosen, "--save-state", state])
        wanted[track] = [c[len(silence):] for c in audio.read(target)]
        with open(state, "rb") as file:
            states[track] = file.read()
    return wanted, states


def compare(what, heard, offset=0, tracks=("added", "mono", "stereo"), limit=EQUAL_DB):
    """Each track's sound, its delay and all, against our own render, sample by sample."""
    for track in tracks:
        bus, start, channels = clips[track]
        begin = offset + int(start * audio.RATE) + delays[track]
        parts = [c[begin:begin + HEARD] for c in heard[bus][:len(channels)]]
        worst = max(audio.difference(a, b[:HEARD]) for a, b in zip(parts, wanted[track]))
        level = audio.rms(parts[0])
        check(worst < limit and level > -40,
              f"{what}, {track}: {level:.1f} dB, {delays[track]} samples late, equal to our own render: difference {worst:.1f} dB")


def slope_of(heard, offset=0):
    """How much louder the automated track is in the middle of the slope and after it, in dB."""
    first = offset + int(clips["automated"][1] * audio.RATE)
    levels = [audio.rms(heard["Master"][0][first + int(a * audio.RATE):first + int(b * audio.RATE)])
              for a, b in ((0.5, 0.95), (1.4, 1.6), (2.2, 2.9))]
    return levels[1] - levels[0], levels[2] - levels[0]


def export():
    found = {bus: host.export(number) for number, bus in enumerate(buses)}
    if None in found.values():
        leave()
    return {bus: audio.read(path) for bus, path in found.items()}


def leave():
    host.close()
    screen.close()
    finish()


def place_of(number):
    return FIRST_LIST[0], FIRST_LIST[1] + number * TRACK_HEIGHT


def check_window(track):
    title = "Tarvik 41 Channel - " + track
    window = screen.window(title, seconds=20)
    if check(window, f"the window of '{track}' opens"):
        host.wait(2)
        colours = screen.colours(window)
        check(colours > FEWEST_COLOURS, f"with something in it: {colours} colours")
        screen.close_window(window)
        check(not screen.window(title, wanted=False), "and closes")


environment = home(os.path.join(folder, "home"), {"Analog": "0"})
shutil.copytree(module, os.path.join(environment["HOME"], ".lv2", os.path.basename(module)))
wanted, states = prepare()
session_folder = os.path.join(folder, "first")
os.makedirs(session_folder)
session = qtractor_session.write(session_folder, "first", buses, {
    track: (*clip, None if track in ("added", "dry")
            else states[track], track == "stereo", slope if track == "automated" else None)
    for track, clip in clips.items()})

screen = Screen(environment)
host = Qtractor(folder, screen)
try:
    # Scan and load: by the session file, and on the first track by the list of what there is.
    host.open(session)
    screen.click(place_of(0), button=3, window=host.window)
    host.wait(1)
    screen.do("key", "Down", "Return")
    found = screen.window("^Plugins", seconds=20)
    if check(found, "qtractor lists its plug-ins"):
        host.wait(2)
        screen.click(FIRST_FOUND, window=found)
        screen.do("key", "Return")
        check_window("added")

    # Play, in real time.
    recording = os.path.join(folder, "played.wav")
    host.record(["Master/out_1", "Master/out_2", "Mono/out_1"], PLAYED, recording)
    left, right, mono = audio.read(recording)
    played = {"Master": [left, right], "Mono": [mono]}
    dry = [c[audio.RATE:] for c in clips["dry"][2]]
    first = next((i for i, sample in enumerate(left) if abs(sample) > 1e-3), 0)
    short = 1000
    begin = min(range(max(0, first - short), first + short),
                key=lambda b: audio.difference(left[b:b + short], dry[0][:short]))
    worst = max(audio.difference(a[begin:begin + HEARD], b[:HEARD]) for a, b in zip((left, right), dry))
    offset = begin - audio.RATE
    check(worst < EQUAL_DB, f"playing: a track without the plug-in is heard untouched: difference {worst:.1f} dB")
    compare("playing", played, offset)
    middle, end = slope_of(played, offset)
    check(abs(end - 12.0) < 0.5 and 3.0 < middle < 9.0,
          f"playing, automated gain: {end:.2f} dB louder after the slope, {middle:.2f} in it")

    # Export, save, end, open, export.
    once = export()
    worst = max(audio.difference(a[audio.RATE:audio.RATE + HEARD], b[:HEARD]) for a, b in zip(once["Master"], dry))
    check(worst < EQUAL_DB, f"export: a track without the plug-in is untouched: difference {worst:.1f} dB")
    compare("export", once)
    middle, end = slope_of(once)
    print(
        f"  export, automated gain: {end:.2f} dB louder after the slope; qtractor leaves it to chance whether any of it arrives")
    host.save()
    host.quit()
    saved = qtractor_session.states(session)
    check(len(saved) == len(options), f"the session holds {len(saved)} states, that of the added instance among them")

    host.open(session)
    twice = export()
    host.save()
    again = qtractor_session.states(session)
    # The automated one has its gain where the transport was when qtractor last followed the curve.
    changed = [track for track in saved if saved[track] != again.get(track)]
    moved = [track for track in changed if track != "automated"]
    check(
        not moved, f"the saved states come back with the session: of {len(saved)} differ {', '.join(changed) or 'none'}")
    compare("reopened", twice)
    rest = int(clips["automated"][1] * audio.RATE)
    worst = max(audio.difference(a[:rest], b[:rest]) for bus in buses for a, b in zip(once[bus], twice[bus]))
    check(worst < EQUAL_DB,
          f"the reopened session exports the same, but for the automated track: difference {worst:.1f} dB")
    for number, track in ((1, "mono"), (2, "stereo")):
        screen.click(place_of(number), times=2, window=host.window)
        check_window(track)
    host.quit()

    # Off: by the plug-in's own switch, and by qtractor's.
    qtractor_session.switch_off(session, "mono", "stereo")
    host.open(session)
    off = export()
    for track, delay, what in (("mono", LATENCY, "its 'Enabled' off"), ("stereo", 0, "deactivated by qtractor")):
        bus, start, channels = clips[track]
        begin = int(start * audio.RATE) + delay
        worst = max(audio.difference(a[begin:begin + HEARD], b[:HEARD]) for a, b in zip(off[bus], channels))
        check(worst < EQUAL_DB, f"{track}, {what}: the dry signal, {delay} samples late: difference {worst:.1f} dB")
    host.save()
    host.quit()
finally:
    host.close()
    screen.close()

finish()
