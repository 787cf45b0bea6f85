# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The alignment of a repeat with its unit, read from the three lines of a report.

Columns are numbered from 0 from left to right. Each column knows which residue of the record it shows and
which base of the unrolled unit: residues are counted from the first of the record, unit bases from the first
that the alignment shows. A column that shows no residue (or no unit base) holds the number of the next one to
the right.
"""

from __future__ import annotations

from collections import Counter
from dataclasses import dataclass

from report_settings import ReportError, Settings

MATCH, BRIDGED_N, MISMATCH, INSERTION, DELETION = "|*MID"
EDITS = MISMATCH + INSERTION + DELETION


@dataclass(frozen=True)
class Column:
    """One column of the alignment."""

    kind: str
    residue: int
    unit: int

    @property
    def is_edit(self) -> bool:
        return self.kind in EDITS


@dataclass(frozen=True)
class Alignment:
    """The columns with the residues and the unrolled unit that they show."""

    columns: list[Column]
    residues: str
    unrolled: str

    def count(self, kind: str) -> int:
        return Counter(column.kind for column in self.columns)[kind]

    def expected(self, number: int, unit_length: int) -> str:
        """Base of the unrolled unit, also before its first and after its last shown base."""
        return self.unrolled[number % unit_length]

    def events(self, left: int) -> str:
        """The list of events as a report writes it, positions counted from 1 at the first base."""
        edits = (column for column in self.columns if column.is_edit)
        return "".join(f"({column.residue - left + 1},{column.kind})," for column in edits)


def classify(base: str, sign: str, expected: str) -> str:
    """Kind of one column; raises ReportError for a column that no alignment can hold."""
    if base not in "ACGTN-" or expected not in "ACGT-" or sign not in "|* " or base == expected == "-":
        raise ReportError("holds a character that cannot stand there")
    if sign == " ":
        if base == expected:
            raise ReportError("shows an edit where the bases are equal")
        return DELETION if base == "-" else INSERTION if expected == "-" else MISMATCH
    if "-" in base + expected:
        raise ReportError(f"shows {sign!r} at a gap")
    if sign == "*" and base != "N":
        raise ReportError("shows '*' at a base that is not N")
    if sign == "|" and base != expected:
        raise ReportError("shows '|' where the bases differ")
    return BRIDGED_N if sign == "*" else MATCH


def read_columns(lines: list[str], left: int) -> Alignment:
    """The alignment of a repeat whose first base is the residue left; its lines come without flanks."""
    columns = []
    residue, unit = left, 0
    for number, signs in enumerate(zip(*lines), start=1):
        try:
            kind = classify(*signs)
        except ReportError as fault:
            raise ReportError(f"column {number} of the alignment {fault}") from None
        columns.append(Column(kind, residue, unit))
        residue += kind != DELETION
        unit += kind != INSERTION
    return Alignment(columns, lines[0].replace("-", ""), lines[2].replace("-", ""))


def strip_flanks(lines: list[str], settings: Settings) -> tuple[list[str], str, str]:
    """The three lines of the repeat alone, its left flank and its right flank."""
    if len({len(line) for line in lines}) != 1:
        raise ReportError("the alignment lines differ in length")
    if settings.flanking == 0:
        return lines, "", ""
    pieces = lines[0].split(":")
    if len(pieces) != 3:
        raise ReportError("the sequence line does not consist of left flank, repeat and right flank")
    first = len(pieces[0]) + 1
    last = first + len(pieces[1])
    for line in lines[1:]:
        if (line[:first] + line[last:]).strip(" "):
            raise ReportError("the match and unit lines are not blank beside the repeat")
    return [line[first:last] for line in lines], pieces[0], pieces[2]
