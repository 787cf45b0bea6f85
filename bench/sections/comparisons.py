# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Vorlan against other programs that print the same: the plain searches, and itself at an earlier commit."""

from __future__ import annotations

import long_unit_works
import workloads
import yardstick
from bench import Bench
from measure import Comparison, Program, compare, ratio_of_pairs
from tables import Table, megabytes, ratio_of, ratio_text, seconds
from workloads import Faster, Throughput

# How much slower than before a work may be, which is about what the machine itself varies.
MOST_SLOWER = 1.03


def head(other: str) -> list[str]:
    return ["name", "work", f"{other}, CPU s", "Vorlan, CPU s", "ratio", "required", "aim", "verdict", "reports",
            f"{other}, peak MB", "Vorlan, peak MB", "runs"]


def verdict(bench: Bench, row: Faster, result: Comparison) -> str:
    ratio = ratio_of(result.other, result.vorlan)
    if ratio is None:
        return bench.verdict("stopped")
    if ratio >= row.aim:
        return bench.verdict("aim reached")
    if ratio >= row.required:
        return bench.verdict("required reached")
    # A program that was stopped only gives a lower bound of the ratio.
    return bench.verdict("unknown" if result.other.timed_out else "TOO SLOW")


def comparison_cells(bench: Bench, other: Program, row: Faster) -> list[str]:
    result = compare(other, bench.vorlan, bench.task(row.work), bench.runs)
    runs = f"{len(result.other.cpu_seconds)} / {len(result.vorlan.cpu_seconds)}"
    return [row.name, row.work.title, seconds(result.other), seconds(result.vorlan),
            ratio_text(result.other, result.vorlan), f"{row.required:g}", f"{row.aim:g}", verdict(bench, row, result),
            bench.same_reports(row.name, result), megabytes(result.other.peak_bytes),
            megabytes(result.vorlan.peak_bytes), runs]


def plain(bench: Bench) -> list[Table]:
    """Against the searches as they are defined."""
    return [bench.run_rows(Table("Plain searches against Vorlan", head("plain")),
                           workloads.comparisons(bench.divisor),
                           lambda row: comparison_cells(bench, bench.plain, row))]


def before(bench: Bench) -> list[Table]:
    """The works that were too slow before."""
    return [bench.run_rows(Table(f"Commit {yardstick.COMMIT} against Vorlan", head("before")),
                           long_unit_works.faster_than_before(bench.divisor),
                           lambda row: comparison_cells(bench, bench.before, row))]


def not_slower_cells(bench: Bench, row: Throughput) -> list[str]:
    result = compare(bench.before, bench.vorlan, bench.task(row.work), bench.runs, paired=True)
    ratio = ratio_of_pairs(result.vorlan, result.other)
    kept = ratio <= MOST_SLOWER and not result.vorlan.timed_out
    return [row.name, row.work.title, seconds(result.other), seconds(result.vorlan), f"{ratio:.3f}",
            bench.verdict("kept" if kept else "SLOWER"), bench.same_reports(row.name, result),
            str(len(result.vorlan.cpu_seconds))]


def not_slower(bench: Bench) -> list[Table]:
    """Every other work: none may have become slower."""
    note = f"Ratio: the median of now : before in pairs of runs, at most {MOST_SLOWER:g}."
    return [bench.run_rows(Table(f"No work slower than at commit {yardstick.COMMIT}", [
        "name", "work", "before, CPU s", "now, CPU s", "ratio", "verdict", "reports", "pairs"], note=note),
        workloads.all_works(bench.divisor), lambda row: not_slower_cells(bench, row))]
