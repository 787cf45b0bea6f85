# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Series of one chart can be told apart with any colour vision.

What dichromats see: G. M. Machado, M. M. Oliveira, L. A. F. Fernandes, "A physiologically-based model for simulation
of color vision deficiency", IEEE Transactions on Visualization and Computer Graphics 15 (2009) 1291-1298, table of
severity 1. Distances are those of CIE 1976 (L*a*b*, D65); about 2 can just be noticed side by side.
"""

from __future__ import annotations

import itertools
import math
import re
import unittest
from pathlib import Path

THEMES = Path(__file__).resolve().parents[2] / "src/page/page/theme.js"
SEEN = {
    "all cones": ((1, 0, 0), (0, 1, 0), (0, 0, 1)),
    "protanopia": ((0.152286, 1.052583, -0.204868), (0.114503, 0.786281, 0.099216), (-0.003882, -0.048116, 1.051998)),
    "deuteranopia": ((0.367322, 0.860646, -0.227968), (0.280085, 0.672501, 0.047413), (-0.011820, 0.042940, 0.968881)),
    "tritanopia": ((1.255528, -0.076749, -0.178779), (-0.078411, 0.930809, 0.147602), (0.004733, 0.691367, 0.303900)),
}
TO_XYZ = ((0.4124 / 0.9505, 0.3576 / 0.9505, 0.1805 / 0.9505), (0.2126, 0.7152, 0.0722),
          (0.0193 / 1.089, 0.1192 / 1.089, 0.9505 / 1.089))
LEAST_DISTANCE = 20


def product(matrix, vector: list[float]) -> list[float]:
    return [sum(factor * value for factor, value in zip(row, vector)) for row in matrix]


def linear(colour: str) -> list[float]:
    parts = [int(colour[i:i + 2], 16) / 255 for i in (1, 3, 5)]
    return [part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4 for part in parts]


def lab(colour: str, seen) -> tuple[float, float, float]:
    light = [min(1, max(0, part)) for part in product(seen, linear(colour))]
    x, y, z = (value ** (1 / 3) if value > 216 / 24389 else value * 841 / 108 + 4 / 29 for value in product(TO_XYZ, light))
    return 116 * y - 16, 500 * (x - y), 200 * (y - z)


def themes() -> dict[str, dict[str, list[str]]]:
    """Colours by theme and key, from the script of the page."""
    found = {}
    for name, body in re.findall(r"const (\w+)Theme = \{(.*?)\n\};", THEMES.read_text(), re.DOTALL):
        found[name] = {key: re.findall(r"#[0-9a-f]{6}", value)
                       for key, value in re.findall(r'(\w+): (\[[^\]]*\]|"[^"]*")', body)}
    return found


class Colours(unittest.TestCase):
    def test_distances_are_those_of_the_definition(self) -> None:
        self.assertAlmostEqual(math.dist(lab("#000000", SEEN["all cones"]), lab("#ffffff", SEEN["all cones"])), 100, 1)
        # Red and green are one hue without the cones for either.
        red, green = (lab(colour, SEEN["deuteranopia"]) for colour in ("#a00000", "#506000"))
        self.assertLess(abs(math.atan2(red[2], red[1]) - math.atan2(green[2], green[1])), 0.3)

    def test_series_are_far_apart_and_stand_out(self) -> None:
        found = themes()
        self.assertEqual(set(found), {"light", "dark"})
        for name, colours in found.items():
            self.assertEqual(len(colours["series"]), 8)
            for kind, seen in SEEN.items():
                for one, other in [*itertools.combinations(colours["series"], 2),
                                   (colours["perfect"][0], colours["imperfect"][0]),
                                   *((colour, colours["ground"][0]) for colour in colours["series"])]:
                    with self.subTest(theme=name, kind=kind, colours=(one, other)):
                        self.assertGreater(math.dist(lab(one, seen), lab(other, seen)), LEAST_DISTANCE)

    def test_densities_go_from_near_to_far_from_the_ground(self) -> None:
        for name, colours in themes().items():
            for kind, seen in SEEN.items():
                with self.subTest(theme=name, kind=kind):
                    ground = lab(colours["ground"][0], seen)
                    distances = [abs(lab(colour, seen)[0] - ground[0]) for colour in colours["density"]]
                    self.assertEqual(distances, sorted(distances))
                    self.assertGreater(min(b - a for a, b in zip([0, *distances], distances)), 5)


if __name__ == "__main__":
    unittest.main()
