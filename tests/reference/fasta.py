# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The input file, character by character, and the FASTA records read from it."""

from __future__ import annotations

import os
from typing import BinaryIO, Optional

BUFFER_SIZE = 1_000_000
WHITE_SPACE = " \t\n\v\f\r"
AMBIGUITY_CODES = "NXRYKMSWBDHV?"
IGNORED = WHITE_SPACE + "-*"


class InputFile:
    """Characters with every line end turned into one line feed; one character can be put back."""

    def __init__(self, name: str) -> None:
        self.good, self.eof, self.fail = True, False, False
        self.line = 1
        self.buffer = bytearray()
        self.read_pos = 0
        self.file: Optional[BinaryIO] = None
        try:
            self.file = open_for_reading(name)
        except OSError:
            self.set_failed()

    def set_failed(self) -> None:
        """Malformed contents or an unopenable file: fail alone."""
        self.good, self.eof, self.fail = False, False, True

    def refill(self) -> None:
        """Read on, keeping the last delivered character in front so that it can be put back."""
        kept = self.buffer[self.read_pos - 1:self.read_pos] if self.read_pos > 0 else bytearray()
        new = read_bytes(self.file, BUFFER_SIZE - len(kept))
        if not new:
            self.good, self.eof, self.fail = False, True, True
        self.read_pos = len(kept)
        self.buffer = kept + new

    def get(self) -> str:
        """The next character; NUL at the end of the file."""
        if self.read_pos == len(self.buffer):
            self.refill()
            if self.read_pos == len(self.buffer):
                return "\0"
        char = chr(self.buffer[self.read_pos])
        self.read_pos += 1
        # Once the file has failed, line ends are neither converted nor counted.
        if self.fail:
            return char
        if char == "\r":
            self.finish_carriage_return()
            char = "\n"
        if char == "\n":
            self.line += 1
        return char

    def finish_carriage_return(self) -> None:
        """CR LF is one line end, and a put-back CR must come again as a line feed."""
        self.buffer[self.read_pos - 1] = ord("\n")
        if self.read_pos == len(self.buffer):
            self.refill()
        if self.read_pos < len(self.buffer) and self.buffer[self.read_pos] == ord("\n"):
            self.read_pos += 1

    def unget(self) -> None:
        if not self.fail and self.read_pos > 0 and self.buffer[self.read_pos - 1] == ord("\n"):
            self.line -= 1
        if self.read_pos == 0:
            self.fail, self.good = True, False
        else:
            self.read_pos -= 1

    def peek(self) -> str:
        char = self.get()
        self.unget()
        return char


def open_for_reading(name: str) -> BinaryIO:
    # A directory can be opened, only not be read; open() would refuse it.
    descriptor = os.open(name.encode("latin-1"), os.O_RDONLY)
    try:
        return os.fdopen(descriptor, "rb", buffering=0)
    except IsADirectoryError:
        os.close(descriptor)
        return open(os.devnull, "rb", buffering=0)


def read_bytes(file: Optional[BinaryIO], count: int) -> bytearray:
    """Up to count bytes; an error counts as the end of the file."""
    result = bytearray()
    try:
        while file is not None and len(result) < count:
            piece = file.read(count - len(result))
            if not piece:
                break
            result += piece
    except OSError:
        pass
    return result


class SequenceRecord:
    """One record; header and name of a record without a header line are those of the one before."""

    def __init__(self) -> None:
        self.header = ""
        self.name = ""
        self.residues = ""

    def read(self, file: InputFile) -> None:
        self.header, self.residues = "", ""
        if skip_to_first_header(file) != ">":
            file.set_failed()
            return
        if not self.read_header(file):
            return
        self.name = self.header.split(" ", 1)[0]
        while file.peek() != ">" and not file.fail:
            self.read_residue_line(file)

    def read_header(self, file: InputFile) -> bool:
        """False for a lone '>' that ends the file."""
        while True:
            char = file.get()
            if char == "\n":
                return True
            if file.fail:
                break
            self.header += char
        if not self.header:
            return False
        file.fail = False
        return True

    def read_residue_line(self, file: InputFile) -> None:
        while True:
            char = file.get()
            if char == "\n" or file.fail:
                return
            residue = normalised(char)
            if residue is None:
                file.set_failed()
                return
            self.residues += residue


def skip_white_space(file: InputFile) -> str:
    char = file.get()
    while not file.fail and char in WHITE_SPACE:
        char = file.get()
    return char


def skip_to_first_header(file: InputFile) -> str:
    """The first character that is neither blank nor part of a comment line."""
    char = skip_white_space(file)
    while not file.fail and char == "#":
        while file.good and file.get() != "\n":
            pass
        char = skip_white_space(file)
    return char


def normalised(char: str) -> Optional[str]:
    """The residue stored for a character, '' for one that is skipped, None for one that is not allowed."""
    upper = char.upper() if "a" <= char <= "z" else char
    if upper in "ACGT":
        return upper
    if upper == "U":
        return "T"
    if upper in AMBIGUITY_CODES:
        return "N"
    return "" if char in IGNORED else None
