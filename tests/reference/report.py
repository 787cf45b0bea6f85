# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The legend and the block of one record in each of the five formats."""

from __future__ import annotations

from dataclasses import dataclass

from console import c_string
from fasta import SequenceRecord
from repeat import Repeat
from settings import EXTENDED, FASTA, GFF, NATIVE, ONE_PER_LINE, Settings, single
from unit_form import is_repetition, reported_unit

LABELS = ["", "mononucleotide", "dinucleotide", "trinucleotide", "tetranucleotide", "pentanucleotide",
          "hexanucleotide"]
LEGEND = ["Repeat unit length",
          "Position at which repeat starts in current sequence",
          "Position at which repeat ends in current sequence",
          "Length of repeat in original sequence, i.e. (end-start+1)",
          "Normalized repeat length, i.e. (end-start+1-insertions+deletions)",
          "Repeat score",
          "Repeat perfection"]
EXTENDED_LEGEND = ["Number of mismatches", "Number of insertions", "Number of deletions"]
ONE_PER_LINE_COLUMNS = ["seq-name", "unit-length", "perfection", "start", "end", "length", "repeat-number", "score",
                        "mismatches", "insertions", "deletions", "Ns", "unit", "repeat-seq"]
LONGEST_GFF_UNIT = 50


def legend(settings: Settings, prefix: str) -> str:
    if settings.output_format == ONE_PER_LINE:
        flanks = ["left-flanking-seq", "right-flanking-seq"] if settings.flanking else []
        return "\t".join(ONE_PER_LINE_COLUMNS + flanks) + "\n"
    if settings.output_format in (GFF, FASTA):
        return ""
    columns = list(LEGEND)
    if settings.output_format == EXTENDED:
        columns += EXTENDED_LEGEND + ([] if settings.ns_as_missense else ["Number of N's"])
    columns.append("Repeat unit")
    lines = ["%sColumn %2d: %s\n" % (prefix, number, text) for number, text in enumerate(columns, 1)]
    return (f"{prefix}\n{prefix}Columns in lines of output providing repeat information:\n"
            + "".join(lines) + f"{prefix}\n")


def record_block(settings: Settings, record: SequenceRecord, repeats: list[Repeat]) -> str:
    header, name = c_string(record.header), c_string(record.name)
    entries = "".join(Entry(settings, record.residues, name, repeat).text() for repeat in repeats)
    if settings.output_format in (NATIVE, EXTENDED):
        return (f">{header}\nsequence length: {len(record.residues)}\n" + entries
                + f'# Analysis of sequence "{header}" completed.\n')
    if settings.output_format != FASTA and settings.sequence_info_as_comment:
        return (f"# Full sequence name:\n#>{header}\n##sequence-region {name} 1 {len(record.residues)}\n" + entries
                + f'# Analysis of sequence "{name}" completed.\n')
    return entries


@dataclass
class Entry:
    """What is written about one repeat."""

    settings: Settings
    residues: str
    name: str
    repeat: Repeat

    def text(self) -> str:
        """Empty when the perfection is out of range or the unit repeats a shorter one."""
        if not self.repeat.perfection_in_range(self.settings) or is_repetition(self.unit_as_found()):
            return ""
        writers = {NATIVE: self.native, EXTENDED: self.extended, GFF: self.gff,
                   ONE_PER_LINE: self.one_line, FASTA: self.fasta}
        return writers[self.settings.output_format]()

    def unit_as_found(self) -> str:
        return self.residues[self.repeat.unit_begin:self.repeat.unit_end]

    def unit(self) -> str:
        return reported_unit(self.unit_as_found(), self.settings.report_unit_mode)

    def start(self) -> int:
        return self.repeat.pos_left + 1

    def perfection(self) -> float:
        return self.repeat.perfection(self.settings)

    def repeat_number(self) -> float:
        return single(single(self.repeat.repeat_length) / single(self.repeat.unit_length))

    def own_bases(self) -> str:
        return self.residues[self.repeat.pos_left:self.repeat.pos_right]

    def left_flank(self) -> str:
        return self.residues[max(0, self.repeat.pos_left - self.settings.flanking):self.repeat.pos_left]

    def right_flank(self) -> str:
        return self.residues[self.repeat.pos_right:self.repeat.pos_right + self.settings.flanking]

    def edit_counts(self) -> tuple[int, int, int]:
        return self.repeat.mismatches, self.repeat.insertions, self.repeat.deletions

    def head(self) -> str:
        """The columns that formats 0 and 1 share."""
        length = self.repeat.unit_length
        label = "%16s" % LABELS[length] if length < 7 else "%5d-nucleotide" % length
        return label + " %9d : %9d | %6d bp | %6d BP | %6d pt | %7.3f %% | " % (
            self.start(), self.repeat.pos_right, self.repeat.span, self.repeat.repeat_length, self.repeat.score,
            self.perfection())

    def native(self) -> str:
        return f"{self.head()}unit {self.unit()}\n{self.display()}"

    def extended(self) -> str:
        edits = "%3d mis | %3d ins | %3d del | " % self.edit_counts()
        ns = "" if self.settings.ns_as_missense else "%3d N | " % self.repeat.num_ns
        missense = "".join(f"({position - self.repeat.pos_left + 1},{kind})," for position, kind in self.repeat.events)
        return f"{self.head()}{edits}{ns} unit {self.unit()}\nMissense: {missense}\n{self.display()}"

    def gff(self) -> str:
        unit = self.unit() if self.repeat.unit_length <= LONGEST_GFF_UNIT else "."
        start, end, perfection = self.start(), self.repeat.pos_right, self.perfection()
        place = "%s\tVorlan\ttandem-repeat\t%d\t%d\t%.2f\t.\t.\t" % (self.name, start, end, perfection)
        return place + 'Name="repeat_region %d-%d unit_size %d repeat_number %.3f perfection %.3f unit %s"\n' % (
            start, end, self.repeat.unit_length, self.repeat_number(), perfection, unit)

    def one_line(self) -> str:
        columns = [self.name, str(self.repeat.unit_length), "%.3f" % self.perfection(), str(self.start()),
                   str(self.repeat.pos_right), str(self.repeat.span), "%7.3f" % self.repeat_number(),
                   str(self.repeat.score), *map(str, self.edit_counts()),
                   "." if self.settings.ns_as_missense else str(self.repeat.num_ns), self.unit(), self.own_bases()]
        if self.settings.flanking:
            columns += [self.left_flank(), self.right_flank()]
        return "\t".join(columns) + "\n"

    def fasta(self) -> str:
        counts = (self.name, len(self.left_flank()) + 1, self.repeat.span, self.repeat.unit_length, self.start(),
                  self.repeat.pos_right, self.repeat_number(), self.repeat.score, self.perfection())
        return (">%s %d %d %d %d %d %.3f %d %.3f %d %d %d\n" % (counts + self.edit_counts())
                + f"{self.left_flank()}{self.own_bases()}{self.right_flank()}\n")

    def display(self) -> str:
        """The sequence or the alignment below an entry."""
        if self.settings.print_sequence_mode == 0:
            return ""
        if self.settings.print_sequence_mode == 2:
            return "".join(line + "\n" for line in self.alignment())
        if self.settings.flanking == 0:
            return self.own_bases() + "\n"
        return f"{self.left_flank()}:{self.own_bases()}:{self.right_flank()}\n"

    def alignment(self) -> tuple[str, str, str]:
        """Sequence, match and unit line, with flanks set off by colons."""
        columns = self.aligned_columns()
        sequence, match, unit = ("".join(column[row] for column in columns) for row in range(3))
        if self.settings.flanking == 0:
            return sequence, match, unit
        left, right = self.left_flank() + ":", ":" + self.right_flank()
        before, after = " " * len(left), " " * len(right)
        return left + sequence + right, before + match + after, before + unit + after

    def aligned_columns(self) -> list[str]:
        """One text of three characters per column."""
        repeat, columns = self.repeat, []
        events = list(repeat.events)
        position, cursor = repeat.pos_left, repeat.turned(repeat.cursor_backward, 1)
        while position < repeat.pos_right:
            kind = events.pop(0)[1] if events and events[0][0] == position else ""
            base = "-" if kind == "D" else self.residues[position]
            expected = "-" if kind == "I" else self.residues[cursor]
            match = " " if kind else ("*" if base == "N" else "|")
            columns.append(base + match + expected)
            position += kind != "D"
            cursor = cursor if kind == "I" else repeat.turned(cursor, 1)
        return columns
