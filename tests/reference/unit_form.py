# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The unit as it is reported, and whether it is a repetition of a shorter one."""

from __future__ import annotations

COMPLEMENT = {"A": "T", "C": "G", "G": "C", "T": "A", "N": "N"}


def is_repetition(unit: str) -> bool:
    """Whether a shorter unit, repeated, gives this one."""
    length = len(unit)
    return any(length % part == 0 and unit == unit[:part] * (length // part) for part in range(1, length))


def smallest_rotation(unit: str) -> str:
    return min(unit[start:] + unit[:start] for start in range(len(unit)))


def reverse_complement(unit: str) -> str:
    return "".join(COMPLEMENT[base] for base in reversed(unit))


def reported_unit(unit: str, mode: int) -> str:
    if mode == 0:
        return unit
    if mode == 1:
        return smallest_rotation(unit)
    return min(smallest_rotation(unit), smallest_rotation(reverse_complement(unit)))
