# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""What `stats` takes, refuses and writes: compressed input, wrong genomes, odd names, empty reports."""

from __future__ import annotations

import gzip
import json
import subprocess
import unittest

from parts.nasty_inputs import INPUTS
from stats.test_stats import StatsTest, genome_text


class Inputs(StatsTest):
    def setUp(self) -> None:
        super().setUp()
        self.write("in.fa", genome_text(30, 3, 6))
        self.report("report")

    def test_compressed_piped_and_plain_are_the_same(self) -> None:
        expected = self.tools("stats", "report", "--json", "-").stdout
        self.write("report.gz", gzip.compress(self.read("report")))
        self.assertEqual(self.tools("stats", "report.gz", "--json", "-").stdout, expected)
        self.assertEqual(self.tools("stats", "-", "--json", "-", input=self.read("report.gz")).stdout, expected)
        self.assertEqual(self.tools("stats", "-", "--json", "-", input=gzip.compress(expected)).stdout, expected)
        self.assert_nothing_is_left()

    def test_a_genome_and_its_index(self) -> None:
        subprocess.run(["samtools", "faidx", "in.fa"], cwd=self.folder, check=True)
        plain, with_fasta = self.genome("report"), self.genome("report", "-g", "in.fa")
        residues = b"".join(line for line in self.read("in.fa").split(b"\n") if not line.startswith(b">"))
        self.assertEqual((plain["ns"], with_fasta["ns"], with_fasta["bases"]),
                         (None, residues.count(b"N"), len(residues)))
        self.assertGreater(with_fasta["ns"], 0)
        self.assertAlmostEqual(with_fasta["loci_per_mb_without_n"],
                               1e6 * plain["repeats"] / (len(residues) - with_fasta["ns"]), places=3)
        self.assertEqual(self.genome("report", "-g", "in.fa.fai"), plain)

    def test_another_genome_is_refused(self) -> None:
        text = self.read("in.fa")
        for wrong in (text.replace(b">s1", b">x1"), text[:-2] + b"\n", text + b">more\nACGT\n", text[:text.index(b">s2")]):
            self.write("wrong.fa", wrong)
            self.assert_refused(self.tools("stats", "report", "-g", "wrong.fa"), 1, "")
            self.report("rows", "--outputFormat", "3")
        self.write("wrong.fa", text[:text.index(b">s2")])
        self.assert_refused(self.tools("stats", "rows", "-g", "wrong.fa"), 1, "s2")

    def test_requests_that_make_no_sense(self) -> None:
        self.tools("stats", "report", "--json", "a.json")
        for words in (["report", "report", "-g", "in.fa"], ["report", "--name", "a", "--name", "b"], ["-", "-"],
                      ["report", "--tsv", "-", "--json", "-"], ["report", "--json", "report"],
                      ["report", "-g", "in.fa", "--tsv", "./in.fa"], ["a.json", "-g", "in.fa"], []):
            self.assert_refused(self.tools("stats", *words), 2, "")

    def test_json_of_others_is_refused(self) -> None:
        said = json.loads(self.tools("stats", "report", "--json", "-").stdout)
        wrong = [b"{", b"{}", b'{"vorlan_tools_stats":2,"genomes":[]}', b'{"vorlan_tools_stats":1,"genomes":[{}]}']
        for key, value in (("repeats", "x"), ("by_sequence", []), ("windows", 3), ("units", [1])):
            wrong.append(json.dumps({**said, "genomes": [{**said["genomes"][0], key: value}]}).encode())
        damaged = json.loads(json.dumps(said))
        damaged["genomes"][0]["by_unit_length"][0]["by_copies"] = [[99, 1, 1]]
        wrong.append(json.dumps(damaged).encode())
        for text in wrong:
            self.write("wrong.json", text)
            self.assert_refused(self.tools("stats", "wrong.json"), 1, "wrong.json")

    def test_nothing_is_left_of_outputs_that_fail(self) -> None:
        before = self.names()
        self.assert_refused(self.tools("stats", "report", "--tsv", "a.tsv", "--json", "none/a.json"), 1, "none/a.json")
        self.assertEqual(self.names(), before)

    def test_genomes_of_one_name_get_numbers(self) -> None:
        said = self.stats("report", "report", "report")
        self.assertEqual([genome["name"] for genome in said["genomes"]], ["in", "in (2)", "in (3)"])


class OddReports(StatsTest):
    def test_nasty_inputs(self) -> None:
        for name, text in INPUTS.items():
            self.write("in.fa", text)
            for settings in ([], ["--outputFormat", "3"], ["--outputFormat", "2", "--sequenceInfoAsComment"]):
                with self.subTest(input=name, settings=settings):
                    self.report("report", *settings)
                    first = self.tools("stats", "report", "--json", "a.json")
                    self.assertEqual((first.returncode, first.stderr), (0, b""))
                    again = self.tools("stats", "a.json", "--json", "-")
                    self.assertEqual(again.stdout, self.read("a.json"))

    def test_no_repeats_and_no_sequences(self) -> None:
        self.write("in.fa", b">a\nACGT\n>b\n\n")
        self.report("report")
        said = self.genome("report", "-g", "in.fa")
        self.assertEqual([said[key] for key in ("sequences", "bases", "ns", "repeats", "covered", "covered_percent",
                                                "longest", "edits_per_100_bases")], [2, 4, 0, 0, 0, 0.0, 0, None])
        self.report("report", "--firstSeq", "9")
        said = self.genome("report", "-g", "in.fa")
        self.assertEqual([said[key] for key in ("sequences", "bases", "loci_per_mb")], [0, 0, None])

    def test_a_range_of_sequences(self) -> None:
        self.write("in.fa", genome_text(31, 5, 4))
        for settings in ([], ["--outputFormat", "3"]):
            self.report("report", "--firstSeq", "2", "--lastSeq", "3", *settings)
            said = self.genome("report", "-g", "in.fa")
            self.assertEqual([entry["name"] for entry in said["by_sequence"]], ["s1", "s2"])

    def test_many_contigs_are_bounded_where_they_are_drawn(self) -> None:
        text = b"".join(b">c%d\n%s\n" % (i, b"ACGTGCTA" * (i % 90 + 1) + b"CAG" * 9) for i in range(3000))
        self.write("in.fa", text)
        self.report("report")
        said = self.genome("report")
        drawn = said["windows"]["sequences"]
        self.assertEqual((len(drawn), len(said["by_sequence"])), (60, 3000))
        self.assertLessEqual(sum(len(entry["repeats"]) for entry in drawn), 1000)
        shortest = min(entry["length"] for entry in drawn)
        indexes = {entry["index"] for entry in drawn}
        others = [entry for entry in said["by_sequence"] if entry["index"] not in indexes]
        self.assertLessEqual(max(entry["bases"] for entry in others), shortest)
        for key in ("bases", "repeats", "covered", "bases_in_repeats"):
            self.assertEqual(said["other_sequences"][key], sum(entry[key] for entry in others))
        self.assertEqual(said["other_sequences"]["sequences"], 2940)

    def test_files_for_multiqc(self) -> None:
        self.write("in.fa", genome_text(32, 2, 5))
        self.report("report")
        before = self.names()
        self.tools("stats", "report", "--name", "<b>x", "--multiqc", "sample")
        files = {name: json.loads(self.read(name)) for name in self.names() - before}
        self.assertEqual(set(files), {f"sample.vorlan_{what}_mqc.json" for what in ("general", "unit_lengths", "divergence")})
        said = self.genome("report")
        self.assertEqual(files["sample.vorlan_general_mqc.json"]["data"]["_b_x"]["repeats"], said["repeats"])
        self.assertEqual(files["sample.vorlan_unit_lengths_mqc.json"]["data"]["_b_x"],
                         {str(entry["unit_length"]): entry["bases_in_repeats"] for entry in said["by_unit_length"]})
        self.assertEqual(sum(files["sample.vorlan_divergence_mqc.json"]["data"]["_b_x"].values()), said["bases_in_repeats"])


if __name__ == "__main__":
    unittest.main()
