# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""`mask` against bedtools, samtools, and a slow reading of the same FASTA text."""

from __future__ import annotations

import gzip
import random
import re
import subprocess
import unittest

from parts.nasty_inputs import INPUTS, MALFORMED_INPUTS
from parts.programs import ProgramTest

SEED = 5
WIDTH = 60
FORMATS = [["--outputFormat", "0"], ["--outputFormat", "1"], ["--outputFormat", "2"], ["--outputFormat", "3"],
           ["--outputFormat", "2", "--sequenceInfoAsComment"], ["--outputFormat", "3", "--sequenceInfoAsComment"],
           ["--outputFormat", "4"]]
NAMES_ONLY = [settings for settings in FORMATS
              if settings[1] in "234" and "--sequenceInfoAsComment" not in settings]


def random_genome(alphabet: bytes) -> bytes:
    """Records in lines of one width, with arrays that touch, overlap, and lie at both ends."""
    source = random.Random(SEED)
    text = b""
    for number in range(8):
        residues = b"".join(source.choice([bytes(source.choices(alphabet, k=source.randrange(1, 90))),
                                           bytes(source.choices(alphabet, k=source.randrange(1, 7))) * source.randrange(2, 20)])
                            for _ in range(30))
        lines = [residues[at:at + WIDTH] for at in range(0, len(residues), WIDTH)]
        text += b">s%d some words\n%s\n" % (number, b"\n".join(lines))
    return text


def spans_of(report: bytes) -> list[list[tuple[int, int]]]:
    """The spans, from 1 and inclusive, of each sequence of a report of format 1. No alignment, no flank, is
    printed, so that each repeat has a line with bars and one of events."""
    spans: list[list[tuple[int, int]]] = []
    for line in report.split(b"\n"):
        if line.startswith(b"sequence length: "):
            spans.append([])
        elif match := re.match(rb" *(?:\d+-)?\w+ +(\d+) : +(\d+) \| ", line):
            spans[-1].append((int(match[1]), int(match[2])))
    return spans


def masked_slowly(text: bytes, spans: list[list[tuple[int, int]]], hard: bool, keeps: bool) -> bytes:
    """The definition: each byte that is a base of a repeat, and nothing else, is changed."""
    result = bytearray(text)
    at_start, place, record, base = True, "before", -1, 0
    for at, byte in enumerate(text):
        char = chr(byte)
        if char in "\n\r":
            place = {"header": "residues", "comment": "before"}.get(place, place)
            at_start = True
            continue
        if char == ">" and (place == "before" or (place == "residues" and at_start)):
            place, record, base = "header", record + 1, 0
        elif place == "before" and char == "#":
            place = "comment"
        elif place == "residues" and char not in " \t\v\f-*":
            base += 1
            if any(start <= base <= end for start, end in spans[record]):
                result[at] = ord("N" if hard else char.lower())
            elif not keeps:
                result[at] = ord(char.upper())
        at_start = False
    return bytes(result)


class MaskTest(ProgramTest):
    def report(self, *settings: str, fasta: str = "in.fa") -> None:
        self.assertEqual(self.vorlan(*settings, fasta, "report").returncode, 0)

    def mask(self, *flags: str) -> bytes:
        outcome = self.tools("mask", "report", "-g", "in.fa", *flags)
        self.assertEqual((outcome.returncode, outcome.stderr), (0, b""))
        return outcome.stdout

    def judge(self, *command: str) -> bytes:
        return subprocess.run(command, cwd=self.folder, check=True, stdout=subprocess.PIPE).stdout


class AgainstBedtools(MaskTest):
    def bedtools(self, *flags: str) -> bytes:
        self.judge("bedtools", "maskfasta", "-fullHeader", *flags, "-fi", "in.fa", "-bed", "spans.bed", "-fo", "expected")
        return self.take("expected")

    def write_bed(self) -> None:
        """From a report of format 3: name, start and end, whatever the report to be masked by is."""
        rows = [line.split(b"\t") for line in self.vorlan("--outputFormat", "3", "in.fa").stdout.splitlines()
                if not line.startswith((b"#", b"seq-name"))]
        self.assertGreater(len(rows), 50)
        self.write("spans.bed", b"".join(b"%s\t%d\t%s\n" % (row[0], int(row[3]) - 1, row[4]) for row in rows))

    def test_all_formats_soft_and_hard(self) -> None:
        self.write("in.fa", random_genome(b"ACGT"))
        self.write_bed()
        soft, hard = self.bedtools("-soft"), self.bedtools()
        self.assertNotEqual(soft, self.read("in.fa"))
        for settings in FORMATS:
            with self.subTest(settings=settings):
                self.report(*settings)
                self.assertEqual(self.mask(), soft)
                self.assertEqual(self.mask("--hard"), hard)

    def test_earlier_lower_case(self) -> None:
        self.write("in.fa", random_genome(b"ACGTacgtNn"))
        self.write_bed()
        self.report()
        self.assertEqual(self.mask("--keep-lower-case"), self.bedtools("-soft"))
        self.assertEqual(self.mask("--keep-lower-case", "--hard"), self.bedtools())
        fresh = b"".join(line if line.startswith(b">") else line.upper()
                         for line in self.read("in.fa").splitlines(keepends=True))
        self.assertNotEqual(fresh, self.read("in.fa"))
        self.write("in.fa", fresh)
        expected = self.bedtools("-soft")
        self.write("in.fa", random_genome(b"ACGTacgtNn"))
        self.assertEqual(self.mask(), expected)


class AgainstTheDefinition(MaskTest):
    def test_every_nasty_input(self) -> None:
        masked = 0
        for name, text in INPUTS.items():
            self.write("in.fa", text)
            spans = spans_of(self.vorlan("--printRepeatSeqMode", "0", "in.fa").stdout)
            masked += sum(map(len, spans))
            for settings in (["--outputFormat", "1"], ["--outputFormat", "3", "--sequenceInfoAsComment"]):
                self.report(*settings)
                for hard in (False, True):
                    for keeps in (False, True):
                        with self.subTest(input=name, settings=settings, hard=hard, keeps=keeps):
                            flags = ["--hard"] * hard + ["--keep-lower-case"] * keeps
                            self.assertEqual(self.mask(*flags), masked_slowly(text, spans, hard, keeps))
        self.assertGreater(masked, 50)

    def test_many_lines_with_a_few_that_are_not_plain(self) -> None:
        """Far more than is looked at together; few repeats, since the definition is slow."""
        settings = ["--minScore", "12", "--minUnitLen", "2"]
        for line_ends in ([b"\n"], [b"\n"] * 400 + [b"\r\n", b"\r", b"\n\n"], [b"\r\n"], [b"\r"]):
            source = random.Random(SEED)
            text = bytearray()
            for name in b"abc":
                text += b">%c x\n" % name
                for number in range(700):
                    line = bytearray(source.choices(b"ACGTacgtN", k=source.choice([60] * 20 + [0, 1, 200, 20_000])
                                                    if number % 100 == 0 else 60))
                    if number % 50 == 7:
                        line[source.choice([0, 30, 40]):] = b"CAca" * 6
                    if source.randrange(300) == 0:
                        line[20:20] = source.choice([b"-", b"*", b"R", b" ", b"?", b"ACACACACACACACAC*ACACACACACACACA"])
                    text += bytes(line) + source.choice(line_ends)
            self.write("in.fa", bytes(text))
            spans = spans_of(self.vorlan(*settings, "--printRepeatSeqMode", "0", "in.fa").stdout)
            self.assertGreater(sum(map(len, spans)), 30)
            self.report(*settings)
            for hard, keeps in ((False, False), (False, True), (True, False)):
                flags = ["--hard"] * hard + ["--keep-lower-case"] * keeps
                self.assertEqual(self.mask(*flags), masked_slowly(bytes(text), spans, hard, keeps), (line_ends, flags))

    def test_repeats_within_repeats(self) -> None:
        text = random_genome(b"ACGT")
        self.write("in.fa", text)
        spans = spans_of(self.vorlan("-D", "--printRepeatSeqMode", "0", "in.fa").stdout)
        # Some lie within another one and do not reach its end.
        self.assertTrue(any(a[0] < b[0] and b[1] < a[1] for record in spans for a in record for b in record))
        for settings in FORMATS:
            self.report("-D", *settings)
            self.assertEqual(self.mask(), masked_slowly(text, spans, False, False))

    def test_a_range_of_records_leaves_the_others(self) -> None:
        text = INPUTS["all names the same"]
        self.write("in.fa", text)
        spans = spans_of(self.vorlan("--printRepeatSeqMode", "0", "in.fa").stdout)
        self.report("--firstSeq", "2", "--lastSeq", "3")
        self.assertEqual(self.mask(), masked_slowly(text, [[], *spans[1:3], []], False, False))

    def test_no_repeat_at_all(self) -> None:
        self.write("in.fa", b">a\nACGT\n")
        for settings in FORMATS:
            self.report(*settings)
            self.assertEqual(self.mask(), b">a\nACGT\n")


class Outputs(MaskTest):
    def setUp(self) -> None:
        super().setUp()
        self.write("in.fa", random_genome(b"ACGT"))
        self.report()
        self.expected = self.mask()

    def test_standard_input_for_one_of_both(self) -> None:
        outcome = self.tools("mask", "-", "-g", "in.fa", input=self.read("report"))
        self.assertEqual(outcome.stdout, self.expected)
        outcome = self.tools("mask", "report", "-g", "-", input=gzip.compress(self.read("in.fa")))
        self.assertEqual(outcome.stdout, self.expected)

    def test_compressed_with_indexes_that_samtools_takes(self) -> None:
        self.mask("-o", "out.fa.gz", "--write-index")
        self.assertEqual(self.names(), {"in.fa", "report", "tmp", "out.fa.gz", "out.fa.gz.fai", "out.fa.gz.gzi"})
        self.assertEqual(gzip.decompress(self.read("out.fa.gz")), self.expected)
        self.write("plain.fa", self.expected)
        for region in ("s0:50-170", "s7:1-61", "s3"):
            self.assertEqual(self.judge("samtools", "faidx", "out.fa.gz", region),
                             self.judge("samtools", "faidx", "plain.fa", region))
        written = {ending: self.take("out.fa.gz" + ending) for ending in (".fai", ".gzi")}
        self.judge("samtools", "faidx", "out.fa.gz")
        self.assertEqual({ending: self.take("out.fa.gz" + ending) for ending in (".fai", ".gzi")}, written)

    def test_plain_with_index(self) -> None:
        self.mask("-o", "out.fa", "--write-index")
        self.assertEqual(self.read("out.fa"), self.expected)
        written = self.take("out.fa.fai")
        self.judge("samtools", "faidx", "out.fa")
        self.assertEqual(self.read("out.fa.fai"), written)

    def test_output_type(self) -> None:
        self.mask("-o", "out.gz", "-O", "u")
        self.assertEqual(self.read("out.gz"), self.expected)
        self.assertEqual(gzip.decompress(self.mask("-O", "z")), self.expected)


class Threads(MaskTest):
    def setUp(self) -> None:
        """Many blocks of 64 kB, which is what each thread compresses at once."""
        super().setUp()
        source = random.Random(SEED)
        residues = bytes(source.choices(b"ACGTacgt", k=1_200_000))
        lines = [residues[at:at + WIDTH] for at in range(0, len(residues), WIDTH)]
        self.write("in.fa", b">a\n%s\n>b\n%s\n" % (b"\n".join(lines[:9000]), b"\n".join(lines[9000:])))
        self.report("--minScore", "12")

    def test_the_same_bytes_with_any_number(self) -> None:
        files = ("out.gz", "out.gz.fai", "out.gz.gzi")
        self.mask("-o", "out.gz", "--write-index")
        alone = {name: self.take(name) for name in files}
        self.assertGreater(len(alone["out.gz.gzi"]), 8 + 15 * 16)
        for threads in ("1", "2", "3", "8"):
            self.mask("-o", "out.gz", "--write-index", "-@", threads)
            self.assertEqual({name: self.take(name) for name in files}, alone, threads)
            self.assertEqual(self.mask("-O", "z", "--threads", threads), alone["out.gz"])
        plain = self.mask()
        self.assertEqual(gzip.decompress(alone["out.gz"]), plain)
        self.assertEqual(self.mask("-@", "3"), plain)

    def test_a_full_disk(self) -> None:
        with open("/dev/full", "wb") as full:
            outcome = self.tools("mask", "report", "-g", "in.fa", "-O", "z", "-@", "3", stdout=full)
        self.assert_refused(outcome, 1, "No space left")

    def test_a_genome_that_ends_too_early(self) -> None:
        self.write("in.fa", self.read("in.fa")[:-100])
        outcome = self.tools("mask", "report", "-g", "in.fa", "-o", "out.gz", "-@", "3")
        self.assert_refused(outcome, 1, "bases in the report")
        self.assertEqual(self.names(), {"in.fa", "report", "tmp"})

    def test_no_thread(self) -> None:
        self.assert_refused(self.tools("mask", "report", "-g", "in.fa", "-@", "0"), 2, "--threads")


class Refusals(MaskTest):
    def refuse(self, words: str, *arguments: str, status: int = 1, **options) -> None:
        before = self.names()
        self.assert_refused(self.tools("mask", *arguments, "-o", "out", **options), status, words)
        self.assertEqual(self.names(), before)

    def test_another_genome(self) -> None:
        text = INPUTS["two records"]
        self.write("in.fa", text)
        self.report()
        for other, words in ((text.replace(b">b", b">c"), "was made from another file"),
                             (text.replace(b"AC\n\n", b"A\n\n"), "bases in the report"),
                             (text.replace(b"\n", b"\nA", 1), "bases in the report"),
                             (text[:text.index(b">b")], "has no sequence"),
                             (text[text.index(b">b"):], "was made from another file")):
            self.write("other.fa", other)
            self.refuse(words, "report", "-g", "other.fa")

    def test_another_genome_where_only_names_are_known(self) -> None:
        text = INPUTS["two records"]
        self.write("in.fa", text)
        for settings in NAMES_ONLY:
            self.report(*settings)
            for other, words in ((text.replace(b">b", b">c"), "has no sequence"), (text.replace(b"ACAC\n\n", b"\n\n"), "behind the end")):
                self.write("other.fa", other)
                self.refuse(words, "report", "-g", "other.fa")

    def test_names_that_do_not_tell_sequences_apart(self) -> None:
        self.write("in.fa", INPUTS["all names the same"])
        self.write("unlucky.fa", b">a\nACGT\n>a\nACACACACACAC\n")
        for settings in NAMES_ONLY:
            for name in ("in.fa", "unlucky.fa"):
                self.report(*settings, fasta=name)
                outcome = self.tools("mask", "report", "-g", name, "-o", "out")
                self.assertEqual(outcome.returncode, 1)
                self.assertRegex(outcome.stderr, b"several sequences named|not in the order of a report|behind the end")
                self.assertNotIn("out", self.names())

    def test_malformed_genomes(self) -> None:
        self.write("in.fa", INPUTS["two records"])
        self.report()
        for name, text in MALFORMED_INPUTS.items():
            if name == "a digit as the last byte":  # vorlan takes this one
                continue
            with self.subTest(name):
                self.write("bad.fa", text)
                self.assertEqual(self.tools("mask", "report", "-g", "bad.fa", "-o", "out").returncode, 1)
                self.assertNotIn("out", self.names())

    def test_a_report_that_is_not_complete(self) -> None:
        self.write("in.fa", INPUTS["two records"])
        self.report()
        self.write("report", b"".join(self.read("report").splitlines(keepends=True)[:-1]))
        self.refuse("not complete", "report", "-g", "in.fa")

    def test_outputs_that_are_inputs(self) -> None:
        self.write("in.fa", INPUTS["two records"])
        self.report()
        (self.folder / "link").symlink_to("in.fa")
        for output in ("in.fa", "link", "report"):
            outcome = self.tools("mask", "report", "-g", "in.fa", "-o", output)
            self.assert_refused(outcome, 2, "same file as the input")
        self.assertEqual(self.read("in.fa"), INPUTS["two records"])
        self.refuse("Only one of", "-", "-g", "-", status=2)
        outcome = self.tools("mask", "report", "-g", "in.fa", "--write-index")
        self.assert_refused(outcome, 2, "needs an output with a name")

    def test_lines_that_cannot_be_indexed(self) -> None:
        self.write("in.fa", b">a\nACGT\nACG\nACGT\n")
        self.report()
        self.refuse("cannot be indexed", "report", "-g", "in.fa", "--write-index")

    def test_a_full_disk(self) -> None:
        self.write("in.fa", INPUTS["two records"])
        self.report()
        with open("/dev/full", "wb") as full:
            outcome = self.tools("mask", "report", "-g", "in.fa", stdout=full)
        self.assert_refused(outcome, 1, "No space left")


if __name__ == "__main__":
    unittest.main()
