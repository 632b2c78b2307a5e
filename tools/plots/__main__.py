# SPDX-License-Identifier: GPL-3.0-or-later
"""Charts of the built module and of recordings.

  ./run plot KIND FOLDER               measures the module, draws what it finds as SVG files into FOLDER, and prints
                                       figures; KIND is eq, compressor, expander, saturation, or all of them
  ./run plot errors                    prints a table of the equaliser's deviations from its circuit
  ./run compare BEFORE AFTER FILE.svg  draws two recordings of one rate, one above the other, with their levels in
                                       thirds of an octave and the change, and prints figures

A plot takes no settings: noise is off, and the user's defaults do not count. ./run names the offline host by --tool
and the module by --module.
"""
import argparse
import importlib
import io
import os
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from host import Failure, Host

KINDS = {"eq": "equaliser", "compressor": "compressor", "expander": "expander", "saturation": "saturation"}


class Words(argparse.ArgumentParser):
    def error(self, message: str):
        raise Failure(message)


# The modules that draw are loaded where they are needed, since matplotlib takes a second.


def draw_charts(host: Host, kind: str, folder: Path):
    import measure
    import style

    def draw(module: str):
        measure.summary.file = io.StringIO()
        return importlib.import_module(module).plot(host), measure.summary.file

    try:
        folder.mkdir(parents=True, exist_ok=True)
    except OSError as error:
        raise Failure(f"cannot make the folder '{folder}': {error.strerror}") from error
    with ThreadPoolExecutor(2) as pool:
        for figures, summary in pool.map(draw, KINDS.values() if kind == "all" else [KINDS[kind]]):
            print(summary.getvalue(), end="")
            for name, figure in figures.items():
                style.write(figure, folder / f"{name}.svg", name)
                print(f"{name}.svg", flush=True)


def compare(host: Host, first: str, second: str, target: Path):
    if target.exists() and not target.is_file():
        raise Failure(f"cannot write '{target}': it is not an ordinary file")
    for path, what in ((first, "first"), (second, "second")):
        if target.exists() and os.path.exists(path) and target.samefile(path):
            raise Failure(f"cannot write '{target}': it is the {what} recording")
    import comparison
    comparison.compare(host, first, second, target)


def perform(host: Host, task: str, words: list[str]):
    match task, words:
        case "plot", ["errors"]:
            import errors
            errors.print_table(host)
        case "plot", [kind, folder] if kind in (*KINDS, "all"):
            draw_charts(host, kind, Path(folder))
        case "plot", _:
            raise Failure(f"a plot needs a kind ({', '.join(KINDS)} or all) and a folder, or the word errors alone, not "
                          f"'{' '.join(words)}'")
        case "compare", [first, second, target]:
            compare(host, first, second, Path(target))
        case _:
            raise Failure(f"two recordings and a file for the picture are needed, not '{' '.join(words)}'")


def main():
    words = Words(add_help=False, allow_abbrev=False)
    words.add_argument("task", nargs="?", choices=["plot", "compare"])
    words.add_argument("words", nargs="*")
    words.add_argument("--tool", default="tarvik41-render")
    words.add_argument("--module")
    words.add_argument("-h", "--help", action="store_true")
    try:
        line = words.parse_intermixed_args()
        if line.help or not line.task:
            print(__doc__.strip())
        else:
            perform(Host(line.tool, line.module), line.task, line.words)
    except Failure as problem:
        print(f"tarvik41-plots: {problem}", file=sys.stderr)
        sys.exit(2)
    except KeyboardInterrupt:
        sys.exit(130)


main()
