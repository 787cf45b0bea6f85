#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Compare what several builds of vorlan leave behind: report, masked file, console and status, byte for byte.

    compare_builds.py BINARY... [--cases N] [--seed S]

Each case is a random input with random options. The first binary also gets each input in other layouts, which
must not change anything, and all of them in turn through a pipe. With a single binary only that is compared.
Ends with the number of cases and runs; differences are shown with what is needed to repeat them.
"""

from __future__ import annotations

import argparse
import random
import re
import shlex
import subprocess
import sys
import tempfile
from collections.abc import Iterator
from dataclasses import dataclass
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "consistency"))
from random_case import Case, random_case, random_fasta  # noqa: E402

CASES = 400
SEED = 1
# Every so often a case is long enough for arrays, blocks of starts and stored ways to come into play.
LONG_CASE_EVERY, LONG_SEQUENCE = 10, 30_000
LONG_CASE_OPTIONS = [["-U", "10"], ["-u", "2", "-U", "40"], ["-R", "25"], ["-M", "exact", "-U", "60"],
                     ["-M", "extendExact"], ["-m", "-3", "-g", "-4", "-r", "4"]]
SECONDS_PER_RUN = 600
CLOCK = re.compile(rb"^\d\d+\.\d\d\.\d\d - ", re.MULTILINE)
WIDTHS = (1, 7, 61, 80, 1000)
LINE_ENDS = (b"\n", b"\r\n", b"\r")
ENVIRONMENT = {"PATH": "/usr/bin:/bin", "LC_ALL": "C", "TZ": "UTC"}


@dataclass(frozen=True)
class Left:
    """What a run leaves behind."""

    status: int
    report: bytes
    console: bytes
    masked: bytes

    def differences(self, other: Left) -> list[str]:
        return [f"{name} differs" for name in ("status", "report", "console", "masked")
                if getattr(self, name) != getattr(other, name)]


def numbered_case(seed: int, index: int) -> Case:
    """A case in each of the output formats in turn, with masking."""
    chance = random.Random(f"{seed}/{index}")
    if index % LONG_CASE_EVERY == 0:
        return Case([*chance.choice(LONG_CASE_OPTIONS), "--outputFormat", str(index // LONG_CASE_EVERY % 5), "--maskX"],
                    random_fasta(chance, LONG_SEQUENCE))
    case = random_case(f"{seed}/{index}")
    options = list(case.options)
    options[options.index("--outputFormat") + 1] = str(index % 5)
    return Case([*options, "--maskX"], case.fasta)


def run(binary: Path, case: Case, folder: Path, piped: bool = False) -> Left:
    """Run on a file called in.fa, or on a pipe under the same name."""
    name, masked = folder / "in.fa", folder / "in.fa.masked"
    for path in (name, masked):
        path.unlink(missing_ok=True)
    if piped:
        name.symlink_to("/dev/stdin")
    else:
        name.write_bytes(case.fasta)
    done = subprocess.run([binary, *case.options, "in.fa"], cwd=folder, capture_output=True, env=ENVIRONMENT,
                          timeout=SECONDS_PER_RUN, check=False, input=case.fasta if piped else b"")
    return Left(done.returncode, done.stdout, CLOCK.sub(b"HH.MM.SS - ", done.stderr), masked.read_bytes())


def layouts(case: Case) -> Iterator[tuple[str, Case]]:
    """The same records in other lines."""
    records = [record.splitlines() for record in case.fasta.split(b">")[1:]]
    for index, width in enumerate(WIDTHS):
        end = LINE_ENDS[index % len(LINE_ENDS)]
        text = b""
        for header, *lines in records:
            residues = b"".join(lines)
            text += b">" + header + end
            text += b"".join(residues[at:at + width] + end for at in range(0, len(residues), width))
        yield f"lines of {width} residues that end in {end!r}", Case(case.options, text)


def faults_of(binaries: list[Path], case: Case, folder: Path) -> tuple[int, list[str]]:
    """How many runs were made, and in what they differ."""
    first = run(binaries[0], case, folder)
    others = [(str(binary), run(binary, case, folder)) for binary in binaries[1:]]
    others += [(layout, run(binaries[0], other, folder)) for layout, other in layouts(case)]
    others.append(("through a pipe", run(binaries[0], case, folder, piped=True)))
    faults = [f"{what}: {difference}" for what, left in others for difference in first.differences(left)]
    if first.status != 0:
        faults.append(f"{binaries[0]}: status {first.status}")
    return 1 + len(others), faults


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("binaries", metavar="BINARY", nargs="+", type=lambda name: Path(name).resolve())
    parser.add_argument("--cases", type=int, default=CASES)
    parser.add_argument("--seed", type=int, default=SEED)
    arguments = parser.parse_args()
    if arguments.cases < 1:
        parser.error("no cases, no comparison")

    runs = failed = 0
    with tempfile.TemporaryDirectory(prefix="vorlan-builds-") as folder:
        for index in range(arguments.cases):
            case = numbered_case(arguments.seed, index)
            made, faults = faults_of(arguments.binaries, case, Path(folder))
            runs += made
            failed += bool(faults)
            if faults:
                print(f"case {index} of seed {arguments.seed}: {shlex.join(case.options)}", *faults, sep="\n  ")
    print(f"{len(arguments.binaries)} builds, {arguments.cases} cases, {runs} runs: {failed} cases differ")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
