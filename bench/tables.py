# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Texts and tables of the results."""

from __future__ import annotations

from dataclasses import dataclass, field
from typing import Optional

from measure import CPU_LIMIT_SECONDS, Measurement


def seconds(measurement: Measurement) -> str:
    if measurement.timed_out:
        return f"> {CPU_LIMIT_SECONDS}"
    return f"{measurement.median:.4f}" if measurement.median < 1 else f"{measurement.median:.2f}"


def megabytes(count: float) -> str:
    return f"{count / 1e6:.1f}"


def ratio_of(large: Measurement, small: Measurement) -> Optional[float]:
    """How many times the time of small; a lower bound if large was stopped, none if small was."""
    return None if small.timed_out or small.median == 0 else large.median / small.median


def ratio_text(large: Measurement, small: Measurement) -> str:
    ratio = ratio_of(large, small)
    if ratio is None:
        return "–"
    return f"{'> ' if large.timed_out else ''}{ratio:.2f}"


def markdown(head: list[str], rows: list[list[str]]) -> str:
    lines = [head, ["---"] * len(head), *rows]
    return "".join(f"| {' | '.join(cells)} |\n" for cells in lines)


@dataclass
class Table:
    title: str
    head: list[str]
    rows: list[list[str]] = field(default_factory=list)
    note: str = ""  # What the columns mean.

    def text(self) -> str:
        """Nothing when no row was run."""
        note = f"{self.note}\n\n" if self.note else ""
        return f"## {self.title}\n\n{note}{markdown(self.head, self.rows)}\n" if self.rows else ""


def bullet_list(title: str, items: list[str]) -> str:
    return f"## {title}\n\n" + "".join(f"- {item}\n" for item in items) + "\n" if items else ""
