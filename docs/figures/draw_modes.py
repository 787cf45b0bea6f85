#!/usr/bin/python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Draws what the three modes find in one diverged repeat, as VORLAN reports it.

    draw_modes.py VORLAN OUT.svg
"""

from __future__ import annotations

import re
import subprocess
import sys
from dataclasses import dataclass
from pathlib import Path

sys.dont_write_bytecode = True

from style import BLUE, GREEN, PALE, VERMILION, write

from matplotlib.axes import Axes
from matplotlib.figure import Figure

SEQUENCE = Path(__file__).resolve().parents[2] / "examples/excerpts/at_rich.fa"
MODES = {"exact": GREEN, "extendExact": VERMILION, "imperfect": BLUE}
ENTRY = re.compile(r" *\S+ +(?P<start>\d+) : +(?P<end>\d+) \|.*\| +(?P<score>\d+) pt \|.*"
                   r"unit (?P<unit>\w+)\nMissense: (?P<edits>.*)\n")
EDIT = re.compile(r"\((\d+),([MID])\)")
MARKERS = {"M": ("x", "mismatch"), "I": ("^", "insertion"), "D": ("v", "deletion")}
BAR_HEIGHT = 0.5


@dataclass(frozen=True)
class Repeat:
    """Positions from 1, the end included."""

    start: int
    end: int
    score: int
    unit: str
    edits: list[tuple[int, str]]


def repeats(vorlan: str, mode: str) -> list[Repeat]:
    report = subprocess.run([vorlan, "-M", mode, "--printRepeatSeqMode", "0", str(SEQUENCE)], check=True,
                            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout
    return [Repeat(int(entry["start"]), int(entry["end"]), int(entry["score"]), entry["unit"],
                   [(int(entry["start"]) + int(offset) - 1, kind) for offset, kind in EDIT.findall(entry["edits"])])
            for entry in ENTRY.finditer(report)]


def rows(found: list[Repeat]) -> list[list[Repeat]]:
    """The repeats in as few rows as it takes to draw none over another."""
    free: list[list[Repeat]] = []
    for repeat in found:
        row = next((row for row in free if row[-1].end + 1 < repeat.start), None)
        if row is None:
            free.append([repeat])
        else:
            row.append(repeat)
    return free


def draw_repeat(axes: Axes, repeat: Repeat, y: float, colour: str) -> None:
    axes.barh(y, repeat.end - repeat.start + 1, left=repeat.start - 0.5, height=BAR_HEIGHT, color=PALE[colour],
              edgecolor=colour, linewidth=0.8)
    for position, kind in repeat.edits:
        # A deletion lies in front of the base that it is reported at.
        x = position - 0.5 if kind == "D" else position
        axes.plot(x, y, marker=MARKERS[kind][0], color="black", markersize=4, markeredgewidth=1, linestyle="none")
    axes.text((repeat.start + repeat.end) / 2, y - BAR_HEIGHT / 2 - 0.05, f"{repeat.unit}  {repeat.score}", ha="center",
              va="bottom", fontsize=7, color="black")


def draw(vorlan: str) -> Figure:
    header, *lines = SEQUENCE.read_text().splitlines()
    bases = "".join(lines)
    figure = Figure(figsize=(9.6, 4.1), layout="constrained")
    axes = figure.add_subplot()
    for position, base in enumerate(bases, 1):
        axes.text(position, 0, base, family="DejaVu Sans Mono", fontsize=6.5, ha="center", va="center")
    labels, y = [(0.0, "sequence")], 1.1
    for mode, colour in MODES.items():
        lanes = rows(repeats(vorlan, mode))
        labels.append((y + (len(lanes) - 1) / 2, mode))
        for lane in lanes:
            for repeat in lane:
                draw_repeat(axes, repeat, y, colour)
            y += 1
        axes.axhline(y - 0.4, color="#DDDDDD", linewidth=0.6)
        y += 0.3
    for marker, name in MARKERS.values():
        axes.plot([], [], marker=marker, color="black", markersize=4, linestyle="none", label=name)
    axes.legend(loc="upper center", bbox_to_anchor=(0.5, -0.13), ncols=3, frameon=False, fontsize=8)
    axes.set_xlim(0, len(bases) + 1)
    axes.set_ylim(y - 0.6, -0.7)
    axes.set_xticks([1, *range(10, len(bases) + 1, 10)])
    axes.set_yticks([place for place, _ in labels], [name for _, name in labels])
    axes.tick_params(axis="y", length=0, labelcolor="black", labelsize=9)
    axes.spines["left"].set_visible(False)
    axes.set_xlabel(f"position in {header.split(' ', 1)[1]} (bases)")
    axes.set_title("Repeats found in three modes: unit and score above each, edits as marks")
    return figure


def main(words: list[str]) -> int:
    if len(words) != 2:
        sys.stderr.write(__doc__ or "")
        return 1
    write(draw(words[0]), Path(words[1]))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
