# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Every number of `stats` against a plain count over format 3, and against bedtools."""

from __future__ import annotations

import json
import random
import subprocess
import unittest

from parts.programs import ProgramTest
from random_runs import random_run
from stats.plain_counts import PlainTally, count, rows_of

PLAIN = ["--outputFormat", "3", "--printRepeatSeqMode", "0"]
FORMATS = [["--outputFormat", "0"], ["--outputFormat", "1"], ["--outputFormat", "2", "--sequenceInfoAsComment"],
           ["--outputFormat", "3", "--sequenceInfoAsComment"]]


def genome_text(seed: int, sequences: int, pieces: int) -> bytes:
    """Sequences with arrays that touch, overlap, stand at both ends, and of units up to 14 bases."""
    source = random.Random(seed)
    text = ""
    for number in range(sequences):
        bases = ""
        for _ in range(pieces):
            unit = "".join(source.choices("ACGT", k=source.randrange(1, 15)))
            array = list(unit * source.randrange(1, 300 // len(unit) + 2))
            for _ in range(source.choice([0, 0, 1, 3])):
                array[source.randrange(len(array))] = source.choice(["A", "", "CG", "N"])
            bases += "".join(array) + "".join(source.choices("ACGT", k=source.randrange(60)))
        text += f">s{number} some words\n{bases}\n"
    return text.encode()


class StatsTest(ProgramTest):
    def stats(self, *words: str) -> dict:
        outcome = self.tools("stats", *words, "--json", "-")
        self.assertEqual((outcome.returncode, outcome.stderr), (0, b""))
        return json.loads(outcome.stdout)

    def genome(self, *words: str) -> dict:
        return self.stats(*words)["genomes"][0]

    def report(self, name: str, *settings: str, fasta: str = "in.fa") -> None:
        self.assertEqual(self.vorlan(*settings, fasta, name).returncode, 0)

    def assert_tally(self, said: dict, expected: PlainTally, knows_edits: bool = True) -> None:
        keys = ["repeats", "perfect", "bases_in_repeats", "bases_in_perfect", "longest"]
        keys += ["mismatches", "insertions", "deletions"] if knows_edits else []
        self.assertEqual([said[key] for key in keys], [getattr(expected, key) for key in keys])
        self.assertAlmostEqual(said["copies"], float(expected.copies), places=6)
        if not knows_edits:
            self.assertEqual([said[key] for key in ("mismatches", "edits_per_100_bases")], [None, None])
        elif expected.bases_in_repeats:
            edits = expected.mismatches + expected.insertions + expected.deletions
            self.assertAlmostEqual(said["edits_per_100_bases"], 100 * edits / expected.bases_in_repeats, places=4)


class AgainstPlainCounts(StatsTest):
    def assert_genome(self, said: dict, table: str, classes: list[int], knows_edits: bool = True) -> int:
        counts = count(rows_of(table), classes, knows_edits)
        self.assert_tally(said, counts.whole, knows_edits)
        covered = sum(map(len, counts.covered.values()))
        self.assertEqual(said["covered"], covered)
        self.assertAlmostEqual(said["covered_percent"] or 0, 100 * covered / max(1, said["bases"]), places=4)
        self.assertAlmostEqual(said["loci_per_mb"] or 0, 1e6 * counts.whole.repeats / max(1, said["bases"]), places=3)
        self.assertAlmostEqual(said["bases_per_mb"] or 0, 1e6 * covered / max(1, said["bases"]), places=3)
        self.assertEqual([entry["unit_length"] for entry in said["by_unit_length"]], sorted(counts.by_unit_length))
        for entry in said["by_unit_length"]:
            length = entry["unit_length"]
            self.assert_tally(entry, counts.by_unit_length[length], knows_edits)
            for key, counter in (("by_copies", counts.copies), ("by_divergence", counts.divergence)):
                expected = {index: (counter[length, index, "repeats"], counter[length, index, "bases"])
                            for found, index, what in counter if found == length and what == "repeats"}
                self.assertEqual({index: (repeats, bases) for index, repeats, bases in entry[key]}, expected)
        self.assertEqual({entry["unit"] for entry in said["units"]}, set(counts.by_unit))
        order = [(-entry["repeats"], -entry["bases_in_repeats"], entry["unit"]) for entry in said["units"]]
        self.assertEqual(order, sorted(order))
        for entry in said["units"]:
            self.assert_tally(entry, counts.by_unit[entry["unit"]], knows_edits)
        for entry in said["by_sequence"]:
            self.assert_tally(entry, counts.by_sequence[entry["name"]], knows_edits)
            self.assertEqual(entry["covered"], len(counts.covered[entry["name"]]))
            self.assertEqual(sum(repeats for _, repeats, _ in entry["by_unit_length"]), entry["repeats"])
            self.assertEqual(sum(bases for _, _, bases in entry["by_unit_length"]), entry["bases_in_repeats"])
        self.assert_windows(said, counts.covered, rows_of(table))
        return counts.whole.repeats

    def assert_windows(self, said: dict, covered: dict[str, set[int]], rows: list) -> None:
        size = said["windows"]["size"]
        for entry in said["windows"]["sequences"]:
            name = said["by_sequence"][entry["index"]]["name"]
            number = -(-entry["length"] // size)
            self.assertEqual(len(entry["covered"]), number)
            starts = [(row.start - 1) // size for row in rows if row.sequence == name]
            self.assertEqual(entry["repeats"], [starts.count(i) for i in range(number)])
            self.assertEqual(entry["covered"], [sum(base in covered[name] for base in range(i * size, (i + 1) * size))
                                                for i in range(number)])
            for i, shown in enumerate(entry["longest"]):
                inside = sorted((row.bases for row in rows if row.sequence == name and (row.start - 1) // size == i),
                                reverse=True)
                self.assertEqual([repeat["bases"] for repeat in shown], inside[:3])

    def test_all_formats(self) -> None:
        self.write("in.fa", genome_text(3, 5, 40))
        table = self.vorlan(*PLAIN, "in.fa").stdout.decode()
        for settings in FORMATS:
            with self.subTest(settings=settings):
                self.report("report", *settings)
                said = self.stats("report")
                counts = self.assert_genome(said["genomes"][0], table, said["copy_classes"],
                                            settings[1] in "13")
                self.assertGreater(counts, 100)

    def test_formats_that_name_sequences_only_where_they_have_repeats(self) -> None:
        self.write("in.fa", genome_text(4, 3, 6) + b">bare\nACGT\n")
        table = self.vorlan(*PLAIN, "in.fa").stdout.decode()
        for number in "234":
            self.report("report", "--outputFormat", number)
            without = self.genome("report")
            self.assertEqual((without["sequences"], without["bases"], without["covered_percent"]), (3, None, None))
            said = self.stats("report", "-g", "in.fa")
            self.assertEqual(said["genomes"][0]["sequences"], 4)
            if number != "4":
                self.assert_genome(said["genomes"][0], table, said["copy_classes"], number != "2")

    def test_random_settings_and_overlapping_repeats(self) -> None:
        total = 0
        for number in range(12):
            run = random_run(f"stats-{number}", self.folder)
            settings = [word for word in run.options if word != "-D"] + ["-D"] * (number % 2)
            table = self.vorlan(*settings, *PLAIN, str(run.fasta)).stdout.decode()
            if "-f" in settings:
                table = "\n".join("\t".join(line.split("\t")[:14]) for line in table.split("\n"))
            self.report("report", *settings, fasta=str(run.fasta))
            said = self.stats("report")
            total += self.assert_genome(said["genomes"][0], table, said["copy_classes"])
        self.assertGreater(total, 100)

    def test_units_as_found_are_counted_in_their_normal_form(self) -> None:
        self.write("in.fa", genome_text(5, 2, 8))
        for mode in "012":
            self.report("report" + mode, "--reportUnit", mode, "--outputFormat", "3", "--succN", "0")
        expected = self.genome("report2")["units"]
        self.assertGreater(len(expected), 10)
        for mode in "01":
            self.assertEqual(self.genome("report" + mode)["units"], expected)


class AgainstBedtools(StatsTest):
    def judge(self, *command: str) -> list[list[str]]:
        done = subprocess.run(command, cwd=self.folder, check=True, stdout=subprocess.PIPE)
        return [line.split("\t") for line in done.stdout.decode().splitlines()]

    def test_coverage_of_sequences_and_windows(self) -> None:
        self.write("in.fa", genome_text(6, 6, 40))
        self.report("report", "-D")
        rows = rows_of(self.vorlan(*PLAIN, "-D", "in.fa").stdout.decode())
        self.write("spans.bed", "".join(f"{row.sequence}\t{row.start - 1}\t{row.end}\n" for row in rows).encode())
        said = self.genome("report")
        self.write("sizes", "".join(f"{entry['name']}\t{entry['bases']}\n" for entry in said["by_sequence"]).encode())
        merged = self.judge("bedtools", "merge", "-i", "spans.bed")
        self.assertEqual(said["covered"], sum(int(end) - int(begin) for _, begin, end in merged))
        self.assertLess(len(merged), len(rows))
        size = said["windows"]["size"]
        windows = self.judge("bedtools", "makewindows", "-g", "sizes", "-w", str(size))
        self.write("windows.bed", "".join("\t".join(row) + "\n" for row in windows).encode())
        coverage = self.judge("bedtools", "coverage", "-a", "windows.bed", "-b", "spans.bed")
        covered = [bases for entry in said["windows"]["sequences"] for bases in entry["covered"]]
        self.assertEqual(covered, [int(row[4]) for row in coverage])
        self.assertGreater(len(covered), 50)


class Windows(StatsTest):
    def test_a_border(self) -> None:
        # A repeat that begins at the last base of the first window, 100, and one right behind it at 301.
        filler = "ACGTTGCATGCCATGACTGATCGTAGCTAGTCCGATGACGT" * 10
        bases = filler[:99] + "A" * 12 + filler[111:300] + "C" * 15 + filler[315:390]
        self.write("in.fa", f">s\n{bases}\n".encode())
        self.report("report", "-U", "1", "-l", "12")
        self.assertEqual([(row.start, row.end) for row in rows_of(
            self.vorlan(*PLAIN, "-U", "1", "-l", "12", "in.fa").stdout.decode())], [(100, 111), (301, 315)])
        windows = self.genome("report")["windows"]
        self.assertEqual(windows["size"], 100)
        self.assertEqual((windows["sequences"][0]["repeats"], windows["sequences"][0]["covered"]),
                         ([1, 0, 0, 1], [1, 11, 0, 15]))

    def test_many_windows_become_larger_ones_with_the_same_sums(self) -> None:
        filler = "ACGTTGCATGCCATGACTGATCGTAGCTAGTCCGATGACGT"
        bases = "".join(filler[:source] + "A" * 20 for source in range(1, 40)) * 70
        self.write("in.fa", f">s\n{bases}\n>t\n{bases[:9000]}\n".encode())
        self.report("report", "-U", "1", "-l", "12", "--printRepeatSeqMode", "0")
        said = self.genome("report")
        windows = said["windows"]
        # 109,200 bases in at most 400 windows: 400 bases each, the third of the sizes from 100 on.
        self.assertEqual((len(bases), windows["size"]), (109200, 400))
        self.assertEqual([len(entry["repeats"]) for entry in windows["sequences"]], [273, 23])
        self.assertEqual(sum(sum(entry["repeats"]) for entry in windows["sequences"]), said["repeats"])
        self.assertEqual(sum(sum(entry["covered"]) for entry in windows["sequences"]), said["covered"])


class Batches(StatsTest):
    def test_files_of_json_add_up(self) -> None:
        names = []
        for number in range(4):
            self.write("in.fa", genome_text(10 + number, 3, 5))
            self.vorlan("in.fa", f"r{number}")
            names.append(f"r{number}")
        for name in names:
            self.tools("stats", name, "--name", f"genome {name}", "--json", f"{name}.json")
        self.tools("stats", "r1.json", "r2.json", "--json", "batch.json")
        flags = [flag for name in names for flag in ("--name", f"genome {name}")]
        whole = self.tools("stats", *names, *flags, "--json", "-").stdout
        self.assertEqual(self.tools("stats", "r0.json", "batch.json", "r3.json", "--json", "-").stdout, whole)
        said = json.loads(whole)
        for key in ("repeats", "perfect", "bases_in_repeats", "covered", "bases", "sequences", "mismatches"):
            self.assertEqual(said["total"][key], sum(genome[key] for genome in said["genomes"]), key)
        self.assertEqual(said["total"]["longest"], max(genome["longest"] for genome in said["genomes"]))
        for key in ("by_unit_length", "units"):
            name = "unit_length" if key == "by_unit_length" else "unit"
            sums: dict = {}
            for entry in [entry for genome in said["genomes"] for entry in genome[key]]:
                sums[entry[name]] = sums.get(entry[name], 0) + entry["repeats"]
            self.assertEqual({entry[name]: entry["repeats"] for entry in said["total"][key]}, sums)

    def test_the_table_says_the_same(self) -> None:
        self.write("in.fa", genome_text(20, 3, 9))
        self.report("report")
        said = self.genome("report", "-g", "in.fa")
        lines = [line.split("\t") for line in self.tools("stats", "report", "-g", "in.fa").stdout.decode().splitlines()]
        table = {(cells[1], cells[2]): dict(zip(lines[0], cells)) for cells in lines[1:]}
        self.assertEqual(len(table), len(lines) - 1)
        keys = ["repeats", "perfect", "bases_in_repeats", "bases_in_perfect", "longest", "mismatches", "edits_per_100_bases"]
        places = ["bases", "ns", "covered", "covered_percent", "loci_per_mb", "bases_per_mb"]
        rows = [(("genome", "."), said, keys + places)]
        rows += [(("sequence", entry["name"]), entry, keys + places) for entry in said["by_sequence"]]
        rows += [(("unit_length", str(entry["unit_length"])), entry, keys) for entry in said["by_unit_length"]]
        rows += [(("unit", entry["unit"]), entry, keys) for entry in said["units"]]
        for key, entry, wanted in rows:
            self.assertEqual([float(table[key][name]) for name in wanted], [float(entry[name]) for name in wanted], key)
        for level in ("copies", "divergence"):
            self.assertEqual(sum(int(row["repeats"]) for row in table.values() if row["level"] == level), said["repeats"])


if __name__ == "__main__":
    unittest.main()
