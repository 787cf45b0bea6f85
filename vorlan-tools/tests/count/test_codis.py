# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The alleles of the 13 core loci of forensic genetics get the numbers that laboratories give them.

codis_alleles.tsv has their published names and structures, codis_loci.tsv the flanks, the motifs, and how many
bases of each bracket the convention of the locus leaves out. The sequences are put together here. With
VORLAN_GENOMES, a folder with CODIS13_alleles.fasta and CODIS13_checked.tsv, the whole records are counted too.

A number is the length of the bracket, without what is left out, in whole copies, and the bases that remain behind
a point. Where that is not the name, the reason is a fact of the table, which is proved here:

- VWA. Most names are "15(17)": 17 copies with the TCCA TCTA at the end, 15 without. The four alleles in
  VWA_WITH_THE_END are named by all that is there.
- D13S317 10': TATC ten times, then AATC, so that it is as long as an 11.
- D21S11: the alleles in D21S11_CONTRADICTED have names that no count by length can give: another allele of
  the table with the same length, or one that is no longer, has a name that is no less.
"""

from __future__ import annotations

import os
import re
import tempfile
import unittest
from pathlib import Path

from random_runs import tools

HERE = Path(__file__).parent
GENOMES = os.environ.get("VORLAN_GENOMES")
VWA_WITH_THE_END = {"10": "8", "11(13')*": "9", "12": "10", "13": "11"}
D13S317_BY_LENGTH = {"10'": "11"}
D21S11_CONTRADICTED = {"24.2": "26", "29.1": "28.2", "33.3": "31.1", "34.2": "33.2", "34.3": "35.1", "37": "40",
                       "38": "41", "38''": "42", "38'''": "41"}
PERIOD = 4


def rows(name: str) -> list[list[str]]:
    return [line.split("\t") for line in (HERE / name).read_text().split("\n")[1:-1]]


def words_of(structure: str) -> list[tuple[str, int]]:
    """Of "[TTTC]3TTTT TT[CTTT]9": the words with their copies."""
    found = re.findall(r"\[([ACGT]+)\](\d+)|([ACGT]+)", structure)
    return [(word or rest, int(copies or 1)) for word, copies, rest in found]


def sequence_of(structure: str) -> str:
    return "".join(word * copies for word, copies in words_of(structure))


def joined(words: list[tuple[str, int]]) -> list[tuple[str, int]]:
    """Equal neighbours as one."""
    result: list[tuple[str, int]] = []
    for word, copies in words:
        if result and result[-1][0] == word:
            copies += result.pop()[1]
        result.append((word, copies))
    return result


def name_number(allele: str) -> str:
    return re.match(r"[\d.]+", allele)[0]


def as_bases(number: str) -> int:
    whole, _, rest = number.partition(".")
    return int(whole) * PERIOD + int(rest or 0)


LOCI = {row[0]: row[1:] for row in rows("codis_loci.tsv")}
ALLELES = [tuple(row) for row in rows("codis_alleles.tsv")]


def counted(bed: str, fasta: Path) -> dict[str, list[dict[str, str]]]:
    """Rows by sequence."""
    header, *lines = tools("count", "--loci", "-", "-g", fasta, given=bed.encode()).decode().split("\n")[:-1]
    result: dict[str, list[dict[str, str]]] = {}
    for line in lines:
        row = dict(zip(header.split("\t"), line.split("\t"), strict=True))
        result.setdefault(row["sequence"], []).append(row)
    return result


class CodisTest(unittest.TestCase):
    """One count for all; the questions are asked of its table."""

    @classmethod
    def setUpClass(cls) -> None:
        bed = {}
        with tempfile.TemporaryDirectory(prefix="vorlan-tools-codis-") as folder:
            fasta = Path(folder) / "alleles.fa"
            with fasta.open("w") as file:
                for locus, allele, structure in ALLELES:
                    motifs, uncounted, left, right = LOCI[locus]
                    bases = sequence_of(structure)
                    file.write(f">{locus}*{allele}\n{left}{bases}{right}\n")
                    bed.setdefault(locus, f"{locus}*{allele}\t{len(left)}\t{len(left) + len(bases)}\t{locus}\t"
                                          f"{motifs}\t{uncounted}\n")
            cls.table = counted("".join(bed.values()), fasta)

    def row(self, locus: str, allele: str) -> dict[str, str]:
        found = self.table[f"{locus}*{allele}"]
        self.assertEqual([row["locus"] for row in found], [locus])
        return found[0]

    def test_all_are_found_where_they_lie(self) -> None:
        self.assertEqual((len(LOCI), len(ALLELES)), (13, 240))
        for locus, allele, structure in ALLELES:
            row = self.row(locus, allele)
            start = len(LOCI[locus][2])
            self.assertEqual((int(row["start"]), int(row["end"])), (start + 1, start + len(sequence_of(structure))))
            self.assertEqual((row["strand"], row["flank_edits"]), ("+", "0"))

    def test_the_count_is_the_name_but_for_the_known_ones(self) -> None:
        others = {}
        for locus, allele, _ in ALLELES:
            count = self.row(locus, allele)["count"]
            if count != name_number(allele):
                others.setdefault(locus, {})[allele] = count
        self.assertEqual(others, {"VWA": VWA_WITH_THE_END, "D13S317": D13S317_BY_LENGTH,
                                  "D21S11": D21S11_CONTRADICTED})

    def test_vwa_with_the_end_counted(self) -> None:
        for locus, allele, _ in ALLELES:
            if locus != "VWA":
                continue
            whole = int(self.row(locus, allele)["bases"])
            inside = re.search(r"\((\d+)", allele)
            if allele in VWA_WITH_THE_END:
                self.assertEqual(whole, as_bases(name_number(allele)))
            elif inside:
                self.assertEqual(whole, as_bases(inside[1]))

    def test_d13s317_by_copies(self) -> None:
        row = self.row("D13S317", "10'")
        self.assertEqual((row["copies"], row["other_bases"], row["allele"]), ("10", "4", "[TATC]10[AATC]1"))

    def test_the_names_of_d21s11_contradict_each_other(self) -> None:
        known = [(as_bases(name_number(allele)), len(sequence_of(structure)))
                 for locus, allele, structure in ALLELES if locus == "D21S11" and allele not in D21S11_CONTRADICTED]
        for allele in D21S11_CONTRADICTED:
            name, length = as_bases(name_number(allele)), int(self.row("D21S11", allele)["bases"])
            self.assertTrue(any((other < name and length <= longer) or (other > name and length >= longer)
                                for other, longer in known), allele)

    def test_strings_have_the_words_of_the_table(self) -> None:
        for locus, allele, structure in ALLELES:
            told = words_of(self.row(locus, allele)["allele"])
            self.assertEqual("".join(word * copies for word, copies in told), sequence_of(structure))
            # The half unit of FGA's .2 alleles, TTTT TT, lets the string read TTTC on where the table has CTTT.
            if locus != "FGA" or not allele.endswith(".2"):
                shown = structure.replace("TCCA TA", "TCCATA")  # one rest
                self.assertEqual(told, joined(words_of(shown)), (locus, allele))

    @unittest.skipUnless(GENOMES, "VORLAN_GENOMES names no folder")
    def test_the_whole_records(self) -> None:
        lines = (Path(GENOMES) / "CODIS13_checked.tsv").read_text().split("\n")[1:-1]
        places = {columns[0]: columns for columns in (line.split("\t") for line in lines)}
        bed = {}
        for name, (_, locus, _, _, _, start, end) in places.items():
            bed.setdefault(locus, f"{name}\t{start}\t{end}\t{locus}\t{LOCI[locus][0]}\t{LOCI[locus][1]}\n")
        table = counted("".join(bed.values()), Path(GENOMES) / "CODIS13_alleles.fasta")
        self.assertEqual(len(places), 240)
        for name, (_, locus, allele, _, _, start, end) in places.items():
            self.assertEqual([(row["locus"], int(row["start"]) - 1, int(row["end"])) for row in table[name]],
                             [(locus, int(start), int(end))])
            for column in ("count", "copies", "allele"):
                self.assertEqual(table[name][0][column], self.row(locus, allele)[column])


if __name__ == "__main__":
    unittest.main()
