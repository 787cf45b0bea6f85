# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Each formatter sets the manual pages without a complaint."""

from __future__ import annotations

import subprocess
import unittest
from pathlib import Path

from manual_page import ROOT

PAGES = sorted((ROOT / "man").glob("*.[15]"))
FORMATTERS = {
    "groff": ["groff", "-ww", "-man", "-t", "-Tutf8", "-z"],
    "man": ["man", "--warnings", "-E", "UTF-8", "-Tutf8", "-l"],
    "mandoc": ["mandoc", "-T", "lint", "-W", "all"],
}


def complaints(formatter: list[str], page: Path) -> str:
    """All that a formatter says about a page."""
    done = subprocess.run([*formatter, str(page)], stdin=subprocess.DEVNULL, capture_output=True, check=False,
                          env={"PATH": "/usr/bin:/bin", "LC_ALL": "C.UTF-8", "MANWIDTH": "80"}, timeout=60)
    text = done.stderr if formatter[0] != "mandoc" else done.stdout + done.stderr
    return text.decode("utf-8") + (f"status {done.returncode}" if done.returncode else "")


class Typesetting(unittest.TestCase):
    def test_no_formatter_complains(self) -> None:
        self.assertEqual([page.name for page in PAGES], ["vorlan-formats.5", "vorlan-tools.1", "vorlan.1"])
        for page in PAGES:
            for name, formatter in FORMATTERS.items():
                with self.subTest(page=page.name, formatter=name):
                    self.assertEqual(complaints(formatter, page), "")

    def test_no_line_is_wider_than_a_screen(self) -> None:
        for page in PAGES:
            done = subprocess.run(["groff", "-man", "-t", "-Tascii", "-P-cbou", "-rLL=78n", str(page)],
                                  capture_output=True, check=True, timeout=60)
            shown = done.stdout.decode("ascii").split("\n")
            # Lines of reports are shown as they are.
            wide = [line for line in shown if len(line) > 78 and " pt | " not in line and "$ vorlan" not in line]
            self.assertEqual(wide, [])
