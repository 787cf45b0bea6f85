# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The workflow on three nodes of a Slurm of one's own: every report is that of a single run.

Searched are the files of examples/, and those of the folder that $GENOMES names, if any.
"""

from __future__ import annotations

import os
import pathlib
import re
import subprocess
import time
import unittest

from slurm_cluster import SlurmTest
from workbench import ROOT, TOOLS, VORLAN, Workbench

FASTA_NAME = re.compile(r"(?P<genome>.+)\.(fa|fasta|fna)(\.gz)?")
FORMATS = ("1", "3")


def genomes_in(*folders: pathlib.Path) -> dict[str, pathlib.Path]:
    found = {}
    for folder in folders:
        for file in sorted(folder.iterdir()):
            if name := FASTA_NAME.fullmatch(file.name):
                found[name["genome"]] = file
    return found


class OnThreeNodes(SlurmTest):
    def search(self, name: str, genomes: dict[str, pathlib.Path], **settings) -> Workbench:
        """Runs the workflow and compares; malformed genomes must be named with their line."""
        bench = Workbench(self.folder / name, dict(genomes), self.cluster, **settings)
        begin = time.monotonic()
        status, said = bench.run()
        print(f"{name}: {len(genomes)} genomes in {time.monotonic() - begin:.0f} s", flush=True)
        malformed = bench.malformed()
        self.assertEqual(status, 1 if malformed else 0, f"{said}\n{bench.logs()}")
        self.assertEqual(said.count(" failed: "), len(malformed), said)
        for genome, line in malformed.items():
            self.assertRegex(said, f"{genome} failed: .*{re.escape(genome)}.*: {line}: ")
        self.assertEqual(bench.differing(), [])
        self.assertEqual(bench.leftovers(malformed), [])
        for genome in set(genomes) - set(malformed):
            self.assertIn("holds", (bench.report(genome).parent / "check.txt").read_text())
        if malformed:
            self.assertFalse((bench.folder / "results/page.html").exists())
            for genome in malformed:
                del bench.genomes[genome]
            bench.write_table()
            status, said = bench.run()
            self.assertEqual(status, 0, f"{said}\n{bench.logs()}")
            self.assertEqual(bench.differing(), [])
        self.assert_whole_page(bench)
        self.assertIn("Nothing to be done", bench.run()[1])
        return bench

    def assert_whole_page(self, bench: Workbench) -> None:
        page = (bench.folder / "results/page.html").read_text()
        table = (bench.folder / "results/stats.tsv").read_text().splitlines()
        for genome in bench.genomes:
            self.assertIn(genome, page)
        self.assertEqual([line.split("\t")[0] for line in table if line.split("\t")[1] == "genome"],
                         list(bench.genomes))

    def test_examples_in_both_formats(self) -> None:
        genomes = genomes_in(ROOT / "examples", ROOT / "examples/excerpts")
        self.assertGreater(len(genomes), 10)
        for output_format in FORMATS:
            bench = self.search(f"examples-format-{output_format}", genomes,
                                options=f"--outputFormat {output_format}", small_genome=1000, piece_size=1500)
            tables = [len(table.read_text().splitlines()) - 1 for table in bench.folder.glob("work/*/pieces.tsv")]
            self.assertEqual(len(tables), len(genomes))
            self.assertGreater(max(tables), 2)
            nodes = set(re.findall(r"NodeList=(n\d)", self.cluster.ask("scontrol", "--oneliner", "show", "job")))
            self.assertEqual(nodes, {"n1", "n2", "n3"})

    @unittest.skipUnless(os.environ.get("GENOMES"), "no folder of genomes is given")
    def test_a_folder_of_genomes(self) -> None:
        genomes = genomes_in(pathlib.Path(os.environ["GENOMES"]))
        self.assertGreater(len(genomes), 0)
        for output_format in FORMATS:
            self.search(f"genomes-format-{output_format}", genomes, options=f"--outputFormat {output_format}",
                        small_genome=100_000, piece_size=2_000_000)

    def run_script(self, name: str, fasta: pathlib.Path) -> tuple[Workbench, subprocess.CompletedProcess]:
        bench = Workbench(self.folder / name, {"one": fasta}, self.cluster)
        report = bench.report("one").relative_to(bench.folder)
        (bench.folder / report.parent).mkdir(parents=True)
        programs = [str(program.parent) for program in (VORLAN, TOOLS)]
        environment = {**bench.environment(), "PATH": os.pathsep.join([*programs, os.environ["PATH"]])}
        return bench, subprocess.run(
            [ROOT / "examples/slurm/search_on_slurm.sh", "3", f"genomes/{fasta.name}", report], cwd=bench.folder,
            env=environment, check=False, text=True, timeout=120, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def test_the_script_without_a_workflow_engine(self) -> None:
        bench, outcome = self.run_script("plain-script", ROOT / "examples/mixed_records.fa")
        self.assertEqual(outcome.returncode, 0, outcome.stdout)
        self.assertEqual(bench.differing(), [])

    def test_the_script_tells_of_a_malformed_genome_and_leaves_no_report(self) -> None:
        fasta = self.folder / "malformed.fa"
        fasta.write_text(">a\nACACACACACAC\n>b\nAC1\n>c\nAC\n")
        bench, outcome = self.run_script("malformed-script", fasta)
        self.assertEqual(outcome.returncode, 1, outcome.stdout)
        self.assertIn("The search of genomes/malformed.fa failed", outcome.stdout)
        self.assertEqual(bench.differing(), [])


if __name__ == "__main__":
    unittest.main()
