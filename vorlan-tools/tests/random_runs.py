# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Reports of vorlan under random settings, on random sequences with planted repeats."""

from __future__ import annotations

import os
import random
import subprocess
from dataclasses import dataclass
from pathlib import Path

from random_case import dressed, maybe, n_options, random_sequence, search_options, threshold_options

VORLAN = os.environ["VORLAN_BINARY"]
TOOLS = os.environ["VORLAN_TOOLS_BINARY"]


@dataclass
class RandomRun:
    """Options without those of the report, the input, and its residues as vorlan sees them."""

    options: list[str]
    fasta: Path
    residues: dict[str, str]

    def report(self, *more: str) -> bytes:
        return run_vorlan(*self.options, *more, self.fasta)


def run_vorlan(*words: object) -> bytes:
    command = [VORLAN, *map(str, words)]
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True).stdout


def tools(*words: object, given: bytes = b"", status: int | None = 0) -> bytes:
    """Standard output of vorlan-tools; raises unless it ends with the status (None: any)."""
    done = subprocess.run([TOOLS, *map(str, words)], input=given, capture_output=True, check=False)
    if status is not None and done.returncode != status:
        raise AssertionError(f"vorlan-tools {words} ended with {done.returncode}: {done.stderr!r}")
    # Whoever takes any status must not miss a crash or a refusal.
    if status is None and done.returncode != 0:
        return done.stdout + done.stderr
    return done.stdout


def complaint(*words: object, given: bytes = b"", status: int = 1) -> str:
    """The one sentence on standard error of a run that ends with the status and writes nothing."""
    done = subprocess.run([TOOLS, *map(str, words)], input=given, capture_output=True, check=False)
    text = done.stderr.decode("latin-1")
    if done.returncode != status or text.count("\n") != 1 or not text.startswith("vorlan-tools: "):
        raise AssertionError(f"vorlan-tools {words} ended with {done.returncode}: {text!r}")
    return text


def normalised(residues: str) -> str:
    """What vorlan makes of the letters of a FASTA file."""
    kept = residues.upper().replace("U", "T")
    kept = "".join(base for base in kept if base not in "- *")
    return "".join(base if base in "ACGT" else "N" for base in kept)


def random_run(seed: str, folder: Path) -> RandomRun:
    """The run that belongs to a seed; its input is written into the folder."""
    chance = random.Random(seed)
    depth = chance.randint(1, 4)
    options = search_options(chance, depth) + n_options(chance) + threshold_options(chance)
    options += maybe(chance, 0.3, "-D")
    options += maybe(chance, 0.5, "-f", str(chance.choice([1, 3, 10, 60])))
    residues = {}
    text = ""
    for number in range(1, chance.randint(1, 4) + 1):
        bases = dressed(chance, random_sequence(chance, chance.choice([0, 30, 300, 900])))
        residues[f"seq{number}"] = normalised(bases)
        header = f">seq{number}" + chance.choice(["", " of  some", " "])
        text += "\n".join([header, *(bases[i:i + 70] for i in range(0, len(bases), 70)), ""])
    fasta = folder / f"{seed}.fa"
    fasta.write_text(text)
    return RandomRun(options, fasta, residues)


def write_fasta(path: Path, residues: dict[str, str]) -> Path:
    """A file for programs that want one name, one line each."""
    path.write_text("".join(f">{name}\n{bases}\n" for name, bases in residues.items() if bases))
    return path
