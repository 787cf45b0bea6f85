# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Programs that the field uses read what is written, and find nothing to complain about."""

from __future__ import annotations

import itertools
import json
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

import pysam

from plain_report import PlainRepeat, read_plain_report, run_lengths
from random_runs import RandomRun, random_run, tools, write_fasta

RUNS = 40
OPERATIONS = "MIDNSHP=X"


def output_of(*words: object) -> str:
    done = subprocess.run(list(map(str, words)), capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise AssertionError(f"{words} ended with {done.returncode}: {done.stdout}{done.stderr}")
    return done.stdout


class JudgeTest(unittest.TestCase):
    """Files of every target for the same random runs; runs without repeats are left out."""

    @classmethod
    def setUpClass(cls) -> None:
        cls.temporary = tempfile.TemporaryDirectory(prefix="vorlan-tools-judges-")
        cls.folder = Path(cls.temporary.name)
        cls.runs: list[tuple[RandomRun, Path, Path, list[PlainRepeat]]] = []
        for seed in range(RUNS):
            run = random_run(f"judges-{seed}", cls.folder)
            report = run.report("--outputFormat", "1")
            repeats = read_plain_report(report.decode())
            if repeats:
                path = cls.folder / f"{seed}.txt"
                path.write_bytes(report)
                cls.runs.append((run, path, write_fasta(cls.folder / f"{seed}.plain.fa", run.residues), repeats))

    @classmethod
    def tearDownClass(cls) -> None:
        cls.temporary.cleanup()

    def written(self, report: Path, name: str, *options: str) -> Path:
        path = report.with_suffix("." + name)
        tools("convert", *options, "-o", path, report)
        return path

    def test_there_is_something_to_judge(self) -> None:
        self.assertGreater(len(self.runs), RUNS // 2)
        self.assertGreater(sum(len(repeats) for *_, repeats in self.runs), 300)

    def test_bedtools_cuts_the_bases_of_the_repeats(self) -> None:
        for _, report, fasta, repeats in self.runs:
            for target in ("bed", "gff3"):
                path = self.written(report, target, "-t", target)
                rows = output_of("bedtools", "getfasta", "-tab", "-fi", fasta, "-bed", path).split("\n")[:-1]
                self.assertEqual([row.split("\t")[1] for row in rows],
                                 [repeat.rows[0].replace("-", "") for repeat in repeats])

    def test_genometools_accepts_gff3_with_its_types(self) -> None:
        for _, report, _, _ in self.runs:
            output_of("gt", "gff3validator", "-typecheck", "so", self.written(report, "gff3", "-t", "gff3"))

    def test_genometools_accepts_gff3_of_every_format(self) -> None:
        for run, report, _, _ in self.runs[:4]:
            for form in "0234":
                for comment in ([], ["--sequenceInfoAsComment"]):
                    path = report.with_suffix(".other")
                    path.write_bytes(run.report("--outputFormat", form, *comment))
                    output_of("gt", "gff3validator", "-typecheck", "so",
                              self.written(path, "gff3", "-t", "gff3"))

    def test_tabix_finds_what_overlaps(self) -> None:
        for _, report, _, repeats in self.runs:
            for target in ("bed", "gff3"):
                path = self.written(report, target + ".gz", "-t", target, "-O", "z", "--write-index")
                for start, end in [(1, 50), (100, 120), (10, 10), (290, 2000)]:
                    for name in {repeat.sequence for repeat in repeats}:
                        found = output_of("tabix", path, f"{name}:{start}-{end}").count("\n")
                        expected = sum(repeat.sequence == name and repeat.start <= end and repeat.end >= start
                                       for repeat in repeats)
                        self.assertEqual(found, expected, f"{path} {name}:{start}-{end}")

    def test_pysam_reads_alignments_that_fit_the_sequence(self) -> None:
        for (run, report, _, repeats), kind in zip(self.runs, itertools.cycle("zu")):
            path = self.written(report, "bam", "-t", "bam", "--write-index", "-O", kind)
            with pysam.AlignmentFile(str(path)) as file:
                records = list(file)
                lengths = dict(zip(file.references, file.lengths))
                self.assertEqual(lengths, {name: len(bases) for name, bases in run.residues.items() if bases})
                self.assertEqual(len(records), len(repeats))
                for number, (record, repeat) in enumerate(zip(records, repeats), start=1):
                    self.check_record(record, repeat, number, run.residues[repeat.sequence])
                name = repeats[0].sequence
                self.assertEqual(file.count(name, 20, 60),
                                 sum(repeat.sequence == name and repeat.start <= 60 and repeat.end > 20
                                     for repeat in repeats))

    def check_record(self, record: pysam.AlignedSegment, repeat: PlainRepeat, number: int, residues: str) -> None:
        self.assertEqual(record.query_name, f"r{number}")
        self.assertEqual(record.reference_name, repeat.sequence)
        self.assertEqual((record.reference_start, record.reference_end), (repeat.start - 1, repeat.end))
        self.assertEqual(record.query_sequence, (repeat.motif * repeat.length)[:repeat.length])
        self.assertEqual([(length, OPERATIONS[kind]) for kind, length in record.cigartuples],
                         run_lengths(repeat.cigar_letters))
        self.assertEqual(record.get_reference_sequence().upper(), residues[repeat.start - 1:repeat.end])
        self.assertEqual(record.get_tag("AS"), repeat.score)
        self.assertEqual((record.get_tag("ul"), record.get_tag("un"), record.get_tag("mo")),
                         (repeat.unit_length, repeat.unit, repeat.motif))
        self.assertAlmostEqual(record.get_tag("cn"), repeat.copies, delta=0.001)
        self.assertAlmostEqual(record.get_tag("pf"), float(repeat.perfection), places=3)

    def test_samtools_calmd_has_nothing_to_mend(self) -> None:
        for _, report, fasta, _ in self.runs:
            path = self.written(report, "sam", "-t", "sam")
            done = subprocess.run(["samtools", "calmd", "--no-PG", path, fasta], capture_output=True, text=True,
                                  check=True)
            self.assertEqual(done.stderr, "")
            self.assertEqual(done.stdout, path.read_text())

    def test_samtools_reads_bam_as_the_same_sam(self) -> None:
        for _, report, _, _ in self.runs:
            sam = self.written(report, "sam", "-t", "sam")
            for kind in ("z", "u"):
                bam = self.written(report, "bam", "-t", "bam", "-@", "2", "-O", kind)
                output_of("samtools", "quickcheck", bam)
                self.assertEqual(output_of("samtools", "view", "--no-PG", "-h", bam), sam.read_text(), kind)
            packed = self.written(report, "sam.gz", "-t", "sam")
            self.assertEqual(output_of("bgzip", "-dc", packed), sam.read_text())

    @unittest.skipUnless(shutil.which("PicardCommandLine"), "picard-tools is not installed")
    def test_picard_finds_no_error(self) -> None:
        for _, report, fasta, _ in self.runs[:3]:
            bam = self.written(report, "bam", "-t", "bam", "--write-index")
            output_of("PicardCommandLine", "CreateSequenceDictionary", "--REFERENCE", fasta, "--OUTPUT",
                      fasta.with_suffix(".dict"), "--QUIET", "true", "--VERBOSITY", "ERROR")
            # Perfect repeats come from no sequencing run and have no qualities.
            ignored = ["MISSING_READ_GROUP", "RECORD_MISSING_READ_GROUP", "QUALITY_NOT_STORED"]
            said = output_of("PicardCommandLine", "ValidateSamFile", "--INPUT", bam, "--REFERENCE_SEQUENCE", fasta,
                             "--MODE", "VERBOSE", *(word for code in ignored for word in ("--IGNORE", code)))
            self.assertIn("No errors found", said)

    def test_jq_reads_every_line(self) -> None:
        for _, report, _, repeats in self.runs[:6]:
            path = self.written(report, "jsonl", "-t", "jsonl")
            told = output_of("jq", "-c", "[.sequence, .start, .end, .unit]", path).split("\n")[:-1]
            self.assertEqual([tuple(json.loads(row)) for row in told],
                             [(repeat.sequence, repeat.start, repeat.end, repeat.unit) for repeat in repeats])

    def test_targets_cover_the_same_bases(self) -> None:
        """BED, GFF3 and BAM are the same intervals to bedtools."""
        for _, report, _, _ in self.runs:
            covered = []
            for target in ("bed", "gff3", "bam"):
                path = self.written(report, target, "-t", target)
                rows = path.read_text().split("\n") if target == "bed" else \
                    output_of("bedtools", "bamtobed", "-i", path).split("\n") if target == "bam" else \
                    [f"{row[0]}\t{int(row[3]) - 1}\t{row[4]}" for row in
                     (line.split("\t") for line in path.read_text().split("\n") if line and line[0] != "#")]
                covered.append([row.split("\t")[:3] for row in rows if row])
            self.assertEqual(covered[0], covered[1])
            self.assertEqual(covered[0], covered[2])


if __name__ == "__main__":
    os.environ["LC_ALL"] = "C"
    unittest.main()
