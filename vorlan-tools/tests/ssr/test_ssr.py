# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Class tables against a count base by base, which knows nothing of reports."""

from __future__ import annotations

import random
import subprocess
import tempfile
import unittest
from collections import defaultdict
from pathlib import Path

from random_runs import TOOLS, complaint, run_vorlan, tools

CLASSES = {1: 10, 2: 6, 3: 5, 4: 5, 5: 5, 6: 5}
SEARCH = ["-M", "exact", "-N", "0", "-D", "-U", "6", "-l", "10"]
Locus = tuple[int, int, int]  # start from 1, end, unit length


def is_primitive(unit: str) -> bool:
    return all(unit != unit[:part] * (len(unit) // part) for part in range(1, len(unit)) if len(unit) % part == 0)


def loci_of(bases: str, classes: dict[int, int]) -> list[Locus]:
    """Longest stretches in which every base is that of one unit before. A pattern that is searched for over and
    over would begin behind the copies of the match before, and miss what shares a base with them."""
    found = []
    for length, least in classes.items():
        start = 0
        for at in range(1, len(bases) + 1):
            if at < len(bases) and at - start >= length and bases[at] == bases[at - length] != "N":
                continue
            if at < len(bases) and at - start < length and bases[at] != "N":
                continue
            if at - start >= least * length and is_primitive(bases[start:start + length]):
                found.append((start + 1, at, length))
            start = at + 1 if bases[at:at + 1] == "N" else max(start, at - length + 1)
    return sorted(found)


def covered(loci: list[Locus]) -> int:
    return len({base for start, end, _ in loci for base in range(start, end + 1)})


def per_megabase(count: int, bases: int) -> float:
    return count * 1e6 / bases


def compounds_of(loci: list[Locus], gap: int) -> list[list[Locus]]:
    chains: list[list[Locus]] = []
    for locus in loci:
        if chains and locus[0] - max(end for _, end, _ in chains[-1]) - 1 <= gap:
            chains[-1].append(locus)
        else:
            chains.append([locus])
    return [chain for chain in chains if len(chain) > 1]


def complement(unit: str) -> str:
    return unit[::-1].translate(str.maketrans("ACGT", "TGCA"))


def normal_form(unit: str) -> str:
    return min(strand[i:] + strand[:i] for strand in (unit, complement(unit)) for i in range(len(unit)))


def planted(seed: int) -> dict[str, str]:
    chance = random.Random(seed)
    genome = {"empty": "", "none": "ACGTTGCA" * 3}
    for number in range(4):
        bases = ""
        for _ in range(60):
            unit = "".join(chance.choice("ACGT") for _ in range(chance.randrange(1, 8)))
            bases += unit * chance.randrange(1, 14) + unit[:chance.randrange(len(unit))]
            bases += "".join(chance.choice("ACGTN") for _ in range(chance.choice([0, 3, 20, 99, 100, 101, 300])))
        genome[f"s{number}"] = bases
    return genome


class SsrTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="vorlan-tools-ssr-")))
        cls.genomes = [planted(seed) for seed in range(6)]
        cls.reports = []
        for number, genome in enumerate(cls.genomes):
            fasta, report = cls.folder / f"{number}.fa", cls.folder / f"{number}.txt"
            fasta.write_text("".join(f">{name} x\n{bases}\n" for name, bases in genome.items()))
            report.write_bytes(run_vorlan(*SEARCH, fasta))
            cls.reports.append(report)

    def tables(self, report: object, *words: object) -> dict[str, list[list[str]]]:
        names = {name: self.folder / f"{name}.tsv" for name in ("units", "sequences", "compounds")}
        options = [word for name, path in names.items() for word in (f"--{name}", path)]
        done = subprocess.run([TOOLS, "ssr", *map(str, words), *map(str, options), str(report)], capture_output=True,
                              text=True, check=True)
        self.assertEqual(done.stderr, "")
        texts = {"classes": done.stdout} | {name: path.read_text() for name, path in names.items()}
        return {name: [line.split("\t") for line in text.split("\n")[:-1]] for name, text in texts.items()}

    def check_counts(self, row: list[str], loci_by_sequence: dict[str, list[Locus]], bases: int) -> None:
        loci = sum(map(len, loci_by_sequence.values()))
        inside = sum(map(covered, loci_by_sequence.values()))
        longest = max((end - start + 1 for found in loci_by_sequence.values() for start, end, _ in found), default=0)
        self.assertEqual((int(row[0]), int(row[1]), int(row[4])), (loci, inside, longest))
        if bases == 0:
            self.assertEqual(row[2:4], [".", "."])
            return
        self.assertAlmostEqual(float(row[2]), per_megabase(loci, bases), delta=0.0006)
        self.assertAlmostEqual(float(row[3]), per_megabase(inside, bases), delta=0.0006)

    def test_every_table_is_that_of_the_count(self) -> None:
        for genome, report in zip(self.genomes, self.reports):
            for classes in (CLASSES, {2: 7, 3: 4, 6: 2}):
                found = {name: loci_of(bases, classes) for name, bases in genome.items()}
                self.assertGreater(sum(map(len, found.values())), 20)
                words = ["--min", ",".join(f"{length}:{least}" for length, least in classes.items())]
                self.check_tables(self.tables(report, *words), genome, found, classes)

    def check_tables(self, told: dict[str, list[list[str]]], genome: dict[str, str], found: dict[str, list[Locus]],
                     classes: dict[int, int]) -> None:
        total = sum(map(len, genome.values()))
        head, *rows = told["classes"]
        self.assertEqual(head, "unit_length min_copies loci bases loci_per_mb bases_per_mb longest".split())
        for row, (length, least) in zip(rows, classes.items()):
            self.assertEqual(row[:2], [str(length), str(least)])
            self.check_counts(row[2:], {name: [locus for locus in loci if locus[2] == length]
                                        for name, loci in found.items()}, total)
        everything, compound, inside = rows[len(classes):]
        self.assertEqual((everything[0], compound[0], inside[0]), ("all", "compound", "in_compound"))
        self.check_counts(everything[2:], found, total)
        chains = [(name, chain) for name, loci in found.items() for chain in compounds_of(loci, 100)]
        self.assertEqual((int(compound[2]), int(inside[2])), (len(chains), sum(len(chain) for _, chain in chains)))
        self.assertEqual([(row[0], int(row[1]), int(row[2]), int(row[3])) for row in told["compounds"][1:]],
                         [(name, chain[0][0], max(end for _, end, _ in chain), len(chain)) for name, chain in chains])
        for row, (name, chain) in zip(told["compounds"][1:], chains):
            self.assertEqual(row[4], self.structure(genome[name], chain))
        self.check_sequences(told["sequences"], genome, found, classes)
        self.check_units(told["units"], genome, found, total)

    def structure(self, bases: str, chain: list[Locus]) -> str:
        text, last = "", 0
        for start, end, length in chain:
            text += f"[{start - last - 1}]" if last else ""
            text += f"({bases[start - 1:start - 1 + length]}){(end - start + 1) // length}"
            last = max(last, end)
        return text

    def check_sequences(self, rows: list[list[str]], genome: dict[str, str], found: dict[str, list[Locus]],
                        classes: dict[int, int]) -> None:
        self.assertEqual(rows[0][7:], [f"units_of_{length}" for length in classes])
        self.assertEqual([row[:2] for row in rows[1:]], [[name, str(len(bases))] for name, bases in genome.items()])
        for row in rows[1:]:
            self.check_counts(row[2:7], {row[0]: found[row[0]]}, int(row[1]))
            self.assertEqual([int(cell) for cell in row[7:]],
                             [sum(locus[2] == length for locus in found[row[0]]) for length in classes])

    def check_units(self, rows: list[list[str]], genome: dict[str, str], found: dict[str, list[Locus]],
                    total: int) -> None:
        by_unit: dict[str, dict[str, list[Locus]]] = defaultdict(lambda: defaultdict(list))
        for name, loci in found.items():
            for start, end, length in loci:
                by_unit[normal_form(genome[name][start - 1:start - 1 + length])][name].append((start, end, length))
        self.assertEqual([row[:2] for row in rows[1:]],
                         [[unit, str(len(unit))] for unit in sorted(by_unit, key=lambda unit: (len(unit), unit))])
        for row in rows[1:]:
            self.check_counts(row[2:], by_unit[row[0]], total)

    def test_compounds_end_at_the_gap_that_is_asked_for(self) -> None:
        fasta = self.folder / "gap.fa"
        fasta.write_text(">s\nG" + "CA" * 6 + "GTTTGG" + "GA" * 6 + "TTCCTAG" + "CAG" * 5 + "TT\n")
        # (CA)6 is 2 to 13, (GA)6 and the G before 19 to 31, (CAG)5 and the AG before 37 to 53.
        report = self.folder / "gap.txt"
        report.write_bytes(run_vorlan(*SEARCH, fasta))
        loci = loci_of(fasta.read_text().split("\n")[1], CLASSES)
        self.assertEqual([locus[2] for locus in loci], [2, 2, 3])
        gaps = [loci[1][0] - loci[0][1] - 1, loci[2][0] - loci[1][1] - 1]
        for gap in range(9):
            rows = self.tables(report, "--compound", gap)["compounds"][1:]
            self.assertEqual([(int(row[1]), int(row[2])) for row in rows],
                             [(chain[0][0], chain[-1][1]) for chain in compounds_of(loci, gap)], f"{gap} {gaps}")

    def test_formats_tell_the_same_and_lengths_where_they_know_them(self) -> None:
        fasta = self.folder / "1.fa"
        whole = self.tables(self.reports[1])
        for form in "01234":
            for more in ([], ["--sequenceInfoAsComment"]):
                report = self.folder / "form.txt"
                report.write_bytes(run_vorlan(*SEARCH, "--outputFormat", form, *more, fasta))
                told = self.tables(report)
                knows = form in "01" or (form in "23" and more)
                self.assertEqual([row[2:4] for row in told["classes"]], [row[2:4] for row in whole["classes"]])
                self.assertEqual(told["classes"] == whole["classes"], bool(knows))
                if not knows:
                    self.assertEqual(told["classes"][1][4:6], [".", "."])

    def test_a_run_that_leaves_loci_out_is_told(self) -> None:
        fasta = self.folder / "1.fa"
        for options, sentence in ((["-U", "5"], "no units of 6 bases"), (["-l", "11"], "10 copies of 1 base."),
                                  (["-s", "12"], "leave out repeats of"), (["--maxPerfection", "99"], "leave out")):
            words = [word for word in SEARCH if word not in ("-U", "6", "-l", "10")] + options
            done = subprocess.run([TOOLS, "ssr", "-"], input=run_vorlan(*words, fasta), capture_output=True, check=True)
            self.assertIn(sentence, done.stderr.decode(), options)
            self.assertEqual(done.stderr.count(b"\n"), 1)
        done = subprocess.run([TOOLS, "ssr", "-"], input=run_vorlan(*(word for word in SEARCH if word != "-D"), fasta),
                              capture_output=True, check=True)
        self.assertIn(b"-D of vorlan", done.stderr)

    def test_requests_without_sense(self) -> None:
        report = self.reports[0]
        for words in (["--min", ""], ["--min", "1"], ["--min", "1:0"], ["--min", "0:3"], ["--min", "1:10,1:9"],
                      ["--min", "1:10;2:6"], ["--min", "a:b"], ["--compound", -1], ["-o", report],
                      ["--units", "x", "--sequences", "x"], ["--units", report]):
            complaint("ssr", *words, report, status=2)
        complaint("ssr", self.folder / "0.fa")
        self.assertEqual(tools("ssr", "--min-perfection", 100, report), tools("ssr", report))


if __name__ == "__main__":
    unittest.main()
