# SPDX-License-Identifier: GPL-3.0-or-later
"""The saturation's harmonics over the level of a tone, beside the console's table."""
import numpy as np

from host import Host, Strip
from measure import decibels, report, step_ends, tone, tone_amplitude
from style import frame, legend_below, linear, panels, sample, shades

TONE_HZ = 200
LEVELS = np.arange(-38, 4)  # dBFS
HARMONICS = np.arange(2, 8)
LINES = [dict(color=colour, linestyle=dashes) for colour in shades(3) for dashes in ("-", "--")]  # even ones are full


def measure(strip: Strip, thd: int) -> np.ndarray:
    """The amplitudes of the harmonics, a row for each level: a second each, of which the last half is measured."""
    output = strip.run(tone(TONE_HZ, strip.rate, *((level, 1.0) for level in LEVELS)), f"thd={thd}")
    ends = step_ends(output, strip.rate, 0.5)
    return np.array([tone_amplitude(ends, TONE_HZ * number, strip.rate) for number in HARMONICS]).T


def plot(host: Host):
    table = host.numbers("list", "harmonics")
    table_levels, wanted = np.round(decibels(table[:, 0])).astype(int), np.abs(table[:, 1:])
    figure, axes = panels(1, 3, 76, below=5)

    with Strip(host, 48000, 2) as strip:
        for panel, thd in zip(axes, (0, -30, 20)):
            measured = measure(strip, thd)
            for column, (number, line) in enumerate(zip(HARMONICS, LINES)):
                levels = decibels(measured[:, column])
                report(f"THD {thd} dB, -2 dBFS: harmonic {number}", levels[LEVELS == -2][0], "dBFS", ".1f")
                panel.plot(LEVELS, levels, **line)
            if thd == 0:
                far = np.abs(measured[table_levels - LEVELS[0]] - wanted) / wanted[:, :1]
                report("THD 0 dB: farthest from the table, in shares of h2", 100 * np.max(far), "%", ".3f")
                for column, line in enumerate(LINES):
                    panel.plot(table_levels, decibels(wanted[:, column]), "o", color=line["color"])
            frame(panel, f"THD at {thd} dB", "Level of the tone / dBFS",
                  "Level of the harmonic / dBFS", (-160, -20), 20)
            linear(panel, -40, 5, 10, 5)
            panel.label_outer()

    lines = [sample(name, **line) for name, line in zip(("2nd harmonic", "3rd", "4th", "5th", "6th", "7th"), LINES)]
    legend_below(figure, 0, "", [*lines, sample("console's table", marker="o", linestyle="none")])
    return {"saturation-harmonics": figure}
