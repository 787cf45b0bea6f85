# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""A folder with a table of genomes in which the workflow runs, and the single runs that it must equal."""

from __future__ import annotations

import gzip
import json
import os
import pathlib
import shutil
import subprocess
from collections.abc import Collection

import yaml

ROOT = pathlib.Path(__file__).resolve().parents[2]
VORLAN = pathlib.Path(os.environ["VORLAN_BINARY"]).resolve()
TOOLS = pathlib.Path(os.environ["VORLAN_TOOLS_BINARY"]).resolve()
MALFORMED = 231
SECONDS = 3600


def text_of(fasta: pathlib.Path) -> bytes:
    data = fasta.read_bytes()
    return gzip.decompress(data) if data.startswith(b"\x1f\x8b") else data


class Workbench:
    """Settings of config/config.yaml may be given by name; a cluster gives the profile for Slurm."""

    def __init__(self, folder: pathlib.Path, genomes: dict[str, pathlib.Path], cluster=None, **settings) -> None:
        self.folder = folder
        self.genomes = genomes
        self.cluster = cluster
        self.config = {**yaml.safe_load((ROOT / "config/config.yaml").read_text()), "vorlan": str(VORLAN),
                       "vorlan_tools": str(TOOLS), **settings}
        (folder / "config").mkdir(parents=True)
        (folder / "config/config.yaml").write_text(json.dumps(self.config))
        (folder / "genomes").mkdir()
        for fasta in genomes.values():
            shutil.copyfile(fasta, folder / "genomes" / fasta.name)
        self.write_table()

    def write_table(self) -> None:
        rows = [f"{genome}\tgenomes/{fasta.name}\n" for genome, fasta in self.genomes.items()]
        (self.folder / "config/genomes.tsv").write_text("genome\tfasta\n" + "".join(rows))

    def command(self, *more: str) -> list[str]:
        profile = ROOT / "workflow/profiles" / ("slurm" if self.cluster else "local")
        return ["/usr/bin/snakemake", "--snakefile", str(ROOT / "workflow/Snakefile"), "--directory",
                str(self.folder), "--profile", str(profile), "--nocolor", "--latency-wait", "10", *more]

    def environment(self) -> dict[str, str]:
        inherited = self.cluster.environment if self.cluster else os.environ
        # With CI=true Snakemake asks for the states of jobs each second, not every ten seconds.
        return {**inherited, "CI": "true", "XDG_CACHE_HOME": str(self.folder / "cache"),
                "PYTHONDONTWRITEBYTECODE": "1"}

    def start(self, *more: str) -> subprocess.Popen:
        return subprocess.Popen(self.command(*more), env=self.environment(), text=True, stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True)

    def run(self, *more: str) -> tuple[int, str]:
        """Status and all that was said."""
        process = self.start(*more)
        said = process.communicate(timeout=SECONDS)[0]
        return process.returncode, said

    def report(self, genome: str) -> pathlib.Path:
        return self.folder / self.config["results"] / genome / self.config["report"]

    def logs(self) -> str:
        """What the logs of all jobs end with, for messages of tests."""
        return "\n".join(f"{log}:\n{log.read_text(errors='replace')[-1500:]}"
                         for log in sorted((self.folder / "logs").rglob("*.log")) if log.stat().st_size)

    def single_run(self, genome: str) -> tuple[int, bytes, bytes]:
        """Status, report and messages of one vorlan on the whole genome, called by the names of the workflow."""
        folder = self.folder / "single"
        fasta = f"genomes/{self.genomes[genome].name}"
        report = self.report(genome).relative_to(self.folder)
        (folder / "genomes").mkdir(parents=True, exist_ok=True)
        (folder / report.parent).mkdir(parents=True, exist_ok=True)
        (folder / fasta).write_bytes(text_of(self.genomes[genome]))
        outcome = subprocess.run([VORLAN, *self.config["options"].split(), fasta, report], cwd=folder, check=False,
                                 stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        written = (folder / report).read_bytes()
        shutil.rmtree(folder)
        return outcome.returncode, written, outcome.stderr

    def differing(self) -> list[str]:
        """Genomes whose report is not that of a single run; malformed ones must have none."""
        wrong = []
        for genome in self.genomes:
            status, expected, _ = self.single_run(genome)
            report = self.report(genome)
            if status == 0 and (not report.exists() or report.read_bytes() != expected):
                wrong.append(genome)
            if status != 0 and report.exists():
                wrong.append(genome)
        return wrong

    def malformed(self) -> dict[str, str]:
        """Malformed genomes, with the line that a single run names."""
        found = {}
        for genome in self.genomes:
            status, _, said = self.single_run(genome)
            if status == MALFORMED:
                found[genome] = said.split(b"File position: ")[1].split(b"\n")[0].decode()
        return found

    def leftovers(self, failed: Collection[str] = ()) -> list[str]:
        """Files that should not have outlived the run; genomes that failed may keep theirs for the next."""
        work = self.folder / self.config["work"]
        return sorted(str(file.relative_to(work)) for file in work.rglob("*")
                      if file.is_file() and file.relative_to(work).parts[0] not in failed and (".unfinished" in file.name or file.suffix in (".report", ".fa")))
