# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Two assemblies of which every difference is known: copies, SNPs, pieces that were turned or moved.

At least 99 of 100 planted changes of copies are told with their number of bases, and nothing that is not there is
told as changed, lost or new. With VORLAN_GENOMES, a folder with the yeast genome, that is a pair too.
"""

from __future__ import annotations

import gzip
import os
import random
import subprocess
import tempfile
import unittest
from pathlib import Path

from plain_report import PlainRepeat, read_plain_report
from random_runs import run_vorlan, tools
from second_assembly import CopyChange, SecondAssembly, assemble

GENOMES = os.environ.get("VORLAN_GENOMES")
FLANK = 20
MARGIN = 1000  # at the ends of sequences, where nothing is planted


def random_bases(chance: random.Random, size: int) -> str:
    return "".join(chance.choice("ACGT") for _ in range(size))


def random_genome(chance: random.Random) -> dict[str, str]:
    """Repeats of 1 to 6 bases among random ones, and copies of a transposon with repeats of its own."""
    units = [unit for size in range(1, 7) for unit in (random_bases(chance, size) for _ in range(8))]
    transposon = random_bases(chance, 300) + "CAG" * 7 + random_bases(chance, 300) + "AT" * 9 + random_bases(chance, 200)
    genome = {}
    for name in ("one", "two", "three"):
        text = random_bases(chance, MARGIN)
        while len(text) < 70000:
            if chance.random() < 0.06:
                text += transposon
            else:
                unit = chance.choice(units)
                text += unit * (chance.randint(14, 40) // len(unit) + 3)
            text += random_bases(chance, chance.randint(150, 450))
        genome[name] = text + random_bases(chance, MARGIN)
    return genome


def fasta(genome: dict[str, str]) -> str:
    return "".join(f">{name}\n{bases}\n" for name, bases in genome.items())


def planted_changes(chance: random.Random, repeats: list[PlainRepeat], sizes: dict[str, int],
                    count: int) -> list[tuple[PlainRepeat, CopyChange]]:
    """In perfect repeats that stay long enough to be found, far from each other."""
    candidates = [repeat for repeat in repeats if repeat.perfection == "100.000" and repeat.copies >= 5
                  and repeat.length >= 14 and MARGIN < repeat.start < sizes[repeat.sequence] - MARGIN]
    chance.shuffle(candidates)
    changes: list[tuple[PlainRepeat, CopyChange]] = []
    for repeat in candidates:
        if len(changes) == count:
            break
        is_near = any(change.sequence == repeat.sequence and abs(change.place - repeat.start) < 200
                      for _, change in changes)
        if not is_near:
            bases = chance.choice([-2, -1, 1, 2, 3, 5]) * repeat.unit_length
            place = repeat.start - 1 + repeat.unit_length
            changes.append((repeat, CopyChange(repeat.sequence, place, bases, repeat.unit_length)))
    return changes


class Pair:
    """Two assemblies, their reports as an independent reader takes them, and what compare says."""

    def __init__(self, folder: Path, seed: str, genome: dict[str, str], count: int, rearranged: int, snps: float) -> None:
        chance = random.Random(seed)
        self.first = folder / "first.fa"
        self.second = folder / "second.fa"
        self.first.write_text(fasta(genome))
        self.reports = folder / "first.txt", folder / "second.txt"
        self.reports[0].write_bytes(run_vorlan("-f", FLANK, self.first))
        self.repeats = read_plain_report(self.reports[0].read_text())
        sizes = {name: len(bases) for name, bases in genome.items()}
        self.planted = planted_changes(chance, self.repeats, sizes, count)
        self.truth: SecondAssembly = assemble(chance, genome, [change for _, change in self.planted], rearranged, snps)
        self.second.write_text(fasta(self.truth.sequences))
        self.reports[1].write_bytes(run_vorlan("-f", FLANK, self.second))
        self.other_repeats = read_plain_report(self.reports[1].read_text())
        text = tools("compare", "--flank", FLANK, *self.reports).decode()
        header, *lines = text.split("\n")[:-1]
        self.rows = [dict(zip(header.split("\t"), line.split("\t"), strict=True)) for line in lines]

    def found(self) -> int:
        """Planted changes that are told with their number of bases."""
        told = {}
        for row in self.rows:
            if row["status"] == "changed":
                told.setdefault(row["sequence"], []).append(row)
        return sum(any(int(row["start"]) <= repeat.end and repeat.start <= int(row["end"])
                       and int(row["difference"]) == change.bases for row in told.get(change.sequence, []))
                   for repeat, change in self.planted)

    def false_rows(self) -> list[dict[str, str]]:
        """Rows that the map between the assemblies contradicts."""
        there = by_unit(self.other_repeats)
        here = by_unit(self.repeats)
        false = []
        for row in self.rows:
            if row["status"] == "changed":
                grown = self.truth.grown(row["sequence"], int(row["start"]) - 1, int(row["end"]))
                if grown != int(row["difference"]):
                    false.append(row)
            elif row["status"] == "lost":
                bases = range(int(row["start"]) - 1, int(row["end"]))
                places = [self.truth.there(row["sequence"], place) for place in bases]
                if is_there(places, there, row["unit"], bases):
                    false.append(row)
            elif row["status"] == "new":
                bases = range(int(row["other_start"]) - 1, int(row["other_end"]))
                places = [self.truth.here(row["other_sequence"], place) for place in bases]
                if is_there(places, here, row["unit"], bases):
                    false.append(row)
        return false


def by_unit(repeats: list[PlainRepeat]) -> dict[tuple[str, str], list[PlainRepeat]]:
    result: dict[tuple[str, str], list[PlainRepeat]] = {}
    for repeat in repeats:
        result.setdefault((repeat.sequence, repeat.unit), []).append(repeat)
    return result


def is_there(places: list, repeats: dict[tuple[str, str], list[PlainRepeat]], unit: str, bases: range) -> bool:
    """Whether the other report has a repeat of the unit where these bases lie; a place that was torn is no place."""
    if any(place is None or place[0] != places[0][0] for place in places):
        return False
    start, end = min(place[1] for place in places), max(place[1] for place in places)
    if end - start >= len(bases) + 50:
        return False
    return any(repeat.start - 1 <= end and start < repeat.end for repeat in repeats.get((places[0][0], unit), []))


class PlantedChangesTest(unittest.TestCase):
    """Three pairs, from easy to hard."""

    def setUp(self) -> None:
        temporary = tempfile.TemporaryDirectory(prefix="vorlan-tools-compare-")
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name)

    def check(self, seed: str, genome: dict[str, str], count: int, rearranged: int, snps: float) -> Pair:
        pair = Pair(self.folder, seed, genome, count, rearranged, snps)
        self.assertGreaterEqual(len(pair.planted), count // 2)
        self.assertGreaterEqual(pair.found(), 0.99 * len(pair.planted), seed)
        self.assertEqual(pair.false_rows(), [], seed)
        return pair

    def test_copies_only(self) -> None:
        pair = self.check("copies", random_genome(random.Random("genome 1")), 100, 0, 0)
        self.assertEqual({row["status"] for row in pair.rows}, {"changed"})

    def test_copies_and_snps(self) -> None:
        self.check("snps", random_genome(random.Random("genome 2")), 100, 0, 0.002)

    def test_copies_snps_turned_and_moved_pieces(self) -> None:
        pair = self.check("pieces", random_genome(random.Random("genome 3")), 100, 12, 0.001)
        self.assertIn("-", {row["strand"] for row in pair.rows})
        self.assertTrue(any(row["sequence"] != row["other_sequence"] for row in pair.rows if row["status"] == "changed"))

    def test_a_report_against_itself(self) -> None:
        genome = random_genome(random.Random("genome 4"))
        genome["doubled"] = genome["one"][:20000]
        report = self.folder / "same.txt"
        (self.folder / "same.fa").write_text(fasta(genome))
        report.write_bytes(run_vorlan("-f", FLANK, self.folder / "same.fa"))
        for options in (["--flank", FLANK], []):
            self.assertEqual(tools("compare", report, report, *options).count(b"\n"), 1)
            rows = tools("compare", "--all", report, report, *options).decode().split("\n")[1:-1]
            self.assertEqual(len(rows), len(read_plain_report(report.read_text())))
            for row in rows:
                fields = row.split("\t")
                self.assertEqual((fields[0], fields[2:5]), ("same", fields[5:8]))

    def test_bcftools_makes_the_second_assembly_from_the_first(self) -> None:
        """Where only copies differ, and no two loci overlap, the VCF is the whole difference."""
        chance = random.Random("vcf")
        genome = {"s1": "", "s2": ""}
        for name in genome:
            for _ in range(60):
                unit = random_bases(chance, chance.randint(2, 6))
                genome[name] += random_bases(chance, 100) + unit * (20 // len(unit) + 4)
            genome[name] += random_bases(chance, MARGIN)
        pair = Pair(self.folder, "vcf", genome, 60, 0, 0)
        vcf = self.folder / "changes.vcf"
        vcf.write_bytes(tools("compare", "--flank", FLANK, "--vcf", *pair.reports))
        self.assertGreater(len(pair.planted), 40)

        def judged(*command: object) -> str:
            done = subprocess.run([*map(str, command)], capture_output=True, text=True, check=False)
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertNotIn("arn", done.stderr)  # neither [W:: nor Warning
            return done.stdout

        judged("samtools", "faidx", pair.first)
        records = judged("bcftools", "view", "-H", vcf)
        self.assertEqual(records.count("\n"), len({(c.sequence, c.place) for _, c in pair.planted}))
        self.assertEqual(judged("bcftools", "norm", "-c", "e", "-f", pair.first, vcf).count("TYPE=NONSENSE"), 0)
        packed = self.folder / "changes.vcf.gz"
        tools("compare", "--flank", FLANK, "--vcf", *pair.reports, "-o", packed)
        judged("bcftools", "index", packed)
        made = judged("bcftools", "consensus", "-f", pair.first, packed)
        sequences = {part.split("\n")[0]: part.split("\n", 1)[1].replace("\n", "") for part in made.split(">")[1:]}
        self.assertEqual(sequences, pair.truth.sequences)

    @unittest.skipUnless(GENOMES, "VORLAN_GENOMES names no folder")
    def test_yeast(self) -> None:
        text = gzip.decompress((Path(GENOMES) / "Saccharomyces_cerevisiae.R64-1-1.fa.gz").read_bytes()).decode()
        records = (record.split("\n", 1) for record in text.split(">")[1:])
        genome = {header.split()[0]: bases.replace("\n", "").upper() for header, bases in records}
        pair = Pair(self.folder, "yeast", genome, 400, 60, 0.001)
        self.assertGreaterEqual(pair.found(), 0.99 * len(pair.planted))
        self.assertEqual(pair.false_rows(), [])


if __name__ == "__main__":
    unittest.main()
