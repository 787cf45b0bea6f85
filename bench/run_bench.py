#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Measures Vorlan on whole inputs: against the plain searches, against an earlier commit, alone, and stage by stage.

    bench/run_bench.py BUILD_DIR [--data DIR] [--section NAME]... [--quick] [--runs N] [--only NAME]...

BUILD_DIR is a build with VORLAN_BENCH on. DIR holds the gzip-compressed genomes, which are not part of the
project; without it only generated sequences are used. The tables are printed and, unless the run is a quick
one, stored in bench/results. Exit status 1: a report differs from that of the other program, or a program
failed. A speed below what is required does not change the status, since it depends on the machine.
"""

from __future__ import annotations

import argparse
import datetime
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True

import long_unit_works
import tuned_constants
import workloads
from bench import DEFAULT_RUNS, GROWTH_RUNS, KERNELS, SURVIVAL, SWITCHES, VORLAN, Bench
from environment import BENCH, commit, compiler, machine
from measure import CPU_LIMIT_SECONDS, LONG_RUN_SECONDS, RUNS_WHEN_LONG, RUNS_WHEN_SHORT, SHORT_RUN_SECONDS
from sections import SECTIONS, WITH_YARDSTICK
from tables import bullet_list, megabytes
from yardstick import NoYardstick


def preface(bench: Bench, sections: list[str], smallest_peak: int, date: datetime.date) -> str:
    lines = [
        f"commit: {commit()}",
        f"date: {date.isoformat()}",
        f"machine: {machine()}",
        f"compiler: {compiler(bench.build)}",
        f"runs: {bench.runs} of each program, alternating, of which the median is given; {RUNS_WHEN_LONG} for a "
        f"program that takes more than {LONG_RUN_SECONDS} s per run; {GROWTH_RUNS} where Vorlan runs alone; "
        f"{RUNS_WHEN_SHORT} of a program that takes less than {SHORT_RUN_SECONDS} s",
        f"CPU seconds: user and system; a run is stopped at {CPU_LIMIT_SECONDS}",
        f"peak MB: largest resident memory of any run, in 10^6 bytes; up to {megabytes(smallest_peak)} it may be "
        "that of the measuring process",
    ]
    if bench.quick:
        lines.append("QUICK: inputs are cut short and nothing is judged; the figures mean nothing")
    if sections != list(SECTIONS):
        lines.append(f"sections: {', '.join(sections)}")
    if bench.only:
        lines.append(f"only: {', '.join(bench.only)}")
    return "# Benchmark\n\n" + "".join(f"- {line}\n" for line in lines) + "\n"


def store(text: str, date: datetime.date, parts: list[str]) -> Path:
    results = BENCH / "results"
    results.mkdir(exist_ok=True)
    path = results / ("-".join([date.isoformat(), commit(), *parts]) + ".md")
    path.write_text(text)
    return path


def row_names() -> list[str]:
    lists = [workloads.comparisons, workloads.growths, workloads.memories, workloads.throughputs,
             workloads.engine_works, long_unit_works.faster_than_before, long_unit_works.against_short_units,
             long_unit_works.growths, long_unit_works.memories, long_unit_works.survivals, tuned_constants.constants]
    return list(dict.fromkeys(row.name for rows in lists for row in rows(1)))


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
    parser.add_argument("--section", action="append", default=[], choices=list(SECTIONS), metavar="NAME",
                        help=f"only this section: {', '.join(SECTIONS)}; may be repeated")
    parser.add_argument("--only", action="append", default=[], choices=row_names(), metavar="NAME",
                        help=f"only rows of this name: {', '.join(row_names())}; may be repeated")
    arguments = parser.parse_args()
    for program in (VORLAN, SWITCHES, KERNELS, SURVIVAL):
        if not (arguments.build / program).is_file():
            parser.error(f"{arguments.build} holds no {program}; was it built with VORLAN_BENCH on?")
    if arguments.data and not arguments.data.is_dir():
        parser.error(f"{arguments.data} is not a folder")
    return arguments


def build_yardstick(bench: Bench, sections: list[str]) -> None:
    """Before anything is measured, so that nobody waits for a run that cannot be completed."""
    needing = [name for name in sections if name in WITH_YARDSTICK]
    if not needing:
        return
    try:
        bench.before
    except NoYardstick as reason:
        raise SystemExit(f"{reason}\nSections that need it: {', '.join(needing)}.") from reason


def main() -> int:
    arguments = parse_arguments()
    date = datetime.date.today()
    names = [name for name in SECTIONS if not arguments.section or name in arguments.section]
    with tempfile.TemporaryDirectory(prefix="vorlan-bench-") as folder:
        bench = Bench(arguments, Path(folder))
        build_yardstick(bench, names)
        tables = [table for name in names for table in SECTIONS[name](bench)]
        smallest_peak = bench.smallest_peak()
    text = (preface(bench, names, smallest_peak, date) + "".join(table.text() for table in tables)
            + bullet_list("Skipped", bench.skipped) + bullet_list("Errors", bench.errors)).rstrip("\n") + "\n"
    print(text, end="")
    if not bench.quick:
        print(f"Stored as {store(text, date, [*arguments.section, *bench.only])}", file=sys.stderr)
    return 1 if bench.errors else 0


if __name__ == "__main__":
    sys.exit(main())
