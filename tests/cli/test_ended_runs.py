# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Runs that the system ends: for want of memory, or in the middle."""

from __future__ import annotations

import os
import resource
import signal
import subprocess
import time
import unittest

from program_run import (ENVIRONMENT, EVENTS_DO_NOT_FIT, SANITIZED, TIME_LIMIT_SECONDS, TOO_LITTLE_MEMORY, Outcome,
                         ProgramTest)
from small_record import RESIDUES, block, header

KILOBYTE, MEGABYTE = 2**10, 2**20
FAILING_ALLOCATION = os.environ["VORLAN_FAILING_ALLOCATION_LIBRARY"]  # empty where there is none


@unittest.skipIf(SANITIZED, "sanitizers reserve terabytes of address space")
class TooLittleMemory(ProgramTest):
    def run_with(self, megabytes: int, data: bytes, *arguments: str) -> Outcome:
        limit = megabytes * MEGABYTE
        return self.run_program(*arguments, piped=data,
                                preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (limit, limit)))

    def assert_too_little(self, outcome: Outcome) -> None:
        self.assertEqual(outcome.console[-len(TOO_LITTLE_MEMORY):], TOO_LITTLE_MEMORY)
        self.assertEqual(outcome.status, 153)

    def test_a_small_record_needs_less_than_sixty_megabytes(self) -> None:
        self.assert_success(self.run_with(60, b">s\n" + RESIDUES, "/dev/stdin"))

    def test_residues_that_do_not_fit_are_told_and_leave_the_reports_before_them(self) -> None:
        # Room for residues doubles from 10 million and one: 45 million ask for 80 million bytes.
        outcome = self.run_with(60, b">a\n%s\n>b\n" % RESIDUES + b"ACGTTGCA" * 5_625_000, "/dev/stdin", "out.txt")
        self.assert_too_little(outcome)
        self.assertEqual(outcome.progress(), [b"#   1 -    1bp - a"])
        self.assertEqual(self.read("out.txt"), header(b"/dev/stdin", b"out.txt") + block(b"a"))

    def test_a_record_that_fits_but_cannot_be_searched_is_told(self) -> None:
        # 40 million bytes of residues, and a mark for each of them.
        outcome = self.run_with(60, b">a\n%s\n>b\n" % RESIDUES + b"ACGTTGCA" * 5_000_000, "/dev/stdin", "out.txt")
        self.assert_too_little(outcome)
        self.assertEqual(self.read("out.txt"), header(b"/dev/stdin", b"out.txt") + block(b"a"))

    def test_a_header_that_does_not_fit_is_told(self) -> None:
        self.assert_too_little(self.run_with(60, b">" + b"x" * 40_000_000, "/dev/stdin", "out.txt"))
        self.assertEqual(self.read("out.txt"), header(b"/dev/stdin", b"out.txt"))


class MemoryThatEndsAnywhere(ProgramTest):
    """Whatever the run is doing when memory ends: it says so, and the report holds only what it should."""

    # Repeats with and without edits and N, one that hides another, and more records that wait for each other.
    RECORDS = (b">a\n%s\n>b with words\n" % RESIDUES + b"ACGTTGCAACNNGATTACA" * 30 +
               b"GATCGATTAGCTAGCATCGATCGGCTA" * 3 + b"CACACACACACTCACACACACGGCACACACACACACACAACACA\n" +
               b">c %s\n%s\n>d\nACACACATACACACA\n>e\n" % (b"h" * 3000, RESIDUES))
    # A file of which the stream has no room for its buffer cannot be opened.
    ENDINGS = {153: TOO_LITTLE_MEMORY,
               154: b"as output file.\n\nAnalysis has been aborted due to errors. Error number: -102\n\n",
               155: b"does not exist.\n\nAnalysis has been aborted due to errors. Error number: -101\n\n"}

    def setUp(self) -> None:
        super().setUp()
        self.write("in.fa", self.RECORDS)

    def complete_run(self, mode: str, **variables: str) -> Outcome:
        outcome = self.run_program("--maskX", "-M", mode, "in.fa", env=ENVIRONMENT | variables)
        self.assert_success(outcome)
        return outcome

    def assert_ended_well(self, outcome: Outcome, complete: Outcome) -> None:
        """The run is complete, or it says that memory or a file is missing and shows no closing line."""
        if outcome.status == 0 and outcome.report.endswith(EVENTS_DO_NOT_FIT):
            report = outcome.report.removesuffix(EVENTS_DO_NOT_FIT)
        elif outcome.status == 0:
            self.assertEqual(outcome.report, complete.report)
            return
        else:
            self.assertIn(outcome.status, self.ENDINGS)
            self.assertTrue(outcome.console.endswith(self.ENDINGS[outcome.status]))
            report = outcome.report
        self.assertTrue(complete.report.startswith(report))
        self.assertLess(len(report), len(complete.report) - len(b"## Finished"))

    @unittest.skipIf(SANITIZED, "sanitizers reserve terabytes of address space")
    def test_every_limit_with_which_the_program_starts_leads_to_the_sentence_or_to_the_end(self) -> None:
        # The other modes take in the same records and report in the same way: a coarser look at them.
        for mode, step in (("imperfect", 96 * KILOBYTE), ("exact", 300 * KILOBYTE), ("extendExact", 300 * KILOBYTE)):
            complete = self.complete_run(mode)
            statuses = set()
            for limit in range(4 * MEGABYTE, 24 * MEGABYTE, step):
                outcome = self.run_program("--maskX", "-M", mode, "in.fa",
                                           preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (limit, limit)))
                if b"Welcome to Vorlan" in outcome.console:
                    with self.subTest(mode=mode, kilobytes=limit // KILOBYTE):
                        self.assert_ended_well(outcome, complete)
                    statuses.add(outcome.status)
            self.assertEqual(statuses, {0, 153})

    def counting(self) -> dict[str, str]:
        return {"LD_PRELOAD": FAILING_ALLOCATION, "VORLAN_COUNT_ALLOCATIONS": str(self.folder / "count")}

    def allocations(self, mode: str) -> int:
        self.complete_run(mode, **self.counting())
        return int(self.read("count"))

    def allocations_before_the_input(self) -> int:
        """Those of a run that ends when its settings have been read, which are the same in every mode."""
        self.assertEqual(self.run_program("--maskX", "-M", "exact", "-r", "0", "in.fa",
                                          env=ENVIRONMENT | self.counting()).status, 255)
        return int(self.read("count"))

    def run_failing(self, mode: str, which: str) -> Outcome:
        return self.run_program("--maskX", "-M", mode, "in.fa", env=ENVIRONMENT | {
            "LD_PRELOAD": FAILING_ALLOCATION, "VORLAN_FAIL_ALLOCATION": which})

    @unittest.skipUnless(FAILING_ALLOCATION, "instrumented programs cannot do without memory")
    def test_every_single_allocation_may_fail_alone_or_with_all_behind_it(self) -> None:
        before = self.allocations_before_the_input()
        self.assertGreater(before, 100)
        for mode, first in (("imperfect", 1), ("exact", before), ("extendExact", before)):
            complete = self.complete_run(mode)
            count = self.allocations(mode)
            self.assertGreater(count, 200)
            statuses = []
            for number in range(first, count + 1):
                # With all behind it: every fourth, since one more or less of them seldom matters.
                for suffix in ("", "+") if number % 4 == 0 else ("",):
                    with self.subTest(mode=mode, fails=f"{number}{suffix}"):
                        outcome = self.run_failing(mode, f"{number}{suffix}")
                        self.assert_ended_well(outcome, complete)
                        statuses.append(outcome.status)
            self.assertGreater(statuses.count(153), (count - first) // 2)

    @unittest.skipUnless(FAILING_ALLOCATION, "instrumented programs cannot do without memory")
    def test_short_records_are_searched_though_the_next_one_does_not_fit(self) -> None:
        def runs_without_a_search(data: bytes) -> int:
            self.write("in.fa", data)
            count = self.allocations("imperfect")
            first = self.allocations_before_the_input()
            runs = [self.run_failing("imperfect", str(number)) for number in range(first, count + 1)]
            return sum(not run.progress() for run in runs)

        # Short records wait for those behind them to be read; but no more is needed for the first one to be searched.
        first = self.RECORDS[:self.RECORDS.index(b">b")]
        self.assertEqual(runs_without_a_search(self.RECORDS), runs_without_a_search(first))


class EndedInTheMiddle(ProgramTest):
    # Two records, and so much of a third that the reading goes past the first two: it takes a million
    # bytes at a time, and waits for them.
    BEGINNING = b">a\n%s\n>b\n%s\n>c\n" % (RESIDUES, RESIDUES) + b"ACGTTGCAGGCT" * 200_000
    REPORT = header(b"in.fa", b"out.txt") + block(b"a") + block(b"b")

    def wait_for_report(self, process: subprocess.Popen[bytes]) -> None:
        deadline = time.monotonic() + TIME_LIMIT_SECONDS
        while not os.path.exists(self.folder / "out.txt") or len(self.read("out.txt")) < len(self.REPORT):
            self.assertIsNone(process.poll(), "the run has ended by itself")
            self.assertLess(time.monotonic(), deadline, "two records are not reported in time")
            time.sleep(0.01)

    def end_by(self, number: signal.Signals) -> int:
        """Run on an input that stalls in its third record, and send the signal then."""
        def obey() -> None:
            if number != signal.SIGKILL:
                signal.signal(number, signal.SIG_DFL)  # a shell lets its background jobs ignore some

        with self.start("in.fa", "out.txt", stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                        preexec_fn=obey) as process:
            try:
                with self.open_fifo("in.fa", process) as fifo:
                    fifo.write(self.BEGINNING)
                    fifo.flush()
                    self.wait_for_report(process)
                    process.send_signal(number)
                    return process.wait(timeout=TIME_LIMIT_SECONDS)
            finally:
                process.kill()

    def test_a_killed_run_leaves_whole_records_and_no_closing_line(self) -> None:
        os.mkfifo(self.folder / "in.fa")
        for number in (signal.SIGKILL, signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(signal=number.name):
                self.assertEqual(self.end_by(number), -number)
                self.assertEqual(self.read("out.txt"), self.REPORT)
                (self.folder / "out.txt").unlink()
