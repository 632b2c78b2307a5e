# SPDX-License-Identifier: GPL-3.0-or-later
"""Two recordings of one rate, before and after: their outlines, their levels in thirds of an octave, and the change."""
from dataclasses import dataclass
from pathlib import Path

import numpy as np

from host import Failure, Host, Recording
from measure import decibels, report
from style import frame, frequencies, panels, shades, write

DEPTH_DB = 70  # what is quieter than this below the loudest band has no change worth a figure
PIECES = 760  # of which the outline has the lowest and the highest sample
LOUDEST_SAMPLE = 1e6  # whose powers still fit


class BandLevels:
    """The mean power of one channel in bands a third of an octave wide, with edges where IEC 61260 has them (base ten),
    from 25 Hz up to 20 kHz or what half the rate has room for.

    Spectra of pieces under a Hann window are summed up, each a quarter of its length after the one before, so that
    every sample counts alike, the first and the last too: what the bands add up to is the power between the lowest and
    the highest edge.
    """

    OVERLAP = 4
    SUM_OF_SQUARED_WINDOWS = 1.5  # over every sample

    def __init__(self, rate: float):
        self.rate, self.count = rate, 0
        self.length = 2 ** int(np.ceil(np.log2(rate / 2)))  # at least half a second: the lowest band is 6 Hz wide
        self.hop = self.length // self.OVERLAP
        self.window = 0.5 - 0.5 * np.cos(2 * np.pi * np.arange(self.length) / self.length)
        self.pending = np.zeros(self.length - self.hop)
        self.power = np.zeros(self.length // 2 + 1)

    def add(self, samples: np.ndarray):
        self.count += len(samples)
        self.pending = np.concatenate([self.pending, samples])
        while len(self.pending) >= self.length:
            self.power += np.abs(np.fft.rfft(self.window * self.pending[:self.length])) ** 2
            self.pending = self.pending[self.hop:]

    def finish(self) -> tuple[np.ndarray, np.ndarray]:
        """Centres in Hz, and the mean power in each band, of which a full-scale sine has 0.5."""
        count = self.count
        self.add(np.zeros(self.length))
        hz = 1000 * 10 ** (np.arange(-16, 14) / 10)
        hz = hz[hz * 10 ** 0.05 <= self.rate / 2]

        # Each line of the spectrum is as wide as its distance from the next one.
        lines, line_hz = np.arange(len(self.power)), self.rate / self.length
        low, high = hz[:, None] * 10 ** -0.05 / line_hz, hz[:, None] * 10 ** 0.05 / line_hz
        share = np.clip(np.minimum(lines + 0.5, high) - np.maximum(lines - 0.5, low), 0, None)
        return hz, 2 / (self.length * self.SUM_OF_SQUARED_WINDOWS * count) * (share @ self.power)


@dataclass
class Overview:
    """What is shown of a recording. Levels are in dBFS; of the bands, 0 dBFS is a full-scale sine in every channel."""

    name: str
    seconds: float
    outline: np.ndarray
    hz: np.ndarray
    bands: np.ndarray
    peak: float
    rms: float
    bad_samples: int


def overview(recording: Recording, length: int) -> Overview:
    """Of a recording and silence after it, up to a length in samples: only over the same time do levels compare."""
    bands = [BandLevels(recording.rate) for _ in range(recording.channels)]
    outline, power, bad = [], 0.0, 0
    edges = length * np.arange(PIECES + 1) // PIECES
    for count in np.diff(edges):
        samples = recording.read(count)
        good = np.isfinite(samples)
        bad += int(np.sum(~good))
        samples = np.where(good, samples, 0)
        power += np.sum(samples ** 2)
        outline.append((np.min(samples, initial=0), np.max(samples, initial=0)))
        for channel, row in zip(bands, np.clip(samples, -LOUDEST_SAMPLE, LOUDEST_SAMPLE)):
            channel.add(row)

    hz, powers = zip(*(channel.finish() for channel in bands))
    good_samples = max(1, recording.channels * length - bad)
    return Overview(recording.name, length / recording.rate, np.array(outline), hz[0],
                    decibels(np.sqrt(np.mean(powers, axis=0) / 0.5)), decibels(np.max(np.abs(outline))),
                    decibels(np.sqrt(power / good_samples)), bad)


def report_levels(which: str, shown: Overview):
    report(f"{which}: peak", shown.peak, "dBFS")
    report(f"{which}: RMS, 3.01 below a sine's peak", shown.rms, "dBFS")
    loudest = np.argmax(shown.bands)
    report(f"{which}: loudest third of an octave, at {shown.hz[loudest]:.0f} Hz", shown.bands[loudest], "dBFS")
    if shown.bad_samples:
        report(f"{which}: no finite numbers, taken as silence", shown.bad_samples, "samples", "d")


def draw(before: Overview, after: Overview, change: np.ndarray):
    figure, axes = panels(4, 1, 190, heights=[1, 1, 2.2, 1.2], row_gap=15)
    highest = min(max(0.02, *(np.max(np.abs(shown.outline)) for shown in (before, after))), 1000)
    scale, unit = (1, "s") if before.seconds >= 1 else (1000, "ms")
    dark, light = shades(3)[0], shades(3)[1]
    time = scale * before.seconds * np.arange(PIECES) / PIECES
    for panel, shown, colour in ((axes[0], before, light), (axes[1], after, dark)):
        frame(panel, shown.name, f"Time / {unit}", "Sample", (-1.05 * highest, 1.05 * highest))
        panel.set_xlim(0, scale * before.seconds)
        panel.fill_between(time, *shown.outline.T, color=colour, linewidth=0.3)

    loudest = max(-120, np.max([before.bands, after.bands]))
    top = 10 * np.ceil(loudest / 10)
    frame(axes[2], "Level in thirds of an octave", "Frequency / Hz", "Level / dBFS", (top - 90, top), 10)
    for shown, colour, name, dashes in ((before, light, "before", "--"), (after, dark, "after", "-")):
        levels = np.where(np.isfinite(shown.bands), shown.bands, np.nan)
        axes[2].plot(shown.hz, levels, dashes, color=colour, label=name)
    axes[2].legend(loc="best")
    farthest = 1.1 * max(1, np.max(np.abs(change), initial=0, where=np.isfinite(change)))
    frame(axes[3], "After over before", "Frequency / Hz", "Change / dB", (-farthest, farthest))
    axes[3].plot(after.hz, change, ".-", color=dark)
    for panel in axes[2:]:
        frequencies(panel, before.hz[0], before.hz[-1])
    return figure


def compare(host: Host, first: str, second: str, target: Path):
    recordings = [Recording(host, path) for path in (first, second)]
    if recordings[0].rate != recordings[1].rate:
        raise Failure(f"the recordings have different rates: {recordings[0].rate:g} and {recordings[1].rate:g} Hz")
    if not 4000 <= recordings[0].rate <= 1e6:
        raise Failure(f"the rate of '{first}' is {recordings[0].rate:g} Hz; from 4 kHz to 1 MHz is possible")

    length = max(recording.length for recording in recordings)
    before, after = (overview(recording, length) for recording in recordings)
    heard = np.minimum(before.bands, after.bands) > max(-120, np.max([before.bands, after.bands])) - DEPTH_DB
    change = np.full(len(heard), np.nan)
    change[heard] = after.bands[heard] - before.bands[heard]
    write(draw(before, after, change), target, "Before and after")
    report_levels("before", before)
    report_levels("after", after)
    for hz in (100, 1000, 10000):
        for place in np.flatnonzero(heard & (np.abs(np.log(after.hz / hz)) < 0.01)):
            report(f"change at {hz} Hz", change[place], "dB")
