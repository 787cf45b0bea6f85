# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Calls that would destroy something are refused before anything is opened; nothing else is left behind."""

from __future__ import annotations

import gzip
import os
import random
import subprocess
import unittest

from parts.nasty_inputs import INPUTS
from parts.programs import TOOLS, VORLAN, ProgramTest

TEXT = INPUTS["two records"]


class DestructiveCalls(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        self.write("in.fa", TEXT)
        self.before = self.names()

    def refuse(self, *arguments: str, words: str, flags: tuple[str, ...] = (), **options) -> None:
        before = self.names()
        outcome = self.run_tool(*arguments, flags=flags, **options)
        self.assert_refused(outcome, 2, words)
        self.assertEqual(self.read("in.fa"), TEXT)
        self.assertEqual(self.names(), before)

    def test_the_report_is_the_input_under_another_name(self) -> None:
        (self.folder / "link").symlink_to("in.fa")
        (self.folder / "chain").symlink_to("link")
        (self.folder / "hard").hardlink_to(self.folder / "in.fa")
        (self.folder / "sub").symlink_to(".")
        for name in ("in.fa", "./in.fa", "link", "chain", "hard", "sub/in.fa", str(self.folder / "in.fa")):
            with self.subTest(report=name):
                self.refuse("in.fa", name, words="same file as the input")
                self.refuse(name, "in.fa", words="same file as the input")

    def test_the_report_is_standard_input(self) -> None:
        with open(self.folder / "in.fa", "rb") as text:
            self.refuse("-", "in.fa", words="same file as the input", stdin=text)

    def test_standard_output_appends_to_the_input(self) -> None:
        with open(self.folder / "in.fa", "ab") as text:
            outcome = self.run_tool("in.fa", stdout=text)
        self.assert_refused(outcome, 2, "same file as the input")
        self.assertEqual(self.read("in.fa"), TEXT)

    def test_the_report_is_the_masked_file(self) -> None:
        self.refuse("--maskX", "in.fa", "in.fa.masked", words="Two outputs would be the same file")
        self.refuse("--maskX", "in.fa", "./in.fa.masked", words="Two outputs would be the same file")

    def test_the_masked_file_is_an_input(self) -> None:
        (self.folder / "in.fa.masked").symlink_to("in.fa")
        self.refuse("--maskX", "in.fa", "out.txt", words="masked file in.fa.masked is the same file as the input")
        (self.folder / "in.fa.masked").unlink()
        (self.folder / "in.fa.masked").hardlink_to(self.folder / "in.fa")
        self.refuse("--maskX", "in.fa", words="masked file in.fa.masked is the same file as the input")

    def test_the_masked_file_is_another_input(self) -> None:
        self.write("in.fa.masked", TEXT)
        self.refuse("--maskX", "in.fa", "in.fa.masked", words="same file as the input", flags=("--reports", "."))

    def test_the_report_is_a_fasta_file(self) -> None:
        for text in (TEXT, b"\n# comment\n  >a\nAC\n", gzip.compress(TEXT)):
            self.write("genome.fa", text)
            self.refuse("in.fa", "genome.fa", words="is a FASTA file")
            self.assertEqual(self.read("genome.fa"), text)

    def test_an_earlier_fasta_report_may_be_replaced(self) -> None:
        for name in ("out.fa", "out.fa.gz"):
            for _ in range(2):
                outcome = self.run_tool("--outputFormat", "4", "in.fa", name)
                self.assertEqual(outcome.returncode, 0, outcome.stderr)

    def test_reports_of_several_inputs_that_meet(self) -> None:
        self.write("in.fasta", TEXT)
        self.refuse("in.fa", "in.fasta", words="Two outputs would be the same file", flags=("--reports", "."))
        self.refuse("in.fa", words="same file as the input", flags=("--reports", ".", "--ending", ".fa"))
        self.refuse("in.fa", "-", words="every input needs a name", flags=("--reports", "."))

    def test_nothing_is_written_beside_the_input(self) -> None:
        place = self.folder / "input"
        place.mkdir()
        (place / "in.fa").write_bytes(TEXT)
        place.chmod(0o555)
        self.assertEqual(self.run_tool("input/in.fa", "out.txt").returncode, 0)
        self.assertEqual(self.run_tool("input/in.fa").returncode, 0)
        self.assertEqual(os.listdir(place), ["in.fa"])
        place.chmod(0o755)
        self.assertEqual(self.run_tool("--maskX", "input/in.fa").returncode, 0)
        self.assertEqual(sorted(os.listdir(place)), ["in.fa", "in.fa.masked"])


class ProgressLines(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        self.write("in.fa", TEXT)

    def test_plain_lines_where_there_is_no_terminal(self) -> None:
        # 87 bases of the first record, 20 of the second.
        messages = self.run_tool("in.fa").stderr.decode()
        self.assertRegex(messages, r"\Avorlan-tools: in\.fa: 107 bp, 2 records(, \d\S* [kM]?bp/s)?, 0:0\d\n\Z")

    def test_quiet_says_nothing(self) -> None:
        self.assertEqual(self.run_tool("in.fa", flags=("--quiet",)).stderr, b"")

    def test_a_bar_on_a_terminal(self) -> None:
        # Two seconds of work or more: the bar is drawn several times.
        residues = bytes(random.Random(3).choices(b"ACGT", k=96_000)) * 4
        self.write("in.fa", b"".join(b">%d\n%s\n" % (n, residues) for n in range(150)))
        controller, terminal = os.openpty()
        with open(self.folder / "out", "wb") as out:
            process = subprocess.Popen([TOOLS, "run", "-j", "1", "--vorlan", VORLAN, "--slice-size", "1", "--", "in.fa"],
                                       cwd=self.folder, env=self.environment(), stdout=out, stderr=terminal)
        os.close(terminal)
        shown = b""
        try:
            while data := os.read(controller, 65536):
                shown += data
        except OSError:  # the end of a terminal
            pass
        os.close(controller)
        self.assertEqual(process.wait(60), 0)
        self.assertRegex(shown, rb"\r\[\.{24}\]   0 %, 0 bp, 0 records\x1b\[K")
        self.assertRegex(shown, rb"\r\[#+\.+\]  \d\d %, \d+\.\d+ [kM]bp, \d+ records, \S+ [kM]bp/s, \d+:\d\d left\x1b\[K")
        self.assertRegex(shown, rb"\r\x1b\[Kvorlan-tools: in\.fa: 57\.60 Mbp, 150 records, \S+ [kM]bp/s, \d+:\d\d\r\n")


if __name__ == "__main__":
    unittest.main()
