# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Pieces of a genome, each searched by a run of its own, give the report of the whole."""

from __future__ import annotations

import pathlib
import subprocess
import sys
import tempfile
import unittest

from workbench import ROOT, TOOLS, VORLAN

sys.path.insert(0, str(ROOT / "workflow/scripts"))
sys.path.insert(0, str(ROOT / "vorlan-tools/tests"))

from cut_genome import COLUMNS, Piece, pieces, record_starts
from parts.nasty_inputs import INPUTS, MALFORMED_INPUTS
from parts.nasty_inputs import record_starts as starts_by_definition

SCRIPTS = ROOT / "workflow/scripts"


class CutGenome(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def execute(self, *command: str | pathlib.Path) -> subprocess.CompletedProcess:
        return subprocess.run(command, cwd=self.folder, check=False, stdin=subprocess.DEVNULL, timeout=120,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def cut(self, size: int, options: str = "") -> subprocess.CompletedProcess:
        return self.execute(sys.executable, SCRIPTS / "cut_genome.py", "--vorlan", VORLAN, f"--options={options}",
                            "--size", str(size), "x.fa", "pieces.tsv")

    def merged(self, size: int, options: list[str]) -> tuple[int, bytes]:
        """Number of pieces, and the report that their reports are put together to."""
        outcome = self.cut(size, " ".join(options))
        self.assertEqual(outcome.returncode, 0, outcome.stderr)
        lines = (self.folder / "pieces.tsv").read_text().splitlines()
        self.assertEqual(lines[0], COLUMNS)
        parts = []
        for number in range(1, len(lines)):
            parts.append(f"{number}.report")
            outcome = self.execute(SCRIPTS / "search_piece.sh", "pieces.tsv", str(number), "x.fa", parts[-1], VORLAN,
                                   *options)
            self.assertEqual(outcome.returncode, 0, outcome.stderr)
        self.assertFalse(list(self.folder.glob("*unfinished*")))
        outcome = self.execute(TOOLS, "merge", "--slices", "--input", "x.fa", "-o", "whole.txt", *parts)
        self.assertEqual(outcome.returncode, 0, outcome.stderr)
        return len(parts), (self.folder / "whole.txt").read_bytes()

    def test_pieces_of_nasty_inputs_give_the_report_of_one_run(self) -> None:
        most = 0
        for options in (["--outputFormat", "1"], ["--outputFormat", "3", "-f", "10"]):
            for name, text in INPUTS.items():
                (self.folder / "x.fa").write_bytes(text)
                outcome = self.execute(VORLAN, *options, "x.fa", "whole.txt")
                self.assertEqual(outcome.returncode, 0, outcome.stderr)
                expected = (self.folder / "whole.txt").read_bytes()
                for size in (1, 200):
                    with self.subTest(name=name, options=options, size=size):
                        count, report = self.merged(size, options)
                        self.assertEqual(report, expected)
                        most = max(most, count)
        self.assertGreater(most, 3)

    def test_records_begin_where_the_definition_says(self) -> None:
        for name, text in INPUTS.items():
            with self.subTest(name=name):
                expected = [start for start in starts_by_definition(text)
                            if start != len(text) - 1 or text == b">"]
                self.assertEqual(list(record_starts(text)), [*expected, len(text)])

    def test_a_malformed_genome_is_refused_with_the_line_that_a_single_run_names(self) -> None:
        for name, text in MALFORMED_INPUTS.items():
            (self.folder / "x.fa").write_bytes(text)
            with self.subTest(name=name):
                single = self.execute(VORLAN, "x.fa", "whole.txt")
                if single.returncode == 0:  # The very last byte of a file may be anything.
                    self.assertEqual(name, "a digit as the last byte")
                    continue
                line = single.stderr.decode().split("File position: ")[1].split("\n")[0]
                outcome = self.cut(1)
                self.assertEqual(outcome.returncode, 1)
                self.assertEqual(outcome.stderr.decode().splitlines()[-1],
                                 f"vorlan-workflow: x.fa: {line}: this is no FASTA record")
                self.assertFalse((self.folder / "pieces.tsv").exists())

    def test_settings_that_vorlan_refuses_are_refused_before_any_search(self) -> None:
        (self.folder / "x.fa").write_bytes(INPUTS["one record"])
        for options, status in (("-u 5 -U 4", 255), ("--outputFormat 9", 254), ("--foo", 1)):
            outcome = self.cut(1, options)
            self.assertEqual(outcome.returncode, 1)
            self.assertIn(f"vorlan ended with status {status}", outcome.stderr.decode().splitlines()[-1])

    def test_a_piece_holds_at_most_its_share_or_one_record(self) -> None:
        # 30 bytes at most 12 each: three pieces of at most 10. Records begin at 2, 6, 9, 24 and 28.
        starts = record_starts(b"#\n>a\nA>b\n".replace(b"A>", b"A\n>")[:9] + b"\n>c\n" + b"A" * 10 + b"\n>d\n\n>e")
        self.assertEqual(list(starts), [2, 7, 10, 24, 28, 30])
        self.assertEqual(list(pieces(starts, 12)), [Piece(0, 10, 5), Piece(10, 14, 14), Piece(24, 6, 4)])

    def test_a_search_that_fails_leaves_no_report(self) -> None:
        (self.folder / "x.fa").write_bytes(INPUTS["two records"])
        self.cut(1)
        (self.folder / "x.fa").write_bytes(INPUTS["two records"][:-20])
        shorter = self.execute(SCRIPTS / "search_piece.sh", "pieces.tsv", "2", "x.fa", "2.report", VORLAN)
        self.assertIn("has become shorter", shorter.stderr.decode())
        refused = self.execute(SCRIPTS / "search_piece.sh", "pieces.tsv", "1", "x.fa", "1.report", VORLAN, "-u", "0")
        self.assertIn("vorlan ended with status 255", refused.stderr.decode())
        self.assertEqual([shorter.returncode, refused.returncode], [1, 255])
        self.assertEqual({file.name for file in self.folder.iterdir()}, {"x.fa", "pieces.tsv"})


if __name__ == "__main__":
    unittest.main()
