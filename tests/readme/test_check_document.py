# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The check of documents must see faults: hand-made documents for a program that prints known lines."""

from __future__ import annotations

import contextlib
import io
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True

import check_document

# Prints its arguments and three more lines; fails when it is told to.
PROGRAM = '#!/bin/sh\n[ "$1" = fail ] && exit 3\nprintf "%s\\n" "$*" one two three\necho noise >&2\n'
MAKEFILE = "ARGS ?= default.fa\nrun:\n\t@echo building >&2\n\t@build/release/vorlan $(ARGS)\n"


class CheckDocument(unittest.TestCase):
    def outcome(self, text: str, name: str = "README.md") -> tuple[int, str]:
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            (root / "examples").mkdir()
            (root / "examples/a.fa").touch()
            (root / "Makefile").write_text(MAKEFILE)
            (root / "program").write_text(PROGRAM)
            (root / "program").chmod(0o755)
            document = root / name
            document.parent.mkdir(exist_ok=True)
            document.write_text(text)
            printed = io.StringIO()
            with contextlib.redirect_stdout(printed):
                status = check_document.main([str(document), str(root / "program")])
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

    def recipe(self, *lines: str, shown: tuple[str, ...] = ()) -> tuple[int, str]:
        text = ["```text", *shown, "```"] if shown else []
        return self.outcome("\n".join(["# Title", "```bash", *lines, "```", "What comes out:", *text, ""]))

    def test_a_command_may_go_on_in_the_next_line(self) -> None:
        self.assert_passes("$ vorlan a |", "tail -n 1", "three")
        self.assert_passes("$ vorlan a \\", "  b", "a b", "one", "two", "three")
        self.assert_fails("$ vorlan a |", "tail -n 1", "two")

    def test_a_recipe_is_one_script_with_its_output_behind_it(self) -> None:
        self.assertEqual(self.recipe("vorlan a |", "tail -n 1", "echo end", shown=("three", "end")),
                         (0, "1 passed, 0 failed"))

    def test_another_output_of_a_recipe_fails(self) -> None:
        self.assertEqual(self.recipe("vorlan a", shown=("a", "one", "two", "tree")), (1, "0 passed, 1 failed"))

    def test_output_of_a_recipe_that_is_not_shown_fails(self) -> None:
        self.assertEqual(self.recipe("vorlan a"), (1, "0 passed, 1 failed"))
        self.assertEqual(self.recipe("vorlan a >file"), (0, "1 passed, 0 failed"))

    def test_a_recipe_fails_with_any_of_its_commands(self) -> None:
        for script in ("false\necho a", "vorlan fail | cat >file", "cat no-such-file || exit 3"):
            with self.subTest(script=script):
                self.assertEqual(self.recipe(script), (1, "0 passed, 1 failed"))

    def test_recipes_share_a_folder_and_console_blocks_do_not(self) -> None:
        two = "```{0}\n{1}vorlan a >file\n```\n```{0}\n{1}vorlan; cat file >copy\n```\n"
        self.assertEqual(self.outcome(two.format("bash", "").replace("vorlan; ", "")), (0, "2 passed, 0 failed"))
        self.assertEqual(self.outcome(two.format("console", "$ ").replace("vorlan; ", "vorlan b >x; ")),
                         (1, "1 passed, 1 failed"))

    def test_text_without_a_recipe_before_it_fails(self) -> None:
        self.assertEqual(self.outcome("```sh\nvorlan a\n```\n```text\na\n```\n"), (1, "0 passed, 1 failed"))

    def test_a_document_in_a_folder_below_finds_the_examples(self) -> None:
        self.assertEqual(self.outcome("```console\n$ vorlan examples/*\nexamples/a.fa\n...\n```\n", "docs/guide.md"),
                         (0, "1 passed, 0 failed"))

    def test_a_block_that_cannot_be_checked_fails(self) -> None:
        for readme in ("```\nvorlan a\n```\n", "```text\none\n```\n", "```console\none\n```\n",
                       "```console\n$ make test\n```\n", "```console\n$ vorlan a\n..."):
            with self.subTest(readme=readme):
                self.assertEqual(self.outcome(readme), (1, "0 passed, 1 failed"))


if __name__ == "__main__":
    unittest.main()
