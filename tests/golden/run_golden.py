#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Compare a program with golden cases, byte for byte.

    run_golden.py BINARY CASE_DIR [CASE_DIR...]

Status, standard output, standard error (but for the clock of progress lines) and the exact set of files with
their contents must be as the case says, and its why must be its own: two cases with the same why are wrong, for at
least one of them does not say what is special about it. Names the cases that fail and ends with
'N passed, N failed'; status 1 if any failed or none ran.
"""

from __future__ import annotations

import subprocess
import sys
from collections.abc import Callable, Iterable
from pathlib import Path

sys.dont_write_bytecode = True

from golden_case import Outcome, Program, expected, run

LONGEST_LINE_SHOWN = 300


def first_difference(name: str, want: bytes, got: bytes) -> list[str]:
    """The first line that differs, if any."""
    want_lines, got_lines = want.splitlines(keepends=True), got.splitlines(keepends=True)
    for number in range(max(len(want_lines), len(got_lines))):
        pair = [lines[number] if number < len(lines) else None for lines in (want_lines, got_lines)]
        if pair[0] != pair[1]:
            shown = ["(nothing)" if line is None else repr(line)[1:LONGEST_LINE_SHOWN] for line in pair]
            return [f"  {name}, line {number + 1}", f"    expected {shown[0]}", f"    got      {shown[1]}"]
    return []


def compare_files(want: dict[str, bytes], got: dict[str, bytes]) -> list[str]:
    problems = [f"  file {name} is missing" for name in sorted(want.keys() - got.keys())]
    problems += [f"  file {name} should not be there" for name in sorted(got.keys() - want.keys())]
    for name in sorted(want.keys() & got.keys()):
        problems += first_difference(f"file {name}", want[name], got[name])
    return problems


def compare(want: Outcome, got: Outcome) -> list[str]:
    problems = [] if want.status == got.status else [f"  status: expected {want.status}, got {got.status}"]
    problems += first_difference("stdout", want.stdout, got.stdout)
    problems += first_difference("stderr", want.stderr, got.stderr)
    return problems + compare_files(want.files, got.files)


def why_of(case: Path) -> str:
    return " ".join((case / "why").read_text().split())


def problems_of_why(case: Path, first_with: dict[str, str]) -> list[str]:
    """`first_with` holds the case that came first with each why, and learns this one."""
    why = why_of(case)
    name = case.resolve().name
    first = first_with.setdefault(why.casefold(), name)
    if not why:
        return ["  why is empty"]
    return [] if first == name else [f"  why is that of {first}"]


def check(program: Program, case: Path, first_with: dict[str, str] | None = None) -> list[str]:
    """What is wrong with a case; a case that cannot be read or run is wrong, too."""
    try:
        want = expected(case)
        problems = problems_of_why(case, {} if first_with is None else first_with)
        return problems + compare(want, run(program, case))
    except (OSError, ValueError, subprocess.TimeoutExpired) as problem:
        return [f"  {problem}"]


def check_all(cases: Iterable[Path], problems_of: Callable[[Path], list[str]]) -> int:
    """Prints what is wrong with which case, and how many passed. Returns the status of the program: 1 unless all did."""
    passed = failed = 0
    for case in cases:
        if problems := problems_of(case):
            failed += 1
            print("\n".join([f"FAILED {case.resolve().name}"] + problems))
        else:
            passed += 1
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or not passed else 0


def main(words: list[str]) -> int:
    if len(words) < 2:
        sys.stderr.write(__doc__ or "")
        return 1
    program = Program(str(Path(words[0]).resolve()), ("vorlan",))
    first_with: dict[str, str] = {}
    return check_all(map(Path, words[1:]), lambda case: check(program, case, first_with))


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
