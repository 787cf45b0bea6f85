# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""What compare says of two small assemblies, worked out by hand; by position; refusals."""

from __future__ import annotations

import subprocess
import tempfile
import unittest
from pathlib import Path

from random_runs import TOOLS, complaint, run_vorlan, tools
from second_assembly import turned

HEAD = ("status\tunit\tsequence\tstart\tend\tother_sequence\tother_start\tother_end\tstrand\tbases\tother_bases\t"
        "difference\tcopies\tother_copies\tcopies_difference\n")
# Stretches of 40 bases without a repeat of 16 bases; none ends or begins with what continues a neighbour.
L = ["GATTCGGCATTTAGGCATCCGAATCTAACCGTTGGTACTT", "TTGACGCTACCATTTCGTGAAGGATCCGTAGGCATTACGT", "GTCTAGGCCTTACGGATTCAGTCCGATAAGCTCGGCTTAT",
     "CCGTTAGCGGATATCCGTGTTAGCCATGGCTCAATCGTCG", "TCGGAGTTCATCCGGCTAACTGATCGCAATTGGCCTAGTC"]
CAG, AATG, AC = "CAG", "AATG", "AC"


class CompareTest(unittest.TestCase):
    """Reports show repeats of at least 16 bases, with flanks of 20."""

    maxDiff = None

    def setUp(self) -> None:
        temporary = tempfile.TemporaryDirectory(prefix="vorlan-tools-compare-")
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name)

    def report(self, name: str, text: str, *options: str) -> Path:
        fasta, report = self.folder / f"{name}.fa", self.folder / f"{name}.txt"
        fasta.write_text(text)
        report.write_bytes(run_vorlan("-l", 16, *(options or ("-f", "20")), fasta))
        return report

    def pair(self) -> tuple[Path, Path]:
        """(CAG)8 is 9 copies and lies on the other strand of another sequence, with a base of its left flank changed;
        (AATG)5 is lost; (AC)10 is as before but further right; (AGGCT)4 is new."""
        first = f">a\n{L[0]}{CAG * 8}{L[1]}{AATG * 5}{L[2]}{AC * 10}{L[3]}\n"
        left = L[0][:30] + "A" + L[0][31:]
        self.assertNotEqual(left, L[0])
        second = f">b\n{turned(left + CAG * 9 + L[1])}\n>a\n{L[4]}{'AGGCT' * 4}{L[2]}{AC * 10}{L[3]}\n"
        return self.report("first", first), self.report("second", second)

    def test_by_hand(self) -> None:
        """Places: (CAG)8 41 to 64; (AATG)5 105 to 124; (AC)10 165 to 184. In the second assembly, (CTG)9 41 to 67,
        (AGGCT)4 41 to 60, (AC)10 101 to 120. The unit of CAG in reports is AGC."""
        rows = ("changed\tAGC\ta\t41\t64\tb\t41\t67\t-\t24\t27\t3\t8.000\t9.000\t1.000\n"
                "lost\tAATG\ta\t105\t124\t.\t.\t.\t.\t20\t.\t.\t5.000\t.\t.\n")
        new = "new\tAGCCT\t.\t.\t.\ta\t41\t60\t.\t.\t20\t.\t.\t4.000\t.\n"
        same = "same\tAC\ta\t165\t184\ta\t101\t120\t+\t20\t20\t0\t10.000\t10.000\t0.000\n"
        done = subprocess.run([TOOLS, "compare", "--flank", "20", *self.pair()], capture_output=True, text=True,
                              check=True)
        self.assertEqual(done.stdout, HEAD + rows + new)
        self.assertEqual(done.stderr, "same 1, changed 1, lost 1, new 1, unclear 0, reread 0\n")
        self.assertEqual(tools("compare", "--all", "--flank", "20", *self.pair()).decode(), HEAD + rows + same + new)
        # The other way round, lost and new change places.
        told = tools("compare", "--flank", "20", *reversed(self.pair())).decode().split("\n")[1:-1]
        self.assertEqual([row.split("\t")[:2] for row in told],
                         [["changed", "AGC"], ["lost", "AGCCT"], ["new", "AATG"]])
        self.assertEqual(told[0].split("\t")[11], "-3")

    def test_vcf_by_hand(self) -> None:
        text = tools("compare", "--flank", "20", "--vcf", *self.pair()).decode()
        self.assertIn("##contig=<ID=a,length=224>\n", text)
        self.assertEqual(text.split("\n")[-2],
                         f"a\t40\t.\t{L[0][-1]}{CAG * 8}\t{L[0][-1]}{CAG * 9}\t.\t.\tRU=AGC;BASES=3;COPIES=1.000;"
                         "OTHER=b:41-67;TURNED")

    def test_a_border_that_a_changed_base_has_moved_is_no_change(self) -> None:
        """C behind (CAG)8 for T: the repeat goes one base further, its length between the flanks is as before."""
        self.assertEqual(L[1][0], "T")
        first = self.report("first", f">a\n{L[0]}{CAG * 8}{L[1]}\n")
        second = self.report("second", f">a\n{L[0]}{CAG * 8}C{L[1][1:]}\n")
        row = tools("compare", "--all", "--flank", "20", first, second).decode().split("\n")[1].split("\t")
        self.assertEqual((row[0], row[9:12]), ("same", ["24", "25", "0"]))

    def test_two_that_became_one_are_neither_lost_nor_new(self) -> None:
        """In the first assembly GATTC stands between two (CAG)6."""
        first = self.report("first", f">a\n{L[0]}{CAG * 6}GATTC{CAG * 6}{L[1]}{AC * 10}{L[3]}\n")
        second = self.report("second", f">a\n{L[0]}{CAG * 14}{L[1]}{AC * 10}{L[3]}\n")
        for pair in ((first, second), (second, first)):
            rows = tools("compare", "--flank", "20", *pair).decode().split("\n")[1:-1]
            self.assertEqual(sorted(row.split("\t")[0] for row in rows), ["reread", "unclear"])

    def test_by_position(self) -> None:
        """Without --flank overlaps count, on sequences of one name in any order: (CAG)9 overlaps (CAG)8, and (AATG)5
        what it was, three bases further."""
        first = self.report("first", f">a\n{L[0]}{CAG * 8}{L[1]}{AATG * 5}{L[2]}\n>b\n{L[3]}{AC * 9}{L[4]}\n")
        second = self.report("second", f">b\n{L[3]}{AC * 9}{L[4]}\n>a\n{L[0]}{CAG * 9}{L[1]}{AATG * 5}{L[2]}\n")
        rows = [row.split("\t") for row in tools("compare", "--all", first, second).decode().split("\n")[1:-1]]
        self.assertEqual([(row[0], row[1], *row[2:8], row[11]) for row in rows], [
            ("changed", "AGC", "a", "41", "64", "a", "41", "67", "3"),
            ("same", "AATG", "a", "105", "124", "a", "108", "127", "0"),
            ("same", "AC", "b", "41", "58", "b", "41", "58", "0")])

    def test_reports_of_other_formats(self) -> None:
        """Format 3 tells units and flanks, too; format 4 no units."""
        first = f">a\n{L[0]}{CAG * 8}{L[1]}{AATG * 5}{L[2]}\n"
        second = f">a\n{L[0]}{CAG * 8}{L[1]}{AATG * 7}{L[2]}\n"
        for form in "013":
            pair = [self.report(name, text, "-f", "20", "--outputFormat", form)
                    for name, text in (("first", first), ("second", second))]
            rows = tools("compare", "--flank", "20", *pair).decode().split("\n")[1:-1]
            self.assertEqual([(row.split("\t")[0], row.split("\t")[11]) for row in rows], [("changed", "8")], form)
        pair[0] = self.report("first", first, "-f", "20", "--outputFormat", "4")
        self.assertIn("shows no unit", complaint("compare", "--flank", "20", *pair))

    def test_refusals(self) -> None:
        first, second = self.pair()
        plain = self.report("plain", f">a\n{L[0]}{CAG * 8}{L[1]}\n", "-f", "0")
        self.assertIn("run vorlan with -f 20", complaint("compare", "--flank", "20", first, plain))
        self.assertIn("--vcf needs --flank", complaint("compare", "--vcf", first, second, status=2))
        complaint("compare", "-", "-", status=2)
        complaint("compare", first, status=2)
        complaint("compare", "--flank", "9", first, second, status=2)
        complaint("compare", first, second, "-o", first, status=2)
        bare = [self.report(f"bare{i}", f">a\n{L[0]}{CAG * i}{L[1]}\n", "-f", "20", "--outputFormat", "0",
                            "--printRepeatSeqMode", "0") for i in (8, 9)]
        self.assertIn("does not show the bases", complaint("compare", "--flank", "20", "--vcf", *bare))
        spoilt = self.report("spoilt", f">a(1)\n{L[0]}{CAG * 8}{L[1]}\n")
        self.assertIn("a(1)", complaint("compare", "--flank", "20", "--vcf", spoilt, second))


if __name__ == "__main__":
    unittest.main()
