# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Reports, read by nothing but what the manual says about their formats.

Every entry must have the fields of the manual's table in their order and forms, the formats must agree on what a
field of one name holds, and the fields must bear the relations that the manual states.
"""

from __future__ import annotations

import re
import shutil

from manual_page import ROOT, ManualPage
from program_run import ProgramTest
from report_layout import Form, entries, forms

PAGE = ManualPage("vorlan-formats.5")
FIELDS = PAGE.entries("FIELDS")
FLANKS = ("left-flanking-seq", "right-flanking-seq")
LINE_END = "line end"
MATCHING = {"perfection": 0.006, "repeat-number": 0.0006}
EXAMPLES = ("androgen_receptor.fa", "mixed_records.fa")
EDITED = b">edited\nCCATGGC" + b"ACGTTG" * 5 + b"ACTTGACGTTGACGGTTGACGTTAACGTTGACNNTG" + b"ACGTTG" * 5 + b"CCATGGC\n"
WHITE_SPACE = {"blank": b" ", "tab": b"\t", "VT": b"\v", "FF": b"\f"}
LINE_ENDS = b"\n\r"

Entry = dict[str, "str | int | float"]


def layout(form: str, without: tuple[str, ...] = ()) -> list[Form]:
    return forms(PAGE.table(f"Form in format {form}"), without)


def number(pattern: str, text: str) -> int:
    return int(re.search(pattern, text)[1])


class ReportTest(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        for name in EXAMPLES:
            shutil.copy(ROOT / "examples" / name, self.folder)
        self.write("edited.fa", EDITED)

    def report(self, *arguments: str) -> str:
        outcome = self.run_program(*arguments)
        self.assert_success(outcome)
        return outcome.report.decode("ascii")

    def read(self, form: str, *arguments: str, without: tuple[str, ...] = ()) -> list[Entry]:
        found = entries(layout(form, without), self.report("--outputFormat", form, *arguments))
        self.assertGreater(len(found), 0)
        return found


class Formats(ReportTest):
    def read_all_formats(self, name: str) -> list[list[Entry]]:
        return [self.read(form, "-f", "7", name) for form in "01234"]

    def test_the_formats_agree_on_each_field(self) -> None:
        for name in (*EXAMPLES, "edited.fa"):
            reports = self.read_all_formats(name)
            self.assertEqual({len(report) for report in reports}, {len(reports[3])})
            for report, form in zip(reports, "01234"):
                for entry, reference in zip(report, reports[3]):
                    with self.subTest(file=name, format=form, start=reference["start"]):
                        self.check_agreement(entry, reference)

    def check_agreement(self, entry: Entry, reference: Entry) -> None:
        for field, value in entry.items():
            if field in MATCHING:
                self.assertAlmostEqual(value, reference[field], delta=MATCHING[field], msg=field)
            elif all(part in reference for part in field.split("+")):
                parts = [reference[part] for part in field.split("+")]
                self.assertEqual(value, "".join(parts) if len(parts) > 1 else parts[0], field)

    def test_every_field_is_explained(self) -> None:
        used = {row.field for form in "01234" for row in layout(form) if row.pieces()[1]}
        self.assertEqual(used, set(FIELDS))

    def test_the_fields_equal_what_the_manual_says(self) -> None:
        formulas = {field: re.search(r"Equals (.*?)\.(?: |$)", text) for field, text in FIELDS.items()}
        formulas = {field: found[1] for field, found in formulas.items() if found}
        self.assertEqual(set(formulas), {"length", "BP", "repeat-number", "score", "perfection"})
        for name in (*EXAMPLES, "edited.fa"):
            for values in map(lambda entry: {"m": -5, "g": -5} | entry, self.read("1", name)):
                values["unit-length"] = len(values["unit"])
                for field, formula in formulas.items():
                    if field in values:
                        with self.subTest(file=name, start=values["start"], field=field):
                            self.assertAlmostEqual(evaluate(formula, values), values[field], delta=0.0006)
            for values in self.read("3", name, without=FLANKS):
                values["BP"] = evaluate(formulas["BP"], values)
                self.assertAlmostEqual(evaluate(formulas["repeat-number"], values), values["repeat-number"],
                                       delta=0.0006)

    def test_positions_are_counted_as_the_manual_says(self) -> None:
        start, end, offset = (number(r"counted from (\d+)", FIELDS[field]) for field in ("start", "end", "offset"))
        residues = EDITED.decode("ascii").split("\n")[1]
        for entry in self.read("3", "-f", "7", "edited.fa"):
            self.assertEqual(residues[entry["start"] - start:entry["end"] - end + 1], entry["repeat-seq"])
        for entry in entries(layout("4"), self.report("--outputFormat", "4", "-f", "7", "edited.fa")):
            whole = entry["left-flanking-seq+repeat-seq+right-flanking-seq"]
            first = entry["offset"] - offset
            self.assertEqual(whole[first:first + entry["length"]],
                             residues[entry["start"] - start:entry["end"] - end + 1])

    def test_the_line_of_column_names_has_the_fields_of_format_3(self) -> None:
        for flanking, without in (("0", FLANKS), ("7", ())):
            names = [form.field for form in layout("3", without) if form.field != LINE_END]
            lines = self.report("--outputFormat", "3", "-f", flanking, "edited.fa").split("\n")
            self.assertEqual(next(line for line in lines if not line.startswith("#")), "\t".join(names))

    def test_the_legend_has_as_many_columns_as_the_table(self) -> None:
        for form in "01":
            for arguments, without in (([], ()), (["--NsAsMissense"], ("Ns",))):
                legend = re.findall(r"^# Column +\d+: ", self.report("--outputFormat", form, *arguments, "edited.fa"),
                                    re.MULTILINE)
                self.assertEqual(len(legend), len(layout(form, without)))

    def test_without_a_count_of_n_format_1_leaves_it_out_and_format_3_shows_a_point(self) -> None:
        self.read("1", "--NsAsMissense", "edited.fa", without=("Ns",))
        dotted = [Form(form.field, "\t.") if form.field == "Ns" else form for form in layout("3", FLANKS)]
        report = self.report("--outputFormat", "3", "--NsAsMissense", "edited.fa")
        self.assertGreater(len(entries(dotted, report)), 0)

    def test_gff_shows_long_units_as_a_point(self) -> None:
        longest = number(r"Units of more than (\d+) bases are shown as a full stop",
                         " ".join(PAGE.section("FORMAT 2: GFF")))
        for length, shown in ((longest, True), (longest + 1, False)):
            unit = b"C" * (length - 1) + b"A"
            self.write("long.fa", b">long\n" + unit * 3 + b"\n")
            found = self.read("2", "-u", str(length), "-U", str(length), "--reportUnit", "0", "long.fa")
            self.assertEqual([entry["unit"] == "." for entry in found], [not shown])


class AlignmentAndEvents(ReportTest):
    def alignments(self) -> list[tuple[Entry, str, list[str]]]:
        """Each entry of format 1 with its list of edits and its three lines."""
        report = self.report("-f", "3", "edited.fa")
        blocks = re.findall(r"^(.* unit [ACGT]+\n)Missense: (.*)\n(.*)\n(.*)\n(.*)\n", report, re.MULTILINE)
        self.assertGreater(len(blocks), 0)
        return [(entries(layout("1"), line)[0], events, lines) for line, events, *lines in blocks]

    def columns(self, lines: list[str]) -> list[str]:
        """What the manual calls each column of an alignment."""
        signs = {"blank": " ", "base": "[ACGT]"}
        rows = {row[0]: [signs.get(sign, re.escape(sign)) for sign in row[1:]] for row in PAGE.table("Unit")}
        self.assertEqual(len({len(line) for line in lines}), 1)
        return ["/".join(name for name, row in rows.items() if all(map(re.fullmatch, row, column)))
                for column in zip(*lines)]

    def test_the_columns_of_alignments_are_those_of_the_manual(self) -> None:
        seen = set()
        for entry, _, lines in self.alignments():
            columns = self.columns(lines)
            seen |= set(columns)
            for name, field in (("mismatch", "mismatches"), ("insertion", "insertions"), ("deletion", "deletions"),
                                ("N", "Ns")):
                self.assertEqual(columns.count(name), entry[field], (entry["start"], name))
            self.assertEqual(columns.count("border"), 2)
        self.assertEqual(seen, {row[0] for row in PAGE.table("Unit")})

    def test_edits_are_listed_as_the_manual_says(self) -> None:
        letters = {edit: kind for kind, edit, _ in PAGE.table("Position")}
        first = number(r"position is counted from (\d+)", " ".join(PAGE.section("FORMATS 0 AND 1: TO READ")))
        for _, events, lines in self.alignments():
            position, expected = first, ""
            for column in self.columns(lines):
                if column in letters:
                    expected += f"({position},{letters[column]}),"
                position += column not in ("flank", "border", "deletion")
            self.assertEqual(events, expected)


class HeadAndFrame(ReportTest):
    def test_the_settings_have_the_labels_of_the_manual(self) -> None:
        expected = [label for label, _ in PAGE.table("Value")]
        report = self.report("--outputFormat", "3", "edited.fa", "out.tsv") or (self.folder / "out.tsv").read_text()
        head = [line[2:] for line in report.split("\n") if line.startswith("# ")]
        self.assertEqual([line.split("\t")[0].strip() for line in head[2:]], expected)

    def test_what_the_manual_displays_stands_in_reports(self) -> None:
        reports = "".join(self.report("--outputFormat", form, "--sequenceInfoAsComment", "edited.fa")
                          for form in "0123")
        words = {"header": "edited", "name": "edited", "residues": str(len(EDITED.split(b"\n")[1]))}
        displays = [lines for lines in PAGE.displays() if not lines[0].startswith("$ ")]
        self.assertEqual(len(displays), 6)
        for lines in displays:
            with self.subTest(display=lines[0]):
                text = "".join(line + "\n" for line in lines)
                for word, value in words.items():
                    text = re.sub(rf"(?<![a-z]){word}(?![a-z:])", value, text)
                self.assertIn(text, reports)

    def test_each_format_ends_as_the_manual_says(self) -> None:
        usual, gff = (lines[0] for lines in PAGE.displays()[4:6])
        section = " ".join(PAGE.section("END OF A REPORT"))
        self.assertRegex(section, r"in formats 0, 1 and 3, and .* in format 2\. In format 4 there is none\.")
        for form, end in zip("01234", (usual, usual, gff, usual, None)):
            last = self.report("--outputFormat", form, "edited.fa").split("\n")[-2]
            self.assertEqual(last, end) if end else self.assertNotIn(last, (usual, gff))


class InputAndMaskedFile(ReportTest):
    def residue_of(self, byte: bytes) -> bytes | None:
        """What stands in the masked file for the byte, between two bases and before a line end; None if refused."""
        self.write("byte.fa", b">s\nC" + byte + b"G\n")
        outcome = self.run_program("--maskX", "byte.fa")
        if outcome.status == 231:
            return None
        self.assert_success(outcome)
        return self.folder.joinpath("byte.fa.masked").read_bytes().split(b"\n", 1)[1].strip(b"\n")[1:-1]

    def expected_residues(self) -> dict[bytes, bytes]:
        """What the manual says about each byte that is not refused."""
        residues: dict[bytes, bytes] = {}
        for names, residue in PAGE.table("Residue"):
            for name in names.split() if names != "any other byte" else []:
                byte = WHITE_SPACE.get(name, name.encode("ascii"))
                kept = {"t": byte, "n": b""}.get(residue[0], residue.encode("ascii"))
                residues |= {byte: kept, byte.lower(): kept}
        return residues

    def test_each_byte_is_read_as_the_manual_says(self) -> None:
        expected = self.expected_residues()
        self.assertGreater(len(expected), 30)
        for code in range(256):
            byte = bytes([code])
            if byte not in LINE_ENDS and byte != b">":
                with self.subTest(byte=byte):
                    self.assertEqual(self.residue_of(byte), expected.get(byte))

    def test_masked_residues_stand_in_lines_of_the_length_of_the_manual(self) -> None:
        width = number(r"in lines of (\d+)", " ".join(PAGE.section("MASKED FILE")))
        self.write("wide.fa", b">s x\n" + b"ACGTC" * width + b"\n")
        self.report("--maskX", "-s", "1000000", "wide.fa")
        lines = self.folder.joinpath("wide.fa.masked").read_bytes().split(b"\n")
        self.assertEqual((lines[0], {len(line) for line in lines[1:-1]}, lines[-1]), (b">s x", {width}, b""))


def evaluate(formula: str, values: Entry) -> float:
    """A formula of the manual over the fields of an entry."""
    names = sorted(values, key=len, reverse=True)
    text = re.sub("|".join(rf"(?<![\w-]){re.escape(name)}(?![\w-])" for name in names),
                  lambda match: repr(values[match[0]]), formula)
    if not re.fullmatch(r"[-+*/(). \d]+", text):
        raise ValueError(f"{formula}: not all names are fields")
    return eval(text)  # pylint: disable=eval-used # only numbers and operators are left
