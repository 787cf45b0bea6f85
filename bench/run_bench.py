#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Measures Vorlan on whole inputs and compares it with the plain searches.

    bench/run_bench.py BUILD_DIR [--data DIR] [--quick] [--runs N] [--only NAME]...

BUILD_DIR is a build with VORLAN_BENCH on. DIR holds the gzip-compressed genomes, which are not part of the
project; without it only generated sequences are used. The tables are printed and, unless the run is a quick
one, stored in bench/results. Exit status 1: a report differs from that of the plain program, or a program
failed. A speed below what is required does not change the status, since it depends on the machine.
"""

from __future__ import annotations

import argparse
import datetime
import re
import subprocess
import sys
import tempfile
from collections.abc import Callable, Sequence
from dataclasses import dataclass, field
from pathlib import Path
from typing import Optional, TypeVar

import workloads
from inputs import InputStore, Unavailable
from measure import (CPU_LIMIT_SECONDS, LONG_RUN_SECONDS, RUNS_WHEN_LONG, RUNS_WHEN_SHORT, SHORT_RUN_SECONDS,
                     Comparison, Measurement, Program, RunFailed, Task, compare, measure, usage_of)
from workloads import Faster, Growth, Memory, Throughput, Work

BENCH = Path(__file__).resolve().parent
# Within the build.
SWITCHES = "bench/vorlan_switches"
DEFAULT_RUNS = 5
# Growth and memory compare Vorlan with itself; the long runs among them are far from their limits.
GROWTH_RUNS = 3
QUICK_DIVISOR = 40

Row = TypeVar("Row", Faster, Growth, Memory, Throughput)


# ---- Texts ----------------------------------------------------------------------------------

def seconds(measurement: Measurement) -> str:
    if measurement.timed_out:
        return f"> {CPU_LIMIT_SECONDS}"
    return f"{measurement.median:.4f}" if measurement.median < 1 else f"{measurement.median:.2f}"


def megabytes(count: float) -> str:
    return f"{count / 1e6:.1f}"


def ratio_of(large: Measurement, small: Measurement) -> Optional[float]:
    """How many times the time of small; a lower bound if large was stopped, none if small was."""
    return None if small.timed_out or small.median == 0 else large.median / small.median


def ratio_text(large: Measurement, small: Measurement) -> str:
    ratio = ratio_of(large, small)
    if ratio is None:
        return "–"
    return f"{'> ' if large.timed_out else ''}{ratio:.2f}"


def markdown(head: list[str], rows: list[list[str]]) -> str:
    lines = [head, ["---"] * len(head), *rows]
    return "".join(f"| {' | '.join(cells)} |\n" for cells in lines)


@dataclass
class Table:
    title: str
    head: list[str]
    rows: list[list[str]] = field(default_factory=list)

    def text(self) -> str:
        """Nothing when no row was run."""
        return f"## {self.title}\n\n{markdown(self.head, self.rows)}\n" if self.rows else ""


# ---- Where and what -------------------------------------------------------------------------

def first_line_of(command: list[str]) -> str:
    try:
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, cwd=BENCH, text=True)
    except OSError:
        return ""
    return done.stdout.split("\n", 1)[0] if done.returncode == 0 else ""


def commit() -> str:
    return first_line_of(["git", "--no-optional-locks", "describe", "--always", "--dirty", "--abbrev=10",
                          "--exclude=*"]) or "unknown"


def machine() -> str:
    try:
        text = subprocess.run(["lscpu"], stdout=subprocess.PIPE, env={"LC_ALL": "C", "PATH": "/usr/bin:/bin"},
                              text=True, check=True).stdout
    except (OSError, subprocess.CalledProcessError):
        return "unknown"
    values = dict(re.findall(r"^([^:]+):\s*(.*)$", text, re.MULTILINE))
    return f"{values.get('Model name', 'unknown')}, {values.get('CPU(s)', '?')} cores"


def compiler(build: Path) -> str:
    """The compiler and the flags of the build."""
    cache = dict(re.findall(r"^([A-Z_]+):[A-Z]+=(.*)$", (build / "CMakeCache.txt").read_text(), re.MULTILINE))
    build_type = cache.get("CMAKE_BUILD_TYPE", "")
    flags = f"{cache.get('CMAKE_CXX_FLAGS', '')} {cache.get(f'CMAKE_CXX_FLAGS_{build_type.upper()}', '')}"
    version = first_line_of([cache.get("CMAKE_CXX_COMPILER", "c++"), "--version"])
    return f"{version}; build type {build_type or 'none'}, flags {' '.join(flags.split()) or 'none'}"


# ---- Measuring ------------------------------------------------------------------------------

class Bench:
    """One run of the benchmarks: what is measured goes into tables and into lists of what went wrong."""

    def __init__(self, arguments: argparse.Namespace, folder: Path) -> None:
        self.quick: bool = arguments.quick
        self.runs: int = arguments.runs or (1 if arguments.quick else DEFAULT_RUNS)
        self.only: list[str] = arguments.only
        inputs = folder / "inputs"
        inputs.mkdir()
        self.store = InputStore(inputs, arguments.data)
        self.vorlan = Program(arguments.build / "vorlan", folder / "vorlan")
        self.plain = Program(arguments.build / SWITCHES, folder / "plain", ("none",))
        self.folder = folder
        self.measured: dict[tuple[tuple[str, ...], str], Measurement] = {}
        self.skipped: list[str] = []
        self.errors: list[str] = []

    def task(self, work: Work) -> Task:
        return Task(work.options, self.store.file(work.input).path)

    def measurement(self, work: Work) -> Measurement:
        """Of Vorlan alone; work that stands in several rows is run once."""
        key = (work.options, work.input.name)
        if key not in self.measured:
            print(f"  {work.title}", file=sys.stderr)
            self.measured[key] = measure(self.vorlan, self.task(work), min(self.runs, GROWTH_RUNS))
        return self.measured[key]

    def smallest_peak(self) -> int:
        """What the system reports for a program that needs nothing: the memory of this process as it forked."""
        return usage_of(["true"], self.folder).peak_bytes

    def verdict(self, text: str) -> str:
        return "not judged" if self.quick else text

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

    def comparison_cells(self, row: Faster) -> list[str]:
        result = compare(self.plain, self.vorlan, self.task(row.work), self.runs)
        if result.reports_differ:
            self.errors.append(f"{row.name}: the reports differ")
        runs = f"{len(result.plain.cpu_seconds)} / {len(result.vorlan.cpu_seconds)}"
        return [row.name, row.work.title, seconds(result.plain), seconds(result.vorlan),
                ratio_text(result.plain, result.vorlan), f"{row.required:g}", f"{row.aim:g}",
                self.comparison_verdict(row, result), same_reports(result),
                megabytes(result.plain.peak_bytes), megabytes(result.vorlan.peak_bytes), runs]

    def comparison_verdict(self, row: Faster, result: Comparison) -> str:
        ratio = ratio_of(result.plain, result.vorlan)
        if ratio is None:
            return self.verdict("stopped")
        if ratio >= row.aim:
            return self.verdict("aim reached")
        if ratio >= row.required:
            return self.verdict("required reached")
        # A plain program that was stopped only gives a lower bound of the ratio.
        return self.verdict("unknown" if result.plain.timed_out else "TOO SLOW")

    def growth_cells(self, row: Growth) -> list[str]:
        base, measured = self.measurement(row.base), self.measurement(row.work)
        ratio = ratio_of(measured, base)
        peak_is_kept = row.peak_bytes is None or measured.peak_bytes <= row.peak_bytes
        kept = ratio is not None and not measured.timed_out and ratio <= row.at_most and peak_is_kept
        return [row.name, row.work.title, row.base.title, seconds(measured), seconds(base),
                ratio_text(measured, base), f"{row.at_most:g}", megabytes(measured.peak_bytes),
                megabytes(row.peak_bytes) if row.peak_bytes else "–", self.verdict("kept" if kept else "NOT KEPT")]

    def memory_cells(self, row: Memory) -> list[str]:
        measured = self.measurement(row.work)
        residues = self.store.file(row.work.input).residues
        limit = (workloads.MEMORY_BYTES_PER_RESIDUE * residues + workloads.MEMORY_BYTES_FIXED + measured.report_bytes)
        kept = measured.peak_bytes <= limit and not measured.timed_out
        return [row.name, row.work.title, megabytes(measured.report_bytes), megabytes(measured.peak_bytes),
                megabytes(limit), self.verdict("kept" if kept else "NOT KEPT")]

    def throughput_cells(self, row: Throughput) -> list[str]:
        measured = self.measurement(row.work)
        residues = self.store.file(row.work.input).residues
        speed = "stopped" if measured.timed_out else f"{residues / measured.median / 1e6:.3f}"
        return [row.name, row.work.title, f"{residues:,}", speed, megabytes(measured.peak_bytes)]

    def tables(self) -> list[Table]:
        divisor = QUICK_DIVISOR if self.quick else 1
        return [
            self.run_rows(Table("Plain searches against Vorlan", [
                "name", "work", "plain, CPU s", "Vorlan, CPU s", "ratio", "required", "aim", "verdict", "reports",
                "plain, peak MB", "Vorlan, peak MB", "runs"]), workloads.comparisons(divisor), self.comparison_cells),
            self.run_rows(Table("Growth (Vorlan alone)", [
                "name", "work", "against", "CPU s", "against, CPU s", "ratio", "at most", "peak MB", "at most MB",
                "verdict"]), workloads.growths(divisor), self.growth_cells),
            self.run_rows(Table("Memory (Vorlan alone)", [
                "name", "work", "report, MB", "peak MB", "at most MB", "verdict"]),
                workloads.memories(divisor), self.memory_cells),
            self.run_rows(Table("Speed (Vorlan alone)", [
                "name", "work", "bases", "million bases per CPU s", "peak MB"]),
                workloads.throughputs(divisor), self.throughput_cells),
        ]


def same_reports(result: Comparison) -> str:
    if result.reports_differ:
        return "DIFFER"
    return "identical" if result.reports_compared else "not compared"


# ---- The result -----------------------------------------------------------------------------

def preface(bench: Bench, smallest_peak: int, build: Path, date: datetime.date) -> str:
    lines = [
        f"commit: {commit()}",
        f"date: {date.isoformat()}",
        f"machine: {machine()}",
        f"compiler: {compiler(build)}",
        f"runs: {bench.runs} of each program, alternating, of which the median is given; {RUNS_WHEN_LONG} for a "
        f"program that takes more than {LONG_RUN_SECONDS} s per run; {GROWTH_RUNS} where Vorlan runs alone; "
        f"{RUNS_WHEN_SHORT} of a program that takes less than {SHORT_RUN_SECONDS} s",
        f"CPU seconds: user and system; a run is stopped at {CPU_LIMIT_SECONDS}",
        f"peak MB: largest resident memory of any run, in 10^6 bytes; up to {megabytes(smallest_peak)} it may be "
        "that of the measuring process",
    ]
    if bench.quick:
        lines.append("QUICK: inputs are cut short and nothing is judged; the figures mean nothing")
    if bench.only:
        lines.append(f"only: {', '.join(bench.only)}")
    return "# Benchmark\n\n" + "".join(f"- {line}\n" for line in lines) + "\n"


def bullet_list(title: str, items: list[str]) -> str:
    return f"## {title}\n\n" + "".join(f"- {item}\n" for item in items) + "\n" if items else ""


def store(text: str, date: datetime.date, only: list[str]) -> Path:
    results = BENCH / "results"
    results.mkdir(exist_ok=True)
    path = results / ("-".join([date.isoformat(), commit(), *only]) + ".md")
    path.write_text(text)
    return path


def row_names() -> list[str]:
    rows = [*workloads.comparisons(1), *workloads.growths(1), *workloads.memories(1), *workloads.throughputs(1)]
    return list(dict.fromkeys(row.name for row in rows))


def positive(text: str) -> int:
    value = int(text)
    if value < 1:
        raise ValueError
    return value


def parse_arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(description="Measure Vorlan on whole inputs.")
    parser.add_argument("build", type=Path, metavar="BUILD_DIR", help="a build with VORLAN_BENCH on")
    parser.add_argument("--data", type=Path, metavar="DIR", help="folder with the gzip-compressed genomes")
    parser.add_argument("--quick", action="store_true", help="short inputs, to see whether everything works")
    parser.add_argument("--runs", type=positive, metavar="N",
                        help=f"runs of each program (default: {DEFAULT_RUNS}, quick: 1)")
    parser.add_argument("--only", action="append", default=[], choices=row_names(), metavar="NAME",
                        help=f"only rows of this name: {', '.join(row_names())}; may be repeated")
    arguments = parser.parse_args()
    for program in ("vorlan", SWITCHES):
        if not (arguments.build / program).is_file():
            parser.error(f"{arguments.build} holds no {program}; was it built with VORLAN_BENCH on?")
    if arguments.data and not arguments.data.is_dir():
        parser.error(f"{arguments.data} is not a folder")
    return arguments


def main() -> int:
    arguments = parse_arguments()
    date = datetime.date.today()
    with tempfile.TemporaryDirectory(prefix="vorlan-bench-") as folder:
        bench = Bench(arguments, Path(folder))
        tables = bench.tables()
        smallest_peak = bench.smallest_peak()
    text = (preface(bench, smallest_peak, arguments.build, date) + "".join(table.text() for table in tables)
            + bullet_list("Skipped", bench.skipped) + bullet_list("Errors", bench.errors)).rstrip("\n") + "\n"
    print(text, end="")
    if not bench.quick:
        print(f"Stored as {store(text, date, bench.only)}", file=sys.stderr)
    return 1 if bench.errors else 0


if __name__ == "__main__":
    sys.exit(main())
