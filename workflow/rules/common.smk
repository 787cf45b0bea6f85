# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# The configuration, the table of genomes, and what jobs ask for.

import csv
import json
import os
import shlex
import sys
from pathlib import Path

from snakemake.exceptions import WorkflowError
from snakemake.utils import validate

validate(config, "../schemas/config.schema.yaml")


def read_table(name):
    """The FASTA file of each genome by name, in the order of the table."""
    genomes = {}
    with open(name, newline="", encoding="utf-8") as table:
        rows = csv.DictReader(table, delimiter="\t", quoting=csv.QUOTE_NONE)
        if rows.fieldnames != ["genome", "fasta"]:
            raise WorkflowError(f"{name}, line 1: the columns are not \"genome\" and \"fasta\", separated by a tab.")
        for row in rows:
            place = f"{name}, line {rows.line_num}"
            try:
                validate(row, "../schemas/genomes.schema.yaml")
            except WorkflowError as error:
                raise WorkflowError(f"{place}: {row}: a row is a name of letters, digits, . _ - and a path "
                                    "without blanks, quotes, dollar signs and backslashes.") from error
            if row["genome"] in genomes:
                raise WorkflowError(f"{place}: {row['genome']} is there twice.")
            if not Path(row["fasta"]).is_file():
                raise WorkflowError(f"{place}: there is no file {row['fasta']}.")
            genomes[row["genome"]] = row["fasta"]
    if not genomes:
        raise WorkflowError(f"{name}: there is no genome in it.")
    return genomes


RESULTS, WORK = config["results"], config["work"]
SCRIPTS = Path(workflow.basedir) / "scripts"
FASTA = read_table(config["genomes"])
SIZE = {genome: Path(fasta).stat().st_size for genome, fasta in FASTA.items()}
SMALL = [genome for genome in FASTA if SIZE[genome] <= config["small_genome"]]


def batches_of(genomes):
    """Small genomes that share a job, by the number of the batch."""
    batches = {}
    size = 0
    for genome in genomes:
        last = batches.get(str(len(batches)))
        if last is None or len(last) == config["batch_genomes"] or size + SIZE[genome] > config["batch_size"]:
            last = batches[str(len(batches) + 1)] = []
            size = 0
        last.append(genome)
        size += SIZE[genome]
    return batches


BATCHES = batches_of(SMALL)


def is_compressed(genome):
    with open(FASTA[genome], "rb") as fasta:
        return fasta.read(2) == b"\x1f\x8b"


def text_of(wildcards):
    """The plain text of a genome: its file, or a copy that lives as long as jobs need it."""
    unpacked = f"{WORK}/{wildcards.genome}/genome.fa"
    return unpacked if is_compressed(wildcards.genome) else FASTA[wildcards.genome]


def fasta_of(wildcards):
    return FASTA[wildcards.genome]


def parts_of(wildcards):
    """The reports of all pieces of a genome, in order."""
    table = Path(checkpoints.cut.get(genome=wildcards.genome).output.pieces)
    numbers = [line.split("\t")[0] for line in table.read_text().splitlines()[1:]]
    return [f"{WORK}/{wildcards.genome}/parts/{number}.report" for number in numbers]


def files_of(genome):
    """What a genome ends as."""
    names = [config["report"], "check.txt", "stats.json", "stats.tsv"]
    names += [f"repeats.{ending}" for ending in config["convert"]]
    names += [f"catalog.{target}.{'json' if target == 'eh' else 'bed'}" for target in config["catalogs"]]
    if config["mask"]:
        names.append(config["mask"])
    return [f"{RESULTS}/{genome}/{name}" for name in names]


def stats_of(genome):
    return f"{RESULTS}/{genome}/stats.json"


def files_of_large(wildcards):
    return [file for genome in FASTA if genome not in SMALL for file in files_of(genome)]


def markers_of_batches(wildcards):
    return [f"{WORK}/batches/{batch}.done" for batch in BATCHES]


def files_of_all(wildcards):
    return [f"{RESULTS}/stats.tsv", *([f"{RESULTS}/page.html"] if config["page"] else [])]


def forget_stale_markers():
    """A marker states that the files of a batch are there; without them it goes."""
    for marker, genomes in zip(markers_of_batches(None), BATCHES.values()):
        if Path(marker).exists() and not all(Path(file).exists() for genome in genomes for file in files_of(genome)):
            Path(marker).unlink()


# Jobs read these rules, too; what they see of the files of other nodes may be late.
if "--mode" not in sys.argv and "VORLAN_BATCH" not in os.environ:
    forget_stale_markers()
