# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The manual knows every exit status and tells which message comes with which."""

from __future__ import annotations

import re
import unittest
from pathlib import Path

from manual_page import ROOT, ManualPage
from program_run import ProgramTest

PAGE = ManualPage("vorlan.1")
SOURCES = {path: path.read_text(encoding="utf-8") for path in sorted((ROOT / "src").rglob("*")) if path.is_file()}
# The parser library ends the process itself.
OF_THE_LIBRARY = {1}
PARSE_ERROR = "PARSE ERROR: Argument:"
GOLDEN = ROOT / "tests" / "golden"


def statuses_of_the_sources() -> set[int]:
    """What main returns or exit is called with, as the system shows it."""
    table = re.findall(r"^ +k\w+ = (-?\d+),", SOURCES[ROOT / "src/driver/exit_status.h"], re.MULTILINE)
    settings = re.findall(r"^constexpr int k(?:GoOn|Rejected|UnknownChoice) = (-?\d+);",
                          SOURCES[ROOT / "src/config/command_line.cpp"], re.MULTILINE)
    exits = [name for text in SOURCES.values() for name in re.findall(r"\bexit\((\w+)\)", text)]
    named = [re.findall(rf"\b{name} = (\d+);", text) for name in exits for text in SOURCES.values()]
    internal = [number for numbers in named for number in numbers] + ["0" for name in exits if name == "EXIT_SUCCESS"]
    if len(internal) != len(exits):
        raise ValueError(f"not every status is known: {exits}")
    return {int(number) % 256 for number in table + settings + internal}


def text_literals() -> list[str]:
    """All texts of the sources, pieces that follow each other joined."""
    joined = (re.sub(r'"\s*\n\s*"', "", text) for text in SOURCES.values())
    return [literal.replace("\\n", "\n") for text in joined for literal in re.findall(r'"((?:[^"\\\n]|\\.)*)"', text)]


def golden_failures() -> list[tuple[Path, int, str]]:
    """Folder, status and all text printed of each golden case that ends with a failure."""
    found = []
    for folder in sorted(path.parent for path in GOLDEN.glob("*/cmd")):
        status = int((folder / "expected/status").read_text())
        texts = [folder / "expected" / name for name in ("stdout", "stderr")]
        if status:
            found.append((folder, status, "".join(path.read_text("latin-1") for path in texts if path.exists())))
    return found


def status_of(entry: str) -> int:
    return int(re.match(r"Status (\d+)", entry)[1])


class Statuses(ProgramTest):
    def test_the_statuses_are_those_of_the_sources(self) -> None:
        documented = [int(term) for term in PAGE.entries("EXIT STATUS")]
        self.assertEqual(sorted(documented), sorted(statuses_of_the_sources() | OF_THE_LIBRARY))

    def test_the_page_on_robustness_knows_the_statuses_that_users_can_meet(self) -> None:
        page = (ROOT / "docs/robustness.md").read_text(encoding="utf-8")
        table = re.search(r"^\| status \|.*?\n\n", page, re.DOTALL | re.MULTILINE)
        in_page = [int(number) for number in re.findall(r"^\| (\d+) \|", table[0], re.MULTILINE)]
        self.assertEqual(in_page, [int(term) for term in PAGE.entries("EXIT STATUS") if term != "2"])

    def test_the_messages_are_those_of_the_sources(self) -> None:
        literals = text_literals()
        messages = set(PAGE.entries("DIAGNOSTICS")) - {PARSE_ERROR}
        self.assertGreater(len(messages), 10)
        for message in messages:
            with self.subTest(message=message):
                self.assertTrue(any(message in literal for literal in literals))

    def test_golden_runs_that_fail_print_a_message_of_the_manual_with_its_status(self) -> None:
        messages = PAGE.entries("DIAGNOSTICS")
        failures = golden_failures()
        self.assertGreater(len(failures), 20)
        for folder, status, printed in failures:
            with self.subTest(case=folder.name):
                known = {status_of(entry) for message, entry in messages.items() if message in printed}
                self.assertEqual(known, {status})

    def test_a_command_line_that_cannot_be_read_has_the_status_of_the_manual(self) -> None:
        outcome = self.run_program("--unknown")
        self.assertIn(PARSE_ERROR.encode(), outcome.console)
        self.assertEqual(outcome.status, status_of(PAGE.entries("DIAGNOSTICS")[PARSE_ERROR]))

    def test_the_banner_of_progress_is_that_of_the_sources(self) -> None:
        shown = next(lines for lines in PAGE.displays() if lines[0].startswith("Time "))
        self.assertTrue(any(shown[0] in literal for literal in text_literals()))


if __name__ == "__main__":
    unittest.main()
