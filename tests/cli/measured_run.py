# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Runs on inputs too large for the memory of a test, with the memory that they took.

The input comes in pieces through a pipe, report and console go to files.
"""

from __future__ import annotations

import os
import threading
from collections.abc import Iterable
from dataclasses import dataclass
from pathlib import Path

from program_run import SANITIZED, ProgramTest

MEGABYTE = 2**20
CLOSING_WORDS = b"\nAnalysis finished successfully.\n\nVorlan says goodbye.\n\n"


@dataclass(frozen=True)
class MeasuredOutcome:
    """What a large run left behind. A status below 0 is the number of the signal that ended it."""

    status: int
    peak_bytes: int
    report: Path
    console: Path

    def console_end(self, size: int = 1000) -> bytes:
        with open(self.console, "rb") as file:
            file.seek(max(0, os.path.getsize(self.console) - size))
            return file.read()


class MeasuredRunTest(ProgramTest):
    time_limit = 3000 if SANITIZED else 600

    def run_on_pieces(self, pieces: Iterable[bytes], *arguments: str) -> MeasuredOutcome:
        """Run on `pieces`, which reach the program on standard input."""
        report, console = self.folder / "report", self.folder / "console"
        reader, writer = os.pipe()
        with open(report, "wb") as out, open(console, "wb") as err, os.fdopen(writer, "wb", 0) as pipe:
            process = self.start(*arguments, "/dev/stdin", stdin=reader, stdout=out, stderr=err)
            os.close(reader)
            alarm = threading.Timer(self.time_limit, process.kill)
            alarm.start()
            try:
                feed(pipe, pieces)
                pipe.close()
                _, status, used = os.wait4(process.pid, 0)
            finally:
                alarm.cancel()
            process.returncode = os.waitstatus_to_exitcode(status)
        return MeasuredOutcome(process.returncode, used.ru_maxrss * 1024, report, console)

    def assert_large_success(self, outcome: MeasuredOutcome) -> None:
        self.assertEqual(outcome.status, 0)
        self.assertTrue(outcome.console_end().endswith(CLOSING_WORDS))


def feed(pipe: object, pieces: Iterable[bytes]) -> None:
    """Write all pieces, until the program reads no more."""
    try:
        for piece in pieces:
            rest = memoryview(piece)
            while rest:
                rest = rest[pipe.write(rest):]
    except BrokenPipeError:
        pass


def repeated(piece: bytes, total: int) -> Iterable[bytes]:
    """`total` bytes of `piece` over and over."""
    for _ in range(total // len(piece)):
        yield piece
    yield piece[:total % len(piece)]
