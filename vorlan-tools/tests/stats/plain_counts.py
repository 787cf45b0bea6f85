# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""A count of the rows of a report of format 3, as plain as can be: what `stats` must say."""

from __future__ import annotations

from collections import Counter, defaultdict
from dataclasses import dataclass, field
from fractions import Fraction


@dataclass
class Row:
    sequence: str
    unit_length: int
    perfection: Fraction
    start: int
    end: int
    bases: int
    copies: Fraction
    mismatches: int
    insertions: int
    deletions: int
    unit: str


@dataclass
class PlainTally:
    repeats: int = 0
    perfect: int = 0
    bases_in_repeats: int = 0
    bases_in_perfect: int = 0
    copies: Fraction = Fraction(0)
    longest: int = 0
    mismatches: int = 0
    insertions: int = 0
    deletions: int = 0

    def add(self, row: Row, knows_edits: bool) -> None:
        is_perfect = row.mismatches == row.insertions == row.deletions == 0 if knows_edits else row.perfection == 100
        self.repeats += 1
        self.perfect += is_perfect
        self.bases_in_repeats += row.bases
        self.bases_in_perfect += row.bases if is_perfect else 0
        self.copies += row.copies
        self.longest = max(self.longest, row.bases)
        self.mismatches += row.mismatches
        self.insertions += row.insertions
        self.deletions += row.deletions


@dataclass
class PlainCounts:
    whole: PlainTally = field(default_factory=PlainTally)
    by_unit_length: dict[int, PlainTally] = field(default_factory=lambda: defaultdict(PlainTally))
    by_unit: dict[str, PlainTally] = field(default_factory=lambda: defaultdict(PlainTally))
    by_sequence: dict[str, PlainTally] = field(default_factory=lambda: defaultdict(PlainTally))
    copies: Counter = field(default_factory=Counter)
    divergence: Counter = field(default_factory=Counter)
    covered: dict[str, set[int]] = field(default_factory=lambda: defaultdict(set))


def rows_of(table: str) -> list[Row]:
    """The rows behind the line of column names, for names without tabs."""
    lines = table.split("\n")
    first = next(i for i, line in enumerate(lines) if line.startswith("seq-name\t")) + 1
    rows = []
    for line in lines[first:]:
        cells = line.split("\t")
        if len(cells) < 14:
            continue
        rows.append(Row(cells[0], int(cells[1]), Fraction(cells[2]), int(cells[3]), int(cells[4]), int(cells[5]),
                        Fraction(cells[6]), *map(int, cells[8:11]), cells[12]))
    return rows


def normal_form(unit: str) -> str:
    """The alphabetically smallest of all rotations of both strands."""
    other = unit[::-1].translate(str.maketrans("ACGT", "TGCA"))
    return min(text[i:] + text[:i] for text in (unit, other) for i in range(len(text)))


def count(rows: list[Row], copy_classes: list[int], knows_edits: bool) -> PlainCounts:
    counts = PlainCounts()
    for row in rows:
        for tally in (counts.whole, counts.by_unit_length[row.unit_length], counts.by_unit[normal_form(row.unit)],
                      counts.by_sequence[row.sequence]):
            tally.add(row, knows_edits)
        copies = max(i for i, edge in enumerate(copy_classes) if edge <= row.copies)
        divergence = next(i for i in range(52) if i == 51 or 100 - row.perfection <= i)
        for counter, index in ((counts.copies, copies), (counts.divergence, divergence)):
            counter[row.unit_length, index, "repeats"] += 1
            counter[row.unit_length, index, "bases"] += row.bases
        counts.covered[row.sequence].update(range(row.start - 1, row.end))
    return counts
