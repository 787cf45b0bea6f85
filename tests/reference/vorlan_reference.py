#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Slow reference of the whole program.

Takes the arguments of vorlan and gives its output, files and exit status, by the most direct way there is:
indices, lists and no optimisation. The tests compare the program with it. Only the texts of the command-line
library (help, version, parse failures) are not imitated.
"""

from __future__ import annotations

import os
import sys
from typing import BinaryIO, Optional

sys.dont_write_bytecode = True

import console
from command_line import EarlyEnd, ParseFailure, read_settings
from console import Progress, error
from exact_search import exact_search
from fasta import InputFile, SequenceRecord
from imperfect_search import extend_exact_search, imperfect_search
from overlap import remove_mostly_hidden
from repeat import Repeat
from report import legend, record_block
from search import Search
from settings import EXACT, EXTEND_EXACT, Settings, Thresholds

OK, MALFORMED, NO_INPUT, NO_OUTPUT = 0, -25, -101, -102
MASKED_LINE_WIDTH = 80


class Aborted(Exception):
    """The run ends early with a code; the message has been written."""

    def __init__(self, code: int) -> None:
        super().__init__(code)
        self.code = code


class OutputFile:
    """A file being written; a failed write is remembered and reported at the next check."""

    def __init__(self, name: str) -> None:
        self.name = name or "standard output"
        self.failed = False
        self.file: BinaryIO = open(
            name.encode("latin-1") if name else sys.stdout.fileno(), "wb", buffering=0, closefd=bool(name))

    def write(self, text: str) -> None:
        data = text.encode("latin-1")
        try:
            while data and not self.failed:
                data = data[self.file.write(data):]
        except OSError:
            self.failed = True

    def check(self) -> None:
        if self.failed:
            error(f'Sorry! Writing to file\n   "{self.name}"\nfailed. Its contents are not complete.\n')
            console.good_bye_on_error(NO_OUTPUT)
            raise Aborted(NO_OUTPUT)


def open_input(name: str) -> InputFile:
    file = InputFile(name)
    if file.fail:
        error(f'Sorry! The input file \n   "{name}"\ncould not be opened. I guess it does not exist.\n')
        console.good_bye_on_error(NO_INPUT)
        raise Aborted(NO_INPUT)
    return file


def refuse_output(name: str) -> Aborted:
    error(f'Sorry! Failed to open file\n   "{name}"\nas output file.\n')
    console.good_bye_on_error(NO_OUTPUT)
    return Aborted(NO_OUTPUT)


def open_output(name: str) -> OutputFile:
    try:
        return OutputFile(name)
    except OSError:
        raise refuse_output(name) from None


def open_masked(settings: Settings) -> Optional[OutputFile]:
    """The masked copy lies beside the input; it must not overwrite the report."""
    if not settings.mask_repeats:
        return None
    name = settings.input_name + ".masked"
    if name == settings.output_name:
        raise refuse_output(name)
    return open_output(name)


def write_headers(settings: Settings, report: OutputFile) -> None:
    error(console.creator_block("") + console.parameter_block(settings, "") + console.PROGRESS_HEADER)
    report.write(console.creator_block("# ") + console.parameter_block(settings, "# ") + legend(settings, "# "))


def find_repeats(search: Search) -> list[Repeat]:
    if search.settings.search_mode == EXACT:
        repeats = exact_search(search, Thresholds(search.settings))
    elif search.settings.search_mode == EXTEND_EXACT:
        repeats = extend_exact_search(search)
    else:
        repeats = imperfect_search(search)
    return remove_mostly_hidden(repeats) if search.settings.remove_mostly_hidden else repeats


def masked_record(record: SequenceRecord, repeats: list[Repeat]) -> str:
    """The record with every repeat as X, 80 residues per line; repeats that are not reported count too."""
    residues = list(record.residues)
    for repeat in repeats:
        residues[repeat.pos_left:repeat.pos_right] = "X" * repeat.span
    text = "".join(residues)
    lines = [text[start:start + MASKED_LINE_WIDTH] + "\n" for start in range(0, len(text), MASKED_LINE_WIDTH)]
    return f">{console.c_string(record.header)}\n" + "".join(lines)


class Run:
    """One run after the command line was accepted."""

    def __init__(self, settings: Settings, progress: Progress) -> None:
        self.settings = settings
        self.progress = progress
        self.input = open_input(settings.input_name)
        self.report = open_output(settings.output_name)
        write_headers(settings, self.report)
        self.masked = open_masked(settings)

    def check_writing(self) -> None:
        self.report.check()
        if self.masked:
            self.masked.check()

    def process_records(self) -> None:
        """Records after the last selected one are read as well: a malformed one still ends the run."""
        record = SequenceRecord()
        number = 0
        while not self.input.eof:
            number += 1
            record.read(self.input)
            if self.input.fail and not self.input.eof:
                self.refuse_record()
            if self.settings.selects(number):
                self.analyse(record, number)

    def refuse_record(self) -> None:
        error("\n\nAn error occurred while reading the input file. It might not be a valid fasta file.\n"
              f"File position: line {self.input.line}\n")
        raise Aborted(MALFORMED)

    def analyse(self, record: SequenceRecord, number: int) -> None:
        self.progress.line(number, record.name, self.settings.min_unit_length)
        self.progress.restart()
        search = Search(self.settings, record.residues, number, record.name, self.progress)
        repeats = find_repeats(search)
        self.report.write(record_block(self.settings, record, repeats))
        if self.masked:
            self.masked.write(masked_record(record, repeats))
        self.check_writing()

    def finish(self) -> None:
        self.report.write(console.closing_line(self.settings.output_format))
        self.check_writing()
        console.good_bye()


def run(arguments: list[str]) -> int:
    progress = Progress()
    error(console.BANNER)
    settings, code = read_settings(arguments)
    if code != OK:
        console.good_bye_on_error(code)
        return code
    analysis = Run(settings, progress)
    analysis.process_records()
    analysis.finish()
    return OK


def main(arguments: list[str]) -> int:
    """Exit status of a run; the first argument is the name under which the program was called."""
    try:
        return run([os.fsencode(argument).decode("latin-1") for argument in arguments]) & 255
    except Aborted as end:
        return end.code & 255
    except EarlyEnd:
        print("vorlan [options] input.fa [report]")
        return 0
    except ParseFailure as failure:
        error(f"PARSE ERROR: {failure}\n")
        return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv))
