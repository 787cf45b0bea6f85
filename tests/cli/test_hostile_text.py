# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Names and headers that would harm a program that took text for formats or for characters."""

from __future__ import annotations

from typing import Callable

from program_run import Outcome, ProgramTest
from small_record import CLOSING_LINE, ENTRY, MASKED_RESIDUES, RESIDUES, block, header

HIGH_BYTES = bytes(range(0x80, 0x100))
CONTROL_BYTES = bytes(byte for byte in range(1, 0x20) if byte not in b"\n\r") + b"\x7f"
NAMES = {
    "conversions": b"%n%s%d%%%*c%1$n%99999999s",
    "escape sequences": b"\x1b[31mred\x1b]0;title\x07\x9b0m",
    "tabs": b"\tone\ttwo\t",
    "quotes and backslashes": b"\"a\"'b'`c`\\n\\\\",
    "high bytes": HIGH_BYTES,
    "control bytes": CONTROL_BYTES,
    "markup of the report": b">#-*;Name=\"x\"",
    "broken utf-8": b"\xc3\x28\xf0\x9f\xa6\xed\xa0\x80",
}
REST = b"  rest of %n%s \x1b[0m \"it\" \x80\xff "

ALIGNMENT = b"".join(ENTRY.splitlines(keepends=True)[2:])
OWN_FORMAT_ENTRY = (b"    dinucleotide         4 :        13 |     10 bp |     10 BP |      8 pt | 100.000 % |"
                    b" unit AC\n" + ALIGNMENT)
GFF_ENTRY = (b'%s\tVorlan\ttandem-repeat\t4\t13\t100.00\t.\t.\tName="repeat_region 4-13 unit_size 2 '
             b'repeat_number 5.000 perfection 100.000 unit AC"\n')
ROW = b"%s\t2\t100.000\t4\t13\t10\t  5.000\t8\t0\t0\t0\t0\tAC\tACACACACAC\n"
FASTA_ENTRY = b">%s 1 10 2 4 13 5.000 8 100.000 0 0 0\nACACACACAC\n"


def commented(name: bytes, whole: bytes, entry: bytes) -> bytes:
    return (b"# Full sequence name:\n#>%s\n##sequence-region %s 1 15\n" % (whole, name) + entry % name +
            b'# Analysis of sequence "%s" completed.\n' % name)


class HostileText(ProgramTest):
    def run_on(self, record_header: bytes, *arguments: str) -> Outcome:
        self.write("in.fa", b">" + record_header + b"\n" + RESIDUES + b"\n")
        outcome = self.run_program(*arguments, "in.fa")
        self.assert_success(outcome)
        return outcome

    def check_ending(self, record_header: bytes, ending: bytes, *arguments: str) -> None:
        """What follows the header of the report, which differs between the formats and is tested elsewhere."""
        report = self.run_on(record_header, *arguments).report
        self.assertEqual(report[-len(ending):], ending)

    def check_names(self, check: Callable[[bytes, bytes], None]) -> None:
        """Call `check` with each name and with a header that begins with it."""
        for kind, name in NAMES.items():
            with self.subTest(kind=kind):
                check(name, name + b" " + REST)

    def test_the_extended_format_prints_headers_as_bytes(self) -> None:
        self.check_names(lambda name, whole: self.assertEqual(
            self.run_on(whole).report, header(b"in.fa") + block(whole) + CLOSING_LINE))

    def test_the_own_format_prints_headers_as_bytes(self) -> None:
        self.check_names(lambda name, whole: self.check_ending(
            whole, block(whole, OWN_FORMAT_ENTRY) + CLOSING_LINE, "--outputFormat", "0"))

    def test_gff_prints_names_as_bytes(self) -> None:
        self.check_names(lambda name, whole: self.check_ending(
            whole, b"\n" + GFF_ENTRY % name + b"# End tandem repeats\n", "--outputFormat", "2"))

    def test_gff_comments_print_names_and_headers_as_bytes(self) -> None:
        self.check_names(lambda name, whole: self.check_ending(
            whole, b"\n" + commented(name, whole, GFF_ENTRY) + b"# End tandem repeats\n",
            "--outputFormat", "2", "--sequenceInfoAsComment"))

    def test_one_per_line_prints_names_as_bytes(self) -> None:
        self.check_names(lambda name, whole: self.check_ending(
            whole, b"\trepeat-seq\n" + ROW % name + CLOSING_LINE, "--outputFormat", "3"))

    def test_one_per_line_comments_print_names_and_headers_as_bytes(self) -> None:
        self.check_names(lambda name, whole: self.check_ending(
            whole, b"\trepeat-seq\n" + commented(name, whole, ROW) + CLOSING_LINE,
            "--outputFormat", "3", "--sequenceInfoAsComment"))

    def test_fasta_prints_names_as_bytes(self) -> None:
        self.check_names(lambda name, whole: self.check_ending(
            whole, b"\n" + FASTA_ENTRY % name, "--outputFormat", "4"))

    def check_masked_file(self, whole: bytes) -> None:
        self.run_on(whole, "--maskX")
        self.assertEqual(self.read("in.fa.masked"), b">" + whole + b"\n" + MASKED_RESIDUES + b"\n")

    def test_the_masked_file_holds_headers_as_bytes(self) -> None:
        self.check_names(lambda name, whole: self.check_masked_file(whole))

    def test_the_progress_line_shows_seventy_bytes_of_the_name(self) -> None:
        self.check_names(lambda name, whole: self.assertIn(
            b" - #   1 -    1bp - " + name[:70] + b"\n\nAnalysis finished", self.run_on(whole).console))

    def test_a_nul_ends_what_is_printed_of_a_header(self) -> None:
        outcome = self.run_on(b"a\0b c", "--maskX")
        self.assertEqual(outcome.report, header(b"in.fa", masked=True) + block(b"a") + CLOSING_LINE)
        self.assertEqual(outcome.progress(), [b"#   1 -    1bp - a"])
        self.assertEqual(self.read("in.fa.masked"), b">a\n" + MASKED_RESIDUES + b"\n")

    def test_a_nul_does_not_hide_the_blank_behind_the_name(self) -> None:
        self.check_ending(b"\0 c", b"\n" + commented(b"", b"", GFF_ENTRY) + b"# End tandem repeats\n",
                          "--outputFormat", "2", "--sequenceInfoAsComment")
