# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""A small FASTA reader that follows the input rules and nothing else."""

from __future__ import annotations

import re
from dataclasses import dataclass

WHITE_SPACE = " \t\n\v\f\r"
KEPT = "ACGT"
AMBIGUOUS = "NXRYKMSWBDHV?"
SKIPPED = WHITE_SPACE + "-*"


@dataclass(frozen=True)
class Record:
    """One sequence: its whole header line and its residues over A, C, G, T, N."""

    header: str
    residues: str


def residue_table() -> dict[str, str]:
    """What each allowed character of a sequence line stands for."""
    table = {letter: "" for letter in SKIPPED}
    table.update({letter: letter for letter in KEPT})
    table.update({letter: "N" for letter in AMBIGUOUS})
    table["U"] = "T"
    table.update({letter.lower(): base for letter, base in list(table.items()) if letter.isalpha()})
    return table


RESIDUE_OF = residue_table()


def read_fasta(data: bytes) -> tuple[list[Record], bool]:
    """The records up to the end or up to a malformed one; the flag tells that none was malformed."""
    text = re.sub(r"\r\n?", "\n", data.decode("latin-1"))
    position = skip_preamble(text)
    if not text.startswith(">", position):
        return [], False
    records = []
    while position < len(text):
        record, position = read_record(text, position)
        if record is None:
            return records, False
        records.append(record)
    return records, True


def skip_preamble(text: str) -> int:
    """Position of the first character that belongs neither to white space nor to a comment line."""
    preamble = re.compile(rf"[{WHITE_SPACE}]*(#[^\n]*(\n|$)[{WHITE_SPACE}]*)*").match(text)
    return preamble.end() if preamble else 0


def read_record(text: str, position: int) -> tuple[Record | None, int]:
    """The record whose '>' stands at position, or None if it is malformed, and the position after it."""
    header_end = line_end(text, position)
    header = text[position + 1:header_end]
    position = header_end + 1
    residues = []
    while position < len(text) and text[position] != ">":
        end = line_end(text, position)
        line, bad = translate(text[position:end])
        residues.append(line)
        if bad is not None and position + bad + 1 < len(text):
            return None, position
        # A bad character that is the last byte of the file only ends the file, so the record counts.
        position = end + 1
    return Record(header, "".join(residues)), position


def line_end(text: str, position: int) -> int:
    """Position of the next line end, or the end of the text."""
    end = text.find("\n", position)
    return len(text) if end < 0 else end


def translate(line: str) -> tuple[str, int | None]:
    """Residues of one sequence line up to the first bad character, and the position of that character."""
    residues = []
    for position, letter in enumerate(line):
        if letter not in RESIDUE_OF:
            return "".join(residues), position
        residues.append(RESIDUE_OF[letter])
    return "".join(residues), None
