# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Usage, version and the ways in which a command line can fail to be read."""

from __future__ import annotations

import re
import unittest

from option_table import BY_NAME, FILE_NAMES_DESCRIPTION, FILE_NAMES_LABEL, OPTIONS, PROGRAM_DESCRIPTION
from program_run import INVOCATION, ProgramTest
from small_record import CLOSING_LINE, ENTRY, RECORD, block, header, without_header

UNKNOWN = "Couldn't find match for argument"
TWICE = "Argument already set!"
MISSING = "Missing a value for this argument!"


def compact(text: str) -> str:
    """Without white space: the help text is wrapped, also inside words after a comma or a bar."""
    return re.sub(r"\s+", "", text)


class UnreadableCommandLine(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        self.write("in.fa", RECORD)

    def tearDown(self) -> None:
        self.assertEqual(self.names(), {b"in.fa"}, "an unreadable command line must not create files")
        self.assertEqual(self.read("in.fa"), RECORD)

    def test_an_unknown_option_is_refused_before_the_file_name(self) -> None:
        self.assert_parse_failure(self.run_program("--foo", "in.fa"), "--foo", UNKNOWN)

    def test_an_unknown_option_is_refused_after_the_file_name_and_creates_no_file(self) -> None:
        self.assert_parse_failure(self.run_program("in.fa", "--foo"), "--foo", UNKNOWN)

    def test_an_unknown_option_is_refused_between_two_file_names(self) -> None:
        self.assert_parse_failure(self.run_program("in.fa", "-x", "out.txt"), "-x", UNKNOWN)

    def test_an_unknown_option_without_a_file_name_is_a_parse_failure(self) -> None:
        self.assert_parse_failure(self.run_program("--foo"), "--foo", UNKNOWN)

    def test_what_only_resembles_an_option_is_unknown(self) -> None:
        for argument in ("--mask", "--maskx", "--MASKX", "-maskX", "--D", "---", "-n", "-v", "-D ", "-0", "-1",
                         "-*", "--*", "-%n%s"):
            with self.subTest(argument=argument):
                self.assert_parse_failure(self.run_program(argument, "in.fa"), argument, UNKNOWN)

    def test_a_hyphen_with_a_bell_is_unknown(self) -> None:
        # The library writes a bell over each switch that it has taken from an argument, so it takes an
        # argument of bells for one whose switches have all been taken.
        self.assert_parse_failure(self.run_program("-\a", "in.fa"), "-\a", UNKNOWN)

    def test_a_value_stands_behind_a_blank_and_nothing_else(self) -> None:
        for argument in ("--succN=5", "--succN:5", "-N5", "-N=5", "-Mexact"):
            with self.subTest(argument=argument):
                self.assert_parse_failure(self.run_program(argument, "in.fa"), argument, UNKNOWN)

    def test_bytes_beyond_ascii_in_an_unknown_option_are_shown_as_given(self) -> None:
        self.assert_parse_failure(self.run_program("in.fa", b"--\xff\xfe%n%s"), b"--\xff\xfe%n%s", UNKNOWN)

    def test_no_option_may_be_given_twice(self) -> None:
        for option in OPTIONS:
            value = [] if not option.value else ["exact" if option.name == "searchMode" else "1"]
            for first in option.spellings():
                for second in option.spellings():
                    with self.subTest(first=first, second=second):
                        outcome = self.run_program(first, *value, "in.fa", second, *value)
                        self.assert_parse_failure(outcome, option.identification(), TWICE)

    def test_a_switch_may_not_be_given_twice_in_one_argument(self) -> None:
        self.assert_parse_failure(self.run_program("-DD", "in.fa"), "-D (--dontRemoveMostlyOverlapping)", TWICE)

    def test_options_with_values_cannot_be_combined_with_a_switch(self) -> None:
        # The library shows a bell in place of a switch that it has already taken.
        self.assert_parse_failure(self.run_program("-DN", "5", "in.fa"), "-\aN", UNKNOWN)
        self.assert_parse_failure(self.run_program("-Dx", "in.fa"), "-\ax", UNKNOWN)

    def test_a_value_missing_at_the_end_is_a_parse_failure(self) -> None:
        for option in OPTIONS:
            for spelling in option.spellings() if option.value else []:
                with self.subTest(spelling=spelling):
                    outcome = self.run_program("in.fa", spelling)
                    self.assert_parse_failure(outcome, option.identification(), MISSING)

    def test_the_next_option_is_taken_for_a_missing_value_and_is_not_readable_as_one(self) -> None:
        self.assert_parse_failure(self.run_program("-N", "-D", "in.fa"), "-N (--succN)",
                                  "Couldn't read argument value from string '-D'")

    def test_the_file_name_is_taken_for_a_missing_value_and_is_not_readable_as_one(self) -> None:
        self.assert_parse_failure(self.run_program("--minPerfection", "in.fa"), "(--minPerfection)",
                                  "Couldn't read argument value from string 'in.fa'")

    def test_two_numbers_in_one_value_are_one_too_many(self) -> None:
        self.assert_parse_failure(self.run_program("-N", "5 6", "in.fa"), "-N (--succN)",
                                  "More than one valid value parsed from string '5 6'")

    def test_search_mode_names_are_matched_to_the_letter(self) -> None:
        for name in ("Exact", "exac", "exact ", "exact|extendExact", "", "2", "%n"):
            with self.subTest(name=name):
                self.assert_parse_failure(
                    self.run_program("-M", name, "in.fa"), "-M (--searchMode)",
                    f"Value '{name}' does not meet constraint: exact|extendExact|imperfect")

    def test_a_parse_failure_comes_before_a_missing_file_name_and_before_bad_choices(self) -> None:
        self.assert_parse_failure(self.run_program("--outputFormat", "9", "-s", "1", "-N", "x"), "-N (--succN)",
                                  "Couldn't read argument value from string 'x'")


class VersionAndHelp(ProgramTest):
    VERSION = b"\n%s  version: 3.3.10.\nThis is a 64 bit version of Vorlan.\n\n"

    def assert_only_the_banner(self, messages: bytes, status: int) -> None:
        self.assertEqual(messages, b"")
        self.assertEqual(status, 0)

    def help_blocks(self) -> list[str]:
        outcome = self.run_program("--help")
        self.assert_only_the_banner(outcome.messages(), outcome.status)
        usage, blank, arguments = outcome.report.decode("ascii").partition("\n\nWhere: \n\n")
        self.assertTrue(usage.startswith("\nUSAGE: \n\n   vorlan  "), usage[:60])
        self.assertTrue(blank)
        return arguments.rstrip("\n").split("\n\n")

    def test_the_version_goes_to_standard_output(self) -> None:
        outcome = self.run_program("--version")
        self.assertEqual(outcome.report, self.VERSION % INVOCATION.encode())
        self.assert_only_the_banner(outcome.messages(), outcome.status)

    def test_the_version_names_the_program_as_it_was_called(self) -> None:
        outcome = self.run_in_shell("exec -a './some where/%n%s' \"$vorlan\" --version")
        self.assertEqual(outcome.report, self.VERSION % b"./some where/%n%s")

    def test_a_missing_file_name_is_noted_in_the_name_under_which_the_program_was_called(self) -> None:
        outcome = self.run_in_shell("exec -a './some where/%n%s' \"$vorlan\"")
        self.assertEqual(outcome.messages(), b"Error: No input file has been specified. Type ./some where/%n%s --help "
                                             b"for more information.\n\n\n")
        self.assertEqual(outcome.status, 255)

    def test_the_version_is_told_also_behind_other_arguments(self) -> None:
        outcome = self.run_program("-N", "3", "missing.fa", "--version", "out.txt")
        self.assertEqual(outcome.report, self.VERSION % INVOCATION.encode())
        self.assertEqual((outcome.status, self.names()), (0, set()))

    def test_the_help_describes_each_option_in_the_promised_words(self) -> None:
        blocks = [compact(text) for text in self.help_blocks()]
        for option in OPTIONS:
            with self.subTest(option=option.name):
                self.assertEqual(blocks.count(compact(option.usage() + option.description)), 1)

    def test_the_help_describes_the_file_names_and_the_program(self) -> None:
        blocks = self.help_blocks()
        self.assertEqual([compact(text) for text in blocks[-2:]],
                         [compact(f"<{FILE_NAMES_LABEL}> (accepted multiple times) {FILE_NAMES_DESCRIPTION}"),
                          compact(PROGRAM_DESCRIPTION)])
        self.assertTrue(blocks[-2].endswith(" console. "), "the blank at the end belongs to the text")

    def test_the_help_describes_nothing_else_but_what_the_library_adds(self) -> None:
        own = {compact(option.usage() + option.description) for option in OPTIONS}
        others = [text.split()[0] for text in self.help_blocks()[:-2] if compact(text) not in own]
        self.assertEqual(len(own), 28)
        self.assertEqual(others, ["--,", "--version", "-h,"])

    def test_the_usage_line_shows_each_option_once_and_as_optional(self) -> None:
        usage = compact(self.run_program("--help").report.decode("ascii").partition("Where:")[0])
        for option in OPTIONS:
            label = f"<{option.value}>" if option.value else ""
            with self.subTest(option=option.name):
                self.assertEqual(usage.count(f"[{option.spellings()[0]}{label}]"), 1)

    def test_help_is_given_in_every_way_to_ask_for_it(self) -> None:
        expected = self.run_program("--help")
        for arguments in (["-h"], ["-Dh"], ["-hD"], ["-D", "-h"], ["missing.fa", "--help"],
                          ["--maskX", "missing.fa", "out.txt", "-h"]):
            with self.subTest(arguments=arguments):
                self.assertEqual(self.run_program(*arguments), expected)
        self.assertEqual(self.names(), set())


class Names(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        self.write("in.fa", RECORD)

    def test_after_two_hyphens_an_option_is_a_file_name(self) -> None:
        outcome = self.run_program("--", "in.fa", "-D")
        self.assert_success(outcome)
        self.assertEqual(outcome.report, b"")
        self.assertEqual(self.read("-D"), header(b"in.fa", b"-D") + block() + CLOSING_LINE)

    def test_after_two_hyphens_help_is_a_file_name(self) -> None:
        outcome = self.run_program("--", "--help")
        self.assertEqual(outcome.messages(), b'Sorry! The input file \n   "--help"\ncould not be opened. '
                                             b"I guess it does not exist.\n\n"
                                             b"Analysis has been aborted due to errors. Error number: -101\n\n")
        self.assertEqual((outcome.report, outcome.status), (b"", 155))

    def test_options_before_two_hyphens_hold(self) -> None:
        outcome = self.run_program("--printRepeatSeqMode", "0", "in.fa", "--")
        self.assertEqual(without_header(outcome.report),
                         block(entries=b"".join(ENTRY.splitlines(keepends=True)[:2])) + CLOSING_LINE)

    def test_a_lone_hyphen_is_a_report_name(self) -> None:
        outcome = self.run_program("in.fa", "-")
        self.assert_success(outcome)
        self.assertEqual(outcome.report, b"")
        self.assertEqual(self.read("-"), header(b"in.fa", b"-") + block() + CLOSING_LINE)

    def test_an_empty_input_name_cannot_be_opened(self) -> None:
        outcome = self.run_program("")
        self.assertTrue(outcome.messages().startswith(b'Sorry! The input file \n   ""\ncould not be opened. '))
        self.assertEqual(outcome.status, 155)

    def test_a_combined_switch_of_one_letter_is_the_switch(self) -> None:
        self.assertIn(b"#    Remove mostly overlapping satellites: no\n", self.run_program("-D", "in.fa").report)

    def test_options_may_stand_before_between_and_behind_the_file_names(self) -> None:
        for arguments in (["-N", "3", "-D", "in.fa", "out.txt"], ["in.fa", "-N", "3", "-D", "out.txt"],
                          ["in.fa", "out.txt", "-D", "-N", "3"], ["-D", "in.fa", "-N", "3", "out.txt"]):
            with self.subTest(arguments=arguments):
                self.assert_success(self.run_program(*arguments))
                report = self.read("out.txt")
                self.assertIn(b"#    Max. succesive N's allowed:           3\n", report)
                self.assertIn(b"#    Remove mostly overlapping satellites: no\n", report)
                self.assertTrue(report.endswith(block() + CLOSING_LINE))

    def test_option_and_value_may_stand_in_one_argument_with_a_blank_between(self) -> None:
        expected = self.run_program("-N", "3", "in.fa").report
        self.assertIn(b"#    Max. succesive N's allowed:           3\n", expected)
        for argument in ("-N 3", "--succN 3"):
            with self.subTest(argument=argument):
                self.assertEqual(self.run_program(argument, "in.fa").report, expected)

    def test_short_and_long_names_mean_the_same(self) -> None:
        default = self.run_program("in.fa").report
        values = {"succN": "3", "flanking": "2", "maximum_score_reduction": "7", "recursion": "3", "minUnitLen": "2",
                  "maxUnitLen": "4", "minLength": "3", "minScore": "7", "mismatchScore": "-3", "indelScore": "-4",
                  "searchMode": "exact"}
        self.assertEqual(set(values), {option.name for option in OPTIONS if option.short and option.value})
        for name, value in values.items():
            short, long = BY_NAME[name].spellings()
            with self.subTest(option=name):
                report = self.run_program(short, value, "in.fa").report
                self.assertEqual(report, self.run_program(long, value, "in.fa").report)
                self.assertNotEqual(report, default)
        self.assertEqual(self.run_program("-D", "in.fa").report,
                         self.run_program("--dontRemoveMostlyOverlapping", "in.fa").report)
