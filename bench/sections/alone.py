# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Vorlan alone: growth, memory and speed."""

from __future__ import annotations

import long_unit_works
import workloads
from bench import Bench
from measure import Contest, Measurement, alternate
from tables import Table, megabytes, ratio_of, ratio_text, seconds
from workloads import Growth, Memory, Throughput


def growth_head() -> list[str]:
    return ["name", "work", "against", "CPU s", "against, CPU s", "ratio", "at most", "aim", "peak MB", "at most MB",
            "verdict"]


def growth_verdict(row: Growth, measured: Measurement, base: Measurement) -> str:
    ratio = ratio_of(measured, base)
    peak_is_kept = row.peak_bytes is None or measured.peak_bytes <= row.peak_bytes
    if ratio is None or measured.timed_out or ratio > row.at_most or not peak_is_kept:
        return "NOT KEPT"
    return "aim reached" if row.aim is not None and ratio <= row.aim else "kept"


def growth_cells(bench: Bench, row: Growth, measured: Measurement, base: Measurement) -> list[str]:
    return [row.name, row.work.title, row.base.title, seconds(measured), seconds(base), ratio_text(measured, base),
            f"{row.at_most:g}", f"{row.aim:g}" if row.aim else "–", megabytes(measured.peak_bytes),
            megabytes(row.peak_bytes) if row.peak_bytes else "–", bench.verdict(growth_verdict(row, measured, base))]


def memory_cells(bench: Bench, row: Memory) -> list[str]:
    measured = bench.measurement(row.work)
    limit = workloads.MEMORY_BYTES_PER_RESIDUE * bench.residues(row.work) + row.fixed_bytes + measured.report_bytes
    kept = measured.peak_bytes <= limit and not measured.timed_out
    return [row.name, row.work.title, megabytes(measured.report_bytes), megabytes(measured.peak_bytes),
            megabytes(limit), bench.verdict("kept" if kept else "NOT KEPT")]


def memory_table(title: str) -> Table:
    return Table(title, ["name", "work", "report, MB", "peak MB", "at most MB", "verdict"])


def throughput_cells(bench: Bench, row: Throughput) -> list[str]:
    measured = bench.measurement(row.work)
    residues = bench.residues(row.work)
    speed = "stopped" if measured.timed_out else f"{residues / measured.median / 1e6:.3f}"
    return [row.name, row.work.title, f"{residues:,}", speed, megabytes(measured.peak_bytes)]


def growth(bench: Bench) -> list[Table]:
    def cells(row: Growth) -> list[str]:
        # The smaller work first, which ends sooner when something is wrong.
        base = bench.measurement(row.base)
        return growth_cells(bench, row, bench.measurement(row.work), base)

    return [bench.run_rows(Table("Growth (Vorlan alone)", growth_head()), workloads.growths(bench.divisor), cells)]


def memory(bench: Bench) -> list[Table]:
    return [bench.run_rows(memory_table("Memory (Vorlan alone)"), workloads.memories(bench.divisor),
                           lambda row: memory_cells(bench, row))]


def speed(bench: Bench) -> list[Table]:
    return [bench.run_rows(Table("Speed (Vorlan alone)", ["name", "work", "bases", "million bases per CPU s",
                                                          "peak MB"]),
                           workloads.throughputs(bench.divisor), lambda row: throughput_cells(bench, row))]


def long_units(bench: Bench) -> list[Table]:
    """Long units against short ones, in alternating runs; their growth and memory."""

    def cells(row: Growth) -> list[str]:
        contests = [Contest(bench.vorlan, bench.task(work)) for work in (row.work, row.base)]
        alternate(contests, bench.runs)
        return growth_cells(bench, row, *(contest.measurement for contest in contests))

    divisor = bench.divisor
    return [bench.run_rows(Table("Long units against short ones (Vorlan alone)", growth_head()),
                           long_unit_works.against_short_units(divisor), cells),
            bench.run_rows(Table("Growth with long units (Vorlan alone)", growth_head()),
                           long_unit_works.growths(divisor), cells),
            bench.run_rows(memory_table("Memory with long units (Vorlan alone)"), long_unit_works.memories(divisor),
                           lambda row: memory_cells(bench, row))]
