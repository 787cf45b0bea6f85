# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The first run of README.md gives the files that it lists, and its table of the configuration is complete."""

from __future__ import annotations

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

import yaml

from workbench import ROOT, TOOLS, VORLAN

README = (ROOT / "workflow/README.md").read_text()


def section(title: str) -> str:
    return README.split(f"\n## {title}\n")[1].split("\n## ")[0]


def first_column(text: str) -> list[str]:
    """The words in backquotes of the first column of all tables."""
    cells = re.findall(r"^\| (`[^|]*) \|", text, re.MULTILINE)
    return [word for cell in cells for word in re.findall(r"`([^`]+)`", cell)]


class Readme(unittest.TestCase):
    def test_the_first_run_gives_the_files_that_are_listed(self) -> None:
        commands = re.findall(r"```sh\n(snakemake [^\n]*)\n```", section("First run"))
        self.assertEqual(len(commands), 1)
        listed = first_column(section("First run"))
        self.assertGreater(len(listed), 4)
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            for part in ("workflow", "config", "examples"):
                shutil.copytree(ROOT / part, folder / part)
            path = os.pathsep.join([str(VORLAN.parent), str(TOOLS.parent), os.environ["PATH"]])
            outcome = subprocess.run(["bash", "-c", commands[0]], cwd=folder, check=False, text=True, timeout=300,
                                     env={**os.environ, "PATH": path, "XDG_CACHE_HOME": name},
                                     stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            self.assertEqual(outcome.returncode, 0, outcome.stdout)
            for genome in ("androgen_receptor", "mixed_records"):
                for file in listed:
                    self.assertGreater((folder / "results" / genome / file).stat().st_size, 0, file)
            self.assertGreater((folder / "results/page.html").stat().st_size, 100_000)
            self.assertTrue((folder / "results/stats.tsv").exists())

    def test_every_key_of_the_configuration_is_explained_and_checked(self) -> None:
        keys = set(yaml.safe_load((ROOT / "config/config.yaml").read_text()))
        schema = yaml.safe_load((ROOT / "workflow/schemas/config.schema.yaml").read_text())
        self.assertEqual(set(first_column(section("Your genomes"))), keys)
        self.assertEqual(set(schema["properties"]), keys)
        self.assertEqual(set(schema["required"]), keys)


if __name__ == "__main__":
    unittest.main()
