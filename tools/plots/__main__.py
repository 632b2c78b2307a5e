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


# The modules are loaded where they are needed, since the library that draws takes a second.


def plot(host: Host, kind: str = "", folder: str = "", *more: str):
    if not kind:
        raise Failure(f"the kind of plot is missing: {', '.join(KINDS)}, all or errors")
    if kind not in (*KINDS, "all", "errors"):
        raise Failure(f"there is no plot '{kind}', only {', '.join(KINDS)}, all and errors")
    if more or (kind == "errors" and folder):
        raise Failure(f"there is one word too many: '{(more or [folder])[0]}'")
    if kind == "errors":
        importlib.import_module("errors").print_table(host)
        return
    if not folder:
        raise Failure(f"a folder for the pictures is missing after '{kind}'")
    try:
        Path(folder).mkdir(parents=True, exist_ok=True)
    except OSError as error:
        raise Failure(f"cannot make the folder '{folder}': {error.strerror}") from error

    style, measure = importlib.import_module("style"), importlib.import_module("measure")

    def draw(module: str):
        measure.summary.file = io.StringIO()
        return importlib.import_module(module).plot(host), measure.summary.file

    with ThreadPoolExecutor(2) as pool:
        for figures, summary in pool.map(draw, KINDS.values() if kind == "all" else [KINDS[kind]]):
            print(summary.getvalue(), end="")
            for name, figure in figures.items():
                style.write(figure, Path(folder, f"{name}.svg"), name)
                print(f"{name}.svg", flush=True)


def compare(host: Host, *files: str):
    if len(files) != 3:
        excess = "".join(f", and not '{word}'" for word in files[3:])
        raise Failure(f"two recordings and a file for the picture are needed{excess}")
    first, second, target = files
    for path, what in ((first, "first"), (second, "second")):
        if os.path.exists(target) and os.path.exists(path) and os.path.samefile(path, target):
            raise Failure(f"cannot write '{target}': it is the {what} recording")
    if os.path.exists(target) and not os.path.isfile(target):
        raise Failure(f"cannot write '{target}': it is not an ordinary file")
    importlib.import_module("comparison").compare(host, first, second, Path(target))


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
            return
        host = Host(line.tool, line.module)
        plot(host, *line.words) if line.task == "plot" else compare(host, *line.words)
    except Failure as problem:
        print(f"tarvik41-plots: {problem}", file=sys.stderr)
        sys.exit(2)
    except KeyboardInterrupt:
        sys.exit(130)


main()
