# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Long units and cheap penalties: what is measured, and what is expected of it. See workloads.py."""

from __future__ import annotations

import random

from inputs import Genome, Generated, background, diverged_array
from workloads import (CENTROMERE, CHR22, DEFAULTS, ECOLI, EXACT, EXTEND_EXACT, FALCIPARUM, KBP, MBP, YEAST, Faster,
                       Growth, Memory, Throughput, Work, genome)

# Beside the residues: ways, survivors and tables of long units.
MEMORY_BYTES_FIXED = 200_000_000

SATELLITE_UNIT = 178
LONGEST_UNIT = 2000


def units(shortest: int, longest: int) -> tuple[str, ...]:
    return "-u", str(shortest), "-U", str(longest)


def up_to(longest: int, divisor: int = 1) -> tuple[str, ...]:
    """Units are cut short like sequences, but stay longer than those that they are compared with."""
    return "-U", str(max(longest // divisor, 20) if longest > 10 else longest)


def faster_than_before(divisor: int) -> list[Faster]:
    ecoli = Genome(ECOLI, 100 * KBP // divisor)
    chr22 = Genome(CHR22, 200 * KBP // divisor)
    centromere = Genome(CENTROMERE, 60 * KBP // divisor)
    return [
        Faster("ecoli-91-100", Work(units(91, 100), ecoli), 20, 100),
        Faster("ecoli-191-200", Work(units(191, 200), ecoli), 60, 300),
        Faster("ecoli-290-300", Work(units(290, 300), ecoli), 2000, 10_000),
        Faster("chr22-41-50", Work(units(41, 50), chr22), 8, 30),
        Faster("chr22-91-100", Work(units(91, 100), chr22), 20, 80),
        Faster("chr22-191-200", Work(units(191, 200), chr22), 20, 100),
        Faster("centromere-170-180", Work(units(170, 180), centromere), 15, 60),
        Faster("ecoli-cheap-41-50", Work((*units(41, 50), "-m", "-3", "-g", "-3"), ecoli), 10, 60),
        Faster("ecoli-cheap-11-20", Work((*units(11, 20), "-m", "-2", "-g", "-3"), ecoli), 10, 80),
        Faster("ecoli-cheap-10", Work((*up_to(10), "-m", "-2", "-g", "-2"), ecoli), 5, 30),
        Faster("falciparum-before", Work(DEFAULTS, genome(FALCIPARUM, divisor)), 1.8, 2.5),
        Faster("array-before", Work(DEFAULTS, diverged_array(40 * KBP // divisor)), 2, 6),
        Faster("yeast-extend-exact-before", Work(EXTEND_EXACT, genome(YEAST, divisor)), 1.3, 1.6),
    ]


def against_short_units(divisor: int) -> list[Growth]:
    """The same file with longer units, against units up to 10."""
    ecoli, chr22 = genome(ECOLI, divisor), genome(CHR22, divisor)
    centromere, yeast = genome(CENTROMERE, divisor), genome(YEAST, divisor)

    def row(name: str, longest: int, input_: Genome, at_most: float, aim: float,
            mode: tuple[str, ...] = DEFAULTS) -> Growth:
        return Growth(name, Work((*mode, *up_to(longest, divisor)), input_), Work((*mode, *up_to(10)), input_), at_most, aim)

    return [
        row("ecoli-to-50", 50, ecoli, 8, 3),
        row("ecoli-to-200", 200, ecoli, 20, 8),
        row("ecoli-to-2000", 2000, ecoli, 60, 20),
        row("chr22-to-200", 200, chr22, 60, 20),
        row("chr22-to-500", 500, chr22, 200, 60),
        row("centromere-to-200", 200, centromere, 150, 40),
        row("yeast-exact-to-2000", 2000, yeast, 15, 5, EXACT),
    ]


def satellite_array(residues: int) -> Generated:
    unit = random.Random(SATELLITE_UNIT).choices(b"ACGT", k=SATELLITE_UNIT)
    return diverged_array(residues, bytes(unit), f"satellite-{SATELLITE_UNIT}-{residues}")


def growths(divisor: int) -> list[Growth]:
    random_megabase = background(MBP // divisor)
    arrays = [satellite_array(n * KBP // divisor) for n in (50, 100, 200, 400)]
    works = [Work(units(170, 186), array) for array in arrays]
    return [
        Growth("random-to-2000", Work(up_to(LONGEST_UNIT, divisor), random_megabase),
               Work(up_to(200, divisor), random_megabase), 12),
        *(Growth("growth-satellite", work, base, 2.5) for base, work in zip(works, works[1:])),
    ]


def memories(divisor: int) -> list[Memory]:
    inputs = (genome(YEAST, divisor), background(64 * MBP // divisor))
    return [Memory("memory-long-units", Work(up_to(LONGEST_UNIT, divisor), input_), MEMORY_BYTES_FIXED) for input_ in inputs]


def survivals(divisor: int) -> list[Throughput]:
    inputs = {"ecoli": Genome(ECOLI, 100 * KBP // divisor), "chr22": Genome(CHR22, 200 * KBP // divisor),
              "centromere": Genome(CENTROMERE, 60 * KBP // divisor)}
    return [Throughput(f"{name}-survival", Work(units(shortest, shortest + 9), input_))
            for name, input_ in inputs.items() for shortest in (31, 91, 191, 491 if divisor == 1 else 201)]
