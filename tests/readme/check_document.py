#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Run the commands that a document shows and compare what they print with what it shows.

    check_document.py DOCUMENT BINARY

A fenced block tagged "console" holds commands ("$ vorlan ..." or "$ make run ...", others may follow in the same
block), each with the lines that it prints to standard output, byte for byte. A command whose line ends in "|" or
"\\" goes on in the next one. A line "..." stands for any lines, also none; without it nothing may be missing
before, between or behind the lines shown.

A block tagged "bash" is a recipe: one script, in which any failing command, also in front of a pipe, is a
failure. A block tagged "text" behind it shows its output, by the same rules; a recipe without one prints nothing.

A command that fails is a failure whatever it prints. Blocks tagged "sh" show commands without output and are not
run; other blocks are refused, so that no output stands in a document unchecked.

Commands run in a scratch folder with a copy of the examples of the project, so that none writes into the source
tree: a new one for each console block, and one for all recipes of a document, which may use what earlier ones have
made. "make run" is not built here: make tells which command it would run, and BINARY takes its place.

Ends with "N passed, N failed"; status 1 if any failed or there were none.
"""

from __future__ import annotations

import re
import shlex
import shutil
import subprocess
import sys
import tempfile
from collections.abc import Iterator
from dataclasses import dataclass, replace
from pathlib import Path
from types import TracebackType

ENVIRONMENT = {"LC_ALL": "C", "TZ": "UTC", "PYTHONDONTWRITEBYTECODE": "1"}
SYSTEM_PATH = "/usr/local/bin:/usr/bin:/bin"
TIME_LIMIT_SECONDS = 120
FENCE = re.compile(r"^```(\S*)$")
ANY_LINES = "..."
BUILT_BINARY = "build/release/vorlan"


@dataclass(frozen=True)
class Block:
    """A fenced block; the number is that of its first line in the file, from 1."""

    number: int
    section: str
    tag: str
    lines: tuple[str, ...]


@dataclass(frozen=True)
class Example:
    """A command, or the script of a recipe, and the lines that are shown of its output."""

    number: int
    section: str
    command: str
    shown: tuple[str, ...]


class Refused(Exception):
    """A block that cannot be checked."""


def blocks(text: str) -> Iterator[Block]:
    section, tag, start, lines = "", None, 0, []
    for number, line in enumerate(text.split("\n"), 1):
        fence = FENCE.match(line)
        if tag is None and fence:
            tag, start, lines = fence[1], number + 1, []
        elif tag is not None and line == "```":
            yield Block(start, section, tag, tuple(lines))
            tag = None
        elif tag is not None:
            lines.append(line)
        elif line.startswith("#"):
            section = line.lstrip("#").strip()
    if tag is not None:
        raise Refused(f"line {start}: the block does not end")


def commands(block: Block) -> list[Example]:
    """The commands of a console block."""
    if not block.lines or not re.match(r"\$ (vorlan|make run)( |$)", block.lines[0]):
        raise Refused(f"line {block.number}: a console block begins with '$ vorlan' or '$ make run'")
    starts = [i for i, line in enumerate(block.lines) if line.startswith("$ ")]
    return [command(block, start, end) for start, end in zip(starts, [*starts[1:], len(block.lines)])]


def command(block: Block, start: int, end: int) -> Example:
    """The command in the lines from start up to end, without its prompt, and what is shown of its output."""
    shown = start + 1
    while shown < end and block.lines[shown - 1].endswith(("|", "\\")):
        shown += 1
    text = "\n".join(block.lines[start:shown])
    return Example(block.number + start, block.section, text[len("$ "):], block.lines[shown:end])


def groups(text: str) -> Iterator[list[Example]]:
    """What is to be run in one folder: the commands of each console block; all recipes."""
    recipes: list[Example] = []
    is_shown_next = False
    for block in blocks(text):
        if block.tag == "console":
            yield commands(block)
        elif block.tag == "bash":
            recipes.append(Example(block.number, block.section, "\n".join(block.lines), ()))
        elif block.tag == "text" and is_shown_next:
            recipes[-1] = replace(recipes[-1], shown=block.lines)
        elif block.tag != "sh":
            raise Refused(f"line {block.number}: a block must be tagged console, sh or bash, or text behind bash")
        is_shown_next = block.tag == "bash"
    if recipes:
        yield recipes


def pieces(shown: tuple[str, ...]) -> list[list[str]]:
    """What stands between the cuts; n cuts give n + 1 pieces, some of them empty."""
    parts: list[list[str]] = [[]]
    for line in shown:
        if line == ANY_LINES:
            parts.append([])
        else:
            parts[-1].append(line)
    return parts


def find(piece: list[str], printed: list[str], start: int) -> int:
    """Where the piece begins at or behind start; -1 if nowhere."""
    return next((i for i in range(start, len(printed) - len(piece) + 1) if printed[i:i + len(piece)] == piece), -1)


def mismatch(shown: tuple[str, ...], printed: list[str]) -> str:
    """Why the lines are not what was printed; empty if they are."""
    parts = pieces(shown)
    if len(parts) == 1:
        return "" if parts[0] == printed else first_difference(parts[0], printed)
    first, *middle, last = parts
    if printed[:len(first)] != first:
        return first_difference(first, printed[:len(first)])
    position = len(first)
    for piece in middle:
        found = find(piece, printed, position)
        if found < 0:
            return f"these lines do not follow in the output: {piece!r}"
        position = found + len(piece)
    if len(printed) - position < len(last) or printed[len(printed) - len(last):] != last:
        return f"the output does not end with {last!r}"
    return ""


def first_difference(shown: list[str], printed: list[str]) -> str:
    for number in range(max(len(shown), len(printed))):
        pair = [lines[number] if number < len(lines) else None for lines in (shown, printed)]
        if pair[0] != pair[1]:
            return f"line {number + 1} of the output: shown {pair[0]!r}, printed {pair[1]!r}"
    return ""


def command_of_make(command: str, root: Path) -> str:
    """The command that "make run ..." ends with, with vorlan in place of the built program."""
    done = subprocess.run(["make", "--dry-run", "--no-print-directory", "-C", str(root), *shlex.split(command)[1:]],
                          env={**ENVIRONMENT, "PATH": SYSTEM_PATH}, stdout=subprocess.PIPE, text=True, check=True)
    last = done.stdout.rstrip("\n").split("\n")[-1]
    if not last.startswith(f"{BUILT_BINARY} "):
        raise Refused(f"'{command}' ends with {last!r}, not with {BUILT_BINARY}")
    return "vorlan" + last[len(BUILT_BINARY):]


def root_of(document: Path) -> Path:
    """The folder of the project: the nearest one above the document that has examples."""
    return next((folder for folder in document.parents if (folder / "examples").is_dir()), document.parent)


class Workbench:
    """A scratch folder with a copy of the examples, in which commands find BINARY as vorlan, and TOOLS, if given,
    as vorlan-tools."""

    def __init__(self, root: Path, binary: Path, tools: Path | None = None) -> None:
        self._scratch = tempfile.TemporaryDirectory(prefix="document-")
        self.folder, self._binaries = Path(self._scratch.name, "work"), Path(self._scratch.name, "bin")
        self._root = root
        shutil.copytree(root / "examples", self.folder / "examples")
        self._binaries.mkdir()
        (self._binaries / "vorlan").symlink_to(binary)
        if tools:
            (self._binaries / "vorlan-tools").symlink_to(tools)

    def __enter__(self) -> Workbench:
        return self

    def __exit__(self, kind: type[BaseException] | None, problem: BaseException | None,
                 trace: TracebackType | None) -> None:
        self._scratch.cleanup()

    def run(self, script: str) -> list[str]:
        """The lines printed to standard output. Raises CalledProcessError when a command fails."""
        environment = {**ENVIRONMENT, "HOME": str(self.folder), "PATH": f"{self._binaries}:{SYSTEM_PATH}"}
        done = subprocess.run(["bash", "-e", "-o", "pipefail", "-c", script], cwd=self.folder, env=environment,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              encoding="utf-8", timeout=TIME_LIMIT_SECONDS, check=True)
        if done.stdout and not done.stdout.endswith("\n"):
            raise Refused("the output does not end with a line end")
        return done.stdout.split("\n")[:-1]

    def problem(self, example: Example) -> str:
        """What is wrong with the example; empty if nothing is."""
        try:
            is_make = example.command.split()[:1] == ["make"]
            script = command_of_make(example.command, self._root) if is_make else example.command
            return mismatch(example.shown, self.run(script))
        except (OSError, UnicodeDecodeError, Refused, subprocess.SubprocessError) as problem:
            return str(problem)


def main(words: list[str]) -> int:
    if len(words) != 2:
        sys.stderr.write(__doc__ or "")
        return 1
    document, binary = (Path(word).resolve() for word in words)
    passed = failed = 0
    try:
        for group in groups(document.read_text(encoding="utf-8")):
            with Workbench(root_of(document), binary) as workbench:
                for example in group:
                    problem = workbench.problem(example)
                    passed, failed = (passed, failed + 1) if problem else (passed + 1, failed)
                    if problem:
                        print(f"FAILED line {example.number}: {example.command}\n  {problem}")
    except Refused as problem:
        failed += 1
        print(f"FAILED {problem}")
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or not passed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
