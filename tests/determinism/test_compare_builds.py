# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The comparison of builds sees each kind of difference. VORLAN_BINARY names the program."""

from __future__ import annotations

import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

BINARY = os.environ["VORLAN_BINARY"]
SCRIPT = Path(__file__).resolve().parent / "compare_builds.py"
FAULTS = {
    "status differs": '"$vorlan" "$@"; exit 3',
    "report differs": '"$vorlan" "$@" | sed "s/Column  1/Column 1/; s/unit-length/unitlength/; s/^>/> /"',
    "console differs": '"$vorlan" "$@"; echo "one more line" >&2',
    "masked differs": '"$vorlan" "$@"; echo A >> in.fa.masked',
}
# As a program would be that takes a line for all residues, or a pipe for an empty file.
FAULTY_WITH_LAYOUT = 'test "$(wc -l < in.fa)" -lt 400 || set -- -D "$@"; "$vorlan" "$@"'
FAULTY_WITH_PIPE = 'test -L in.fa && set -- --lastSeq 0 "$@"; "$vorlan" "$@"'


class CompareBuilds(unittest.TestCase):
    def compare(self, *binaries: str, cases: str = "2") -> subprocess.CompletedProcess[str]:
        return subprocess.run([sys.executable, SCRIPT, *binaries, "--cases", cases], capture_output=True, text=True,
                              check=False)

    def wrapped(self, script: str) -> str:
        """A program that calls the real one in its own way."""
        folder = tempfile.TemporaryDirectory(prefix="vorlan-builds-test-")
        self.addCleanup(folder.cleanup)
        wrapper = Path(folder.name) / "vorlan"
        wrapper.write_text(f"#!/bin/bash\nvorlan='{BINARY}'\n{script}\n")
        wrapper.chmod(0o755)
        return str(wrapper)

    def test_the_same_program_twice_does_not_differ(self) -> None:
        outcome = self.compare(BINARY, BINARY)
        self.assertEqual((outcome.returncode, outcome.stdout),
                         (0, "2 builds, 2 cases, 16 runs: 0 cases differ\n"), outcome.stderr)

    def test_each_difference_is_seen_and_named(self) -> None:
        for words, script in FAULTS.items():
            with self.subTest(difference=words):
                wrapper = self.wrapped(script)
                outcome = self.compare(BINARY, wrapper)
                self.assertEqual(outcome.returncode, 1)
                self.assertIn(f"{wrapper}: {words}\n", outcome.stdout)

    def test_a_program_to_which_the_layout_of_its_input_matters_is_seen(self) -> None:
        outcome = self.compare(self.wrapped(FAULTY_WITH_LAYOUT))
        self.assertEqual(outcome.returncode, 1)
        self.assertIn("lines of 1 residues that end in", outcome.stdout)

    def test_a_program_to_which_a_pipe_matters_is_seen(self) -> None:
        outcome = self.compare(self.wrapped(FAULTY_WITH_PIPE))
        self.assertEqual(outcome.returncode, 1)
        self.assertIn("through a pipe: report differs\n", outcome.stdout)

    def test_a_program_that_fails_is_no_success_when_all_fail_alike(self) -> None:
        wrapper = self.wrapped('"$vorlan" "$@"; exit 3')
        self.assertEqual(self.compare(wrapper, wrapper).returncode, 1)


if __name__ == "__main__":
    unittest.main()
