# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Texts given as values of options, good and bad, and the numbers that they stand for."""

from __future__ import annotations

import re
import struct

from option_table import BY_NAME

INT_MIN, INT_MAX, UNSIGNED_MAX = -2**31, 2**31 - 1, 2**32 - 1
FLOAT_MAX = struct.unpack("<f", struct.pack("<I", 0x7F7FFFFF))[0]
UNSIGNED = {"minUnitLen", "maxUnitLen"}
COMMON_VALUES = ["", "garbage", "5x", "-1", "0", "1", "nan", "inf", "1e30", "1e400"]


def values(name: str) -> list[str]:
    """What is tried as a value of the option. To have none at all comes on top."""
    if name in UNSIGNED:
        edges = [str(INT_MIN), str(UNSIGNED_MAX), str(UNSIGNED_MAX + 1)]
    elif BY_NAME[name].value == "float":
        edges = ["-3.4028234e38", "3.4028234e38", "3.5e38"]
    else:
        edges = [str(INT_MIN), str(INT_MAX), str(INT_MAX + 1)]
    return COMMON_VALUES + edges


def read(name: str, text: str) -> float | None:
    """The number that a text stands for, None when it cannot be read as a value of the option."""
    if BY_NAME[name].value == "float":
        if not re.fullmatch(r"-?\d+(\.\d+)?(e\d+)?", text):
            return None
        number = float(text)
        return number if abs(number) <= FLOAT_MAX * (1 + 2**-26) else None
    if not re.fullmatch(r"-?\d+", text):
        return None
    number = int(text)
    if name in UNSIGNED:
        return number % 2**32 if -UNSIGNED_MAX <= number <= UNSIGNED_MAX else None
    return number if INT_MIN <= number <= INT_MAX else None
