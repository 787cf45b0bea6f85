# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Command line to settings, with the checks and their messages.

The parser mimics the outcome (accepted or not), not the texts, of the command-line library of the program:
an option and its value are separate words, options may not be repeated, numbers must be read completely.
"""

from __future__ import annotations

import re
from typing import Callable

from console import error
from settings import ALL_BITS_SET, EXACT, EXTEND_EXACT, IMPERFECT, INT32_MAX, INT32_MIN, Settings, line_at, single

SEARCH_MODES = {"exact": EXACT, "extendExact": EXTEND_EXACT, "imperfect": IMPERFECT}
INTEGER = re.compile(r"[ \t\n\v\f\r]*([+-]?\d+)\Z", re.ASCII)
FLOAT = re.compile(r"[ \t\n\v\f\r]*([+-]?(?:\d+\.?\d*|\.\d+)(?:[eE][+-]?\d+)?)\Z", re.ASCII)


class ParseFailure(Exception):
    """What the library reports itself; the run ends with status 1."""


class EarlyEnd(Exception):
    """Help or version was asked for; the run ends with status 0."""


class Rejected(Exception):
    """The settings cannot be used: a message for the user and the result code."""

    def __init__(self, message: str, code: int) -> None:
        super().__init__(message)
        self.message = message
        self.code = code


def read_int(text: str) -> int:
    match = INTEGER.match(text)
    if not match or not INT32_MIN <= int(match.group(1)) <= INT32_MAX:
        raise ParseFailure(f"Couldn't read argument value from string '{text}'")
    return int(match.group(1))


def read_unsigned(text: str) -> int:
    """A minus sign is accepted and wraps around."""
    match = INTEGER.match(text)
    if not match or abs(int(match.group(1))) > ALL_BITS_SET:
        raise ParseFailure(f"Couldn't read argument value from string '{text}'")
    return int(match.group(1)) & ALL_BITS_SET


def read_float(text: str) -> float:
    match = FLOAT.match(text)
    value = single(float(match.group(1))) if match else float("inf")
    if value in (float("inf"), float("-inf")):
        raise ParseFailure(f"Couldn't read argument value from string '{text}'")
    return value


def read_search_mode(text: str) -> int:
    if text not in SEARCH_MODES:
        raise ParseFailure(f"Value '{text}' does not meet constraint: exact|extendExact|imperfect")
    return SEARCH_MODES[text]


# (short flag, long name, setting, reader of the value)
VALUE_OPTIONS: list[tuple[str, str, str, Callable[[str], object]]] = [
    ("N", "succN", "ns_in_a_row", read_int),
    ("", "reportUnit", "report_unit_mode", read_int),
    ("", "NPerfectionMode", "n_and_perfection_mode", read_int),
    ("", "printRepeatSeqMode", "print_sequence_mode", read_int),
    ("", "outputFormat", "output_format", read_int),
    ("f", "flanking", "flanking", read_int),
    ("", "minPerfection", "min_perfection", read_float),
    ("", "maxPerfection", "max_perfection", read_float),
    ("", "firstSeq", "first_sequence", read_int),
    ("", "lastSeq", "last_sequence", read_int),
    ("R", "maximum_score_reduction", "max_score_reduction", read_int),
    ("r", "recursion", "recursion_depth", read_int),
    ("u", "minUnitLen", "min_unit_length", read_unsigned),
    ("U", "maxUnitLen", "max_unit_length", read_unsigned),
    ("", "minLength_b", "min_length_b", read_float),
    ("", "minLength_a", "min_length_a", read_int),
    ("l", "minLength", "min_length", read_int),
    ("", "minScore_b", "min_score_b", read_float),
    ("", "minScore_a", "min_score_a", read_int),
    ("s", "minScore", "min_score", read_int),
    ("m", "mismatchScore", "mismatch_score", read_int),
    ("g", "indelScore", "indel_score", read_int),
    ("M", "searchMode", "search_mode", read_search_mode),
]
# (short flag, long name, setting, value when the switch is given)
SWITCHES: list[tuple[str, str, str, bool]] = [
    ("", "sequenceInfoAsComment", "sequence_info_as_comment", True),
    ("", "NsAsMissense", "ns_as_missense", True),
    ("", "preferShorterRepeats", "prefer_longer", False),
    ("", "maskX", "mask_repeats", True),
    ("D", "dontRemoveMostlyOverlapping", "remove_mostly_hidden", False),
]


def spellings(short: str, long: str) -> set[str]:
    return {"--" + long} | ({"-" + short} if short else set())


class Parser:
    """One pass over the words of a command line."""

    def __init__(self, words: list[str]) -> None:
        self.words = words
        self.settings = Settings()
        self.names: list[str] = []
        self.given: set[str] = set()

    def parse(self) -> None:
        index = 0
        only_names = False
        while index < len(self.words):
            word = self.words[index]
            index += 1
            if only_names or not word.startswith("-") or word == "-":
                self.names.append(word)
            elif word in ("--", "--ignore_rest"):
                only_names = True
            elif not self.take_switch(word):
                index = self.take_value(word, index)

    def note(self, setting: str) -> None:
        if setting in self.given:
            raise ParseFailure("Argument already set!")
        self.given.add(setting)

    def take_switch(self, word: str) -> bool:
        if word in ("-h", "--help", "-v", "--version"):
            raise EarlyEnd()
        for short, long, setting, value in SWITCHES:
            if word in spellings(short, long):
                self.note(setting)
                setattr(self.settings, setting, value)
                return True
        return False

    def take_value(self, word: str, index: int) -> int:
        """Set the option named by word; returns the index of the word after its value."""
        flag, _, value = word.partition(" ")
        for short, long, setting, read in VALUE_OPTIONS:
            if flag in spellings(short, long):
                self.note(setting)
                if not value:
                    if index == len(self.words):
                        raise ParseFailure("Missing a value for this argument!")
                    value = self.words[index]
                    index += 1
                setattr(self.settings, setting, read(value))
                return index
        raise ParseFailure(f"Couldn't find match for argument {word}")


def take_file_names(settings: Settings, names: list[str], invocation: str) -> None:
    """One or two names; with three or more none is taken and the run later misses its input."""
    if not names:
        raise Rejected(
            f"Error: No input file has been specified. Type {invocation} --help for more information.\n", -1)
    if len(names) <= 2:
        settings.input_name = names[0]
        settings.output_name = names[1] if len(names) == 2 else ""


def check_enumerated(s: Settings) -> None:
    intro = "Sorry, a problem occured when parsing the command line options. "
    if not 0 <= s.output_format <= 4:
        raise Rejected(f"{intro}An outputFormat with a value of {s.output_format} is unknown.\n\n", -2)
    if not 0 <= s.print_sequence_mode <= 2:
        raise Rejected(f"{intro}A printRepeatSeqMode with a value of {s.print_sequence_mode} is unknown.\n\n", -2)
    # Both name reportUnit: that is how the message reads.
    for value in (s.n_and_perfection_mode, s.report_unit_mode):
        if not 0 <= value <= 2:
            raise Rejected(f"{intro}An option value of {value} for the reportUnit option is unknown.\n\n", -2)


def check_combination(s: Settings) -> None:
    score = max(single(s.min_score), line_at(s.min_score_a, s.min_score_b, 1))
    length = max(single(s.min_length), line_at(s.min_length_a, s.min_length_b, 1))
    if score < 2.0 and length < 2.0:
        raise Rejected("Sorry, either the minimum score or the minimum length must be larger.\n", -1)
    if s.mismatch_score > -2:
        raise Rejected("Sorry, the mismatch score must be smaller or equal to -2.\n", -1)
    if s.indel_score > -2:
        raise Rejected("Sorry, the indel score must be smaller or equal to -2.\n", -1)
    s.ns_in_a_row = max(0, s.ns_in_a_row)
    s.flanking = max(0, s.flanking)
    check_depth_and_units(s)


def check_depth_and_units(s: Settings) -> None:
    if s.recursion_depth <= 0:
        raise Rejected("Sorry, the recursion depth must be greater than 0.\n"
                       "A value of 0 would corresponds to a perfect search.\n", -1)
    if s.min_unit_length == 0:
        raise Rejected("Sorry, the minimum unit length must be greater than 0.\n", -1)
    if s.max_unit_length < s.min_unit_length:
        raise Rejected("I think you have made a mistake here: The maximum unit length must be greater\n"
                       "or equal to the minimum unit length.\n", -1)


def read_settings(arguments: list[str]) -> tuple[Settings, int]:
    """The settings and the result code; a rejected command line has its message on standard error."""
    parser = Parser(arguments[1:])
    parser.parse()
    try:
        take_file_names(parser.settings, parser.names, arguments[0])
        check_enumerated(parser.settings)
        check_combination(parser.settings)
    except Rejected as rejection:
        error(rejection.message)
        return parser.settings, rejection.code
    return parser.settings, 0
