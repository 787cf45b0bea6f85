#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Says how a genome is cut into pieces that are searched by jobs of their own.

First vorlan reads the whole text with the settings of the run and searches nothing: what it would refuse, it
refuses here, before any search, and with the line in the whole file. Then the text is cut in front of records,
so that a piece holds at most so many bytes, or one record. Nothing is copied: a job reads its bytes from the
text.

    text     >a ACGT...  >b AC  >c GT  >d ACGTACGTACGT...
    pieces   |     1    |      2      |         3        |

vorlan begins a record at each '>' that is first in its line, and at the first one behind white space and comment
lines. A '>' that is the very last byte has no name of its own: it stays with the record before.

The table that is written has a line for each piece: number, first byte (from 0), bytes, bytes of its longest record.
"""

from __future__ import annotations

import argparse
import mmap
import os
import re
import shlex
import subprocess
import sys
from array import array
from collections.abc import Iterator
from typing import NamedTuple

BEHIND_ALL_RECORDS = "2147483647"
COLUMNS = "piece\toffset\tbytes\tlongest"


class Piece(NamedTuple):
    offset: int
    size: int
    longest: int  # bytes of its longest record, with header and line ends


def record_starts(text: bytes | mmap.mmap) -> array[int]:
    """Where records begin in a text that vorlan takes, and behind the last one its end."""
    starts = array("q")
    last = len(text) - 1
    place = re.match(rb"(?:[ \t\n\v\f\r]|#[^\n\r]*[\n\r])*", text).end()
    starts.append(place)
    while (place := text.find(b">", place + 1)) != -1:
        if place != last and text[place - 1] in b"\n\r":
            starts.append(place)
    starts.append(len(text))
    return starts


def pieces(starts: array[int], limit: int) -> Iterator[Piece]:
    """Pieces of about the same size, at most `limit` bytes, but for records that are longer."""
    count = -(-starts[-1] // limit)
    size = -(-starts[-1] // count)
    begin, longest = 0, 0  # The first piece has also what stands in front of the first record.
    for start, end in zip(starts, starts[1:]):
        if start > begin and end - begin > size and longest:
            yield Piece(begin, start - begin, longest)
            begin, longest = start, 0
        longest = max(longest, end - start)
    yield Piece(begin, starts[-1] - begin, longest)


def fault(vorlan: str, options: list[str], text: str) -> str | None:
    """What vorlan has against the text or the options; None if nothing."""
    try:
        outcome = subprocess.run([vorlan, *options, "--firstSeq", BEHIND_ALL_RECORDS, "--", text], check=False,
                                 stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    except OSError as error:
        return f"cannot run {vorlan}: {error.strerror}"
    if outcome.returncode == 0:
        return None
    said = outcome.stderr.decode(errors="replace")
    sys.stderr.write(said)
    if line := re.search(r"^File position: line (\d+)", said, re.MULTILINE):
        sentence = re.search(r"^Sorry, the sequence.*", said, re.MULTILINE)
        return f"line {line[1]}: {sentence[0] if sentence else 'this is no FASTA record'}"
    words = [line for line in said.split("\n") if line.strip() and "goodbye" not in line and "aborted" not in line]
    return f"vorlan ended with status {outcome.returncode}: {' '.join(' '.join(words[-2:]).split())}"


def write_table(path: str, table: Iterator[Piece]) -> None:
    unfinished = f"{path}.unfinished"
    with open(unfinished, "w", encoding="ascii") as out:
        print(COLUMNS, file=out)
        for number, piece in enumerate(table, start=1):
            print(number, *piece, sep="\t", file=out)
    os.replace(unfinished, path)


def main() -> int:
    parser = argparse.ArgumentParser(description="Says how a genome is cut into pieces for jobs.")
    parser.add_argument("--vorlan", default="vorlan", help="the program")
    parser.add_argument("--options", default="", help="its options, as a shell takes them")
    parser.add_argument("--name", help="what messages call the genome; default: the text")
    parser.add_argument("--size", type=int, required=True, help="bytes of a piece at most, if records allow")
    parser.add_argument("text", help="FASTA file, not compressed")
    parser.add_argument("table", help="what is written")
    request = parser.parse_args()
    wrong = fault(request.vorlan, shlex.split(request.options), request.text)
    if wrong:
        print(f"vorlan-workflow: {request.name or request.text}: {wrong}", file=sys.stderr)
        return 1
    with open(request.text, "rb") as file, mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ) as text:
        write_table(request.table, pieces(record_starts(text), request.size))
    return 0


if __name__ == "__main__":
    sys.exit(main())
