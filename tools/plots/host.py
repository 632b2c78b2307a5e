# SPDX-License-Identifier: GPL-3.0-or-later
"""Drives the offline host: sends audio through the module, reads the host's lists and decodes recordings."""
import os
import subprocess
import tempfile
from pathlib import Path

import numpy as np

SAMPLE = np.dtype("<f4")  # as samples go through the host's pipes


class Failure(Exception):
    """What the user must be told before we give up: one line without a full stop."""


class Host:
    """The offline host, and the module that it loads; without one, the module of its own build."""

    def __init__(self, tool: str, module: str | None = None):
        self.command = [tool, *(["--module", module] if module else [])]

    def text(self, *words: str, lines: list[str] = ()) -> str:
        """What the host prints when it is given lines of input."""
        done = subprocess.run([*self.command, *words], input="".join(line + "\n" for line in lines), text=True,
                              capture_output=True)
        if done.returncode != 0:
            raise failure(done.stderr)
        return done.stdout

    def numbers(self, *words: str, lines: list[str] = ()) -> np.ndarray:
        """A table that the host prints."""
        rows = self.text(*words, lines=lines).splitlines()
        return np.array([[float(cell) for cell in row.split("\t")] for row in rows])

    def positions(self) -> dict[str, list[str]]:
        """What each switch shows in each of its positions, by the parameter's name."""
        printed = self.text("list")
        head, *rows = printed[printed.index("ID "):printed.index("\nPrograms")].strip().splitlines()
        return {row.split()[0]: row[head.index("Values"):].split(", ") for row in rows}


def failure(printed: str) -> Failure:
    lines = printed.strip().splitlines() or ["the offline host ended without a word"]
    return Failure(lines[-1].removeprefix("tarvik41-render: "))


class Pipe:
    """The offline host at work on a command, with pipes on both ends."""

    def __init__(self, command: list[str], **options):
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                        **options)

    def samples(self, count: int) -> np.ndarray:
        """The next samples from the host."""
        data = self.process.stdout.read(SAMPLE.itemsize * count)
        if len(data) < SAMPLE.itemsize * count:
            raise failure(self.process.stderr.read().decode())
        return np.frombuffer(data, SAMPLE).astype(float)


class Strip(Pipe):
    """One mono instance of the module, to be used in a with statement: noise off, everything else as compiled whatever
    the user has saved, at a host rate in Hz and an oversampling factor."""

    def __init__(self, host: Host, rate: float, factor: int):
        self.rate = rate
        self.folder = tempfile.TemporaryDirectory()
        settings = Path(self.folder.name, "Tarvik Plugins", "Tarvik 41 Channel.settings")
        settings.parent.mkdir()
        settings.write_text(f'<PROPERTIES><VALUE name="Analog" val="0"/><VALUE name="Oversampling" val="{factor}"/>'
                            "</PROPERTIES>")
        super().__init__([*host.command, "stream"], env={**os.environ, "XDG_CONFIG_HOME": self.folder.name})

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.communicate()
        self.folder.cleanup()

    def run(self, signal: np.ndarray, *settings: str) -> np.ndarray:
        """What a reset strip makes of the signal, in time with it. Settings are as the host's --set takes them;
        equaliser and dynamics are out unless they are switched on."""
        header = [f"{self.rate}", f"{len(signal)}", "equalizer=off", "compIn=off", *settings]
        try:
            self.process.stdin.write(("\t".join(header) + "\n").encode() + signal.astype(SAMPLE).tobytes())
            self.process.stdin.flush()
        except BrokenPipeError:
            pass  # the reason follows
        return self.samples(len(signal))


class Recording(Pipe):
    """An audio file, decoded by the host as it is read; rate in Hz, length in samples."""

    def __init__(self, host: Host, path: str):
        super().__init__([*host.command, "decode", "--", path])
        self.name = Path(path).name
        header = self.process.stdout.readline().split()
        if not header:
            raise failure(self.process.stderr.read().decode())
        self.rate, self.channels, self.length = float(header[0]), int(header[1]), int(header[2])
        self.left = self.length
        if self.length == 0:
            raise Failure(f"there is no sound in '{path}'")

    def read(self, count: int) -> np.ndarray:
        """The next samples, one row for each channel, with silence after the end."""
        expected = min(count, self.left)
        self.left -= expected
        return np.pad(self.samples(expected * self.channels).reshape(-1, self.channels).T, ((0, 0), (0, count - expected)))
