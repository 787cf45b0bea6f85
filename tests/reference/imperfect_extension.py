# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Extension of a repeat over mismatches, insertions and deletions.

The extension walks over matches. Where they end it asks, for each of the three edits, how well an alignment
can score that begins with this edit (the look-ahead), applies the best and walks on. It remembers the best
state on the way and returns to it when nothing promising is left.
"""

from __future__ import annotations

import copy
import sys
from dataclasses import dataclass
from typing import Optional

from repeat import BACKWARD, FORWARD, Direction, Repeat
from settings import Settings

MISMATCH, INSERTION, DELETION = "M", "I", "D"
sys.setrecursionlimit(20_000)


@dataclass(frozen=True)
class LookAhead:
    """Best score within reach of a path; changes nothing."""

    settings: Settings
    residues: str
    unit: str
    direction: Direction

    def walk(self, front: int, cursor: int, score: int) -> tuple[int, int, int]:
        """Follow matches, and N runs of any length: a run longer than allowed is just several runs here."""
        while not self.direction.at_sequence_end(front, self.residues):
            residue = self.residues[self.direction.next_residue(front)]
            if residue == self.unit[cursor]:
                score += 1
            elif residue != "N" or not self.settings.n_runs_are_bridged():
                break
            front, cursor = front + self.direction.step, self.next(cursor)
        return front, cursor, score

    def next(self, cursor: int) -> int:
        return (cursor + self.direction.step) % len(self.unit)

    def after_edit(self, edit: str, front: int, cursor: int) -> tuple[int, int]:
        """End and cursor after an edit: an insertion uses no unit base, a deletion no residue."""
        if edit != DELETION:
            front += self.direction.step
        if edit != INSERTION:
            cursor = self.next(cursor)
        return front, cursor

    def best_edit(self, front: int, cursor: int, score: int, level: int, best: int) -> tuple[Optional[str], int]:
        """The edit that promises most and what it promises; on equal promises mismatch, insertion, deletion."""
        settings = self.settings
        floor = -len(self.unit)
        threshold = max(best - settings.max_score_reduction, floor) - settings.prefer_longer_points()
        choice, value = None, floor - 1
        for edit in (MISMATCH, INSERTION, DELETION):
            new_score = score + (settings.mismatch_score if edit == MISMATCH else settings.indel_score)
            if threshold >= new_score:
                continue
            new_front, new_cursor = self.after_edit(edit, front, cursor)
            result = self.reach(new_front, new_cursor, new_score, level, best)
            # A mismatch that was tried is taken whatever it promises.
            if edit == MISMATCH or result > value:
                choice, value = edit, result
        return choice, value

    def reach(self, front: int, cursor: int, score: int, level: int, best: int) -> int:
        """The highest score reachable from here; level counts in eight bits."""
        front, cursor, score = self.walk(front, cursor, score)
        if level == self.settings.recursion_depth or self.direction.at_sequence_end(front, self.residues):
            return score
        choice, value = self.best_edit(front, cursor, score, (level + 1) & 255, max(best, score))
        return score if choice is None else max(score, value)


class Extension:
    """Extension of one repeat in one direction."""

    def __init__(self, settings: Settings, residues: str, repeat: Repeat, direction: Direction) -> None:
        self.settings = settings
        self.residues = residues
        self.repeat = repeat
        self.direction = direction
        unit = residues[repeat.unit_begin:repeat.unit_end]
        self.look_ahead = LookAhead(settings, residues, unit, direction)
        self.take_snapshot()

    def take_snapshot(self) -> None:
        self.best = copy.copy(self.repeat)
        self.best.events = list(self.repeat.events)

    def at_end(self) -> bool:
        return self.direction.at_sequence_end(self.direction.front(self.repeat), self.residues)

    def residue(self) -> str:
        return self.residues[self.direction.next_residue(self.direction.front(self.repeat))]

    def is_good_enough(self) -> bool:
        return self.repeat.score > self.best.score - self.settings.prefer_longer_points()

    def run(self) -> Repeat:
        """The extended repeat: the present state at the end of the walk, or the best one before."""
        while True:
            self.take_matches()
            if self.at_end():
                return self.present_or_best()
            if self.residue() == "N" and self.settings.n_runs_are_bridged():
                count = self.direction.n_run(self.direction.front(self.repeat), self.residues)
                if count > self.settings.ns_in_a_row:
                    return self.present_or_best()
                self.direction.bridge_ns(self.repeat, count)
                continue
            edit = self.choose_edit()
            if edit is None:
                # One point more lenient than the decision at a sequence end or N run.
                keep = self.best.score <= self.repeat.score + self.settings.prefer_longer_points()
                return self.repeat if keep else self.best
            self.apply(edit)

    def present_or_best(self) -> Repeat:
        return self.repeat if self.is_good_enough() else self.best

    def take_matches(self) -> None:
        while not self.at_end() and self.residue() == self.residues[self.direction.cursor(self.repeat)]:
            self.direction.move_front(self.repeat)
            self.direction.move_cursor(self.repeat)
            self.repeat.score += 1

    def choose_edit(self) -> Optional[str]:
        if self.is_good_enough():
            self.take_snapshot()
        front = self.direction.front(self.repeat)
        cursor = self.direction.cursor(self.repeat) - self.repeat.unit_begin
        return self.look_ahead.best_edit(front, cursor, self.repeat.score, 1, self.best.score)[0]

    def apply(self, edit: str) -> None:
        """An edit is noted at its residue; a deletion at the residue to the right of the gap."""
        repeat, direction = self.repeat, self.direction
        front = direction.front(repeat)
        repeat.events.append((front if edit == DELETION else direction.next_residue(front), edit))
        if edit == MISMATCH:
            repeat.mismatches += 1
            repeat.score += self.settings.mismatch_score
        else:
            repeat.score += self.settings.indel_score
            repeat.insertions += edit == INSERTION
            repeat.deletions += edit == DELETION
        if edit != DELETION:
            direction.move_front(repeat)
        if edit != INSERTION:
            direction.move_cursor(repeat)


def extend_imperfectly(settings: Settings, residues: str, repeat: Repeat) -> Repeat:
    """To the right, then to the left; N at the ends trimmed, the edits sorted."""
    repeat = Extension(settings, residues, repeat, FORWARD).run()
    repeat = Extension(settings, residues, repeat, BACKWARD).run()
    repeat.trim_ns(residues)
    repeat.events.sort()
    return repeat
