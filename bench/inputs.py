# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Input files of benchmark runs: generated ones, and genomes or the beginning of a genome."""

from __future__ import annotations

import gzip
from collections.abc import Callable
from dataclasses import dataclass
from pathlib import Path
from typing import BinaryIO, Optional, Union

import sequences


class Unavailable(Exception):
    """The input cannot be made; the text says why."""


@dataclass(frozen=True)
class Generated:
    """A generated FASTA file."""

    name: str
    residues: int
    write: Callable[[BinaryIO], None]


@dataclass(frozen=True)
class Genome:
    """A gzip-compressed FASTA file of the data folder, or its first bases."""

    pattern: str
    bases: Optional[int] = None

    @property
    def name(self) -> str:
        stem = self.pattern.split("*", 1)[0]
        return stem if self.bases is None else f"{stem}-{self.bases}"


Input = Union[Generated, Genome]


def background(residues: int) -> Generated:
    return Generated(f"background-{residues}", residues,
                     lambda file: sequences.write_record(file, sequences.background(residues)))


def diverged_array(residues: int, unit: bytes = b"AT", name: Optional[str] = None) -> Generated:
    return Generated(name or f"diverged-array-{residues}", residues,
                     lambda file: sequences.write_record(file, sequences.diverged_array(residues, unit)))


def pure_array(residues: int) -> Generated:
    return Generated(f"pure-array-{residues}", residues,
                     lambda file: sequences.write_record(file, sequences.pure_array(residues)))


def background_records(residues: int, record_length: int) -> Generated:
    """The residues of background(residues), cut into records."""
    return Generated(f"records-of-{record_length}-{residues}", residues,
                     lambda file: sequences.write_records(file, sequences.background(residues), record_length))


@dataclass(frozen=True)
class InputFile:
    path: Path
    residues: int


class InputStore:
    """Makes each input once, in a folder for temporary files."""

    def __init__(self, folder: Path, data: Optional[Path]) -> None:
        self.folder = folder
        self.data = data
        self.files: dict[str, InputFile] = {}

    def file(self, wanted: Input) -> InputFile:
        if wanted.name not in self.files:
            path = self.folder / f"{wanted.name}.fa"
            residues = self.write_genome(wanted, path) if isinstance(wanted, Genome) else write_generated(wanted, path)
            self.files[wanted.name] = InputFile(path, residues)
        return self.files[wanted.name]

    def write_genome(self, genome: Genome, path: Path) -> int:
        if self.data is None:
            raise Unavailable("needs --data DIR")
        sources = sorted(self.data.glob(genome.pattern))
        if len(sources) != 1:
            raise Unavailable(f"needs one file {genome.pattern} in {self.data}, found {len(sources)}")
        with gzip.open(sources[0], "rb") as source, open(path, "wb") as target:
            return copy_bases(source, target, genome.bases)


def write_generated(generated: Generated, path: Path) -> int:
    with open(path, "wb") as file:
        generated.write(file)
    return generated.residues


def copy_bases(source: BinaryIO, target: BinaryIO, limit: Optional[int]) -> int:
    """Copies FASTA up to a number of bases and returns how many there were."""
    bases = 0
    for line in source:
        if line.startswith(b">"):
            target.write(line)
            continue
        residues = line.rstrip() if limit is None else line.rstrip()[:limit - bases]
        target.write(residues + b"\n")
        bases += len(residues)
        if bases == limit:
            break
    return bases
