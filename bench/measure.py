# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""CPU time and peak memory of whole runs of a program."""

from __future__ import annotations

import filecmp
import os
import resource
import signal
import statistics
import subprocess
from dataclasses import dataclass, field
from pathlib import Path

CPU_LIMIT_SECONDS = 600
# A program that takes longer than this per run varies little, so fewer runs will do.
LONG_RUN_SECONDS = 20
RUNS_WHEN_LONG = 3
# One that takes less varies much, and more runs cost little.
SHORT_RUN_SECONDS = 0.5
RUNS_WHEN_SHORT = 15

REPORT_NAME = "report.txt"


class RunFailed(Exception):
    """A measured program ended with an error."""


@dataclass(frozen=True)
class Usage:
    """What a process used."""

    status: int  # exit status, or the negative number of the signal that ended it
    cpu_seconds: float  # user and system
    peak_bytes: int


@dataclass(frozen=True)
class Task:
    """What a program is asked to do."""

    options: tuple[str, ...]
    input_file: Path


@dataclass
class Measurement:
    """The runs of one program on one task."""

    cpu_seconds: list[float] = field(default_factory=list)
    peak_bytes: int = 0
    report_bytes: int = 0
    timed_out: bool = False

    @property
    def median(self) -> float:
        return statistics.median(self.cpu_seconds)

    def wants_more_runs(self, runs: int) -> bool:
        if self.timed_out:
            return False
        if self.cpu_seconds and self.cpu_seconds[0] > LONG_RUN_SECONDS:
            runs = min(runs, RUNS_WHEN_LONG)
        elif self.cpu_seconds and self.cpu_seconds[0] < SHORT_RUN_SECONDS and runs > 1:
            runs = max(runs, RUNS_WHEN_SHORT)
        return len(self.cpu_seconds) < runs


def set_limits() -> None:
    """In the new process: a limit on CPU time, which other programs on the machine do not use up."""
    resource.setrlimit(resource.RLIMIT_CPU, (CPU_LIMIT_SECONDS, CPU_LIMIT_SECONDS + 5))
    # What ends a program at its limit would leave a core file behind.
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def usage_of(command: list[str], folder: Path) -> Usage:
    """Runs the command in the folder, without input and console."""
    process = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL, preexec_fn=set_limits)
    _, wait_status, used = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(wait_status)
    return Usage(process.returncode, used.ru_utime + used.ru_stime, used.ru_maxrss * 1024)


class Program:
    """A program that is run in a folder of its own.

    The report names input and report file, so these have the same names for all programs.
    """

    def __init__(self, path: Path, folder: Path, first_arguments: tuple[str, ...] = ()) -> None:
        self.command = [str(path.resolve()), *first_arguments]
        self.folder = folder
        self.report = folder / REPORT_NAME
        folder.mkdir()

    def run(self, task: Task, measurement: Measurement) -> None:
        """Adds one run to the measurement."""
        command = [*self.command, *task.options, str(task.input_file), REPORT_NAME]
        self.report.unlink(missing_ok=True)
        used = usage_of(command, self.folder)
        measurement.cpu_seconds.append(used.cpu_seconds)
        measurement.peak_bytes = max(measurement.peak_bytes, used.peak_bytes)
        measurement.report_bytes = self.report.stat().st_size if self.report.exists() else 0
        measurement.timed_out = used.status == -signal.SIGXCPU
        if used.status != 0 and not measurement.timed_out:
            raise RunFailed(f"{' '.join(command)}: status {used.status}")


def measure(program: Program, task: Task, runs: int) -> Measurement:
    measurement = Measurement()
    while measurement.wants_more_runs(runs):
        program.run(task, measurement)
    return measurement


@dataclass
class Comparison:
    """Two programs on the same task."""

    plain: Measurement = field(default_factory=Measurement)
    vorlan: Measurement = field(default_factory=Measurement)
    reports_differ: bool = False
    reports_compared: bool = False


def compare(plain: Program, vorlan: Program, task: Task, runs: int) -> Comparison:
    """Alternating runs, so that a slow spell of the machine meets both; ends at a difference."""
    result = Comparison()
    while result.plain.wants_more_runs(runs) or result.vorlan.wants_more_runs(runs):
        if result.plain.wants_more_runs(runs):
            plain.run(task, result.plain)
        if result.vorlan.wants_more_runs(runs):
            vorlan.run(task, result.vorlan)
        if result.vorlan.timed_out:
            break
        if result.plain.timed_out:
            continue
        result.reports_compared = True
        if not filecmp.cmp(plain.report, vorlan.report, shallow=False):
            result.reports_differ = True
            break
    return result
