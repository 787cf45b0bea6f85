# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""One repeat as a report tells it, with its lines written anew for comparison."""

from __future__ import annotations

import re
from dataclasses import dataclass

from report_settings import LineReader, ReportError, Settings

UNIT_NAMES = ["", "mono", "di", "tri", "tetra", "penta", "hexa"]
NUMBER = r" *(-?\d+) "
HEAD = rf" *([a-z]+|-?\d+-)nucleotide{NUMBER}:{NUMBER}\|{NUMBER}bp \|{NUMBER}BP \|{NUMBER}pt \| *(\S+) % \|"
COUNTS = rf"{NUMBER}mis \|{NUMBER}ins \|{NUMBER}del \|"
NS = rf"{NUMBER}N \|"


@dataclass
class ReportedRepeat:
    """Numbers and texts of one entry; the counts of edits and N are None where the format has none."""

    line: str
    label: str
    start: int
    end: int
    bases: int
    length: int
    score: int
    perfection: str
    unit: str
    counts: list[int]
    events: str | None
    alignment: list[str]

    @property
    def right(self) -> int:
        """One past the last base, counted from 0."""
        return self.end

    @property
    def left(self) -> int:
        """The first base, counted from 0."""
        return self.start - 1


def entry_pattern(settings: Settings) -> str:
    """Pattern of the first line of an entry, lenient about the blanks that pad its numbers."""
    if not settings.extended:
        return HEAD + " unit (.*)"
    return HEAD + COUNTS + ("" if settings.n_is_missense else NS) + "  unit (.*)"


def read_repeat(lines: LineReader, settings: Settings) -> ReportedRepeat:
    """Take the lines of one entry."""
    line = lines.take("a repeat or the closing line of the record")
    found = re.fullmatch(entry_pattern(settings), line)
    if found is None:
        raise ReportError(f"line {lines.next}: {line!r} is neither a repeat nor the closing line of the record")
    label, start, end, bases, length, score, perfection, *counts, unit = found.groups()
    events = lines.take("the list of events") if settings.extended else None
    alignment = [lines.take("an alignment line") for _ in range(3)]
    return ReportedRepeat(line, label + "nucleotide", int(start), int(end), int(bases), int(length), int(score),
                          perfection, unit, [int(count) for count in counts], events, alignment)


def label_of(unit_length: int) -> str:
    """Label of a unit length without its padding."""
    if unit_length < len(UNIT_NAMES):
        return UNIT_NAMES[unit_length] + "nucleotide"
    return f"{unit_length}-nucleotide"


def entry_line(repeat: ReportedRepeat, settings: Settings) -> str:
    """The first line of the entry, laid out from its own values."""
    unit_length = len(repeat.unit)
    label = f"{unit_length:5d}-nucleotide" if unit_length > 6 else f"{label_of(unit_length):>16}"
    line = (f"{label} {repeat.start:9d} : {repeat.end:9d} | {repeat.bases:6d} bp | {repeat.length:6d} BP"
            f" | {repeat.score:6d} pt | {repeat.perfection:>7} % | ")
    if settings.extended:
        names = ["mis", "ins", "del", "N"]
        line += "".join(f"{count:3d} {name} | " for count, name in zip(repeat.counts, names)) + " "
    return f"{line}unit {repeat.unit}"
