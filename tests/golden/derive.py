#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Write what golden cases expect, from the slow reference - never from the program under test.

    derive.py CASE_DIR...

Nobody approves what they have not derived: after this, look at the difference, work out by hand why the new
bytes are right, and say so in the case's why.
"""

from __future__ import annotations

import shutil
import sys
from pathlib import Path

sys.dont_write_bytecode = True

from golden_case import Outcome, Program, inputs, run

REFERENCE = Path(__file__).resolve().parent.parent / "reference"
# The reference is imported, so that it sees the invocation name that the program will see.
START = (f"import sys; sys.dont_write_bytecode = True; sys.path.insert(0, {str(REFERENCE)!r}); "
         "from vorlan_reference import main; sys.exit(main(sys.argv[1:]))")


def reference() -> Program:
    return Program(sys.executable, (sys.executable, "-c", START, "vorlan"))


def write(folder: Path, outcome: Outcome, given: dict[str, bytes]) -> None:
    """Empty streams and unchanged inputs get no file."""
    if folder.exists():
        shutil.rmtree(folder)
    folder.mkdir()
    (folder / "status").write_text(f"{outcome.status}\n")
    made = {f"files/{name}": data for name, data in outcome.files.items() if given.get(name) != data}
    streams = {"stdout": outcome.stdout, "stderr": outcome.stderr}
    for name, data in ({key: value for key, value in streams.items() if value} | made).items():
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        (folder / name).write_bytes(data)


def main(words: list[str]) -> int:
    for case in map(Path, words):
        outcome = run(reference(), case)
        if b"Traceback" in outcome.stderr:
            sys.stderr.write(f"{case}: the reference failed\n{outcome.stderr.decode('latin-1')}")
            return 1
        write(case / "expected", outcome, inputs(case))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
