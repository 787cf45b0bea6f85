# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The check of the protections must see each that is missing: programs are built with all but one.

The environment variable CXX names the compiler.
"""

from __future__ import annotations

import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True

import check_hardening

# Has an array for the stack protector to guard.
SOURCE = r"""
#include <cstdio>
#ifdef WRITABLE_CODE
asm(".section .writable_code, \"awx\"; .byte 0; .text");
#endif
int main(int argc, char**) {
  char text[100];
  std::sprintf(text, "%d", argc);
  return std::puts(text);
}
"""

FLAGS = {
    "optimise": "-O2",
    "stack protector": "-fstack-protector-strong",
    "code": "-fPIE",
    "program": "-pie",
    "relocations": "-Wl,-z,relro",
    "binding": "-Wl,-z,now",
    "stack": "-Wl,-z,noexecstack",
}


class CheckHardening(unittest.TestCase):
    def missing(self, *more: str, **instead: str) -> list[str]:
        """What is missing in a program with the flags `more`, and those of FLAGS but for `instead`."""
        flags = FLAGS | {name.replace("_", " "): flag for name, flag in instead.items()}
        with tempfile.TemporaryDirectory() as folder:
            source = Path(folder) / "program.cpp"
            source.write_text(SOURCE)
            program = Path(folder) / "program"
            subprocess.run([os.environ["CXX"], *flags.values(), *more, "-o", str(program),
                            str(source)], check=True, capture_output=True)
            return check_hardening.missing_protections(str(program))

    def test_nothing_is_missing(self) -> None:
        self.assertEqual(self.missing(), [])

    def test_a_fixed_address(self) -> None:
        self.assertEqual(self.missing(code="-fno-pie", program="-no-pie"), ["position-independent"])

    def test_a_shared_object(self) -> None:
        self.assertEqual(self.missing(code="-fPIC", program="-shared"), ["position-independent"])

    def test_relocations_that_stay_writable(self) -> None:
        self.assertEqual(self.missing(relocations="-Wl,-z,norelro"), ["relocations read-only"])

    def test_symbols_that_are_bound_when_they_are_needed(self) -> None:
        self.assertEqual(self.missing(binding="-Wl,-z,lazy"), ["symbols bound at the start"])

    def test_an_executable_stack(self) -> None:
        self.assertEqual(self.missing(stack="-Wl,-z,execstack"),
                         ["stack not executable", "no segment both writable and executable"])

    def test_a_segment_to_write_and_run(self) -> None:
        self.assertEqual(self.missing("-DWRITABLE_CODE"), ["no segment both writable and executable"])

    def test_unguarded_return_addresses(self) -> None:
        self.assertEqual(self.missing(stack_protector="-fno-stack-protector"), ["stack protector"])


if __name__ == "__main__":
    unittest.main()
