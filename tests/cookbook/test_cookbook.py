# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Runs every recipe of docs/cookbook.md with the tools that it is for, and asks those tools what they make of it.

The recipes run once, in order, in one folder; then each section is judged by a test of its own, from what its
recipes have left there. The repeat that most of them look for is the CAG repeat of the androgen receptor, whose
place is known from its sequence.
"""

from __future__ import annotations

import json
import os
import re
import shutil
import sys
import unittest
from collections import Counter, defaultdict
from collections.abc import Callable
from pathlib import Path
from typing import TypeVar

sys.dont_write_bytecode = True
ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests/readme"))

from check_document import SYSTEM_PATH, Example, Workbench, groups

DOCUMENT = ROOT / "docs/cookbook.md"
PREPARATION = "Cookbook"
# The companion program, if it was built: without it, the recipes that use it are left out.
COMPANION = os.environ.get("VORLAN_TOOLS_BINARY")
# Command and Debian package.
TOOLS = {"bedtools": "bedtools", "samtools": "samtools", "tabix": "tabix", "bgzip": "tabix", "gt": "genometools",
         "seqkit": "seqkit", "parallel": "parallel", "primer3_core": "primer3", "python3": "python3"}
# (CAG)n in the first record, counted from 0, end not included.
CAG_BEGIN, CAG_END = 1600, 1669

Judge = TypeVar("Judge", bound=Callable[..., None])
judged: list[str] = []


def judges(section: str) -> Callable[[Judge], Judge]:
    """Marks the test that looks at what a section has made."""
    judged.append(section)
    return lambda test: test


needs_companion = unittest.skipUnless(COMPANION, "vorlan-tools was not built")


def missing_packages() -> list[str]:
    return sorted({package for command, package in TOOLS.items() if not shutil.which(command, path=SYSTEM_PATH)})


def sequences(fasta: Path) -> dict[str, str]:
    records: dict[str, str] = {}
    for line in fasta.read_text().splitlines():
        if line.startswith(">"):
            name = line[1:].split()[0]
            records[name] = ""
        else:
            records[name] += line
    return records


def reverse_complement(bases: str) -> str:
    return bases[::-1].translate(str.maketrans("ACGTN", "TGCAN"))


class Cookbook(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        missing = missing_packages()
        if missing:
            raise AssertionError(f"Debian packages are missing: {' '.join(missing)}; "
                                 "tools/install-missing-packages.sh cookbook installs them")
        companion = Path(COMPANION).resolve() if COMPANION else None
        cls.bench = cls.enterClassContext(Workbench(ROOT, Path(os.environ["VORLAN_BINARY"]).resolve(), companion))
        cls.folder = cls.bench.folder
        cls.recipes: list[Example] = [example for group in groups(DOCUMENT.read_text()) for example in group]
        # Twice: recipes can be repeated.
        cls.problems = [(recipe, cls.bench.problem(recipe)) for recipe in cls.recipes * 2
                        if companion or "vorlan-tools" not in recipe.command]
        cls.genome = sequences(cls.folder / "genome.fa")

    # ---- What the recipes have left -----------------------------------------------------------

    def lines(self, name: str) -> list[str]:
        return (self.folder / name).read_text().splitlines()

    def rows(self, name: str) -> list[list[str]]:
        """The fields of a tab-separated file; there must be some."""
        rows = [line.split("\t") for line in self.lines(name)]
        self.assertTrue(rows, name)
        return rows

    def table(self) -> list[dict[str, str]]:
        keys, *rows = self.rows("repeats.tsv")
        return [dict(zip(keys, row)) for row in rows]

    def entries(self, report: str) -> list[str]:
        """The first lines of the repeats in a report of the extended format."""
        found = [line for line in self.lines(report) if re.match(r" *(\w+|\d+-)nucleotide +\d+ :", line)]
        self.assertTrue(found, report)
        return found

    def assert_has_cag(self, report: str) -> None:
        place = f"trinucleotide {CAG_BEGIN + 1:>9} : {CAG_END:>9} |"
        self.assertTrue(any(place in entry for entry in self.entries(report)), report)

    # ---- The document -------------------------------------------------------------------------

    def test_every_recipe_runs_and_prints_what_is_shown(self) -> None:
        for recipe, problem in self.problems:
            with self.subTest(section=recipe.section, line=recipe.number):
                self.assertEqual(problem, "")

    def test_every_section_with_a_recipe_is_judged(self) -> None:
        self.assertEqual({recipe.section for recipe in self.recipes} - {PREPARATION}, set(judged))

    def test_the_repeat_looked_for_is_where_the_sequence_has_it(self) -> None:
        repeat = self.genome["AR"][CAG_BEGIN:CAG_END]
        self.assertEqual(repeat, ("GCA" * 23)[:CAG_END - CAG_BEGIN])

    # ---- Sections -----------------------------------------------------------------------------

    @judges("Compressed input")
    def test_compressed_input_gives_the_same_report(self) -> None:
        self.bench.run("vorlan genome.fa plain.txt")
        compressed, plain = ([line for line in self.lines(name) if "put file name:" not in line]
                             for name in ("report.txt", "plain.txt"))
        self.assertEqual(compressed, plain)
        self.assert_has_cag("report.txt")

    @judges("Only some repeats")
    def test_only_the_repeats_asked_for_are_reported(self) -> None:
        for entry in self.entries("long.txt"):
            self.assertGreaterEqual(int(re.search(r"(\d+) BP", entry)[1]), 30, entry)
        for entry in self.entries("perfect.txt"):
            self.assertIn(" 100.000 % |   0 mis |   0 ins |   0 del |   0 N |", entry)
        for entry in self.entries("dinucleotide.txt"):
            self.assertEqual(entry.split()[0], "dinucleotide")
        self.assert_has_cag("long.txt")
        self.assert_has_cag("perfect.txt")

    @judges("A table")
    def test_the_table_holds_the_bases_of_each_repeat(self) -> None:
        for row in self.table():
            bases = self.genome[row["seq-name"]][int(row["start"]) - 1:int(row["end"])].upper()
            self.assertEqual(len(row["repeat-seq"]), int(row["length"]))
            # Ambiguity codes are read as N.
            self.assertEqual(row["repeat-seq"], re.sub("[^ACGT]", "N", bases))
        self.assertIn(("AR", str(CAG_BEGIN + 1), str(CAG_END)),
                      [(row["seq-name"], row["start"], row["end"]) for row in self.table()])

    @judges("The commonest units")
    def test_the_commonest_units_are_counted(self) -> None:
        numbers, bases = Counter(row["unit"] for row in self.table()), defaultdict(int)
        for row in self.table():
            bases[row["unit"]] += int(row["length"])
        order = sorted(numbers, key=lambda unit: (-numbers[unit], -bases[unit], unit))
        shown = next(recipe.shown for recipe in self.recipes if recipe.section == "The commonest units")
        self.assertEqual(list(shown), [f"{unit}\t{numbers[unit]}\t{bases[unit]}" for unit in order[:5]])

    @judges("JSON")
    def test_a_json_parser_reads_the_table(self) -> None:
        repeats = [json.loads(line) for line in self.lines("repeats.jsonl")]
        self.assertEqual(repeats, [{key: value.strip() for key, value in row.items()} for row in self.table()])
        self.assertIn(("AR", CAG_BEGIN + 1, CAG_END, "AGC"),
                      [(r["seq-name"], int(r["start"]), int(r["end"]), r["unit"]) for r in repeats])

    @judges("BED, sorted and indexed")
    def test_tabix_finds_the_repeats_of_a_region(self) -> None:
        cag = f"AR\t{CAG_BEGIN}\t{CAG_END}\tAGC\t66\t."
        # Its last base, the one behind it, and the whole sequence.
        self.assertEqual(self.bench.run(f"tabix repeats.bed.gz AR:{CAG_END}-{CAG_END}"), [cag])
        self.assertEqual(self.bench.run(f"tabix repeats.bed.gz AR:{CAG_END + 1}-{CAG_END + 10}"), [])
        self.assertEqual(self.bench.run("tabix --list-chroms repeats.bed.gz"),
                         sorted({row["seq-name"] for row in self.table()}))
        self.assertEqual(len(self.bench.run("tabix repeats.bed.gz AR")),
                         sum(row["seq-name"] == "AR" for row in self.table()))
        self.assertEqual(len(self.rows("repeats.bed")), len(self.table()))

    @needs_companion
    @judges("GFF3")
    def test_the_gff3_validator_accepts_the_features(self) -> None:
        self.assertEqual(self.bench.run("gt gff3validator -typecheck so repeats.gff3"), ["input is valid GFF3"])
        self.assertEqual(self.lines("repeats.gff3")[0], "##gff-version 3")
        regions = {line.split()[1]: (line.split()[2], line.split()[3]) for line in self.lines("repeats.gff3")
                   if line.startswith("##sequence-region ")}
        self.assertEqual(regions, {name: ("1", str(len(bases))) for name, bases in self.genome.items()})
        features = [line.split("\t") for line in self.lines("repeats.gff3") if not line.startswith("#")]
        self.assertEqual([[f[0], f[3], f[4]] for f in features],
                         [[row["seq-name"], row["start"], row["end"]] for row in self.table()])
        for feature, row in zip(features, self.table()):
            is_microsatellite = 2 <= int(row["unit-length"]) <= 10
            self.assertEqual(feature[2], "microsatellite" if is_microsatellite else "monomeric_repeat")
            self.assertIn(f";unit={row['unit']};", feature[8])
        self.assertEqual({f[2] for f in features}, {"microsatellite", "monomeric_repeat"})

    @needs_companion
    @judges("Soft masking")
    def test_repeats_and_nothing_else_become_lower_case(self) -> None:
        masked = {name: list(bases) for name, bases in self.genome.items()}
        for name, begin, end, *_ in self.rows("repeats.bed"):
            masked[name][int(begin):int(end)] = self.genome[name][int(begin):int(end)].lower()
        for name, bases in masked.items():
            # In braces, since a name may look like a region.
            fetched = self.bench.run(f"samtools faidx genome.soft.fa '{{{name}}}'")
            self.assertEqual("".join(fetched[1:]), "".join(bases), name)
        place = f"AR:{CAG_END - 1}-{CAG_END + 2}"
        self.assertEqual(self.bench.run(f"samtools faidx genome.soft.fa {place}"), [f">{place}", "caAG"])

    @judges("Repeats within genes")
    def test_repeats_that_a_gene_contains_are_found(self) -> None:
        # Two genes made by hand: one begins with the repeat, the other one base behind its first.
        for begin, expected in ((CAG_BEGIN, 1), (CAG_BEGIN + 1, 0)):
            gene = f"printf 'AR\\t{begin}\\t{CAG_END + 5}\\thand_made\\n' >hand_made.bed"
            recipe = next(recipe.command for recipe in self.recipes if recipe.section == "Repeats within genes")
            found = self.bench.run(f"{gene}; {recipe.replace('genes.bed', 'hand_made.bed')}")
            self.assertEqual(found, [f"AR\t{CAG_BEGIN}\t{CAG_END}\tAGC\t66\thand_made"] * expected)

    def test_the_coding_part_of_the_exon_is_read_off_the_sequence(self) -> None:
        (name, begin, end, _), = self.rows("genes.bed")
        coding = self.genome[name][int(begin):int(end)]
        # Start codon, 57 codons in front of the glutamines (CAG), no stop codon, splice donor.
        codons = [coding[i:i + 3] for i in range(0, len(coding) - 2, 3)]
        self.assertEqual((codons[0], codons[57:80]), ("ATG", ["CAG"] * 22 + ["CAA"]))
        self.assertFalse({"TAA", "TAG", "TGA"} & set(codons))
        self.assertEqual(self.genome[name][int(end):int(end) + 2], "GT")

    @judges("Primers")
    def test_primers_enclose_the_repeat(self) -> None:
        results = [dict(line.split("=", 1) for line in record.split("\n") if line)
                   for record in (self.folder / "primer3.out").read_text().split("\n=\n") if record]
        self.assertIn(f"AR_{CAG_BEGIN + 1}", [result["SEQUENCE_ID"] for result in results])
        found = 0
        for result in results:
            template = result["SEQUENCE_TEMPLATE"]
            self.assertNotIn("PRIMER_ERROR", result)
            begin, length = map(int, result["SEQUENCE_TARGET"].split(","))
            name, start = result["SEQUENCE_ID"].rsplit("_", 1)
            repeat = self.genome[name][int(start) - 1:int(start) - 1 + length].upper()
            self.assertEqual(template[begin:begin + length], repeat)
            if result["PRIMER_PAIR_NUM_RETURNED"] == "0":
                continue
            found += 1
            left = template.index(result["PRIMER_LEFT_0_SEQUENCE"])
            right_end = template.index(reverse_complement(result["PRIMER_RIGHT_0_SEQUENCE"])) + \
                len(result["PRIMER_RIGHT_0_SEQUENCE"])
            self.assertLessEqual(left + len(result["PRIMER_LEFT_0_SEQUENCE"]), begin)
            self.assertGreaterEqual(right_end - len(result["PRIMER_RIGHT_0_SEQUENCE"]), begin + length)
            self.assertEqual(right_end - left, int(result["PRIMER_PAIR_0_PRODUCT_SIZE"]))
        self.assertGreater(found, 0)

    @judges("FASTA for other tools")
    def test_each_repeat_has_a_name_of_its_own_and_its_bases(self) -> None:
        repeats = sequences(self.folder / "repeats.fa")
        self.assertIn(f"AR:{CAG_BEGIN + 1}-{CAG_END}", repeats)
        self.assertEqual(len(repeats), sum(line.startswith(">") for line in self.lines("repeats.fa")))
        for name, bases in repeats.items():
            record, begin, end = re.fullmatch(r"(.*):(\d+)-(\d+)", name).groups()
            self.assertEqual(bases, re.sub("[^ACGT]", "N", self.genome[record][int(begin) - 1:int(end)].upper()))

    @judges("A satellite of unknown length")
    def test_the_length_is_the_offset_at_which_the_satellite_resembles_itself_most(self) -> None:
        bases = sequences(ROOT / "examples" / "excerpts" / "satellite.fa")["satellite"]

        def resemblance(offset: int) -> float:
            pairs = list(zip(bases, bases[offset:]))
            return sum(left == right for left, right in pairs) / len(pairs)

        found = [line.split("\t")[1] for line in self.lines("satellites.report") if line.startswith("satellite\t")]
        self.assertEqual(found, [str(max(range(1, 401), key=resemblance))])

    @judges("Many genomes")
    def test_each_genome_has_its_report_and_a_failed_run_is_named(self) -> None:
        reports = sorted((self.folder / "genomes").glob("*.txt"))
        self.assertEqual(len(reports), len(self.genome))
        headers = [line for report in reports for line in report.read_text().splitlines() if line.startswith(">")]
        self.assertEqual({header[1:].split()[0] for header in headers}, set(self.genome))
        recipe = next(recipe.command for recipe in self.recipes if recipe.section == "Many genomes")
        _, run, look = recipe.splitlines()
        malformed = self.folder / "genomes/malformed.fa"
        malformed.write_text(">a\nAC1GT\n")
        self.assertEqual([(row.split("\t")[6], row.split("\t")[8].split()[1])
                          for row in self.bench.run(f"{run} || true; {look}")], [("231", "genomes/malformed.fa")])
        malformed.unlink()

    @needs_companion
    @judges("One genome on several cores")
    def test_the_parts_are_the_whole(self) -> None:
        merged = self.lines("whole.txt")
        self.bench.run("vorlan genome.fa whole.txt")
        self.assertEqual(merged, self.lines("whole.txt"))
        self.assertEqual(merged.count("## Finished successfully. ##"), 1)
        self.assertEqual([line for line in self.lines("cores.txt") if "put file name:" not in line],
                         [line for line in merged if "put file name:" not in line])

    @judges("Masking on several cores")
    def test_the_masked_parts_are_the_masked_whole(self) -> None:
        self.bench.run("vorlan --maskX genome.fa masked-run.txt")
        self.assertEqual(self.lines("genome.masked.fa"), self.lines("genome.fa.masked"))

    @judges("Before you begin")
    def test_after_cleaning_all_tools_find_the_same_bases(self) -> None:
        self.assertEqual(sequences(self.folder / "clean.fa"),
                         {"one": "GGATTCTAGGACGTACGCTTCAGCAGCAGCAGCAGTTTCA"})
        self.assertEqual(self.lines("clean.fa")[0], ">one first")

    @judges("A threshold for each unit length")
    def test_each_repeat_has_the_copies_asked_for_and_none_is_missing(self) -> None:
        found = {(row[0], int(row[3]), int(row[4])) for row in self.rows("ssr.tsv")}
        copies = {1: 10, 2: 6, 3: 5, 4: 5, 5: 5, 6: 5}
        runs = set()
        for name, bases in self.genome.items():
            for length, least in copies.items():
                pattern = rf"([ACGT]{{{length}}})\1{{{least - 1},}}"
                for match in re.finditer(pattern, bases.upper()):
                    unit, end = match[1], match.end()
                    if any(unit == unit[:part] * (length // part) for part in range(1, length) if length % part == 0):
                        continue
                    while end < len(bases) and bases[end].upper() == bases[end - length].upper():
                        end += 1
                    runs.add((name, match.start() + 1, end))
        self.assertEqual(found, runs)


if __name__ == "__main__":
    unittest.main()
