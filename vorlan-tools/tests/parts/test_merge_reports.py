# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""However an input is divided, the merged report is that of one run, byte by byte."""

from __future__ import annotations

import itertools
import unittest

from parts.nasty_inputs import INPUTS, SETTINGS, record_starts
from parts.programs import ProgramTest


def divisions(count: int):
    """All ways to divide the numbers from 1 to `count` into ranges, as lists of (first, last)."""
    for edges in itertools.product([False, True], repeat=max(count - 1, 0)):
        starts = [1] + [number + 2 for number, is_edge in enumerate(edges) if is_edge]
        yield [(first, following - 1) for first, following in zip(starts, [*starts[1:], count + 1])]


class Ranges(ProgramTest):
    def part(self, settings: list[str], first: int, last: int | None) -> str:
        """The report of a range, made once."""
        name = f"part-{first}-{last}"
        if not (self.folder / name).exists():
            bounds = ["--firstSeq", str(first)] + ([] if last is None else ["--lastSeq", str(last)])
            self.write(name, self.vorlan(*settings, *bounds, "in.fa").stdout)
        return name

    def check_all_divisions(self, settings: list[str], count: int) -> None:
        whole = self.vorlan(*settings, "in.fa").stdout
        for ranges in divisions(count):
            parts = [self.part(settings, first, None if last == count else last) for first, last in ranges]
            outcome = self.tools("merge", *parts)
            self.assertEqual((outcome.returncode, outcome.stderr), (0, b""), ranges)
            self.assertEqual(outcome.stdout, whole, ranges)
        for name in self.names():
            if name.startswith("part-"):
                (self.folder / name).unlink()

    def test_every_division_of_every_input(self) -> None:
        for name, text in INPUTS.items():
            self.write("in.fa", text)
            for settings in SETTINGS:
                with self.subTest(input=name, settings=settings):
                    self.check_all_divisions(settings, len(record_starts(text)))

    def test_a_range_behind_the_last_record_and_an_empty_one(self) -> None:
        self.write("in.fa", INPUTS["two records"])
        whole = self.vorlan("in.fa").stdout
        parts = [self.part([], 1, 1), self.part([], 2, 1), self.part([], 2, 7), self.part([], 8, None)]
        self.assertEqual(self.tools("merge", *parts).stdout, whole)

    def test_a_range_that_ends_before_the_last_record(self) -> None:
        self.write("in.fa", INPUTS["names like the lines of a report"])
        expected = self.vorlan("--firstSeq", "2", "--lastSeq", "4", "in.fa").stdout
        outcome = self.tools("merge", self.part([], 2, 2), self.part([], 3, 4))
        self.assertEqual(outcome.stdout, expected)

    def test_a_named_report_and_another_input_name(self) -> None:
        self.write("in.fa", INPUTS["two records"])
        self.write("a.fa", INPUTS["two records"])
        self.assertEqual(self.vorlan("--lastSeq", "1", "a.fa", "1.txt").returncode, 0)
        self.assertEqual(self.vorlan("--firstSeq", "2", "in.fa", "2.txt").returncode, 0)
        self.vorlan("in.fa", "merged.txt")
        expected = self.take("merged.txt")
        outcome = self.tools("merge", "--input", "in.fa", "-o", "merged.txt", "1.txt", "2.txt")
        self.assertEqual((outcome.returncode, outcome.stderr, outcome.stdout), (0, b"", b""))
        self.assertEqual(self.read("merged.txt"), expected)

    def test_compressed_and_piped_parts(self) -> None:
        import gzip
        self.write("in.fa", INPUTS["two records"])
        whole = self.vorlan("in.fa").stdout
        first = self.read(self.part([], 1, 1))
        self.write("second.gz", gzip.compress(self.read(self.part([], 2, None))))
        self.assertEqual(self.tools("merge", "-", "second.gz", input=first).stdout, whole)

    def test_a_compressed_output(self) -> None:
        import gzip
        self.write("in.fa", INPUTS["two records"])
        self.vorlan("in.fa", "whole.txt.gz")
        expected = self.take("whole.txt.gz")
        parts = [self.part([], 1, 1), self.part([], 2, None)]
        self.assertEqual(self.tools("merge", "-o", "whole.txt.gz", *parts).returncode, 0)
        self.assertEqual(gzip.decompress(self.read("whole.txt.gz")), expected)


class Slices(ProgramTest):
    def test_every_cutting_of_every_input(self) -> None:
        for name, text in INPUTS.items():
            self.write("in.fa", text)
            starts = record_starts(text)
            if text.endswith((b"\n>", b"\r>")):
                starts.pop()  # this record shows the name of the one before
            for settings in (["--outputFormat", "1"], ["--outputFormat", "3", "--sequenceInfoAsComment"]):
                with self.subTest(input=name, settings=settings):
                    self.check_cuttings(text, starts, settings)

    def check_cuttings(self, text: bytes, starts: list[int], settings: list[str]) -> None:
        whole = self.vorlan(*settings, "in.fa").stdout
        for ranges in divisions(len(starts)):
            parts = []
            for first, last in ranges:
                begin = 0 if first == 1 else starts[first - 1]
                end = len(text) if last == len(starts) else starts[last]
                self.write("slice.fa", text[begin:end])
                parts.append(f"{len(parts)}.txt")
                self.write(parts[-1], self.vorlan(*settings, "slice.fa").stdout)
            outcome = self.tools("merge", "--slices", "--input", "in.fa", *parts)
            self.assertEqual((outcome.returncode, outcome.stderr), (0, b""), ranges)
            self.assertEqual(outcome.stdout, whole, ranges)


class Masked(ProgramTest):
    def test_masked_files_of_ranges(self) -> None:
        self.write("in.fa", INPUTS["names like the lines of a report"])
        self.vorlan("--maskX", "in.fa")
        whole = self.take("in.fa.masked")
        self.assertIn(b"X", whole)
        parts = []
        for bounds in (["--lastSeq", "2"], ["--firstSeq", "3", "--lastSeq", "2"], ["--firstSeq", "3"]):
            self.vorlan("--maskX", *bounds, "in.fa")
            parts.append(f"{len(parts)}.masked")
            self.write(parts[-1], self.take("in.fa.masked"))
        outcome = self.tools("merge", "--masked", "-o", "all.masked", *parts)
        self.assertEqual((outcome.returncode, outcome.stderr), (0, b""))
        self.assertEqual(self.read("all.masked"), whole)

    def test_what_is_no_masked_file_is_refused(self) -> None:
        self.write("good", b">a\n" + b"A" * 80 + b"\nXX\n")
        for text, words in ((b">a\nACGT", "bad, line 2"), (b"ACGT\n", "bad, line 1"), (b">a\nacgt\n", "bad, line 2"),
                            (b">a\nAC\nGT\n", "bad, line 3"), (b">a\n" + b"A" * 81 + b"\n", "bad, line 2")):
            with self.subTest(text=text):
                self.write("bad", text)
                self.assert_refused(self.tools("merge", "--masked", "-o", "out", "good", "bad"), 1, words)
                self.assertNotIn("out", self.names())


class Refusals(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        self.write("in.fa", INPUTS["names like the lines of a report"])
        for name, bounds in {"1": ["--lastSeq", "2"], "2": ["--firstSeq", "3", "--lastSeq", "4"], "3": ["--firstSeq", "5"],
                             "0": []}.items():
            self.write(name, self.vorlan(*bounds, "in.fa").stdout)

    def refuse(self, words: str, *arguments: str, status: int = 1) -> None:
        outcome = self.tools("merge", "-o", "out", *arguments)
        self.assert_refused(outcome, status, words)
        self.assertNotIn("out", self.names())
        self.assertEqual([name for name in self.names() if name.startswith("out")], [])

    def test_gaps_and_overlaps(self) -> None:
        self.refuse("sequence 3 comes next", "1", "3")
        self.refuse("sequence 3 comes next", "1", "1")
        self.refuse("sequence 5 comes next", "2", "1")
        self.refuse("no part can follow", "3", "1")
        self.refuse("no part can follow", "0", "0")
        self.refuse("a slice must be searched as a whole", "--slices", "0", "1")

    def test_other_settings_and_other_versions(self) -> None:
        self.write("other", self.vorlan("--firstSeq", "3", "-l", "5", "in.fa").stdout)
        self.refuse("other settings", "1", "other")
        self.write("other", self.vorlan("--firstSeq", "3", "--outputFormat", "3", "in.fa").stdout)
        self.refuse("other settings", "1", "other")
        older = self.vorlan("--firstSeq", "3", "in.fa").stdout.replace(b"version 3", b"version 2", 1)
        self.write("other", older)
        self.refuse("another version", "1", "other")

    def test_other_inputs_need_a_name_for_the_whole(self) -> None:
        self.write("b.fa", self.read("in.fa"))
        self.write("other", self.vorlan("--firstSeq", "3", "b.fa").stdout)
        self.refuse('from "b.fa"', "1", "other")

    def test_parts_that_are_not_complete(self) -> None:
        whole = self.read("2")
        lines = whole.splitlines(keepends=True)
        self.write("cut", b"".join(lines[:-1]))
        self.refuse("closing line", "1", "cut", "3")
        self.write("cut", whole[:-1])
        self.refuse("cut short", "1", "cut", "3")
        self.write("cut", b"".join(lines[:10]))
        self.refuse("ends within the head", "1", "cut", "3")
        self.write("cut", b"")
        self.refuse("ends within the head", "1", "cut", "3")
        self.write("cut", whole + b"x\n")
        self.refuse("behind its closing line", "1", "cut", "3")
        self.write("cut", b"".join(lines[:-1]) + self.read("3"))
        self.refuse("another report begins here", "1", "cut", "3")

    def test_a_fasta_report_that_is_cut_within_a_line(self) -> None:
        settings = ["--outputFormat", "4"]
        self.write("a", self.vorlan(*settings, "--lastSeq", "2", "in.fa").stdout[:-1])
        self.write("b", self.vorlan(*settings, "--firstSeq", "3", "in.fa").stdout)
        self.refuse("cut short", "a", "b")

    def test_what_is_no_report(self) -> None:
        self.refuse("not the head of a report", "in.fa", "1")
        self.refuse("Cannot open", "1", "missing")

    def test_an_output_that_is_a_part(self) -> None:
        before = self.read("1")
        (self.folder / "link").symlink_to("1")
        (self.folder / "hard").hardlink_to(self.folder / "1")
        for output in ("1", "./1", "link", "hard"):
            outcome = self.tools("merge", "-o", output, "1", "2", "3")
            self.assert_refused(outcome, 2, "same file")
        self.assertEqual(self.read("1"), before)

    def test_standard_input_twice(self) -> None:
        self.refuse("only one of the parts", "-", "-", status=2)

    def test_an_earlier_output_stays_when_a_part_is_bad(self) -> None:
        self.write("kept", b"earlier\n")
        self.assertEqual(self.tools("merge", "-o", "kept", "1", "3").returncode, 1)
        self.assertEqual(self.read("kept"), b"earlier\n")

    def test_a_full_disk(self) -> None:
        with open("/dev/full", "wb") as full:
            outcome = self.tools("merge", "1", "2", "3", stdout=full)
        self.assert_refused(outcome, 1, "No space left")


if __name__ == "__main__":
    unittest.main()
