# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The pictures of docs/figures show what the program prints and what was measured, and come out the same each time."""

from __future__ import annotations

import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
ROOT = Path(__file__).resolve().parents[2]
FIGURES = ROOT / "docs/figures"
sys.path.insert(0, str(FIGURES))

try:
    import matplotlib
except ImportError as missing:
    raise SystemExit("Debian package python3-matplotlib is missing; "
                     "tools/install-missing-packages.sh figures installs it") from missing

import draw_modes
import draw_speed

VORLAN = os.environ["VORLAN_BINARY"]


def results_drawn() -> list[str]:
    """The results that the stored picture of the speed was drawn from: newer ones may lie beside them."""
    picture = (FIGURES / "speed.svg").read_text()
    names = re.search("<dc:source>(.*?)</dc:source>", picture, re.DOTALL)[1].split()
    return [str(ROOT / "bench/results" / name) for name in names]


SOURCES = {"modes": [VORLAN], "speed": results_drawn()}

RESULT = """# Benchmark

- date: {date}

## Growth (Vorlan alone)

| name | work | against | CPU s | against, CPU s | ratio |
| --- | --- | --- | --- | --- | --- |
| a | -M imperfect, background-4000000 | -M imperfect, background-1000000 | {long} | 0.5000 | 4.00 |
| b | -M imperfect, diverged-array-40000 | -M imperfect, diverged-array-20000 | > 600 | 0.2500 | – |
| c | -M exact, background-9000000 | -M exact, background-1000000 | 7.00 | 6.00 | 1.17 |

## Speed (Vorlan alone)

| name | work | bases | million bases per CPU s | peak MB |
| --- | --- | --- | --- | --- |
| u | -M imperfect -u 20 -U 20, background-1000000 | 1,000,000 | 6.500 | 15.4 |
| u | -M imperfect -u 3 -U 3, background-1000000 | 1,000,000 | 118.399 | 15.4 |
| t | -M exact, background-16000000 | 16,000,000 | 70.088 | 31.5 |
"""


def draw(name: str, folder: str, seed: str = "0") -> bytes:
    out = Path(folder, f"{name}.svg")
    subprocess.run([sys.executable, str(FIGURES / f"draw_{name}.py"), *SOURCES[name], str(out)], check=True,
                   env={**os.environ, "PYTHONHASHSEED": seed})
    return out.read_bytes()


class Figures(unittest.TestCase):
    def test_the_pictures_stored_are_those_of_this_program_and_the_measurements_they_name(self) -> None:
        for name in SOURCES:
            with self.subTest(name), tempfile.TemporaryDirectory() as folder:
                stored = (FIGURES / f"{name}.svg").read_bytes()
                drawn = draw(name, folder)
                # Another matplotlib writes other bytes for the same picture.
                if f"Matplotlib v{matplotlib.__version__}".encode() not in stored:
                    self.skipTest(f"drawn with another matplotlib than {matplotlib.__version__}")
                self.assertTrue(stored == drawn, f"{name}.svg is out of date: make figures")

    def test_the_same_data_give_the_same_bytes(self) -> None:
        for name in SOURCES:
            with self.subTest(name), tempfile.TemporaryDirectory() as folder:
                self.assertTrue(draw(name, folder, "1") == draw(name, folder, "2"), name)

    def test_the_repeats_drawn_are_those_of_the_report(self) -> None:
        # As shown in docs/settings.md.
        self.assertEqual([(r.start, r.end, r.score, r.unit) for r in draw_modes.repeats(VORLAN, "imperfect")],
                         [(20, 91, 20, "AATTATATAT"), (96, 110, 6, "AAT")])
        self.assertEqual([len(draw_modes.repeats(VORLAN, mode)) for mode in draw_modes.MODES], [7, 5, 2])
        # 72 bases align with 77 of the perfect repeat by six deletions and one insertion.
        edits = [kind for _, kind in draw_modes.repeats(VORLAN, "imperfect")[0].edits]
        self.assertEqual((edits.count("D"), edits.count("I"), edits.count("M")), (6, 1, 1))

    def test_edits_are_drawn_where_they_are(self) -> None:
        # The insertion of the exact seed's extension is a base too many: what is left of the two sides is periodic.
        repeat = draw_modes.repeats(VORLAN, "extendExact")[0]
        bases = "".join(draw_modes.SEQUENCE.read_text().splitlines()[1:])
        (position, kind), = repeat.edits
        self.assertEqual(kind, "I")
        perfect = bases[repeat.start - 1:position - 1] + bases[position:repeat.end]
        self.assertTrue(all(base == perfect[i - len(repeat.unit)] for i, base in enumerate(perfect)
                            if i >= len(repeat.unit)), perfect)

    def test_the_newest_measurement_of_each_work_is_drawn(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            Path(folder, "z-old.md").write_text(RESULT.format(date="2025-01-02", long="9.00"))
            Path(folder, "a-new.md").write_text(RESULT.format(date="2025-01-03", long="2.00"))
            Path(folder, "b-newest.md").write_text("# Benchmark\n\n- date: 2025-01-04\n")
            results = list(Path(folder).iterdir())
            self.assertEqual(draw_speed.time_by_length(results), {
                "background": [draw_speed.Point(1e6, 0.5), draw_speed.Point(4e6, 2.0)],
                "diverged-array": [draw_speed.Point(2e4, 0.25)]})
            self.assertEqual(draw_speed.speed_by_unit(results),
                             [draw_speed.Point(3, 118.399), draw_speed.Point(20, 6.5)])

    def test_without_measurements_nothing_is_drawn(self) -> None:
        with self.assertRaises(SystemExit):
            draw_speed.draw([])


if __name__ == "__main__":
    unittest.main()
