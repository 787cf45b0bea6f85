# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""How many starts each stage of the imperfect search leaves."""

from __future__ import annotations

import subprocess
import tempfile

import long_unit_works
from bench import SURVIVAL, Bench
from measure import CPU_LIMIT_SECONDS, RunFailed, limited_run
from tables import Table
from workloads import Throughput

STAGES = ("starts", "filter", "wraparound", "accepted")
NOTE = ("Pairs of start and unit length: all that begin with a base, those that the filter leaves when no mark is "
        "closed, those that filter and wraparound bound leave together, and the repeats that a search accepts before overlapping ones are removed.")


def counts_of(bench: Bench, row: Throughput) -> dict[str, int]:
    """By stage; what was not reached before the limit of CPU time is missing."""
    command = [str(bench.build.resolve() / SURVIVAL), *row.work.options,
               str(bench.task(row.work).input_file)]
    with tempfile.TemporaryFile("w+") as output:
        used = limited_run(command, bench.folder, output.fileno())
        if used.status != 0 and not used.timed_out:
            raise RunFailed(f"{' '.join(command)}: status {used.status}")
        output.seek(0)
        return {stage: int(count) for stage, count in (line.split() for line in output)}


def cells(bench: Bench, row: Throughput) -> list[str]:
    counts = counts_of(bench, row)
    texts = [row.name, row.work.title]
    for stage in STAGES:
        if stage not in counts:
            texts.append(f"stopped at {CPU_LIMIT_SECONDS} CPU s")
        elif stage == STAGES[0]:
            texts.append(f"{counts[stage]:,}")
        else:
            texts.append(f"{counts[stage]:,} ({100 * counts[stage] / counts[STAGES[0]]:.3g} %)")
    return texts


def survival(bench: Bench) -> list[Table]:
    return [bench.run_rows(Table("Starts that survive", ["name", "work", *STAGES], note=NOTE),
                           long_unit_works.survivals(bench.divisor), lambda row: cells(bench, row))]
