# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Where the input comes from, how it is called, and what is given by mistake."""

from __future__ import annotations

import array
import fcntl
import gzip
import os
import subprocess
import termios
import time
from typing import Callable

from program_run import BINARY, TIME_LIMIT_SECONDS, Outcome, ProgramTest
from small_record import CLOSING_LINE, ENTRY, MASKED_RESIDUES, RECORD, RESIDUES, block, header

NOT_OPENED = (b'Sorry! The input file \n   "%s"\ncould not be opened. I guess it does not exist.\n\n'
              b"Analysis has been aborted due to errors. Error number: -101\n\n")
NOBODY = 65534


class Sources(ProgramTest):
    def assert_small_report(self, outcome: Outcome, input_name: bytes) -> None:
        self.assert_success(outcome)
        self.assertEqual(outcome.report, header(input_name) + block() + CLOSING_LINE)

    def test_a_pipe_on_standard_input_is_read_by_its_device_name(self) -> None:
        self.assert_small_report(self.run_program("/dev/stdin", piped=RECORD), b"/dev/stdin")

    def test_a_file_on_standard_input_is_read_by_its_device_name(self) -> None:
        self.write("in.fa", RECORD)
        with open(self.folder / "in.fa", "rb") as file:
            self.assert_small_report(self.run_program("/dev/stdin", stdin=file), b"/dev/stdin")

    def test_an_empty_pipe_is_malformed_at_line_1(self) -> None:
        outcome = self.run_program("/dev/stdin", piped=b"")
        self.assertEqual(outcome.report, header(b"/dev/stdin"))
        self.assert_malformed(outcome, 1)

    def test_a_closed_standard_input_cannot_be_opened(self) -> None:
        outcome = self.run_in_shell('"$vorlan" /dev/stdin 0<&-')
        self.assertEqual((outcome.messages(), outcome.status), (NOT_OPENED % b"/dev/stdin", 155))

    def test_a_process_substitution_is_an_input(self) -> None:
        self.write("in.fa", RECORD)
        outcome = self.run_in_shell('"$vorlan" <(cat in.fa)')
        name = outcome.report.split(b"\n")[3].rpartition(b" ")[2]
        self.assertRegex(name, rb"\A/dev/fd/\d+\Z")
        self.assert_small_report(outcome, name)

    def test_a_fifo_is_an_input(self) -> None:
        os.mkfifo(self.folder / "in.fa")
        with self.start("in.fa") as process:
            with self.open_fifo("in.fa", process) as fifo:
                fifo.write(RECORD)
            outcome = self.outcome(process, None)
        self.assert_small_report(outcome, b"in.fa")

    def test_a_symbolic_link_is_followed_and_the_masked_file_stands_beside_it(self) -> None:
        (self.folder / "data").mkdir()
        self.write("data/in.fa", RECORD)
        os.symlink("data/in.fa", self.folder / "link.fa")
        self.assert_success(self.run_program("--maskX", "link.fa"))
        self.assertEqual(self.read("link.fa.masked"), b">s\n" + MASKED_RESIDUES + b"\n")
        self.assertEqual(os.listdir(self.folder / "data"), ["in.fa"])

    def test_a_file_without_the_right_to_read_cannot_be_opened(self) -> None:
        self.write("in.fa", RECORD)
        (self.folder / "in.fa").chmod(0)
        outcome = self.run_without_privileges("in.fa")
        self.assertEqual((outcome.messages(), outcome.report, outcome.status), (NOT_OPENED % b"in.fa", b"", 155))

    def test_a_file_in_a_folder_that_cannot_be_entered_cannot_be_opened(self) -> None:
        (self.folder / "closed").mkdir(mode=0)
        self.addCleanup((self.folder / "closed").chmod, 0o700)
        outcome = self.run_without_privileges("closed/in.fa")
        self.assertEqual((outcome.messages(), outcome.status), (NOT_OPENED % b"closed/in.fa", 155))

    def test_a_link_that_leads_nowhere_or_to_itself_cannot_be_opened(self) -> None:
        os.symlink("nowhere", self.folder / "dangling.fa")
        os.symlink("loop.fa", self.folder / "loop.fa")
        for name in ("dangling.fa", "loop.fa"):
            with self.subTest(name=name):
                outcome = self.run_program(name, "out.txt")
                self.assertEqual((outcome.messages(), outcome.status), (NOT_OPENED % name.encode(), 155))
                self.assertNotIn(b"out.txt", self.names())

    def test_a_name_that_is_too_long_for_the_system_cannot_be_opened(self) -> None:
        name = b"x" * 300
        outcome = self.run_program(name)
        self.assertEqual((outcome.messages(), outcome.status), (NOT_OPENED % name, 155))

    def test_a_folder_with_masking_leaves_an_empty_masked_file(self) -> None:
        (self.folder / "data").mkdir()
        self.assert_malformed(self.run_program("--maskX", "data"), 1)
        self.assertEqual(self.read("data.masked"), b"")

    def test_a_device_without_data_is_malformed_at_line_1(self) -> None:
        self.assert_malformed(self.run_program("/dev/null"), 1)

    def run_without_privileges(self, *arguments: str) -> Outcome:
        """Run as a user who has no right to everything; root has."""
        if os.geteuid() != 0:
            return self.run_program(*arguments)
        self.folder.chmod(0o755)
        try:
            return self.run_program(*arguments, user=NOBODY, group=NOBODY, extra_groups=[])
        except PermissionError:
            self.skipTest(f"only root can run {BINARY} where it lies")


class ChangingInput(ProgramTest):
    """Files that are cut or grow while they are read.

    Reports go to a pipe that nobody empties for a while, so that the run waits. It has then read the
    first million bytes of its input at once, and reads on when the pipe is emptied.
    """

    READ_BYTES = 1_000_000
    RECORD_BYTES = 200

    def record(self, number: int) -> bytes:
        """A record of 200 bytes."""
        start = b">r%d\n%s" % (number, RESIDUES)
        return start + b"N" * (self.RECORD_BYTES - 1 - len(start)) + b"\n"

    def report_of(self, data: bytes) -> bytes:
        """The blocks of the records of which `data` holds the beginning or all."""
        blocks = []
        for record in data.split(b">")[1:]:
            name, _, residues = record.partition(b"\n")
            blocks.append(block(name, ENTRY if residues.startswith(RESIDUES) else b"", len(residues.strip())))
        return b"".join(blocks)

    def assert_long_report(self, outcome: Outcome, data: bytes) -> None:
        """Without a comparison in detail, which takes minutes for texts of this length."""
        self.assert_success(outcome)
        expected = header(b"in.fa") + self.report_of(data) + CLOSING_LINE
        self.assertTrue(outcome.report == expected, f"{len(outcome.report)} bytes, not {len(expected)}")

    def run_while(self, data: bytes, change: Callable[[], None]) -> Outcome:
        """Run on `data`, and call `change` when the run waits for the first time."""
        self.write("in.fa", data)
        with self.start("in.fa", stderr=subprocess.PIPE) as process:
            try:
                self.wait_for_reports(process)
                change()
                return self.outcome(process, None)
            finally:
                process.kill()

    def wait_for_reports(self, process: subprocess.Popen[bytes]) -> None:
        """Wait until the pipe holds so much that the first records have been reported."""
        deadline = time.monotonic() + TIME_LIMIT_SECONDS
        waiting = array.array("i", [0])
        while waiting[0] < 10 * len(header(b"in.fa")):
            self.assertLess(time.monotonic(), deadline, "nothing is reported in time")
            time.sleep(0.01)
            fcntl.ioctl(process.stdout, termios.FIONREAD, waiting)

    def test_a_file_that_is_cut_while_it_is_read_ends_where_it_is_cut(self) -> None:
        data = b"".join(self.record(number) for number in range(10_000, 20_000))
        for size in (0, self.READ_BYTES, self.READ_BYTES + 12_345, self.READ_BYTES + 12_402):
            with self.subTest(size=size):
                outcome = self.run_while(data, lambda: os.truncate(self.folder / "in.fa", size))
                # What has been read before is there all the same.
                read = data[:max(size, self.READ_BYTES)]
                self.assert_long_report(outcome, read)

    def test_a_file_that_grows_while_it_is_read_is_read_to_its_new_end(self) -> None:
        data = b"".join(self.record(number) for number in range(10_000, 16_000))
        more = b"".join(self.record(number) for number in range(16_000, 16_050))
        def append() -> None:
            with open(self.folder / "in.fa", "ab") as file:
                file.write(more)
        outcome = self.run_while(data, append)
        self.assert_long_report(outcome, data + more)

    def test_a_file_that_is_removed_while_it_is_read_is_read_to_its_end(self) -> None:
        data = b"".join(self.record(number) for number in range(10_000, 16_000))
        outcome = self.run_while(data, lambda: os.unlink(self.folder / "in.fa"))
        self.assert_long_report(outcome, data)


class Names(ProgramTest):
    def check_name(self, name: bytes) -> None:
        """The name stands in the report as given, and the masked file is called after it."""
        self.write(name, RECORD)
        outcome = self.run_program("--maskX", "--", name)
        self.assert_success(outcome)
        self.assertEqual(outcome.report, header(name, masked=True) + block() + CLOSING_LINE)
        self.assertIn(b"\nInput file name:                         %s\n" % name, outcome.console)
        self.assertEqual(self.names(), {name, name + b".masked"})
        self.assertEqual(self.read(name + b".masked"), b">s\n" + MASKED_RESIDUES + b"\n")

    def check_report_name(self, name: bytes) -> None:
        self.write("in.fa", RECORD)
        outcome = self.run_program("--", "in.fa", name)
        self.assert_success(outcome)
        self.assertEqual(outcome.report, b"")
        self.assertEqual(self.read(name), header(b"in.fa", name) + block() + CLOSING_LINE)

    def check_missing_name(self, name: bytes) -> None:
        outcome = self.run_program("--", name)
        self.assertEqual((outcome.messages(), outcome.report, outcome.status), (NOT_OPENED % name, b"", 155))

    def test_blanks_in_names_are_kept(self) -> None:
        self.check_name(b" my  sequences .fa ")

    def test_blanks_in_report_names_are_kept(self) -> None:
        self.check_report_name(b" my  report .txt ")

    def test_per_cent_signs_in_names_are_printed_as_they_stand(self) -> None:
        self.check_name(b"100%d%n%s%%.fa")

    def test_per_cent_signs_in_report_names_are_printed_as_they_stand(self) -> None:
        self.check_report_name(b"100%d%n%s%%.txt")

    def test_quotes_and_backslashes_in_names_are_printed_as_they_stand(self) -> None:
        self.check_name(b"\"a\" 'b' `c` \\n$HOME.fa")

    def test_line_ends_in_names_are_printed_as_they_stand(self) -> None:
        self.check_name(b"two\nlines\r.fa")

    def test_control_bytes_and_bytes_beyond_ascii_in_names_are_printed_as_they_stand(self) -> None:
        self.check_name(b"\x01\x1b[31m\t\x7f\x80\xc3\x28\xff.fa")

    def test_bytes_beyond_ascii_in_report_names_are_printed_as_they_stand(self) -> None:
        self.check_report_name(b"\x1b[31m\xfe\xff.txt")

    def test_names_may_begin_with_a_hyphen_also_for_the_masked_file(self) -> None:
        self.check_name(b"--maskX")

    def test_a_long_name_is_shown_whole(self) -> None:
        self.check_name(b"x" * (255 - len(b".masked")))

    def test_a_missing_file_is_named_as_given(self) -> None:
        for name in (b" ", b"two\nlines", b"\x80\xff%s%n", b"\"quoted\"", b"-x", b"x" * 200 + b"%s", b"in.fa/in.fa",
                     b"no/such/folder/in.fa"):
            with self.subTest(name=name):
                self.check_missing_name(name)


class Mistakes(ProgramTest):
    """Files of other kinds. The report holds its header and, of FASTA, what stands before the fault."""

    def check_mistake(self, data: bytes, line: int, blocks: bytes = b"") -> None:
        self.write("in.fa", data)
        outcome = self.run_program("in.fa")
        self.assertEqual(outcome.report, header(b"in.fa") + blocks)
        self.assert_malformed(outcome, line)

    def test_a_gzip_file_is_malformed_at_line_1(self) -> None:
        self.check_mistake(gzip.compress(RECORD * 100, mtime=0), 1)

    def test_utf_16_with_a_byte_order_mark_is_malformed_at_line_1(self) -> None:
        self.check_mistake(b"\xff\xfe" + RECORD.decode().encode("utf-16-le"), 1)

    def test_utf_16_without_a_byte_order_mark_is_malformed_at_its_first_nul(self) -> None:
        self.check_mistake(RECORD.decode().encode("utf-16-be"), 1)
        # In the other byte order the first NUL lies in the header, where it is kept.
        self.check_mistake(RECORD.decode().encode("utf-16-le"), 2)

    def test_a_byte_order_mark_before_the_first_header_is_malformed_at_line_1(self) -> None:
        self.check_mistake(b"\xef\xbb\xbf" + RECORD, 1)

    def test_a_fastq_file_is_malformed_at_line_1(self) -> None:
        self.check_mistake(b"@read1\nACGTACGT\n+\nIIIIIIII\n", 1)

    def test_fastq_lines_behind_a_fasta_header_are_malformed_at_the_plus_sign(self) -> None:
        self.check_mistake(b">read1\nACGTACGT\n+\nIIIIIIII\n", 3)

    def test_a_genbank_file_is_malformed_at_line_1(self) -> None:
        self.check_mistake(b"LOCUS       SCU49845     5028 bp    DNA\nORIGIN\n        1 gatcctccat\n//\n", 1)

    def test_numbered_genbank_residues_behind_a_fasta_header_are_malformed(self) -> None:
        self.check_mistake(b">SCU49845\n        1 gatcctccat atacaacggt\n", 2)

    def test_a_variant_table_is_malformed_at_its_first_line_without_a_number_sign(self) -> None:
        self.check_mistake(b"##fileformat=VCFv4.2\n#CHROM\tPOS\nchr1\t1\n", 3)

    def test_a_protein_is_malformed_at_the_first_letter_that_is_no_nucleotide_code(self) -> None:
        self.check_mistake(b">p\nMKV\nRSE\n", 3)

    def test_an_html_page_is_malformed_at_line_1(self) -> None:
        self.check_mistake(b"<!DOCTYPE html>\n<title>404</title>\n", 1)

    def test_a_semicolon_comment_is_malformed_at_its_line(self) -> None:
        self.check_mistake(b"\n\n;comment\n" + RECORD, 3)

    def test_the_records_before_the_fault_are_reported_whole(self) -> None:
        self.check_mistake(b">a\n%s\n>b\n%s\n>c\nAC_GT\n>d\nAC\n" % (RESIDUES, RESIDUES), 6, block(b"a") + block(b"b"))

    def test_the_masked_file_holds_the_records_before_the_fault(self) -> None:
        self.write("in.fa", RECORD + b">t\nA.\n>u\nAC\n")
        self.assert_malformed(self.run_program("--maskX", "in.fa"), 4)
        self.assertEqual(self.read("in.fa.masked"), b">s\n" + MASKED_RESIDUES + b"\n")

    def test_every_byte_that_is_no_residue_is_malformed_and_every_other_is_read(self) -> None:
        codes = b"ACGTUNXRYKMSWBDHV?"
        skipped = b" \t\n\v\f\r-*"
        readable = set(codes + codes.lower() + skipped)
        for byte in range(256):
            with self.subTest(byte=byte):
                self.write("in.fa", b">s\nA" + bytes([byte]) + b"C\n")
                outcome = self.run_program("--printRepeatSeqMode", "0", "in.fa")
                if byte in readable:
                    self.assert_success(outcome)
                    self.assertIn(b"\nsequence length: %d\n" % (2 if byte in skipped else 3), outcome.report)
                else:
                    self.assert_malformed(outcome, 2)
