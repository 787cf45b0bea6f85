# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""What the manual and the completions say about options is what the program does.

Both are written from docs/options.toml, so that table is compared with the program, and the files with the table.
"""

from __future__ import annotations

import contextlib
import io
import re
import shlex

import option_texts
from option_texts import Option
from program_run import Outcome, ProgramTest
from small_record import RECORD

_, OPTIONS = option_texts.read_table()
WITH_VALUE = [option for option in OPTIONS if option.place()]
NUMBERS = [option for option in WITH_VALUE if option.range]

UNREADABLE, REFUSED = {1}, {254, 255}
HOLDS_32_BITS = {"int": (-2**31, 2**31 - 1), "unsigned": (0, 2**32 - 1)}


def compact(text: str) -> str:
    """Without white space: the help text is wrapped, also inside words."""
    return re.sub(r"\s+", "", text)


def described(help_text: str) -> list[str]:
    """The options of the help text with their descriptions, without white space."""
    blocks = help_text.partition("Where:")[2].strip("\n").split("\n\n")
    return [compact(block) for block in blocks if block.strip().startswith("-")]


def usage(option: Option) -> str:
    place = f"<{option.place()}>" if option.place() else ""
    return ",".join(spelling + place for spelling in option.spellings())


class UpToDate(ProgramTest):
    def test_manual_and_completions_say_what_the_table_says(self) -> None:
        difference = io.StringIO()
        with contextlib.redirect_stdout(difference):
            status = option_texts.main(["--check"])
        self.assertEqual(difference.getvalue(), "", "run tools/option_texts.py")
        self.assertEqual(status, 0)


class Options(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        self.write("genome.fa", RECORD)

    def run_with(self, option: Option, value: str) -> Outcome:
        # The largest unit length has to keep up with the smallest, but not the other way round.
        partner = ["-U", value] if option.name == "minUnitLen" and int(value) > 10 else []
        return self.run_program(option.spellings()[-1], value, *partner, "genome.fa")

    def reports(self, *arguments: str) -> list[bytes]:
        """The report in the default format, and in one whose head shows the settings of all formats."""
        formats: list[list[str]] = [[], ["--outputFormat", "3"]]
        outcomes = [self.run_program(*arguments, *words, "genome.fa")
                    for words in (formats[:1] if "--outputFormat" in arguments else formats)]
        self.assertEqual({outcome.status for outcome in outcomes}, {0})
        return [outcome.report for outcome in outcomes]

    def test_the_options_are_those_of_the_help_text(self) -> None:
        left = described(self.run_program("--help").report.decode("ascii"))
        for option in OPTIONS:
            with self.subTest(option=option.name):
                found = [text for text in left if re.match(re.escape(usage(option)) + "[A-Z]", text)]
                self.assertEqual(len(found), 1)
                left.remove(found[0])
        self.assertEqual([text.split(",--")[0] for text in left], ["--"], "not in the table")

    def test_the_default_is_what_holds_without_the_option(self) -> None:
        without = self.reports()
        for option in WITH_VALUE:
            with self.subTest(option=option.name):
                given = self.reports(f"--{option.name}", option.default)
                self.assertEqual(given, without[:len(given)])

    def test_the_option_of_the_example_changes_the_report(self) -> None:
        for option in OPTIONS:
            words = shlex.split(option.example)[1:]
            used = [word for word in words if word in option.spellings()]
            with self.subTest(option=option.name):
                self.assertEqual(len(used), 1)
                arguments = words[words.index(used[0]):][:2 if option.place() else 1]
                changed = self.reports(*arguments)
                self.assertNotEqual(changed, self.reports()[:len(changed)])

    def test_the_examples_run(self) -> None:
        for option in OPTIONS:
            with self.subTest(example=option.example):
                self.assertEqual(self.run_in_shell(option.example.replace("vorlan", '"$vorlan"', 1)).status, 0)

    def test_the_range_begins_and_ends_with_values_that_are_taken(self) -> None:
        for option in NUMBERS:
            for value in option.ends():
                with self.subTest(option=option.name, value=value):
                    self.assertEqual(self.run_with(option, value).status, 0)

    def test_values_next_to_the_range_meet_what_the_table_says(self) -> None:
        for option in NUMBERS:
            if option.kind == "float":
                continue
            least, largest = map(int, option.ends())
            for value, end in ((least - 1, least), (largest + 1, largest)):
                with self.subTest(option=option.name, value=value):
                    self.check_beyond(option, value, end)

    def check_beyond(self, option: Option, value: int, end: int) -> None:
        outcome = self.run_with(option, str(value))
        smallest, biggest = HOLDS_32_BITS[option.kind]
        if not smallest <= value <= biggest:
            self.assertIn(outcome.status, UNREADABLE)
        elif option.beyond in ("refused", "wrapped"):
            self.assertIn(outcome.status, REFUSED)
        elif option.beyond == "limited":
            self.assertEqual(outcome.report, self.run_with(option, str(end)).report)
        else:
            self.assertEqual(option.beyond, "unsigned")
            self.assertIn(f"{value % 2**32} -" if value != -1 else "last sequence", outcome.report.decode("ascii"))

    def test_values_that_are_wrapped_are_shown_as_what_the_manual_says_they_become(self) -> None:
        wrapped = [option for option in NUMBERS if option.beyond == "wrapped"]
        self.assertEqual({option.name for option in wrapped}, {"minUnitLen", "maxUnitLen"})
        for option in wrapped:
            partner = ["-U", "-1"] if option.name == "minUnitLen" else []
            with self.subTest(option=option.name):
                outcome = self.run_program(f"--{option.name}", "-5", *partner, "genome.fa")
                self.assertEqual(outcome.status, 0)
                self.assertRegex(outcome.report, rb"(?m)^#    M\w+ unit length: +4294967291$")

    def test_numbers_that_choose_are_all_described(self) -> None:
        for option in NUMBERS:
            if option.values:
                least, largest = map(int, option.ends())
                with self.subTest(option=option.name):
                    self.assertEqual(list(option.values), [str(value) for value in range(least, largest + 1)])
