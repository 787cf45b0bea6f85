# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Which of loci that lie too near to each other are kept, against a slow choice by the rule itself."""

from __future__ import annotations

import random
import tempfile
import unittest
from pathlib import Path

from planted_genome import PlantedRun, catalog, spacer
from plain_report import PlainRepeat, read_plain_report
from random_runs import run_vorlan


def are_near(a: PlainRepeat, b: PlainRepeat, gap: int) -> bool:
    """Fewer than `gap` bases between them, or a base in common."""
    first, second = sorted((a, b), key=lambda repeat: repeat.start)
    between = second.start - first.end - 1
    return a.sequence == b.sequence and between < gap


def best(repeats: list[PlainRepeat], gap: int) -> list[PlainRepeat]:
    """The best of all, then the best of those not near to it, and so on."""
    left = sorted(repeats, key=lambda r: (-r.score, -r.bases, r.unit_length, r.start))
    kept = []
    while left:
        kept.append(left[0])
        left = [repeat for repeat in left[1:] if not are_near(repeat, kept[-1], gap)]
    return kept


def keys(repeats: list[PlainRepeat]) -> set[tuple[str, int, int, str]]:
    return {(repeat.sequence, repeat.start - 1, repeat.end, repeat.motif) for repeat in repeats}


def crowded(seed: int) -> str:
    """Sequences in which readings of many unit lengths overlap."""
    chance = random.Random(seed)
    text = ""
    for number in range(4):
        bases = ""
        while len(bases) < 1500:
            unit = spacer(chance, chance.choice([1, 2, 2, 3, 4, 6]))
            bases += unit * chance.randrange(2, 9) + spacer(chance, chance.choice([0, 1, 2, 5, 40]))
        text += f">s{number}\n{bases}\n"
    return text


class OverlapTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="vorlan-tools-overlaps-")))
        cls.inputs = [(run.fasta, run.report, run.repeats) for run in
                      (PlantedRun(cls.folder, seed, "-D") for seed in (20, 21))]
        for seed in range(4):
            fasta, report = cls.folder / f"crowd{seed}.fa", cls.folder / f"crowd{seed}.report"
            fasta.write_text(crowded(seed))
            report.write_bytes(run_vorlan("-D", fasta))
            cls.inputs.append((fasta, report, read_plain_report(report.read_text())))

    def kept(self, fasta: Path, report: Path, *words: object) -> tuple[set, int]:
        table = self.folder / "rejected.tsv"
        told, _ = catalog("-t", "atarva", "-g", fasta, "--rejected", table, *words, report)
        rows = [line.split("\t") for line in told.split("\n")[:-1]]
        self.assertEqual(len({row[5] for row in rows}), len(rows))
        return {(row[0], int(row[1]), int(row[2]), row[3]) for row in rows}, table.read_text().count("\n") - 1

    def test_best(self) -> None:
        dropped = 0
        for fasta, report, repeats in self.inputs:
            for gap in (0, 1, 2, 10, 50, 300):
                found, rejected = self.kept(fasta, report, "--min-gap", gap)
                self.assertEqual(found, keys(best(repeats, gap)), f"{fasta} {gap}")
                self.assertEqual(len(found) + rejected, len(repeats))
                dropped += rejected
        self.assertGreater(dropped, 500)

    def test_drop(self) -> None:
        for fasta, report, repeats in self.inputs:
            for gap in (0, 1, 5, 20):
                lonely = [one for one in repeats
                          if not any(one is not other and are_near(one, other, gap) for other in repeats)]
                found, rejected = self.kept(fasta, report, "--overlaps", "drop", "--min-gap", gap)
                self.assertEqual(found, keys(lonely), f"{fasta} {gap}")
                self.assertEqual(len(found) + rejected, len(repeats))

    def test_all(self) -> None:
        for fasta, report, repeats in self.inputs:
            # Two alignments of one place and motif are one locus.
            places = keys(repeats)
            self.assertEqual(self.kept(fasta, report, "--overlaps", "all"), (places, len(repeats) - len(places)))

    def test_a_filter_takes_effect_before_the_choice(self) -> None:
        for fasta, report, repeats in self.inputs:
            chosen = [repeat for repeat in repeats if 2 <= repeat.unit_length <= 6 and float(repeat.perfection) == 100]
            found, rejected = self.kept(fasta, report, "--unit-length", "2-6", "--min-perfection", 100)
            self.assertEqual(found, keys(best(chosen, 0)))
            self.assertEqual(len(found) + rejected, len(repeats))


if __name__ == "__main__":
    unittest.main()
