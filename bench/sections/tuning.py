# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Each constant that was chosen by measurement, against values on either side of it."""

from __future__ import annotations

import filecmp
import sys

from bench import Bench
from inputs import Unavailable
from measure import Contest, Program, RunFailed, ratio_of_pairs, rounds
from tables import Table
from tuned_constants import Constant, constants
from variants import NoVariant, VariantBuilder
from workloads import Work

NOTE = ("The time with another value : the time with the present one, the median of pairs of runs: above 1, the other "
        "value is worse.")


class Tuning:
    def __init__(self, bench: Bench) -> None:
        self.bench = bench
        self.builder = VariantBuilder(bench.build)
        self.present = Program(self.builder.program("present"), bench.folder / "present")
        self.table = Table("Tuning", ["constant", "work", "value", "ratio", "pairs"], note=NOTE)

    def add(self, constant: Constant) -> None:
        """Rows of all values and works of one constant."""
        present = self.builder.value_of(constant)
        programs = [Program(self.builder.variant(constant, value),
                            self.bench.folder / f"{constant.label}-{index}")
                    for index, value in enumerate(constant.values)]
        for work in constant.works:
            try:
                self.add_work(constant, present, programs, work)
            except Unavailable as reason:
                self.bench.skipped.append(f"{constant.label} ({work.title}): {reason}")

    def add_work(self, constant: Constant, present: str, programs: list[Program], work: Work) -> None:
        task = self.bench.task(work)
        base = Contest(self.present, task)
        others = [Contest(program, task) for program in programs]
        for _ in rounds([base, *others], self.bench.runs):
            for value, other in zip(constant.values, others):
                if not filecmp.cmp(self.present.report, other.program.report, shallow=False):
                    self.bench.errors.append(f"{constant.label} = {value}: the report differs ({work.title})")
        self.table.rows.append([constant.label, work.title, f"{present} (present)", "1", ""])
        for value, other in zip(constant.values, others):
            ratio = ratio_of_pairs(other.measurement, base.measurement)
            pairs = min(len(other.measurement.cpu_seconds), len(base.measurement.cpu_seconds))
            self.table.rows.append([constant.label, work.title, value, f"{ratio:.3f}", str(pairs)])


def tuning(bench: Bench) -> list[Table]:
    chosen = [constant for constant in constants(bench.divisor) if not bench.only or constant.name in bench.only]
    if not chosen:
        return []
    tuned = Tuning(bench)
    for constant in chosen:
        print(constant.label, file=sys.stderr)
        try:
            tuned.add(constant)
        except (NoVariant, RunFailed) as failure:
            bench.errors.append(f"{constant.label}: {failure}")
    return [tuned.table]
