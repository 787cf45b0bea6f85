# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Whatever ends a run: no report looks complete and is not, and --resume goes on from what was finished."""

from __future__ import annotations

import os
import pathlib
import random
import resource
import signal
import subprocess
import time
import unittest

from parts.programs import TOOLS, VORLAN, ProgramTest

SEED = 7
RECORDS = 40
RESIDUES = 80_000
FOLDER = "out.txt.vorlan-run"


def slow_input() -> bytes:
    """Records of random residues: each takes vorlan some hundredths of a second."""
    source = random.Random(SEED)
    return b"".join(b">r%d\n%s\n" % (number, bytes(source.choices(b"ACGT", k=RESIDUES))) for number in range(RECORDS))


def children_of(process: subprocess.Popen) -> list[int]:
    """Processes of vorlan that the run has started."""
    try:
        text = pathlib.Path(f"/proc/{process.pid}/task/{process.pid}/children").read_text(encoding="ascii")
    except FileNotFoundError:
        return []
    return [int(child) for child in text.split()]


def state_of(process: int) -> str:
    """The letter that ps shows; Z, as for a process that has ended, if there is none."""
    try:
        return pathlib.Path(f"/proc/{process}/stat").read_text(encoding="ascii").rsplit(")", 1)[1].split()[0]
    except FileNotFoundError:
        return "Z"


def has_ended(process: int) -> bool:
    return state_of(process) == "Z"


def kill_a_child(process: subprocess.Popen) -> bool:
    """Kills a process of vorlan in the middle of its work; False if the run has ended before."""
    while process.poll() is None:
        process.send_signal(signal.SIGSTOP)  # so that it takes notice of no end, and starts no other
        for child in children_of(process):
            os.kill(child, signal.SIGSTOP)
            while state_of(child) not in "TZ":
                time.sleep(0.001)
            if state_of(child) == "T":
                os.kill(child, signal.SIGKILL)
                process.send_signal(signal.SIGCONT)
                return True
        process.send_signal(signal.SIGCONT)
        time.sleep(0.001)
    return False


class EndedTest(ProgramTest):
    @classmethod
    def setUpClass(cls) -> None:
        cls.text = slow_input()

    def setUp(self) -> None:
        super().setUp()
        self.write("in.fa", self.text)
        self.settings = ["-r", "5", "--outputFormat", "1"]
        self.assertEqual(self.vorlan(*self.settings, "in.fa", "out.txt").returncode, 0)
        self.expected = self.take("out.txt")

    def begin(self, *flags: str, report: tuple[str, ...] = ("out.txt",), **options) -> subprocess.Popen:
        process = subprocess.Popen(
            [TOOLS, "run", "--vorlan", VORLAN, "-j", "2", "--slice-size", "1", *flags, "--", *self.settings, "in.fa",
             *report], cwd=self.folder, env=self.environment(), stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def finished_slices(self) -> int:
        return len(list((self.folder / FOLDER).glob("*.done")))

    def wait_for_slices(self, process: subprocess.Popen, count: int) -> None:
        deadline = time.monotonic() + 60
        while self.finished_slices() < count and process.poll() is None:
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.002)
        self.assertIsNone(process.poll(), "the run was too fast to be ended")

    def resume(self, *flags: str) -> subprocess.CompletedProcess:
        return self.run_tool(*self.settings, "in.fa", "out.txt", flags=("--resume", *flags))

    def assert_resumed(self) -> None:
        outcome = self.resume("--quiet")
        self.assertEqual((outcome.returncode, outcome.stderr), (0, b""))
        self.assertEqual(self.read("out.txt"), self.expected)
        self.assertNotIn(FOLDER, self.names())


class BySignal(EndedTest):
    def end(self, number: int, slices: int) -> tuple[subprocess.Popen, list[int]]:
        process = self.begin()
        self.wait_for_slices(process, slices)
        children = children_of(process)
        process.send_signal(number)
        process.wait(30)
        return process, children

    def test_signals_end_the_children_and_leave_what_resume_takes_up(self) -> None:
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(signal=number):
                process, children = self.end(number, 3)
                self.assertEqual(process.returncode, -number)
                self.assertTrue(all(map(has_ended, children)))
                self.assertNotIn("out.txt", self.names())
                self.assertGreaterEqual(self.finished_slices(), 3)
                self.assert_resumed()
                self.take("out.txt")

    def test_resume_does_not_search_again_what_is_finished(self) -> None:
        self.end(signal.SIGTERM, 5)
        done = self.folder / FOLDER / "000001.done"
        times = done.stat().st_mtime_ns
        # A report that nobody would write: it can only come from the finished slice.
        report = self.folder / FOLDER / "000001.report"
        self.assertIn(b">r0\n", report.read_bytes())
        report.write_bytes(report.read_bytes().replace(b">r0\n", b">R0\n"))
        self.assertEqual(done.stat().st_mtime_ns, times)
        self.assertEqual(self.resume().returncode, 0)
        self.assertEqual(self.read("out.txt"), self.expected.replace(b">r0\n", b">R0\n"))

    def test_killed_at_random_moments(self) -> None:
        source = random.Random(SEED)
        for number in (signal.SIGKILL, signal.SIGTERM) * 5:
            moment = source.uniform(0, 1)
            with self.subTest(signal=number, moment=moment):
                process = self.begin(*(["--resume"] if source.random() < 0.5 else []))
                time.sleep(moment)
                children = children_of(process)
                process.send_signal(number)
                process.wait(30)
                # A report is there only if the end came after the work was done; then it is whole.
                self.assertIn(self.take("out.txt"), [self.expected] if process.returncode == 0 else [None, self.expected])
                deadline = time.monotonic() + 10
                while not all(map(has_ended, children)):
                    self.assertLess(time.monotonic(), deadline, "a child lives on")
                    time.sleep(0.01)
                if source.random() < 0.5:
                    self.assert_resumed()
                    self.take("out.txt")
        self.assert_resumed()

    def test_a_killed_child_ends_the_run(self) -> None:
        process = self.begin()
        self.wait_for_slices(process, 3)
        self.assertTrue(kill_a_child(process))
        _, messages = process.communicate(timeout=30)
        self.assertEqual(process.returncode, 1, messages)
        self.assertIn(b"vorlan was ended by signal 9 at sequence", messages)
        self.assertNotIn("out.txt", self.names())
        self.assert_resumed()

    def test_without_a_report_file_nothing_is_left(self) -> None:
        process = self.begin(report=())
        self.assertTrue(process.stdout.readline())
        process.send_signal(signal.SIGTERM)
        output, _ = process.communicate(timeout=30)
        self.assertEqual(process.returncode, -signal.SIGTERM)
        self.assertFalse(output.endswith(b"## Finished successfully. ##\n"))
        self.assert_nothing_is_left()

    def test_a_run_that_waits_for_input_ends(self) -> None:
        process = subprocess.Popen([TOOLS, "run", "--vorlan", VORLAN, "--slice-size", "1", "--", "-"], cwd=self.folder,
                                   env=self.environment(), stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.DEVNULL)
        self.addCleanup(process.communicate)
        process.stdin.write(b">a\nACACACACACACAC\n>b\n")
        process.stdin.flush()
        self.assertTrue(process.stdout.readline())
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(10), -signal.SIGINT)
        self.assert_nothing_is_left()

    def test_a_process_in_the_middle_of_a_long_search_is_ended(self) -> None:
        # A perfect array of a unit that is too long for the search: vorlan needs half a minute for it.
        self.write("in.fa", b">long\n" + b"ACGTTGCAGTCA" * 8000 + b"\n")
        process = self.begin()
        while not (children := children_of(process)) or not (self.folder / FOLDER / "000001.messages").exists():
            time.sleep(0.01)
        begin = time.monotonic()
        process.terminate()
        self.assertEqual(process.wait(60), -signal.SIGTERM)
        self.assertTrue(all(map(has_ended, children)))
        self.assertLess(time.monotonic() - begin, 8)
        self.assertNotIn(FOLDER, self.names())  # nothing was finished

    def test_a_reader_that_goes_away_ends_the_run(self) -> None:
        process = self.begin(report=())
        process.stdout.readline()
        process.stdout.close()
        process.wait(30)
        self.assertNotEqual(process.returncode, 0)
        process.stdout = None
        self.assert_nothing_is_left()


class Resume(EndedTest):
    def leave_something(self) -> None:
        process = self.begin()
        self.wait_for_slices(process, 4)
        process.terminate()
        process.wait(30)
        self.assertIn(FOLDER, self.names())

    def test_nothing_to_resume_is_a_run_from_the_beginning(self) -> None:
        self.assert_resumed()

    def test_other_settings_are_refused_and_change_nothing(self) -> None:
        self.leave_something()
        slices = self.finished_slices()
        outcome = self.run_tool("-l", "9", "in.fa", "out.txt", flags=("--resume",))
        self.assertEqual(outcome.returncode, 2)
        self.assertIn(b"was another one", outcome.stderr)
        self.assertEqual(self.finished_slices(), slices)
        self.assert_resumed()

    def test_settings_that_vorlan_refuses_change_nothing(self) -> None:
        self.leave_something()
        slices = self.finished_slices()
        self.assertEqual(self.run_tool("-s", "1", "in.fa", "out.txt", flags=("--resume",)).returncode, 255)
        self.assertEqual(self.finished_slices(), slices)
        self.assert_resumed()

    def test_a_changed_input_is_searched_again(self) -> None:
        self.leave_something()
        self.write("in.fa", self.text.replace(b">r1\n", b">r1\nACACACACACACACAC\n"))
        self.vorlan(*self.settings, "in.fa", "out.txt")
        self.expected = self.take("out.txt")
        self.assert_resumed()

    def test_a_damaged_part_is_searched_again(self) -> None:
        self.leave_something()
        report = self.folder / FOLDER / "000002.report"
        report.write_bytes(report.read_bytes()[:-100])
        (self.folder / FOLDER / "000003.report").unlink()
        self.assert_resumed()

    def test_without_resume_the_run_begins_anew(self) -> None:
        self.leave_something()
        report = self.folder / FOLDER / "000001.report"
        report.write_bytes(report.read_bytes().replace(b">r0\n", b">R0\n"))
        self.assertEqual(self.run_tool(*self.settings, "in.fa", "out.txt").returncode, 0)
        self.assertEqual(self.read("out.txt"), self.expected)

    def test_two_runs_for_one_report(self) -> None:
        process = self.begin()
        self.wait_for_slices(process, 1)
        for flags in (("--resume",), ()):
            outcome = self.run_tool(*self.settings, "in.fa", "out.txt", flags=flags)
            self.assert_refused(outcome, 1, "Another run is at work")
        self.assertEqual(process.wait(60), 0)
        self.assertEqual(self.read("out.txt"), self.expected)

    def test_a_folder_of_somebody_else_is_not_touched(self) -> None:
        (self.folder / FOLDER).mkdir()
        self.write(FOLDER + "/thesis", b"precious")
        for flags in ((), ("--resume",)):
            self.assert_refused(self.run_tool("in.fa", "out.txt", flags=flags), 1, "is in the way")
        self.assertEqual(self.read(FOLDER + "/thesis"), b"precious")

    def test_only_files_can_be_resumed(self) -> None:
        self.assert_refused(self.run_tool("in.fa", flags=("--resume",)), 2, "standard output")
        self.assert_refused(self.run_tool("in.fa", "/dev/null", flags=("--resume",)), 2, "/dev/null")
        self.assert_nothing_is_left()

    def test_a_masked_run_resumes(self) -> None:
        self.settings.append("--maskX")
        self.vorlan(*self.settings, "in.fa", "out.txt")
        self.expected = self.take("out.txt")
        masked = self.take("in.fa.masked")
        self.leave_something()
        self.assertNotIn("in.fa.masked", self.names())
        self.assert_resumed()
        self.assertEqual(self.read("in.fa.masked"), masked)


class FailedWrites(EndedTest):
    def test_files_that_cannot_grow_leave_no_report(self) -> None:
        # The limit holds for every file that the run or its children write: from the first slice to
        # the report. A signal would end them; ignored, the write fails as on a full disk.
        for size in (10, 2_000, RESIDUES + 1_000, 3 * RESIDUES):
            with self.subTest(size=size):
                def prepare(size=size) -> None:
                    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
                    resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))
                process = self.begin(preexec_fn=prepare)
                _, messages = process.communicate(timeout=60)
                self.assertNotIn(process.returncode, (0, -signal.SIGXFSZ), messages)
                self.assertIn(b"vorlan", messages)
                self.assertNotIn("out.txt", self.names())
        self.assert_resumed()

    def test_a_full_disk_behind_standard_output(self) -> None:
        with open("/dev/full", "wb") as full:
            outcome = self.run_tool("-M", "exact", "in.fa", stdout=full, flags=("-q",))
        self.assert_refused(outcome, 1, "No space left")
        self.assert_nothing_is_left()

    def test_a_folder_that_cannot_be_written(self) -> None:
        if os.geteuid() == 0:
            self.skipTest("root may write everywhere")
        (self.folder / "closed").mkdir(0o500)
        self.assert_refused(self.run_tool("in.fa", "closed/out.txt"), 1, "Permission denied")

    def test_a_report_that_is_a_folder(self) -> None:
        (self.folder / "out.txt").mkdir()
        self.assert_refused(self.run_tool("in.fa", "out.txt"), 1, "is a folder")


if __name__ == "__main__":
    unittest.main()
