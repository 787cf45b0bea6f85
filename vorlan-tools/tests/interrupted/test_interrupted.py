# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""A signal that ends a subcommand in the middle of its work: no file is left, and the caller sees the signal."""

from __future__ import annotations

import resource
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from random_runs import TOOLS, run_vorlan

ENDING = [signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT]
PATIENCE_SECONDS = 20


def bases(number: int) -> str:
    return "GATTC" + "CAG" * (5 + number % 7) + "TTGAC" + "AC" * (8 + number % 5) + "GGATTA"


class InterruptedTest(unittest.TestCase):
    def setUp(self) -> None:
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory(prefix="vorlan-tools-interrupted-")))
        self.fasta = self.folder / "in.fa"
        self.fasta.write_text("".join(f">s{number}\n{bases(number)}\n" for number in range(3000)))
        self.report = self.folder / "report.txt"
        self.report.write_bytes(run_vorlan(self.fasta))
        self.assertGreater(self.report.stat().st_size, 1_000_000)
        self.before = self.names()

    def names(self) -> set[str]:
        return {path.name for path in self.folder.iterdir()}

    def commands(self, report: object, *, streaming: bool) -> list[list[object]]:
        """With an output or two each; those that need all of a report before they write are no streams."""
        out, more = self.folder / "out", self.folder / "more"
        commands = [["convert", "-t", target, "-o", out, report] for target in ("bed", "jsonl", "paf", "tsv")]
        commands += [["convert", "-t", "bed", "-O", "z", "-@", 2, "-o", out, report],
                     ["convert", "-t", "bed", "--sort", "-o", out, report],
                     ["catalog", "-t", "atarva", "-g", self.fasta, "-o", out, "--rejected", more, report]]
        if streaming:
            return [*commands, ["mask", report, "-g", self.fasta, "-o", out],
                    ["merge", "-o", out, report]]
        return [*commands, ["convert", "-t", "gff3", "-o", out, report],
                ["convert", "-t", "bam", "--write-index", "-@", 2, "-o", out, report],
                ["convert", "-t", "sam", "-o", out, report],
                ["mask", report, "-g", self.fasta, "--write-index", "-o", out]]

    def wait_for_a_file(self, process: subprocess.Popen) -> None:
        end = time.monotonic() + PATIENCE_SECONDS
        while self.names() == self.before:
            self.assertIsNone(process.poll(), process.args)
            self.assertLess(time.monotonic(), end, process.args)
            time.sleep(0.002)

    def test_signals_leave_nothing(self) -> None:
        text = self.report.read_bytes()
        for number, words in enumerate(self.commands("-", streaming=True)):
            for sent in ENDING if number == 0 else ENDING[:2]:
                with subprocess.Popen([TOOLS, *map(str, words)], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                      stderr=subprocess.PIPE) as process:
                    process.stdin.write(text[:len(text) // 2])
                    process.stdin.flush()
                    self.wait_for_a_file(process)
                    process.send_signal(sent)
                    self.assertEqual(process.wait(PATIENCE_SECONDS), -sent, words)
                self.assertEqual(self.names(), self.before, words)

    def test_an_earlier_file_stays(self) -> None:
        out = self.folder / "out"
        out.write_text("earlier")
        self.before = self.names()
        with subprocess.Popen([TOOLS, "convert", "-t", "bed", "-o", out, "-"], stdin=subprocess.PIPE) as process:
            process.stdin.write(self.report.read_bytes()[:500_000])
            process.stdin.flush()
            self.wait_for_a_file(process)
            process.terminate()
            self.assertEqual(process.wait(PATIENCE_SECONDS), -signal.SIGTERM)
        self.assertEqual((self.names(), out.read_text()), (self.before, "earlier"))

    def test_the_limit_of_a_file_size_leaves_nothing(self) -> None:
        for words in self.commands(self.report, streaming=False):
            done = subprocess.run([TOOLS, *map(str, words)], capture_output=True, check=False,
                                  preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (5000, 5000)))
            self.assertEqual((done.returncode, done.stderr), (-signal.SIGXFSZ, b""), words)
            self.assertEqual(self.names(), self.before, words)

    def test_a_reader_that_goes_away_leaves_nothing(self) -> None:
        words = ["catalog", "-t", "atarva", "-g", self.fasta, "--flank", 6, "--rejected", self.folder / "more", self.report]
        with subprocess.Popen([TOOLS, *map(str, words)], stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
            process.stdout.close()
            self.assertEqual(process.wait(PATIENCE_SECONDS), -signal.SIGPIPE)
        self.assertEqual(self.names(), self.before)

    def test_a_signal_that_is_ignored_stays_so(self) -> None:
        text = self.report.read_bytes()
        out = self.folder / "out"
        with subprocess.Popen([TOOLS, "convert", "-t", "bed", "-o", out, "-"], stdin=subprocess.PIPE,
                              preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN)) as process:
            process.stdin.write(text[:500_000])
            process.stdin.flush()
            self.wait_for_a_file(process)
            process.send_signal(signal.SIGHUP)
            process.stdin.write(text[500_000:])
            process.stdin.close()
            self.assertEqual(process.wait(PATIENCE_SECONDS), 0)
        self.assertEqual(self.names(), self.before | {"out"})


if __name__ == "__main__":
    unittest.main()
