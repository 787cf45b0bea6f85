#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Generated sequences for benchmarks, the same bytes for the same arguments.

Residues come as a stream of chunks, so that even a chromosome takes little memory: the peak memory that the
system reports for a measured program is never less than what the measuring process held when it started it.

From the command line a sequence is written to standard output, e.g. to profile a single run:
    bench/sequences.py background 1000000 > background.fa
"""

from __future__ import annotations

import argparse
import itertools
import random
import sys
from collections.abc import Iterator
from typing import BinaryIO

CHUNK = 800_000
LINE_WIDTH = 80

# Shares of the edits in a diverged array: together 10 % of its bases.
SUBSTITUTED, INSERTED, DELETED = 0.06, 0.02, 0.02


def background(length: int, gc: float = 0.5, seed: int = 1) -> Iterator[bytes]:
    """Independent bases; gc is the share of G and C, exact to one in 128."""
    strong = round(gc * 128)
    bases = b"GC" * strong + b"AT" * (128 - strong)
    generator = random.Random(seed)
    for begin in range(0, length, CHUNK):
        yield generator.randbytes(min(CHUNK, length - begin)).translate(bases)


def pure_array(length: int, unit: bytes = b"AT") -> Iterator[bytes]:
    """Copies of the unit without an edit."""
    chunk = unit * (CHUNK // len(unit))
    for begin in range(0, length, len(chunk)):
        yield chunk[:length - begin]


def diverged_array(length: int, unit: bytes = b"AT", seed: int = 2) -> Iterator[bytes]:
    """Copies of the unit with 10 % of the bases edited."""
    return limited(edited_copies(unit, random.Random(seed)), length)


def edited_copies(unit: bytes, generator: random.Random) -> Iterator[bytes]:
    """Endless; one chunk for a number of copies."""
    while True:
        chunk = bytearray()
        for base in itertools.islice(itertools.cycle(unit), len(unit) * 1000):
            chunk += edited_base(base, generator)
        yield bytes(chunk)


def edited_base(base: int, generator: random.Random) -> bytes:
    number = generator.random()
    if number < SUBSTITUTED:
        return bytes([generator.choice([other for other in b"ACGT" if other != base])])
    if number < SUBSTITUTED + INSERTED:
        return bytes([generator.choice(b"ACGT"), base])
    if number < SUBSTITUTED + INSERTED + DELETED:
        return b""
    return bytes([base])


def limited(chunks: Iterator[bytes], length: int) -> Iterator[bytes]:
    """The first bases of a stream."""
    while length > 0:
        chunk = next(chunks)[:length]
        length -= len(chunk)
        yield chunk


def regrouped(chunks: Iterator[bytes], size: int) -> Iterator[bytes]:
    """The same bytes in pieces of a multiple of size; only the last piece can be another."""
    rest = b""
    for chunk in chunks:
        rest += chunk
        whole = len(rest) - len(rest) % size
        if whole:
            yield rest[:whole]
            rest = rest[whole:]
    if rest:
        yield rest


def write_lines(file: BinaryIO, residues: bytes) -> None:
    file.write(b"".join(residues[i:i + LINE_WIDTH] + b"\n" for i in range(0, len(residues), LINE_WIDTH)))


def write_record(file: BinaryIO, chunks: Iterator[bytes], name: bytes = b"generated") -> None:
    """One FASTA record with all residues."""
    file.write(b">" + name + b"\n")
    for lines in regrouped(chunks, LINE_WIDTH):
        write_lines(file, lines)


def write_records(file: BinaryIO, chunks: Iterator[bytes], record_length: int) -> None:
    """The residues cut into FASTA records of the same length."""
    number = 0
    for records in regrouped(chunks, record_length):
        for begin in range(0, len(records), record_length):
            number += 1
            file.write(b">record%d\n" % number)
            write_lines(file, records[begin:begin + record_length])


def parse_arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(description="Write a generated FASTA sequence to standard output.")
    parser.add_argument("kind", choices=["background", "diverged-array", "pure-array"])
    parser.add_argument("length", type=int, help="number of bases")
    parser.add_argument("--gc", type=float, default=0.5, help="share of G and C of the background (default: 0.5)")
    parser.add_argument("--unit", default="AT", help="unit of an array (default: AT)")
    parser.add_argument("--records-of", type=int, metavar="LENGTH", help="cut into records of this length")
    return parser.parse_args()


def main() -> None:
    arguments = parse_arguments()
    if arguments.kind == "background":
        chunks = background(arguments.length, arguments.gc)
    elif arguments.kind == "pure-array":
        chunks = pure_array(arguments.length, arguments.unit.encode())
    else:
        chunks = diverged_array(arguments.length, arguments.unit.encode())
    if arguments.records_of:
        write_records(sys.stdout.buffer, chunks, arguments.records_of)
    else:
        write_record(sys.stdout.buffer, chunks)


if __name__ == "__main__":
    main()
