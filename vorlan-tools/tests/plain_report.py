# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""A second reader of reports of format 1 with alignments, as plain as can be: what a conversion must say.

It shares nothing with the program under test: regular expressions, whole files in memory.
"""

from __future__ import annotations

import re
from dataclasses import dataclass

UNIT_NAMES = ["mononucleotide", "dinucleotide", "trinucleotide", "tetranucleotide", "pentanucleotide",
              "hexanucleotide"]
ENTRY = re.compile(r" *(\S+) +(\d+) : +(\d+) \| +(\d+) bp \| +(\d+) BP \| +(-?\d+) pt \| +(-?[\d.]+) % \|"
                   r" +(\d+) mis \| +(\d+) ins \| +(\d+) del \|(?: +(\d+) N \|)?  unit (\S+)")


@dataclass
class PlainRepeat:
    """Coordinates as printed: from 1, both ends included."""

    sequence: str
    start: int
    end: int
    bases: int
    length: int
    score: int
    perfection: str
    mismatches: int
    insertions: int
    deletions: int
    ns: int | None
    unit: str
    unit_length: int
    events: str
    rows: list[str]

    @property
    def copies(self) -> float:
        return self.length / self.unit_length

    @property
    def motif(self) -> str:
        return self.rows[2].replace("-", "")[:self.unit_length]

    @property
    def cigar_letters(self) -> str:
        """One letter for each column; the sequence is the reference, the perfect repeat the query."""
        letters = ""
        for base, expected in zip(self.rows[0], self.rows[2]):
            letters += "I" if base == "-" else "D" if expected == "-" else "=" if base == expected else "X"
        return letters


def unit_length_of(label: str) -> int:
    return UNIT_NAMES.index(label) + 1 if label in UNIT_NAMES else int(label.removesuffix("-nucleotide"))


def strip_flanks(rows: list[str]) -> list[str]:
    if ":" not in rows[0]:
        return rows
    first, last = rows[0].index(":") + 1, rows[0].rindex(":")
    return [row[first:last] for row in rows]


def read_plain_report(text: str) -> list[PlainRepeat]:
    """All repeats of a report of format 1 whose names are plain words."""
    lines = iter(text.split("\n"))
    repeats = []
    name = ""
    for line in lines:
        if line.startswith(">"):
            name = line[1:].split(" ")[0]
        found = ENTRY.fullmatch(line)
        if not found:
            continue
        numbers = [int(number) for number in found.group(2, 3, 4, 5, 6)]
        counts = [int(number) for number in found.group(8, 9, 10)]
        ns = None if found[11] is None else int(found[11])
        events = next(lines).removeprefix("Missense: ")
        rows = strip_flanks([next(lines) for _ in range(3)])
        repeats.append(PlainRepeat(name, *numbers, found[7], *counts, ns, found[12], unit_length_of(found[1]),
                                   events, rows))
    return repeats


def run_lengths(letters: str) -> list[tuple[int, str]]:
    return [(len(run[0]), run[1]) for run in re.finditer(r"(.)\1*", letters)]
