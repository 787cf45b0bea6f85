# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Search for perfect repeats; runs of N may be bridged."""

from __future__ import annotations

from repeat import BACKWARD, FORWARD, Direction, Repeat, span_key
from search import Marks, Search, reaches
from settings import Thresholds


def extend_exactly(search: Search, repeat: Repeat, direction: Direction) -> None:
    """Grow over matches and short N runs until neither comes next."""
    settings, residues = search.settings, search.residues
    while not direction.at_sequence_end(direction.front(repeat), residues):
        residue = residues[direction.next_residue(direction.front(repeat))]
        if residue == residues[direction.cursor(repeat)]:
            direction.move_front(repeat)
            direction.move_cursor(repeat)
            repeat.score += 1
            continue
        if residue != "N" or not settings.n_runs_are_bridged():
            return
        count = direction.n_run(direction.front(repeat), residues)
        if count > settings.ns_in_a_row:
            return
        direction.bridge_ns(repeat, count)


def exact_candidate(search: Search, start: int, unit_length: int) -> Repeat:
    repeat = Repeat(start, start + unit_length)
    extend_exactly(search, repeat, FORWARD)
    extend_exactly(search, repeat, BACKWARD)
    repeat.trim_ns(search.residues)
    return repeat


def search_mononucleotides(search: Search, active: Thresholds) -> list[Repeat]:
    """Unit length 1: jumps behind every repeat found; the last base is never a start."""
    found: list[Repeat] = []
    residues = search.residues
    start = 0
    while True:
        while start < len(residues) and residues[start] == "N":
            start += 1
        if start + 1 >= len(residues):
            return found
        search.show_progress_at(start, 1)
        repeat = exact_candidate(search, start, 1)
        if reaches(repeat, active):
            found.append(repeat)
            start = repeat.pos_right
        else:
            start += 1


def search_unit_length(search: Search, unit_length: int, active: Thresholds, marks: Marks) -> list[Repeat]:
    """One unit length of 2 or more; every accepted start yields a record, only reportable ones close their span."""
    found: list[Repeat] = []
    user = Thresholds(search.settings)
    if search.starts(unit_length):
        search.show_progress(unit_length)
    for start in search.starts(unit_length):
        if start:
            search.show_progress_at(start, unit_length)
        if not marks.allow(start, unit_length) or not search.can_be_unit(start, unit_length):
            continue
        repeat = exact_candidate(search, start, unit_length)
        if not reaches(repeat, active):
            continue
        if reaches(repeat, user) and repeat.perfection_in_range(search.settings):
            marks.close(repeat)
        found.append(repeat)
    return found


def exact_search(search: Search, active: Thresholds) -> list[Repeat]:
    """All perfect repeats, sorted."""
    found: list[Repeat] = []
    marks = Marks(len(search.residues))
    first = search.settings.min_unit_length
    if first == 1:
        found += search_mononucleotides(search, active)
        first = 2
    for unit_length in search.unit_lengths(first):
        found += search_unit_length(search, unit_length, active, marks)
    return sorted(found, key=span_key)
