# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Every target tells the facts of the report, over random settings and sequences.

Coordinates are judged by cutting the sequences where the target says, by the target's own convention.
"""

from __future__ import annotations

import json
import re
import tempfile
import unittest
from pathlib import Path

from plain_report import PlainRepeat, read_plain_report, run_lengths
from random_runs import RandomRun, random_run, tools

RUNS = 60
OWN_FORMAT = ["--outputFormat", "1", "--printRepeatSeqMode", "2"]


def copies_text(repeat: PlainRepeat) -> float:
    return round(repeat.copies, 3)


class TargetTest(unittest.TestCase):
    """The same random runs for all targets."""

    @classmethod
    def setUpClass(cls) -> None:
        cls.folder = tempfile.TemporaryDirectory(prefix="vorlan-tools-targets-")
        cls.runs = []
        for seed in range(RUNS):
            run = random_run(f"targets-{seed}", Path(cls.folder.name))
            report = run.report(*OWN_FORMAT)
            cls.runs.append((run, report, read_plain_report(report.decode())))
        cls.total = sum(len(repeats) for _, _, repeats in cls.runs)

    @classmethod
    def tearDownClass(cls) -> None:
        cls.folder.cleanup()

    def test_the_runs_hold_all_that_matters(self) -> None:
        letters = "".join(repeat.cigar_letters for _, _, repeats in self.runs for repeat in repeats)
        for letter in "=XID":
            self.assertGreater(letters.count(letter), 50)
        self.assertGreater(sum(repeat.ns or 0 for _, _, repeats in self.runs for repeat in repeats), 20)
        self.assertGreater(self.total, 500)

    def rows(self, target: str, run: tuple[RandomRun, bytes, list[PlainRepeat]]) -> list[str]:
        text = tools("convert", "-t", target, "-", given=run[1]).decode()
        return [line for line in text.split("\n")[:-1] if not line.startswith("#")]

    def test_bed(self) -> None:
        for run in self.runs:
            rows = [row.split("\t") for row in self.rows("bed", run)]
            self.assertEqual(len(rows), len(run[2]))
            for row, repeat in zip(rows, run[2]):
                bases = run[0].residues[row[0]][int(row[1]):int(row[2])]
                self.assertEqual(bases, repeat.rows[0].replace("-", ""))
                self.assertEqual(row[3:], [repeat.unit, str(max(0, repeat.score)), ".", str(repeat.unit_length),
                                           row[7], repeat.perfection, str(repeat.score), repeat.motif])
                self.assertAlmostEqual(float(row[7]), repeat.copies, delta=0.0006)

    def test_tsv(self) -> None:
        for run in self.runs:
            head, *rows = [row.split("\t") for row in self.rows("tsv", run)]
            self.assertEqual(len(rows), len(run[2]))
            for row, repeat in zip(rows, run[2]):
                told = dict(zip(head, row))
                self.assertEqual(run[0].residues[told["sequence"]][int(told["start"]) - 1:int(told["end"])],
                                 repeat.rows[0].replace("-", ""))
                for column in "unit_length unit motif bases length score perfection mismatches insertions " \
                              "deletions".split():
                    self.assertEqual(told[column], str(getattr(repeat, column)), column)
                self.assertEqual(told["ns"], "." if repeat.ns is None else str(repeat.ns))
                self.assertEqual(told["cigar"], "".join(f"{n}{letter}" for n, letter in
                                                        run_lengths(repeat.cigar_letters)))

    def test_json_lines_hold_all_facts_of_the_report(self) -> None:
        for run in self.runs:
            rows = [json.loads(row) for row in self.rows("jsonl", run)]
            self.assertEqual(len(rows), len(run[2]))
            for told, repeat in zip(rows, run[2]):
                self.assertEqual(told["sequence_length"], len(run[0].residues[repeat.sequence]))
                self.assertEqual(PlainRepeat(told["sequence"], told["start"], told["end"], told["bases"],
                                             told["length"], told["score"], f"{told['perfection']:.3f}",
                                             told["mismatches"], told["insertions"], told["deletions"],
                                             told.get("ns"), told["unit"], told["unit_length"],
                                             told.get("events", ""), told["alignment"]), repeat)
                self.assertEqual(told["motif"], repeat.motif)

    def test_gff3(self) -> None:
        for run in self.runs:
            rows = [row.split("\t") for row in self.rows("gff3", run)]
            self.assertEqual(len(rows), len(run[2]))
            self.assertEqual(len({row[8].split(";")[0] for row in rows}), len(rows))
            for row, repeat in zip(rows, run[2]):
                told = dict(part.split("=", 1) for part in row[8].split(";"))
                bases = run[0].residues[row[0]][int(row[3]) - 1:int(row[4])]
                self.assertEqual(bases, repeat.rows[0].replace("-", ""))
                self.assertEqual(row[5:8], [str(repeat.score), ".", "."])
                self.assertEqual(told["unit"], repeat.unit)
                self.assertEqual(told["Target"], f"({repeat.motif})n 1 {repeat.length}")
                gap = told.get("Gap", f"M{repeat.bases}")
                self.check_gap(gap, bases, repeat)
                self.assertEqual("Gap" in told, repeat.insertions + repeat.deletions > 0)

    def check_gap(self, gap: str, bases: str, repeat: PlainRepeat) -> None:
        """Walk along both as GFF3 lays down: I is a gap in the sequence, D one in the target."""
        target = (repeat.motif * repeat.length)[:repeat.length]
        at = at_target = agreeing = 0
        for part in gap.split(" "):
            length = int(part[1:])
            if part[0] == "M":
                agreeing += sum(a == b for a, b in zip(bases[at:at + length], target[at_target:at_target + length]))
            at += 0 if part[0] == "I" else length
            at_target += 0 if part[0] == "D" else length
        self.assertEqual((at, at_target), (len(bases), len(target)))
        self.assertEqual(agreeing, repeat.cigar_letters.count("="))

    def test_paf(self) -> None:
        for run in self.runs:
            rows = [row.split("\t") for row in self.rows("paf", run)]
            self.assertEqual(len(rows), len(run[2]))
            for row, repeat in zip(rows, run[2]):
                residues = run[0].residues[row[5]]
                self.assertEqual(int(row[6]), len(residues))
                self.assertEqual(residues[int(row[7]):int(row[8])], repeat.rows[0].replace("-", ""))
                letters = repeat.cigar_letters
                self.assertEqual([int(row[i]) for i in (1, 2, 3, 9, 10)],
                                 [repeat.length, 0, repeat.length, letters.count("="), len(letters)])
                cigar = row[-1].removeprefix("cg:Z:")
                self.assertEqual("".join(int(n) * op for n, op in re.findall(r"(\d+)(.)", cigar)), letters)

    def test_other_formats_tell_the_same_places(self) -> None:
        """Rows of format 1 and of the others agree in all that the others tell."""
        for run, report, _ in self.runs[:10]:
            expected = tools("convert", "-t", "tsv", "-", given=report).decode().split("\n")
            head = expected[0].split("\t")
            for form in "0234":
                for mode in "012":
                    for comment in ([], ["--sequenceInfoAsComment"]):
                        other = run.report("--outputFormat", form, "--printRepeatSeqMode", mode, *comment)
                        told = tools("convert", "-t", "tsv", "-", given=other).decode().split("\n")
                        self.assertEqual(len(told), len(expected))
                        for row, plain in zip(told[1:-1], expected[1:-1]):
                            for column, value, right in zip(head, row.split("\t"), plain.split("\t")):
                                self.assertIn(value, (".", right), f"{run.fasta} format {form}: {column}")

    def test_filters_keep_what_they_say(self) -> None:
        for run in self.runs[:10]:
            for option, keeps in [
                    (["--unit-length", "2-3"], lambda repeat: 2 <= repeat.unit_length <= 3),
                    (["--unit-length", "4"], lambda repeat: repeat.unit_length == 4),
                    (["--unit-length", "3-"], lambda repeat: repeat.unit_length >= 3),
                    (["--min-perfection", "95.5"], lambda repeat: float(repeat.perfection) >= 95.5),
                    (["--min-length", "12"], lambda repeat: repeat.bases >= 12),
                    (["--min-copies", "4"], lambda repeat: copies_text(repeat) >= 4)]:
                rows = tools("convert", "-t", "bed", *option, "-", given=run[1]).decode().split("\n")[:-1]
                expected = [(repeat.sequence, str(repeat.start - 1), str(repeat.end), repeat.unit)
                            for repeat in run[2] if keeps(repeat)]
                self.assertEqual([tuple(row.split("\t")[:4]) for row in rows], expected)


if __name__ == "__main__":
    unittest.main()
