# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Names of sequences are any bytes: each target escapes them as its rules demand, or refuses with a sentence."""

from __future__ import annotations

import json
import subprocess
import tempfile
import unittest
import urllib.parse
from pathlib import Path

from random_runs import complaint, run_vorlan, tools

REPEAT = b"ACACACACACACACACACAC"
NASTY = [b"#x", b"seq-name", b"##", b"# x", b"a\tb", b"", b"tr\xe4ck", b"\xff\xfe", b"browser1", b"track", b"a;b=c,d&e%f",
         b"<script>", b'a"b\\c', b">x", b"x\x01y", b"\xe2\x80\xa8", b"*", b"=", b"Missense:", b"dinucleotide",
         b"1-nucleotide", b"sequence", b"a:1-2", b"\t", b"\t1\t2", b"vorlan\tVorlan\ttandem-repeat"]


class NameTest(unittest.TestCase):
    """A report with one sequence for each name of a list."""

    def report_of(self, names: list[bytes], *options: str) -> bytes:
        with tempfile.TemporaryDirectory(prefix="vorlan-tools-names-") as folder:
            fasta = Path(folder) / "in.fa"
            fasta.write_bytes(b"".join(b">" + name + b"\n" + REPEAT + b"\n" for name in names))
            return run_vorlan(*options, fasta)

    def test_every_format_gives_every_name_back(self) -> None:
        names = [name.split(b" ")[0] for name in NASTY]
        for form in "01234":
            for more in ([], ["-f", "3"], ["--NsAsMissense"], ["--sequenceInfoAsComment"]):
                report = self.report_of(NASTY, "--outputFormat", form, *more)
                rows = tools("convert", "-t", "jsonl", "-", given=report).split(b"\n")[:-1]
                told = [json.loads(row) for row in rows]
                self.assertEqual([bytes.fromhex(row["sequence_bytes"]) if "sequence_bytes" in row else
                                  row["sequence"].encode() for row in told], names)

    def test_tsv_escapes_tabs(self) -> None:
        rows = tools("convert", "-t", "tsv", "-", given=self.report_of([b"a\tb\\c"])).split(b"\n")
        self.assertTrue(rows[1].startswith(b"a\\tb\\\\c\t1\t20\t"))

    def test_gff3_escapes_and_genometools_reads_it(self) -> None:
        names = [name for name in NASTY if name and not name.startswith(b" ")]
        text = tools("convert", "-t", "gff3", "-", given=self.report_of(names))
        rows = [row for row in text.split(b"\n")[:-1] if not row.startswith(b"#")]
        self.assertEqual([urllib.parse.unquote_to_bytes(row.split(b"\t")[0]) for row in rows],
                         [name.split(b" ")[0] for name in names])
        done = subprocess.run(["gt", "gff3validator", "-typecheck", "so", "-"], input=text, capture_output=True,
                              check=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        complaint("convert", "-t", "gff3", "-", given=self.report_of([b""]))

    def test_bed_refuses_what_its_readers_misread(self) -> None:
        for name in (b"#x", b"track", b"browser1", b"", b"a\tb"):
            said = complaint("convert", "-t", "bed", "-", given=self.report_of([name]))
            self.assertIn("BED cannot hold the sequence name", said)
        for name in (b"tr\xe4ck", b"a;b", b"\xff", b">x"):
            self.assertTrue(tools("convert", "-t", "bed", "-", given=self.report_of([name])).startswith(name + b"\t0\t20"))

    def test_sam_refuses_what_its_grammar_forbids(self) -> None:
        for name in (b"*", b"=x", b"", b"a\tb", b"a,b", b"<x>", b"x\x01", b"\xff", b'"', b"a(b)", b"a'"):
            for target in ("sam", "bam"):
                self.assertIn("SAM cannot hold", complaint("convert", "-t", target, "-", given=self.report_of([name])))
        self.assertIn("differ", complaint("convert", "-t", "sam", "-", given=self.report_of([b"x", b"y", b"x"])))
        for name in (b"#x", b"a*", b"a=b", b"track", b"a;b%c&d|e^f~g!h$i?j@k/l_m+n:o-p"):
            self.assertIn(b"@SQ\tSN:" + name + b"\tLN:20\n",
                          tools("convert", "-t", "sam", "-", given=self.report_of([name])))

    def test_names_are_cut_as_samtools_faidx_cuts_them(self) -> None:
        report = self.report_of([b"a\tb c", b"d"])
        for target, first in [("bed", b"a\t0\t20"), ("gff3", b"a\tvorlan\t"), ("paf", None), ("sam", None)]:
            text = tools("convert", "-t", target, "--cut-names", "-", given=report)
            rows = [row for row in text.split(b"\n")[:-1] if not row.startswith((b"#", b"@"))]
            if first:
                self.assertTrue(rows[0].startswith(first))
            self.assertNotIn(b"a\tb", text)
            self.assertEqual(len(rows), 2)


if __name__ == "__main__":
    unittest.main()
