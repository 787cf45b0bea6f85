# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Builds the program with another value of a constant, in a copy of the sources."""

from __future__ import annotations

import re
import shutil
import subprocess
from pathlib import Path

from environment import cmake_cache
from tuned_constants import Constant

ROOT = Path(__file__).resolve().parents[1]
SOURCES = ("CMakeLists.txt", "cmake", "src")


class NoVariant(Exception):
    """A variant cannot be built; the text says why."""


class VariantBuilder:
    def __init__(self, build: Path) -> None:
        self.folder = build.resolve() / "variants"
        self.source = self.folder / "source"
        self.build = self.folder / "build"
        shutil.rmtree(self.folder, ignore_errors=True)
        self.source.mkdir(parents=True)
        for name in SOURCES:
            copy = shutil.copytree if (ROOT / name).is_dir() else shutil.copy2
            copy(ROOT / name, self.source / name)
        cache = cmake_cache(build)
        same = [f"-D{name}={cache[name]}" for name in ("CMAKE_BUILD_TYPE", "CMAKE_CXX_COMPILER", "CMAKE_CXX_FLAGS",
                                                       "CMAKE_CXX_FLAGS_RELEASE") if name in cache]
        # Nothing is installed from here, so the documents that would be are not needed.
        self.run("cmake", "-G", "Ninja", "-S", self.source, "-B", self.build, "-DVORLAN_TESTS=OFF", *same)

    @staticmethod
    def run(*command: str | Path) -> None:
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if done.returncode != 0:
            raise NoVariant(f"does not build:\n{done.stdout[-2000:]}")

    def value_of(self, constant: Constant) -> str:
        """The present value."""
        found = re.findall(constant.pattern, (ROOT / constant.file).read_text())
        if len(found) != 1:
            raise NoVariant(f"{constant.name} is defined {len(found)} times in {constant.file}, not once")
        return found[0][1]

    def program(self, name: str) -> Path:
        """Builds what stands in the copy; the program stays when the copy changes."""
        self.run("cmake", "--build", self.build, "--target", "vorlan")
        kept = self.folder / name
        shutil.copy2(self.build / "vorlan", kept)
        return kept

    def variant(self, constant: Constant, value: str) -> Path:
        file = self.source / constant.file
        text = file.read_text()
        file.write_text(re.sub(constant.pattern, lambda found: found[1] + value + found[3], text))
        try:
            return self.program(f"{constant.label}-{constant.values.index(value)}")
        finally:
            file.write_text(text)
