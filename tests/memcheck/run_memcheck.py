#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Run golden cases under valgrind: no bad access, no use of what was never set, nothing lost.

    run_memcheck.py BINARY CASE_DIR [CASE_DIR...]

Each case must also leave what it says, so that the runs are whole ones. Ends with 'N passed, N failed';
status 1 if any failed or none ran, 77 if there is no valgrind.

It knows no AVX-512, so the program takes narrower vectors there.
"""

from __future__ import annotations

import shutil
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "golden"))

from golden_case import Program
from run_golden import check, check_all

SKIPPED = 77
ERROR_STATUS = "99"  # of no run


def valgrind(executable: str, binary: str, log: Path) -> Program:
    return Program(executable, ("valgrind", "--quiet", "--leak-check=full", "--errors-for-leak-kinds=definite,possible",
                                f"--error-exitcode={ERROR_STATUS}", f"--log-file={log}", binary))


def main(words: list[str]) -> int:
    if len(words) < 2:
        sys.stderr.write(__doc__ or "")
        return 1
    executable = shutil.which("valgrind")
    if executable is None:
        print("skipped: valgrind is not installed")
        return SKIPPED
    with tempfile.TemporaryDirectory(prefix="memcheck-") as folder:
        log = Path(folder) / "log"
        program = valgrind(executable, str(Path(words[0]).resolve()), log)

        def problems_of(case: Path) -> list[str]:
            log.unlink(missing_ok=True)
            problems = check(program, case)
            # With --quiet only errors are logged.
            logged = log.read_text(errors="replace").splitlines() if log.exists() else ["  valgrind did not start"]
            return problems + logged

        return check_all(map(Path, words[1:]), problems_of)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
