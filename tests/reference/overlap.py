# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Removal of repeats that are mostly hidden by another one."""

from __future__ import annotations

from repeat import Repeat


def mostly_hidden(repeat: Repeat, overlap: int) -> bool:
    """Less than one whole unit lies outside the overlap."""
    return repeat.span < overlap + repeat.unit_length


def remove_mostly_hidden(repeats: list[Repeat]) -> list[Repeat]:
    """Thin a sorted list. Of two records one of which is mostly hidden, the lower score goes, else the later."""
    kept = list(repeats)
    first = 0
    while first < len(kept):
        if not removes_first(kept, first):
            first += 1
    return kept


def removes_first(kept: list[Repeat], first: int) -> bool:
    """Compare one record with those after it; true when the record itself went."""
    second = first + 1
    while second < len(kept):
        a, b = kept[first], kept[second]
        if a.pos_right <= b.pos_left:
            return False
        overlap = min(a.pos_right, b.pos_right) - b.pos_left
        if not mostly_hidden(a, overlap) and not mostly_hidden(b, overlap):
            second += 1
        elif a.score < b.score:
            del kept[first]
            return True
        else:
            del kept[second]
    return False
