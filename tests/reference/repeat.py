# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""One tandem repeat as an alignment of a stretch of the sequence with its unit.

All positions are indices into the residues of the record; right ends are one past the last residue.
"""

from __future__ import annotations

from dataclasses import dataclass, field

from settings import Settings, single


@dataclass
class Repeat:
    """Covers at first exactly one copy of its unit, which earns no score."""

    unit_begin: int
    unit_end: int
    pos_left: int = -1
    pos_right: int = -1
    cursor_forward: int = -1
    cursor_backward: int = -1
    score: int = 0
    mismatches: int = 0
    insertions: int = 0
    deletions: int = 0
    num_ns: int = 0
    events: list[tuple[int, str]] = field(default_factory=list)

    def __post_init__(self) -> None:
        self.pos_left = self.cursor_forward = self.unit_begin
        self.pos_right = self.unit_end
        self.cursor_backward = self.unit_end - 1

    @property
    def unit_length(self) -> int:
        return self.unit_end - self.unit_begin

    @property
    def span(self) -> int:
        return self.pos_right - self.pos_left

    @property
    def repeat_length(self) -> int:
        return self.span - self.insertions + self.deletions

    def turned(self, cursor: int, step: int) -> int:
        """The unit position next to cursor, around the unit."""
        return self.unit_begin + (cursor - self.unit_begin + step) % self.unit_length

    def trim_ns(self, residues: str) -> None:
        """A repeat neither begins nor ends with N."""
        while residues[self.pos_right - 1] == "N":
            self.pos_right -= 1
            self.cursor_forward = self.turned(self.cursor_forward, -1)
            self.num_ns -= 1
        while residues[self.pos_left] == "N":
            self.pos_left += 1
            self.cursor_backward = self.turned(self.cursor_backward, 1)
            self.num_ns -= 1

    def perfection(self, settings: Settings) -> float:
        """Per cent of matches, in single precision."""
        matches = self.repeat_length - self.mismatches - self.insertions - self.deletions
        length = self.repeat_length
        if settings.n_and_perfection_mode != 2:
            matches -= self.num_ns
        if settings.n_and_perfection_mode == 1:
            length -= self.num_ns
        return single(single(single(matches) / single(length)) * 100.0)

    def perfection_in_range(self, settings: Settings) -> bool:
        return settings.min_perfection <= self.perfection(settings) <= settings.max_perfection


def span_key(repeat: Repeat) -> tuple[int, int]:
    """Order of result lists; a stable sort keeps the order of equal spans."""
    return repeat.pos_left, repeat.pos_right


@dataclass(frozen=True)
class Direction:
    """One of the two directions in which a repeat grows."""

    step: int

    def front(self, repeat: Repeat) -> int:
        """The end of the repeat that moves."""
        return repeat.pos_right if self.step > 0 else repeat.pos_left

    def cursor(self, repeat: Repeat) -> int:
        """Where the unit base stands that the next residue should equal."""
        return repeat.cursor_forward if self.step > 0 else repeat.cursor_backward

    def next_residue(self, front: int) -> int:
        """Index of the residue that comes next at an end."""
        return front if self.step > 0 else front - 1

    def at_sequence_end(self, front: int, residues: str) -> bool:
        return front == (len(residues) if self.step > 0 else 0)

    def move_front(self, repeat: Repeat) -> None:
        if self.step > 0:
            repeat.pos_right += 1
        else:
            repeat.pos_left -= 1

    def move_cursor(self, repeat: Repeat) -> None:
        if self.step > 0:
            repeat.cursor_forward = repeat.turned(repeat.cursor_forward, 1)
        else:
            repeat.cursor_backward = repeat.turned(repeat.cursor_backward, -1)

    def n_run(self, front: int, residues: str) -> int:
        """Number of N in a row that come next."""
        count = 0
        while not self.at_sequence_end(front, residues) and residues[self.next_residue(front)] == "N":
            count += 1
            front += self.step
        return count

    def bridge_ns(self, repeat: Repeat, count: int) -> None:
        """Take in N residues as neutral."""
        for _ in range(count):
            self.move_front(repeat)
            self.move_cursor(repeat)
            repeat.num_ns += 1


FORWARD = Direction(1)
BACKWARD = Direction(-1)
