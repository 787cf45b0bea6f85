#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Check that a program carries the protections that it is built with, as readelf shows them.

    check_hardening.py BINARY

Prints each protection that is missing, then 'N protections, N missing'; status 1 if any is missing.
"""

from __future__ import annotations

import re
import subprocess
import sys

WORDS_OF_A_SEGMENT = re.compile(r"^  (\w+) +(?:0x[0-9a-f]+ +){5}([R ][W ][E ])", re.MULTILINE)


class Program:
    """What readelf tells about a program."""

    def __init__(self, binary: str) -> None:
        self.header = readelf("--file-header", binary)
        self.dynamic = readelf("--dynamic", binary)
        self.symbols = readelf("--dyn-syms", binary)
        segments: list[tuple[str, str]] = WORDS_OF_A_SEGMENT.findall(readelf("--segments", binary))
        if not any(kind == "LOAD" for kind, _ in segments):
            raise ValueError(f"{binary}: no segments are shown")
        self.segments = segments

    def is_position_independent(self) -> bool:
        """A shared object can be loaded anywhere, too: only the flag says that this one is a program."""
        return bool(re.search(r"Type: +DYN ", self.header)) and bool(re.search(r"FLAGS_1.* PIE\b", self.dynamic))

    def has_read_only_relocations(self) -> bool:
        return any(kind == "GNU_RELRO" for kind, _ in self.segments)

    def binds_all_symbols_at_start(self) -> bool:
        """Without it the table of functions stays writable, whatever the segment says."""
        return bool(re.search(r"\((?:FLAGS\) +BIND_NOW|BIND_NOW\)|FLAGS_1\).* NOW\b)", self.dynamic))

    def has_stack_without_code(self) -> bool:
        """Without the entry the system makes the stack executable."""
        return [flags for kind, flags in self.segments if kind == "GNU_STACK"] == ["RW "]

    def has_no_segment_to_write_and_run(self) -> bool:
        return not any("W" in flags and "E" in flags for _, flags in self.segments)

    def checks_return_addresses(self) -> bool:
        return bool(re.search(r"\b__stack_chk_fail\b", self.symbols))


PROTECTIONS = {
    "position-independent": Program.is_position_independent,
    "relocations read-only": Program.has_read_only_relocations,
    "symbols bound at the start": Program.binds_all_symbols_at_start,
    "stack not executable": Program.has_stack_without_code,
    "no segment both writable and executable": Program.has_no_segment_to_write_and_run,
    "stack protector": Program.checks_return_addresses,
}


def readelf(what: str, binary: str) -> str:
    environment = {"PATH": "/usr/bin:/bin", "LC_ALL": "C"}
    return subprocess.run(["readelf", "--wide", what, binary], env=environment, check=True,
                          capture_output=True, text=True).stdout


def missing_protections(binary: str) -> list[str]:
    program = Program(binary)
    return [name for name, holds in PROTECTIONS.items() if not holds(program)]


def main(words: list[str]) -> int:
    if len(words) != 1:
        sys.stderr.write(__doc__ or "")
        return 2
    missing = missing_protections(words[0])
    for name in missing:
        print(f"missing: {name}")
    print(f"{len(PROTECTIONS)} protections, {len(missing)} missing")
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
