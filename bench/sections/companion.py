# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The companion program: what it takes against the search that made the report, and all cores against one."""

from __future__ import annotations

import os
import statistics
import subprocess
import time
from pathlib import Path

from bench import Bench
from inputs import Unavailable
from measure import REPORT_NAME, RunFailed, limited_run
from tables import Table
from workloads import DEFAULTS, FALCIPARUM, YEAST, Work, genome

COMPANION = "bin/vorlan-tools"
OUTPUT = "companion.out"
# A subcommand that writes a report in another form may take no more than this part of the search; one that works out
# something new, twice that.
MOST_OF_THE_SEARCH = 0.1
MOST_OF_THE_SEARCH_FOR_NEW = 0.2
WORK_OUT_SOMETHING_NEW = ("catalog", "resolve", "ssr", "monomers")
# FASTA stands for the genome.
COMMANDS = ["check", "check -g FASTA", "merge", "mask -g FASTA", "mask -g FASTA -O z", "catalog -t trgt -g FASTA",
            "catalog -t eh -g FASTA", "resolve", "resolve --strategy tile", "ssr", "monomers -g FASTA",
            *(f"convert -t {target}{more}" for target, more in (
                ("bed", ""), ("bed", " -O z"), ("gff3", ""), ("gff3", " -O z"), ("jsonl", ""), ("jsonl", " -O z"),
                ("tsv", ""), ("sam", ""), ("bam", ""), ("paf", "")))]
# For the wall time of what compresses its output.
THREADS = ("-@", "2")
# Million bytes of a report in a second, at least.
LEAST_RATE = {"convert -t bed": 150.0, "convert -t bam": 50.0}
# Wall time of `run` as a part of that of the plain run, at most, by the number of processes.
MOST_OF_THE_PLAIN_RUN = {1: 1.1, 2: 0.6}


def median_cpu(command: list[str], folder: Path, runs: int) -> float:
    used = [limited_run(command, folder) for _ in range(runs)]
    if any(usage.status != 0 for usage in used):
        raise RunFailed(f"{' '.join(command)}: status {used[0].status}")
    return statistics.median(usage.cpu_seconds for usage in used)


def is_compressed(name: str) -> bool:
    return name.endswith(" -O z") or name == "convert -t bam"


def command_of(bench: Bench, name: str, fasta: str, *more: str) -> list[str]:
    words = name.replace("FASTA", fasta).split()
    output = [] if words[0] == "check" else ["-o", OUTPUT]
    return [str(companion(bench)), *words, *more, *output, REPORT_NAME]


def wall_seconds(command: list[str], folder: Path) -> float:
    begin = time.perf_counter()
    done = subprocess.run(command, cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
    if done.returncode != 0:
        raise RunFailed(f"{' '.join(command)}: status {done.returncode}")
    return time.perf_counter() - begin


def wall_parts(bench: Bench, search: list[str], fasta: str) -> dict[str, float]:
    """Of what compresses: its wall time with THREADS as a part of that of the search, in alternating runs."""
    folder = bench.vorlan.folder
    parts: dict[str, list[float]] = {name: [] for name in COMMANDS if is_compressed(name)}
    for _ in range(bench.runs):
        whole = wall_seconds(search, folder)
        for name, ratios in parts.items():
            ratios.append(wall_seconds(command_of(bench, name, fasta, *THREADS), folder) / whole)
    return {name: statistics.median(ratios) for name, ratios in parts.items()}


def judged(part: float, wall_part: float | None, most: float) -> str:
    if part <= most:
        return "kept"
    return "kept in wall time" if wall_part is not None and wall_part <= most else "NOT KEPT"


def against_the_search(bench: Bench, work: Work) -> Table:
    table = Table(f"The companion against the search ({work.title})",
                  ["subcommand", "CPU s", "MB of report per s", "required", "of the search's CPU",
                   f"wall time with {' '.join(THREADS)}, of the search's", "at most", "verdict"])
    folder = bench.vorlan.folder
    fasta = str(bench.store.file(work.input).path)
    search = [*bench.vorlan.command, *work.options, fasta, REPORT_NAME]
    whole = median_cpu(search, folder, bench.runs)
    size = (folder / REPORT_NAME).stat().st_size / 1e6
    walls = wall_parts(bench, search, fasta)
    table.note = (f"The search took {whole:.3f} CPU s and wrote {size:.1f} MB. CPU s and rates are those of one thread. "
                  "What compresses its output spends about half of its CPU time, or more, in the library that compresses. "
                  "Where such a row takes more than its part of the search's CPU time, its wall time with two threads that "
                  "compress is held against that of the search, and the verdict says so. "
                  f"The machine has {os.cpu_count()} cores; its load then was {os.getloadavg()[0]:.1f}.")
    for name in COMMANDS:
        taken = median_cpu(command_of(bench, name, fasta), folder, bench.runs)
        least = LEAST_RATE.get(name)
        wall = walls.get(name)
        most = MOST_OF_THE_SEARCH_FOR_NEW if name.split()[0] in WORK_OUT_SOMETHING_NEW else MOST_OF_THE_SEARCH
        verdict = judged(taken / whole, wall, most) if least is None or size / taken >= least else "NOT KEPT"
        table.rows.append([name, f"{taken:.3f}", f"{size / taken:.0f}", f"{least:g}" if least else "–",
                           f"{taken / whole:.3f}", f"{wall:.3f}" if wall is not None else "–", f"{most:g}",
                           bench.verdict(verdict)])
    return table


def all_cores(bench: Bench) -> Table:
    """In alternating runs; other work on the machine shows in the wall time."""
    folder = bench.vorlan.folder
    both = folder / "both.fa"
    with open(both, "wb") as target:
        for name in (YEAST, FALCIPARUM):
            target.write(bench.store.file(genome(name, bench.divisor)).path.read_bytes())
    plain = [*bench.vorlan.command, str(both), REPORT_NAME]
    program = ["--vorlan", bench.vorlan.command[0]]
    parts: dict[int, list[float]] = {jobs: [] for jobs in MOST_OF_THE_PLAIN_RUN}
    for _ in range(bench.runs):
        whole = wall_seconds(plain, folder)
        for jobs, ratios in parts.items():
            command = [str(companion(bench)), "run", "-q", "-j", str(jobs), *program, "--", str(both), "cores.txt"]
            ratios.append(wall_seconds(command, folder) / whole)
    table = Table("Several cores against one (yeast and falciparum in one file)",
                  ["processes", "of the wall time of the plain run", "at most", "verdict"],
                  note=f"The machine has {os.cpu_count()} cores; its load at the end was {os.getloadavg()[0]:.1f}.")
    for jobs, ratios in parts.items():
        middle, most = statistics.median(ratios), MOST_OF_THE_PLAIN_RUN[jobs]
        table.rows.append([str(jobs), f"{middle:.3f}", f"{most:g}",
                           bench.verdict("kept" if middle <= most else "NOT KEPT")])
    return table


def companion(bench: Bench) -> Path:
    path = (bench.build / COMPANION).resolve()
    if not path.is_file():
        raise Unavailable(f"{bench.build} holds no {COMPANION}")
    return path


def tools(bench: Bench) -> list[Table]:
    tables = []
    works = [Work(DEFAULTS, genome(name, bench.divisor)) for name in (FALCIPARUM, YEAST)]
    for title, make in [*((work.title, lambda work=work: against_the_search(bench, work)) for work in works),
                        ("several cores", lambda: all_cores(bench))]:
        try:
            companion(bench)
            tables.append(make())
        except Unavailable as reason:
            bench.skipped.append(f"tools ({title}): {reason}")
        except RunFailed as failure:
            bench.errors.append(f"tools: {failure}")
    return tables
