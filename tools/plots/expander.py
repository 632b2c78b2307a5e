# SPDX-License-Identifier: GPL-3.0-or-later
"""Expander and gate: level out over level in, and the gate's gain over time."""
import numpy as np

from host import Host, Strip
from measure import gain_over_time, report, tone, transfer_curve
from style import INK, frame, level_frame, linear, minus, panels, shades

LOWEST_IN, LOWEST_OUT = -70, -90  # dBFS
LOUD_DBFS, QUIET_DBFS = -10, -60
TONE_HZ = 2000
ALONE = ["compIn=on", "compRatio=1:1"]  # the compressor stands aside


def measure_transfer(strip: Strip, *settings: str):
    return transfer_curve(strip, LOWEST_IN, *ALONE, *settings, "expRelease=0.1")


def thresholds(strip: Strip, panel, mode: str):
    names = ["-40", "-30", "-20", "-10", "0"]
    for name, colour in zip(names, shades(len(names))):
        levels, output = measure_transfer(strip, f"expMode={mode}", f"expThreshold={name}")
        opened = np.abs(output - levels) < 3
        if np.any(opened):
            report(f"{mode.lower()}, threshold {name} dB: within 3 dB of open from", levels[np.argmax(opened)], "dBFS",
                   "g")
        panel.plot(levels, output, color=colour, label=minus(f"{name} dB"))


def ranges(strip: Strip, panel):
    names, expander = ["0", "-5", "-10", "-20"], ["expMode=Expander", "expThreshold=-20"]
    for name, colour in zip(names, shades(len(names))):
        levels, output = measure_transfer(strip, *expander, f"expRange={name}")
        report(f"expander, range {name} dB: gain at -70 dBFS", output[0] - levels[0], "dB")
        panel.plot(levels, output, color=colour, label=minus(f"{name} dB"))
    panel.plot(*measure_transfer(strip, *expander, "expRange=-20", "expInverted=on"), "--", color=INK, label="inverted")


def transfer(strip: Strip):
    figure, axes = panels(1, 3, 62)
    thresholds(strip, axes[0], "Expander")
    thresholds(strip, axes[1], "Gate")
    ranges(strip, axes[2])
    for panel, title in zip(axes, ("Expander, by threshold", "Gate, by threshold", "Expander at -20 dB, by range")):
        level_frame(panel, title, LOWEST_IN, LOWEST_OUT, 20, 10)
        panel.legend(loc="lower right")
        panel.label_outer()
    return figure


def jump(strip: Strip, first: float, second: float, seconds: float, *settings: str):
    """Gain in dB over the milliseconds since a tone has jumped from one level in dBFS to another, for some seconds."""
    signal = tone(TONE_HZ, strip.rate, (first, 2.0), (second, seconds), (first, 3.0))
    time, gain = gain_over_time(strip, signal, TONE_HZ, 2.0, *ALONE, "expMode=Gate", "expThreshold=-20", *settings)
    return 1000 * time, gain


def closing(strip: Strip, panel, positions):
    for hold, dashes in (("off", "-"), ("on", "--")):
        for attack, colour in zip(positions["expAttack"], shades(3)):
            time, gain = jump(strip, LOUD_DBFS, QUIET_DBFS, 1.0, f"expAttack={attack}", f"expHold={hold}")
            report(f"gate, attack {attack}, hold {hold}: 10 dB closed after",
                   time[np.argmax((time > 0) & (gain < -10))], "ms", ".1f")
            panel.plot(time, gain, dashes, color=colour, label=attack if hold == "off" else "")
    panel.plot([], [], "--", color=INK, label="with hold")


def opening(strip: Strip, panel):
    releases = ["0.025", "0.1", "0.3", "1.6"]
    for release, colour in zip(releases, shades(len(releases))):
        time, gain = jump(strip, QUIET_DBFS, LOUD_DBFS, 2.0, f"expRelease={release}")
        opened = (time > 0) & (time <= 1000) & (gain > -3)
        if np.any(opened):
            report(f"gate, release {release} s: within 3 dB of open after", time[np.argmax(opened)], "ms", "g")
        panel.plot(time, gain, color=colour, label=f"{release} s")


def over_time(strip: Strip, positions):
    figure, axes = panels(1, 2, 58, gap=11)
    frame(axes[0], "Gate closing, by attack", "Time / ms", "Gain / dB", (-20, 5), 5)
    frame(axes[1], "Gate opening, by release", "Time / ms", "Gain / dB", (-20, 5), 5)
    linear(axes[0], -20, 100, 20)
    linear(axes[1], -200, 1000, 200)
    closing(strip, axes[0], positions)
    opening(strip, axes[1])
    axes[0].legend(loc="upper right")
    axes[1].legend(loc="lower right")
    axes[1].label_outer()
    return figure


def plot(host: Host):
    with Strip(host, 48000, 2) as strip:
        return {"expander-transfer": transfer(strip), "expander-times": over_time(strip, host.positions())}
