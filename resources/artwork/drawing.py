# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs the programs that draw the pictures: those in solid/ inside Blender, all others by Debian's Python."""
import pathlib
import subprocess
import tempfile

from catalogue import ARTWORK, RESOURCES

# Without -nc, -nb and -np a grey or opaque picture would lose the colour kind that the catalogue states.
OPTIMISE = ["optipng", "-quiet", "-nc", "-nb", "-np", "-o2"]


def draw(rows, folder=None, samples=None, threads=1, optimise=True):
    """Draws rows into resources/ or, as NAME.png, into folder; samples limits the light paths per pixel of solid parts."""
    for program in sorted({row.program for row in rows}, key=lambda p: [row.program for row in rows].index(p)):
        mine = [row for row in rows if row.program == program]
        script = ARTWORK / program
        with tempfile.TemporaryDirectory() as scratch:
            targets = [(pathlib.Path(scratch) / f"{row.name}.png", target(row, folder)) for row in mine]
            pairs = [f"{row.name}={drawn}" for row, (drawn, _) in zip(mine, targets)]
            print(f"{program}: " + " ".join(row.name for row in mine), flush=True)
            if script.parent.name == "solid":
                command = ["blender", "-b", "--factory-startup", "-noaudio", "-t", str(threads),
                           "--python-exit-code", "1", "--python", str(script), "--"]
                command += ["--samples", str(samples)] if samples else []
                subprocess.run(command + pairs, check=True, stdout=subprocess.DEVNULL)
            else:
                subprocess.run(["/usr/bin/python3", str(script)] + pairs, check=True)
            for drawn, path in targets:
                if optimise:
                    subprocess.run(OPTIMISE + [str(drawn)], check=True)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_bytes(drawn.read_bytes())


def target(row, folder):
    return pathlib.Path(folder) / f"{row.name}.png" if folder else RESOURCES / row.file
