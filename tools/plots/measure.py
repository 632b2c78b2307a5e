# SPDX-License-Identifier: GPL-3.0-or-later
"""Test tones, and what is measured of the strip with them."""
import threading

import numpy as np

from host import Strip

summary = threading.local()  # has a file where a thread's reports do not go to the standard output


def decibels(gain):
    with np.errstate(divide="ignore"):
        return 20 * np.log10(gain)


def report(subject: str, value: float, unit: str, style: str = ".2f"):
    """One line of a summary."""
    print(f"  {subject:<52} {value:{style}} {unit}", file=getattr(summary, "file", None))


def spectrum_at(samples: np.ndarray, radians: np.ndarray) -> np.ndarray:
    """The sum of x[n] e^(-j w n) at each of the angles w, in radians per sample."""
    heard = np.flatnonzero(np.abs(samples) > 1e-9 * np.max(np.abs(samples)))
    samples = samples[:heard[-1] + 1]

    # With n = a + m b: a product of matrices for the sum over a, and the few terms over b.
    m = int(np.ceil(np.sqrt(len(samples))))
    rows = np.pad(samples, (0, -len(samples) % m)).reshape(-1, m)
    angles = np.outer(np.arange(m), radians)
    inner = rows @ np.cos(angles) - 1j * (rows @ np.sin(angles))
    return np.sum(np.exp(-1j * m * np.outer(np.arange(len(rows)), radians)) * inner, axis=0)


class Response:
    """Magnitude responses of the equaliser within the running strip.

    An impulse goes through the whole strip, so low that the saturation is linear there, once with the equaliser out and
    once with it in: the quotient of the two spectra is free of what the rest of the strip does to the band, its filters
    at 6 Hz and 35 kHz and those of the oversampling.
    """

    def __init__(self, strip: Strip, hz: np.ndarray):
        self.strip, self.hz = strip, hz
        self.references = {}

    def spectrum(self, settings) -> np.ndarray:
        # Before the impulse, room for the oversampling's filters, which ring ahead of it too; after it, 2 s for the
        # slowest response. Half the difference between it and its mirror image is free of even powers, and of the small
        # constant that the saturation makes of silence.
        before = 256
        impulse = np.zeros(before + int(2 * self.strip.rate))
        impulse[before] = 1 / 1024
        difference = self.strip.run(impulse, *settings) - self.strip.run(-impulse, *settings)
        return np.abs(spectrum_at(difference / 2, 2 * np.pi * self.hz / self.strip.rate))

    def measure(self, *settings: str, channel: int = 1) -> np.ndarray:
        """In dB at each of the frequencies, on one of the console's channels."""
        common = f"TolChannel={channel}"
        if channel not in self.references:
            self.references[channel] = self.spectrum([common])
        return decibels(self.spectrum(["equalizer=on", common, *settings]) / self.references[channel])


def tone(hz: float, rate: float, *steps: tuple[float, float]) -> np.ndarray:
    """A sine that changes its level in steps of (dBFS, seconds), each at the phase at which the one before ends."""
    levels = np.concatenate([np.full(round(seconds * rate), 10 ** (level / 20)) for level, seconds in steps])
    return levels * np.sin(2 * np.pi * hz * np.arange(len(levels)) / rate)


def tone_amplitude(samples: np.ndarray, hz: float, rate: float) -> np.ndarray:
    """The amplitude of a tone in each row of samples, which hold whole periods of it."""
    count = samples.shape[-1]
    return 2 / count * np.abs(samples @ np.exp(-2j * np.pi * hz / rate * np.arange(count)))


def gain_over_time(strip: Strip, signal: np.ndarray, hz: float, start: float, *settings: str):
    """Seconds since the start, and the strip's gain in dB for each period of a tone, a whole number of samples long."""
    period = round(strip.rate / hz)
    count = len(signal) // period
    before, after = (tone_amplitude(samples[:count * period].reshape(count, period), hz, strip.rate)
                     for samples in (signal, strip.run(signal, *settings)))
    return (np.arange(count) + 0.5) * period / strip.rate - start, decibels(after / before)


def last_time_far(seconds: np.ndarray, values: np.ndarray, end: float, distance: float) -> float:
    """When a curve is for the last time farther from its end than a distance; 0 if it never is."""
    return np.max(seconds[np.abs(values - end) > distance], initial=0.0)


def step_ends(samples: np.ndarray, rate: float, seconds: float) -> np.ndarray:
    """The last seconds of each of the one-second steps of which the samples consist, one in each row."""
    return samples.reshape(-1, round(rate))[:, -round(seconds * rate):]


def transfer_curve(strip: Strip, lowest: float, *settings: str):
    """Levels in and out in dBFS: a tone of 1 kHz that climbs in steps of 2 dB up to full scale, each held for a second
    and measured over its last fifth."""
    levels = np.arange(lowest, 1.0, 2.0)
    output = strip.run(tone(1000, strip.rate, *((level, 1.0) for level in levels)), *settings)
    return levels, decibels(tone_amplitude(step_ends(output, strip.rate, 0.2), 1000, strip.rate))
