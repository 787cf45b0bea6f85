# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The two search modes for imperfect repeats."""

from __future__ import annotations

from console import error
from exact_search import exact_search
from imperfect_extension import extend_imperfectly
from repeat import Repeat, span_key
from search import Marks, Search, reaches
from settings import Thresholds


def extend_exact_search(search: Search) -> list[Repeat]:
    """Short perfect repeats, each extended on its own; duplicates are left to the overlap removal."""
    error("  Searching for exact repeats.\n")
    seeds = exact_search(search, Thresholds(search.settings, for_seeds=True))
    error("  Extend exact to imperfect repeats.\n")
    user = Thresholds(search.settings)
    extended = [extend_imperfectly(search.settings, search.residues, seed) for seed in seeds]
    return sorted((repeat for repeat in extended if reaches(repeat, user)), key=span_key)


def may_start(search: Search, start: int, unit_length: int, marks: Marks) -> bool:
    if unit_length == 1:
        return search.residues[start] != "N" and marks.open(start)
    return marks.allow(start, unit_length) and search.can_be_unit(start, unit_length)


def search_unit_length(search: Search, unit_length: int, marks: Marks) -> list[Repeat]:
    found: list[Repeat] = []
    user = Thresholds(search.settings)
    for start in search.starts(unit_length):
        if unit_length > 1 or search.residues[start] != "N":
            search.show_progress_at(start, unit_length)
        if not may_start(search, start, unit_length, marks):
            continue
        candidate = Repeat(start, start + unit_length)
        repeat = extend_imperfectly(search.settings, search.residues, candidate)
        if reaches(repeat, user):
            marks.close(repeat)
            found.append(repeat)
    return found


def imperfect_search(search: Search) -> list[Repeat]:
    """Every stretch as a candidate unit. Only the marks of unit length 1 are forgotten afterwards."""
    found: list[Repeat] = []
    marks = Marks(len(search.residues))
    first = search.settings.min_unit_length
    if first == 1:
        found += search_unit_length(search, 1, marks)
        marks = Marks(len(search.residues))
        first = 2
    for unit_length in search.unit_lengths(first):
        found += search_unit_length(search, unit_length, marks)
    return sorted(found, key=span_key)
