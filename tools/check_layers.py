#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Checks which folder of src/ includes which, and that no header includes itself through others.

usage: check_layers.py [SRC]

A folder may include headers of itself and of the folders that LAYERS names for it, no others. The
exit status is 0 if that holds, else 1, with a line for each include that does not fit.
"""

import re
import sys
from pathlib import Path

LAYERS = {
    "main.cpp": {"driver"},
    "config": set(),
    "input": set(),
    "search": {"config", "input"},
    "imperfect": {"config", "input", "search"},
    "output": {"config", "input", "search"},
    "driver": {"config", "input", "search", "imperfect", "output"},
}
INCLUDE = re.compile(r'^#include "([^"]+)"', re.MULTILINE)


def folder_of(name: str) -> str:
    return name.split("/")[0]


def includes_of(src: Path) -> dict[str, list[str]]:
    files = sorted(path for path in src.rglob("*") if path.suffix in (".h", ".cpp"))
    return {str(path.relative_to(src)): INCLUDE.findall(path.read_text()) for path in files}


def wrong_layers(includes: dict[str, list[str]]) -> list[str]:
    return [f"{name} includes {header}: {folder_of(name)}/ may not depend on {folder_of(header)}/"
            for name, headers in includes.items() for header in headers
            if folder_of(header) not in LAYERS[folder_of(name)] | {folder_of(name)}]


def circle_from(start: str, includes: dict[str, list[str]]) -> list[str] | None:
    """A way of includes that leads from a file back to it."""
    ways = [[start]]
    seen = set()
    while ways:
        way = ways.pop()
        for header in includes.get(way[-1], []):
            if header == start:
                return way + [start]
            if header not in seen:
                seen.add(header)
                ways.append(way + [header])
    return None


def main() -> int:
    src = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).parent.parent / "src"
    includes = includes_of(src)
    if not includes:
        print(f"no sources in {src}", file=sys.stderr)
        return 1
    problems = wrong_layers(includes)
    circles = (circle_from(name, includes) for name in includes)
    problems += [" -> ".join(circle) for circle in circles if circle]
    for problem in problems:
        print(problem, file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
