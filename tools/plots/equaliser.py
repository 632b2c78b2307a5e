# SPDX-License-Identifier: GPL-3.0-or-later
"""The equaliser's responses: every position of its switches, the way of its potentiometers, the console's channels."""
import numpy as np

from host import Host, Strip
from measure import Response, report
from style import frame, frequencies, legend_below, minus, panels, sample, shades

LOWEST_HZ, HIGHEST_HZ, HIGHEST_OF_LOW_HZ = 10, 20000, 2000
PLACES = [0.0, 0.25, 0.5, 0.75, 1.0]  # of a potentiometer


def response_frame(axes, title, lowest_hz, highest_hz, ylim, step=5):
    frame(axes, title, "Frequency / Hz", "Gain / dB", ylim, step)
    frequencies(axes, lowest_hz, highest_hz)


def high(bench: Response, positions):
    gains, colours = positions["highGain"], shades(len(positions["highGain"]))
    figure, axes = panels(1, 3, 60, below=5)
    for panel, hz in zip(axes, positions["highFreq"]):
        response_frame(panel, f"High section, {hz}", 200, HIGHEST_HZ, (-20, 15))
        for gain, colour in zip(gains, colours):
            db = bench.measure(f"highFreq={hz}", f"highGain={gain}")
            report(f"high {hz}, {gain}: at 20 kHz", db[-1], "dB")
            panel.plot(bench.hz, db, color=colour)
        panel.label_outer()
    legend_below(figure, 0, "Switch / dB", [sample(gain.removesuffix(" dB"), color=colour)
                                            for gain, colour in zip(gains, colours)])
    return figure


def mid(bench: Response, positions):
    switch, colours, pot_colours = positions["midFreq"], shades(len(positions["midFreq"])), shades(len(PLACES))
    figure, axes = panels(1, 3, 68, gap=9, below=10)
    for panel, mode, ylim in ((axes[0], "Boost", (-5, 20)), (axes[1], "Cut", (-25, 5))):
        response_frame(panel, f"Mid section, {mode.lower()} fully up", 100, HIGHEST_HZ, ylim)
        for hz, colour in zip(switch, colours):
            db = bench.measure(f"midFreq={hz}", f"midMode={mode}", "midGain@1")
            peak = np.argmax(db) if mode == "Boost" else np.argmin(db)
            report(f"mid {mode.lower()} {hz}: at {bench.hz[peak]:.0f} Hz", db[peak], "dB")
            panel.plot(bench.hz, db, color=colour)

    response_frame(axes[2], "2000 Hz, places of the knob", 100, HIGHEST_HZ, (-20, 20))
    at_rest = {}
    for place, colour in zip(PLACES, pot_colours):
        for mode, extreme, find, dashes in (("Cut", "lowest", np.min, "--"), ("Boost", "highest", np.max, "-")):
            db = bench.measure("midFreq=2000 Hz", f"midMode={mode}", f"midGain@{place}")
            report(f"{mode.lower()} 2000 Hz at {place:.2f}: {extreme}", find(db), "dB")
            axes[2].plot(bench.hz, db, dashes, color=colour)
            at_rest.setdefault(mode, db[0])
    report("mid at 0, Boost over Cut", at_rest["Boost"] - at_rest["Cut"], "dB", ".3f")

    for panel in axes[1:]:
        panel.set_ylabel("")
    legend_below(figure, 1, "Switch / Hz", [sample(hz.removesuffix(" Hz"), color=colour)
                                            for hz, colour in zip(switch, colours)])
    legend_below(figure, 0, "Knob", [sample(f"{place:g}", color=colour) for place, colour in zip(PLACES, pot_colours)]
                 + [sample("boost"), sample("cut", linestyle="--")])
    return figure


def low(bench: Response, positions):
    places, boosts, cuts = PLACES[1:], positions["lowFreq"][:4], positions["lowFreq"][4:]
    figure, axes = panels(2, 3, 94, gap=9, row_gap=12)
    for panel, hz in zip(axes, boosts):
        response_frame(panel, f"Low boost, {hz}", LOWEST_HZ, HIGHEST_OF_LOW_HZ, (-5, 20))
        for place, colour in zip(places, shades(len(places))):
            db = bench.measure(f"lowFreq={hz}", f"lowGain@{place}")
            panel.plot(bench.hz, db, color=colour, label=f"knob at {place:g}")
        report(f"low boost {hz}: at {bench.hz[np.argmax(db)]:.0f} Hz", np.max(db), "dB")

    response_frame(axes[4], "Positions without a boost", LOWEST_HZ, HIGHEST_OF_LOW_HZ, (-30, 5))
    fifty = np.argmax(bench.hz >= 50)
    for name, colour in zip(cuts, shades(len(cuts))):
        db = bench.measure(f"lowFreq={name}")
        report(f"low cut {name}: at {bench.hz[fifty]:.0f} Hz", db[fifty], "dB")
        axes[4].plot(bench.hz, db, color=colour, label=minus(name))

    response_frame(axes[5], "High pass", LOWEST_HZ, HIGHEST_OF_LOW_HZ, (-30, 5))
    for name, colour in zip(positions["highPass"], shades(len(positions["highPass"]))):
        db = bench.measure(f"highPass={name}")
        if name != "OFF":
            report(f"high pass {name}: -3 dB at", bench.hz[np.argmax(db > -3)], "Hz", ".1f")
        axes[5].plot(bench.hz, db, color=colour, label="off" if name == "OFF" else name)

    for number, panel in enumerate(axes):
        panel.set_xlabel(panel.get_xlabel() if number >= 3 else "")
        panel.set_ylabel(panel.get_ylabel() if number % 3 == 0 else "")
    axes[0].legend(loc="upper left")
    axes[4].legend(loc="lower right")
    axes[5].legend(loc="lower right")
    return figure


def channels(bench: Response):
    bold = ["lowFreq=60 Hz", "lowGain@1", "midFreq=2000 Hz", "midGain@1", "midMode=Boost", "highFreq=10 kHz",
            "highGain=8 dB", "highPass=40 Hz"]
    responses = np.array([bench.measure(*bold, channel=channel) for channel in range(1, 33)])
    report("channels: farthest from channel 1", np.max(np.abs(responses - responses[0])), "dB")

    figure, axes = panels(1, 2, 60, gap=14)
    response_frame(axes[0], "One setting on 32 channels", LOWEST_HZ, HIGHEST_HZ, (-5, 20))
    response_frame(axes[1], "Difference from channel 1", LOWEST_HZ, HIGHEST_HZ, (-1.5, 1.5), 0.5)
    nominal, others = dict(color="black", linewidth=1.6), dict(color=shades(3)[1], linewidth=0.6)
    for panel, curves in zip(axes, (responses, responses - responses[0])):
        panel.plot(bench.hz, curves[1:].T, **others)
        panel.plot(bench.hz, curves[0], **nominal)
    axes[0].legend(handles=[sample("channel 1, nominal parts", **nominal), sample("channels 2 to 32", **others)],
                   loc="lower right")
    return figure


def plot(host: Host):
    positions = host.positions()
    with Strip(host, 48000, 2) as strip:
        bench = Response(strip, np.geomspace(LOWEST_HZ, HIGHEST_HZ, 601))
        return {"eq-high": high(bench, positions), "eq-mid": mid(bench, positions), "eq-low": low(bench, positions),
                "eq-channels": channels(bench)}
