# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Arrays of which each copy is known: a unit, kinds of it that follow each other, and edits in every copy."""

from __future__ import annotations

import random
from dataclasses import dataclass


@dataclass
class PlantedArray:
    """`borders` are the ends of copies within the array, from 0; the last one is the length of the array."""

    unit: str
    copies: list[str]
    order: int

    @property
    def bases(self) -> str:
        return "".join(self.copies)

    @property
    def borders(self) -> list[int]:
        ends, place = [], 0
        for copy in self.copies:
            place += len(copy)
            ends.append(place)
        return ends


def random_bases(chance: random.Random, size: int) -> str:
    return "".join(chance.choice("ACGT") for _ in range(size))


def edited(chance: random.Random, bases: str, share: float) -> str:
    """Each base is changed with this probability: 8 of 10 changes are mismatches, one an insertion, one a deletion."""
    result = ""
    for base in bases:
        if chance.random() >= share:
            result += base
            continue
        kind = chance.random()
        if kind < 0.8:
            result += chance.choice([other for other in "ACGT" if other != base])
        elif kind < 0.9:
            result += base + chance.choice("ACGT")
    return result


def planted(chance: random.Random, unit_length: int, copies: int, divergence: float, order: int) -> PlantedArray:
    """With an order above 1, half of the divergence lies between the kinds, half between the copies of a kind."""
    unit = random_bases(chance, unit_length)
    kinds = [unit] if order == 1 else [edited(chance, unit, divergence / 2) for _ in range(order)]
    within = divergence if order == 1 else divergence / 2
    return PlantedArray(unit, [edited(chance, kinds[i % order], within) for i in range(copies)], order)
