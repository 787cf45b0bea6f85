# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Planted arrays come apart where they were put together; unit 20 to 500, 5 to 500 copies, 0 to 20 % divergence."""

from __future__ import annotations

import gzip
import os
import random
import re
import tempfile
import unittest
from pathlib import Path

from planted_arrays import PlantedArray, planted, random_bases
from random_runs import run_vorlan, tools

GENOMES = os.environ.get("VORLAN_GENOMES")

# Unit length, copies, divergence, order.
ARRAYS = [(20, 5, 0, 1), (20, 40, .05, 1), (20, 200, .1, 1), (20, 500, .2, 1), (31, 9, .05, 1),
          (42, 100, .15, 4), (50, 25, .1, 3), (64, 60, .1, 5), (77, 500, .02, 11), (100, 40, .2, 1),
          (120, 500, .1, 7), (150, 44, .1, 11), (171, 60, .2, 6), (171, 300, .15, 9), (178, 168, .1, 1),
          (200, 12, .08, 3), (250, 20, .1, 1), (340, 50, .2, 5), (500, 5, .05, 1), (500, 500, .15, 8)]
FLANK = 300
SEED = "planted arrays"
# A consensus of several kinds of copies that are far apart has places where kinds are even; it must explain the
# copies as well as the unit that they were made from, give or take that.
SLACK = 1.005


def distance(one: str, other: str) -> int:
    """Least cost of an alignment, row by row: 2 for a mismatch, 3 for a base more or less."""
    row = [3 * j for j in range(len(other) + 1)]
    for a in one:
        following = [row[0] + 3]
        for j, b in enumerate(other):
            following.append(min(row[j] + 2 * (a != b), row[j + 1] + 3, following[j] + 3))
        row = following
    return row[-1]


def is_turned(one: str, other: str) -> bool:
    return len(one) == len(other) and one in other + other


def near(borders: list[int], found: set[int]) -> int:
    """How many borders have one that was found within one base."""
    return sum(not found.isdisjoint({border - 1, border, border + 1}) for border in borders)


class PlantedTest(unittest.TestCase):
    """Each array lies alone in a random sequence."""

    def setUp(self) -> None:
        temporary = tempfile.TemporaryDirectory(prefix="vorlan-tools-planted-")
        self.addCleanup(temporary.cleanup)
        self.fasta = Path(temporary.name) / "in.fa"

    def plant(self, number: int, *shape: float) -> PlantedArray:
        chance = random.Random(f"{SEED} {number}")
        array = planted(chance, *shape)
        self.fasta.write_text(f">s\n{random_bases(chance, FLANK)}{array.bases}{random_bases(chance, FLANK)}\n")
        return array

    def ends(self, *words: object, given: bytes = b"") -> set[int]:
        rows = tools("monomers", "-", "-g", self.fasta, *words, given=given).decode().split("\n")[:-1]
        return {int(row.split("\t")[2]) - FLANK for row in rows}

    def consensus(self, given: bytes, *words: object) -> dict[str, str]:
        head, row = tools("consensus", "-t", "tsv", "-", "-g", self.fasta, *words, given=given).decode().split("\n")[:2]
        return dict(zip(head.split("\t"), row.split("\t"), strict=True))

    def test_borders_consensus_and_order(self) -> None:
        """Where the arrays lie is given, and the first copy as unit, as a report would have it."""
        near_borders = borders = 0
        for number, shape in enumerate(ARRAYS):
            with self.subTest(shape=shape):
                array = self.plant(number, *shape)
                given = f"s\t{FLANK}\t{FLANK + len(array.bases)}\t{array.copies[0]}\n".encode()
                found = near(array.borders, self.ends(given=given))
                self.assertGreaterEqual(found, 0.95 * len(array.borders))
                near_borders, borders = near_borders + found, borders + len(array.borders)
                told = self.consensus(given)
                self.assertEqual(int(told["order"]), array.order)
                if array.order == 1:
                    self.assertTrue(is_turned(told["unit"], array.unit), (told["unit"], array.unit))
                else:
                    unit = self.consensus(given, "--begin", array.unit[:20])["unit"]
                    sample = array.copies[:3 * array.order if len(array.unit) > 100 else 60]
                    self.assertLessEqual(sum(distance(copy, unit) for copy in sample),
                                         SLACK * sum(distance(copy, array.unit) for copy in sample))
        self.assertGreaterEqual(near_borders, 0.99 * borders)

    def test_through_reports(self) -> None:
        """What a search of vorlan finds, in any phase; copies then begin as asked."""
        for number, (unit_length, copies, divergence, order) in enumerate(
                [(20, 40, .03, 1), (64, 60, .06, 3), (178, 30, .08, 1), (100, 24, .06, 4)]):
            with self.subTest(unit_length=unit_length):
                array = self.plant(100 + number, unit_length, copies, divergence, order)
                report = run_vorlan("-u", unit_length, "-U", unit_length, self.fasta)
                rows = re.findall(rb"\n +\S+ +(\d+) : +(\d+) \| ", report)
                self.assertEqual(len(rows), 1)
                first, last = (int(number) for number in rows[0])
                found = self.ends("--begin", array.unit[:20], given=report)
                inside = [end for end in array.borders if first <= FLANK + end < last]
                self.assertGreater(len(inside), copies - 3)
                self.assertGreaterEqual(near(inside, found), 0.95 * len(inside))
                told = self.consensus(report)
                self.assertEqual((int(told["order"]), int(told["unit_length"])), (order, unit_length))
                if order == 1:
                    self.assertTrue(is_turned(told["unit"], array.unit))

    def test_the_time_grows_with_the_array(self) -> None:
        """Sixteen times the copies, so sixteen times the time; with the square it would be 256 times."""
        spent = []
        for copies in (250, 4000):
            array = self.plant(copies, 171, copies, .1, 1)
            given = f"s\t{FLANK}\t{FLANK + len(array.bases)}\t{array.unit}\n".encode()
            best = float("inf")
            for _ in range(3):
                before = os.times().children_user
                self.ends(given=given)
                best = min(best, os.times().children_user - before)
            spent.append(best)
        self.assertLess(spent[1], 48 * max(spent[0], 0.01))

    @unittest.skipUnless(GENOMES, "VORLAN_GENOMES names no folder")
    def test_the_arabidopsis_centromere(self) -> None:
        """30 kbp of an array of the 178-base satellite, from 1 Mbp on; a script that cuts the unit line of the report
        at each 178th base of the unit gave 121 copies of 178 and 43 of 177 bases."""
        source = Path(GENOMES) / "Ath_CEN1.fasta.gz"
        text = gzip.decompress(source.read_bytes()).decode()
        bases = text[text.index("\n"):].replace("\n", "").upper()[1000000:1030000]
        self.fasta.write_text(f">cen\n{bases}\n")
        report = run_vorlan("-u", 178, "-U", 178, self.fasta)
        told = self.consensus(report)
        self.assertEqual((told["unit_length"], told["end"]), ("178", "30000"))
        rows = tools("monomers", "-", "-g", self.fasta, given=report).decode().split("\n")[:-1]
        lengths = [int(row.split("\t")[6]) for row in rows]
        self.assertEqual(len(lengths), 169)
        self.assertGreaterEqual(lengths.count(178), 118)
        self.assertGreaterEqual(lengths.count(177), 40)
        self.assertEqual(lengths.count(177) + lengths.count(178), 168)


if __name__ == "__main__":
    unittest.main()
