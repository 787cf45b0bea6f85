# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The constants that were chosen by measurement, with values on either side, and the works that they matter to."""

from __future__ import annotations

from dataclasses import dataclass
from pathlib import Path

from inputs import Genome, background, background_records, diverged_array
from workloads import CENTROMERE, CHR22, DEFAULTS, ECOLI, EXTEND_EXACT, FALCIPARUM, KBP, MBP, Work

FILTER = "src/imperfect/filter/"
WRAPAROUND = "src/imperfect/wraparound/"
LOOK_AHEAD = "src/imperfect/look_ahead/"


@dataclass(frozen=True)
class Constant:
    """`name` is defined once in `file`, as `name = value;` or as a function that returns the value."""

    name: str
    file: str
    values: tuple[str, ...]
    works: tuple[Work, ...]

    @property
    def label(self) -> str:
        """Some files use the same name."""
        return f"{self.name} in {Path(self.file).name}"

    @property
    def pattern(self) -> str:
        """Its second group is the value."""
        return rf"(\b{self.name}(?: = |\([^)]*\) {{ return ))([^;]*)(;)"


def constants(divisor: int) -> list[Constant]:
    random_bases = Work(DEFAULTS, background(4 * MBP // divisor))
    at_rich = Work(DEFAULTS, Genome(FALCIPARUM, 2 * MBP // divisor))
    human = Work(DEFAULTS, Genome(CHR22, MBP // divisor))
    array = Work(DEFAULTS, diverged_array(40 * KBP // divisor))
    extended_array = Work(EXTEND_EXACT, diverged_array(40 * KBP // divisor))
    middle_units = Work(("-u", "11", "-U", "50"), Genome(ECOLI, 200 * KBP // divisor))
    middle_units_human = Work(("-u", "41", "-U", "50"), Genome(CHR22, 200 * KBP // divisor))
    long_units_human = Work(("-u", "291", "-U", "300"), Genome(CHR22, 20 * KBP // divisor))
    satellite = Work(("-u", "170", "-U", "180"), Genome(CENTROMERE, 60 * KBP // divisor))
    long_satellite = Work(("-u", "178", "-U", "178"), Genome(CENTROMERE, 640 * KBP // divisor))
    cheap = Work(("-u", "11", "-U", "20", "-m", "-2", "-g", "-3"), Genome(ECOLI, 20 * KBP // divisor))
    tiny_records = Work(DEFAULTS, background_records(4 * MBP // divisor, 150))
    records_long_units = Work(("-u", "51", "-U", "60"), background_records(200 * KBP // divisor, 1000))
    records_middle_units = Work(("-u", "11", "-U", "60"), background_records(200 * KBP // divisor, 1000))
    medium_records = Work(DEFAULTS, background_records(4 * MBP // divisor, 3000))
    deep = Work(("-r", "8"), Genome(FALCIPARUM, 500 * KBP // divisor))

    filtered = (random_bases, at_rich, middle_units)
    extended = (at_rich, human, array)
    filter_cpp = FILTER + "candidate_filter.cpp"
    return [
        Constant("horizon_of_glance", filter_cpp, ("3 + unit_length", "12 + unit_length"), filtered),
        Constant("horizon_of_short_sequence", filter_cpp, ("8 + unit_length", "32 + unit_length"),
                 (records_long_units,)),
        Constant("kFarBeyondUnit", filter_cpp, ("16", "64"), filtered),
        Constant("kNearBeyondUnit", filter_cpp, ("8", "32"), filtered),
        Constant("kShortUnit", filter_cpp, ("3", "12"), filtered),
        Constant("kChecksWithoutLossOfFullLanes", filter_cpp, ("4", "16"), (*filtered, middle_units_human)),
        Constant("kFirstCheck", filter_cpp, ("6", "14"), filtered),
        Constant("kMaxGain", filter_cpp, ("6", "12"), filtered),
        Constant("kFirstCheckOfGlance", filter_cpp, ("2", "8"), filtered),
        Constant("kFewDoubts", filter_cpp, ("kFilterStarts / 128", "kFilterStarts / 8"), filtered),
        Constant("kMaxGainOfGlance", filter_cpp, ("2", "5"), filtered),
        Constant("kFewestStartsForGlances", filter_cpp, ("std::ptrdiff_t{kFilterStarts}",
                                                         "12 * std::ptrdiff_t{kFilterStarts}"),
                 (records_long_units, medium_records)),
        Constant("kFewestToLookAt", filter_cpp, ("1", "32"), (tiny_records, random_bases)),
        Constant("kResiduesPerCheck", FILTER + "candidate_filter_kernel.cpp", ("1", "4"), filtered),
        Constant("kFewEdits", FILTER + "start_filter.cpp", ("12", "48"), (middle_units, middle_units_human, cheap)),
        Constant("kVeryFewEdits", FILTER + "start_filter.cpp", ("8", "16"), (*filtered, cheap)),
        Constant("kShortUnit", FILTER + "start_filter.cpp", ("3", "12"), filtered),
        Constant("kEnoughGlances", FILTER + "start_filter.cpp", ("4 * std::size_t{kFilterStarts}",
                                                                 "64 * std::size_t{kFilterStarts}"),
                 (cheap, middle_units_human)),
        Constant("kGroupsInUnit", FILTER + "start_filter.cpp", ("4", "16"), (middle_units_human, long_units_human, cheap)),
        Constant("kMostRowsPerBase", WRAPAROUND + "wraparound_bound.cpp", ("8", "128"), (cheap, middle_units_human)),
        Constant("kWorthALook", WRAPAROUND + "wraparound_bound.cpp", ("16", "64"), (middle_units_human, long_units_human)),
        Constant("kOfTen", WRAPAROUND + "wraparound_bound.cpp", ("2", "8"), (long_units_human, satellite)),
        Constant("kCallsPerTry", WRAPAROUND + "wraparound_bound.cpp", ("4", "64"), (long_units_human, satellite)),
        Constant("kLengthsInUnit", WRAPAROUND + "joint_bound.cpp", ("5", "20"), (middle_units_human, long_units_human)),
        Constant("kSplit", WRAPAROUND + "joint_bound.cpp", ("3", "12"), (middle_units_human, long_units_human)),
        Constant("kJointGroupsInUnit", WRAPAROUND + "joint_bound.cpp", ("7", "28"),
                 (middle_units_human, long_units_human)),
        Constant("kFewestStarts", WRAPAROUND + "joint_bound.cpp", ("1", "4"), (middle_units, middle_units_human)),
        Constant("kWraparoundRowsPerLook", WRAPAROUND + "wraparound_kernel.h", ("4", "16"), (cheap, middle_units_human)),
        Constant("kMostBlocks", FILTER + "start_queue.h", ("8", "128"), filtered),
        Constant("kFewResiduesPerSurvivor", FILTER + "series_filter.cpp", ("2", "16"), (tiny_records, medium_records)),
        Constant("kLongestUnit", FILTER + "series_filter.h", ("10", "30"), (records_middle_units,)),
        Constant("kMostResiduesOfRecord", "src/driver/record_series.cpp", ("1024", "8192"), (medium_records,)),
        Constant("kMostResidues", "src/driver/record_series.cpp", ("8192", "131072"), (tiny_records, medium_records)),
        Constant("kFewEdits", LOOK_AHEAD + "look_ahead.h", ("1", "5"), (*extended, deep)),
        Constant("kShallowLevel", LOOK_AHEAD + "look_ahead.h", ("4", "9"), (at_rich, deep)),
        Constant("kEditsForEach", LOOK_AHEAD + "bit_look_ahead.h", ("1", "3"), extended),
        Constant("kMoreEdits", LOOK_AHEAD + "bit_look_ahead.h", ("1", "6"), extended),
        Constant("kMostSlots", LOOK_AHEAD + "decision_memory.h", ("std::size_t{1} << 12", "std::size_t{1} << 16"),
                 (long_units_human, satellite)),
        Constant("kSlotsPerDiagonal", LOOK_AHEAD + "decision_memory.h", ("1", "64"), (long_units_human, satellite)),
        Constant("kShortestKeptUnit", "src/imperfect/record_search.h", ("20", "90"),
                 (middle_units_human, long_units_human, cheap)),
        Constant("kWords", LOOK_AHEAD + "mismatch_masks.h", ("2", "8"), (array, deep)),
        Constant("kWorthStoring", "src/imperfect/ways/stored_ways.h", ("0", "30"), (*extended, extended_array)),
        Constant("kWorthStoringLongUnit", "src/imperfect/ways/stored_ways.h", ("16", "256"),
                 (middle_units_human, long_units_human, satellite)),
        Constant("kMeetingPlaceBits", "src/imperfect/ways/stored_ways.h", ("0", "6"), (long_satellite,)),
        Constant("kMostNodes", "src/imperfect/ways/stored_ways.h", ("200'000", "2'000'000"), (long_satellite, array)),
        Constant("kMostNotedEdits", "src/imperfect/record_search.cpp", ("16", "256"), (array, at_rich)),
    ]
