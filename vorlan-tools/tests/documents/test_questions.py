# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Every command of the pages that answer one question each prints what the page shows."""

from __future__ import annotations

import os
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
sys.path.insert(0, str(ROOT / "tests/readme"))

from check_document import Workbench, groups

PAGES = ["comparing-assemblies", "copies-at-loci", "satellite-arrays"]


class Questions(unittest.TestCase):
    def test_the_commands_print_what_is_shown(self) -> None:
        binaries = [Path(os.environ[name]).resolve() for name in ("VORLAN_BINARY", "VORLAN_TOOLS_BINARY")]
        for page in PAGES:
            recipes = [recipe for group in groups((ROOT / "docs" / f"{page}.md").read_text()) for recipe in group]
            self.assertGreater(len(recipes), 2)
            with Workbench(ROOT, *binaries) as bench:
                for recipe in recipes:
                    with self.subTest(page=page, line=recipe.number):
                        self.assertEqual(bench.problem(recipe), "")


if __name__ == "__main__":
    unittest.main()
