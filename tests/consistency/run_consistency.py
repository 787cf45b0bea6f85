#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Run a vorlan binary on random cases and check every report that it writes.

    run_consistency.py BINARY [--cases N] [--seed S] [--only INDEX] [--keep DIRECTORY]

A case depends on the seed and its index alone, so --only runs a failing one again; --keep saves its input and
its report. The run fails on any fault, on an exit status other than 0, and when so few repeats, edits or
bridged Ns were seen that the check would mean little. Ends with "N passed, N failed".
"""

from __future__ import annotations

import argparse
import shlex
import subprocess
import sys
import tempfile
from collections import Counter
from pathlib import Path

from alignment import BRIDGED_N, DELETION, INSERTION, MISMATCH
from check_report import Findings, check_report
from random_case import Case, random_case
from report_settings import ReportError

# They take about 7 seconds with an optimised binary; `make test-slow` runs more, with another seed.
CASES = 1200
SEED = 20240117
SECONDS_PER_CASE = 120
MOST_FAILURES_SHOWN = 20
# A random case yields about twelve repeats and three of each kind of event on average.
LEAST_REPEATS_PER_CASE = 2
LEAST_CASES_FOR_KINDS = 50
KIND_NAMES = {MISMATCH: "mismatches", INSERTION: "insertions", DELETION: "deletions", BRIDGED_N: "bridged Ns"}


def run_binary(binary: Path, case: Case, directory: Path) -> tuple[bytes, list[str]]:
    """The report of one case, and what went wrong before it can be checked."""
    (directory / "in.fa").write_bytes(case.fasta)
    try:
        done = subprocess.run([binary, *case.options, "in.fa", "out.txt"], cwd=directory, stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=SECONDS_PER_CASE, check=False)
    except subprocess.TimeoutExpired:
        return b"", [f"did not end within {SECONDS_PER_CASE} seconds"]
    report = directory / "out.txt"
    faults = [] if done.returncode == 0 else [f"exit status {done.returncode}: {done.stderr[-200:]!r}"]
    if done.stdout:
        faults.append(f"standard output holds {done.stdout[:100]!r} although a report file was named")
    return (report.read_bytes() if report.exists() else b""), faults


def findings_of(report: bytes, faults: list[str], case: Case) -> Findings:
    """All faults of one run; none of the generated float settings has more than six digits."""
    try:
        findings = Findings() if faults else check_report(report, case.fasta, floats_are_short=True)
    except ReportError as fault:
        findings = Findings([str(fault)])
    findings.faults += faults
    return findings


def check_case(binary: Path, case: Case, keep: Path | None) -> Findings:
    with tempfile.TemporaryDirectory() as name:
        report, faults = run_binary(binary, case, Path(name))
    findings = findings_of(report, faults, case)
    if findings.faults and keep is not None:
        keep.mkdir(parents=True, exist_ok=True)
        (keep / "in.fa").write_bytes(case.fasta)
        (keep / "out.txt").write_bytes(report)
    return findings


def print_failure(seed: int, index: int, case: Case, faults: list[str]) -> None:
    print(f"FAILED --seed {seed} --only {index}: vorlan {shlex.join(case.options)} in.fa out.txt")
    for fault in faults[:10]:
        print(f"    {fault}")
    if len(faults) > 10:
        print(f"    and {len(faults) - 10} more")


def coverage_faults(cases: int, repeats: int, kinds: Counter[str]) -> list[str]:
    """Reasons why the run proves too little."""
    if cases == 0:
        return ["no case was run"]
    faults = []
    if repeats < LEAST_REPEATS_PER_CASE * cases:
        faults.append(f"too few repeats seen: {repeats} in {cases} cases")
    if cases >= LEAST_CASES_FOR_KINDS:
        faults += [f"too few {name} seen: {kinds[kind]} in {cases} cases"
                   for kind, name in KIND_NAMES.items() if kinds[kind] < cases]
    return faults


def run_cases(binary: Path, seed: int, indices: range, keep: Path | None) -> int:
    """Exit status of the whole run."""
    failed = repeats = 0
    kinds: Counter[str] = Counter()
    for index in indices:
        case = random_case(f"{seed}/{index}")
        findings = check_case(binary, case, keep / str(index) if keep else None)
        repeats += findings.repeats
        kinds.update(findings.kinds)
        if findings.faults:
            failed += 1
        if findings.faults and failed <= MOST_FAILURES_SHOWN:
            print_failure(seed, index, case, findings.faults)
    seen = ", ".join(f"{kinds[kind]} {name}" for kind, name in KIND_NAMES.items())
    print(f"seed {seed}: {repeats} repeats with {seen}")
    shortfalls = [] if len(indices) == 1 else coverage_faults(len(indices), repeats, kinds)
    if failed > MOST_FAILURES_SHOWN:
        print(f"and {failed - MOST_FAILURES_SHOWN} more failing cases")
    for shortfall in shortfalls:
        print(f"FAILED: {shortfall}")
    print(f"{len(indices) - failed} passed, {failed} failed")
    return 1 if failed or shortfalls else 0


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("binary", type=Path)
    parser.add_argument("--cases", type=int, default=CASES)
    parser.add_argument("--seed", type=int, default=SEED)
    parser.add_argument("--only", type=int, metavar="INDEX", help="run this case alone")
    parser.add_argument("--keep", type=Path, metavar="DIRECTORY", help="save input and report of failing cases")
    options = parser.parse_args()
    indices = range(options.cases) if options.only is None else range(options.only, options.only + 1)
    return run_cases(options.binary.resolve(), options.seed, indices, options.keep)


if __name__ == "__main__":
    sys.exit(main())
