# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Runs the two programs in a folder of the test's own."""

from __future__ import annotations

import os
import pathlib
import subprocess
import tempfile
import unittest

VORLAN = os.environ["VORLAN_BINARY"]
TOOLS = os.environ["VORLAN_TOOLS_BINARY"]
MALFORMED = 231


class ProgramTest(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.temporary = self.folder / "tmp"
        self.temporary.mkdir()

    def environment(self) -> dict[str, str]:
        return {**os.environ, "TMPDIR": str(self.temporary)}

    def execute(self, program: str, arguments: list[str | bytes], **options) -> subprocess.CompletedProcess:
        options.setdefault("stdin", subprocess.DEVNULL)
        if "input" in options:
            del options["stdin"]
        options.setdefault("stdout", subprocess.PIPE)
        return subprocess.run([program, *arguments], cwd=self.folder, stderr=subprocess.PIPE, timeout=300,
                              env=self.environment(), check=False, **options)

    def vorlan(self, *arguments: str | bytes, **options) -> subprocess.CompletedProcess:
        return self.execute(VORLAN, list(arguments), **options)

    def tools(self, *arguments: str | bytes, **options) -> subprocess.CompletedProcess:
        return self.execute(TOOLS, list(arguments), **options)

    def run_tool(self, *arguments: str | bytes, jobs: int = 2, slice_size: int = 1, flags: tuple[str, ...] = (),
                 **options) -> subprocess.CompletedProcess:
        """vorlan-tools run with the arguments of vorlan, by default a slice for each record."""
        return self.tools("run", "--vorlan", VORLAN, "-j", str(jobs), "--slice-size", str(slice_size), *flags,
                          "--", *arguments, **options)

    def write(self, name: str, data: bytes) -> pathlib.Path:
        path = self.folder / name
        path.write_bytes(data)
        return path

    def read(self, name: str) -> bytes:
        return (self.folder / name).read_bytes()

    def take(self, name: str) -> bytes | None:
        """The file's bytes; it is removed. None if there is no such file."""
        path = self.folder / name
        if not path.exists():
            return None
        data = path.read_bytes()
        path.unlink()
        return data

    def names(self) -> set[str]:
        return {path.name for path in self.folder.iterdir()}

    def assert_nothing_is_left(self) -> None:
        self.assertEqual(list(self.temporary.iterdir()), [])
        self.assertEqual([name for name in self.names() if "vorlan-run" in name], [])

    def assert_refused(self, outcome: subprocess.CompletedProcess, status: int, words: str) -> None:
        """One sentence that holds the words, and that status."""
        self.assertEqual(outcome.returncode, status, outcome.stderr)
        lines = outcome.stderr.decode(errors="replace").splitlines()
        self.assertEqual(len(lines), 1, outcome.stderr)
        self.assertTrue(lines[0].startswith("vorlan-tools: "), lines[0])
        self.assertIn(words, lines[0])
