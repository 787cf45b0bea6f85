# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Every option with a value against fourteen values, on a record whose only repeat is known.

The expectations follow from the meaning of each option alone: whether the value can be read, whether
it is refused, and whether a repeat of 10 bases, 8 points and 100 % is reported under it.
"""

from __future__ import annotations

from typing import Callable

from number_texts import INT_MAX, INT_MIN, UNSIGNED_MAX, read, values
from option_table import BY_NAME, OPTIONS
from program_run import Outcome, ProgramTest
from small_record import CLOSING_LINE, ENTRY, RECORD, block, without_header

MODES = {"exact", "extendExact", "imperfect"}
SECOND_LINE_OF_COMMAND_FAULTS = b"\nAnalysis has been aborted due to errors. Error number: -2\n\n"
NOTHING_FOUND = block(entries=b"") + CLOSING_LINE
FOUND = block() + CLOSING_LINE
NOTHING_SELECTED = CLOSING_LINE

SCORE_AND_LENGTH = b"Sorry, either the minimum score or the minimum length must be larger.\n"
MISMATCH = b"Sorry, the mismatch score must be smaller or equal to -2.\n"
INDEL = b"Sorry, the indel score must be smaller or equal to -2.\n"
RECURSION = (b"Sorry, the recursion depth must be greater than 0.\n"
             b"A value of 0 would corresponds to a perfect search.\n")
UNIT_OF_NOTHING = b"Sorry, the minimum unit length must be greater than 0.\n"
UNIT_LENGTHS = (b"I think you have made a mistake here: The maximum unit length must be greater\n"
                b"or equal to the minimum unit length.\n")


class Refused(Exception):
    """The value is read and then refused, with this message and this status."""

    def __init__(self, message: bytes, status: int = 255) -> None:
        super().__init__(message, status)


def refuse_when(bad: bool, message: bytes) -> bytes:
    if bad:
        raise Refused(message)
    return FOUND


def choice(last: int, words: bytes) -> Callable[[float], None]:
    """A number that stands for a choice; what the valid ones show is not of interest here."""
    def outcome(value: float) -> None:
        if not 0 <= value <= last:
            raise Refused(b"Sorry, a problem occured when parsing the command line options. " +
                          words.replace(b"#", b"%d" % value) + b" is unknown.\n\n", 254)
    return outcome


def found_when(reached: bool) -> bytes:
    return FOUND if reached else NOTHING_FOUND


def smallest_unit(value: float) -> bytes:
    if value == 0:
        raise Refused(UNIT_OF_NOTHING)
    return refuse_when(value > 10, UNIT_LENGTHS)


def largest_unit(value: float) -> bytes:
    return refuse_when(value == 0, UNIT_LENGTHS) if value != 1 else NOTHING_FOUND


def smallest_score(value: float) -> bytes:
    # The line through the slope of 1 asks for one point at unit length 1: too few without more.
    return refuse_when(value < 2, SCORE_AND_LENGTH) if value < 2 else found_when(value <= 8)


# What the report holds behind its header, None where it depends on the choice; Refused is raised instead.
OUTCOMES: dict[str, Callable[[float], bytes | None]] = {
    "succN": lambda value: FOUND,
    "reportUnit": choice(2, b"An option value of # for the reportUnit option"),
    "NPerfectionMode": choice(2, b"An option value of # for the reportUnit option"),
    "printRepeatSeqMode": choice(2, b"A printRepeatSeqMode with a value of #"),
    "outputFormat": choice(4, b"An outputFormat with a value of #"),
    "flanking": lambda value: FLANKED[min(max(value, 0), 3)],
    "minPerfection": lambda value: found_when(value <= 100),
    "maxPerfection": lambda value: found_when(value >= 100),
    # Compared as unsigned numbers: a negative first record lies behind all, a negative last one, too.
    "firstSeq": lambda value: FOUND if value % 2**32 <= 1 else NOTHING_SELECTED,
    "lastSeq": lambda value: FOUND if value % 2**32 >= 1 else NOTHING_SELECTED,
    "maximum_score_reduction": lambda value: FOUND,
    "recursion": lambda value: refuse_when(value <= 0, RECURSION),
    "minUnitLen": smallest_unit,
    "maxUnitLen": largest_unit,
    "minLength_b": lambda value: found_when(2 * value <= 10),
    "minLength_a": lambda value: found_when(value <= 10),
    "minLength": lambda value: found_when(value <= 10),
    "minScore_b": lambda value: found_when(2 * value <= 8),
    "minScore_a": lambda value: found_when(value + 2 <= 8),
    "minScore": smallest_score,
    "mismatchScore": lambda value: refuse_when(value > -2, MISMATCH),
    "indelScore": lambda value: refuse_when(value > -2, INDEL),
}


def _flanked(left: bytes, right: bytes) -> bytes:
    blanks, end = b" " * (len(left) + 1), b" " * (len(right) + 1)
    first_lines = b"".join(ENTRY.splitlines(keepends=True)[:2])
    return block(entries=first_lines + left + b":ACACACACAC:" + right + b"\n" + blanks + b"||||||||||" + end +
                 b"\n" + blanks + b"ACACACACAC" + end + b"\n") + CLOSING_LINE


# By the number of flanking bases: three stand on the left and two on the right, so all more is the same.
FLANKED = {0: FOUND, 1: _flanked(b"T", b"G"), 3: _flanked(b"GTT", b"GG")}


class OptionValues(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        self.write("in.fa", RECORD)

    def run_option(self, name: str, value: str) -> Outcome:
        return self.run_program(BY_NAME[name].spellings()[-1], value, "in.fa")

    def check(self, name: str, text: str) -> None:
        outcome = self.run_option(name, text)
        value = read(name, text)
        if value is None:
            self.assert_parse_failure(outcome, BY_NAME[name].identification(),
                                      f"Couldn't read argument value from string '{text}'")
            return
        try:
            expected = OUTCOMES[name](value)
        except Refused as refusal:
            message, status = refusal.args
            end = SECOND_LINE_OF_COMMAND_FAULTS if status == 254 else b"\n\n"
            self.assertEqual((outcome.messages(), outcome.report, outcome.status), (message + end, b"", status))
            return
        self.assert_success(outcome)
        if expected is not None:
            self.assertEqual(without_header(outcome.report), expected)

    def test_the_table_of_expectations_covers_every_option_with_a_number(self) -> None:
        self.assertEqual(list(OUTCOMES), [option.name for option in OPTIONS if option.value in ("int", "float")])

    def test_every_number_is_read_refused_or_obeyed(self) -> None:
        for name in OUTCOMES:
            for text in values(name):
                if text:
                    with self.subTest(option=name, value=text):
                        self.check(name, text)

    def test_an_option_without_its_value_takes_the_file_name_and_cannot_read_it(self) -> None:
        for name in OUTCOMES:
            with self.subTest(option=name):
                self.assert_parse_failure(self.run_program(BY_NAME[name].spellings()[-1], "in.fa"),
                                          BY_NAME[name].identification(),
                                          "Couldn't read argument value from string 'in.fa'")

    def test_an_empty_number_leaves_the_default(self) -> None:
        expected = self.run_program("in.fa").report
        for name in OUTCOMES:
            with self.subTest(option=name):
                self.assertEqual(self.run_option(name, "").report, expected)

    def test_no_text_but_the_three_modes_is_a_search_mode(self) -> None:
        for text in values("searchMode"):
            with self.subTest(value=text):
                self.assert_parse_failure(
                    self.run_option("searchMode", text), "-M (--searchMode)",
                    f"Value '{text}' does not meet constraint: exact|extendExact|imperfect")
        for mode in MODES:
            with self.subTest(value=mode):
                outcome = self.run_option("searchMode", mode)
                self.assert_success(outcome)
                self.assertEqual(without_header(outcome.report), FOUND)


class EdgesOfTheNumbers(ProgramTest):
    """Values at which 32 bits would wrap, on records that would show it."""

    # AC at 2-11, then TC in place of AC, then CA at 13-23: 10 bases with 8 points, 11 with 9. With cheap
    # mismatches all of 2-23 is one repeat: 21 matches and one mismatch, less the first unit.
    TWO_OR_ONE = b">s\nGACACACACACTCACACACACACGG\n"

    def entries(self, *arguments: str) -> list[tuple[int, int, int]]:
        """Start, end and score of each repeat."""
        outcome = self.run_program("--outputFormat", "3", *arguments, "in.fa")
        self.assert_success(outcome)
        rows = [line.split(b"\t") for line in outcome.report.splitlines() if line.startswith(b"s\t")]
        return [(int(row[3]), int(row[4]), int(row[7])) for row in rows]

    def body(self, *arguments: str) -> bytes:
        outcome = self.run_program(*arguments, "in.fa")
        self.assert_success(outcome)
        return without_header(outcome.report)

    def test_a_cheap_mismatch_joins_two_repeats(self) -> None:
        self.write("in.fa", self.TWO_OR_ONE)
        self.assertEqual(self.entries("-m", "-2", "-U", "2"), [(2, 23, 17)])

    def test_no_edit_is_allowed_below_a_negative_score_reduction(self) -> None:
        self.write("in.fa", self.TWO_OR_ONE)
        for reduction in (str(INT_MIN), str(INT_MIN + 1), "-2147483640", "-1"):
            with self.subTest(reduction=reduction):
                self.assertEqual(self.entries("-m", "-2", "-g", "-2", "-R", reduction, "-U", "2"),
                                 [(2, 11, 8), (13, 23, 9)])

    def test_a_large_score_reduction_is_as_good_as_none(self) -> None:
        self.write("in.fa", self.TWO_OR_ONE)
        for reduction in (str(INT_MAX), str(INT_MAX - 1), "100"):
            with self.subTest(reduction=reduction):
                self.assertEqual(self.entries("-m", "-2", "-U", "2", "-R", reduction), [(2, 23, 17)])

    def test_edits_with_the_most_negative_score_are_never_made(self) -> None:
        self.write("in.fa", self.TWO_OR_ONE)
        for penalty in (str(INT_MIN), str(INT_MIN + 1), "-1000"):
            for mode in ("imperfect", "extendExact"):
                with self.subTest(penalty=penalty, mode=mode):
                    self.assertEqual(self.entries("-m", penalty, "-g", penalty, "-U", "2", "-M", mode),
                                     [(2, 11, 8), (13, 23, 9)])

    def test_a_run_of_n_is_bridged_when_any_number_is_allowed(self) -> None:
        # 8 bases, ten N that keep the phase, 8 bases: 26 bp, 16 matches less the first unit.
        self.write("in.fa", b">s\nGACACACACNNNNNNNNNNACACACACG\n")
        for mode in MODES:
            with self.subTest(mode=mode):
                self.assertEqual(self.entries("-N", str(INT_MAX), "-U", "2", "-M", mode), [(2, 27, 14)])

    def test_flanks_end_with_the_record_in_every_format(self) -> None:
        self.write("in.fa", RECORD)
        enough = {form: self.body("-f", "3", "--printRepeatSeqMode", "1", "--outputFormat", form)
                  for form in ("0", "1")}
        self.assertIn(b"\nGTT:ACACACACAC:GG\n", enough["0"])
        for form, expected in enough.items():
            with self.subTest(format=form):
                self.assertEqual(self.body("-f", str(INT_MAX), "--printRepeatSeqMode", "1", "--outputFormat", form),
                                 expected)
        rows = self.run_program("-f", str(INT_MAX), "--outputFormat", "3", "in.fa").report.splitlines()
        self.assertTrue(rows[-2].endswith(b"\tAC\tACACACACAC\tGTT\tGG"), rows[-2])
        fasta = self.run_program("-f", str(INT_MAX), "--outputFormat", "4", "in.fa").report
        self.assertTrue(fasta.endswith(b"\n>s 4 10 2 4 13 5.000 8 100.000 0 0 0\nGTTACACACACACGG\n"), fasta[-80:])

    def test_the_largest_unit_length_is_as_good_as_one_below_the_length_of_the_record(self) -> None:
        residues = (b"GATTACAGGCTTAACCGGTATCGCATGACCTGAAGT" * 3 + b"CCGT" * 6 + b"AACTG" * 2 + b"AATTG" * 3 + b"G")
        self.write("in.fa", b">s\n" + residues + b"\n")
        for mode in sorted(MODES):
            with self.subTest(mode=mode):
                expected = self.body("-M", mode, "-U", str(len(residues) - 1))
                self.assertIn(b"   36-nucleotide ", expected)
                for largest in (str(UNSIGNED_MAX), str(UNSIGNED_MAX - 1), str(INT_MAX + 1), str(INT_MAX), "-1"):
                    self.assertEqual(self.body("-M", mode, "-U", largest), expected)

    def test_unit_lengths_beyond_the_record_find_nothing(self) -> None:
        self.write("in.fa", RECORD)
        for smallest in (15, INT_MAX, INT_MAX + 1, UNSIGNED_MAX):
            for mode in sorted(MODES):
                with self.subTest(smallest=smallest, mode=mode):
                    self.assertEqual(self.body("-u", str(smallest), "-U", str(UNSIGNED_MAX), "-M", mode),
                                     NOTHING_FOUND)

    def test_the_order_of_the_unit_lengths_is_judged_without_sign(self) -> None:
        self.write("in.fa", RECORD)
        for arguments in (["-u", "-1", "-U", "-2"], ["-u", "-1"], ["-u", "2147483648", "-U", "2147483647"]):
            with self.subTest(arguments=arguments):
                outcome = self.run_program(*arguments, "in.fa")
                self.assertEqual((outcome.messages(), outcome.status), (UNIT_LENGTHS + b"\n\n", 255))

    def test_the_score_rule_is_judged_without_overflow(self) -> None:
        self.write("in.fa", RECORD)
        for arguments, expected in ((["-s", "1", "--minScore_a", str(INT_MAX)], NOTHING_FOUND),
                                    (["-s", "1", "--minScore_a", str(INT_MIN), "-l", "2"], FOUND),
                                    (["-s", "1", "--minScore_b", "2"], FOUND),
                                    (["--minScore_a", str(INT_MAX), "--minScore_b", "3.4028234e38"], NOTHING_FOUND),
                                    (["--minLength_a", str(INT_MIN), "--minLength_b", "-3.4028234e38"], FOUND)):
            with self.subTest(arguments=arguments):
                self.assertEqual(self.body("-u", "2", *arguments), expected)
