# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The commands that the manual pages show run, and print what is shown."""

from __future__ import annotations

import gzip
from pathlib import Path

from check_readme import Block, check_block
from manual_page import ROOT, ManualPage
from program_run import BINARY, ProgramTest


class Examples(ProgramTest):
    def test_the_formats_page_shows_what_the_program_prints(self) -> None:
        displays = [lines for lines in ManualPage("vorlan-formats.5").displays() if lines[0].startswith("$ ")]
        self.assertEqual(len(displays), 1)
        for lines in displays:
            for example, problem in check_block(Block(1, "console", tuple(lines)), ROOT, Path(BINARY)):
                with self.subTest(command=example.command):
                    self.assertEqual(problem, "")

    def test_the_commands_of_the_program_page_run(self) -> None:
        genome = (ROOT / "examples/mixed_records.fa").read_bytes()
        self.write("genome.fa", genome)
        self.write("genome.fa.gz", gzip.compress(genome))
        displays = [lines for lines in ManualPage("vorlan.1").displays() if lines[0].startswith("vorlan ")]
        self.assertEqual(len(displays), 3)
        for lines in displays:
            with self.subTest(command=lines[0]):
                script = "\n".join(line.replace("vorlan", '"$vorlan"', 1) for line in lines)
                self.assertEqual(self.run_in_shell(f"set -e\n{script}").status, 0)
        records = [self.read(name).count(b"\nsequence length: ") for name in ("first.txt", "others.txt")]
        self.assertEqual(records, [2, 2])
