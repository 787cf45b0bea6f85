# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The sections of a benchmark run, in the order of the result. Each takes the run and returns its tables."""

from __future__ import annotations

from collections.abc import Callable

from bench import Bench
from tables import Table

from .accelerations import accelerations
from .alone import growth, long_units, memory, speed
from .companion import tools
from .comparisons import before, not_slower, plain
from .kernels import kernels
from .survival import survival
from .tuning import tuning

SECTIONS: dict[str, Callable[[Bench], list[Table]]] = {
    "plain": plain,
    "growth": growth,
    "memory": memory,
    "speed": speed,
    "accelerations": accelerations,
    "before": before,
    "not-slower": not_slower,
    "long-units": long_units,
    "survival": survival,
    "kernels": kernels,
    "tuning": tuning,
    "tools": tools,
}
# Those that need the program of an earlier commit.
WITH_YARDSTICK = ("before", "not-slower")
