# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""What is measured, and what is expected of it.

Every list takes a divisor: generated sequences and pieces of genomes are that much shorter. With a divisor
above 1 the lists only show that the measuring works; what is expected holds for the full lengths.
"""

from __future__ import annotations

from dataclasses import dataclass
from typing import Optional, Union

from inputs import Genome, Input, background, background_records, diverged_array, pure_array

KBP, MBP = 1000, 1_000_000
# What is left of a whole genome in a quick run.
QUICK_GENOME_BASES = 100 * KBP

EXACT, EXTEND_EXACT, IMPERFECT = ("-M", "exact"), ("-M", "extendExact"), ("-M", "imperfect")
MODES = (EXACT, EXTEND_EXACT, IMPERFECT)
DEFAULTS: tuple[str, ...] = ()
# No repeat of the inputs reaches this score: what remains is the search itself.
NOTHING_FOUND = ("-s", "1000")

# Up to the longest that the filter of candidates handles; the plain search behind it takes too long to measure here.
UNIT_LENGTHS = (1, 2, 3, 5, 10, 20, 50, 100, 200, 256)

MEMORY_BYTES_PER_RESIDUE = 2.5
MEMORY_BYTES_FIXED = 32_000_000


@dataclass(frozen=True)
class Work:
    """Options and input of a run."""

    options: tuple[str, ...]
    input: Input

    @property
    def title(self) -> str:
        return f"{' '.join(self.options) or 'defaults'}, {self.input.name}"


@dataclass(frozen=True)
class Faster:
    """How many times less CPU time than another program Vorlan must take, and should."""

    name: str
    work: Work
    required: float
    aim: float


@dataclass(frozen=True)
class Growth:
    """How many times the CPU time of one run another may take at most, and should."""

    name: str
    work: Work
    base: Work
    at_most: float
    aim: Optional[float] = None
    peak_bytes: Optional[int] = None


@dataclass(frozen=True)
class Memory:
    """A run whose peak memory is limited by its residues and its report."""

    name: str
    work: Work
    fixed_bytes: int = MEMORY_BYTES_FIXED


@dataclass(frozen=True)
class Throughput:
    """A run whose speed is shown, nothing expected."""

    name: str
    work: Work


@dataclass(frozen=True)
class Worth:
    """A run that is repeated with one engine after the other left out."""

    name: str
    work: Work


# Files of the data folder.
YEAST, CHR22 = "Saccharomyces_cerevisiae*.fa.gz", "hg19_chr22*.fa.gz"
ECOLI, FALCIPARUM, CENTROMERE = "Ecoli*.fasta.gz", "Pfalciparum*.fa.gz", "Ath_CEN1*.fasta.gz"


def genome(pattern: str, divisor: int) -> Genome:
    return Genome(pattern, None if divisor == 1 else QUICK_GENOME_BASES)


def comparisons(divisor: int) -> list[Faster]:
    yeast = genome(YEAST, divisor)
    chr22 = genome(CHR22, divisor)
    ecoli = genome(ECOLI, divisor)
    falciparum = genome(FALCIPARUM, divisor)
    ecoli_piece = Genome(ECOLI, 100 * KBP // divisor)
    centromere_piece = Genome(CENTROMERE, 200 * KBP // divisor)
    array = diverged_array(40 * KBP // divisor)
    limited = ("-R", "30", "-m", "-4", "-g", "-7", "-r", "7")
    return [
        Faster("yeast", Work(DEFAULTS, yeast), 12, 30),
        Faster("chr22", Work(DEFAULTS, chr22), 12, 30),
        Faster("ecoli", Work(DEFAULTS, ecoli), 12, 30),
        Faster("falciparum", Work(DEFAULTS, falciparum), 5, 15),
        Faster("ecoli-long-units", Work(("-u", "11", "-U", "50"), ecoli_piece), 100, 300),
        Faster("centromere-long-units", Work(("-u", "11", "-U", "30"), centromere_piece), 60, 200),
        Faster("diverged-array", Work(DEFAULTS, array), 50, 500),
        Faster("yeast-exact", Work(EXACT, yeast), 4, 10),
        Faster("yeast-extend-exact", Work(EXTEND_EXACT, yeast), 3, 8),
        Faster("chr22-limited", Work(limited, chr22), 1, 5),
    ]


def growths(divisor: int) -> list[Growth]:
    """All in the default mode, which is named so that the same work in other lists is run only once."""
    megabase = MBP // divisor
    random_megabase = Work(IMPERFECT, background(megabase))
    return [
        *steps("growth-array", [diverged_array(n * KBP // divisor) for n in (20, 40, 80, 160)], 2.5),
        Growth("array-against-random", Work(IMPERFECT, diverged_array(megabase)), random_megabase, 300,
               peak_bytes=2_000_000_000),
        Growth("pure-array-against-random", Work(IMPERFECT, pure_array(megabase)), random_megabase, 1),
        *steps("growth-random", [background(n * megabase) for n in (1, 4, 16, 64)], 4.4),
        many_records("many-records-nothing-found", IMPERFECT + NOTHING_FOUND, megabase),
        many_records("many-records", IMPERFECT, megabase),
        Growth("long-units", Work(("-u", "100", "-U", "100"), background(200 * KBP // divisor)),
               Work(("-u", "10", "-U", "10"), background(200 * KBP // divisor)), 20),
    ]


def steps(name: str, inputs: list[Input], at_most: float) -> list[Growth]:
    """Each input against the one before."""
    works = [Work(IMPERFECT, input_) for input_ in inputs]
    return [Growth(name, work, base, at_most) for base, work in zip(works, works[1:])]


def many_records(name: str, options: tuple[str, ...], megabase: int) -> Growth:
    """A million short records against one record with the same residues."""
    residues = 150 * megabase
    return Growth(name, Work(options, background_records(residues, 150)), Work(options, background(residues)), 1.5)


def memories(divisor: int) -> list[Memory]:
    return [Memory("memory", Work(mode, background(64 * MBP // divisor))) for mode in MODES]


def throughputs(divisor: int) -> list[Throughput]:
    inputs = [background(16 * MBP // divisor), genome(YEAST, divisor),
              diverged_array(160 * KBP // divisor)]
    one_unit_length = [IMPERFECT + ("-u", str(length), "-U", str(length)) for length in UNIT_LENGTHS]
    return [*(Throughput("throughput", Work(mode, input_)) for input_ in inputs for mode in MODES),
            *(Throughput("unit-length", Work(options, background(MBP // divisor))) for options in one_unit_length)]


def engine_works(divisor: int) -> list[Worth]:
    """Small enough that they end without the filter, too."""
    yeast = genome(YEAST, divisor)
    array = diverged_array(40 * KBP // divisor)
    return [
        Worth("yeast", Work(DEFAULTS, yeast)),
        Worth("falciparum-piece", Work(DEFAULTS, Genome(FALCIPARUM, 4 * MBP // divisor))),
        Worth("array", Work(DEFAULTS, array)),
        Worth("array-extend-exact", Work(EXTEND_EXACT, array)),
        Worth("long-units", Work(("-u", "11", "-U", "50"), Genome(ECOLI, 100 * KBP // divisor))),
        Worth("long-units-centromere", Work(("-u", "11", "-U", "30"), Genome(CENTROMERE, 200 * KBP // divisor))),
        Worth("long-units-human", Work(("-u", "91", "-U", "100"), Genome(CHR22, 200 * KBP // divisor))),
        Worth("longer-units-human", Work(("-u", "291", "-U", "300"), Genome(CHR22, 200 * KBP // divisor))),
        Worth("satellite", Work(("-u", "160", "-U", "180"), Genome(CENTROMERE, 60 * KBP // divisor))),
        Worth("cheap-edits", Work(("-u", "11", "-U", "20", "-m", "-2", "-g", "-3"), Genome(ECOLI, 100 * KBP // divisor))),
        Worth("deep-look-ahead", Work(("-r", "8"), array)),
        Worth("exact-long-units", Work((*EXACT, "-U", "300"), Genome(YEAST, 4 * MBP // divisor))),
        Worth("extend-exact", Work(EXTEND_EXACT, yeast)),
        Worth("exact", Work(EXACT, yeast)),
        Worth("short-records", Work(DEFAULTS, background_records(3 * MBP // divisor, 150))),
    ]


def all_works(divisor: int) -> list[Throughput]:
    """Each work of the lists above once, under the name of the row where it stands first."""
    rows = [*comparisons(divisor), *growths(divisor), *memories(divisor), *throughputs(divisor)]
    named = [(row.name, work) for row in rows for work in works_of(row)]
    first: dict[tuple[tuple[str, ...], str], Throughput] = {}
    for name, work in named:
        # The default mode is named in some lists.
        key = (work.options[2:] if work.options[:2] == IMPERFECT else work.options, work.input.name)
        first.setdefault(key, Throughput(name, work))
    return list(first.values())


def works_of(row: Union[Faster, Growth, Memory, Throughput]) -> list[Work]:
    return [row.base, row.work] if isinstance(row, Growth) else [row.work]
