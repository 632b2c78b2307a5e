# SPDX-License-Identifier: GPL-3.0-or-later
"""How far the equaliser's digital filters are from their circuit, measured through the module, beside the error that a
bilinear transform of the same circuits makes."""
from concurrent.futures import ThreadPoolExecutor

import numpy as np

from host import Host, Strip
from measure import Response, decibels

SHARES = np.array([0.5, 0.8, 0.9])  # of half the host's rate, up to which errors are counted
LEVEL_DB = 20  # so far below its own highest point a response still counts as one that has level
MAKE_UP_DB = 15.42
HIGH_PASSES = {"40 Hz": (339.29200658769764, 1.04), "80 Hz": (684.8671984825748, 1.05)}  # corner in rad/s, and Q


def draw_settings(count: int, positions) -> list[list[str]]:
    """Random settings of all that the equaliser's circuit has, the high pass and the console's channel the last."""
    random = np.random.RandomState(41)

    def draw(choices: int) -> int:
        return int(random.randint(0, 2 ** 32, dtype=np.uint32)) % choices

    def switch(name: str) -> str:
        return f"{name}={positions[name][draw(len(positions[name]))]}"

    def pot(name: str) -> str:
        return f"{name}@{draw(101) / 100}"

    return [[switch("highFreq"), switch("highGain"), switch("midFreq"), pot("midGain"), switch("midMode"),
             switch("lowFreq"), pot("lowGain"), switch("highPass"), f"TolChannel={draw(32) + 1}"] for _ in range(count)]


def circuit_db(setting: list[str], network: np.ndarray, radians: np.ndarray) -> np.ndarray:
    """High pass, network and make-up gain of one setting, over radians per second."""
    s = 1j * radians
    numerator, denominator = np.split(network, 2)
    gain = np.polyval(numerator, s) / np.polyval(denominator, s)
    if high_pass := HIGH_PASSES.get(setting[-2].removeprefix("highPass=")):
        corner, q = high_pass
        gain = gain * s ** 2 / (s ** 2 + s * corner / q + corner ** 2)
    return decibels(np.abs(gain)) + MAKE_UP_DB


def measure_row(host: Host, settings: list[list[str]], networks: np.ndarray, rate: float, factor: int) -> str:
    hz = np.geomspace(20, SHARES[-1] * rate / 2, 96)
    inside = hz / (rate / 2) * (1 - 1e-9) <= SHARES[:, None]
    warped = 2 * rate * factor * np.tan(np.pi * hz / (rate * factor))  # without prewarping
    largest = np.zeros((3, len(SHARES)))  # anywhere, where there is level, and the bilinear transform's there

    with Strip(host, rate, factor) as strip:
        bench = Response(strip, hz)
        for setting, network in zip(settings, networks):
            wanted = circuit_db(setting, network, 2 * np.pi * hz)
            error = np.abs(bench.measure(*setting[:-1], channel=int(setting[-1].removeprefix("TolChannel="))) - wanted)
            has_level = wanted > np.max(wanted) - LEVEL_DB
            rows = [error, error * has_level, np.abs(circuit_db(setting, network, warped) - wanted) * has_level]
            largest = np.maximum(largest, [np.max(row * inside, axis=1) for row in rows])

    return f"| {rate / 1000:.1f} kHz | {factor} |" + "".join(f" {error:.3f} |" for error in largest.flat)


def print_table(host: Host, count: int = 200):
    settings = draw_settings(count, host.positions())
    networks = host.numbers("list", "network", lines=["\t".join(setting) for setting in settings])
    print("| Host | Factor | to 0.5 | to 0.8 | to 0.9 | level, to 0.5 | to 0.8 | to 0.9 | bilinear, to 0.5 | to 0.8 | "
          "to 0.9 |\n" + "|---" * 11 + "|")
    with ThreadPoolExecutor(2) as pool:
        cases = [(rate, factor) for rate in (44100.0, 48000.0, 96000.0, 192000.0) for factor in (1, 2)]
        for row in pool.map(lambda case: measure_row(host, settings, networks, *case), cases):
            print(row, flush=True)
