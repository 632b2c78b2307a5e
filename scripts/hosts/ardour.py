# SPDX-License-Identifier: GPL-3.0-or-later
"""Ardour 7 with the plug-in, without a screen: ardour.py MODULE FORMAT RENDERER FOLDER

MODULE is the built bundle, FORMAT VST3 or LV2 as Ardour names them, RENDERER our offline host, FOLDER an empty one."""
import os
import shutil
import sys
import xml.etree.ElementTree as ElementTree

import ardour_audio
import ardour_editor
import audio
from checks import check, finish, home, render, run

module, form, renderer, folder = sys.argv[1:]

# Ardour 7.3's own vector code corrupts its heap on processors with AVX-512, with no plug-in at all: one export of a mono
# track in five ends so. Plain code is what this asks for.
os.environ["ARDOUR_FPU_FLAGS"] = "0"

here = os.path.dirname(os.path.abspath(__file__))
quiet = {"Analog": "0", "UIZoom": "1"}  # no noise, so that two passes can be compared; a window of a known size
plugin_folder = {"VST3": ".vst3", "LV2": ".lv2"}[form]

# What lies where, in seconds; ardour.lua makes the tracks and sets the parameters.
LENGTH = 2.0
KEY_SECONDS = 1.0
KEY = audio.tone(KEY_SECONDS, 1000, 0.5)
placed = {
    "automated": (0.0, [audio.tone(3.0, 200, 0.02)]),
    "mono": (4.0, [audio.drums(LENGTH, 1)]),
    "strict": (7.0, [audio.drums(LENGTH, 1)]),
    "stereo": (10.0, [audio.drums(LENGTH, 2), audio.drums(LENGTH, 3)]),
    "keyed": (13.0, [audio.tone(LENGTH, 440, 0.25)]),
    "strictkeyed": (16.0, [audio.tone(LENGTH, 440, 0.25)]),
    "key": (13.0, [KEY + [0.0] * int((3 - KEY_SECONDS) * audio.RATE) + KEY]),  # under either of these two
    "dry": (19.0, [audio.drums(LENGTH, 4), audio.drums(LENGTH, 5)]),
}
END = 22.0
PAN_LAW = 10 ** (-3 / 20)  # Ardour's, of a mono track in the middle of a stereo bus
same_options = ["--set", "gain=6", "--set", "highGain=4 dB", "--set", "compThreshold=-10"]
gate_options = ["--set", "expMode=Gate", "--set", "expExtSideChain=On", "--set", "compRatio=1:1"]
LATENCY = 52
INSTANCES = 6
with open(os.path.join(here, "../../tests/golden/parameters.txt")) as file:
    PARAMETERS = len(file.readlines()) + (form == "VST3")  # which has the bypass among them
KEY_DELAY = LATENCY  # a send of a track without latency comes as late as the plug-in's outputs do
EQUAL_DB = -100.0  # a host hands parameters over as shares of their range, rounded to 32 bits
# Ardour runs a varying number of blocks before an export begins. That shows in the last bit of the samples, and more where
# automation is under way, which it hands over block by block.
BLOCKS_DB = -70.0
REPEAT_DB = -120.0


def part(channels, track, seconds=None):
    start, own = placed[track]
    first = int(start * audio.RATE)
    return [c[first:first + (int(seconds * audio.RATE) if seconds else len(own[0]))] for c in channels]


def lua(command, session, environment, seconds=180):
    """The findings, each a list of words; the plug-in's and Ardour's own chatter is left out."""
    text = run(["ardour7-lua", os.path.join(here, "ardour.lua"), command, os.path.join(folder, session), session, form],
               environment, seconds)
    findings = [line.split("\t")[1:] for line in (text or "").splitlines() if line.startswith("found\t")]
    check(["done"] in findings, f"ardour.lua {command} came to its end")
    return findings


def export(session, environment):
    target = os.path.join(folder, session + "-export.wav")
    if os.path.exists(target):
        os.remove(target)
    text = run(["ardour7-export", "--bitdepth", "float", "--output",
               target, os.path.join(folder, session), session], environment)
    if not os.path.exists(target):
        print(text)
        check(False, "the export wrote a file")
        finish()
    return audio.read(target)


def words(findings, kind, track):
    return next(([*f[2:]] for f in findings if f[:2] == [kind, track]), [])


def parameters(findings):
    return {(f[1], f[2]): float(f[3]) for f in findings if f[0] == "parameter"}


def states(session):
    """What the LV2 form of the plug-in saved with the session, by the tracks' names."""
    found = {}
    for route in ElementTree.parse(os.path.join(folder, session, session + ".ardour")).iter("Route"):
        for processor in route.iter("Processor"):
            if (lv2 := processor.find("lv2")) is not None:
                with open(os.path.join(folder, session, "plugins", processor.get("id"), lv2.get("state-dir"), "state.ttl")) as file:
                    found[route.get("name")] = file.read()
    return found


def reference(track, environment, options, key=None):
    """What our offline host makes of a track's audio, in stereo, after as much silence as in the session."""
    start, channels = placed[track]
    source, keys, target = (os.path.join(folder, f"{track}-{end}.wav") for end in ("in", "key", "out"))
    silence = [0.0] * int(start * audio.RATE)
    audio.write(source, [silence + c for c in (channels * 2)[:2]])
    if key:
        audio.write(keys, [silence + [0.0] * KEY_DELAY + key] * 2)
        options = [*options, "--sidechain", keys]
    render(renderer, reference_module, source, target, environment, options)
    return [c[len(silence):] for c in audio.read(target)]


# Install and scan.
environment = home(os.path.join(folder, "home"), quiet)
installed = os.path.join(environment["HOME"], plugin_folder, os.path.basename(module))
shutil.copytree(module, installed)
reference_module = os.environ.get("REFERENCE_MODULE", module)

if form == "VST3":
    # The interpreter reads Ardour's cache and scans nothing by itself; Ardour's own scanner fills the cache.
    libraries = dict(environment, LD_LIBRARY_PATH="/usr/lib/ardour7")
    text = run(["/usr/lib/ardour7/ardour-vst3-scanner", "-f", "-v", installed], libraries) or ""
    check("Found Plugin: Tarvik 41 Channel" in text, "the scanner finds the plug-in")
    check('n_inputs="2" n_outputs="2" n_aux_inputs="2" n_aux_outputs="0"' in text,
          "with stereo buses and a stereo side chain")

# Build, load, programs.
built = lua("build", "first", environment)
check(["program", "Drum Buss 1", "true"] in built, "a factory program is offered by its name")
check(words(built, "instance", "mono")[:4] == ["in", "1", "out", "2"], "flexible mono track: one in, two out")
check(words(built, "instance", "strict")[:4] == ["in", "1", "out", "1"], "strict mono track: one in, one out")
check(words(built, "instance", "stereo")[:4] == ["in", "2", "out", "2"], "stereo track: two in, two out")
for track in ("keyed", "strictkeyed"):
    check(words(built, "instance", track)[-1:] == ["true"], f"mono track '{track}' takes a side chain")
check(all(f[-1] == "2" for f in built if f[0] == "key"), "with two ports")
latencies = {f[f.index("latency") + 1] for f in built if f[0] == "instance"}
check(latencies == {str(LATENCY)}, f"Ardour reads a latency of {LATENCY} samples: {sorted(latencies)}")

# Export, and compare with our offline host, sample by sample.
ardour_audio.add(os.path.join(folder, "first"), "first", placed, END)
first = export("first", environment)

dry = part(first, "dry")
worst = max(audio.difference(a, b) for a, b in zip(dry, placed["dry"][1]))
check(worst < EQUAL_DB, f"a track without the plug-in comes out in time and untouched: difference {worst:.1f} dB")

# A strict track has one output after the plug-in, its left one, which goes to both sides of the master bus.
for track, options, key in (("mono", same_options, None), ("strict", same_options, None),
                            ("stereo", ["--program", "Drum Buss 1"], None),
                            ("keyed", gate_options, KEY), ("strictkeyed", gate_options, KEY)):
    wanted = reference(track, environment, options, key)
    if track.startswith("strict"):
        wanted = [[PAN_LAW * sample for sample in wanted[0]]] * 2
    for side, samples, expected in zip(("left", "right"), part(first, track), wanted):
        worst = audio.difference(samples, expected)
        check(worst < EQUAL_DB and audio.rms(samples) > -60,
              f"{track}, {side}: {audio.rms(samples):.1f} dB, in time and equal to our own render, difference {worst:.1f} dB")

# Automation: 12 dB of gain in a slope between 1 s and 2 s.
automated = part(first, "automated")[0]
levels = [audio.rms(automated[int(a * audio.RATE):int(b * audio.RATE)])
          for a, b in ((0.5, 0.95), (1.4, 1.6), (2.2, 2.9))]
check(abs(levels[2] - levels[0] - 12.0) < 0.5,
      f"automated gain: {levels[2] - levels[0]:.2f} dB louder after the slope")
check(levels[0] + 3 < levels[1] < levels[2] - 3, f"and {levels[1] - levels[0]:.2f} dB in its middle")

# The gates on the keyed tracks open for the key alone.
for track in ("keyed", "strictkeyed"):
    keyed = part(first, track)[0]
    opened, closed = (audio.rms(keyed[int(a * audio.RATE):int(b * audio.RATE)]) for a, b in ((0.5, 0.9), (1.7, 1.95)))
    check(opened - closed > 10.0,
          f"side chain: the gate of '{track}' is {opened - closed:.1f} dB more open with the key")

# Reopen, play, save, export again.
listed = parameters(built)
if form == "LV2":
    # A plug-in of this format tells values to its window only: Ardour's interpreter knows those that it has set itself, so
    # that the saved states are compared instead.
    saved = states("first")
    reopened = lua("reopen", "first", environment)
    again = states("first")
    changed = [track for track in saved if track != "automated" and saved[track] != again.get(track)]
    check(len(saved) == INSTANCES and not changed,
          f"{len(saved)} saved states come back with the session: {len(changed)} differ")
    check(len(listed) == PARAMETERS * INSTANCES, f"Ardour lists {len(listed)} parameters")
else:
    reopened = lua("reopen", "first", environment)
    after = parameters(reopened)
    changed = [key for key, value in listed.items() if key != (
        "automated", "Gain") and abs(value - after.get(key, 9.0)) > 1e-6]
    check(len(listed) == PARAMETERS * INSTANCES and not changed,
          f"{len(listed)} parameters come back with the session: {len(changed)} differ")

for track in ("mono", "strict", "stereo", "automated", "keyed", "strictkeyed"):
    level = float((words(reopened, "meter", track) or ["-200"])[0])
    check(-40 < level < 6, f"playing: the meter of '{track}' shows {level:.1f} dB")

second = export("first", environment)
for place, begin, end, limit in (("automated track", 0.5, 3.5, BLOCKS_DB), ("rest", 3.5, END, REPEAT_DB)):
    samples = slice(int(begin * audio.RATE), int(end * audio.RATE))
    worst = max(audio.difference(a[samples], b[samples]) for a, b in zip(first, second))
    check(worst < limit, f"the reopened and saved session exports the same, {place}: difference {worst:.1f} dB")

# The window, before the needles of switched off instances stand still.
ardour_editor.check_editor(folder, "first", environment, form, renderer)

# Bypass, by Ardour's own switch.
bypassed = lua("bypass", "first", environment)
latencies = {f[f.index("latency") + 1] for f in bypassed if f[0] == "instance"}
check(latencies == {str(LATENCY)}, f"bypass keeps the latency: {sorted(latencies)}")
check(all(f[-1] == "false" for f in bypassed if f[0] == "instance"), "and Ardour shows the instances as switched off")
third = export("first", environment)
for track in ("mono", "stereo"):
    worst = max(audio.difference(wet, dry) for wet, dry in zip(part(third, track), placed[track][1] * 2))
    check(worst < EQUAL_DB, f"bypassed '{track}' is the dry signal in time: difference {worst:.1f} dB")

# Latency without oversampling, and at the highest factor.
for factor, latency in (("1", "0"), ("16", str(LATENCY))):
    probed = lua("probe", "factor" + factor, home(environment["HOME"], dict(quiet, Oversampling=factor)))
    check(["latency", latency] in probed, f"oversampling {factor}: latency {latency}")

finish()
