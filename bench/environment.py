# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""What a result was measured on: commit, machine, compiler."""

from __future__ import annotations

import re
import subprocess
from pathlib import Path

BENCH = Path(__file__).resolve().parent


def first_line_of(command: list[str]) -> str:
    try:
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, cwd=BENCH, text=True)
    except OSError:
        return ""
    return done.stdout.split("\n", 1)[0] if done.returncode == 0 else ""


def commit() -> str:
    return first_line_of(["git", "--no-optional-locks", "describe", "--always", "--dirty", "--abbrev=10",
                          "--exclude=*"]) or "unknown"


def machine() -> str:
    try:
        text = subprocess.run(["lscpu"], stdout=subprocess.PIPE, env={"LC_ALL": "C", "PATH": "/usr/bin:/bin"},
                              text=True, check=True).stdout
    except (OSError, subprocess.CalledProcessError):
        return "unknown"
    values = dict(re.findall(r"^([^:]+):\s*(.*)$", text, re.MULTILINE))
    return f"{values.get('Model name', 'unknown')}, {values.get('CPU(s)', '?')} cores"


def cmake_cache(build: Path) -> dict[str, str]:
    return dict(re.findall(r"^([A-Z_]+):[A-Z]+=(.*)$", (build / "CMakeCache.txt").read_text(), re.MULTILINE))


def compiler(build: Path) -> str:
    """The compiler and the flags of the build."""
    cache = cmake_cache(build)
    build_type = cache.get("CMAKE_BUILD_TYPE", "")
    flags = f"{cache.get('CMAKE_CXX_FLAGS', '')} {cache.get(f'CMAKE_CXX_FLAGS_{build_type.upper()}', '')}"
    version = first_line_of([cache.get("CMAKE_CXX_COMPILER", "c++"), "--version"])
    return f"{version}; build type {build_type or 'none'}, flags {' '.join(flags.split()) or 'none'}"
