# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Manual pages as data: sections, entries, tables and displays of man(7) source, as plain text."""

from __future__ import annotations

import re
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
ESCAPES = {"\\-": "-", "\\(aq": "'", "\\(dq": '"', "\\(bu": "*", "\\e": "\\", "\\&": "", "\\~": " "}
ESCAPE = re.compile(r"\\f[BIRP]|" + "|".join(re.escape(escape) for escape in ESCAPES))
FONT_MACRO = re.compile(r"\.(B|I|BR|RB|BI|IB|RI|IR) (.*)")
ARGUMENT = re.compile(r'"([^"]*)"|(\S+)')


def unescape(text: str) -> str:
    plain = ESCAPE.sub(lambda match: ESCAPES.get(match[0], ""), text)
    return plain


def plain(line: str) -> str:
    """A line of text or a font macro, as a reader sees it."""
    macro = FONT_MACRO.fullmatch(line)
    if macro is None:
        return unescape(line)
    words = [quoted or word for quoted, word in ARGUMENT.findall(macro[2])]
    return unescape((" " if len(macro[1]) == 1 else "").join(words))


def cells(row: str) -> list[str]:
    return [unescape(cell.strip()) for cell in row.split(";")]


def table(lines: list[str]) -> list[list[str]]:
    """The rows between .TS and .TE, that of the titles first; a text block counts as one cell."""
    source = re.sub(r"T\{\n(.*?)\nT\}", lambda block: block[1].replace("\n", " "), "\n".join(lines), flags=re.DOTALL)
    rows = source.split("\n")
    layout_end = next(number for number, row in enumerate(rows) if row.endswith("."))
    return [cells(row) for row in rows[layout_end + 1:]]


class ManualPage:
    """One page. A section is found by its title, a table by the title of its last column."""

    def __init__(self, name: str) -> None:
        lines = (ROOT / "man" / name).read_text(encoding="utf-8").split("\n")
        self.lines = [line for line in lines if not line.startswith(('.\\"', "'\\\""))]

    def title(self) -> list[str]:
        line = next(line for line in self.lines if line.startswith(".TH "))
        return [quoted or word for quoted, word in ARGUMENT.findall(line)][1:]

    def section(self, title: str) -> list[str]:
        start = self.lines.index(f".SH {title}") + 1
        end = next((number for number, line in enumerate(self.lines[start:], start) if line.startswith(".SH ")),
                   len(self.lines))
        return self.lines[start:end]

    def entries(self, title: str) -> dict[str, str]:
        """Each term of the section with the text under it, up to the next paragraph."""
        paragraphs = re.split(r"^\.(TP|PP|SS.*)$", "\n".join(self.section(title)), flags=re.MULTILINE)
        found = {}
        for kind, text in zip(paragraphs[1::2], paragraphs[2::2]):
            if kind == "TP":
                term, *body = text.strip("\n").split("\n")
                found[plain(term)] = " ".join(plain(line) for line in body)
        return found

    def blocks(self, begin: str, end: str) -> list[list[str]]:
        starts = [number for number, line in enumerate(self.lines) if line == begin]
        return [self.lines[start + 1:self.lines.index(end, start)] for start in starts]

    def table(self, last_column: str) -> list[list[str]]:
        """The rows of the table, without that of the titles."""
        rows = [table(lines) for lines in self.blocks(".TS", ".TE")]
        found = [each[1:] for each in rows if each[0][-1] == last_column]
        if len(found) != 1:
            raise ValueError(f"{len(found)} tables with the column {last_column}, not one")
        return found[0]

    def displays(self) -> list[list[str]]:
        return [[plain(line) for line in lines] for lines in self.blocks(".EX", ".EE")]
