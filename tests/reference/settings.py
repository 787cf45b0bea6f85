# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The settings of a run, single-precision arithmetic and the thresholds per unit length."""

from __future__ import annotations

import ctypes
import math
from dataclasses import dataclass

INT32_MAX = 2**31 - 1
INT32_MIN = -(2**31)
ALL_BITS_SET = 2**32 - 1

EXACT, EXTEND_EXACT, IMPERFECT = 0, 1, 2
NATIVE, EXTENDED, GFF, ONE_PER_LINE, FASTA = 0, 1, 2, 3, 4


def single(value: float) -> float:
    """The single-precision number next to value."""
    return ctypes.c_float(value).value


@dataclass
class Settings:
    """Everything the command line decides, with its defaults."""

    first_sequence: int = 1
    last_sequence: int = -1
    search_mode: int = IMPERFECT
    n_and_perfection_mode: int = 0
    report_unit_mode: int = 2
    print_sequence_mode: int = 2
    output_format: int = EXTENDED
    sequence_info_as_comment: bool = False
    flanking: int = 0
    recursion_depth: int = 5
    max_score_reduction: int = INT32_MAX
    min_unit_length: int = 1
    max_unit_length: int = 10
    ns_as_missense: bool = False
    ns_in_a_row: int = 2
    min_score: int = 6
    min_score_a: int = 0
    min_score_b: float = 1.0
    min_length: int = 0
    min_length_a: int = 0
    min_length_b: float = 0.0
    min_perfection: float = 0.0
    max_perfection: float = 100.0
    prefer_longer: bool = True
    mismatch_score: int = -5
    indel_score: int = -5
    mask_repeats: bool = False
    remove_mostly_hidden: bool = True
    input_name: str = ""
    output_name: str = ""

    def n_runs_are_bridged(self) -> bool:
        """Whether an N inside a repeat can be neutral at all."""
        return self.ns_in_a_row != 0 and not self.ns_as_missense

    def prefer_longer_points(self) -> int:
        """One point of tolerance when the longer of two equal alignments is preferred."""
        return 1 if self.prefer_longer else 0

    def selects(self, record_number: int) -> bool:
        """Whether a record is in the range; both bounds compare as unsigned numbers."""
        first = self.first_sequence & ALL_BITS_SET
        last = self.last_sequence & ALL_BITS_SET
        return first <= record_number <= last


def line_at(intercept: int, slope: float, unit_length: int) -> float:
    """intercept + unit_length * slope, each of the three operations rounded to single precision."""
    product = single(single(unit_length) * single(slope))
    return single(single(intercept) + product)


def saturated_ceiling(value: float) -> int:
    """The ceiling as a signed 32-bit integer; what does not fit becomes the nearest one that does."""
    if math.isinf(value):
        return INT32_MAX if value > 0 else INT32_MIN
    return max(INT32_MIN, min(INT32_MAX, math.ceil(value)))


@dataclass(frozen=True)
class Thresholds:
    """The score and the length that a repeat of a unit length must reach."""

    settings: Settings
    for_seeds: bool = False

    def min_score(self, unit_length: int) -> int:
        if self.for_seeds:
            return max(4, unit_length)
        s = self.settings
        return max(s.min_score, saturated_ceiling(line_at(s.min_score_a, s.min_score_b, unit_length)))

    def min_length(self, unit_length: int) -> int:
        if self.for_seeds:
            return 0
        s = self.settings
        return max(s.min_length, saturated_ceiling(line_at(s.min_length_a, s.min_length_b, unit_length)))
