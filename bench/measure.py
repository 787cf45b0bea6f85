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
from collections.abc import Iterator, Sequence
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

    @property
    def timed_out(self) -> bool:
        return self.status == -signal.SIGXCPU


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


def limited_run(command: list[str], folder: Path, output: int = subprocess.DEVNULL) -> Usage:
    """Runs the command in the folder, without input and console; its standard output goes to a descriptor."""
    process = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=output,
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
        used = limited_run(command, self.folder)
        measurement.cpu_seconds.append(used.cpu_seconds)
        measurement.peak_bytes = max(measurement.peak_bytes, used.peak_bytes)
        measurement.report_bytes = self.report.stat().st_size if self.report.exists() else 0
        measurement.timed_out = used.timed_out
        if used.status != 0 and not measurement.timed_out:
            raise RunFailed(f"{' '.join(command)}: status {used.status}")


def measure(program: Program, task: Task, runs: int) -> Measurement:
    measurement = Measurement()
    while measurement.wants_more_runs(runs):
        program.run(task, measurement)
    return measurement


@dataclass
class Contest:
    """A program at a task, and what was measured of it."""

    program: Program
    task: Task
    measurement: Measurement = field(default_factory=Measurement)


def rounds(contests: Sequence[Contest], runs: int, paired: bool = False) -> Iterator[None]:
    """Alternating runs, so that a slow spell of the machine meets all; yields after each round.

    `paired`: all are run equally often, as often as the one that wants the fewest runs.
    """
    wanted = all if paired else any
    while wanted(contest.measurement.wants_more_runs(runs) for contest in contests):
        for contest in contests:
            if contest.measurement.wants_more_runs(runs):
                contest.program.run(contest.task, contest.measurement)
        yield


def alternate(contests: Sequence[Contest], runs: int) -> None:
    for _ in rounds(contests, runs):
        pass


def ratio_of_pairs(one: Measurement, other: Measurement) -> float:
    """The median of the ratios of runs that followed each other: what slows down both cancels out."""
    return statistics.median(a / b for a, b in zip(one.cpu_seconds, other.cpu_seconds))


@dataclass
class Comparison:
    """Another program and Vorlan on the same task."""

    other: Measurement = field(default_factory=Measurement)
    vorlan: Measurement = field(default_factory=Measurement)
    reports_differ: bool = False
    reports_compared: bool = False


def compare(other: Program, vorlan: Program, task: Task, runs: int, paired: bool = False) -> Comparison:
    """Runs both by turns; ends at a difference."""
    result = Comparison()
    contests = [Contest(other, task, result.other), Contest(vorlan, task, result.vorlan)]
    for _ in rounds(contests, runs, paired):
        if result.vorlan.timed_out:
            break
        if result.other.timed_out:
            continue
        result.reports_compared = True
        if not filecmp.cmp(other.report, vorlan.report, shallow=False):
            result.reports_differ = True
            break
    return result
