# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The options as users are promised them, written apart from the program's own table."""

from __future__ import annotations

from dataclasses import dataclass


@dataclass(frozen=True)
class Option:
    """One option. `value` is the label of its value in the usage text, empty for a switch."""

    short: str
    name: str
    value: str
    description: str

    def spellings(self) -> list[str]:
        return (["-" + self.short] if self.short else []) + ["--" + self.name]

    def identification(self) -> str:
        """How the parser library names the option in its failures."""
        return f"-{self.short} (--{self.name})" if self.short else f"(--{self.name})"

    def usage(self) -> str:
        """The line above the description in the help text."""
        label = f" <{self.value}>" if self.value else ""
        return ",  ".join(spelling + label for spelling in self.spellings())


def _threshold(what: str, name: str, default: int) -> str:
    kind = "Score" if what == "score" else "Length"
    return (f"The minimum {what} of a repeat is determined with: maximum( min{kind}, min{kind}_a + "
            f"min{kind}_b*(unit-length) ). Default value of {name}: {default}")


OPTIONS = [
    Option("", "sequenceInfoAsComment", "",
           "In the GFF and one-per-line output modes, show additional sequence information in the output "
           "file as a comment."),
    Option("N", "succN", "int", "The maximum number of successive N's allowed in a satellite. Default: 2."),
    Option("", "NsAsMissense", "", "Treat N's as missense. Default: Treat N's as neutral with score 0."),
    Option("", "preferShorterRepeats", "",
           "For two alignments of the same repeat that have the same score, Vorlan reports by default (since "
           "version 3.3.9) the longer alignment. The longer alignment will have more mismatches/gaps and a "
           "lower perfection. With this option, Vorlan will choose the shorter of the two alignments instead "
           "of the longer. Vorlan will run faster with this option."),
    Option("", "reportUnit", "int",
           "Repeat units can be reported in three different modes. 0: asIs, 1: Alphabetical normal form, "
           "2: Alphabetical normal form also considering the reverse complement. Default: 2"),
    Option("", "NPerfectionMode", "int",
           "Vorlan provides different modes to treat N's when computing the perfection of a repeat. "
           "0: asMismatch, 1: asNeutral, 2: asMatch. Default: 0"),
    Option("", "printRepeatSeqMode", "int",
           "Vorlan provides different modes to print the repeat sequence along with its information. "
           "0: don't print sequence, 1: print sequence, 2: print alignment."),
    Option("", "outputFormat", "int",
           "Vorlan provides different output formats for printing the repeat information. 0: Vorlan output "
           "format, 1: extended Vorlan output format, 2: gff - general feature format, 3: one-per-line "
           "format, 4: as fasta sequence"),
    Option("", "maskX", "",
           'Writes the sequences to a file with the extension ".masked" in which repeats are masked. '
           "Currently, this option has the sometime unwanted side effect of changing all ambiguity codes to Ns."),
    Option("f", "flanking", "int",
           "If the satellite sequence is printed, this is the number of flanking nucleotides to be printed to "
           "the left and right of it. Default: 0"),
    Option("", "minPerfection", "float", "Minimum perfection of a satellites. Default: 0."),
    Option("", "maxPerfection", "float", "Maximum perfection of a satellites. Default: 100."),
    Option("D", "dontRemoveMostlyOverlapping", "",
           "Vorlan sometimes finds repeats that partially or completely overlap with other repeats, e.g. if "
           "alignments with alternative repeat patterns exist at the same locus in a sequence. The default is "
           "to remove one of any two mostly overlapping repeats in favour of that repeat with the highest "
           "score. With this option, Vorlan reports also repeats that mostly overlap with higher scoring "
           "repeats."),
    Option("", "firstSeq", "int", "Number of first sequence to be processed in this run."),
    Option("", "lastSeq", "int", "Number of last sequence to be processed in this run."),
    Option("R", "maximum_score_reduction", "int",
           "The maximum amount the score can be reduced before search is aborded. Typical: 6*mismatch-penalty "
           "or infinite. Default: infinite"),
    Option("r", "recursion", "int",
           "The recursion depth used in the search. Values in the range 3 to 7 are recommended. A value of 0 "
           "implies a search for perfect repeats only."),
    Option("u", "minUnitLen", "int", "Minimum unit length. Default: 1"),
    Option("U", "maxUnitLen", "int", "Maximum unit length. Default: 10"),
    Option("", "minLength_b", "float", _threshold("length", "minLength_b", 0)),
    Option("", "minLength_a", "int", _threshold("length", "minLength_a", 0)),
    Option("l", "minLength", "int", _threshold("length", "minLength", 0)),
    Option("", "minScore_b", "float", _threshold("score", "minScore_b", 1)),
    Option("", "minScore_a", "int", _threshold("score", "minScore_a", 0)),
    Option("s", "minScore", "int", _threshold("score", "minScore", 6)),
    Option("m", "mismatchScore", "int",
           "Score for mismatch - must be negative. Default: -5. Match score is fixed to one."),
    Option("g", "indelScore", "int",
           "Score for indels - must be negative. Default: -5. Match score is fixed to one."),
    Option("M", "searchMode", "exact|extendExact|imperfect",
           "Vorlan provides three different search modes. exact: Search for exact repeats, only. extendExact: "
           "Searches for exact repeats and extends them by inserting mismatches and indels. imperfect: "
           "Searches directly for imperfect repeats."),
]
BY_NAME = {option.name: option for option in OPTIONS}

FILE_NAMES_LABEL = "Input and output filenames"
FILE_NAMES_DESCRIPTION = (
    "Vorlan requires either one or two file names as parameters. The first must be the input file in FASTA "
    "format. If a second file is specified, output is written to it. If no second file is given, output is "
    "written to the console. ")
PROGRAM_DESCRIPTION = "This program searches for tandemly repeated patterns in DNA sequences."
