# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The commands of pages that answer one question each print what the pages show."""

from __future__ import annotations

import os
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
sys.path.insert(0, str(ROOT / "tests/readme"))

from check_document import Workbench, groups

PAGES = ("catalogues", "overlaps", "ssr")


class Pages(unittest.TestCase):
    def test_every_command(self) -> None:
        binaries = [Path(os.environ[name]).resolve() for name in ("VORLAN_BINARY", "VORLAN_TOOLS_BINARY")]
        for page in PAGES:
            text = (ROOT / f"docs/{page}.md").read_text()
            found = list(groups(text))
            self.assertTrue(found, page)
            for examples in found:
                with Workbench(ROOT, *binaries) as bench:
                    for example in examples:
                        self.assertEqual(bench.problem(example), "", f"{page}, line {example.number}")

    def test_every_page_is_linked(self) -> None:
        readme = (ROOT / "README.md").read_text()
        for page in PAGES:
            self.assertIn(f"docs/{page}.md", readme)


if __name__ == "__main__":
    unittest.main()
