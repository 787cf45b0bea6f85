# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The commands that the manual pages show run, and print what is shown."""

from __future__ import annotations

import gzip
import subprocess
import sys

from manual_page import ROOT, ManualPage
from program_run import BINARY, ProgramTest

# The check of the README, which any document with commands and what they print can be given to.
CHECK, = (ROOT / "tests/readme").glob("check_*.py")


class Examples(ProgramTest):
    def test_the_formats_page_shows_what_the_program_prints(self) -> None:
        displays = [lines for lines in ManualPage("vorlan-formats.5").displays() if lines[0].startswith("$ ")]
        self.assertEqual(len(displays), 1)
        document = self.folder / "example.md"
        document.write_text("\n".join(["```console", *displays[0], "```", ""]))
        self.folder.joinpath("examples").symlink_to(ROOT / "examples")
        done = subprocess.run([sys.executable, str(CHECK), str(document), BINARY], stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, check=False)
        self.assertEqual((done.stdout, done.returncode), ("2 passed, 0 failed\n", 0))

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
