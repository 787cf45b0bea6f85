#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Write what docs/options.toml says about the options into the manual and the completions.

    option_texts.py            rewrite the files that differ
    option_texts.py --check    change nothing; status 1 and a difference if a file is not up to date

In each file the text between a line with "options: begin" and one with "options: end" is replaced; all else is
written by hand.
"""

from __future__ import annotations

import difflib
import re
import sys
import textwrap
import tomllib
from collections.abc import Callable
from dataclasses import dataclass, field
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
TABLE = ROOT / "docs" / "options.toml"
REGION = re.compile(r"^(\S+ options: begin[^\n]*\n).*?^(\S+ options: end)$", re.DOTALL | re.MULTILINE)

WIDTH = 80
KINDS = {"int": "Integer", "unsigned": "Integer", "float": "Decimal number"}
BEYOND = {"": "", "refused": "; other values are refused", "limited": "; smaller values are taken as {least}",
          "unsigned": "; to negative values 4294967296 is added",
          "wrapped": "; to negative values 4294967296 is added, so that -5 is 4294967291; others are refused"}


@dataclass(frozen=True)
class Option:
    """One option, as it stands in the table."""

    group: str
    name: str
    kind: str
    summary: str
    text: str
    example: str
    short: str = ""
    unit: str = ""
    range: str = ""
    beyond: str = ""
    default: str = ""
    shown: str = ""
    values: dict[str, str] = field(default_factory=dict)

    def spellings(self) -> list[str]:
        return ([f"-{self.short}"] if self.short else []) + [f"--{self.name}"]

    def place(self) -> str:
        """What stands for the value in the usage text; empty for a switch."""
        if self.kind == "switch":
            return ""
        if self.kind == "text":
            return "|".join(self.values)
        return "float" if self.kind == "float" else "int"

    def ends(self) -> tuple[str, str]:
        """The smallest and the largest value that is taken."""
        least, largest = self.range.split(" to ")
        return least, largest


@dataclass(frozen=True)
class Group:
    title: str
    text: str = ""


def read_table() -> tuple[list[Group], list[Option]]:
    table = tomllib.loads(TABLE.read_text(encoding="utf-8"))
    return [Group(**group) for group in table["group"]], [Option(**option) for option in table["option"]]


def roff(text: str) -> str:
    """Text of the table as man(7) source, each sentence on lines of its own."""
    text = " ".join(text.split()).replace("\\", "\\e").replace("-", "\\-").replace("'", "\\(aq")
    text = re.sub(r"\*([^*]+)\*", r"\\fB\1\\fR", text)
    text = re.sub(r"(?<!\w)_(\w+)_(?!\w)", r"\\fI\1\\fR", text)
    sentences = re.split(r"(?<=[.]) (?=[^a-z])", text)
    return "\n".join(line for sentence in sentences
                     for line in textwrap.wrap(sentence, WIDTH, break_long_words=False, break_on_hyphens=False))


def bold(word: str) -> str:
    return f"\\fB{roff(word)}\\fR"


def facts(option: Option) -> str:
    """Kind, unit, range and default."""
    if option.kind == "switch":
        return "Switch; off unless given."
    default = option.shown or f"*{option.default}*"
    if option.kind == "text":
        return roff(f"One of {', '.join(f'*{value}*' for value in option.values)}. Default: {default}.")
    what = KINDS[option.kind] + (f", in {option.unit}" if option.unit else "")
    beyond = BEYOND[option.beyond].format(least=option.ends()[0])
    choices = "".join(f"; *{value}* {meaning}" for value, meaning in option.values.items()).removeprefix("; ")
    return roff(f"{what}, from {option.range}{beyond}. " + (f"{choices}. " if choices else "") + f"Default: {default}.")


def manual_entry(option: Option) -> str:
    place = {"switch": "", "text": " \\fImode\\fR"}.get(option.kind, f" \\fI{option.place()}\\fR")
    return "\n".join([".TP", ", ".join(bold(spelling) + place for spelling in option.spellings()), roff(option.text),
                      ".IP", facts(option), f"Example: {bold(option.example)}"])


def manual(groups: list[Group], options: list[Option]) -> str:
    lines = []
    for group in groups:
        lines += [f".SS {group.title}", *([roff(group.text)] if group.text else [])]
        lines += [manual_entry(option) for option in options if option.group == group.title]
    return "\n".join(lines)


def bash_tables(_: list[Group], options: list[Option]) -> str:
    lines = ["# Each option with all its names, since none may be given twice.", "_vorlan_options=("]
    lines += [f"  '{' '.join(option.spellings())}'" for option in options]
    lines += [")", "# The values of options that take one; empty where any number may stand.",
              "# -g: completions are loaded from within a function.", "declare -gA _vorlan_values=("]
    lines += [f"  [{spelling}]='{' '.join(option.values)}'"
              for option in options if option.place() for spelling in option.spellings()]
    return "\n".join([*lines, ")"])


def zsh_spec(option: Option) -> str:
    names = option.spellings()
    excluded = "- *" if option.group == "Help" else " ".join(names) if len(names) > 1 else ""
    which = f"{{{','.join(names)}}}" if len(names) > 1 else names[0]
    value = ""
    if option.values:
        choices = " ".join(f'{value}\\:"{meaning}"' for value, meaning in option.values.items())
        value = f":{option.summary}:(({choices}))"
    elif option.place():
        value = f":{option.unit}: "
    return "  " + (f"'({excluded})'" if excluded else "") + f"{which}'[{option.summary}]{value}'"


def zsh_specs(_: list[Group], options: list[Option]) -> str:
    return "\n".join(["options=(", *map(zsh_spec, options), ")"])


WRITERS: dict[str, Callable[[list[Group], list[Option]], str]] = {
    "man/vorlan.1": manual,
    "completions/vorlan.bash": bash_tables,
    "completions/_vorlan": zsh_specs,
}


def updated(name: str, before: str, groups: list[Group], options: list[Option]) -> str:
    text = WRITERS[name](groups, options)
    after, count = REGION.subn(lambda marks: f"{marks[1]}{text}\n{marks[2]}", before)
    if count != 1:
        raise SystemExit(f"{name}: {count} places for the options, not one")
    return after


def main(words: list[str]) -> int:
    if words not in ([], ["--check"]):
        sys.stderr.write(__doc__ or "")
        return 2
    groups, options = read_table()
    stale = False
    for name in WRITERS:
        before = (ROOT / name).read_text(encoding="utf-8")
        after = updated(name, before, groups, options)
        if after == before:
            continue
        stale = True
        if words:
            sys.stdout.writelines(difflib.unified_diff(before.splitlines(True), after.splitlines(True), name,
                                                       "docs/options.toml"))
        else:
            (ROOT / name).write_text(after, encoding="utf-8")
    return 1 if stale and words else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
