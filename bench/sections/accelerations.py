# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""What each engine is worth on each work."""

from __future__ import annotations

import filecmp

import workloads
from bench import Bench
from measure import CPU_LIMIT_SECONDS, Contest, ratio_of_pairs, rounds
from tables import Table, seconds
from workloads import Worth

# An engine that earns less everywhere is not worth its lines.
LEAST_WORTH = 1.05

NOTE = (f"The time of the run without the engine : the time with all, the median of pairs of runs; > where the run "
        f"without it was stopped at {CPU_LIMIT_SECONDS} CPU s. An engine must reach {LEAST_WORTH:g} somewhere.")


class Worths:
    """Runs each work with all engines and with each one left out, by turns."""

    def __init__(self, bench: Bench) -> None:
        self.bench = bench
        self.names = bench.engine_names()
        self.all = bench.switched("all")
        self.without = [bench.switched(f"without={name}") for name in self.names]
        self.most = [0.0] * len(self.names)

    def cells(self, row: Worth) -> list[str]:
        task = self.bench.task(row.work)
        full = Contest(self.all, task)
        others = [Contest(program, task) for program in self.without]
        for _ in rounds([full, *others], self.bench.runs):
            self.compare_reports(row, full, others)
        ratios = [ratio_of_pairs(other.measurement, full.measurement) for other in others]
        self.most = [max(pair) for pair in zip(self.most, ratios)]
        texts = [f"{'> ' if other.measurement.timed_out else ''}{ratio:.2f}" for other, ratio in zip(others, ratios)]
        return [row.name, row.work.title, seconds(full.measurement), *texts]

    def compare_reports(self, row: Worth, full: Contest, others: list[Contest]) -> None:
        for name, other in zip(self.names, others):
            if other.measurement.timed_out:
                continue
            if not filecmp.cmp(full.program.report, other.program.report, shallow=False):
                self.bench.errors.append(f"{row.name}: without {name} the report differs")

    def verdicts(self) -> list[str]:
        return [self.bench.verdict("kept" if most >= LEAST_WORTH else "TOO LITTLE") for most in self.most]


def accelerations(bench: Bench) -> list[Table]:
    worths = Worths(bench)
    table = bench.run_rows(Table("What each engine is worth", ["name", "work", "with all, CPU s", *worths.names], note=NOTE),
                           workloads.engine_works(bench.divisor), worths.cells)
    if table.rows:
        table.rows.append(["most", "any of these", "", *(f"{most:.2f}" for most in worths.most)])
        table.rows.append(["verdict", "any of these", "", *worths.verdicts()])
    return [table]
