# SPDX-License-Identifier: GPL-3.0-or-later
"""A folder of its own for each test, in which the offline host, $TARVIK_RENDER_TOOL, works without noise."""
import os
import subprocess
import tempfile
import unittest
import wave
from pathlib import Path

import numpy as np

TOOL = os.environ["TARVIK_RENDER_TOOL"]
RATE = 48000


class Scratch(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = Path(scratch.name, "work")
        own = Path(scratch.name, "Tarvik Plugins")
        own.mkdir()
        self.folder.mkdir()
        (own / "Tarvik 41 Channel.settings").write_text('<PROPERTIES><VALUE name="Analog" val="0"/></PROPERTIES>')
        self.environment = {**os.environ, "XDG_CONFIG_HOME": scratch.name}

    def start(self, *words: str, **options) -> subprocess.Popen:
        return subprocess.Popen([TOOL, *words], cwd=self.folder, env=self.environment, text=True,
                                **{"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **options})

    def run_tool(self, *words: str, status: int = 0) -> tuple[str, str]:
        """What it prints, and its errors."""
        process = self.start(*words)
        printed = process.communicate()
        self.assertEqual(process.returncode, status, f"{words}: {printed[1]}")
        return printed

    def write(self, name: str, channels: np.ndarray, rate: int = RATE):
        (self.folder / name).parent.mkdir(exist_ok=True)
        with wave.open(str(self.folder / name), "wb") as file:
            file.setparams((len(channels), 2, rate, 0, "NONE", ""))
            file.writeframes(np.round(32767 * channels.T).astype("<i2").tobytes())


def noise(channels: int, length: int) -> np.ndarray:
    return np.random.default_rng(41).uniform(-0.5, 0.5, (channels, length))
