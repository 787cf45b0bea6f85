# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Facts about an alignment that follow from how a repeat grows out of its seed.

A repeat begins as a seed: one copy of the unit, free of edits and N, that is followed by at least one base; in
extendExact mode the whole perfect stretch around that copy. It grows to the right, then to the left. A report
does not tell which copy was the seed, so an alignment is accepted when at least one of its copies can have
been. For the true seed all of this holds:

- The copy earns nothing; every other matching base earns 1.
- An edit is made only where the next residue differs from the expected base (a fitting residue is always
  taken), and never at an N where N runs are bridged (the run is crossed, or it ends the extension).
- Right after an edit the score lies above max(best - score reduction, -unit length) - preference, where best
  is the highest score at the start of the direction or at an earlier edit, and the preference is 1 for
  longer and 0 for shorter repeats.
- The state kept at the end of a direction scores more than best - preference. It may score exactly that much
  only where the extension gave up at a misfitting residue because no edit was allowed any more. An edit costs
  at least 2, so at least one match follows the last edit and an alignment never ends in an edit, although a
  whole repeat may score -1.
- At neither end could the repeat go on perfectly, not even across a bridged N run: a state that a perfect
  step would improve is never the one that is kept.
"""

from __future__ import annotations

from collections.abc import Iterator
from dataclasses import dataclass

from alignment import BRIDGED_N, DELETION, INSERTION, MATCH, Alignment, Column
from report_settings import AS_IS, EXACT, EXTEND_EXACT, Settings

RIGHT, LEFT = 1, -1


@dataclass(frozen=True)
class Seed:
    """Columns first to last - 1, which the two directions leave alone, and the score they bring."""

    first: int
    last: int
    score: int


class Extension:
    """One reported alignment in its record, with the settings of the run."""

    def __init__(self, alignment: Alignment, unit_length: int, residues: str, settings: Settings) -> None:
        self.alignment = alignment
        self.columns = alignment.columns
        self.unit_length = unit_length
        self.residues = residues
        self.settings = settings
        self.first_residue = self.columns[0].residue
        self.last_residue = self.first_residue + len(alignment.residues) - 1

    def faults(self, unit: str) -> list[str]:
        """What speaks against the likeliest copy of the unit as the seed; empty if one of them can be it."""
        fewest = None
        for copy in self.copies(unit):
            seed = self.seed_around(copy)
            faults = self.seed_faults(seed) or self.growth_faults(seed)
            if not faults:
                return []
            fewest = faults if fewest is None else min(fewest, faults, key=len)
        return fewest or ["no whole copy of the unit can be the seed"]

    def copies(self, unit: str) -> Iterator[int]:
        """First columns of the copies that can be the seed; a unit reported as found names its phase."""
        length = self.unit_length
        run = 0
        for number, column in enumerate(self.columns):
            run = run + 1 if column.kind == MATCH else 0
            followed = column.residue + 1 < len(self.residues)
            copy = self.residues[column.residue - length + 1:column.residue + 1]
            if run >= length and followed and (self.settings.unit_mode != AS_IS or copy == unit):
                yield number - length + 1

    def seed_around(self, copy: int) -> Seed:
        if self.settings.mode != EXTEND_EXACT:
            return Seed(copy, copy + self.unit_length, 0)
        first, last = copy, copy + self.unit_length
        while first > 0 and not self.columns[first - 1].is_edit:
            first -= 1
        while last < len(self.columns) and not self.columns[last].is_edit:
            last += 1
        matches = sum(column.kind == MATCH for column in self.columns[first:last])
        return Seed(first, last, matches - self.unit_length)

    def seed_faults(self, seed: Seed) -> list[str]:
        """In extendExact mode a seed must score 4, and the unit length where that is more."""
        needed = max(4, self.unit_length)
        if self.settings.mode == EXTEND_EXACT and seed.score < needed:
            return [f"its perfect stretches score {seed.score}, a seed needs {needed}"]
        return []

    def growth_faults(self, seed: Seed) -> list[str]:
        score, right_faults = self.walk(self.columns[seed.last:], RIGHT, seed.score)
        _, left_faults = self.walk(self.columns[:seed.first][::-1], LEFT, score)
        return right_faults + left_faults

    def walk(self, columns: list[Column], direction: int, score: int) -> tuple[int, list[str]]:
        """Follow one direction of the extension outward; the score reached and the faults on the way."""
        faults = []
        best = score
        for column in columns:
            if column.is_edit:
                best = max(best, score)
                score += self.settings.penalty(column.kind)
                faults += self.edit_faults(column, direction, score, best)
            else:
                score += column.kind != BRIDGED_N
        if any(column.is_edit for column in columns) and not self.is_kept(score, best, direction):
            side = "right" if direction == RIGHT else "left"
            faults.append(f"the {side} end scores {score}, which is no better than {best} on the way there")
        return score, faults

    def is_kept(self, score: int, best: int, direction: int) -> bool:
        """Whether a state behind an edit is the one that is left in the end."""
        least = best - self.settings.prefers_longer
        cheapest = max(self.settings.mismatch_score, self.settings.indel_score)
        gave_up = score + cheapest <= self.floor(best) and self.meets_a_misfit(direction)
        return score > least or (score == least and gave_up)

    def floor(self, best: int) -> int:
        """The score above which an edit must leave the repeat."""
        return max(best - self.settings.score_reduction, -self.unit_length) - self.settings.prefers_longer

    def edit_faults(self, column: Column, direction: int, score: int, best: int) -> list[str]:
        """Faults of one edit, given the score right after it."""
        name = f"edit {column.kind} at residue {column.residue + 1}"
        residue = self.residue_facing(column, direction)
        if residue == self.unit_base_facing(column, direction):
            return [f"{name} stands where the residue fits the unit"]
        if residue == "N" and self.settings.bridges_ns:
            return [f"{name} stands at an N, which is never edited"]
        if score <= self.floor(best):
            return [f"{name} lets the score fall to {score}, where {best} was reached before"]
        return []

    def residue_facing(self, column: Column, direction: int) -> str:
        """The next residue in the direction when the edit is made."""
        position = column.residue
        if column.kind == DELETION and direction == LEFT:
            position -= 1
        return self.residues[position:position + 1] if position >= 0 else ""

    def unit_base_facing(self, column: Column, direction: int) -> str:
        """The expected base of the unit when the edit is made."""
        number = column.unit
        if column.kind == INSERTION and direction == LEFT:
            number -= 1
        return self.alignment.expected(number, self.unit_length)

    def end_faults(self) -> list[str]:
        """Ends at which the repeat could have gone on perfectly."""
        faults = []
        if self.goes_on(RIGHT):
            faults.append("goes on perfectly to the right of its end")
        if self.goes_on(LEFT):
            faults.append("goes on perfectly to the left of its start")
        return faults

    def goes_on(self, direction: int) -> bool:
        """Whether the residue beyond an end fits, be it behind N runs that are bridged."""
        return any(residue == expected for residue, expected in self.beyond(direction))

    def meets_a_misfit(self, direction: int) -> bool:
        """Whether a residue stands beyond an end that invites an edit: the record goes on, and not with N."""
        return any(residue != expected for residue, expected in self.beyond(direction))

    def beyond(self, direction: int) -> list[tuple[str, str]]:
        """The first residue beyond an end that is not bridged, and its unit base; none at the end of the record.

        An N run that is too long to be bridged stands in the way like the end of the record.
        """
        if direction == RIGHT:
            position, number = self.last_residue + 1, len(self.alignment.unrolled)
        else:
            position, number = self.first_residue - 1, -1
        while 0 <= position < len(self.residues):
            run = self.n_run(position, direction) if self.settings.bridges_ns else 0
            if run == 0:
                return [(self.residues[position], self.alignment.expected(number, self.unit_length))]
            if run > self.settings.ns_in_a_row:
                return []
            position += direction * run
            number += direction * run
        return []

    def n_run(self, position: int, direction: int) -> int:
        """Number of N from the position on in the direction."""
        run = 0
        while 0 <= position < len(self.residues) and self.residues[position] == "N":
            position += direction
            run += 1
        return run


def extension_faults(extension: Extension, unit: str) -> list[str]:
    """All that contradicts the growth of the repeat from a seed."""
    faults = extension.end_faults()
    if extension.settings.mode == EXACT and any(column.is_edit for column in extension.columns):
        faults.append("holds edits although only perfect repeats were searched for")
    return faults + extension.faults(unit)
