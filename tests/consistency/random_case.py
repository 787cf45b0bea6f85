# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Random runs: FASTA input with planted repeats, and options in random combination."""

from __future__ import annotations

import random
from dataclasses import dataclass

BASES = "ACGT"
AMBIGUITY_CODES = "RYKMSWBDHVX?"
LONGEST_UNIT = 14
# A look-ahead of depth 5 or 6 tries up to 3^6 paths per edit, so such runs get short sequences.
DEEP, SHORT_SEQUENCE, LONG_SEQUENCE = 5, 400, 1500


@dataclass(frozen=True)
class Case:
    """One run: options without file names, and the input file."""

    options: list[str]
    fasta: bytes


def random_case(seed: str) -> Case:
    """The case that belongs to a seed."""
    chance = random.Random(seed)
    depth = chance.randint(1, 6)
    options = search_options(chance, depth) + n_options(chance) + threshold_options(chance) + report_options(chance)
    longest = SHORT_SEQUENCE if depth >= DEEP else LONG_SEQUENCE
    return Case(options, random_fasta(chance, longest))


# --- options ----------------------------------------------------------------------------------------------

def search_options(chance: random.Random, depth: int) -> list[str]:
    options = ["-M", chance.choice(["exact", "extendExact", "imperfect"]), "-r", str(depth)]
    shortest = chance.choice([1, 1, 1, 2, chance.randint(1, 6)])
    options += ["-u", str(shortest), "-U", str(chance.randint(shortest, LONGEST_UNIT))]
    options += maybe(chance, 0.5, "-m", str(-chance.randint(2, 7)))
    options += maybe(chance, 0.5, "-g", str(-chance.randint(2, 7)))
    options += maybe(chance, 0.3, "-R", str(chance.choice([0, 3, 5, 10, 20, 50])))
    options += maybe(chance, 0.3, "--preferShorterRepeats")
    return options


def n_options(chance: random.Random) -> list[str]:
    options = maybe(chance, 0.5, "-N", str(chance.randint(0, 5)))
    options += maybe(chance, 0.2, "--NsAsMissense")
    options += maybe(chance, 0.6, "--NPerfectionMode", str(chance.randint(0, 2)))
    return options


def threshold_options(chance: random.Random) -> list[str]:
    if chance.random() < 0.08:
        # With the length alone as threshold, repeats whose score is 0 or -1 are reported as well.
        return ["-s", "-5", "--minScore_b", "-1", "-l", str(chance.randint(4, 16))]
    options = maybe(chance, 0.5, "-s", str(chance.randint(2, 12)))
    options += maybe(chance, 0.2, "--minScore_a", str(chance.randint(-3, 6)))
    options += maybe(chance, 0.3, "--minScore_b", chance.choice(["0", "0.5", "0.7", "1.1", "1.5"]))
    options += maybe(chance, 0.2, "-l", str(chance.randint(0, 20)))
    options += maybe(chance, 0.2, "--minLength_a", str(chance.randint(-3, 8)))
    options += maybe(chance, 0.2, "--minLength_b", chance.choice(["0.3", "1.1", "2", "2.5"]))
    options += maybe(chance, 0.2, "--minPerfection", chance.choice(["50", "70", "80", "87.5", "90", "100"]))
    options += maybe(chance, 0.15, "--maxPerfection", chance.choice(["75", "90", "95", "99.9", "100"]))
    return options


def report_options(chance: random.Random) -> list[str]:
    options = ["--printRepeatSeqMode", "2", "--outputFormat", chance.choice("01")]
    options += maybe(chance, 0.3, "-D")
    options += maybe(chance, 0.7, "--reportUnit", str(chance.randint(0, 2)))
    options += maybe(chance, 0.5, "-f", str(chance.choice([1, 3, 10, 60])))
    options += maybe(chance, 0.1, "--firstSeq", str(chance.randint(1, 2)))
    options += maybe(chance, 0.1, "--lastSeq", str(chance.randint(1, 4)))
    return options


def maybe(chance: random.Random, probability: float, *words: str) -> list[str]:
    return list(words) if chance.random() < probability else []


# --- sequences --------------------------------------------------------------------------------------------

def random_fasta(chance: random.Random, longest: int) -> bytes:
    """One to four records that share the length of the whole."""
    records = chance.choice([1, 1, 2, 3, 4])
    line_end = chance.choice(["\n", "\n", "\r\n", "\r"])
    text = ""
    for number in range(1, records + 1):
        header = chance.choice([f"record{number}", f"record{number} of {records}  drawn at random", ""])
        sequence = dressed(chance, random_sequence(chance, chance.randint(200, longest) // records))
        width = chance.choice([60, 70, 1000])
        lines = [sequence[i:i + width] for i in range(0, len(sequence), width)]
        text += line_end.join([">" + header, *lines, ""])
    return text.encode("latin-1")


def random_sequence(chance: random.Random, length: int) -> str:
    """Background and planted repeats in turn; the length is met to the base."""
    letters = chance.choice(["ACGT", "ACGT", "AACGTT", "AT"])
    sequence = ""
    while len(sequence) < length:
        sequence += random_bases(chance, letters, chance.randint(0, 40))
        sequence += planted_repeat(chance)
        if chance.random() < 0.15:
            sequence += "N" * chance.randint(1, 6)
    return sequence[:length]


def random_bases(chance: random.Random, letters: str, length: int) -> str:
    return "".join(chance.choices(letters, k=length))


def planted_repeat(chance: random.Random) -> str:
    """Copies of a random unit, perfect or diverged."""
    unit = random_bases(chance, BASES, chance.choice([1, 2, 3, chance.randint(1, LONGEST_UNIT)]))
    length = chance.randint(2 * len(unit), 60 + 2 * len(unit))
    perfect = (unit * length)[:length]
    rate = chance.choice([0.0, 0.02, 0.05, 0.1, 0.2])
    return "".join(diverged(chance, base, rate) for base in perfect)


def diverged(chance: random.Random, base: str, rate: float) -> str:
    """One base after a substitution, an insertion, a deletion or a change into N, or as it was."""
    if chance.random() >= rate:
        return base
    change = chance.choice(["substitution", "insertion", "deletion", "N run"])
    if change == "substitution":
        return chance.choice(BASES)
    if change == "insertion":
        return base + random_bases(chance, BASES, chance.choice([1, 1, 2]))
    return "" if change == "deletion" else "N" * chance.choice([1, 1, 2, 3])


def dressed(chance: random.Random, sequence: str) -> str:
    """The same residues in another spelling: lower case, U for T, ambiguity codes for N, gaps."""
    style = chance.choice(["plain", "plain", "lower", "mixed"])
    if style == "plain":
        return sequence
    if style == "lower":
        return sequence.lower()
    return "".join(respelled(chance, base) for base in sequence)


def respelled(chance: random.Random, base: str) -> str:
    if base == "N":
        base = chance.choice(AMBIGUITY_CODES)
    elif base == "T" and chance.random() < 0.2:
        base = "U"
    gap = chance.choice("- *") if chance.random() < 0.01 else ""
    return gap + (base.lower() if chance.random() < 0.3 else base)
