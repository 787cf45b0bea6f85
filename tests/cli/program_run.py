# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Runs of the program in a folder of their own, with an environment of their own.

The environment variable VORLAN_BINARY names the program; VORLAN_SANITIZED is not empty when it was
built with sanitizers, which need more time and far more address space.
"""

from __future__ import annotations

import errno
import os
import re
import subprocess
import tempfile
import time
import unittest
from dataclasses import dataclass
from pathlib import Path
from typing import BinaryIO

BINARY = os.environ["VORLAN_BINARY"]
SANITIZED = bool(os.environ.get("VORLAN_SANITIZED"))
TIME_LIMIT_SECONDS = 60 if SANITIZED else 10
ENVIRONMENT = {"PATH": "/usr/bin:/bin", "LC_ALL": "C", "TZ": "UTC"}

# The name under which the program is started, wherever it lies.
INVOCATION = "vorlan"

# Two fixed lines, then lines on makers and terms, all with the same indent, then a blank line.
BANNER = re.compile(rb"\A\n\n"
                    rb"      Welcome to Vorlan, version 3\.3\.10,\n"
                    rb"      a microsatellite and satellite search tool\.\n"
                    rb"(?:      \S[^\n]*\n)+\n")
TOO_LITTLE_MEMORY = (b"Sorry, there is not enough memory for this run.\n\n"
                     b"Analysis has been aborted due to errors. Error number: -103\n\n")
# On standard output, with status 0: one list of events could not grow.
EVENTS_DO_NOT_FIT = b"Program aborded due to failed realloc!\n"
CLOCK = re.compile(rb"^\d\d+\.\d\d\.\d\d - ", re.MULTILINE)


@dataclass(frozen=True)
class Outcome:
    """What a run left behind. A status below 0 is the number of the signal that ended it."""

    status: int
    report: bytes
    console: bytes

    def messages(self) -> bytes:
        """The console without the banner, which every run begins with."""
        banner = BANNER.match(self.console)
        if banner is None:
            raise AssertionError(f"no banner: {self.console[:300]!r}")
        return self.console[banner.end():]

    def console_without_clock(self) -> bytes:
        return CLOCK.sub(b"HH.MM.SS - ", self.console)

    def progress(self) -> list[bytes]:
        """The progress lines, without their times."""
        return [line[len(b"HH.MM.SS - "):] for line in self.console_without_clock().split(b"\n")
                if line.startswith(b"HH.MM.SS - ")]


class ProgramTest(unittest.TestCase):
    """A test with a folder, which is the working directory of the runs."""

    maxDiff = None
    time_limit = TIME_LIMIT_SECONDS

    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory(prefix="vorlan-cli-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def write(self, name: str | bytes, data: bytes) -> None:
        with open(os.path.join(os.fsencode(self.folder), os.fsencode(name)), "wb") as file:
            file.write(data)

    def read(self, name: str | bytes) -> bytes:
        with open(os.path.join(os.fsencode(self.folder), os.fsencode(name)), "rb") as file:
            return file.read()

    def names(self) -> set[bytes]:
        return set(os.listdir(os.fsencode(self.folder)))

    def start(self, *arguments: str | bytes, **popen: object) -> subprocess.Popen[bytes]:
        """Start the program; the caller waits for it."""
        settings: dict[str, object] = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE,
                                       "stderr": subprocess.PIPE, "env": ENVIRONMENT}
        return subprocess.Popen([INVOCATION, *arguments], executable=BINARY, cwd=self.folder,
                                **(settings | popen))

    def run_program(self, *arguments: str | bytes, piped: bytes | None = None, **popen: object) -> Outcome:
        """Run the program to its end; `piped` reaches it through a pipe on standard input."""
        if piped is not None:
            popen["stdin"] = subprocess.PIPE
        with self.start(*arguments, **popen) as process:
            return self.outcome(process, piped)

    def run_in_shell(self, script: str, **popen: object) -> Outcome:
        """Run a bash script, in which "$vorlan" is the program."""
        settings: dict[str, object] = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE,
                                       "stderr": subprocess.PIPE}
        with subprocess.Popen(["bash", "-c", script], cwd=self.folder, env=ENVIRONMENT | {"vorlan": BINARY},
                              **(settings | popen)) as process:
            return self.outcome(process, None)

    def outcome(self, process: subprocess.Popen[bytes], piped: bytes | None) -> Outcome:
        try:
            report, console = process.communicate(piped, timeout=self.time_limit)
        except subprocess.TimeoutExpired:
            process.kill()
            self.fail(f"{process.args!r} was still running after {self.time_limit} seconds")
        return Outcome(process.returncode, report or b"", console or b"")

    def open_fifo(self, name: str, reader: subprocess.Popen[bytes]) -> BinaryIO:
        """Open a FIFO for writing as soon as the program reads it, and fail when it never does."""
        deadline = time.monotonic() + self.time_limit
        while True:
            try:
                descriptor = os.open(self.folder / name, os.O_WRONLY | os.O_NONBLOCK)
            except OSError as error:
                if error.errno != errno.ENXIO:
                    raise
                self.assertIsNone(reader.poll(), "the run has ended without reading its input")
                self.assertLess(time.monotonic(), deadline, "the input is not opened in time")
                time.sleep(0.01)
            else:
                os.set_blocking(descriptor, True)
                return os.fdopen(descriptor, "wb")

    def assert_parse_failure(self, outcome: Outcome, argument: str | bytes, reason: str | bytes) -> None:
        """The parser library names argument and reason, shows the brief usage and ends with status 1."""
        expected = b"PARSE ERROR: Argument: %s\n             %s\n\nBrief USAGE: \n   vorlan  " % (
            os.fsencode(argument), os.fsencode(reason))
        messages = outcome.messages()
        self.assertEqual(messages[:len(expected)], expected)
        self.assertTrue(messages.endswith(b"\nFor complete USAGE and HELP type: \n   vorlan --help\n\n"))
        self.assertEqual(outcome.report, b"")
        self.assertEqual(outcome.status, 1)

    def assert_malformed(self, outcome: Outcome, line: int) -> None:
        """The read-error exit: the message with the line, no closing words."""
        expected = (b"\n\nAn error occurred while reading the input file. It might not be a valid fasta file.\n"
                    b"File position: line %d\n" % line)
        self.assertEqual(outcome.console[-len(expected):], expected)
        self.assertNotIn(b"## Finished", outcome.report)
        self.assertEqual(outcome.status, 231)

    def assert_success(self, outcome: Outcome) -> None:
        self.assertEqual(outcome.status, 0)
        self.assertTrue(outcome.console.endswith(b"\nAnalysis finished successfully.\n\nVorlan says goodbye.\n\n"))
