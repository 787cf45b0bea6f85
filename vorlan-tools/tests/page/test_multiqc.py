# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""MultiQC shows what `stats --multiqc` writes, for three genomes."""

from __future__ import annotations

import json
import subprocess
import unittest

from parts.programs import ProgramTest
from stats.test_stats import genome_text


class MultiQc(ProgramTest):
    def test_three_genomes(self) -> None:
        expected = {}
        for number in range(3):
            self.write("in.fa", genome_text(60 + number, 2, 8))
            self.vorlan("in.fa", "report")
            name = f"genome{number}"
            self.tools("stats", "report", "--name", name, "--multiqc", name)
            expected[name] = json.loads(self.tools("stats", "report", "--json", "-").stdout)["genomes"][0]
        done = subprocess.run(["multiqc", "--no-ansi", "--cl-config", "no_version_check: true", "."], cwd=self.folder,
                              capture_output=True, text=True, check=False, env=self.environment())
        self.assertEqual(done.returncode, 0, done.stderr)
        found = json.loads(self.read("multiqc_data/multiqc_data.json"))
        general = {sample: numbers for part in found["report_general_stats_data"] for sample, numbers in part.items()}
        self.assertEqual({name: general[name]["repeats"] for name in expected},
                         {name: said["repeats"] for name, said in expected.items()})
        self.assertLessEqual({"vorlan_unit_lengths_plot", "vorlan_divergence_plot"}, set(found["report_plot_data"]))
        self.assertIn("Tandem repeats by unit length", self.read("multiqc_report.html").decode())


if __name__ == "__main__":
    unittest.main()
