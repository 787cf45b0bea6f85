# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The layout of the input does not matter, and sizes far from the usual do no harm."""

from __future__ import annotations

import random

from program_run import Outcome, ProgramTest
from small_record import CLOSING_LINE, ENTRY, RECORD, RESIDUES, block, header, without_header

# The input is read in stretches of this many bytes.
READ_BYTES = 1_000_000
SEED = 20
UNITS = (b"A", b"AC", b"ACT", b"AAAC", b"ACGTTN", b"ACGGTCA")


def wrapped(residues: bytes, width: int, line_end: bytes = b"\n") -> bytes:
    return b"".join(residues[at:at + width] + line_end for at in range(0, len(residues), width))


def random_records(count: int) -> list[bytes]:
    """Short records between longer ones, with arrays that often reach the end and go on in the next."""
    source = random.Random(SEED)
    records = []
    for number in range(count):
        length = source.choice([0, 1, 5, 30, 150, 150, 150, 700, 4095, 4096, 4097, 9000])
        residues = bytearray(source.choice(b"ACGT") for _ in range(length))
        at = source.randrange(length + 1)
        residues[at:at + source.randrange(2 * length + 1)] = source.choice(UNITS) * source.randrange(20)
        records.append(b">r%d\n%s\n" % (number, residues))
    return records


def parts_of_report(blocks: list[bytes]) -> list[bytes]:
    return b"".join([*blocks, CLOSING_LINE]).split(b"\n>")


class RunOnText(ProgramTest):
    def run_on(self, data: bytes, *arguments: str) -> Outcome:
        self.write("in.fa", data)
        outcome = self.run_program(*arguments, "in.fa")
        self.assert_success(outcome)
        return outcome


class Layout(RunOnText):
    @classmethod
    def setUpClass(cls) -> None:
        source = random.Random(SEED)
        cls.residues = bytes(source.choice(b"ACGT") for _ in range(700)) + b"ACG" * 40 + b"NN" + b"ACG" * 20

    def two_records(self, width: int, line_end: bytes = b"\n") -> bytes:
        residues = wrapped(self.residues, width, line_end)
        return b">one with words" + line_end + residues + b">two" + line_end + residues

    def test_line_width_does_not_matter(self) -> None:
        expected = self.run_on(self.two_records(60))
        self.assertEqual(expected.report.count(b"sequence length: 882\n"), 2)
        self.assertIn(b"unit ACG\n", expected.report)
        for width in (1, 2, 7, 59, 80, 881, 882, 5000):
            with self.subTest(width=width):
                self.assertEqual(self.run_on(self.two_records(width)).report, expected.report)

    def test_the_kind_of_line_end_does_not_matter(self) -> None:
        expected = self.run_on(self.two_records(61)).report
        for line_end in (b"\r\n", b"\r", b"\n\n", b"\r\r\n", b"\n\r"):
            with self.subTest(line_end=line_end):
                self.assertEqual(self.run_on(self.two_records(61, line_end)).report, expected)

    def test_mixed_line_ends_do_not_matter(self) -> None:
        expected = self.run_on(self.two_records(61)).report
        source = random.Random(SEED)
        lines = self.two_records(61).splitlines()
        mixed = b"".join(line + source.choice([b"\n", b"\r", b"\r\n"]) for line in lines)
        self.assertEqual(self.run_on(mixed).report, expected)

    def test_a_missing_last_line_end_does_not_matter(self) -> None:
        expected = self.run_on(self.two_records(61)).report
        self.assertEqual(self.run_on(self.two_records(61)[:-1]).report, expected)

    def test_blanks_gaps_case_and_rna_do_not_matter(self) -> None:
        expected = self.run_on(self.two_records(61)).report
        headers, residues = b">one with words\n%s\n>two\n%s\n", self.residues
        for variant in (residues.lower(), residues.replace(b"T", b"U"), residues.replace(b"A", b" a-\t*"),
                        residues.replace(b"N", b"x"), residues.replace(b"N", b"?")):
            self.assertEqual(self.run_on(headers % (variant, variant)).report, expected)

    def test_a_pipe_reports_the_same_as_a_file(self) -> None:
        data = self.two_records(61)
        expected = without_header(self.run_on(data, "-f", "5").report)
        outcome = self.run_program("-f", "5", "/dev/stdin", piped=data)
        self.assert_success(outcome)
        self.assertEqual(without_header(outcome.report), expected)

    def test_a_report_file_holds_what_standard_output_would(self) -> None:
        expected = self.run_on(self.two_records(61))
        outcome = self.run_program("in.fa", "out.txt")
        self.assert_success(outcome)
        name_line = b"# Output file name:                        out.txt\n"
        self.assertEqual(self.read("out.txt").replace(name_line, b""), expected.report)
        self.assertEqual(outcome.report, b"")

    def test_a_longer_old_report_is_replaced_whole(self) -> None:
        self.write("out.txt", b"old\n" * 10_000)
        self.write("in.fa", RECORD)
        self.assert_success(self.run_program("in.fa", "out.txt"))
        self.assertEqual(self.read("out.txt"), header(b"in.fa", b"out.txt") + block() + CLOSING_LINE)


class LineEndsAtTheEdgeOfAReading(ProgramTest):
    """Names so long that what follows them lies around the edge between two readings."""

    def padded(self, line_end_at: int, line_end: bytes) -> tuple[bytes, bytes]:
        """A name and its header line, of which the line end begins at that byte of the file."""
        name = b"x" * (line_end_at - 1)
        return name, b">" + name + line_end

    def test_a_line_end_across_two_readings_is_one(self) -> None:
        for shift in range(-3, 3):
            for line_end in (b"\n", b"\r\n", b"\r"):
                with self.subTest(shift=shift, line_end=line_end):
                    name, start = self.padded(READ_BYTES + shift, line_end)
                    self.write("in.fa", start + RESIDUES + line_end + b">t" + line_end + b"AC!" + line_end)
                    outcome = self.run_program("in.fa")
                    self.assertEqual(outcome.report, header(b"in.fa") + block(name))
                    self.assert_malformed(outcome, 4)

    def test_a_blank_line_across_two_readings_is_one(self) -> None:
        # Whether a header follows is seen by reading one character and putting it back.
        for shift in range(-4, 3):
            for line_end in (b"\n", b"\r\n", b"\r"):
                with self.subTest(shift=shift, line_end=line_end):
                    name, start = self.padded(READ_BYTES + shift, line_end)
                    self.write("in.fa", start + line_end + RESIDUES + line_end + b">t" + line_end + b"AC!" + line_end)
                    outcome = self.run_program("in.fa")
                    self.assertEqual(outcome.report, header(b"in.fa") + block(name))
                    self.assert_malformed(outcome, 5)

    def test_a_header_that_begins_a_reading_is_seen(self) -> None:
        for shift in range(-3, 3):
            for line_end in (b"\n", b"\r\n", b"\r"):
                with self.subTest(shift=shift, line_end=line_end):
                    name, start = self.padded(READ_BYTES + shift - len(line_end) - len(RESIDUES + line_end), line_end)
                    self.write("in.fa", start + RESIDUES + line_end + b">t" + line_end + RESIDUES)
                    outcome = self.run_program("in.fa")
                    self.assert_success(outcome)
                    self.assertEqual(outcome.report, header(b"in.fa") + block(name) + block(b"t") + CLOSING_LINE)

    def test_a_file_may_end_with_a_reading(self) -> None:
        for size in (READ_BYTES - 1, READ_BYTES, READ_BYTES + 1, 2 * READ_BYTES - 1, 2 * READ_BYTES):
            with self.subTest(size=size):
                name, start = self.padded(size - 1 - len(RESIDUES), b"\n")
                self.write("in.fa", start + RESIDUES)
                outcome = self.run_program("in.fa")
                self.assert_success(outcome)
                self.assertEqual(outcome.report, header(b"in.fa") + block(name) + CLOSING_LINE)


class Sizes(RunOnText):
    def test_a_header_of_a_megabyte_is_printed_whole_and_its_name_cut_in_the_progress_line(self) -> None:
        long_header = b"abcdefghij" * 52_429 + b" " + b"klmnopqrst" * 52_429
        self.write("in.fa", b">" + long_header + b"\n" + RESIDUES + b"\n")
        outcome = self.run_program("--maskX", "in.fa")
        self.assert_success(outcome)
        self.assertEqual(outcome.report, header(b"in.fa", masked=True) + block(long_header) + CLOSING_LINE)
        self.assertEqual(outcome.progress(), [b"#   1 -    1bp - " + b"abcdefghij" * 7])
        self.assertEqual(self.read("in.fa.masked").split(b"\n")[0], b">" + long_header)

    def test_a_residue_line_of_five_megabytes_is_read_whole(self) -> None:
        # AC at 4-13 and again where it follows five million N.
        gap = 5_000_000
        self.write("in.fa", b">s\n" + RESIDUES + b"N" * gap + RESIDUES + b"\n")
        outcome = self.run_program("-U", "2", "--outputFormat", "3", "in.fa")
        self.assert_success(outcome)
        shift = gap + len(RESIDUES)
        row = b"s\t2\t100.000\t%d\t%d\t10\t  5.000\t8\t0\t0\t0\t0\tAC\tACACACACAC\n"
        rows = [line for line in outcome.report.splitlines(keepends=True) if line.startswith(b"s\t")]
        self.assertEqual(rows, [row % (4, 13), row % (4 + shift, 13 + shift)])

    def test_a_record_of_many_lines_is_reported_as_one_of_a_single_line(self) -> None:
        source = random.Random(SEED)
        residues = source.randbytes(1_200_000).translate(b"ACGT" * 64)
        self.write("in.fa", b">s\n" + residues)
        expected = self.run_program("-M", "exact", "-U", "3", "in.fa")
        self.assert_success(expected)
        self.assertIn(b"\nsequence length: 1200000\n", expected.report)
        self.assertGreater(expected.report.count(b"\nMissense: "), 100)
        self.write("in.fa", b">s\n" + wrapped(residues, 60, b"\r\n"))
        self.assertEqual(self.run_program("-M", "exact", "-U", "3", "in.fa").report, expected.report)

    def test_short_records_among_others_are_reported_and_masked_as_each_alone(self) -> None:
        records = random_records(150)
        alone, masked_alone = [], []
        for data in records:
            alone.append(without_header(self.run_on(data, "--maskX").report).removesuffix(CLOSING_LINE))
            masked_alone.append(self.read("in.fa.masked"))
        self.assertGreater(sum(text.count(b"\nMissense: ") for text in alone), 300)
        together = self.run_on(b"".join(records), "--maskX")
        # Compared as parts: the difference of two long texts takes minutes to show.
        self.assertEqual(without_header(together.report).split(b"\n>"), parts_of_report(alone))
        self.assertEqual(self.read("in.fa.masked"), b"".join(masked_alone))
        some = self.run_on(b"".join(records), "--firstSeq", "20", "--lastSeq", "120")
        self.assertEqual(without_header(some.report).split(b"\n>"), parts_of_report(alone[19:120]))
        self.assertEqual([line.split()[-1] for line in some.progress()], [b"r%d" % number for number in range(19, 120)])

    def test_a_malformed_record_among_short_ones_ends_the_run_behind_the_report_of_those_before_it(self) -> None:
        # All are in the buffer of the input at once.
        data = b"".join(b">r%d\n%s\n" % (number, RESIDUES) for number in range(40)) + b">bad\nAC\nAC1\n" + RECORD
        self.write("in.fa", data)
        outcome = self.run_program("in.fa")
        self.assertEqual(outcome.status, 231)
        self.assertIn(b"File position: line 83\n", outcome.console)
        self.assertEqual(outcome.report, header(b"in.fa") + b"".join(block(b"r%d" % number) for number in range(40)))

    def test_fifty_thousand_tiny_records_are_reported_one_by_one(self) -> None:
        names = [b"r%d" % number for number in range(1, 50_001)]
        self.write("in.fa", b"".join(b">%s\n%s\n" % (name, RESIDUES) for name in names))
        outcome = self.run_program("in.fa")
        self.assert_success(outcome)
        # Compared as parts first: the difference of two long texts takes minutes to show.
        parts = outcome.report.removeprefix(header(b"in.fa")).split(b"completed.\n")
        self.assertEqual(len(parts), len(names) + 1)
        for name, part in zip(names, parts):
            self.assertEqual(part + b"completed.\n", block(name))
        self.assertEqual(parts[-1], CLOSING_LINE)
        self.assertEqual(outcome.progress()[-1], b"# 50000 -    1bp - r50000")

    def test_records_without_residues_are_reported_one_by_one(self) -> None:
        self.write("in.fa", b">a\n>b\n\n\n>c\n-*\n>d\n" + RESIDUES + b"\n>e\n")
        outcome = self.run_program("in.fa")
        self.assert_success(outcome)
        empty = [block(name, b"", 0) for name in (b"a", b"b", b"c")]
        self.assertEqual(outcome.report, header(b"in.fa") + b"".join(empty) + block(b"d", ENTRY) +
                         block(b"e", b"", 0) + CLOSING_LINE)
