# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""A report of any run passes: all formats, all ways to show sequences, random settings, odd inputs."""

from __future__ import annotations

import gzip
import random
import tempfile
import unittest
from pathlib import Path

from random_case import random_case
from random_runs import random_run, run_vorlan, tools

RUNS = 40
REPEAT = b"ACACACACACACTACACACACACAC"
ODD_INPUTS = {
    "nasty names": b"".join(b">" + name + b"\n" + REPEAT + b"\n" for name in
                            [b"#x", b"seq-name", b"## Finished successfully. ##", b"a\tb c", b"", b" ", b"\xff\xe4",
                             b"# Full sequence name:", b"x\0y z", b"# Analysis of sequence \"", b"\t\t"]),
    "neighbours of one name": b">s\nTT" + REPEAT + b"\n>s\n" + REPEAT + b"\n>s\nGG" + REPEAT + b"\n>t\n>s\n" + REPEAT,
    "empty records and a lone sign": b">a\n>b\n\n>c x\n" + REPEAT + b"\n>",
    "a lone sign alone": b">",
    "lone carriage returns": b">a\rACACACAC\rACACACAC\r>b\r" + REPEAT,
    "both line ends": b"\r\n# c\r\n\r\n>a b\r\n" + REPEAT + b"\r\n>b\r\n" + REPEAT + b"\r\n",
    "letters of all kinds": b"  >a\nacgu-acg*u acgtRYKM\nacacacacNXacac?cacaca\n",
    "a digit as the last byte": b">s\n" + REPEAT + b"1",
    "long unit": b">s\n" + b"ACGTTGCATGCCGATCGATTACGGCTAACGGTTCCAAGGTACGATTTACCGGA" * 4 + b"\n",
}


class HonestReportTest(unittest.TestCase):
    """Status 0 and not a word, with and without the bases."""

    def setUp(self) -> None:
        temporary = tempfile.TemporaryDirectory(prefix="vorlan-tools-honest-")
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name)

    def check(self, options: list[str], fasta: Path) -> int:
        """Checks all formats of a run; returns the number of reports."""
        count = 0
        for form in "01234":
            for mode in "012":
                for comment in ([], ["--sequenceInfoAsComment"]):
                    if (form in "234" and mode != "2") or (form not in "23" and comment):
                        continue
                    report = run_vorlan(*options, "--outputFormat", form, "--printRepeatSeqMode", mode, *comment, fasta)
                    for more in ([], ["-g", fasta]):
                        said = tools("check", "-", *more, given=report, status=None)
                        self.assertEqual(said, b"", f"{fasta} {options} format {form} mode {mode} {comment}")
                    count += 1
        return count

    def test_random_settings(self) -> None:
        for seed in range(RUNS):
            run = random_run(f"honest-{seed}", self.folder)
            chance = random.Random(seed)
            options = run.options + ["--reportUnit", str(chance.randint(0, 2))]
            self.assertEqual(self.check(options, run.fasta), 11)

    def test_random_layouts_of_the_input(self) -> None:
        for seed in range(RUNS // 2):
            case = random_case(f"tools-{seed}")
            fasta = self.folder / "case.fa"
            fasta.write_bytes(case.fasta)
            report = run_vorlan(*case.options, fasta)
            self.assertEqual(tools("check", "-", "-g", fasta, given=report, status=None), b"", str(case.options))

    def test_odd_inputs(self) -> None:
        for number, (what, text) in enumerate(ODD_INPUTS.items()):
            fasta = self.folder / f"{number}.fa"
            fasta.write_bytes(text)
            for options in ([], ["-f", "5"], ["--NsAsMissense"], ["-U", "60"], ["--firstSeq", "2"],
                            ["--firstSeq", "2", "--lastSeq", "3"]):
                with self.subTest(what=what, options=options):
                    self.check(options, fasta)

    def test_compressed_report_and_input(self) -> None:
        run = random_run("packed", self.folder)
        packed = self.folder / "packed.fa.gz"
        packed.write_bytes(gzip.compress(run.fasta.read_bytes()))
        report = gzip.compress(run.report())
        self.assertEqual(tools("check", "-", "-g", packed, given=report), b"")


if __name__ == "__main__":
    unittest.main()
