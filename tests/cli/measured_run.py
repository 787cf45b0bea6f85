# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Runs on inputs too large for the memory of a test, with the memory that they took.

The input comes in pieces through a pipe, report and console go to files.
"""

from __future__ import annotations

import contextlib
import os
import subprocess
import threading
from collections.abc import Iterable
from dataclasses import dataclass
from pathlib import Path
from typing import BinaryIO

from program_run import SANITIZED, ProgramTest

MEGABYTE = 2**20
CLOSING_WORDS = b"\nAnalysis finished successfully.\n\nVorlan says goodbye.\n\n"


@dataclass(frozen=True)
class MeasuredOutcome:
    """What a large run left behind. A status below 0 is the number of the signal that ended it."""

    status: int
    peak_bytes: int
    seconds: float  # of the processor
    report: Path
    console: Path

    def console_end(self, size: int = 1000) -> bytes:
        with open(self.console, "rb") as file:
            file.seek(max(0, os.path.getsize(self.console) - size))
            return file.read()


class MeasuredRunTest(ProgramTest):
    time_limit = 3000 if SANITIZED else 600

    def run_on_pieces(self, pieces: Iterable[bytes], *arguments: str, **popen: object) -> MeasuredOutcome:
        """Run on `pieces`, which reach the program on standard input."""
        report, console = self.folder / "report", self.folder / "console"
        reader, writer = os.pipe()
        with open(report, "wb") as out, open(console, "wb") as err, os.fdopen(writer, "wb", 0) as pipe:
            process = self.start(*arguments, "/dev/stdin", stdin=reader, stdout=out, stderr=err, **popen)
            os.close(reader)
            feeder = threading.Thread(target=feed, args=(pipe, pieces))
            feeder.start()
            used = self.wait_measured(process)
            feeder.join()
        return MeasuredOutcome(*used, report, console)

    def run_measured(self, *arguments: str, **popen: object) -> MeasuredOutcome:
        """Run on files."""
        report, console = self.folder / "report", self.folder / "console"
        with open(report, "wb") as out, open(console, "wb") as err:
            used = self.wait_measured(self.start(*arguments, stdout=out, stderr=err, **popen))
        return MeasuredOutcome(*used, report, console)

    def wait_measured(self, process: subprocess.Popen[bytes]) -> tuple[int, int, float]:
        """The status of the process, the bytes that it had in memory at most, and the seconds that it worked.

        The system counts what was there before the program was started in the process, too: as much
        as this test itself. A process that takes too long is killed.
        """
        alarm = threading.Timer(self.time_limit, process.kill)
        alarm.start()
        _, status, used = os.wait4(process.pid, 0)
        alarm.cancel()
        process.returncode = os.waitstatus_to_exitcode(status)
        return process.returncode, used.ru_maxrss * 1024, used.ru_utime + used.ru_stime

    def assert_large_success(self, outcome: MeasuredOutcome) -> None:
        self.assertEqual(outcome.status, 0)
        self.assertTrue(outcome.console_end().endswith(CLOSING_WORDS))


def feed(pipe: BinaryIO, pieces: Iterable[bytes]) -> None:
    """Write all pieces and close the pipe, until the program reads no more."""
    with contextlib.suppress(BrokenPipeError), pipe:
        for piece in pieces:
            rest = memoryview(piece)
            while rest:
                rest = rest[pipe.write(rest):]


def repeated(piece: bytes, total: int) -> Iterable[bytes]:
    """`total` bytes of `piece` over and over."""
    for _ in range(total // len(piece)):
        yield piece
    yield piece[:total % len(piece)]
