# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The place and the motif of a locus are those of its repeat, by the convention of each genotyper."""

from __future__ import annotations

import subprocess
import tempfile
import unittest
from pathlib import Path

from loaders import LOADERS
from plain_report import read_plain_report
from planted_genome import PlantedRun, catalog
from random_runs import run_vorlan, write_fasta

# The repeats lie at 5 to 16 and 3 to 13: (CAG)4 and, on the other strand of its unit AC, (GT)5 and a G.
FASTA = ">s1\nTTATCAGCAGCAGCAGTTAT\n>s2 x\nCCGTGTGTGTGTGAA\n"
EXPECTED = {
    "trgt": "s1\t4\t16\tID=s1_4_16_CAG;MOTIFS=CAG;STRUC=<TR>\ns2\t2\t13\tID=s2_2_13_GT;MOTIFS=GT;STRUC=<TR>\n",
    "hipstr": "s1\t5\t16\t3\t4.000\ts1_4_16_CAG\ns2\t3\t13\t2\t5.500\ts2_2_13_GT\n",
    "gangstr": "s1\t5\t16\t3\tCAG\ns2\t3\t12\t2\tGT\n",
    "eh": '[\n  {\n    "LocusId": "s1_4_16_CAG",\n    "LocusStructure": "(CAG)*",\n'
          '    "ReferenceRegion": "s1:4-16",\n    "VariantType": "Repeat"\n  },\n'
          '  {\n    "LocusId": "s2_2_13_GT",\n    "LocusStructure": "(GT)*",\n'
          '    "ReferenceRegion": "s2:2-13",\n    "VariantType": "Repeat"\n  }\n]\n',
    "longtr": "s1\t5\t16\tCAG\ts1_4_16_CAG\ns2\t3\t13\tGT\ts2_2_13_GT\n",
    "atarva": "s1\t4\t16\tCAG\t3\ts1_4_16_CAG\ns2\t2\t13\tGT\t2\ts2_2_13_GT\n",
    "straglr": "s1\t4\t16\tCAG\ns2\t2\t13\tGT\n",
}


class LociTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="vorlan-tools-catalog-")))
        cls.fasta = cls.folder / "in.fa"
        cls.fasta.write_text(FASTA)
        cls.runs = [PlantedRun(cls.folder, seed, *options)
                    for seed, options in enumerate([(), ("-M", "extendExact"), ("-f", "7"), ("--minPerfection", "90")])]

    def report(self, *options: str) -> bytes:
        return run_vorlan(*options, self.fasta)

    def test_by_hand(self) -> None:
        for target, expected in EXPECTED.items():
            with self.subTest(target=target):
                told, said = catalog("-t", target, "--flank", 0, "-g", self.fasta, "-", given=self.report())
                self.assertEqual(told, expected)
                self.assertIn("vorlan-tools: 2 of 2 repeats are loci for ", said)

    def test_every_format_tells_perfect_repeats(self) -> None:
        for form in "01234":
            for more in ([], ["--sequenceInfoAsComment"], ["--printRepeatSeqMode", "1"], ["--printRepeatSeqMode", "0"]):
                given = self.report("--outputFormat", form, *more)
                told, _ = catalog("-t", "trgt", "--flank", 0, "-g", self.fasta, "-", given=given)
                self.assertEqual(told, EXPECTED["trgt"], f"{form} {more}")

    def test_the_genome_has_the_bases_of_the_repeat_at_the_place_written(self) -> None:
        for run in self.runs:
            # Wide enough for the flanks that every loader wants.
            wide = {name: "A" * 1000 + bases + "A" * 1000 for name, bases in run.genome.items()}
            fasta = write_fasta(self.folder / "wide.fa", wide)
            (self.folder / "wide.report").write_bytes(run_vorlan("-U", "30", fasta))
            for target, load in LOADERS.items():
                self.check_bases(load, target, fasta, wide)

    def check_bases(self, load, target: str, fasta: Path, genome: dict[str, str]) -> None:
        report = self.folder / "wide.report"
        told, _ = catalog("-t", target, "-g", fasta, "--overlaps", "all", report)
        by_place = {(repeat.sequence, repeat.start - 1, repeat.unit_length): repeat
                    for repeat in read_plain_report(report.read_text())}
        loci = load(told, genome)
        self.assertGreater(len(loci), 30)
        for locus in loci:
            repeats = [repeat for (name, start, _), repeat in by_place.items()
                       if (name, start) == (locus.sequence, locus.start)
                       and (locus.motif is None or len(locus.motif) == repeat.unit_length)]
            bases = genome[locus.sequence][locus.start:locus.end]
            wholes = [repeat.rows[0].replace("-", "") for repeat in repeats]
            if target == "gangstr":
                wholes = [whole[:len(whole) - len(whole) % len(locus.motif)] for whole in wholes]
            self.assertIn(bases, wholes, f"{target} {locus}")
            if locus.motif is None:
                continue
            repeat = repeats[wholes.index(bases)]
            self.assertEqual(locus.motif, repeat.motif)
            if repeat.perfection == "100.000":
                self.assertEqual(bases, (locus.motif * len(bases))[:len(bases)])
            self.assertEqual(locus.motif[0], genome[locus.sequence][locus.start])

    def test_trimmed_loci_end_with_a_unit(self) -> None:
        for run in self.runs:
            whole, _ = catalog("-t", "atarva", "--overlaps", "all", "-g", run.fasta, run.report)
            trimmed, _ = catalog("-t", "atarva", "--overlaps", "all", "--trim-to-units", "-g", run.fasta, run.report)
            pairs = list(zip(LOADERS["atarva"](whole, run.genome), LOADERS["atarva"](trimmed, run.genome), strict=True))
            self.assertTrue(any(a.end != b.end for a, b in pairs))
            for a, b in pairs:
                rest = (a.end - a.start) % len(a.motif)
                self.assertEqual(b, a._replace(end=a.end - rest))

    def test_streams_and_compressed_files(self) -> None:
        run = self.runs[0]
        plain, _ = catalog("-t", "atarva", "-g", run.fasta, run.report)
        for name in ("fasta", "report"):
            packed = self.folder / f"packed.{name}"
            packed.write_bytes(subprocess.run(["bgzip", "-c", getattr(run, name)], capture_output=True,
                                              check=True).stdout)
        self.assertEqual(catalog("-t", "atarva", "-g", self.folder / "packed.fasta", self.folder / "packed.report")[0],
                         plain)
        self.assertEqual(catalog("-t", "atarva", "-g", "-", run.report, given=run.fasta.read_bytes())[0], plain)
        out = self.folder / "out.bed.gz"
        self.assertEqual(catalog("-t", "atarva", "-g", run.fasta, "--write-index", "-o", out, run.report)[0], "")
        self.assertEqual(subprocess.run(["bgzip", "-dc", out], capture_output=True, check=True).stdout.decode(), plain)

    def test_tabix_finds_loci_counted_from_0_and_from_1(self) -> None:
        run = self.runs[0]
        for target in ("atarva", "longtr", "trgt", "hipstr"):
            out = self.folder / f"{target}.gz"
            catalog("-t", target, "-g", run.fasta, "--write-index", "-o", out, run.report)
            loci = LOADERS[target](subprocess.run(["bgzip", "-dc", out], capture_output=True, check=True, text=True)
                                   .stdout, run.genome)
            for locus in loci[::5]:
                for place, near in ((locus.start + 1, 1), (locus.end, 1), (locus.start, 0), (locus.end + 1, 0)):
                    found = subprocess.run(["tabix", out, f"{locus.sequence}:{place}-{place}"], capture_output=True,
                                           check=True, text=True).stdout.count("\n")
                    expected = sum(other.sequence == locus.sequence and other.start < place <= other.end
                                   for other in loci)
                    self.assertEqual(found, expected)
                    self.assertGreaterEqual(found, near)


if __name__ == "__main__":
    unittest.main()
