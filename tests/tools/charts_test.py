# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks of tools/plots."""
import os
import re
import subprocess
import sys
import unittest
import xml.etree.ElementTree as xml
from pathlib import Path

import numpy as np
from scratch import RATE, TOOL, Scratch, noise

PLOTS = Path(__file__).resolve().parents[2] / "tools" / "plots"
sys.path.insert(0, str(PLOTS))

import measure  # noqa: E402
from host import Failure, Host, Strip  # noqa: E402


class Charts(Scratch):
    printed = ""

    def draw(self, *words: str, **environment: str) -> subprocess.CompletedProcess:
        done = subprocess.run(["/usr/bin/python3", "-B", PLOTS, "--tool", TOOL, *words], cwd=self.folder, text=True,
                              capture_output=True, env={**os.environ, **environment})
        self.printed = done.stdout
        return done

    def figure(self, beginning: str) -> float:
        """The number in the only line that begins with the words; after it stands only its unit."""
        found = [line for line in self.printed.splitlines() if line.strip().startswith(beginning)]
        self.assertEqual(len(found), 1, beginning)
        return float(found[0].split()[-2])


class Measurements(Charts):
    def test_the_strip_plays_in_time_and_says_what_is_wrong(self):
        signal = measure.tone(1000, RATE, (-40, 0.1))
        with Strip(Host(TOOL), RATE, 2) as strip:
            quiet, loud, again = (strip.run(signal, f"gain={gain}") for gain in (0, 6, 0))
            np.testing.assert_array_equal(quiet, again)
            self.assertAlmostEqual(np.dot(loud[960:], quiet[960:]) / np.dot(quiet[960:], quiet[960:]), 10 ** 0.3, 3)
            lag = np.angle(np.dot(loud[960:], np.exp(-2j * np.pi * np.arange(960, 4800) / 48)) * 1j)
            self.assertLess(abs(lag), 0.1)  # of a turn of 6.3
            with self.assertRaisesRegex(Failure, "gian"):
                strip.run(signal, "gian=6")
        for sent, said in ((b"48000\t9\n123", "ends within a run of 9"), (b"0\t9\n", "a run begins with its rate")):
            done = subprocess.run([TOOL, "stream"], input=sent, capture_output=True)
            self.assertEqual((done.returncode, done.stdout), (2, b""))
            self.assertIn(said, done.stderr.decode())

    def test_the_table_of_errors_measures_the_circuit(self):
        import errors
        host = Host(TOOL)
        settings = errors.draw_settings(3, host.positions())
        networks = host.numbers("list", "network", lines=["\t".join(setting) for setting in settings])
        cells = [float(cell) for cell in errors.measure_row(host, settings, networks, 48000.0, 2).split("|")[3:-1]]
        self.assertTrue(0 < max(cells[:6]) <= 0.015, cells)  # the digital filters
        self.assertGreater(cells[-1], 0.1)  # a bilinear transform


class Comparison(Charts):
    def test_levels_and_what_lies_between(self):
        turns = 2 * np.pi * np.arange(RATE) / RATE
        swell = np.sin(turns / 2) ** 2  # so that nothing is heard between the tones

        def tones(low: float, high: float) -> np.ndarray:
            parts = swell * low * np.sin(100 * turns), swell * high * np.sin(10000 * turns)
            return np.array([parts[0] + parts[1], parts[0] - parts[1]])

        self.write("in.wav", tones(0.5, 0.25))
        self.write("out.wav", np.hstack([tones(0.25, 0.4), np.zeros((2, RATE))]))  # with silence after it
        self.assertEqual(self.draw("compare", "in.wav", "out.wav", "x.svg").returncode, 0)
        share = np.sqrt(3 / 8 / 2)  # RMS of the swell, over the longer time
        for beginning, gain in (("before: peak", 0.75), ("after: RMS", np.hypot(0.25, 0.4) / np.sqrt(2) * share),
                                ("before: loudest third of an octave, at 100 Hz", 0.5 * share),
                                ("change at 100 Hz", 0.5), ("change at 10000 Hz", 1.6)):
            self.assertAlmostEqual(self.figure(beginning), measure.decibels(gain), delta=0.03, msg=beginning)
        self.assertNotIn("at 1000 Hz", self.printed)  # there is nothing
        self.assertNotIn("nan", Path(self.folder, "x.svg").read_text())


class Mistakes(Charts):
    def test_each_is_one_line_status_two_and_no_file(self):
        for name, length, rate in (("in.wav", 5000, RATE), ("two.wav", 5000, RATE), ("slow.wav", 5000, 22050),
                                   ("silent.wav", 0, RATE)):
            self.write(name, noise(2, length), rate)
        before = sorted(self.folder.iterdir())
        for words, said in (
                ("plot", "kind"), ("plot eqs pictures", "'eqs pictures'"), ("plots eq pictures", "plots"),
                ("plot errors pictures", "'errors pictures'"), ("plot eq in.wav", "'in.wav'"),
                ("plot eq pictures --set gain=6", "--set"), ("plot eq . --module none.vst3", "none.vst3"),
                ("compare in.wav two.wav", "for the picture"), ("compare in.wav none.wav x.svg", "'none.wav'"),
                ("compare in.wav slow.wav x.svg", "22050"), ("compare in.wav silent.wav x.svg", "'silent.wav'"),
                ("compare in.wav two.wav .", "ordinary file"), ("compare in.wav two.wav two.wav", "second recording"),
                ("compare in.wav two.wav no/x.svg", "no/x.svg")):
            with self.subTest(words):
                done = self.draw(*words.split())
                self.assertEqual(done.returncode, 2)
                self.assertRegex(done.stderr, rf"^tarvik41-plots: .*{re.escape(said)}.*\n$")
                self.assertEqual(sorted(self.folder.iterdir()), before)


class Figures(Charts):
    def test_every_figure_is_what_the_circuits_say(self):
        self.assertEqual(self.draw("plot", "all", "new/pictures").stderr, "")
        names = [line for line in self.printed.splitlines() if line.endswith(".svg")]
        self.assertEqual(names, [f"{name}.svg" for name in (
            "eq-high", "eq-mid", "eq-low", "eq-channels", "compressor-transfer", "compressor-times",
            "expander-transfer", "expander-times", "saturation-harmonics")])
        for name in names:
            text = Path(self.folder, "new/pictures", name).read_text()
            self.assertNotIn("nan", text, name)
            curves = [path.get("d", "") for path in xml.fromstring(text).iter("{http://www.w3.org/2000/svg}path")]
            self.assertGreater(max(curve.count("L") for curve in curves), 8, name)

        # From the circuit: a short-circuited mid pot gives back what the make-up gain makes up for. At 0, 25 kilohms
        # stand over 5.1 for a boost, and 22 over 5.1 beside 25.47 for a cut.
        shunt = 5.1 * 25.47 / (5.1 + 25.47)
        boost_over_cut = measure.decibels(5.1 / 30.1 * (shunt + 22) / shunt)
        for beginning, expected, tolerance in (
                ("mid boost 2000 Hz", 15.42, 0.02), ("low boost 60 Hz", 15.4, 0.05),
                ("mid at 0, Boost over Cut", boost_over_cut, 0.01), ("high pass 80 Hz", 84, 1.5),
                ("channels: farthest", 1.0, 0.7), ("threshold -20 dB, 1:1", 0, 0.1),
                ("limiter at 0 dBFS: half of that after", 0.7, 0.5),  # ms; the latency would add 1.1
                ("expander, range 0 dB", 0, 0.1), ("THD 0 dB: farthest from the table", 0, 0.5)):
            self.assertAlmostEqual(self.figure(beginning), expected, delta=tolerance, msg=beginning)
        for shorter, longer, least, most in (
                ("attack Fast", "attack Slow", 2, 20), ("gate, release 0.1 s", "gate, release 0.3 s", 2.9, 3.1),
                ("gate, attack Fast, hold off", "gate, attack Slow, hold off", 1.5, 9),
                ("AUTO after a peak of 5 ms", "AUTO after a peak of 5000 ms", 4, 50)):
            ratio = self.figure(longer) / self.figure(shorter)
            self.assertTrue(least < ratio < most, f"{longer}: {ratio}")
        self.assertEqual(self.figure("gate, threshold -10 dB") - self.figure("gate, threshold -40 dB"), 30)

    def test_ignores_user_defaults_and_draws_the_same_each_time(self):
        own = self.environment["XDG_CONFIG_HOME"]
        Path(own, "Tarvik Plugins", "Tarvik 41 Channel.settings").write_text(
            '<PROPERTIES><VALUE name="Calibration" val="24"/></PROPERTIES>')
        pictures = []
        for environment in ({}, {"XDG_CONFIG_HOME": own}):
            self.draw("plot", "saturation", "x", **environment)
            pictures.append(Path(self.folder, "x", "saturation-harmonics.svg").read_bytes())
        self.assertEqual(*pictures)


unittest.main(verbosity=2)
