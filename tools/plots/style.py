# SPDX-License-Identifier: GPL-3.0-or-later
"""How all charts look: as wide as a page of the manual, with letters of 8 to 9 points there, and for the same curves
the same file, byte by byte."""
import io
import os
import re
from pathlib import Path

import matplotlib
import numpy as np
from matplotlib import font_manager
from matplotlib.backends.backend_svg import FigureCanvasSVG
from matplotlib.figure import Figure
from matplotlib.lines import Line2D
from matplotlib.ticker import FixedLocator, FuncFormatter, MultipleLocator, NullFormatter

from host import Failure

WIDTH_MM = 168
INK, EDGE, GRID, FINE_GRID = "#22282c", "#8a9299", "#d3d8db", "#ebeef0"
FONTS = Path("/usr/share/texmf/fonts/opentype/public/tex-gyre")  # Debian's fonts-texgyre

matplotlib.rcdefaults()  # whatever the user has set up
for face in ("regular", "bold"):
    font_manager.fontManager.addfont(FONTS / f"texgyreheros-{face}.otf")
matplotlib.rcParams.update({
    "font.family": "TeX Gyre Heros", "font.size": 8, "axes.labelsize": 8.5, "axes.titlesize": 9, "axes.titlepad": 4,
    "axes.titlelocation": "left", "axes.titleweight": "bold", "axes.axisbelow": True, "axes.linewidth": 0.6,
    "lines.linewidth": 1.2, "lines.markersize": 3.2, "axes.edgecolor": EDGE, "text.color": INK, "axes.labelcolor": INK,
    **{f"{axis}tick.{key}": value for axis in "xy" for key, value in
       {"color": EDGE, "labelcolor": INK, "major.width": 0.6, "major.size": 2.5, "minor.size": 0}.items()},
    **{f"legend.{key}": value for key, value in
       {"edgecolor": "none", "framealpha": 0.85, "handlelength": 1.5, "handletextpad": 0.5, "columnspacing": 1.2,
        "labelspacing": 0.25, "borderpad": 0.3}.items()},
    "svg.fonttype": "path", "svg.hashsalt": "tarvik", "path.simplify_threshold": 0.1})


def shades(count: int) -> list:
    """The palette: as many colours in an order that the eye follows, from dark to light, in grey too."""
    return [matplotlib.colormaps["viridis"](place) for place in np.linspace(0.0, 0.83, count)]


def minus(text: str) -> str:
    """With minus signs instead of hyphens in front of numbers."""
    return re.sub(r"-(?=\d)", "\u2212", text)


def panels(rows: int, columns: int, height: float, gap: float = 6.0, below: float = 0.0, row_gap: float = 17.0,
           heights: list[float] | None = None):
    """A figure of a height in mm, and its axes row by row, with `gap` mm from panel to panel in a row and `below` mm
    for legends at its foot."""
    left, right, top, bottom = 13.0, 4.0, 6.0, 11.0
    figure = Figure(figsize=(WIDTH_MM / 25.4, height / 25.4))
    FigureCanvasSVG(figure)
    panel = [(WIDTH_MM - left - right - (columns - 1) * gap) / columns,
             (height - top - bottom - below - (rows - 1) * row_gap) / rows]
    grid = figure.add_gridspec(rows, columns, left=left / WIDTH_MM, right=1 - right / WIDTH_MM, top=1 - top / height,
                               bottom=(bottom + below) / height, wspace=gap / panel[0], hspace=row_gap / panel[1],
                               height_ratios=heights)
    return figure, [figure.add_subplot(grid[row, column]) for row in range(rows) for column in range(columns)]


def frame(axes, title: str, x: str, y: str, ylim: tuple[float, float], ystep: float | None = None):
    """Title, labels, the vertical scale and the grid."""
    axes.set_title(minus(title))
    axes.set_xlabel(x, labelpad=2)
    axes.set_ylabel(y, labelpad=2)
    axes.set_ylim(*ylim)
    if ystep:
        axes.yaxis.set_major_locator(MultipleLocator(ystep))
    axes.grid(True, which="minor", color=FINE_GRID, linewidth=0.5)
    axes.grid(True, which="major", color=GRID, linewidth=0.6)


def level_frame(axes, title: str, lowest_in: float, lowest_out: float, step: float, fine: float | None = None):
    """For level out over level in, both up to 0 dBFS."""
    frame(axes, title, "Level in / dBFS", "Level out / dBFS", (lowest_out, 0), 10)
    linear(axes, lowest_in, 0, step, fine)


def linear(axes, low: float, high: float, step: float, fine: float | None = None):
    axes.set_xlim(low, high)
    axes.xaxis.set_major_locator(MultipleLocator(step))
    if fine:
        axes.xaxis.set_minor_locator(MultipleLocator(fine))


def logarithmic(axes, low: float, high: float, digits=(1, 2, 5), name=lambda value: f"{value:g}"):
    """A scale with labels at some digits of each decade, and lines at all."""
    steps = [digit * 10.0 ** exponent for exponent in range(-4, 6) for digit in range(1, 10)]
    steps = [step for step in steps if low * 0.999 < step < high * 1.001]
    labelled = [step for step in steps if round(step / 10 ** np.floor(np.log10(step) + 1e-9)) in digits]
    axes.set_xscale("log")
    axes.set_xlim(low, high)
    axes.xaxis.set_major_locator(FixedLocator(labelled))
    axes.xaxis.set_minor_locator(FixedLocator([step for step in steps if step not in labelled]))
    axes.xaxis.set_major_formatter(FuncFormatter(lambda value, _: name(value)))
    axes.xaxis.set_minor_formatter(NullFormatter())


def frequencies(axes, low: float, high: float):
    logarithmic(axes, low, high, name=lambda hz: f"{hz / 1000:g}k" if hz >= 999 else f"{hz:g}")


def times(axes, low: float, high: float):
    """In seconds."""
    logarithmic(axes, low, high, (1,), lambda s: f"{1000 * s:g} ms" if s < 0.999 else f"{s:g} s")


def sample(label: str, **line) -> Line2D:
    """A line for a legend alone."""
    return Line2D([], [], label=minus(label), **({"color": INK} | line))


def legend_below(figure: Figure, row: int, heading: str, lines: list):
    """A row of the legend at the figure's foot, the lowest being 0."""
    handles = [sample(heading, linestyle="none"), *lines] if heading else lines
    legend = figure.legend(handles=handles, ncol=len(handles), loc="lower center",
                           bbox_to_anchor=(0.5, (0.5 + 5 * row) / (figure.get_figheight() * 25.4)), borderaxespad=0)
    if heading:
        legend.legendHandles[0].set_visible(False)


def write(figure: Figure, path: Path, title: str):
    """Writes a picture, which appears when it is complete."""
    stream = io.StringIO()
    figure.savefig(stream, format="svg", metadata={"Title": title, "Date": None, "Creator": None})

    # A hundredth of a point is seen by nobody, and the sixth decimal differs from processor to processor.
    def rounded(places):
        return re.sub(r"-?\d+\.\d{3,}", lambda number: f"{float(number[0]):.2f}", places[0])

    text = re.sub(r' (?:d|x|y)="[^"]*"', rounded, stream.getvalue())
    hidden = path.with_name(f".{path.name}.{os.getpid()}.part")
    try:
        hidden.write_text(text)
        hidden.replace(path)
    except OSError as error:
        raise Failure(f"cannot write '{path}': {error.strerror}") from error
    finally:
        hidden.unlink(missing_ok=True)
