# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Copies one by one: worked by hand, cut by bedtools, and properties that hold for every array."""

from __future__ import annotations

import gzip
import random
import subprocess
import tempfile
import unittest
from pathlib import Path

from planted_arrays import planted, random_bases
from random_runs import complaint, run_vorlan, tools

ROOT = Path(__file__).resolve().parents[3]
UNIT = "GATTACAGGC"
# Copies of the unit: whole, one base changed (A to C in place 5), one base less (the second T), one more (A behind
# place 7), whole, and its first four bases.
COPIES = ["GATTACAGGC", "GATTCCAGGC", "GATACAGGC", "GATTACAAGGC", "GATTACAGGC", "GATT"]
ARRAY = "".join(COPIES)
FASTA = f">s1 by hand\nTTT{ARRAY}\n"
BED = f"s1\t3\t{3 + len(ARRAY)}\t{UNIT}\n"
ROWS = """\
s1	3	13	1.1	1000	.	10	10	0	0	0	0.000	.
s1	13	23	1.2	900	.	10	10	1	0	0	10.000	.
s1	23	32	1.3	900	.	9	10	0	0	1	10.000	.
s1	32	43	1.4	909	.	11	10	0	1	0	9.091	.
s1	43	53	1.5	1000	.	10	10	0	0	0	0.000	.
s1	53	57	1.6	1000	.	4	4	0	0	0	0.000	.
"""
HEAD = ("array\tsequence\tstart\tend\treported_unit_length\tunit_length\tcopies\tdivergence\torder\torder_difference\t"
        "unit\n")


class MonomersTest(unittest.TestCase):
    """Files lie in a scratch folder."""

    maxDiff = None

    def setUp(self) -> None:
        temporary = tempfile.TemporaryDirectory(prefix="vorlan-tools-monomers-")
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name)
        self.fasta = self.file("in.fa", FASTA)

    def file(self, name: str, text: str) -> Path:
        path = self.folder / name
        path.write_text(text)
        return path

    def monomers(self, bed: str, *words: object) -> str:
        return tools("monomers", "-", "-g", self.fasta, *words, given=bed.encode()).decode()

    def consensus(self, bed: str, *words: object) -> str:
        return tools("consensus", "-", "-g", self.fasta, *words, given=bed.encode()).decode()

    def test_by_hand(self) -> None:
        self.assertEqual(self.monomers(BED), ROWS)
        # 57 - 3 = 54 bases: 54 places of the unit, 3 edits in 55 columns. Lag 1 compares 10 + 10 + 10 + 10 + 4 places;
        # the changed and the lacking base differ from both neighbours: 4 of 44.
        self.assertEqual(self.consensus(BED, "-t", "tsv"),
                         f"{HEAD}1\ts1\t4\t57\t10\t10\t5.400\t5.455\t1\t9.091\t{UNIT}\n")
        self.assertEqual(self.consensus(BED), ">1 s1:4-57 unit_length=10 copies=5.400 divergence=5.455 order=1\n"
                                              f"{UNIT}\n")
        records = self.monomers(BED, "-t", "fasta").split("\n")
        self.assertEqual(records[1:-1:2], COPIES)
        self.assertEqual(records[2], ">1.2 s1:14-23 divergence=10.000")

    def test_a_copy_without_its_first_base_is_a_copy(self) -> None:
        """The third one lacks its G; C before it and A behind it keep the place of the gap."""
        copies = [UNIT, UNIT, UNIT[1:], UNIT, UNIT]
        self.fasta = self.file("first.fa", f">f\n{''.join(copies)}\n")
        rows = [row.split("\t") for row in self.monomers(f"f\t0\t49\t{UNIT}\n").split("\n")[:-1]]
        self.assertEqual([(int(row[1]), int(row[2]), row[10]) for row in rows],
                         [(0, 10, "0"), (10, 20, "0"), (20, 29, "1"), (29, 39, "0"), (39, 49, "0")])

    def test_the_guess_may_be_any_copy_in_any_phase_on_any_strand(self) -> None:
        other = str.maketrans("ACGT", "TGCA")
        for guess in [*COPIES[1:5], UNIT[4:] + UNIT[:4], UNIT[::-1].translate(other)]:
            self.assertEqual(self.monomers(f"s1\t3\t57\t{guess}\n"), ROWS, guess)

    def test_copies_begin_where_asked(self) -> None:
        rows = [row.split("\t") for row in self.monomers(BED, "--begin", "CAGG").split("\n")[:-1]]
        # The unit from its sixth base on: CAGGC GATTA. The first copy lacks its second half... which is its first.
        self.assertEqual([int(row[1]) for row in rows], [3, 8, 18, 27, 37, 48])
        self.assertEqual(self.consensus(BED, "--begin", "CAGG").split("\n")[1], UNIT[5:] + UNIT[:5])

    def test_higher_order(self) -> None:
        """Three kinds, six times: each copy equals the third next."""
        kinds = ["GATTACAGGC", "GATCACAGGC", "GATTACAGTC"]
        array = "".join(kinds * 6)
        self.fasta = self.file("kinds.fa", f">k\n{array}\n")
        bed = f"k\t0\t{len(array)}\t{UNIT}\n"
        self.assertEqual([row.split("\t")[12] for row in self.monomers(bed).split("\n")[:-1]], ["1", "2", "3"] * 6)
        self.assertEqual(self.consensus(bed, "-t", "tsv"),
                         f"{HEAD}1\tk\t1\t180\t10\t10\t18.000\t6.667\t3\t0.000\t{UNIT}\n")

    def test_bedtools_cuts_the_same_bases(self) -> None:
        bed = self.file("copies.bed", self.monomers(BED))
        cut = subprocess.run(["bedtools", "getfasta", "-fi", self.fasta, "-bed", bed, "-tab"], capture_output=True,
                             text=True, check=True).stdout.split("\n")[:-1]
        self.assertEqual([line.split("\t")[1] for line in cut], COPIES)
        faidx = self.file("copies.fa", self.monomers(BED, "-t", "fasta"))
        subprocess.run(["samtools", "faidx", faidx], check=True)
        self.assertEqual(len(Path(f"{faidx}.fai").read_text().split("\n")), len(COPIES) + 1)

    def test_copies_tile_every_array(self) -> None:
        chance = random.Random("tiles")
        for _ in range(40):
            array = planted(chance, chance.randint(1, 60), chance.randint(1, 30), chance.choice([0, .1, .4]), 1)
            bases = random_bases(chance, 10) + array.bases + random_bases(chance, 10)
            self.fasta = self.file("tiles.fa", f">t\n{bases}\n")
            start, end = chance.randint(0, 12), len(bases) - chance.randint(0, 9)
            rows = [row.split("\t") for row in self.monomers(f"t\t{start}\t{end}\t{array.unit}\n").split("\n")[:-1]]
            borders = [int(row[1]) for row in rows] + [int(rows[-1][2])]
            self.assertEqual((borders[0], borders[-1]), (start, end))
            self.assertEqual(borders[1:-1], [int(row[2]) for row in rows[:-1]])
            for row in rows:
                length, places, _, insertions, deletions = (int(field) for field in row[6:11])
                self.assertEqual((length, int(row[2]) - int(row[1])), (places + insertions - deletions, length))

    def test_reports_of_all_formats(self) -> None:
        """The same arrays as a BED file of them; only repeats that are asked for."""
        genome = ROOT / "examples/excerpts/satellite.fa"
        expected = None
        for options in [["--outputFormat", "0"], ["--outputFormat", "1"], ["--outputFormat", "3"], ["--reportUnit", "0"], ["--printRepeatSeqMode", "0"]]:
            report = run_vorlan("-u", "178", "-U", "178", *options, genome)
            rows = tools("monomers", "-", "-g", genome, given=report)
            expected = expected or rows
            self.assertEqual(rows, expected, options)
        self.assertEqual([row.split("\t")[1:3] for row in expected.decode().split("\n")[:-1]],
                         [["19", "197"], ["197", "375"], ["375", "553"], ["553", "600"]])
        report = run_vorlan("-u", "178", "-U", "178", genome)
        bed = tools("convert", "-t", "bed", "-", given=report)
        self.assertEqual(tools("monomers", "-", "-g", genome, given=gzip.compress(bed)), expected)
        self.assertEqual(tools("monomers", "-", "-g", genome, "--unit-length", "2-100", given=report), b"")
        self.assertEqual(tools("monomers", "-", "-g", genome, "--min-copies", "4", given=report), b"")

    def test_bad_input(self) -> None:
        for bed, said in [("s1\t3\t57\n", "line 1: an array has the columns"), ("s1\t3\t3\tAC\n", "line 1:"),
                          ("s1\t3\t57\tACN\n", "line 1:"), ("#\ns1\t3\t58\tAC\n", "line 2: the array ends behind"),
                          ("s2\t3\t57\tAC\n", 'has no sequence "s2"')]:
            self.assertIn(said, complaint("monomers", "-", "-g", self.fasta, given=bed.encode()))
            self.assertIn(said, complaint("consensus", "-", "-g", self.fasta, given=bed.encode()))
        for number in "24":
            satellite = ROOT / "examples/excerpts/satellite.fa"
            report = run_vorlan("--outputFormat", number, "-u", "178", "-U", "178", satellite)
            self.assertIn("shows no unit", complaint("monomers", "-", "-g", satellite, given=report))
        complaint("monomers", "-", "-g", "-", status=2)
        complaint("monomers", "-", "-g", self.fasta, "-o", self.fasta, status=2)
        complaint("consensus", "-", "-g", self.fasta, "--begin", "acgu", status=2)


if __name__ == "__main__":
    unittest.main()
