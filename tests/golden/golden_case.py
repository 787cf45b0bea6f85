# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""A golden case: a folder with a command line, its input files and what the run must leave behind.

    cmd       the arguments, one line, quoted as for a shell
    why       one line of prose: why these bytes are right
    ...       input files, copied to the folder in which the program runs
    expected/ status, stdout and stderr (missing: empty), files/NAME for every file created or changed
"""

from __future__ import annotations

import re
import shlex
import shutil
import subprocess
import tempfile
from dataclasses import dataclass, field
from pathlib import Path

CLOCK = re.compile(rb"^\d\d+\.\d\d\.\d\d - ", re.MULTILINE)
NO_CLOCK = b"HH.MM.SS - "
NOT_INPUT = {"cmd", "why", "expected"}
ENVIRONMENT = {"PATH": "/usr/bin:/bin", "LC_ALL": "C", "TZ": "UTC"}
TIME_LIMIT_SECONDS = 120


@dataclass
class Outcome:
    """What a run left behind; files holds all files of its folder, inputs included."""

    status: int
    stdout: bytes = b""
    stderr: bytes = b""
    files: dict[str, bytes] = field(default_factory=dict)


@dataclass(frozen=True)
class Program:
    """How a program is started; the words stand before the arguments of the case, the first is argv[0]."""

    executable: str
    words: tuple[str, ...]


def read_or_empty(path: Path) -> bytes:
    return path.read_bytes() if path.exists() else b""


def read_files(folder: Path) -> dict[str, bytes]:
    return {path.relative_to(folder).as_posix(): path.read_bytes()
            for path in sorted(folder.rglob("*")) if path.is_file()}


def arguments(case: Path) -> list[str]:
    return shlex.split((case / "cmd").read_text())


def inputs(case: Path) -> dict[str, bytes]:
    return {name: data for name, data in read_files(case).items() if name.split("/")[0] not in NOT_INPUT}


def expected(case: Path) -> Outcome:
    folder = case / "expected"
    files = inputs(case) | read_files(folder / "files")
    return Outcome(int((folder / "status").read_text()), read_or_empty(folder / "stdout"),
                   read_or_empty(folder / "stderr"), files)


def copy_inputs(case: Path, folder: Path) -> None:
    for name, data in inputs(case).items():
        target = folder / name
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_bytes(data)


def run(program: Program, case: Path) -> Outcome:
    """Run a case in a fresh folder, without the caller's environment and standard input."""
    folder = Path(tempfile.mkdtemp(prefix="golden-"))
    try:
        copy_inputs(case, folder)
        done = subprocess.run([*program.words, *arguments(case)], executable=program.executable, cwd=folder,
                              env=ENVIRONMENT, stdin=subprocess.DEVNULL, capture_output=True,
                              timeout=TIME_LIMIT_SECONDS, check=False)
        return Outcome(done.returncode, done.stdout, CLOCK.sub(NO_CLOCK, done.stderr), read_files(folder))
    finally:
        shutil.rmtree(folder)
