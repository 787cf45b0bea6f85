# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Copies at loci: worked by hand, against random genomes of which the truth is known, and cut by samtools."""

from __future__ import annotations

import gzip
import random
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

from random_runs import complaint, tools

ROOT = Path(__file__).resolve().parents[3]
HEAD = "locus\tfile\tsequence\tstart\tend\tstrand\tbases\tcount\tcopies\tother_bases\tflank_edits\tallele\n"
LEFT = "GATTACATTCGGCATCCGATAGGCTTAACC"
RIGHT = "TTGACGGTACCAATTCGTCAAGGATCCGTA"
OTHER = str.maketrans("ACGT", "TGCA")


def turned(bases: str) -> str:
    return bases.translate(OTHER)[::-1]


def table(text: bytes) -> list[dict[str, str]]:
    header, *lines = text.decode().split("\n")[:-1]
    return [dict(zip(header.split("\t"), line.split("\t"), strict=True)) for line in lines]


class CountTest(unittest.TestCase):
    """Files lie in a scratch folder."""

    maxDiff = None

    def setUp(self) -> None:
        temporary = tempfile.TemporaryDirectory(prefix="vorlan-tools-count-")
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name)

    def file(self, name: str, text: str) -> Path:
        path = self.folder / name
        path.write_text(text)
        return path

    def test_by_hand(self) -> None:
        """Bracket 30:42 of the reference, (CAG)4. The other file has it with 3 copies on the other strand, with a
        base changed in the left flank, then with 2 copies, CAA, 1 copy; its last sequence has no right flank."""
        reference = self.file("ref.fa", f">chr1\n{LEFT}{'CAG' * 4}{RIGHT}\n")
        changed = LEFT[:3] + "G" + LEFT[4:]
        self.assertNotEqual(changed, LEFT)
        other = self.file("other.fa", f">a x\nTT{turned(changed + 'CAG' * 3 + RIGHT)}G\n"
                                      f">b\n{LEFT}CAGCAGCAACAG{RIGHT}\n>c\n{LEFT}CAGCAG\n")
        loci = self.file("loci.bed", "# by hand\nchr1\t30\t42\tQ\tCAG\t3\n")
        rows = (f"Q\t{reference}\tchr1\t31\t42\t+\t12\t3\t4\t0\t0\t[CAG]4\n"
                # In front: TT and the 30 bases of the turned right flank.
                f"Q\t{other}\ta\t33\t41\t-\t9\t2\t3\t0\t1\t[CAG]3\n"
                f"Q\t{other}\tb\t31\t42\t+\t12\t3\t3\t3\t0\t[CAG]2[CAA]1[CAG]1\n")
        self.assertEqual(tools("count", "-l", loci, "-g", reference, other).decode(), HEAD + rows)
        # From standard input, compressed, and as TRGT writes loci; without uncounted bases.
        trgt = self.file("trgt.bed", "chr1\t30\t42\tID=Q;MOTIFS=CAG;STRUC=<TR>\n")
        self.assertEqual(tools("count", "-l", trgt, "-g", "-", given=gzip.compress(reference.read_bytes())).decode(),
                         HEAD + "Q\t-\tchr1\t31\t42\t+\t12\t4\t4\t0\t0\t[CAG]4\n")

    def test_a_file_without_the_locus_says_so(self) -> None:
        reference = self.file("ref.fa", f">chr1\n{LEFT}{'CAG' * 4}{RIGHT}\n")
        other = self.file("other.fa", f">c\n{LEFT}{'CAG' * 4}\n")
        given = b"chr1\t30\t42\tQ\tCAG\n"
        self.assertEqual(table(tools("count", "-l", "-", "-g", reference, other, given=given))[1],
                         dict.fromkeys(HEAD.strip().split("\t"), ".") | {"locus": "Q", "file": str(other)})

    def test_the_androgen_receptor(self) -> None:
        """22 CAG and a CAA make the 23 glutamines; 1601 to 1669, as vorlan has it, is the same count of GCA."""
        given = b"AR\t1601\t1670\tglutamines\tCAG,CAA\nAR\t1601\t1670\tCAG\tCAG\nAR\t1600\t1669\tGCA\tGCA\n"
        rows = table(tools("count", "-l", "-", "-g", ROOT / "examples/androgen_receptor.fa", given=given))
        self.assertEqual([(row["locus"], row["count"], row["copies"], row["allele"]) for row in rows],
                         [("GCA", "23", "23", "[GCA]23"), ("glutamines", "23", "23", "[CAG]22[CAA]1"),
                          ("CAG", "23", "22", "[CAG]22[CAA]1")])

    def test_random_genomes(self) -> None:
        """40 loci in a random genome; a second one with other alleles, changed flanks, pieces turned and moved."""
        chance = random.Random("count")
        bases = lambda size: "".join(chance.choice("ACGT") for _ in range(size))  # noqa: E731
        reference, bed, pieces, truth = "", "", [], {}
        for number in range(40):
            motif = chance.choice(["CAG", "AGAT", "AATGG", "AC"])
            left, right = bases(120), bases(120)
            here, there = chance.randint(3, 30), chance.randint(1, 60)
            start = len(reference) + len(left)
            reference += left + motif * here + right
            bed += f"ref\t{start}\t{start + here * len(motif)}\tL{number}\t{motif}\n"
            edits = chance.randint(0, 3)
            left, right = list(left), list(right)
            for flank, place in (chance.choice([(left, -1 - p), (right, p)]) for p in chance.sample(range(8, 45), edits)):
                flank[place] = chance.choice([b for b in "ACGT" if b != flank[place]])
            is_turned = chance.random() < 0.5
            pieces.append((f"L{number}", "".join(left), motif * there, "".join(right), is_turned))
            truth[f"L{number}"] = (str(there), motif, is_turned, edits)
        chance.shuffle(pieces)
        other, places = "", {}
        for name, left, allele, right, is_turned in pieces:
            piece = turned(left + allele + right) if is_turned else left + allele + right
            before = len(right) if is_turned else len(left)
            places[name] = (len(other) + before + 1, len(other) + before + len(allele))
            other += piece
        ref = self.file("ref.fa", f">ref\n{reference}\n")
        fasta = self.file("other.fa", f">other\n{other}\n")
        rows = table(tools("count", "-l", "-", "-g", ref, fasta, given=bed.encode()))
        self.assertEqual(len(rows), 80)
        for row in rows[40:]:
            copies, motif, is_turned, edits = truth[row["locus"]]
            self.assertEqual((row["copies"], row["count"], row["allele"]), (copies, copies, f"[{motif}]{copies}"))
            self.assertEqual((int(row["start"]), int(row["end"])), places[row["locus"]])
            self.assertEqual((row["strand"], row["flank_edits"]), ("-" if is_turned else "+", str(edits)))

    def test_samtools_cuts_the_same_bases(self) -> None:
        reference = self.file("ref.fa", f">chr1\n{LEFT}{'CAG' * 4}{RIGHT}\n>chr2\nC{turned(LEFT + 'CAGCAGCAT' + RIGHT)}\n")
        for row in table(tools("count", "-l", "-", "-g", reference, given=b"chr1\t30\t42\tQ\tCAG\n")):
            command = ["samtools", "faidx", *(["-i"] if row["strand"] == "-" else []), reference,
                       f"{row['sequence']}:{row['start']}-{row['end']}"]
            cut = subprocess.run(command, capture_output=True, text=True, check=True).stdout.split("\n")[1]
            words = re.findall(r"\[([ACGT]+)\](\d+)|([ACGT]+)", row["allele"])
            self.assertEqual(cut, "".join(word * int(copies or 1) + rest for word, copies, rest in words))
            self.assertEqual(len(cut), int(row["bases"]))

    def test_bad_input(self) -> None:
        reference = self.file("ref.fa", f">chr1\n{LEFT}{'CAG' * 4}{RIGHT}\n")
        for bed, said in [("chr1\t30\n", "line 1: a locus has the columns"),
                          ("#\nchr1\t42\t30\tQ\tCAG\n", "line 2: start and end"),
                          ("chr1\t30\tx\tQ\tCAG\n", "line 1: start and end"),
                          ("chr1\t30\t42\t\tCAG\n", "no name"),
                          ("chr1\t30\t42\tQ\tCXG\n", "motifs must be words"),
                          ("chr1\t30\t42\tQ\tCAG,\n", "motifs must be words"),
                          ("chr1\t30\t42\tQ\tCAG\t-1\n", "uncounted"),
                          ("chr1\t30\t420\tQ\tCAG\n", "ends behind the end"),
                          ("chr2\t30\t42\tQ\tCAG\n", 'has no sequence "chr2"'),
                          ("", "holds no locus"), ("#\n", "holds no locus")]:
            self.assertIn(said, complaint("count", "-l", "-", "-g", reference, given=bed.encode()))
        complaint("count", "-l", "-", "-g", "-", status=2)
        complaint("count", "-l", "-", "-g", reference, "-o", reference, status=2)
        complaint("count", "-l", "-", "-g", reference, "--flank", "19", status=2)


if __name__ == "__main__":
    unittest.main()
