# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""A genome with repeats at places that genotypers do or do not take, and the run that finds them."""

from __future__ import annotations

import random
import subprocess
from pathlib import Path

from plain_report import PlainRepeat, read_plain_report
from random_runs import TOOLS, run_vorlan, write_fasta

FILLER = 1100


def spacer(chance: random.Random, length: int) -> str:
    return "".join(chance.choice("ACGT") for _ in range(length))


def array(chance: random.Random, unit_length: int, copies: float, changes: int = 0) -> str:
    unit = spacer(chance, unit_length)
    bases = list((unit * (int(copies) + 1))[:int(copies * unit_length)])
    for _ in range(changes):
        at = chance.randrange(unit_length, len(bases) - unit_length)
        bases[at] = chance.choice(["A", "C", "G", "T", "", bases[at] + "G"])
    return "".join(bases)


def planted_genome(seed: int) -> dict[str, str]:
    """Arrays of all kinds with spacers of every length that some genotyper asks for."""
    chance = random.Random(seed)
    arrays = [array(chance, length, copies, changes)
              for length, copies, changes in [(1, 14, 0), (2, 12.5, 0), (3, 9, 1), (4, 8.25, 2), (5, 7, 1), (6, 30, 4),
                                              (9, 6, 1), (10, 7, 0), (15, 6.4, 2), (21, 9, 3), (30, 45, 9)]]
    genome = {}
    for number, margin in enumerate([20, 60, 170, 300, FILLER]):
        chance.shuffle(arrays)
        gaps = [margin, *(chance.choice([3, 30, 70, 400]) for _ in arrays[1:]), margin]
        genome[f"c{number}"] = "".join(spacer(chance, gap) + bases for gap, bases in zip(gaps, arrays)) \
            + spacer(chance, margin)
    alone = array(chance, 3, 12, 0)
    for count in (5, 6):
        half = spacer(chance, FILLER)
        genome[f"n{count}"] = half + alone + half[:100] + "N" * count + half[100:]
    genome["far"] = half + alone + half[:1000] + "N" * 9 + half[:50]
    return genome


class PlantedRun:
    """The report of a planted genome, also as read by plain_report."""

    def __init__(self, folder: Path, seed: int, *options: str) -> None:
        self.genome = planted_genome(seed)
        self.fasta = write_fasta(folder / f"{seed}.fa", self.genome)
        self.report = folder / f"{seed}.report"
        self.report.write_bytes(run_vorlan("-U", "30", *options, self.fasta))
        self.repeats: list[PlainRepeat] = read_plain_report(self.report.read_text())


def catalog(*words: object, status: int = 0, given: bytes = b"") -> tuple[str, str]:
    """Standard output and standard error."""
    done = subprocess.run([TOOLS, "catalog", *map(str, words)], input=given, capture_output=True, check=False)
    if done.returncode != status:
        raise AssertionError(f"catalog {words} ended with {done.returncode}: {done.stderr!r}")
    return done.stdout.decode(), done.stderr.decode()
