# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""What the three search modes share: the record, the thresholds and the marks."""

from __future__ import annotations

from dataclasses import dataclass

from console import Progress
from repeat import Repeat
from settings import Settings, Thresholds

OPEN, CLOSED = "a", " "
STARTS_BETWEEN_CLOCK_READINGS = 256


class Marks:
    """One mark per residue and one on each side: open positions may still anchor a candidate."""

    def __init__(self, length: int) -> None:
        self.marks = [OPEN] * (length + 2)

    def open(self, position: int) -> bool:
        return self.marks[position + 1] == OPEN

    def close(self, repeat: Repeat) -> None:
        """Close the span of an accepted repeat, but leave its edit positions open."""
        for position in range(repeat.pos_left, repeat.pos_right):
            self.marks[position + 1] = CLOSED
        for position, _ in repeat.events:
            self.marks[position + 1] = OPEN

    def allow(self, start: int, unit_length: int) -> bool:
        """Whether the stretch may be tried as a unit, judged by its first and last position and their neighbours."""
        end = start + unit_length
        return ((self.open(start) and (self.open(end - 1) or self.open(end)))
                or (self.open(start - 1) and self.open(end - 1)))


@dataclass
class Search:
    """The search of one record."""

    settings: Settings
    residues: str
    number: int
    name: str
    progress: Progress

    def show_progress(self, unit_length: int) -> None:
        if self.progress.due():
            self.progress.line(self.number, self.name, unit_length)

    def show_progress_at(self, start: int, unit_length: int) -> None:
        if start % STARTS_BETWEEN_CLOCK_READINGS == 0:
            self.show_progress(unit_length)

    def unit_lengths(self, first: int) -> range:
        """Unit lengths from first on; a unit as long as the record has no start position."""
        return range(first, min(self.settings.max_unit_length, len(self.residues)) + 1)

    def starts(self, unit_length: int) -> range:
        """A unit must be followed by a residue, so a unit that ends the record is never a start."""
        return range(0, len(self.residues) - unit_length)

    def can_be_unit(self, start: int, unit_length: int) -> bool:
        """No N, and not one base repeated: that is a repeat of unit length 1."""
        unit = self.residues[start:start + unit_length]
        return "N" not in unit and len(set(unit)) > 1


def reaches(repeat: Repeat, thresholds: Thresholds) -> bool:
    unit_length = repeat.unit_length
    return (repeat.score >= thresholds.min_score(unit_length)
            and repeat.repeat_length >= thresholds.min_length(unit_length))
