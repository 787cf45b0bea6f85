# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""`calibrate` on sequences in which it is known which repeats are true, and what it takes and refuses."""

from __future__ import annotations

import gzip
import json
import random
import unittest

from parts.programs import VORLAN, ProgramTest
from stats.plain_counts import rows_of

COPIES = 8
BACKGROUND = 400_000
PLANTED = 600


def with_planted_repeats(at_share: float, seed: int) -> tuple[str, list[tuple[int, int]]]:
    """Random bases of that composition, and where repeats of unit length 1 to 6 were put into them."""
    source = random.Random(seed)
    weights = [at_share / 2, (1 - at_share) / 2, (1 - at_share) / 2, at_share / 2]
    bases = source.choices("ACGT", weights=weights, k=BACKGROUND)
    spans = []
    for place in range(PLANTED):
        length = source.randrange(1, 7)
        unit = source.choices("ACGT", k=length)
        array = (unit * 60)[:source.choice([length + source.randrange(8, 13), source.randrange(32, 60)])]
        begin = place * (BACKGROUND // PLANTED) + source.randrange(100, 400)
        bases[begin:begin + len(array)] = array
        spans.append((begin, begin + len(array)))
    return "".join(bases), spans


class CalibrateTest(ProgramTest):
    def calibrate(self, *words: str, settings: tuple[str, ...] = ()) -> dict:
        outcome = self.tools("calibrate", "--vorlan", VORLAN, "--json", "-", *words, "--", *settings)
        self.assertEqual((outcome.returncode, outcome.stderr), (0, b""))
        self.assert_nothing_is_left()
        return json.loads(outcome.stdout)


class KnownTruth(CalibrateTest):
    def assert_close(self, at_share: float, *words: str) -> None:
        """The expected number of false repeats lies within four standard deviations of the true one, by unit
        length and least score; the share is that number over what was found."""
        bases, spans = with_planted_repeats(at_share, 17)
        self.write("in.fa", f">s\n{bases}\n".encode())
        rows = rows_of(self.vorlan("--outputFormat", "3", "--printRepeatSeqMode", "0", "in.fa").stdout.decode())
        lines = [line.split("\t") for line in self.vorlan("--outputFormat", "3", "--printRepeatSeqMode", "0",
                                                          "in.fa").stdout.decode().splitlines()]
        scores = [int(cells[7]) for cells in lines if len(cells) > 13 and cells[0] == "s"]
        self.assertEqual(len(scores), len(rows))
        is_planted = bytearray(BACKGROUND)
        for begin, end in spans:
            is_planted[begin:end] = b"\1" * (end - begin)
        said = self.calibrate("-g", "in.fa", "--copies", str(COPIES), *words)
        compared = 0
        for entry in said["by_unit_length"]:
            for least in range(entry["scores"][0][0], 14):
                chosen = [row for row, score in zip(rows, scores)
                          if row.unit_length == entry["unit_length"] and score >= least]
                false = sum(not any(is_planted[row.start - 1:row.end]) for row in chosen)
                expected = sum(chance for score, _, chance, *_ in entry["scores"] if score >= least) / COPIES
                noise = (max(expected, 1) * (1 + 1 / COPIES)) ** 0.5
                self.assertLessEqual(abs(false - expected), 4 * noise + 0.03 * expected,
                                     (at_share, entry["unit_length"], least, false, expected))
                self.assertEqual(sum(found for score, found, *_ in entry["scores"] if score >= least), len(chosen))
                compared += false > 20
        self.assertGreater(compared, 5)

    def test_half_at(self) -> None:
        self.assert_close(0.5)

    def test_a_fifth_at(self) -> None:
        self.assert_close(0.2)

    def test_four_fifths_at(self) -> None:
        self.assert_close(0.8, "-k", "2", "--mask-length", "20")

    def test_copies_that_lose_the_composition_would_be_noticed(self) -> None:
        """The same comparison fails for a genome of 80 % AT against copies of another composition."""
        bases, _ = with_planted_repeats(0.8, 17)
        self.write("in.fa", f">s\n{bases}\n".encode())
        other, _ = with_planted_repeats(0.5, 17)
        self.write("other.fa", f">s\n{other}\n".encode())
        chance = [{entry["unit_length"]: entry["chance_per_mb"] for entry in
                   self.calibrate("-g", name, "--copies", "2")["by_unit_length"]} for name in ("in.fa", "other.fa")]
        self.assertGreater(chance[0][1], 3 * chance[1][1])


class Requests(CalibrateTest):
    def setUp(self) -> None:
        super().setUp()
        bases, _ = with_planted_repeats(0.6, 3)
        self.bases = bases[:60000] + "NNNNN" + bases[60000:90000]
        self.write("in.fa", f">a one\n{self.bases[:50000]}\n>a one\n{self.bases[50000:]}\n>\n>c\nNNNN\n".encode())

    def test_same_seed_same_bytes(self) -> None:
        command = ["calibrate", "--vorlan", VORLAN, "-g", "in.fa", "--copies", "3", "--json", "-"]
        first = self.tools(*command).stdout
        self.assertEqual(self.tools(*command, "-j", "3").stdout, first)
        self.assertNotEqual(self.tools(*command, "--seed", "2").stdout, first)
        self.write("in.fa", gzip.compress(self.read("in.fa")))
        self.assertEqual(self.tools(*command).stdout, first)

    def test_what_is_said_of_the_request(self) -> None:
        said = self.calibrate("-g", "in.fa", "-k", "2", "--copies", "2", "--seed", "9", "--per-sequence",
                              "--mask-length", "25", settings=("-s", "8", "-U", "4"))
        self.assertEqual([said[key] for key in ("k", "copies", "seed", "window", "mask_length", "genome", "bases")],
                         [2, 2, 9, 0, 25, "in", len(self.bases) - 5])
        self.assertEqual([entry["unit_length"] for entry in said["by_unit_length"]], [1, 2, 3, 4])
        self.assertEqual(min(score for entry in said["by_unit_length"] for score, *_ in entry["scores"]), 8)
        self.assertIn(["Minimum score", "maximum (8, 0+1*unitlength )"], said["settings"])

    def test_long_repeats_are_left_out_of_the_copies(self) -> None:
        with_all = self.calibrate("-g", "in.fa", "--copies", "2", "--mask-length", "0")
        without = self.calibrate("-g", "in.fa", "--copies", "2")
        self.assertEqual(with_all["copied_bases"], with_all["bases"])
        rows = rows_of(self.vorlan("--outputFormat", "3", "--printRepeatSeqMode", "0", "in.fa").stdout.decode())
        long = [row for row in rows if row.bases >= 30]
        self.assertGreater(len(long), 20)
        self.assertAlmostEqual(without["bases"] - without["copied_bases"], sum(row.bases for row in long), delta=20)

    def test_the_advised_options_keep_what_is_said(self) -> None:
        said = self.calibrate("-g", "in.fa", "--copies", "5")
        for advice in said["advice"]:
            kept = sum(found for entry in said["by_unit_length"] for score, found, *_ in entry["scores"]
                       if score >= max(advice["min_score"],
                                       advice["min_score_a"] + advice["min_score_b"] * entry["unit_length"]))
            self.assertEqual(kept, advice["kept"])
            self.assertGreater(kept, 50)
            self.assertLessEqual(advice["expected_false"], advice["level"] * kept)
            for entry in said["by_unit_length"]:
                threshold = next(t["score"] for t in entry["thresholds"] if t["level"] == advice["level"])
                self.assertGreaterEqual(max(advice["min_score"], advice["min_score_a"] +
                                            advice["min_score_b"] * entry["unit_length"]) + 1, threshold)
            self.assertEqual(self.vorlan(*advice["options"].split(), "in.fa", "report").returncode, 0)

    def test_the_table(self) -> None:
        said = self.calibrate("-g", "in.fa", "--copies", "2")
        lines = self.tools("calibrate", "--vorlan", VORLAN, "-g", "in.fa", "--copies", "2").stdout.decode().splitlines()
        self.assertEqual([line[:12] for line in lines[:2]], ["# at most 5 ", "# at most 1 "])
        self.assertIn(said["advice"][0]["options"], lines[0])
        rows = [[float(cell) for cell in line.split("\t")] for line in lines[3:]]
        self.assertEqual([[row[i] for i in (0, 1, 2, 3, 5, 6)] for row in rows],
                         [[entry["unit_length"], *score] for entry in said["by_unit_length"] for score in entry["scores"]])

    def test_requests_that_make_no_sense(self) -> None:
        for words in (["-g", "in.fa", "-k", "7"], ["-g", "in.fa", "-k", "0"], ["-g", "in.fa", "--copies", "0"], [],
                      ["-g", "in.fa", "--json", "in.fa"], ["-g", "in.fa", "--json", "-", "--tsv", "-"],
                      ["-g", "in.fa", "--", "more.fa"], ["-g", "in.fa", "--", "-f", "3"],
                      ["-g", "in.fa", "--", "--outputFormat", "1"], ["-g", "in.fa", "--", "--firstSeq", "2"],
                      ["-g", "in.fa", "--", "--nonsense"]):
            self.assert_refused(self.tools("calibrate", "--vorlan", VORLAN, *words), 2, "")
        self.assert_refused(self.tools("calibrate", "--vorlan", VORLAN, "-g", "none.fa"), 1, "none.fa")
        refused = self.tools("calibrate", "--vorlan", VORLAN, "-g", "in.fa", "--", "-u", "9", "-U", "3")
        self.assertEqual(refused.returncode, 1)
        self.assert_nothing_is_left()

    def test_a_genome_without_repeats(self) -> None:
        self.write("in.fa", b">a\nACGT\n")
        said = self.calibrate("-g", "in.fa", "--copies", "1")
        self.assertEqual((said["by_unit_length"], said["advice"][0]["kept"]), ([], 0))


if __name__ == "__main__":
    unittest.main()
