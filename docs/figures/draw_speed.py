#!/usr/bin/python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Draws the measured speed against sequence length and unit length, from what bench/run_bench.py has stored.

    draw_speed.py RESULT... OUT.svg

The newest measurement of each work is taken: by the date in the file, of one date by the file name. The picture names
the files that it was drawn from.
"""

from __future__ import annotations

import re
import sys
from collections.abc import Iterator
from dataclasses import dataclass
from pathlib import Path

sys.dont_write_bytecode = True

from style import BLUE, VERMILION, write

from matplotlib.axes import Axes
from matplotlib.figure import Figure
from matplotlib.ticker import FuncFormatter, NullLocator

SEQUENCES = {"background": ("random bases", BLUE, "o"),
             "diverged-array": ("one array of (AT)n, 10 % errors", VERMILION, "s")}
BY_LENGTH = re.compile(r"-M imperfect, (background|diverged-array)-(\d+)")
BY_UNIT = re.compile(r"-M imperfect -u (\d+) -U \1, background-\d+")


@dataclass(frozen=True)
class Point:
    x: float
    y: float


def date_of(result: Path) -> str:
    return re.search(r"^- date: (\S+)$", result.read_text(), re.MULTILINE)[1]


def table_rows(result: Path) -> Iterator[dict[str, str]]:
    """The rows of all tables in a result, by the names of their columns."""
    header: list[str] | None = None
    for line in result.read_text().splitlines():
        cells = [cell.strip() for cell in line.strip("|").split("|")] if line.startswith("|") else None
        if cells is None:
            header = None
        elif header is None:
            header = cells
        elif not all(re.fullmatch("-+", cell) for cell in cells):
            yield dict(zip(header, cells))


def oldest_first(results: list[Path]) -> list[Path]:
    return sorted(results, key=lambda result: (date_of(result), result.name))


def cpu_seconds(results: list[Path]) -> dict[str, float]:
    """Of every work in the tables of growth."""
    seconds: dict[str, float] = {}
    for row in (row for result in oldest_first(results) for row in table_rows(result)):
        for work, column in (("work", "CPU s"), ("against", "against, CPU s")):
            if re.fullmatch(r"[\d.]+", row.get(column, "")):
                seconds[row[work]] = float(row[column])
    return seconds


def megabases_per_second(results: list[Path]) -> dict[str, float]:
    column = "million bases per CPU s"
    rows = (row for result in oldest_first(results) for row in table_rows(result))
    return {row["work"]: float(row[column]) for row in rows if column in row}


def time_by_length(results: list[Path]) -> dict[str, list[Point]]:
    series: dict[str, list[Point]] = {name: [] for name in SEQUENCES}
    for work, seconds in cpu_seconds(results).items():
        if match := BY_LENGTH.fullmatch(work):
            series[match[1]].append(Point(int(match[2]), seconds))
    return {name: sorted(points, key=lambda point: point.x) for name, points in series.items()}


def speed_by_unit(results: list[Path]) -> list[Point]:
    matches = ((BY_UNIT.fullmatch(work), speed) for work, speed in megabases_per_second(results).items())
    return sorted((Point(int(match[1]), speed) for match, speed in matches if match), key=lambda point: point.x)


def bases(value: float, _: int) -> str:
    return f"{value / 1e6:g} Mbp" if value >= 1e6 else f"{value / 1e3:g} kbp"


def plain(value: float, _: int) -> str:
    return f"{value:g}"


def logarithmic(axes: Axes) -> None:
    axes.set_xscale("log")
    axes.set_yscale("log")
    axes.yaxis.set_major_formatter(FuncFormatter(plain))
    axes.xaxis.set_minor_locator(NullLocator())
    axes.yaxis.set_minor_locator(NullLocator())
    axes.grid(color="#E5E5E5", linewidth=0.6)
    axes.set_axisbelow(True)


def draw_time(axes: Axes, series: dict[str, list[Point]]) -> None:
    logarithmic(axes)
    for name, points in series.items():
        label, colour, marker = SEQUENCES[name]
        axes.plot([point.x for point in points], [point.y for point in points], color=colour, marker=marker,
                  markersize=4, linewidth=1.2)
        middle = points[len(points) // 2]
        axes.annotate(label, (middle.x, middle.y), xytext=(8, -6), textcoords="offset points", color=colour, fontsize=8)
    axes.xaxis.set_major_formatter(FuncFormatter(bases))
    axes.set_title("Time by sequence length (unit lengths 1 to 10)")
    axes.set_xlabel("sequence length")
    axes.set_ylabel("CPU time (s)")


def draw_speed(axes: Axes, points: list[Point]) -> None:
    logarithmic(axes)
    axes.plot([point.x for point in points], [point.y for point in points], color=BLUE, marker="o", markersize=4,
              linewidth=1.2)
    # Marks closer than this factor would print over each other.
    axes.set_xticks([point.x for point, next_ in zip(points, points[1:]) if next_.x / point.x > 1.4] + [points[-1].x])
    axes.xaxis.set_major_formatter(FuncFormatter(plain))
    axes.set_title("Speed by unit length (one at a time, random bases)")
    axes.set_xlabel("unit length (bp)")
    axes.set_ylabel("million bases per CPU second")


def draw(results: list[Path]) -> Figure:
    series, points = time_by_length(results), speed_by_unit(results)
    if not points or not all(series.values()):
        raise SystemExit("The results lack measurements; run bench/run_bench.py")
    figure = Figure(figsize=(9.6, 3.4), layout="constrained")
    left, right = figure.subplots(1, 2)
    draw_time(left, series)
    draw_speed(right, points)
    return figure


def main(words: list[str]) -> int:
    if len(words) < 2:
        sys.stderr.write(__doc__ or "")
        return 1
    results = [Path(word) for word in words[:-1]]
    write(draw(results), Path(words[-1]), " ".join(sorted(result.name for result in results)))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
