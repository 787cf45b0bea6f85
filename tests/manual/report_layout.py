# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Entries of reports, read by the forms that the manual gives for them."""

from __future__ import annotations

import re
from dataclasses import dataclass

CONVERSION = re.compile(r"%(?P<width>\d*)(?P<precision>\.\d+)?(?P<kind>[dfs])")
PATTERNS = {"d": r" *-?\d+", "f": r" *\d+\.\d+", "s": r" *[^\t\n]*?"}
ESCAPES = {"\\t": "\t", "\\n": "\n", '\\"': '"', "\\\\": "\\"}


class NotAsDescribed(Exception):
    """An entry is not laid out as the manual says."""


@dataclass(frozen=True)
class Form:
    """The form of one field, as for printf: text with at most one conversion."""

    field: str
    text: str

    def pattern(self) -> str:
        before, conversion, after = self.pieces()
        return re.escape(before) + (f"({PATTERNS[conversion['kind']]})" if conversion else "") + re.escape(after)

    def pieces(self) -> tuple[str, re.Match[str] | None, str]:
        found = CONVERSION.search(self.text.replace("%%", "\0\0"))
        before, after = (self.text[:found.start()], self.text[found.end():]) if found else (self.text, "")
        return before.replace("%%", "%"), found, after.replace("%%", "%")

    def value(self, written: str) -> str | int | float:
        """The value that was written; raises NotAsDescribed when it would be written in another way."""
        conversion = self.pieces()[1]
        convert = {"d": int, "f": float, "s": str.strip}[conversion["kind"]]
        value = convert(written)
        if conversion[0] % value != written:
            raise NotAsDescribed(f"{self.field} is written {written!r}, not by {self.text!r}")
        return value


def unquoted(form: str) -> str:
    if form[:1] != '"' or form[-1:] != '"':
        raise NotAsDescribed(f"the form {form} does not stand in quotation marks")
    return re.sub(r"\\.", lambda escape: ESCAPES[escape[0]], form[1:-1])


def forms(rows: list[list[str]], without: tuple[str, ...] = ()) -> list[Form]:
    """The forms of a table of the manual, but for fields that the settings leave out."""
    return [Form(field, unquoted(form)) for field, form in rows if field not in without]


def joined(layout: list[Form]) -> list[Form]:
    """Texts with nothing between them cannot be told apart: they become one, with the names of all."""
    result: list[Form] = []
    for form in layout:
        if result and result[-1].text == "%s" and form.text.startswith("%s"):
            form = Form(f"{result.pop().field}+{form.field}", form.text)
        result.append(form)
    return result


def entries(layout: list[Form], report: str) -> list[dict[str, str | int | float]]:
    """The entries of a report, each by field; of a field that is written twice both must agree."""
    layout = joined(layout)
    pattern = "^" + "".join(form.pattern() for form in layout)
    found = []
    for match in re.finditer(pattern, report, re.MULTILINE):
        values: dict[str, str | int | float] = {}
        shown = (form for form in layout if form.pieces()[1])
        for form, written in zip(shown, match.groups()):
            value = form.value(written)
            if isinstance(value, float) or isinstance(values.get(form.field), float):
                values.setdefault(form.field, value)
                if abs(values[form.field] - value) > 0.006:
                    raise NotAsDescribed(f"{form.field} is {values[form.field]} and {value}")
            elif values.setdefault(form.field, value) != value:
                raise NotAsDescribed(f"{form.field} is {values[form.field]!r} and {value!r}")
        found.append(values)
    return found
