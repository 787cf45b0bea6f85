# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Cases that the comparison must accept or refuse, with a shell as the program."""

from __future__ import annotations

import contextlib
import io
import tempfile
import unittest
from pathlib import Path

from golden_case import Program
from run_golden import check, check_all

SHELL = Program("/bin/sh", ("sh",))


class Comparison(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory(prefix="golden-cases-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def case(self, name: str, script: str, why: str = "a reason", stdout: str = "", status: int = 0) -> Path:
        folder = self.folder / name
        (folder / "expected").mkdir(parents=True)
        (folder / "cmd").write_text("in.sh\n")
        (folder / "why").write_text(why + "\n")
        (folder / "in.sh").write_text(script)
        (folder / "expected" / "status").write_text(f"{status}\n")
        (folder / "expected" / "stdout").write_text(stdout)
        return folder

    def test_a_case_that_does_as_it_says_has_no_problems(self) -> None:
        self.assertEqual(check(SHELL, self.case("good", "echo x; exit 3", stdout="x\n", status=3)), [])

    def test_one_byte_of_output_makes_a_difference(self) -> None:
        self.assertIn("  stdout, line 1", check(SHELL, self.case("longer", "echo 'x '", stdout="x\n")))

    def test_another_status_makes_a_difference(self) -> None:
        self.assertEqual(check(SHELL, self.case("ended", "exit 1")), ["  status: expected 0, got 1"])

    def test_a_file_that_should_not_be_there_makes_a_difference(self) -> None:
        self.assertEqual(check(SHELL, self.case("made", ": >new")), ["  file new should not be there"])

    def test_a_file_that_is_gone_makes_a_difference(self) -> None:
        self.assertEqual(check(SHELL, self.case("gone", "rm in.sh")), ["  file in.sh is missing"])

    def test_a_text_on_the_console_makes_a_difference(self) -> None:
        self.assertIn("  stderr, line 1", check(SHELL, self.case("said", "echo x >&2")))

    def test_a_case_without_a_why_is_wrong(self) -> None:
        self.assertEqual(check(SHELL, self.case("silent", "", why=" ")), ["  why is empty"])

    def test_the_second_of_two_cases_with_one_why_is_wrong(self) -> None:
        first_with: dict[str, str] = {}
        cases = [self.case("one", "", why="The end  counts."), self.case("two", "", why="the end counts."),
                 self.case("three", "", why="the end does not count.")]
        self.assertEqual([check(SHELL, case, first_with) for case in cases], [[], ["  why is that of one"], []])

    def test_the_cases_that_fail_are_named_and_counted(self) -> None:
        cases = [self.case("right", ""), self.case("wrong", "exit 1")]
        with contextlib.redirect_stdout(io.StringIO()) as said:
            status = check_all(cases, lambda case: check(SHELL, case))
        self.assertEqual((status, said.getvalue()),
                         (1, "FAILED wrong\n  status: expected 0, got 1\n1 passed, 1 failed\n"))

    def test_no_case_at_all_is_a_failure(self) -> None:
        with contextlib.redirect_stdout(io.StringIO()):
            self.assertEqual(check_all([], lambda case: []), 1)


if __name__ == "__main__":
    unittest.main()
