# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Headers, residue lines, records and numbers of records far larger than any sequencing project has."""

from __future__ import annotations

import hashlib
import itertools
import random
import resource
import unittest
from collections.abc import Iterable
from pathlib import Path

from measured_run import MEGABYTE, MeasuredOutcome, MeasuredRunTest, repeated
from program_run import ENVIRONMENT, EVENTS_DO_NOT_FIT, SANITIZED, TOO_LITTLE_MEMORY
from small_record import CLOSING_LINE, ENTRY, RESIDUES, header

LARGEST_RECORD = 2**31 - 1
FILLER = b"N" * 1_000_000
ROW = b"%s\t2\t100.000\t%d\t%d\t10\t  5.000\t8\t0\t0\t0\t0\tAC\tACACACACAC\n"
SORRY = b'Sorry, the sequence "%s" has more than 2147483647 residues.\n'
UNREADABLE = (b"\n\nAn error occurred while reading the input file. It might not be a valid fasta file.\n"
              b"File position: line %d\n")


def available_megabytes() -> int:
    for line in Path("/proc/meminfo").read_text().splitlines():
        if line.startswith("MemAvailable:"):
            return int(line.split()[1]) // 1024
    return 0


def checksum(pieces: Iterable[bytes]) -> str:
    digest = hashlib.sha256()
    for piece in pieces:
        digest.update(piece)
    return digest.hexdigest()


def pieces_of(path: Path) -> Iterable[bytes]:
    with open(path, "rb") as file:
        while piece := file.read(MEGABYTE):
            yield piece


def rows_of(path: Path) -> list[bytes]:
    """The repeats in a report of one line each."""
    lines = path.read_bytes().splitlines(keepends=True)
    return lines[lines.index(next(line for line in lines if line.startswith(b"seq-name\t"))) + 1:]


class LargeInputs(MeasuredRunTest):
    def test_a_header_of_a_hundred_megabytes_is_printed_whole(self) -> None:
        size = 100_000_000
        outcome = self.run_on_pieces(itertools.chain([b">"], repeated(b"abcdefghij", size), [b"\n", RESIDUES]))
        self.assert_large_success(outcome)
        expected = itertools.chain(
            [header(b"/dev/stdin"), b">"], repeated(b"abcdefghij", size),
            [b"\nsequence length: %d\n" % len(RESIDUES), ENTRY, b'# Analysis of sequence "'],
            repeated(b"abcdefghij", size), [b'" completed.\n', CLOSING_LINE])
        self.assertEqual(checksum(pieces_of(outcome.report)), checksum(expected))
        self.assertIn(b" - #   1 -    1bp - " + b"abcdefghij" * 7 + b"\n", outcome.console_end())

    def test_a_residue_line_of_a_gigabyte_is_read_whole(self) -> None:
        gap = 10**9
        for mode in ("exact", "extendExact", "imperfect"):
            with self.subTest(mode=mode):
                outcome = self.run_on_pieces(itertools.chain([b">s\n", RESIDUES], repeated(FILLER, gap), [RESIDUES]),
                                             "-M", mode, "-U", "2", "--outputFormat", "3")
                self.assert_large_success(outcome)
                shift = gap + len(RESIDUES)
                self.assertEqual(rows_of(outcome.report), [ROW % (b"s", 4, 13), ROW % (b"s", 4 + shift, 13 + shift),
                                                           CLOSING_LINE])

    def test_five_million_records_are_reported_one_by_one(self) -> None:
        count = 200_000 if SANITIZED else 5_000_000
        outcome = self.run_on_pieces((b">r%d\n%s\n" % (number, RESIDUES) for number in range(1, count + 1)),
                                     "--outputFormat", "3")
        self.assert_large_success(outcome)
        with open(outcome.report, "rb") as report:
            while not report.readline().startswith(b"seq-name\t"):
                pass
            for number in range(1, count + 1):
                if report.readline() != ROW % (b"r%d" % number, 4, 13):
                    self.fail(f"record {number} is not reported in its turn")
            self.assertEqual(report.read(), CLOSING_LINE)
        self.assertIn(b" - # %d -    1bp - r%d\n" % (count, count), outcome.console_end())


class Memory(MeasuredRunTest):
    def records(self, count: int) -> Iterable[bytes]:
        """Records of a thousand kinds, over and over, with repeats, edits and N."""
        source = random.Random(3)
        kinds = []
        for number in range(1000):
            unit = bytes(source.choices(b"ACGT", k=source.randint(1, 6)))
            array = bytearray(unit * source.randint(3, 12))
            array[source.randrange(len(array))] = source.choice(b"ACGTN")
            kinds.append(b">r%d some words\n%s%s\n" % (number, bytes(source.choices(b"ACGT", k=30)), array))
        thousand = b"".join(kinds)
        for _ in range(count // 1000):
            yield thousand

    def test_memory_does_not_grow_from_the_thousandth_to_the_millionth_record(self) -> None:
        count = 20_000 if SANITIZED else 1_000_000
        # Sanitizers keep what is freed for a while, to see it used again.
        variables = ENVIRONMENT | {"ASAN_OPTIONS": "quarantine_size_mb=1"}
        for mode in ("exact", "extendExact", "imperfect"):
            with self.subTest(mode=mode):
                few = self.run_on_pieces(self.records(1000), "-M", mode, env=variables)
                self.assert_large_success(few)
                many = self.run_on_pieces(self.records(count), "-M", mode, env=variables)
                self.assert_large_success(many)
                self.assertIn(b" - # %d -    1bp - r999\n" % count, many.console_end())
                self.assertLess(many.peak_bytes - few.peak_bytes, (16 if SANITIZED else 2) * MEGABYTE)

    @unittest.skipIf(SANITIZED, "sanitizers reserve terabytes of address space")
    def test_every_limit_of_memory_leads_to_the_sentence_or_to_the_end_on_a_long_record(self) -> None:
        source = random.Random(4)
        array = bytes(base if source.random() > 0.1 else source.choice(b"ACGT") for base in b"AT" * 5000)
        data = b">short\n%s\n>long\n%s%s\n" % (RESIDUES, bytes(source.choices(b"ACGTN", k=2_000_000)), array)
        for mode in ("exact", "extendExact", "imperfect"):
            complete = self.run_limited(data, mode, 1000 * MEGABYTE)
            self.assert_large_success(complete)
            expected = complete.report.read_bytes()
            statuses = set()
            for megabytes in range(8, 120, 4):
                with self.subTest(mode=mode, megabytes=megabytes):
                    outcome = self.run_limited(data, mode, megabytes * MEGABYTE)
                    self.check_ending(outcome, expected)
                    statuses.add(outcome.status)
            self.assertEqual(statuses, {0, 153})

    def run_limited(self, data: bytes, mode: str, limit: int) -> MeasuredOutcome:
        return self.run_on_pieces([data], "-M", mode,
                                  preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (limit, limit)))

    def check_ending(self, outcome: MeasuredOutcome, expected: bytes) -> None:
        """The run is complete, or it says why not and shows no closing line."""
        report = outcome.report.read_bytes()
        if outcome.status == 153:
            self.assertTrue(outcome.console_end().endswith(TOO_LITTLE_MEMORY))
            self.assertTrue(expected.removesuffix(CLOSING_LINE).startswith(report), "not the beginning of the report")
        elif report.endswith(EVENTS_DO_NOT_FIT):
            self.assertEqual(outcome.status, 0)
        else:
            self.assert_large_success(outcome)
            self.assertTrue(report == expected, "not the complete report")


@unittest.skipIf(available_megabytes() < 6000, "needs 6 GB of memory")
class LargestRecord(MeasuredRunTest):
    """The longest record that positions of 31 bits can count, and one residue more."""

    def pieces(self, residues: int) -> Iterable[bytes]:
        return itertools.chain([b">first\n", RESIDUES, b"\n>longest of all\n"],
                               repeated(FILLER, residues - len(RESIDUES)), [RESIDUES, b"\n"])

    def test_a_record_of_2147483647_residues_is_searched_to_its_last_base(self) -> None:
        for mode in ("exact", "imperfect"):
            with self.subTest(mode=mode):
                outcome = self.run_on_pieces(self.pieces(LARGEST_RECORD), "-M", mode, "-U", "2", "--outputFormat", "3")
                self.assert_large_success(outcome)
                last = LARGEST_RECORD - 2
                self.assertEqual(rows_of(outcome.report), [ROW % (b"first", 4, 13), ROW % (b"longest", last - 9, last),
                                                           CLOSING_LINE])

    def test_a_record_of_2147483648_residues_is_refused_by_name_and_line(self) -> None:
        outcome = self.run_on_pieces(self.pieces(LARGEST_RECORD + 1), "-U", "2", "--outputFormat", "3")
        self.assertEqual(outcome.status, 231)
        expected = b"\n" + SORRY % b"longest" + UNREADABLE % 4
        self.assertEqual(outcome.console_end()[-len(expected):], expected)
        self.assertEqual(rows_of(outcome.report), [ROW % (b"first", 4, 13)])
