# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Faults of configuration and table are told with their place before anything begins; the local profile works."""

from __future__ import annotations

import json
import pathlib
import subprocess
import tempfile
import unittest

from workbench import ROOT, TOOLS, Workbench

EXAMPLES = {"one": ROOT / "examples/androgen_receptor.fa", "two": ROOT / "examples/mixed_records.fa"}


class Table(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name) / "bench"

    def assert_refused(self, bench: Workbench, words: str) -> None:
        status, said = bench.run("--dry-run")
        self.assertEqual(status, 1, said)
        self.assertIn(words, said)
        self.assertFalse((self.folder / "results").exists())

    def test_faults_of_the_table_are_told_with_their_line(self) -> None:
        bench = Workbench(self.folder, EXAMPLES)
        table = self.folder / "config/genomes.tsv"
        fasta = "genomes/androgen_receptor.fa"
        for text, words in (
                ("name\tfile\n", "genomes.tsv, line 1: the columns are not"),
                ("genome\tfasta\n", "there is no genome in it"),
                (f"genome\tfasta\na\t{fasta}\na\t{fasta}\n", "genomes.tsv, line 3: a is there twice"),
                (f"genome\tfasta\na\t{fasta}\nb\tnone.fa\n", "genomes.tsv, line 3: there is no file none.fa"),
                (f"genome\tfasta\na/b\t{fasta}\n", "genomes.tsv, line 2: "),
                (f"genome\tfasta\na\t{fasta}\tmore\n", "genomes.tsv, line 2: "),
                ("genome\tfasta\na\n", "genomes.tsv, line 2: ")):
            with self.subTest(table=text):
                table.write_text(text)
                self.assert_refused(bench, words)

    def test_faults_of_the_configuration_are_named(self) -> None:
        bench = Workbench(self.folder, EXAMPLES)
        for key, value in (("piece_size", 0), ("convert", ["doc"]), ("options", "-U 6 --firstSeq 3"),
                           ("options", "--maskX"), ("colour", "red")):
            with self.subTest(key=key, value=value):
                (self.folder / "config/config.yaml").write_text(json.dumps({**bench.config, key: value}))
                self.assert_refused(bench, key if key != "options" else value)

    def test_the_local_profile_gives_the_reports_of_single_runs_and_a_second_start_does_nothing(self) -> None:
        bench = Workbench(self.folder, EXAMPLES, small_genome=0, piece_size=500)
        status, said = bench.run("--cores", "2")
        self.assertEqual(status, 0, said)
        self.assertEqual(bench.differing(), [])
        self.assertEqual(bench.leftovers(), [])
        self.assertIn("Nothing to be done", bench.run("--cores", "2")[1])

    def test_other_files_are_those_that_vorlan_tools_makes_of_the_report(self) -> None:
        bench = Workbench(self.folder, {"one": EXAMPLES["one"]}, catalogs=["trgt", "eh"], convert=["bed.gz", "bam", "tsv"],
                          mask="masked.fa")
        status, said = bench.run("--cores", "2")
        self.assertEqual(status, 0, said)
        fasta, report = "genomes/androgen_receptor.fa", "results/one/report.txt"
        for name, words in (("repeats.bed.gz", ["convert", "-t", "bed", "--sort", "-O", "z"]),
                            ("repeats.bam", ["convert", "-t", "bam"]),
                            ("repeats.tsv", ["convert", "-t", "tsv"]),
                            ("masked.fa", ["mask", "-g", fasta]),
                            ("catalog.trgt.bed", ["catalog", "-t", "trgt", "-g", fasta]),
                            ("catalog.eh.json", ["catalog", "-t", "eh", "-g", fasta])):
            expected = subprocess.run([TOOLS, *words, report], cwd=self.folder, check=True, stdout=subprocess.PIPE,
                                      stderr=subprocess.DEVNULL).stdout
            self.assertGreater(len(expected), 0)
            self.assertEqual((self.folder / "results/one" / name).read_bytes(), expected, name)
        for name in ("repeats.bed.gz.tbi", "repeats.bam.bai", "catalog.eh.json.rejected.tsv"):
            self.assertTrue((self.folder / "results/one" / name).exists(), name)

    def test_files_of_a_batch_that_are_deleted_are_made_again(self) -> None:
        bench = Workbench(self.folder, EXAMPLES)
        self.assertEqual(bench.run("--cores", "2")[0], 0)
        other = bench.report("two").stat().st_mtime_ns
        bench.report("one").unlink()
        self.assertEqual(bench.run("--cores", "2")[0], 0)
        self.assertEqual(bench.differing(), [])
        self.assertEqual(bench.report("two").stat().st_mtime_ns, other)

    def test_other_options_make_new_reports(self) -> None:
        bench = Workbench(self.folder, EXAMPLES)
        self.assertEqual(bench.run("--cores", "2")[0], 0)
        bench.config["options"] = "--outputFormat 3"
        (self.folder / "config/config.yaml").write_text(json.dumps(bench.config))
        self.assertEqual(bench.run("--cores", "2")[0], 0)
        self.assertEqual(bench.differing(), [])

    def test_lint_has_nothing_to_say(self) -> None:
        bench = Workbench(self.folder, EXAMPLES)
        status, said = bench.run("--lint")
        self.assertEqual((status, said.strip()), (0, "Congratulations, your workflow is in a good condition!"))


if __name__ == "__main__":
    unittest.main()
