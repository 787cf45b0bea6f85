# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Texts on standard error, the settings block and the progress lines.

All text is handled as latin-1, so that one character is one byte of a file or of the terminal.
"""

from __future__ import annotations

import sys
import time
from typing import Callable

from settings import ALL_BITS_SET, EXACT, FASTA, GFF, INT32_MAX, ONE_PER_LINE, Settings

VERSION = "3.3.10"
BANNER = (
    "\n\n"
    f"      Welcome to Vorlan, version {VERSION},\n"
    "      a microsatellite and satellite search tool.\n"
    "      Written by the Vorlan authors.\n"
    "      Released under the MIT licence, without any warranty.\n"
    "\n"
)
PROGRESS_HEADER = ("\n\nSearch progress:\n\nTime     - SeqNr - PatLen - Seq-Name\n" + "-" * 72 + "\n")
TIMED_LINE_SECONDS = 59

MODE_TEXTS = ["exact repeats", "exact repeats which are extended to imperfect repeats", "imperfect repeats"]
PERFECTION_TEXTS = ["asMismatch", "asNeutral", "asMatch"]
UNIT_TEXTS = ["as they are", "alphabetical normal form", "alphabetical normal form using reverse complement"]
FORMAT_TEXTS = ["vorlan format", "extended vorlan format", "gff", "one-per-line format", "fasta format"]
SEQUENCE_TEXTS = ["don't print sequence", "print sequence", "print alignment"]


def error(text: str) -> None:
    sys.stderr.buffer.write(text.encode("latin-1"))
    sys.stderr.buffer.flush()


def c_string(text: str) -> str:
    """What a 0-terminated string shows of text."""
    return text.split("\0", 1)[0]


def yes_no(flag: bool) -> str:
    return "yes" if flag else "no"


def unsigned(value: int) -> str:
    return str(value & ALL_BITS_SET)


def creator_block(prefix: str) -> str:
    return f"{prefix}Results computed with:\n{prefix}   Vorlan, version {VERSION}\n"


def sequence_range(s: Settings) -> str:
    last = unsigned(s.last_sequence)
    return unsigned(s.first_sequence) + " - " + ("last sequence" if last == str(ALL_BITS_SET) else last)


def rule_text(constant: int, intercept: int, slope: float) -> str:
    return f"maximum ({constant}, {intercept}+{slope:g}*unitlength )"


def parameter_lines(s: Settings) -> list[tuple[str, str]]:
    """Label and value of every line of the settings block."""
    imperfect = s.search_mode != EXACT
    lines = [("Parameter settings used in this search:", "")]
    lines.append(("Input file name:                        ", s.input_name))
    if s.output_name:
        lines.append(("Output file name:                       ", s.output_name))
    lines.append(("   Sequence range to process:           ", sequence_range(s)))
    lines.append(("   Satellites searched for:             ", MODE_TEXTS[s.search_mode]))
    if imperfect:
        reduction = "-" if s.max_score_reduction == INT32_MAX else str(s.max_score_reduction)
        lines.append(("   Recursion depth:                     ", str(s.recursion_depth)))
        lines.append(("   Maximum score reduction:             ", reduction))
    lines.append(("   Minimum unit length:                 ", unsigned(s.min_unit_length)))
    lines.append(("   Maximum unit length:                 ", unsigned(s.max_unit_length)))
    lines.append(("   Minimum score:                       ", rule_text(s.min_score, s.min_score_a, s.min_score_b)))
    lines.append(("   Minimum length:                      ", rule_text(s.min_length, s.min_length_a, s.min_length_b)))
    lines.append(("   Min. to max. perfection range:       ", f"{s.min_perfection:g} % - {s.max_perfection:g} %"))
    lines.append(("   Treat N's as:                        ", "missense" if s.ns_as_missense else "neutral"))
    lines.append(("   Max. succesive N's allowed:          ", str(s.ns_in_a_row)))
    if imperfect:
        lines.append(("   Mismatch score:                      ", str(s.mismatch_score)))
        lines.append(("   Indel score:                         ", str(s.indel_score)))
    return lines + output_lines(s)


def output_lines(s: Settings) -> list[tuple[str, str]]:
    """The lines about the choice and the look of what is reported."""
    shorter = "   Show shorter (not longer) of two repeat variants with equal score: "
    lines = [
        (shorter, yes_no(not s.prefer_longer)),
        ("   Number of flanking nucletides:       ", str(s.flanking)),
        ("   Remove mostly overlapping satellites:", yes_no(s.remove_mostly_hidden)),
        ("   Write file with masked seq.:         ", yes_no(s.mask_repeats)),
        ("   Computing perfections treat N's:     ", PERFECTION_TEXTS[s.n_and_perfection_mode]),
        ("   Report units as:                     ", UNIT_TEXTS[s.report_unit_mode]),
        ("   Output format:                       ", FORMAT_TEXTS[s.output_format]),
        ("   Print sequence mode:                 ", SEQUENCE_TEXTS[s.print_sequence_mode]),
    ]
    if s.output_format in (GFF, ONE_PER_LINE):
        lines.append(("   Print seq. info as comment:          ", yes_no(s.sequence_info_as_comment)))
    return lines


def parameter_block(s: Settings, prefix: str) -> str:
    separator = "\t" if s.output_format in (GFF, ONE_PER_LINE) else " "
    return "".join(f"{prefix}{label}{separator}{value}\n" for label, value in parameter_lines(s))


class Progress:
    """The clock of the progress lines; a timed line comes at most once a minute."""

    def __init__(self, clock: Callable[[], float] = time.time) -> None:
        self.clock = clock
        self.started = int(clock())
        self.next_line = self.started

    def restart(self) -> None:
        self.next_line = int(self.clock()) + TIMED_LINE_SECONDS

    def due(self) -> bool:
        if int(self.clock()) <= self.next_line:
            return False
        self.restart()
        return True

    def line(self, record_number: int, name: str, unit_length: int) -> None:
        seconds = (int(self.clock()) - self.started) & ALL_BITS_SET
        time_text = "%.2d.%.2d.%.2d" % (seconds // 3600, seconds % 3600 // 60, seconds % 60)
        error("%s - # %3d - %4dbp - %s\n" % (time_text, record_number, unit_length, c_string(name)[:70]))


def closing_line(output_format: int) -> str:
    """Last line of the report; a FASTA report has none."""
    if output_format == FASTA:
        return ""
    return "# End tandem repeats\n" if output_format == GFF else "## Finished successfully. ##\n"


def good_bye() -> None:
    error("\nAnalysis finished successfully.\n\nVorlan says goodbye.\n\n")


def good_bye_on_error(code: int) -> None:
    if code < -1:
        error(f"\nAnalysis has been aborted due to errors. Error number: {code}\n\n")
    elif code == -1:
        error("\n\n")
