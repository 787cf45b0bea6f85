# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Single stages, timed by vorlan_kernels."""

from __future__ import annotations

import json
import subprocess

from bench import KERNELS, Bench
from tables import Table

QUICK_SECONDS = "0.01"
REPETITIONS = 5


def kernels(bench: Bench) -> list[Table]:
    # --only names rows of other tables.
    if bench.only:
        return []
    options = [f"--benchmark_min_time={QUICK_SECONDS}"] if bench.quick else [
        f"--benchmark_repetitions={REPETITIONS}", "--benchmark_enable_random_interleaving=true"]
    command = [bench.build / KERNELS, "--benchmark_format=json", *options]
    done = subprocess.run(command, stdout=subprocess.PIPE, text=True)
    if done.returncode != 0:
        bench.errors.append(f"kernels: status {done.returncode}")
        return []
    table = Table("Kernels", ["kernel", "CPU ms", "million items per CPU s"], note=(
        "CPU time of one call, the median of repetitions. Items are bases, starts that are judged, or decisions."))
    for result in json.loads(done.stdout)["benchmarks"]:
        if "error_message" in result:
            bench.errors.append(f"{result['name']}: {result['error_message']}")
        elif bench.quick or result.get("aggregate_name") == "median":
            table.rows.append([result["run_name"], f"{result['cpu_time']:.4g}",
                               f"{result['items_per_second'] / 1e6:.3f}"])
    return [table]
