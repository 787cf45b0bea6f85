# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""A record with one repeat, and what the default report says about it, written by hand.

In GTTACACACACACGG only AC at 4-13 reaches 6 points: 10 bases, of which the first unit earns nothing,
make 8. No edit pays: each costs 5 and at most three bases lie on either side.
"""

from __future__ import annotations

RESIDUES = b"GTTACACACACACGG"
MASKED_RESIDUES = b"GTTXXXXXXXXXXGG"
RECORD = b">s\n" + RESIDUES + b"\n"
CLOSING_LINE = b"## Finished successfully. ##\n"

ENTRY = (b"    dinucleotide         4 :        13 |     10 bp |     10 BP |      8 pt | 100.000 % |"
         b"   0 mis |   0 ins |   0 del |   0 N |  unit AC\n"
         b"Missense: \n"
         b"ACACACACAC\n"
         b"||||||||||\n"
         b"ACACACACAC\n")

_PARAMETERS = b"""\
# Results computed with:
#    Vorlan, version 3.3.10
# Parameter settings used in this search:\x20
# Input file name:                         %s
%s#    Sequence range to process:            1 - last sequence
#    Satellites searched for:              imperfect repeats
#    Recursion depth:                      5
#    Maximum score reduction:              -
#    Minimum unit length:                  1
#    Maximum unit length:                  10
#    Minimum score:                        maximum (6, 0+1*unitlength )
#    Minimum length:                       maximum (0, 0+0*unitlength )
#    Min. to max. perfection range:        0 %% - 100 %%
#    Treat N's as:                         neutral
#    Max. succesive N's allowed:           2
#    Mismatch score:                       -5
#    Indel score:                          -5
#    Show shorter (not longer) of two repeat variants with equal score:  no
#    Number of flanking nucletides:        0
#    Remove mostly overlapping satellites: yes
#    Write file with masked seq.:          %s
#    Computing perfections treat N's:      asMismatch
#    Report units as:                      alphabetical normal form using reverse complement
#    Output format:                        extended vorlan format
#    Print sequence mode:                  print alignment
"""

_LEGEND = b"""\
#\x20
# Columns in lines of output providing repeat information:
# Column  1: Repeat unit length
# Column  2: Position at which repeat starts in current sequence
# Column  3: Position at which repeat ends in current sequence
# Column  4: Length of repeat in original sequence, i.e. (end-start+1)
# Column  5: Normalized repeat length, i.e. (end-start+1-insertions+deletions)
# Column  6: Repeat score
# Column  7: Repeat perfection
# Column  8: Number of mismatches
# Column  9: Number of insertions
# Column 10: Number of deletions
# Column 11: Number of N's
# Column 12: Repeat unit
#\x20
"""


def header(input_name: bytes, report_name: bytes = b"", masked: bool = False) -> bytes:
    """The head of a report with default settings."""
    report_line = b"# Output file name:                       " + b" " + report_name + b"\n" if report_name else b""
    return _PARAMETERS % (input_name, report_line, b"yes" if masked else b"no") + _LEGEND


def block(record_header: bytes = b"s", entries: bytes = ENTRY, length: int = len(RESIDUES)) -> bytes:
    """The block of one record."""
    return (b">%s\nsequence length: %d\n" % (record_header, length) + entries +
            b'# Analysis of sequence "%s" completed.\n' % record_header)


def without_header(report: bytes) -> bytes:
    """The report from its first record on."""
    start = report.find(b"\n>")
    return report[start + 1:] if start >= 0 else report[report.index(CLOSING_LINE):]
