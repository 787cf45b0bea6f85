# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""One run of the benchmarks: programs, inputs, and what went wrong."""

from __future__ import annotations

import argparse
import subprocess
import sys
from collections.abc import Callable, Sequence
from functools import cached_property
from pathlib import Path
from typing import TypeVar

import yardstick
from inputs import InputStore, Unavailable
from measure import Comparison, Measurement, Program, RunFailed, Task, limited_run, measure
from tables import Table
from workloads import Faster, Growth, Memory, Throughput, Work, Worth

DEFAULT_RUNS = 5
# Growth and memory compare Vorlan with itself; the long runs among them are far from their limits.
GROWTH_RUNS = 3
QUICK_DIVISOR = 40

# Within the build.
VORLAN, SWITCHES = "vorlan", "bench/vorlan_switches"
KERNELS, SURVIVAL = "bench/vorlan_kernels", "bench/vorlan_survival"

Row = TypeVar("Row", Faster, Growth, Memory, Throughput, Worth)


class Bench:
    def __init__(self, arguments: argparse.Namespace, folder: Path) -> None:
        self.quick: bool = arguments.quick
        self.runs: int = arguments.runs or (1 if arguments.quick else DEFAULT_RUNS)
        self.only: list[str] = arguments.only
        self.build: Path = arguments.build
        self.folder = folder
        inputs = folder / "inputs"
        inputs.mkdir()
        self.store = InputStore(inputs, arguments.data)
        self.vorlan = Program(self.build / VORLAN, folder / "vorlan")
        self.plain = self.switched("none")
        self.measured: dict[tuple[tuple[str, ...], str], Measurement] = {}
        self.skipped: list[str] = []
        self.errors: list[str] = []

    @property
    def divisor(self) -> int:
        """Of the lengths of the inputs."""
        return QUICK_DIVISOR if self.quick else 1

    def switched(self, engines: str) -> Program:
        """Vorlan with other engines, in a folder of that name."""
        return Program(self.build / SWITCHES, self.folder / engines, (engines,))

    def engine_names(self) -> list[str]:
        return subprocess.run([self.build / SWITCHES, "--names"], stdout=subprocess.PIPE, text=True,
                              check=True).stdout.split()

    @cached_property
    def before(self) -> Program:
        """The program that speed is compared with over the years."""
        return Program(yardstick.program(self.build), self.folder / "before")

    def task(self, work: Work) -> Task:
        return Task(work.options, self.store.file(work.input).path)

    def residues(self, work: Work) -> int:
        return self.store.file(work.input).residues

    def measurement(self, work: Work) -> Measurement:
        """Of Vorlan alone; work that stands in several rows is run once."""
        key = (work.options, work.input.name)
        if key not in self.measured:
            print(f"  {work.title}", file=sys.stderr)
            self.measured[key] = measure(self.vorlan, self.task(work), min(self.runs, GROWTH_RUNS))
        return self.measured[key]

    def smallest_peak(self) -> int:
        """What the system reports for a program that needs nothing: the memory of this process as it forked."""
        return limited_run(["true"], self.folder).peak_bytes

    def verdict(self, text: str) -> str:
        return "not judged" if self.quick else text

    def same_reports(self, name: str, result: Comparison) -> str:
        """Whether the reports were the same; a difference is an error of the run."""
        if result.reports_differ:
            self.errors.append(f"{name}: the reports differ")
            return "DIFFER"
        return "identical" if result.reports_compared else "not compared"

    def run_rows(self, table: Table, rows: Sequence[Row], cells_of: Callable[[Row], list[str]]) -> Table:
        """Fills the table; a row that cannot be run is noted with its reason."""
        for row in rows:
            if self.only and row.name not in self.only:
                continue
            print(row.name, file=sys.stderr)
            try:
                table.rows.append(cells_of(row))
            except Unavailable as reason:
                self.skipped.append(f"{row.name} ({row.work.title}): {reason}")
            except RunFailed as failure:
                self.errors.append(f"{row.name}: {failure}")
        return table
