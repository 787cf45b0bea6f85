# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Small inputs with whatever makes it hard to cut an input and to put reports together."""

from __future__ import annotations

import re

ARRAY = b"GATTACAGTC" + b"ACG" * 9 + b"T" + b"ACG" * 6 + b"NN" + b"CA" * 12 + b"CCTGA"
SHORT = b"TTGG" + b"AC" * 8


def records(names: list[bytes], line_end: bytes = b"\n") -> bytes:
    return b"".join(b">" + name + line_end + residues[:30] + line_end + residues[30:] + line_end
                    for name, residues in zip(names, [ARRAY, SHORT] * len(names)))


INPUTS = {
    "one record": records([b"alone"]),
    "two records": records([b"a first", b"b second"]),
    "names like the lines of a report": records(
        [b"#x", b"seq-name", b"## Finished successfully. ##", b"# Results computed with:", b"# End tandem repeats"]),
    "names like more lines of a report": records(
        [b"# ", b"##sequence-region x 1 2", b"# Analysis of sequence \"x\" completed.", b"seq-name\tunit-length"]),
    "all names the same": records([b"same"] * 4),
    "no names": records([b"", b" ", b" description only", b""]),
    "tabs in names": records([b"a\tb c", b"\t", b"x\ty"]),
    "bytes that are no text": records([b"\xff\xfe", b"a\x00b", b"\xc3\x28 \x80", b"\x1b[31m"]),
    "per cent signs": records([b"%s%n", b"100%", b"%%"]),
    "greater signs in headers": records([b">", b">a", b"a > b"]),
    "empty records": b">a\n>b\n\n>c\n" + ARRAY + b"\n>d\n>e\n",
    "a lone greater sign at the end": b">a\n" + ARRAY + b"\n>b\n" + SHORT + b"\n>",
    "a lone greater sign after an empty record": b">a\n" + ARRAY + b"\n>b\n>",
    "a greater sign with a line end at the end": b">a\n" + ARRAY + b"\n>b\n" + SHORT + b"\n>\n",
    "a greater sign with a carriage return at the end": b">a\r" + ARRAY + b"\r>b\r" + SHORT + b"\r>\r",
    "only a greater sign": b">",
    "a header without a line end": b">a\n" + ARRAY + b"\n>b c",
    "no line end at the end": records([b"a", b"b"])[:-1],
    "lone carriage returns": records([b"a", b"b", b"c"], b"\r"),
    "carriage returns and line feeds": records([b"a", b"b", b"c"], b"\r\n"),
    "line feeds before carriage returns": records([b"a", b"b", b"c"], b"\n\r"),
    "all kinds of line ends": records([b"a"], b"\r") + records([b"b"], b"\r\n") + records([b"c"]) + b"\r\n\r>d\r\rAC\r\n",
    "comments and an indented header in front": b"\n  # made by\r# hand\n#\n\t  >a\n" + ARRAY + b"\n>b\n" + SHORT + b"\n",
    "a comment with a greater sign": b"#>x\n#\r>a\r\n" + ARRAY + b"\n>b\n" + SHORT + b"\n",
    "other residues": b">a\n" + ARRAY.lower() + b"\nacgu-*\tRYKX??\n>b\n" + ARRAY.replace(b"C", b"-C ") + b"\n",
}

MALFORMED_INPUTS = {
    "nothing": b"",
    "white space": b" \n\r\n\t",
    "comments": b"# a\n#>b\n",
    "no header": b"ACGT\n>a\nACACACAC\n",
    "a digit in the first record": b">a\nAC1\n" + records([b"b", b"c"]),
    "a digit in the last record": records([b"a", b"b"]) + b">c\n\nACGT\nAC1\n",
    "a digit as the last byte": records([b"a", b"b"]) + b">c\nAC1",  # no line end: the record counts
    "a digit in a record in the middle": records([b"a"], b"\r") + b">b\r\nA\rC7\n" + records([b"c", b"d"]),
    "two malformed records": records([b"a"]) + b">b\nA!\n>c\nA!\n" + records([b"d"]),
    "an indented header": records([b"a", b"b"]) + b"  >c\nAC\n",
    "a comment between records": records([b"a", b"b"]) + b"# no\n>c\nAC\n",
    "a greater sign in a line": records([b"a"]) + b">b\nAC>GT\n>c\nAC\n",
    "a line number behind many kinds of line ends": b"\r\r\n\n\r# c\r\n>a\rAC\r\n\rGT\n\n>b\r\n\r\rACGT.\r\n>c\nA\n",
}

SETTINGS = [[*format_setting, *more] for format_setting, more in (
    (["--outputFormat", "0"], ["-f", "5", "--printRepeatSeqMode", "1"]),
    (["--outputFormat", "1"], []),
    (["--outputFormat", "1"], ["-M", "exact", "--NsAsMissense", "-u", "2", "-U", "6"]),
    (["--outputFormat", "2"], ["--sequenceInfoAsComment"]),
    (["--outputFormat", "2"], ["-M", "extendExact"]),
    (["--outputFormat", "3"], ["-f", "10"]),
    (["--outputFormat", "3"], ["--sequenceInfoAsComment", "--reportUnit", "0", "-D"]),
    (["--outputFormat", "4"], ["--minPerfection", "95"]),
)]


def record_starts(text: bytes) -> list[int]:
    """Where the records begin: the first '>' behind white space and comment lines, and then each that is
    first in its line. By regular expressions; the program under test goes by character."""
    preamble = re.match(rb"(?:[ \t\n\v\f\r]|#[^\n\r]*(?:\r\n|\n|\r))*", text).end()
    if text[preamble:preamble + 1] != b">":
        return []
    later = [match.end() for match in re.finditer(rb"[\n\r](?=>)", text) if match.end() > preamble]
    return [preamble, *later]
