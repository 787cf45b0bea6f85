# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The commands that the README names as next steps do what it says of them."""

from __future__ import annotations

import gzip
import os
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
sys.path.insert(0, str(ROOT / "tests/readme"))

from check_document import Workbench, blocks, groups


class NextSteps(unittest.TestCase):
    def test_the_commands_run_and_their_files_fit_each_other(self) -> None:
        commands = [block.lines for block in blocks((ROOT / "README.md").read_text()) if block.section == "Next steps"]
        self.assertEqual([len(lines) for lines in commands], [3])
        binaries = (Path(os.environ[name]).resolve() for name in ("VORLAN_BINARY", "VORLAN_TOOLS_BINARY"))
        with Workbench(ROOT, *binaries) as bench:
            text = (ROOT / "examples/androgen_receptor.fa").read_bytes()
            (bench.folder / "genome.fa.gz").write_bytes(gzip.compress(text))
            self.assertEqual(bench.run("\n".join(commands[0])), [])
            self.assertIn("unit AGC", (bench.folder / "report.txt").read_text())
            # The CAG repeat of the gene, from 0, is 1600 to 1669; lower case in the genome, and nothing beside it.
            self.assertIn("AR\t1600\t1669\tAGC",
                          "\n".join(bench.run("tabix repeats.bed.gz AR:1601-1601")))
            self.assertEqual(bench.run("samtools faidx masked.fa.gz AR:1668-1671")[1:], ["caAG"])


class Page(unittest.TestCase):
    def test_the_commands_print_what_is_shown_and_their_pages_hold_the_calibration(self) -> None:
        recipes, = groups((ROOT / "docs/page.md").read_text())
        self.assertGreater(len(recipes), 5)
        binaries = (Path(os.environ[name]).resolve() for name in ("VORLAN_BINARY", "VORLAN_TOOLS_BINARY"))
        with Workbench(ROOT, *binaries) as bench:
            self.assertEqual([problem for recipe in recipes if (problem := bench.problem(recipe))], [])
            self.assertIn('"calibration":{', (bench.folder / "page6.html").read_text())


if __name__ == "__main__":
    unittest.main()
