# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The check of the README must see faults: hand-made READMEs for a program that prints known lines."""

from __future__ import annotations

import contextlib
import io
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True

import check_readme

# Prints its arguments and three more lines; fails when it is told to.
PROGRAM = '#!/bin/sh\n[ "$1" = fail ] && exit 3\nprintf "%s\\n" "$*" one two three\necho noise >&2\n'
MAKEFILE = "ARGS ?= default.fa\nrun:\n\t@echo building >&2\n\t@build/release/vorlan $(ARGS)\n"


class CheckReadme(unittest.TestCase):
    def outcome(self, readme: str) -> tuple[int, str]:
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            (root / "examples").mkdir()
            (root / "Makefile").write_text(MAKEFILE)
            (root / "program").write_text(PROGRAM)
            (root / "program").chmod(0o755)
            (root / "README.md").write_text(readme)
            printed = io.StringIO()
            with contextlib.redirect_stdout(printed):
                status = check_readme.main([str(root / "README.md"), str(root / "program")])
            return status, printed.getvalue().rstrip("\n").split("\n")[-1]

    def block(self, *lines: str) -> tuple[int, str]:
        return self.outcome("\n".join(["# Title", "```console", *lines, "```", ""]))

    def assert_passes(self, *lines: str) -> None:
        self.assertEqual(self.block(*lines), (0, "1 passed, 0 failed"))

    def assert_fails(self, *lines: str) -> None:
        self.assertEqual(self.block(*lines), (1, "0 passed, 1 failed"))

    def test_the_whole_output_passes(self) -> None:
        self.assert_passes("$ vorlan a b", "a b", "one", "two", "three")

    def test_standard_error_is_not_compared(self) -> None:
        self.assert_passes("$ vorlan a 2>/dev/null", "a", "one", "two", "three")

    def test_cuts_stand_for_any_lines(self) -> None:
        self.assert_passes("$ vorlan a", "...", "one", "...", "three")
        self.assert_passes("$ vorlan a", "a", "...")
        self.assert_passes("$ vorlan a", "a", "...", "one", "...", "two", "three", "...")

    def test_make_run_runs_what_make_would_run(self) -> None:
        self.assert_passes("$ make run", "default.fa", "...")
        self.assert_passes('$ make run ARGS="-M exact x.fa"', "-M exact x.fa", "...")

    def test_another_line_fails(self) -> None:
        self.assert_fails("$ vorlan a", "a", "one", "Two", "three")

    def test_another_blank_fails(self) -> None:
        self.assert_fails("$ vorlan a", "a", "one ", "...")

    def test_a_line_left_out_without_a_cut_fails(self) -> None:
        self.assert_fails("$ vorlan a", "a", "one", "three")
        self.assert_fails("$ vorlan a", "...", "one", "three")
        self.assert_fails("$ vorlan a", "one", "...")
        self.assert_fails("$ vorlan a", "...", "two")
        self.assert_fails("$ vorlan a", "a", "one", "two")

    def test_a_line_too_many_fails(self) -> None:
        self.assert_fails("$ vorlan a", "a", "one", "two", "three", "four")

    def test_the_wrong_order_fails(self) -> None:
        self.assert_fails("$ vorlan a", "a", "...", "two", "...", "one", "...")

    def test_one_line_is_not_counted_twice(self) -> None:
        self.assert_fails("$ vorlan a", "...", "two", "three", "...", "three")
        self.assert_fails("$ vorlan a", "a", "one", "two", "...", "two", "three")

    def test_a_command_that_fails_is_a_failure(self) -> None:
        self.assert_fails("$ vorlan fail", "...")

    def test_a_readme_without_commands_fails(self) -> None:
        self.assertEqual(self.outcome("# Title\n```sh\nvorlan a\n```\n"), (1, "0 passed, 0 failed"))

    def test_a_block_that_cannot_be_checked_fails(self) -> None:
        for readme in ("```\nvorlan a\n```\n", "```text\none\n```\n", "```console\none\n```\n",
                       "```console\n$ make test\n```\n", "```console\n$ vorlan a\n..."):
            with self.subTest(readme=readme):
                self.assertEqual(self.outcome(readme), (1, "0 passed, 1 failed"))


if __name__ == "__main__":
    unittest.main()
