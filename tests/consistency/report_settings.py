# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The settings of a run, read back from the header block of its report."""

from __future__ import annotations

import math
import re
import struct
from dataclasses import dataclass, field

UNLIMITED = 2147483647
LOWEST = -2147483648
EXACT, EXTEND_EXACT, IMPERFECT = range(3)
AS_MISMATCH, AS_NEUTRAL, AS_MATCH = range(3)
AS_IS, ALPHABETICAL, ALPHABETICAL_BOTH_STRANDS = range(3)

INTEGER = r"(-?\d+)"
RULE = r"maximum \((-?\d+), (-?\d+)\+(\S+)\*unitlength \)"
MODES = ["exact repeats", "exact repeats which are extended to imperfect repeats", "imperfect repeats"]
N_PERFECTION_MODES = ["asMismatch", "asNeutral", "asMatch"]
UNIT_MODES = ["as they are", "alphabetical normal form", "alphabetical normal form using reverse complement"]
FORMATS = ["vorlan format", "extended vorlan format"]


class ReportError(Exception):
    """The report departs from its layout, so that the rest of it cannot be read."""


class LineReader:
    """The lines of a report, taken one by one."""

    def __init__(self, text: str) -> None:
        self.lines = text.split("\n")
        self.ends_in_line_end = self.lines.pop() == ""
        self.next = 0

    def peek(self) -> str | None:
        return self.lines[self.next] if self.next < len(self.lines) else None

    def take(self, meaning: str) -> str:
        line = self.peek()
        if line is None:
            raise ReportError(f"the report ends where {meaning} is due")
        self.next += 1
        return line

    def expect(self, wanted: str, meaning: str) -> None:
        line = self.take(meaning)
        if line != wanted:
            raise ReportError(f"line {self.next}: {meaning} is {line!r}, must be {wanted!r}")


@dataclass(frozen=True)
class Bounds:
    """The values that a single-precision setting can have had, given its text."""

    low: float
    high: float


@dataclass(frozen=True)
class Rule:
    """Threshold per unit length: the constant, or intercept + slope * unit length when that is more."""

    constant: int
    intercept: int
    slope: Bounds

    def at(self, unit_length: int) -> int:
        """The threshold, or the lowest one that the text of the slope allows."""
        line = single(single(self.intercept) + single(single(unit_length) * self.slope.low))
        return max(self.constant, rounded_up(line))


@dataclass
class Settings:
    """What the header block of a report tells about the run."""

    first_record: int = 1
    last_record: int = 2 ** 32 - 1
    mode: int = IMPERFECT
    score_reduction: int = UNLIMITED
    min_unit_length: int = 1
    max_unit_length: int = 10
    min_score: Rule = field(default_factory=lambda: Rule(6, 0, Bounds(1.0, 1.0)))
    min_length: Rule = field(default_factory=lambda: Rule(0, 0, Bounds(0.0, 0.0)))
    min_perfection: Bounds = Bounds(0.0, 0.0)
    max_perfection: Bounds = Bounds(100.0, 100.0)
    n_is_missense: bool = False
    ns_in_a_row: int = 2
    mismatch_score: int = -5
    indel_score: int = -5
    prefers_longer: int = 1
    flanking: int = 0
    removes_overlapping: bool = True
    n_perfection_mode: int = AS_MISMATCH
    unit_mode: int = ALPHABETICAL_BOTH_STRANDS
    extended: bool = True

    @property
    def bridges_ns(self) -> bool:
        """N runs are crossed at no cost; otherwise N is a residue that matches nothing."""
        return self.ns_in_a_row != 0 and not self.n_is_missense

    def penalty(self, kind: str) -> int:
        """Score of one edit: 'M', 'I' or 'D'."""
        return self.mismatch_score if kind == "M" else self.indel_score


def single(value: float) -> float:
    """The value rounded to single precision."""
    try:
        return struct.unpack("f", struct.pack("f", value))[0]
    except OverflowError:
        return math.copysign(math.inf, value)


def rounded_up(value: float) -> int:
    """Ceiling as a 32-bit integer that saturates; no number at all demands nothing."""
    if math.isnan(value):
        return LOWEST
    if math.isinf(value):
        return UNLIMITED if value > 0 else LOWEST
    return max(LOWEST, min(UNLIMITED, math.ceil(value)))


def bounds_of(text: str, floats_are_short: bool) -> Bounds:
    """Six significant digits are printed, so a longer value is known to half a unit of the sixth."""
    value = float(text)
    if floats_are_short or value == 0 or not math.isfinite(value):
        return Bounds(single(value), single(value))
    half = 0.5000001 * 10.0 ** (math.floor(math.log10(abs(value))) - 5)
    return Bounds(single(value - half), single(value + half))


class SettingsReader:
    """Takes the header block line by line, in its fixed order."""

    def __init__(self, lines: LineReader, floats_are_short: bool) -> None:
        self.lines = lines
        self.floats_are_short = floats_are_short
        self.settings = Settings()

    def read(self) -> Settings:
        self.read_opening()
        self.read_search_lines()
        self.read_threshold_lines()
        self.read_alignment_lines()
        self.read_report_lines()
        self.read_legend()
        return self.settings

    def value(self, label: str, pattern: str = "(.*)") -> re.Match[str]:
        """The value that follows a label, which is padded to 40 columns."""
        start = f"# {label:<40} "
        line = self.lines.take(f"the setting {label.strip()!r}")
        found = re.fullmatch(pattern, line[len(start):], re.S)
        if not line.startswith(start) or found is None:
            raise ReportError(f"line {self.lines.next}: {line!r} is not the setting {label.strip()!r}")
        return found

    def number(self, label: str) -> int:
        return int(self.value(label, INTEGER)[1])

    def choice(self, label: str, names: list[str]) -> int:
        pattern = "|".join(re.escape(name) for name in names)
        return names.index(self.value(label, pattern)[0])

    def rule(self, label: str) -> Rule:
        constant, intercept, slope = self.value(label, RULE).groups()
        return Rule(int(constant), int(intercept), bounds_of(slope, self.floats_are_short))

    def read_opening(self) -> None:
        self.lines.expect("# Results computed with:", "the opening line")
        self.lines.expect("#    Vorlan, version 3.3.10", "the version line")
        self.lines.expect("# Parameter settings used in this search: ", "the title of the settings")
        self.value("Input file name:")
        if (self.lines.peek() or "").startswith("# Output file name:"):
            self.value("Output file name:")

    def read_search_lines(self) -> None:
        chosen = self.settings
        found = self.value("   Sequence range to process:", r"(\d+) - (\d+|last sequence)")
        chosen.first_record = int(found[1])
        if found[2] != "last sequence":
            chosen.last_record = int(found[2])
        chosen.mode = self.choice("   Satellites searched for:", MODES)
        if chosen.mode != EXACT:
            self.number("   Recursion depth:")
            reduction = self.value("   Maximum score reduction:", r"-|-?\d+")[0]
            chosen.score_reduction = UNLIMITED if reduction == "-" else int(reduction)
        chosen.min_unit_length = self.number("   Minimum unit length:")
        chosen.max_unit_length = self.number("   Maximum unit length:")

    def read_threshold_lines(self) -> None:
        chosen = self.settings
        chosen.min_score = self.rule("   Minimum score:")
        chosen.min_length = self.rule("   Minimum length:")
        found = self.value("   Min. to max. perfection range:", r"(\S+) % - (\S+) %")
        chosen.min_perfection = bounds_of(found[1], self.floats_are_short)
        chosen.max_perfection = bounds_of(found[2], self.floats_are_short)

    def read_alignment_lines(self) -> None:
        chosen = self.settings
        chosen.n_is_missense = self.choice("   Treat N's as:", ["neutral", "missense"]) == 1
        chosen.ns_in_a_row = self.number("   Max. succesive N's allowed:")
        if chosen.mode != EXACT:
            chosen.mismatch_score = self.number("   Mismatch score:")
            chosen.indel_score = self.number("   Indel score:")
        label = "   Show shorter (not longer) of two repeat variants with equal score: "
        chosen.prefers_longer = 1 - self.choice(label, ["no", "yes"])

    def read_report_lines(self) -> None:
        chosen = self.settings
        chosen.flanking = self.number("   Number of flanking nucletides:")
        chosen.removes_overlapping = self.choice("   Remove mostly overlapping satellites:", ["no", "yes"]) == 1
        self.choice("   Write file with masked seq.:", ["no", "yes"])
        chosen.n_perfection_mode = self.choice("   Computing perfections treat N's:", N_PERFECTION_MODES)
        chosen.unit_mode = self.choice("   Report units as:", UNIT_MODES)
        chosen.extended = self.choice("   Output format:", FORMATS) == 1
        self.choice("   Print sequence mode:", ["print alignment"])

    def read_legend(self) -> None:
        self.lines.expect("# ", "the line before the legend")
        self.lines.expect("# Columns in lines of output providing repeat information:", "the title of the legend")
        for number, text in enumerate(self.legend_texts(), start=1):
            self.lines.expect(f"# Column {number:2d}: {text}", f"column {number} of the legend")
        self.lines.expect("# ", "the line after the legend")

    def legend_texts(self) -> list[str]:
        texts = [
            "Repeat unit length",
            "Position at which repeat starts in current sequence",
            "Position at which repeat ends in current sequence",
            "Length of repeat in original sequence, i.e. (end-start+1)",
            "Normalized repeat length, i.e. (end-start+1-insertions+deletions)",
            "Repeat score",
            "Repeat perfection",
        ]
        if self.settings.extended:
            texts += ["Number of mismatches", "Number of insertions", "Number of deletions"]
            if not self.settings.n_is_missense:
                texts.append("Number of N's")
        return texts + ["Repeat unit"]


def read_settings(lines: LineReader, floats_are_short: bool = False) -> Settings:
    """The settings of a run; floats_are_short tells that no float was given with more than six digits."""
    return SettingsReader(lines, floats_are_short).read()
