# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Each row of docs/robustness.md names a test that exists, and its statuses are documented ones."""

from __future__ import annotations

import re
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent
DOCUMENT = HERE.parents[1] / "docs" / "robustness.md"
NAMED_TEST = re.compile(r"`([a-z_]+)\.([a-z0-9_]{10,})`")
STATUSES = {"", "0", "1", "153", "154", "155", "231", "254", "255", "141 in a shell", "that of the signal"}


def rows(columns: int) -> list[list[str]]:
    """The rows of the tables with that many columns, without their heads and rules."""
    lines = [re.split(r"(?<!\\)\|", line)[1:-1] for line in DOCUMENT.read_text().splitlines() if line.startswith("|")]
    cells = [[cell.strip() for cell in line] for line in lines]
    return [row for row in cells if len(row) == columns and row[-1] != "test" and set(row[0]) != {"-"}]


class RobustnessDocument(unittest.TestCase):
    def test_every_named_test_exists(self) -> None:
        names = NAMED_TEST.findall(DOCUMENT.read_text())
        self.assertGreater(len(names), 60)
        for module, test in names:
            with self.subTest(test=f"{module}.{test}"):
                source = (HERE / f"test_{module}.py").read_text()
                self.assertRegex(source, rf"(?m)^    def test_{test}\(self")

    def test_every_situation_names_a_test(self) -> None:
        situations = rows(columns=5)
        self.assertGreater(len(situations), 45)
        for what, _, _, _, test in situations:
            with self.subTest(situation=what):
                self.assertRegex(test, NAMED_TEST)

    def test_every_status_is_a_documented_one(self) -> None:
        for what, _, status, _, _ in rows(columns=5):
            with self.subTest(situation=what):
                self.assertLessEqual(set(status.split(", ")), STATUSES)


if __name__ == "__main__":
    unittest.main()
