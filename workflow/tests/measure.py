#!/usr/bin/python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""measure.py FOLDER [KEY=VALUE...]: what the workflow costs on three virtual nodes, against single runs.

Searches the genomes of FOLDER, with settings of config/config.yaml, and prints wall and processor time of the workflow
and of its jobs, and of one vorlan after the other on the same genomes. $VORLAN_BINARY and $VORLAN_TOOLS_BINARY name the
programs.
"""

from __future__ import annotations

import pathlib
import re
import resource
import sys
import tempfile
import time

import yaml

from slurm_cluster import SlurmCluster
from test_slurm import genomes_in
from workbench import Workbench

# As Snakemake's own; at the end the processor time of all that it has started.
JOBSCRIPT = """\
#!/bin/bash
# properties = {properties}
trap 'times >"FOLDER/times/$SLURM_JOB_ID"' EXIT
{exec_job}
"""


def seconds(text: str) -> float:
    return sum(60 * int(minutes) + float(rest) for minutes, rest in re.findall(r"(\d+)m([\d.]+)s", text))


def children() -> float:
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def measure(folder: pathlib.Path, genomes: dict[str, pathlib.Path], settings: dict) -> None:
    with SlurmCluster(folder / "cluster") as cluster:
        bench = Workbench(folder / "bench", genomes, cluster, **settings)
        (folder / "times").mkdir()
        jobscript = folder / "jobscript.sh"
        jobscript.write_text(JOBSCRIPT.replace("FOLDER", str(folder)))
        begin = time.monotonic()
        before = children()
        status, said = bench.run("--jobscript", str(jobscript))
        wall, snakemake = time.monotonic() - begin, children() - before
        jobs = [seconds(file.read_text().splitlines()[1]) for file in (folder / "times").iterdir()]
        begin, before = time.monotonic(), children()
        failed = [genome for genome in genomes if bench.single_run(genome)[0] != 0]
        single, single_wall = children() - before, time.monotonic() - begin
        print(f"{len(genomes)} genomes, {len(failed)} malformed, {sum(map(bench_size, genomes.values())) / 1e6:.1f} MB")
        print(f"workflow: status {status}, {wall:.0f} s, {len(jobs)} jobs with {sum(jobs):.1f} s of processor time, "
              f"the shortest {min(jobs):.2f} s; Snakemake itself {snakemake:.1f} s")
        print(f"single runs: {single_wall:.0f} s, {single:.1f} s of processor time")
        print(f"reports that differ: {bench.differing()}")
        if status and not failed:
            print(said)


def bench_size(file: pathlib.Path) -> int:
    return file.stat().st_size


if __name__ == "__main__":
    chosen = dict(word.split("=", 1) for word in sys.argv[2:])
    with tempfile.TemporaryDirectory(prefix="vorlan-slurm-") as name:
        measure(pathlib.Path(name), genomes_in(pathlib.Path(sys.argv[1])),
                {key: yaml.safe_load(value) for key, value in chosen.items()})
