#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Check a report against its input: recompute every number and every line that it states.

    check_report.py REPORT FASTA [--short-floats]

REPORT is a report of output format 0 or 1 with alignments (printRepeatSeqMode 2); its header block tells the
settings of the run. Every fact that does not hold gives one line that names record, repeat and fact; exit
status 1 then, 2 when a file cannot be read, else 0. With --short-floats the float settings are taken to be
exactly what the header shows, which prints six digits; without it a longer value is given the benefit of the
doubt.

The check knows nothing of the program but the rules of its output. It tells whether what is reported is true
and possible, not whether a repeat is missing.
"""

from __future__ import annotations

import argparse
import re
import sys
from collections import Counter
from dataclasses import dataclass, field
from pathlib import Path

from alignment import (BRIDGED_N, DELETION, INSERTION, MATCH, MISMATCH, Alignment, read_columns, strip_flanks)
from extension_facts import Extension, extension_faults
from fasta_records import Record, read_fasta
from report_settings import (ALPHABETICAL, AS_IS, AS_MATCH, AS_NEUTRAL, EXTEND_EXACT, LineReader, ReportError,
                             Settings, read_settings, single)
from reported_repeat import ReportedRepeat, entry_line, label_of, read_repeat

COMPLEMENT = str.maketrans("ACGT", "TGCA")


@dataclass
class Findings:
    """Violated facts, and how much was looked at."""

    faults: list[str] = field(default_factory=list)
    records: int = 0
    repeats: int = 0
    kinds: Counter[str] = field(default_factory=Counter)


# --- the unit ---------------------------------------------------------------------------------------------

def rotations(unit: str) -> list[str]:
    return [unit[shift:] + unit[:shift] for shift in range(len(unit))]


def normal_form(unit: str, mode: int) -> str:
    """The alphabetically smallest rotation, by mode also among those of the reverse complement."""
    smallest = min(rotations(unit))
    if mode == ALPHABETICAL:
        return smallest
    return min(smallest, min(rotations(unit.translate(COMPLEMENT)[::-1])))


def is_primitive(unit: str) -> bool:
    """A unit that equals none of its proper rotations is no repetition of a shorter one."""
    return unit not in rotations(unit)[1:]


def unit_faults(unit: str, label: str, unrolled: str, settings: Settings) -> list[str]:
    """Length, label and text of the unit. Which copy was found is left to the growth of the repeat."""
    faults = []
    length = len(unit)
    if label != label_of(length):
        faults.append(f"label is {label}, the unit has {length} bases")
    if not settings.min_unit_length <= length <= settings.max_unit_length:
        faults.append(f"unit length {length} lies outside {settings.min_unit_length} to {settings.max_unit_length}")
    if any(unrolled[i] != unrolled[i + length] for i in range(len(unrolled) - length)):
        faults.append(f"the unit line does not repeat after {length} bases")
    if not is_primitive(unit):
        faults.append(f"unit {unit} is a repetition of a shorter unit")
    found = unrolled[:length]
    if settings.unit_mode == AS_IS:
        if unit not in rotations(found):
            faults.append(f"unit is {unit}, no rotation of {found}")
    elif unit != normal_form(found, settings.unit_mode):
        faults.append(f"unit is {unit}, must be {normal_form(found, settings.unit_mode)}")
    return faults


# --- one repeat -------------------------------------------------------------------------------------------

def perfection(alignment: Alignment, settings: Settings) -> float:
    """Percentage in single precision; settings decide how bridged N count."""
    length = len(alignment.unrolled)
    ns = alignment.count(BRIDGED_N)
    good = length - sum(column.is_edit for column in alignment.columns)
    if settings.n_perfection_mode != AS_MATCH:
        good -= ns
    if settings.n_perfection_mode == AS_NEUTRAL:
        length -= ns
    return single(single(single(good) / single(length)) * 100.0)


def score_of(alignment: Alignment, unit_length: int, settings: Settings) -> int:
    """Matches beyond the first copy of the unit earn 1, edits cost their penalty, bridged N nothing."""
    edits = sum(settings.penalty(column.kind) for column in alignment.columns if column.is_edit)
    return alignment.count(MATCH) - unit_length + edits


def longest_n_run(residues: str) -> int:
    return max(map(len, re.findall("N+", residues)), default=0)


class RepeatCheck:
    """Compares one reported repeat with the record that it lies in."""

    def __init__(self, repeat: ReportedRepeat, residues: str, settings: Settings) -> None:
        self.repeat = repeat
        self.residues = residues
        self.settings = settings
        self.faults: list[str] = []

    def run(self) -> Alignment | None:
        """Collect the faults; the alignment is returned if it can be read."""
        repeat = self.repeat
        if not 0 < repeat.start <= repeat.end <= len(self.residues):
            self.faults.append(f"lies at {repeat.start} to {repeat.end}, the record has {len(self.residues)} bases")
            return None
        if repeat.unit.strip("ACGT") or not repeat.unit:
            self.faults.append(f"unit {repeat.unit!r} is no stretch of bases")
            return None
        try:
            alignment = self.read_alignment()
        except ReportError as fault:
            self.faults.append(str(fault))
            return None
        self.check(alignment)
        return alignment

    def expect(self, what: str, stated: object, true: object) -> None:
        if stated != true:
            self.faults.append(f"{what} is {stated}, must be {true}")

    def read_alignment(self) -> Alignment:
        """The alignment of the repeat, after its flanks have been compared."""
        repeat, flanking = self.repeat, self.settings.flanking
        lines, left_flank, right_flank = strip_flanks(repeat.alignment, self.settings)
        first = max(0, repeat.left - flanking)
        self.expect("left flank", left_flank, self.residues[first:repeat.left])
        self.expect("right flank", right_flank, self.residues[repeat.right:repeat.right + flanking])
        alignment = read_columns(lines, repeat.left)
        if alignment.residues != self.residues[repeat.left:repeat.right]:
            raise ReportError(f"the sequence line does not show bases {repeat.start} to {repeat.end}")
        if len(alignment.unrolled) < len(repeat.unit):
            raise ReportError("the alignment is shorter than one unit")
        return alignment

    def check(self, alignment: Alignment) -> None:
        repeat, settings = self.repeat, self.settings
        self.check_numbers(alignment)
        self.check_ns(alignment)
        self.check_selection(alignment)
        unit_problems = unit_faults(repeat.unit, repeat.label, alignment.unrolled, settings)
        self.faults += unit_problems
        if not unit_problems:
            extension = Extension(alignment, len(repeat.unit), self.residues, settings)
            self.faults += extension_faults(extension, repeat.unit)
        self.expect("layout of the entry", repeat.line, entry_line(repeat, settings))

    def check_numbers(self, alignment: Alignment) -> None:
        repeat = self.repeat
        self.expect("bp", repeat.bases, repeat.right - repeat.left)
        self.expect("BP", repeat.length, len(alignment.unrolled))
        self.expect("score", repeat.score, score_of(alignment, len(repeat.unit), self.settings))
        self.expect("perfection", repeat.perfection, f"{perfection(alignment, self.settings):.3f}")
        names = ["mismatches", "insertions", "deletions", "Ns"]
        kinds = [MISMATCH, INSERTION, DELETION, BRIDGED_N]
        for name, kind, stated in zip(names, kinds, repeat.counts):
            self.expect(f"number of {name}", stated, alignment.count(kind))
        if repeat.events is not None:
            self.expect("list of events", repeat.events, "Missense: " + alignment.events(repeat.left))

    def check_ns(self, alignment: Alignment) -> None:
        """The ends are matches; an N is bridged, in a run that is short enough, or it is an edit."""
        columns, settings = alignment.columns, self.settings
        if columns[0].kind != MATCH or columns[-1].kind != MATCH:
            self.faults.append("begins or ends with an N or an edit")
        if not settings.bridges_ns:
            if alignment.count(BRIDGED_N):
                self.faults.append("shows bridged Ns although N is a residue here")
        elif longest_n_run(alignment.residues) > settings.ns_in_a_row:
            self.faults.append(f"bridges more than {settings.ns_in_a_row} successive Ns")

    def check_selection(self, alignment: Alignment) -> None:
        """Thresholds of score and length, and the range of perfection, all inclusive."""
        settings, unit_length = self.settings, len(self.repeat.unit)
        self.expect_at_least("score", score_of(alignment, unit_length, settings), settings.min_score.at(unit_length))
        self.expect_at_least("BP", len(alignment.unrolled), settings.min_length.at(unit_length))
        percent = perfection(alignment, settings)
        self.expect_at_least("perfection", percent, settings.min_perfection.low)
        if percent > settings.max_perfection.high:
            self.faults.append(f"perfection {percent} is above {settings.max_perfection.high}")

    def expect_at_least(self, what: str, value: float, least: float) -> None:
        if value < least:
            self.faults.append(f"{what} {value} is below {least}")


# --- the repeats of one record ----------------------------------------------------------------------------

def order_and_overlap_faults(repeats: list[ReportedRepeat], settings: Settings) -> list[tuple[int, str]]:
    """Faults between repeats of one record, each with the position of the later repeat in the list."""
    faults = []
    reaching: list[tuple[int, ReportedRepeat]] = []
    for position, b in enumerate(repeats):
        if position > 0:
            faults += [(position, fault) for fault in order_faults(repeats[position - 1], b, settings)]
        if settings.removes_overlapping:
            reaching = [(number, a) for number, a in reaching if a.right > b.left]
            faults += [(position, f"mostly overlaps with repeat {number}") for number, a in reaching
                       if mostly_overlap(a, b)]
            reaching.append((position + 1, b))
    return faults


def order_faults(a: ReportedRepeat, b: ReportedRepeat, settings: Settings) -> list[str]:
    """Repeats go by start, then end, then the order of finding: by unit length, unless seeds were extended."""
    if (b.start, b.end) < (a.start, a.end):
        return ["must stand before the repeat above it"]
    same_span = (b.start, b.end) == (a.start, a.end)
    if same_span and settings.mode != EXTEND_EXACT and len(b.unit) < len(a.unit):
        return ["must stand before the repeat of equal span above it, whose unit is longer"]
    return []


def mostly_overlap(a: ReportedRepeat, b: ReportedRepeat) -> bool:
    """Whether one of two repeats hides the other up to less than a unit.

    Removal compares every repeat that it leaves with all that begin before its end and are left as well, so
    no such pair can remain. Repeats that are not reported take part in the removal and cannot bring one back.
    """
    overlap = min(a.right, b.right) - max(a.left, b.left)
    return overlap > 0 and any(x.right - x.left < overlap + len(x.unit) for x in (a, b))


# --- the whole report -------------------------------------------------------------------------------------

class ReportCheck:
    """Walks through a report and its input side by side."""

    def __init__(self, report: str, fasta: bytes, floats_are_short: bool = False) -> None:
        self.lines = LineReader(report)
        self.records, self.well_formed = read_fasta(fasta)
        self.settings = read_settings(self.lines, floats_are_short)
        self.findings = Findings()

    def run(self) -> Findings:
        for number, record in enumerate(self.records, start=1):
            if self.settings.first_record <= number <= self.settings.last_record:
                try:
                    self.check_record(number, record)
                except ReportError as fault:
                    self.findings.faults.append(f"record {number}: {fault}")
                    return self.findings
        self.check_closing()
        return self.findings

    def check_record(self, number: int, record: Record) -> None:
        self.lines.expect(f">{record.header}", "the header of the record")
        self.lines.expect(f"sequence length: {len(record.residues)}", "the length of the record")
        closing = f'# Analysis of sequence "{record.header}" completed.'
        repeats = []
        while self.lines.peek() != closing:
            repeats.append(read_repeat(self.lines, self.settings))
            self.check_repeat(number, len(repeats), repeats[-1], record.residues)
        self.lines.expect(closing, "the closing line of the record")
        for position, fault in order_and_overlap_faults(repeats, self.settings):
            self.add_fault(number, position + 1, repeats[position], fault)
        self.findings.records += 1

    def check_repeat(self, record: int, number: int, repeat: ReportedRepeat, residues: str) -> None:
        check = RepeatCheck(repeat, residues, self.settings)
        alignment = check.run()
        for fault in check.faults:
            self.add_fault(record, number, repeat, fault)
        self.findings.repeats += 1
        if alignment is not None:
            self.findings.kinds.update(column.kind for column in alignment.columns)

    def add_fault(self, record: int, number: int, repeat: ReportedRepeat, fault: str) -> None:
        self.findings.faults.append(f"record {record}, repeat {number} ({repeat.start} : {repeat.end}): {fault}")

    def check_closing(self) -> None:
        """A run that met a malformed record ends without its closing line."""
        rest = self.lines.lines[self.lines.next:]
        wanted = ["## Finished successfully. ##"] if self.well_formed else []
        if rest != wanted or not self.lines.ends_in_line_end:
            self.findings.faults.append(f"end of the report is {rest[:3]}, must be {wanted} and a line end")


def check_report(report: bytes, fasta: bytes, floats_are_short: bool = False) -> Findings:
    """All faults of a report; a report whose header cannot be read raises ReportError."""
    return ReportCheck(report.decode("latin-1"), fasta, floats_are_short).run()


def main(arguments: list[str] | None = None) -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("report", type=Path)
    parser.add_argument("fasta", type=Path)
    parser.add_argument("--short-floats", action="store_true")
    options = parser.parse_args(arguments)
    try:
        findings = check_report(options.report.read_bytes(), options.fasta.read_bytes(), options.short_floats)
    except (OSError, ReportError) as fault:
        print(f"{options.report}: {fault}", file=sys.stderr)
        return 2
    for fault in findings.faults:
        print(fault)
    print(f"{findings.repeats} repeats in {findings.records} records, {len(findings.faults)} faults")
    return 1 if findings.faults else 0


if __name__ == "__main__":
    sys.exit(main())
