# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The program of an earlier commit, whose speed is the yardstick and whose reports are right."""

from __future__ import annotations

import subprocess
from pathlib import Path

from environment import cmake_cache

COMMIT = "808686c"
ROOT = Path(__file__).resolve().parents[1]


class NoYardstick(Exception):
    """The earlier program cannot be built; the text says why."""


def has_history() -> bool:
    """Whether this tree is a checkout that has the commit: not one in a folder of another project."""
    found = subprocess.run(["git", "cat-file", "-e", f"{COMMIT}^{{commit}}"], cwd=ROOT, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL)
    return found.returncode == 0


def extract(source: Path) -> None:
    source.mkdir(parents=True, exist_ok=True)
    archive = subprocess.Popen(["git", "archive", COMMIT], cwd=ROOT, stdout=subprocess.PIPE)
    unpacked = subprocess.run(["tar", "-x", "-C", source], stdin=archive.stdout)
    if archive.wait() != 0 or unpacked.returncode != 0:
        raise NoYardstick(f"The files of commit {COMMIT} could not be taken out of git.")


def program(build: Path) -> Path:
    """The program, built with the compiler and the flags of `build` into its folder yardstick; built once."""
    folder = build.resolve() / "yardstick" / COMMIT
    binary = folder / "build" / "vorlan"
    if binary.is_file():
        return binary
    try:
        if not has_history():
            raise NoYardstick(f"The comparison with commit {COMMIT} needs a git checkout with its history, not only "
                              "the files of one version.")
        extract(folder / "source")
    except FileNotFoundError as missing:
        raise NoYardstick(f"The comparison with commit {COMMIT} needs {missing.filename}.") from missing
    cache = cmake_cache(build)
    same = [f"-D{name}={cache[name]}" for name in ("CMAKE_BUILD_TYPE", "CMAKE_CXX_COMPILER", "CMAKE_CXX_FLAGS",
                                                   "CMAKE_CXX_FLAGS_RELEASE") if name in cache]
    for command in (["cmake", "-G", "Ninja", "-S", folder / "source", "-B", folder / "build", "-DVORLAN_TESTS=OFF",
                     *same],
                    ["cmake", "--build", folder / "build", "--target", "vorlan"]):
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if done.returncode != 0:
            raise NoYardstick(f"Commit {COMMIT} could not be built:\n{done.stdout}")
    return binary
