# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""What each genotyper makes of a catalogue, restated from its sources: where a locus lies, and what is refused.

A loader takes the text of a catalogue and the genome, raises Refused where the program would end, skip the locus or
measure nonsense, and returns the loci with their place from 0, the end excluded.

TRGT 3.0.0              docs/repeat_files.md, src/trgt/locus.rs, src/utils/region.rs, src/hmm/builder.rs
HipSTR aed5265          src/region.cpp, src/bam_processor.cpp
GangSTR 2.5             src/region_reader.cpp, src/genotyper.cpp, scripts/create_ref_panel
ExpansionHunter 5       docs/04, io/CatalogLoading.cpp, LocusSpecDecoding.cpp, GraphBlueprint.cpp
LongTR 43b6ae3          src/region.cpp
ATaRVa 3733109          README, baseline.py
Straglr edfa209         README
"""

from __future__ import annotations

import json
import re
from collections.abc import Callable
from typing import NamedTuple


class Refused(Exception):
    """The genotyper would not take the catalogue, or this locus of it."""


class Locus(NamedTuple):
    sequence: str
    start: int
    end: int
    motif: str | None  # None: the genotyper is told the length of the motif only


Genome = dict[str, str]


def require(holds: bool, what: str) -> None:
    if not holds:
        raise Refused(what)


def inside(genome: Genome, locus: Locus, flank: int) -> None:
    require(locus.sequence in genome, f"unknown sequence {locus.sequence}")
    require(flank <= locus.start < locus.end <= len(genome[locus.sequence]) - flank, f"{locus}: flank")


def rows(text: str, least: int, most: int) -> list[list[str]]:
    split = [re.split(r"[ \t]", line) for line in text.split("\n")[:-1]]
    for row in split:
        require(least <= len(row) <= most and all(row), f"columns of {row}")
    return split


def trgt(text: str, genome: Genome) -> list[Locus]:
    """Four columns from 0; the last holds ID, MOTIFS and STRUC, each once. Regions are split at ':' and '-'."""
    loci = []
    ids = set()
    for sequence, start, end, info in rows(text, 4, 4):
        fields = [field.split("=", 1) for field in info.split(";")]
        require([len(field) for field in fields] == [2, 2, 2], f"info {info}")
        values = dict(fields)
        require(set(values) == {"ID", "MOTIFS", "STRUC"} and all(values.values()), f"info {info}")
        require(re.fullmatch("[ACGTN]+(,[ACGTN]+)*", values["MOTIFS"]) is not None, f"motifs of {info}")
        require(not re.search("[:-]", sequence), f"name {sequence}")
        require(values["ID"] not in ids, f"ID {values['ID']} twice")
        ids.add(values["ID"])
        loci.append(Locus(sequence, int(start), int(end), values["MOTIFS"]))
        inside(genome, loci[-1], 250)
    return loci


def hipstr(text: str, genome: Genome) -> list[Locus]:
    """From 1, closed; period instead of a motif. A header line, a period above 9 or stop <= start end the run."""
    loci = []
    for row in rows(text, 5, 6):
        sequence, start, end, period = row[0], int(row[1]), int(row[2]), int(row[3])
        float(row[4])
        require(1 <= period <= 9 and start >= 1 and end > start, f"{row}")
        require(end - start + 1 <= 100, f"{row}: longer than --max-str-len")
        loci.append(Locus(sequence, start - 1, end, None))
        inside(genome, loci[-1], 50)
    return loci


def gangstr(text: str, genome: Genome) -> list[Locus]:
    """From 1, closed; copies are (end - start + 1) / period in whole numbers; panels hold units up to 20."""
    loci = []
    for sequence, start, end, period, motif in rows(text, 5, 5):
        require(len(motif) == int(period) <= 20, f"{sequence}:{start} {period} {motif}")
        require((int(end) - int(start) + 1) % int(period) == 0, f"{sequence}:{start} has a part of a copy")
        loci.append(Locus(sequence, int(start) - 1, int(end), motif))
        inside(genome, loci[-1], 150)
    return loci


def expansion_hunter(text: str, genome: Genome) -> list[Locus]:
    """JSON with regions from 0; 1,000 bases on both sides with at most 5 N; names without ':' and '-'."""
    loci = []
    ids = set()
    for entry in json.loads(text):
        require(set(entry) == {"LocusId", "LocusStructure", "ReferenceRegion", "VariantType"}, f"{entry}")
        require(entry["VariantType"] == "Repeat", f"{entry}")
        require(entry["LocusId"] not in ids, f"{entry} twice")
        ids.add(entry["LocusId"])
        structure = re.fullmatch(r"\(([ACGT]+)\)\*", entry["LocusStructure"])
        region = re.fullmatch(r"([^:-]+):(\d+)-(\d+)", entry["ReferenceRegion"])
        require(structure is not None and region is not None, f"{entry}")
        locus = Locus(region[1], int(region[2]), int(region[3]), structure[1])
        inside(genome, locus, 1000)
        bases = genome[locus.sequence]
        flanks = bases[locus.start - 1000:locus.start] + bases[locus.end:locus.end + 1000]
        require(flanks.count("N") <= 5, f"{entry}: N in flanks")
        loci.append(locus)
    return loci


def longtr(text: str, genome: Genome) -> list[Locus]:
    """From 1, closed; motifs are letters; above 1,000 bases and within 50 of an end loci are skipped."""
    loci = []
    for row in rows(text, 4, 5):
        require(re.fullmatch("[A-Za-z]+(,[A-Za-z]+)*", row[3]) is not None, f"{row}")
        require(int(row[2]) - int(row[1]) + 1 <= 1000, f"{row}: too long")
        loci.append(Locus(row[0], int(row[1]) - 1, int(row[2]), row[3]))
        inside(genome, loci[-1], 50)
    return loci


def atarva(text: str, genome: Genome) -> list[Locus]:
    """From 0, sorted; the length of the motif is a column of its own."""
    loci = []
    for row in rows(text, 5, 6):
        require(len(row[3]) == int(row[4]), f"{row}")
        loci.append(Locus(row[0], int(row[1]), int(row[2]), row[3]))
        inside(genome, loci[-1], 0)
    require(all(a.start <= b.start for a, b in zip(loci, loci[1:]) if a.sequence == b.sequence), "order")
    return loci


def straglr(text: str, genome: Genome) -> list[Locus]:
    """From 0; homopolymers are no loci."""
    loci = [Locus(row[0], int(row[1]), int(row[2]), row[3]) for row in rows(text, 4, 4)]
    for locus in loci:
        require(len(locus.motif) >= 2, f"{locus}")
        inside(genome, locus, 0)
    return loci


LOADERS: dict[str, Callable[[str, Genome], list[Locus]]] = {
    "trgt": trgt, "hipstr": hipstr, "gangstr": gangstr, "eh": expansion_hunter, "longtr": longtr, "atarva": atarva,
    "straglr": straglr}
