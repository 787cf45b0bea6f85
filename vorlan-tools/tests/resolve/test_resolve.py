# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Readings that overlap, resolved base by base from the promise of each strategy, against what is written."""

from __future__ import annotations

import random
import subprocess
import tempfile
import unittest
from pathlib import Path

from plain_report import PlainRepeat, read_plain_report
from random_runs import complaint, run_vorlan, tools

# (AC)10 and (ACG)8 share two bases; 4 bases behind lies a lone (T)12.
FASTA = ">s\nGTTG" + "AC" * 10 + "ACG" * 8 + "TGAG" + "T" * 12 + "GCA\n"


def quality(repeat: PlainRepeat) -> tuple[int, int, int, int]:
    """The greater, the better: score, length, shorter unit, earlier start."""
    return repeat.score, repeat.bases, -repeat.unit_length, -repeat.start


def crowded_fasta(seed: int) -> str:
    chance = random.Random(seed)
    text = ""
    for number in range(3):
        bases = ""
        while len(bases) < 900:
            unit = "".join(chance.choice("ACGT") for _ in range(chance.choice([1, 2, 3, 5, 8])))
            bases += unit * chance.randrange(2, 8)
            bases += "".join(chance.choice("ACGT") for _ in range(chance.choice([0, 0, 1, 4, 30])))
        text += f">s{number}\n{bases}\n"
    return text


def owners(repeats: list[PlainRepeat]) -> dict[int, PlainRepeat]:
    """The best reading of each base, from 1."""
    best: dict[int, PlainRepeat] = {}
    for repeat in repeats:
        for base in range(repeat.start, repeat.end + 1):
            if base not in best or quality(repeat) > quality(best[base]):
                best[base] = repeat
    return best


class ResolveTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="vorlan-tools-resolve-")))
        cls.reports: list[tuple[Path, dict[str, list[PlainRepeat]]]] = []
        for seed in range(8):
            fasta, report = cls.folder / f"{seed}.fa", cls.folder / f"{seed}.txt"
            fasta.write_text(crowded_fasta(seed))
            report.write_bytes(run_vorlan("-D", *(["-U", "16"] if seed % 2 else []), fasta))
            by_name: dict[str, list[PlainRepeat]] = {}
            for repeat in read_plain_report(report.read_text()):
                by_name.setdefault(repeat.sequence, []).append(repeat)
            cls.reports.append((report, by_name))

    def resolved(self, report: object, *words: object) -> tuple[dict[str, list[list[str]]], list[list[str]]]:
        """Rows by sequence, and the rows of the side table."""
        members = self.folder / "members.tsv"
        told = tools("resolve", *words, "--members", members, report).decode()
        head, *rows = [line.split("\t") for line in members.read_text().split("\n")[:-1]]
        self.assertEqual(head, "sequence start end unit_length unit score shown_bases into_start into_end".split())
        by_name: dict[str, list[list[str]]] = {}
        for row in told.split("\n")[:-1]:
            by_name.setdefault(row.split("\t")[0], []).append(row.split("\t"))
        return by_name, rows

    def check_reading(self, row: list[str], repeat: PlainRepeat) -> None:
        self.assertEqual((row[3], int(row[4]), row[5], int(row[6]), row[8], int(row[9])),
                         (repeat.unit, min(max(repeat.score, 0), 1000), ".", repeat.unit_length, repeat.perfection,
                          repeat.score))
        self.assertAlmostEqual(float(row[7]), repeat.copies, delta=0.001)
        self.assertEqual((int(row[10]) + 1, int(row[11])), (repeat.start, repeat.end))

    def test_by_hand(self) -> None:
        fasta, report = self.folder / "hand.fa", self.folder / "hand.txt"
        fasta.write_text(FASTA)
        report.write_bytes(run_vorlan("-M", "exact", "-D", fasta))
        # (AC)10 goes on for two bases of the first ACG: 5 to 26, 20 points; (ACG)8 is 25 to 48, 21 points.
        rows = {"best": ["24\t48\tACG", "52\t64\tA"], "union": ["4\t48\tACG", "52\t64\tA"],
                "tile": ["4\t24\tAC", "24\t48\tACG", "52\t64\tA"]}
        for strategy, expected in rows.items():
            told = tools("resolve", "--strategy", strategy, report).decode().split("\n")[:-1]
            self.assertEqual(["\t".join(row.split("\t")[1:4]) for row in told], expected, strategy)
        near = tools("resolve", "--strategy", "union", "--max-gap", 4, report).decode()
        self.assertEqual(near, "s\t4\t64\tACG\t21\t.\t3\t8.000\t100.000\t21\t24\t48\t3\n")
        self.assertEqual(tools("resolve", "--strategy", "union", "--max-gap", 3, report).count(b"\n"), 2)

    def test_best_keeps_no_two_that_overlap_and_drops_none_without_a_better_one(self) -> None:
        dropped = 0
        for report, by_name in self.reports:
            told, members = self.resolved(report)
            for name, repeats in by_name.items():
                left = sorted(repeats, key=quality, reverse=True)
                kept = []
                while left:
                    kept.append(left[0])
                    left = [r for r in left[1:] if r.end < kept[-1].start or r.start > kept[-1].end]
                kept.sort(key=lambda r: r.start)
                self.assertEqual([(int(row[1]) + 1, int(row[2])) for row in told[name]], [(r.start, r.end) for r in kept])
                for row, repeat in zip(told[name], kept):
                    self.check_reading(row, repeat)
                dropped += len(repeats) - len(kept)
            self.check_members(by_name, told, members)
        self.assertGreater(dropped, 200)

    def test_tiles_show_the_best_reading_of_each_base(self) -> None:
        for report, by_name in self.reports:
            told, members = self.resolved(report, "--strategy", "tile")
            for name, repeats in by_name.items():
                best = owners(repeats)
                covered = set()
                for row in told[name]:
                    tile = range(int(row[1]) + 1, int(row[2]) + 1)
                    self.assertFalse(covered & set(tile))
                    covered |= set(tile)
                    for base in tile:
                        self.check_reading(row, best[base])
                self.assertEqual(covered, set(best))
                # No tile could be longer.
                for a, b in zip(told[name], told[name][1:]):
                    self.assertTrue(a[2] != b[1] or a[10:12] != b[10:12] or a[6] != b[6])
            self.check_members(by_name, told, members)

    def test_union_is_what_bedtools_merges_under_the_best_name(self) -> None:
        for report, by_name in self.reports:
            bed = tools("convert", "-t", "bed", "--sort", report)
            for gap in (0, 1, 5, 40):
                told, members = self.resolved(report, "--strategy", "union", "--max-gap", gap)
                merged = subprocess.run(["bedtools", "merge", "-d", str(gap)], input=bed, capture_output=True,
                                        check=True).stdout.decode().split("\n")[:-1]
                self.assertEqual(["\t".join(row[:3]) for rows in told.values() for row in rows], merged)
                for name, rows in told.items():
                    for row in rows:
                        inside = [r for r in by_name[name] if r.start > int(row[1]) and r.end <= int(row[2])]
                        self.check_reading(row, max(inside, key=quality))
                        self.assertEqual(int(row[12]), len(inside))
                self.check_members(by_name, told, members)

    def check_members(self, by_name: dict[str, list[PlainRepeat]], told: dict[str, list[list[str]]],
                      members: list[list[str]]) -> None:
        """Each repeat once, with a stretch that is there and holds as much of the repeat as any."""
        self.assertEqual([(row[0], int(row[1]), int(row[2]), int(row[3])) for row in members],
                         [(r.sequence, r.start, r.end, r.unit_length) for rs in by_name.values() for r in rs])
        went = {(name, int(row[1]) + 1, int(row[2])): 0 for name, rows in told.items() for row in rows}
        for row in members:
            begin, end = int(row[1]), int(row[2])
            places = [place for place in went if place[0] == row[0] and place[1] <= end and place[2] >= begin]
            common = {place: min(end, place[2]) - max(begin, place[1]) + 1 for place in places}
            into = row[0], int(row[7]), int(row[8])
            self.assertEqual(common[into], max(common.values()))
            went[into] += 1
            shown = sum(int(tile[2]) - int(tile[1]) for tile in told[row[0]]
                        if (int(tile[10]) + 1, int(tile[11]), tile[3], tile[6], tile[9]) == (begin, end, row[4], row[3], row[5]))
            twins = sum(other[:6] == row[:6] for other in members)
            self.assertTrue(int(row[6]) == shown or twins > 1)
        self.assertEqual({(name, int(row[1]) + 1, int(row[2])): int(row[12]) for name, rows in told.items()
                          for row in rows}, went)

    def test_near_duplicates_of_a_long_satellite_are_one(self) -> None:
        chance = random.Random(3)
        unit = "".join(chance.choice("ACGT") for _ in range(42))
        bases = list("".join(chance.choice("ACGT") for _ in range(200)) + unit * 60
                     + "".join(chance.choice("ACGT") for _ in range(200)))
        for _ in range(150):
            at = chance.randrange(260, 2650)
            bases[at] = chance.choice("ACGT")
        fasta, report = self.folder / "satellite.fa", self.folder / "satellite.txt"
        fasta.write_text(">s\n" + "".join(bases) + "\n")
        report.write_bytes(run_vorlan("-D", "-u", "40", "-U", "44", fasta))
        self.assertGreater(len(read_plain_report(report.read_text())), 1)
        for strategy in ("best", "union"):
            self.assertEqual(tools("resolve", "--strategy", strategy, report).count(b"\n"), 1)

    def test_filters_names_and_requests(self) -> None:
        report, by_name = self.reports[1]
        told, members = self.resolved(report, "--unit-length", "2-3", "--strategy", "union")
        chosen = {name: [r for r in rs if 2 <= r.unit_length <= 3] for name, rs in by_name.items()}
        self.check_members(chosen, told, members)
        for words in (["--max-gap", 3], ["--strategy", "tile", "--max-gap", 3], ["--strategy", "none"], ["-o", report],
                      ["-o", "x", "--members", "x"]):
            complaint("resolve", *words, report, status=2)
        fasta = self.folder / "tab.fa"
        fasta.write_text(">a\tb\n" + "AC" * 20 + "\n")
        given = run_vorlan(fasta)
        self.assertIn("BED cannot hold", complaint("resolve", "-", given=given))
        self.assertTrue(tools("resolve", "--cut-names", "-", given=given).startswith(b"a\t0\t40\tAC\t38\t"))
        packed = self.folder / "x.bed.gz"
        tools("resolve", "-o", packed, report)
        self.assertEqual(subprocess.run(["bgzip", "-dc", packed], capture_output=True, check=True).stdout,
                         tools("resolve", report))


if __name__ == "__main__":
    unittest.main()
