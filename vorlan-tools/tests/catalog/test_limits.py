# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Every catalogue passes the loader of its genotyper, and nothing that would pass is left out."""

from __future__ import annotations

import tempfile
import unittest
from collections import Counter
from pathlib import Path

from loaders import LOADERS, Refused
from plain_report import PlainRepeat
from planted_genome import PlantedRun, catalog
from random_runs import complaint, run_vorlan

# What each genotyper takes, told here once more: period from and to, length from and to, flank, most N in flanks.
LIMITS = {"trgt": (1, 10**9, 1, 10**9, 250, 10**9), "hipstr": (1, 9, 2, 100, 50, 10**9),
          "gangstr": (1, 20, 1, 10**9, 150, 10**9), "eh": (1, 10**9, 1, 10**9, 1000, 5),
          "longtr": (1, 10**9, 1, 1000, 50, 10**9), "atarva": (1, 10**9, 1, 10**9, 0, 10**9),
          "straglr": (2, 10**9, 1, 10**9, 0, 10**9)}


def expected_reason(target: str, repeat: PlainRepeat, bases: str) -> str | None:
    """The beginning of the reason that a repeat is dropped for; None: it is a locus."""
    least, most, shortest, longest, flank, ns = LIMITS[target]
    start, end, period = repeat.start - 1, repeat.end, repeat.unit_length
    if target == "gangstr":
        end -= (end - start) % period
    if not least <= period <= most:
        return "with a unit"
    if end - start < max(shortest, period):
        return "shorter"
    if end - start > longest:
        return "longer"
    if start < flank or end + flank > len(bases):
        return "less than"
    if (bases[start - flank:start] + bases[end:end + flank]).count("N") > ns:
        return "with more than"
    return None


class LimitsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="vorlan-tools-limits-")))
        cls.runs = [PlantedRun(cls.folder, seed) for seed in range(10, 14)]

    def rejected(self, *words: object) -> tuple[str, list[list[str]]]:
        path = self.folder / "rejected.tsv"
        told, _ = catalog(*words, "--rejected", path)
        head, *rows = [line.split("\t") for line in path.read_text().split("\n")[:-1]]
        self.assertEqual(head, ["sequence", "start", "end", "unit_length", "unit", "motif", "reason"])
        return told, rows

    def test_loaders_take_every_catalogue(self) -> None:
        for run in self.runs:
            for target, load in LOADERS.items():
                for overlaps in ("best", "all", "drop"):
                    told, _ = catalog("-t", target, "-g", run.fasta, "--overlaps", overlaps, run.report)
                    self.assertTrue(load(told, run.genome))

    def test_what_is_dropped_would_not_pass_and_what_is_kept_is_all_else(self) -> None:
        seen: dict[str, Counter] = {target: Counter() for target in LOADERS}
        for run in self.runs:
            for target in LOADERS:
                _, rows = self.rejected("-t", target, "-g", run.fasta, "--overlaps", "all", run.report)
                told = {(row[0], int(row[1]), int(row[2]), int(row[3])): row[6] for row in rows}
                self.assertEqual(len(told), len(rows))
                for repeat in run.repeats:
                    key = (repeat.sequence, repeat.start, repeat.end, repeat.unit_length)
                    reason = expected_reason(target, repeat, run.genome[repeat.sequence])
                    self.assertEqual(key in told, reason is not None, f"{target} {key} {told.get(key)} {reason}")
                    if reason:
                        self.assertTrue(told[key].startswith(reason), f"{target} {told[key]} {reason}")
                        seen[target][reason] += 1
        # Each limit was met by something.
        self.assertGreater(seen["hipstr"]["with a unit"] * seen["hipstr"]["longer"] * seen["hipstr"]["less than"], 0)
        self.assertGreater(seen["gangstr"]["with a unit"] * seen["gangstr"]["less than"], 0)
        self.assertGreater(seen["eh"]["less than"] * seen["eh"]["with more than"], 0)
        self.assertGreater(seen["trgt"]["less than"] * seen["longtr"]["longer"] * seen["straglr"]["with a unit"], 0)

    def test_a_loader_refuses_what_the_limits_keep_out(self) -> None:
        """The loaders themselves can fail: with limits widened by options, or off by one, they do."""
        for run in self.runs:
            for target in ("trgt", "hipstr", "gangstr", "eh", "longtr"):
                told, _ = catalog("-t", target, "-g", run.fasta, "--flank", 0, run.report)
                with self.assertRaises(Refused):
                    LOADERS[target](told, run.genome)
            told, _ = catalog("-t", "hipstr", "-g", run.fasta, "--max-length", 1000, run.report)
            with self.assertRaises(Refused):
                LOADERS["hipstr"](told, run.genome)

    def test_flanks_are_counted_to_the_base(self) -> None:
        for target, (*_, flank, _) in LIMITS.items():
            for short in (0, 1):
                for left, right in ((flank - short, flank + 10), (flank + 10, flank - short)):
                    if flank == 0 and short:
                        continue
                    fasta = self.folder / "flank.fa"
                    fasta.write_text(">s\n" + ("GATTC" * left)[:left] + "CAG" * 9 + ("TTGAC" * right)[:right] + "\n")
                    report = run_vorlan("-u", "3", "-U", "3", "-l", "27", fasta)
                    told = complaint("catalog", "-t", target, "-g", fasta, "-", given=report) if short else \
                        catalog("-t", target, "-g", fasta, "-", given=report)[0]
                    self.assertIn(f"less than {flank} bases from an end" if short else "s", told)

    def test_names_that_a_genotyper_cannot_read(self) -> None:
        bad = {"trgt": "a:b a-b a;b a=b a,b #a".split(), "eh": ["a:b", "a-b"], "hipstr": ["#a"], "gangstr": ["#a"],
               "longtr": ["#a"], "atarva": ["#a"], "straglr": ["#a"]}
        for target, names in bad.items():
            for name in [*names, "a\tb", "", "a|b", "track1"]:
                fasta = self.folder / "names.fa"
                fasta.write_text(f">{name}\n{'GATTC' * 250}{'CAG' * 9}{'TTGAC' * 250}\n")
                words = ["catalog", "-t", target, "--unit-length", "3", "-g", fasta, "-"]
                given = run_vorlan(fasta)
                if name in ("a|b", "track1"):
                    self.assertIn(name, catalog(*words[1:], given=given)[0])
                else:
                    self.assertIn("in a sequence whose name", complaint(*words, given=given))
        self.assertTrue(catalog("-t", "trgt", "--cut-names", "--unit-length", "3", "-g", self.tabbed(), "-",
                                given=run_vorlan(self.tabbed()))[0].startswith("a\t1250\t1277\tID=a_1250_1277_CAG;"))

    def tabbed(self) -> Path:
        fasta = self.folder / "tabbed.fa"
        fasta.write_text(f">a\tb\n{'GATTC' * 250}{'CAG' * 9}{'TTGAC' * 250}\n")
        return fasta

    def test_an_empty_catalogue_is_an_error_and_leaves_no_file(self) -> None:
        run = self.runs[0]
        out, table = self.folder / "none.bed", self.folder / "none.tsv"
        said = complaint("catalog", "-t", "trgt", "-g", run.fasta, "--min-length", 10**6, "-o", out, "--rejected", table,
                         run.report)
        self.assertEqual(said, f"vorlan-tools: No locus is left of {len(run.repeats)} repeats; dropped: "
                               f"{len(run.repeats)} left out by a filter.\n")
        self.assertFalse(out.exists())
        self.assertEqual(table.read_text().count("\n"), len(run.repeats) + 1)

    def test_another_genome_is_refused(self) -> None:
        run = self.runs[0]
        text = run.fasta.read_text()
        for wrong, sentence in ((text.replace(">c1\n", ">c1\nA", 1), " bases in the report, but "),
                                (text.replace(">c1\n", ">c9\n"), "has no sequence \"c1\""),
                                ("".join(line if line[0] == ">" else line[:-1][::-1] + "\n"
                                         for line in text.splitlines(True)), "was made from another file")):
            fasta = self.folder / "wrong.fa"
            fasta.write_text(wrong)
            self.assertIn(sentence, complaint("catalog", "-t", "atarva", "-g", fasta, run.report))

    def test_requests_without_sense(self) -> None:
        run = self.runs[0]
        for words in (["-t", "hipstr", "--max-period", 10], ["-t", "gangstr", "--max-period", 21],
                      ["-t", "trgt", "--overlaps", "all", "--min-gap", 5], ["-t", "trgt", "-o", run.fasta],
                      ["-t", "trgt", "--rejected", run.report], ["-t", "eh", "--write-index", "-o", "x.gz"],
                      ["-t", "atarva", "--write-index", "-o", "x.bed"], ["-t", "atarva", "--write-index", "-O", "z"],
                      ["-t", "nonsense"], ["-t", "trgt", "--flank", -1]):
            complaint("catalog", "-g", run.fasta, *words, run.report, status=2)
        complaint("catalog", "-t", "trgt", "-g", "-", "-", status=2)
        twice = self.folder / "twice.fa"
        twice.write_text(">a\nTTCAGCAGCAGCAGTT\n>a\nTTCAGCAGCAGCAGTT\n")
        self.assertIn("Two sequences are named", complaint("catalog", "-t", "atarva", "-g", twice, "-",
                                                           given=run_vorlan(twice)))


if __name__ == "__main__":
    unittest.main()
