# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Every planted lie is told, at its line. Lies are planted into reports that pass."""

from __future__ import annotations

import random
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

from random_runs import TOOLS, random_run, run_vorlan

# A perfect repeat, one with all kinds of edits and Ns, and one with a longer unit; the second record is
# reached by no repeat at its ends, so that flanks are whole.
FASTA = """>s1 first
TTGACAGGACACACACACACACACACATACACACACANNACACACACACACGACACACACACCACACACACGGTTCATGCAGCAGCAGCAGCAGCAGTT
>s2
GATTACAGCCCGATTTGATTCGATTTGATTCGATTTGATTCGATTTGATTCCAGT
>s3
CCGTGTGTGTGTGTGTGTGTGTGAACCT
"""
LETTERS = {"A": "C", "C": "G", "G": "T", "T": "A", "N": "A"}


def told_lines(report: str, *more: object) -> set[int]:
    """Numbers of the lines that are named, on either stream; empty if the report passes."""
    done = subprocess.run([TOOLS, "check", "-", *map(str, more), "--limit", "0"], input=report.encode(),
                          capture_output=True, check=False)
    if done.returncode not in (0, 1):
        raise AssertionError(f"check ended with {done.returncode}: {done.stderr!r}")
    text = (done.stdout + done.stderr).decode()
    if (done.returncode == 0) != (text == ""):
        raise AssertionError(f"status {done.returncode}, but said {text!r}")
    return {int(number) for number in re.findall(r"standard input(?::|, line )(\d+):", text)} or \
        ({0} if text else set())


class LieTest(unittest.TestCase):
    """One record of each kind; lies are planted one by one."""

    def setUp(self) -> None:
        temporary = tempfile.TemporaryDirectory(prefix="vorlan-tools-lies-")
        self.addCleanup(temporary.cleanup)
        self.fasta = Path(temporary.name) / "in.fa"
        self.fasta.write_text(FASTA)
        self.folder = Path(temporary.name)

    def report(self, *options: str) -> str:
        text = run_vorlan(*options, self.fasta).decode()
        self.assertEqual(told_lines(text), set())
        self.assertEqual(told_lines(text, "-g", self.fasta), set())
        return text

    def body_lines(self, text: str) -> list[int]:
        """Indices of the lines behind the head, the closing line left out."""
        lines = text.split("\n")
        heads = [i for i, line in enumerate(lines) if line.startswith(("# ", "seq-name")) and "Analysis" not in line
                 and "Full" not in line and "End tandem" not in line]
        return [i for i in range(max(heads) + 1, len(lines) - 1)
                if not lines[i].startswith(("## Finished", "# End tandem"))]

    def expect_told(self, text: str, index: int, lie: str, *, near: int = 5, genome: bool = False) -> None:
        lines = text.split("\n")
        planted = "\n".join(lines[:index] + [lie] + lines[index + 1:])
        if planted == text:
            return
        told = told_lines(planted, *(["-g", self.fasta] if genome else []))
        self.assertTrue(any(abs(number - (index + 1)) <= near for number in told),
                        f"line {index + 1}\n  was {lines[index]}\n  is  {lie}\n  told {told}")

    def plant_numbers(self, text: str, *, genome: bool) -> int:
        """Each number of each entry one more and one less."""
        lines = text.split("\n")
        count = 0
        for index in self.body_lines(text):
            for found in re.finditer(r"\d+(?![^(]*,[MID]\))", lines[index]):
                name_end = lines[index].find("\t")
                is_in_name = lines[index][:1] in "s>#" and (found.start() < name_end or name_end < 0) and \
                    "sequence length" not in lines[index] and not lines[index].startswith(">s1 1") and \
                    found.start() < 3
                if is_in_name and not genome:
                    continue
                for step in (1, -1):
                    number = str(max(0, int(found[0]) + step)).rjust(len(found[0]), "0" if found[0][0] == "0" else " ")
                    lie = lines[index][:found.start()] + number + lines[index][found.end():]
                    if len(number) > len(found[0]) and lie[found.start() - 1:found.start()] == " ":
                        lie = lie[:found.start() - 1] + lie[found.start():]
                    self.expect_told(text, index, lie, genome=genome)
                    count += 1
        return count

    def test_every_number_of_formats_0_1_3_and_4(self) -> None:
        for options in (["--outputFormat", "1"], ["--outputFormat", "0"], ["--outputFormat", "3"],
                        ["--outputFormat", "4"], ["--outputFormat", "1", "-f", "7"],
                        ["--outputFormat", "1", "--printRepeatSeqMode", "1"],
                        ["--outputFormat", "3", "--sequenceInfoAsComment", "-f", "3"]):
            with self.subTest(options=options):
                self.assertGreater(self.plant_numbers(self.report(*options), genome=True), 60)

    def test_every_number_of_format_1_without_the_bases(self) -> None:
        text = self.report("--outputFormat", "1")
        lines = text.split("\n")
        for index in self.body_lines(text):
            if "| unit" not in lines[index] and "|  unit" not in lines[index]:
                continue
            for found in re.finditer(r"\d+", lines[index].replace("3-n", "")):
                number = str(int(found[0]) + 1).rjust(len(found[0]))
                self.expect_told(text, index, lines[index][:found.start()] + number + lines[index][found.end():])

    def test_every_letter_of_bases_alignments_and_units(self) -> None:
        for options in (["-f", "4"], ["--outputFormat", "3", "-f", "4"], ["--outputFormat", "4", "-f", "4"],
                        ["--printRepeatSeqMode", "1"]):
            text = self.report(*options)
            lines = text.split("\n")
            for index in self.body_lines(text):
                for at, letter in enumerate(lines[index]):
                    is_sign = letter in "|*" and set(lines[index]) <= set("|* ")
                    if not is_sign and (letter not in LETTERS or not re.search(r"[ACGTN]{3}$|unit|\t[ACGTN]",
                                                                               lines[index])):
                        continue
                    other = " " if is_sign else LETTERS[letter]
                    self.expect_told(text, index, lines[index][:at] + other + lines[index][at + 1:], genome=True)

    def test_insertion_and_deletion_swapped(self) -> None:
        text = self.report("--outputFormat", "1")
        lines = text.split("\n")
        entry = next(i for i, line in enumerate(lines) if re.search(r"[1-9] (ins|del)", line))
        swapped = re.sub(r"(\d+) ins \| +(\d+) del", lambda found: f"{found[2]} ins | {found[1]:>3} del", lines[entry])
        self.expect_told(text, entry, swapped)
        events = lines[entry + 1].replace("I", "x").replace("D", "I").replace("x", "D")
        self.expect_told(text, entry + 1, events)

    def test_events(self) -> None:
        for mode in "12":
            text = self.report("--printRepeatSeqMode", mode)
            lines = text.split("\n")
            for index, line in enumerate(lines):
                if not line.startswith("Missense: ("):
                    continue
                for found in re.finditer(r"\((\d+),(.)\),", line):
                    for lie in (f"({int(found[1]) + 1},{found[2]}),", f"({found[1]},{'MD'[found[2] == 'M']}),", "",
                                found[0] * 2):
                        self.expect_told(text, index, line[:found.start()] + lie + line[found.end():], genome=True)

    def test_entries_in_the_wrong_order(self) -> None:
        for options, size in ((["--outputFormat", "1"], 5), (["--outputFormat", "3", "--sequenceInfoAsComment"], 1)):
            text = self.report(*options)
            lines = text.split("\n")
            first = next(i for i, line in enumerate(lines) if "100.000" in line or "nucleotide" in line
                         or line.startswith("s1\t"))
            lines[first:first + 2 * size] = lines[first + size:first + 2 * size] + lines[first:first + size]
            self.assertTrue(told_lines("\n".join(lines)))

    def test_sequences(self) -> None:
        for options in (["--outputFormat", "1"], ["--outputFormat", "2", "--sequenceInfoAsComment"]):
            text = self.report(*options)
            lines = text.split("\n")
            for index, line in enumerate(lines):
                if line.startswith((">", "#>")):
                    self.expect_told(text, index, line + "x", genome=True)
            ends = [i for i, line in enumerate(lines) if line.startswith("# Analysis")]
            for before, last in zip([self.body_lines(text)[0] - 1, *ends], ends):
                shorter = "\n".join(lines[:before + 1] + lines[last + 1:])
                self.assertTrue(told_lines(shorter, "-g", self.fasta), "a lost sequence")
            self.expect_told(text, ends[0], lines[ends[0]].replace("first", "second").replace("s1", "s2"))

    def test_a_report_of_another_input(self) -> None:
        other = self.folder / "other.fa"
        other.write_text(FASTA.replace("CATACAC", "CACACAC", 1))
        for form in "01234":
            text = self.report("--outputFormat", form)
            if form == "2":
                continue
            self.assertTrue(told_lines(text, "-g", other), f"format {form}")

    def test_settings_that_do_not_fit(self) -> None:
        text = self.report("--outputFormat", "1")
        for was, lie in (("Minimum unit length:                  1", "Minimum unit length:                  3"),
                         ("Maximum unit length:                  10", "Maximum unit length:                  5"),
                         ("Mismatch score:                       -5", "Mismatch score:                       -4"),
                         ("Indel score:                          -5", "Indel score:                          -6"),
                         ("maximum (6, 0+1*unitlength )", "maximum (18, 0+1*unitlength )"),
                         ("maximum (6, 0+1*unitlength )", "maximum (6, 0+4*unitlength )"),
                         ("maximum (0, 0+0*unitlength )", "maximum (0, 20+0*unitlength )"),
                         ("0 % - 100 %", "97 % - 100 %"), ("0 % - 100 %", "0 % - 99.9 %"),
                         ("N's allowed:           2", "N's allowed:           1"),
                         ("N's allowed:           2", "N's allowed:           0"),
                         ("asMismatch", "asMatch"), ("1 - last sequence", "1 - 2"),
                         ("alphabetical normal form using reverse complement", "alphabetical normal form"),
                         ("imperfect repeats", "exact repeats")):
            self.assertIn(was, text)
            self.assertTrue(told_lines(text.replace(was, lie, 1)), lie)

    def test_numbers_of_gff_that_cannot_be(self) -> None:
        text = self.report("--outputFormat", "2")
        row = next(i for i, line in enumerate(text.split("\n")) if line.startswith("s1\t"))
        line = text.split("\n")[row]
        for pattern, lie in ((r"repeat_number [\d.]+", "repeat_number 9.001"), (r"unit_size \d+", "unit_size 3"),
                             (r"unit A[A-Z]+", "unit CA"), (r"unit A[A-Z]+", "unit ACAC"), (r"\t[\d.]+\t\.", "\t91.00\t."),
                             (r"perfection [\d.]+", "perfection 99.999")):
            self.expect_told(text, row, re.sub(pattern, lie, line, count=1))

    def test_random_bytes_in_random_reports(self) -> None:
        """A changed byte behind the head is told, or the report says the same as before (paddings aside)."""
        missed = []
        for seed in range(25):
            run = random_run(f"lies-{seed}", self.folder)
            chance = random.Random(seed)
            report = run.report("--outputFormat", "1").decode()
            body = report.index("\n# \n>") + 4 if "\n# \n>" in report else len(report)
            for _ in range(12):
                at = chance.randrange(body, len(report) - 1) if body < len(report) - 1 else len(report) - 2
                letter = chance.choice("ACGTN0123456789-|*: \n(M,I)D")
                if letter == report[at]:
                    continue
                planted = report[:at] + letter + report[at + 1:]
                if not told_lines(planted, "-g", run.fasta):
                    missed.append((seed, at, report[at - 20:at + 20], letter))
        self.assertEqual(missed, [])


if __name__ == "__main__":
    unittest.main()
