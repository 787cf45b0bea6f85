# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Reports and masked files that cannot be opened or written."""

from __future__ import annotations

import os
import resource
import signal
import subprocess
from typing import Callable

from program_run import TIME_LIMIT_SECONDS, Outcome, ProgramTest
from small_record import CLOSING_LINE, MASKED_RESIDUES, RECORD, RESIDUES, block, header

ABORTED = b"\nAnalysis has been aborted due to errors. Error number: -102\n\n"
NOT_WRITTEN = b'Sorry! Writing to file\n   "%s"\nfailed. Its contents are not complete.\n' + ABORTED
NOT_OPENED = b'Sorry! Failed to open file\n   "%s"\nas output file.\n' + ABORTED
CLOSING_WORDS = b"Vorlan says goodbye."
TWO_RECORDS = b">a\n%s\n>b\n%s\n" % (RESIDUES, RESIDUES)
MASKED = b">a\n%s\n>b\n%s\n" % (MASKED_RESIDUES, MASKED_RESIDUES)
PROGRESS = [b"#   1 -    1bp - a", b"#   2 -    1bp - b"]
# More than any buffer of a stream holds, so that the masked file is written before the record ends.
CANNOT_MOUNT = 77
LONG_RECORDS = b">a\n%s\n>b\n%s\n" % (b"N" * 100_000, b"N" * 100_000)


class FailedWrites(ProgramTest):
    def setUp(self) -> None:
        super().setUp()
        self.write("in.fa", TWO_RECORDS)

    def assert_not_written(self, outcome: Outcome, name: bytes) -> None:
        expected = NOT_WRITTEN % name
        self.assertEqual(outcome.console[-len(expected):], expected)
        self.assertEqual(outcome.status, 154)

    def assert_refused_before_the_headers(self, outcome: Outcome, name: bytes) -> None:
        self.assertEqual((outcome.messages(), outcome.report, outcome.status), (NOT_OPENED % name, b"", 154))

    def assert_masked_file_refused(self, outcome: Outcome, input_name: bytes) -> None:
        """The headers have been written to console and report, no record has been read."""
        expected = b"-" * 72 + b"\n" + NOT_OPENED % (input_name + b".masked")
        self.assertEqual(outcome.console[-len(expected):], expected)
        self.assertEqual(outcome.report, header(input_name, masked=True))
        self.assertEqual(outcome.status, 154)


class FullDisk(FailedWrites):
    def test_a_full_disk_behind_standard_output_stops_the_run_after_the_first_record(self) -> None:
        with open("/dev/full", "wb") as full:
            outcome = self.run_program("in.fa", stdout=full)
        self.assert_not_written(outcome, b"standard output")
        self.assertEqual(outcome.progress(), PROGRESS[:1])
        self.assertNotIn(CLOSING_WORDS, outcome.console)

    def test_a_full_disk_is_noticed_when_no_record_is_selected(self) -> None:
        with open("/dev/full", "wb") as full:
            outcome = self.run_program("--lastSeq", "0", "in.fa", stdout=full)
        self.assert_not_written(outcome, b"standard output")
        self.assert_not_written(self.run_program("--lastSeq", "0", "in.fa", "/dev/full"), b"/dev/full")

    def test_a_full_disk_is_noticed_in_every_format(self) -> None:
        for form in "01234":
            with self.subTest(format=form):
                self.assert_not_written(self.run_program("--outputFormat", form, "in.fa", "/dev/full"), b"/dev/full")

    def test_a_full_disk_behind_the_masked_file_is_noticed_before_the_closing_words(self) -> None:
        os.symlink("/dev/full", self.folder / "in.fa.masked")
        outcome = self.run_program("--maskX", "in.fa")
        self.assert_not_written(outcome, b"in.fa.masked")
        self.assertEqual(outcome.report, header(b"in.fa", masked=True) + block(b"a") + block(b"b"))
        self.assertNotIn(CLOSING_WORDS, outcome.console)

    def test_a_full_disk_behind_the_masked_file_stops_the_run_at_the_first_long_record(self) -> None:
        self.write("in.fa", LONG_RECORDS)
        os.symlink("/dev/full", self.folder / "in.fa.masked")
        outcome = self.run_program("--maskX", "in.fa")
        self.assert_not_written(outcome, b"in.fa.masked")
        self.assertEqual(outcome.progress(), PROGRESS[:1])
        self.assertEqual(outcome.report, header(b"in.fa", masked=True) + block(b"a", b"", 100_000))

    def test_the_report_comes_before_the_masked_file_when_both_disks_are_full(self) -> None:
        os.symlink("/dev/full", self.folder / "in.fa.masked")
        self.assert_not_written(self.run_program("--maskX", "in.fa", "/dev/full"), b"/dev/full")

    def test_a_disk_that_fills_up_within_the_report_leaves_its_beginning(self) -> None:
        whole = header(b"in.fa", b"out.txt") + block(b"a") + block(b"b") + CLOSING_LINE
        for room in (100, len(header(b"in.fa", b"out.txt")) + 10, len(whole) - len(CLOSING_LINE) - 5, len(whole) - 1):
            with self.subTest(room=room):
                self.assert_not_written(self.run_program("in.fa", "out.txt", preexec_fn=limited_files(room)),
                                        b"out.txt")
                self.assertEqual(self.read("out.txt"), whole[:room])
        self.assert_success(self.run_program("in.fa", "out.txt", preexec_fn=limited_files(len(whole))))

    def test_a_disk_that_fills_up_within_the_masked_file_leaves_its_beginning(self) -> None:
        self.write("in.fa", LONG_RECORDS)
        outcome = self.run_program("--maskX", "in.fa", preexec_fn=limited_files(150_000))
        self.assert_not_written(outcome, b"in.fa.masked")
        self.assertEqual(outcome.progress(), PROGRESS)
        lines = (b"N" * 80 + b"\n") * 1250
        self.assertEqual(self.read("in.fa.masked"), (b">a\n" + lines + b">b\n" + lines)[:150_000])

    def test_a_limit_on_the_size_of_files_is_a_failed_write(self) -> None:
        self.assert_not_written(self.run_program("in.fa", "out.txt", preexec_fn=limited_files(100, signal.SIG_DFL)),
                                b"out.txt")
        whole = header(b"in.fa", b"out.txt") + block(b"a") + block(b"b") + CLOSING_LINE
        self.assertEqual(self.read("out.txt"), whole[:100])

    def test_a_limit_on_the_size_of_files_set_by_a_shell_is_a_failed_write(self) -> None:
        self.write("in.fa", LONG_RECORDS)
        outcome = self.run_in_shell('ulimit -f 20; exec "$vorlan" --maskX in.fa out.txt')
        self.assert_not_written(outcome, b"in.fa.masked")
        self.assertEqual(len(self.read("in.fa.masked")), 20 * 1024)

    def test_a_full_disk_behind_the_console_does_not_harm_the_report(self) -> None:
        with open("/dev/full", "wb") as full:
            outcome = self.run_program("in.fa", stderr=full)
        self.assertEqual((outcome.status, outcome.report),
                         (0, header(b"in.fa") + block(b"a") + block(b"b") + CLOSING_LINE))

    def test_a_name_given_as_the_full_device_is_shown_as_given(self) -> None:
        os.symlink("/dev/full", self.folder / "100%s \xff.txt")
        self.assert_not_written(self.run_program("in.fa", "100%s \xff.txt"), "100%s \xff.txt".encode())


class SmallDisk(FailedWrites):
    """A file system of its own, in memory, which is full in the middle of a record."""

    ROOM = 16 * 4096
    # One repeat after another: the block of the first record is larger than the disk.
    RECORDS = b">a\n" + RESIDUES * 1000 + b"\n>b\n" + RESIDUES + b"\n"

    def run_on_small_disk(self, *arguments: str) -> Outcome:
        """Run with the folder `disk` on a small file system, and keep a copy of it as `kept`.

        Only the process of the script sees the file system, which goes with it.
        """
        self.write("in.fa", self.RECORDS)
        (self.folder / "disk").mkdir()
        namespaces = "--mount" if os.geteuid() == 0 else "--user --map-root-user --mount"
        outcome = self.run_in_shell(f"""
            unshare {namespaces} bash -c 'mount -t tmpfs -o size={self.ROOM} none disk || exit {CANNOT_MOUNT}
              ln -s ../in.fa disk/in.fa
              "$vorlan" {" ".join(arguments)}
              status=$?
              cp -r disk kept
              exit $status' || exit $?""")
        if outcome.status in (1, CANNOT_MOUNT):
            self.skipTest(f"no file system can be mounted here: {outcome.console!r}")
        return outcome

    def test_a_disk_that_fills_up_in_the_middle_of_a_record_ends_the_run_behind_it(self) -> None:
        outcome = self.run_on_small_disk("in.fa", "disk/out.txt")
        self.assert_not_written(outcome, b"disk/out.txt")
        self.assertEqual(outcome.progress(), PROGRESS[:1])
        whole = self.run_program("in.fa", "whole.txt")
        self.assert_success(whole)
        expected = self.read("whole.txt").replace(b" whole.txt\n", b" disk/out.txt\n")
        kept = self.read("kept/out.txt")
        self.assertEqual(kept, expected[:len(kept)])
        self.assertGreater(len(kept), self.ROOM - 2 * 4096)
        self.assertLess(len(kept), expected.index(b'# Analysis of sequence "a" completed.'))

    def test_a_disk_that_fills_up_in_the_middle_of_the_masked_file_leaves_its_beginning(self) -> None:
        self.RECORDS = LONG_RECORDS
        outcome = self.run_on_small_disk("--maskX", "disk/in.fa", "out.txt")
        self.assert_not_written(outcome, b"disk/in.fa.masked")
        self.assertEqual(outcome.progress(), PROGRESS[:1])
        self.assertEqual(self.read("out.txt"), header(b"disk/in.fa", b"out.txt", masked=True) +
                         block(b"a", b"", 100_000))
        kept = self.read("kept/in.fa.masked")
        self.assertEqual(kept, (b">a\n" + (b"N" * 80 + b"\n") * 1250)[:len(kept)])
        self.assertGreater(len(kept), self.ROOM - 2 * 4096)


class InputLost(FailedWrites):
    """What the documents warn of: files are opened as they are named, and none is asked about."""

    def test_a_second_fasta_file_is_the_report_and_replaced(self) -> None:
        self.write("b.fa", RECORD)
        self.assert_success(self.run_program("in.fa", "b.fa"))
        self.assertEqual(self.read("b.fa"), header(b"in.fa", b"b.fa") + block(b"a") + block(b"b") + CLOSING_LINE)

    def test_an_input_that_is_the_report_under_any_name_is_emptied(self) -> None:
        os.symlink("in.fa", self.folder / "link")
        os.link(self.folder / "in.fa", self.folder / "other")
        for name in (b"in.fa", b"link", b"other"):
            with self.subTest(name=name):
                self.write("in.fa", TWO_RECORDS)
                head = header(b"in.fa", name)
                self.assert_malformed(self.run_program("in.fa", name), head.count(b"\n") + 1)
                self.assertEqual(self.read("in.fa"), head)

    def test_an_input_to_which_standard_output_goes_is_emptied(self) -> None:
        self.assertEqual(self.run_in_shell('exec "$vorlan" in.fa >in.fa').status, 231)
        self.assertEqual(self.read("in.fa"), header(b"in.fa"))


class ClosedOutput(FailedWrites):
    def run_into_closed_pipe(self, **popen: object) -> Outcome:
        reader, writer = os.pipe()
        os.close(reader)
        try:
            return self.run_program("in.fa", stdout=writer, **popen)
        finally:
            os.close(writer)

    def test_a_closed_pipe_ends_the_run_by_the_signal_of_the_system(self) -> None:
        outcome = self.run_into_closed_pipe()
        self.assertEqual(outcome.status, -signal.SIGPIPE)
        self.assertNotIn(b"Sorry", outcome.console)

    def test_a_pipe_closed_in_the_middle_ends_the_run_by_the_signal_of_the_system(self) -> None:
        # The report of 2000 records is larger than a pipe, so the run cannot have ended before.
        self.write("in.fa", b"".join(b">r%d\n%s\n" % (number, RESIDUES) for number in range(2000)))
        with self.start("in.fa", stderr=subprocess.DEVNULL) as process:
            self.assertEqual(process.stdout.read(2), b"# ")
            process.stdout.close()
            try:
                self.assertEqual(process.wait(timeout=TIME_LIMIT_SECONDS), -signal.SIGPIPE)
            finally:
                process.kill()

    def test_a_closed_pipe_without_the_signal_is_a_failed_write(self) -> None:
        outcome = self.run_into_closed_pipe(restore_signals=False,
                                            preexec_fn=lambda: signal.signal(signal.SIGPIPE, signal.SIG_IGN))
        self.assert_not_written(outcome, b"standard output")
        self.assertEqual(outcome.progress(), PROGRESS[:1])

    def test_a_closed_standard_output_is_a_failed_write(self) -> None:
        self.assert_not_written(self.run_in_shell('"$vorlan" in.fa >&-'), b"standard output")

    def test_closed_standard_streams_do_not_harm_a_report_in_a_file(self) -> None:
        # A file that is opened gets the lowest free number: console texts must not end up in it.
        for closed in ("0<&-", ">&-", "2>&-", "0<&- >&-", "0<&- 2>&-", ">&- 2>&-", "0<&- >&- 2>&-"):
            with self.subTest(closed=closed):
                self.assertEqual(self.run_in_shell(f'"$vorlan" --maskX in.fa out.txt {closed}').status, 0)
                self.assertEqual(self.read("out.txt"), header(b"in.fa", b"out.txt", masked=True) + block(b"a") +
                                 block(b"b") + CLOSING_LINE)
                self.assertEqual(self.read("in.fa.masked"), MASKED)
                self.assertEqual(self.read("in.fa"), TWO_RECORDS)

    def test_a_closed_standard_output_cannot_be_opened_by_its_device_name(self) -> None:
        self.assert_refused_before_the_headers(self.run_in_shell('"$vorlan" in.fa /dev/stdout >&-'), b"/dev/stdout")
        self.assertEqual(self.read("in.fa"), TWO_RECORDS)


class UnopenableOutput(FailedWrites):
    def test_a_report_that_is_a_folder_cannot_be_opened(self) -> None:
        (self.folder / "out").mkdir()
        for name in (".", "..", "out", "out/", "/"):
            with self.subTest(name=name):
                self.assert_refused_before_the_headers(self.run_program("in.fa", name), name.encode())

    def test_a_report_below_a_file_cannot_be_opened(self) -> None:
        self.assert_refused_before_the_headers(self.run_program("in.fa", "in.fa/out"), b"in.fa/out")

    def test_a_report_with_a_hostile_name_in_a_missing_folder_is_named_as_given(self) -> None:
        for name in (b"no/100%n%s.txt", b"no/two\nlines", b"no/\x80\xff", b"no/\"quoted\"", b"x" * 300):
            with self.subTest(name=name):
                self.assert_refused_before_the_headers(self.run_program("in.fa", name), name)

    def test_a_report_in_a_removed_folder_cannot_be_opened(self) -> None:
        script = 'mkdir gone && cd gone && rmdir ../gone && exec "$vorlan" "$OLDPWD/in.fa" out.txt'
        self.assert_refused_before_the_headers(self.run_in_shell(script), b"out.txt")

    def test_an_input_in_a_removed_folder_cannot_be_opened(self) -> None:
        outcome = self.run_in_shell('mkdir gone && cd gone && rmdir ../gone && exec "$vorlan" in.fa out.txt')
        self.assertTrue(outcome.messages().startswith(b'Sorry! The input file \n   "in.fa"\n'))
        self.assertEqual(outcome.status, 155)

    def test_an_unopenable_report_is_told_before_any_masked_file_is_made(self) -> None:
        self.assert_refused_before_the_headers(self.run_program("--maskX", "in.fa", "no/out"), b"no/out")
        self.assertEqual(self.names(), {b"in.fa"})

    def test_a_masked_file_in_an_unwritable_place_ends_the_run_after_the_headers(self) -> None:
        # Nobody can create files among the descriptors of a process.
        outcome = self.run_program("--maskX", "/proc/self/fd/0", piped=RECORD)
        self.assert_masked_file_refused(outcome, b"/proc/self/fd/0")

    def test_a_masked_file_with_too_long_a_name_ends_the_run_after_the_headers(self) -> None:
        name = b"x" * (255 - len(b".masked") + 1)
        self.write(name, RECORD)
        self.assert_masked_file_refused(self.run_program("--maskX", name), name)

    def test_a_masked_file_of_a_folder_with_a_slash_ends_the_run_after_the_headers(self) -> None:
        (self.folder / "100%s").mkdir()
        (self.folder / "100%s" / ".masked").mkdir()
        self.assert_masked_file_refused(self.run_program("--maskX", "100%s/"), b"100%s/")

    def test_a_masked_file_that_links_into_a_missing_folder_ends_the_run_after_the_headers(self) -> None:
        os.symlink("no/such/folder", self.folder / "in.fa.masked")
        self.assert_masked_file_refused(self.run_program("--maskX", "in.fa"), b"in.fa")

    def test_an_input_that_is_missing_leaves_an_old_report_and_masked_file_alone(self) -> None:
        self.write("out.txt", b"old report")
        self.write("no.fa.masked", b"old residues")
        self.assertEqual(self.run_program("--maskX", "no.fa", "out.txt").status, 155)
        self.assertEqual((self.read("out.txt"), self.read("no.fa.masked")), (b"old report", b"old residues"))

    def test_refused_settings_leave_an_old_report_alone(self) -> None:
        self.write("out.txt", b"old report")
        self.assertEqual(self.run_program("-r", "0", "in.fa", "out.txt").status, 255)
        self.assertEqual(self.run_program("--outputFormat", "7", "in.fa", "out.txt").status, 254)
        self.assertEqual(self.read("out.txt"), b"old report")


def limited_files(size: int, on_signal: signal.Handlers = signal.SIG_IGN) -> Callable[[], None]:
    """For the start of a process that can write at most `size` bytes to each file."""
    def limit() -> None:
        signal.signal(signal.SIGXFSZ, on_signal)
        resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))
    return limit
