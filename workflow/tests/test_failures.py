# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""What goes wrong on clusters, each once: in the end every report is that of a single run.

A start searches six records as six jobs, which take some seconds each; something happens while they run.
"""

from __future__ import annotations

import contextlib
import os
import pathlib
import random
import re
import signal
import subprocess
import time
import unittest

from slurm_cluster import SlurmTest
from workbench import VORLAN, Workbench

SLOW_VORLAN = pathlib.Path(__file__).with_name("slow_vorlan.py")
SEED = 15
RECORDS = 3


def sequence(source: random.Random, bases: int) -> str:
    """Random bases with an array of a random unit in every 500."""
    text = ""
    while len(text) < bases:
        unit = "".join(source.choices("ACGT", k=source.randint(1, 6)))
        text += "".join(source.choices("ACGT", k=450)) + unit * (50 // len(unit))
    return text[:bases]


class Failures(SlurmTest):
    def genomes(self, names: list[str], bases: int) -> dict[str, pathlib.Path]:
        source = random.Random(SEED)
        files = {}
        folder = self.folder / f"{self._testMethodName}.genomes"
        folder.mkdir()
        for name in names:
            files[name] = folder / f"{name}.fa"
            files[name].write_text("".join(f">{name}{number}\n{sequence(source, bases)}\n" for number in range(RECORDS)))
        return files

    def bench(self, program: pathlib.Path = SLOW_VORLAN, bases: int = 30000) -> Workbench:
        return Workbench(self.folder / self._testMethodName, self.genomes(["one", "two"], bases), self.cluster,
                         vorlan=str(program), small_genome=0, piece_size=1)

    def running_search(self, bench: Workbench) -> str:
        """The number of a job that has begun to write its report."""
        def jobs() -> list[str]:
            return self.cluster.ask("squeue", "--noheader", "--state=RUNNING", "--name=vorlan-search",
                                    "--format=%i").split()
        self.cluster.wait_for(lambda: jobs() and list(bench.folder.glob("work/*/parts/*.unfinished.*")),
                              "a search has begun", 60)
        time.sleep(1)
        return jobs()[0]

    def state(self, job: str) -> str:
        return self.cluster.ask("scontrol", "--oneliner", "show", "job", job)

    def finish(self, process: subprocess.Popen) -> tuple[int, str]:
        said = process.communicate(timeout=300)[0]
        return process.returncode, said

    def assert_whole(self, bench: Workbench, status: int, said: str) -> None:
        self.assertEqual(status, 0, f"{said}\n{bench.logs()}")
        self.assertEqual(bench.differing(), [])
        self.assertEqual(bench.leftovers(), [])

    def test_a_job_that_is_requeued_in_mid_run_is_done_again(self) -> None:
        bench = self.bench()
        process = bench.start()
        job = self.running_search(bench)
        self.assertEqual(self.cluster.ask("scontrol", "requeue", job), "")
        status, said = self.finish(process)
        self.assertIn("Restarts=1", self.state(job))
        self.assertNotIn("Trying to restart job", said)
        self.assert_whole(bench, status, said)

    def test_a_search_that_is_killed_is_started_again_as_a_new_job(self) -> None:
        bench = self.bench()
        process = bench.start()
        self.running_search(bench)
        victims = [number for number in self.cluster.processes()
                   if os.readlink(f"/proc/{number}/exe") == str(VORLAN)]
        os.kill(victims[0], signal.SIGKILL)
        status, said = self.finish(process)
        self.assertEqual(said.count("Trying to restart job"), 1)
        self.assert_whole(bench, status, said)

    def test_a_job_that_is_cancelled_is_started_again_as_a_new_job(self) -> None:
        bench = self.bench()
        process = bench.start()
        job = self.running_search(bench)
        self.assertEqual(self.cluster.ask("scancel", job), "")
        status, said = self.finish(process)
        self.assertIn("JobState=CANCELLED", self.state(job))
        self.assertEqual(said.count("Trying to restart job"), 1)
        self.assert_whole(bench, status, said)

    def test_the_jobs_of_a_node_that_dies_go_to_another_node(self) -> None:
        bench = self.bench()
        process = bench.start()
        job = self.running_search(bench)
        node = re.search(r" NodeList=(n\d)", self.state(job))[1]
        self.cluster.kill_node(node)
        try:
            status, said = self.finish(process)
        finally:
            self.cluster.start_node(node)
        self.assertIn("Restarts=1", self.state(job))
        self.assertNotIn(f" NodeList={node} ", self.state(job))
        self.assert_whole(bench, status, said)
        self.cluster.wait_for(self.cluster.all_are_idle, "the node is back", 60)

    def files_left(self, bench: Workbench) -> dict[pathlib.Path, tuple[bytes, int]]:
        """Bytes and time of what has a final name."""
        return {file: (file.read_bytes(), file.stat().st_mtime_ns)
                for file in bench.folder.glob("results/*/*") if file.is_file()}

    def assert_second_start_did_what_was_missing(self, bench: Workbench, left: dict) -> None:
        status, said = bench.run()
        self.assert_whole(bench, status, said)
        after = self.files_left(bench)
        self.assertEqual({file: after[file] for file in left}, left)
        self.assertGreater(len(after), len(left))

    def test_a_workflow_that_gets_a_term_ends_and_is_taken_up_by_a_second_start(self) -> None:
        bench = self.bench()
        process = bench.start()
        self.running_search(bench)
        process.terminate()
        status, said = self.finish(process)
        self.assertNotEqual(status, 0)
        self.assertEqual(self.cluster.ask("squeue", "--noheader"), "")
        parts = list(bench.folder.glob("work/*/parts/*.report"))
        self.assertGreater(len(parts), 0)
        before = {part: part.stat().st_mtime_ns for part in parts}
        searches = self.jobs_named("vorlan-search")
        self.assert_second_start_did_what_was_missing(bench, self.files_left(bench))
        self.assertEqual(self.jobs_named("vorlan-search") - searches, 2 * RECORDS - len(before))

    def jobs_named(self, name: str) -> int:
        return self.cluster.ask("scontrol", "--oneliner", "show", "job").count(f"JobName={name} ")

    def test_a_workflow_that_is_killed_is_taken_up_after_unlocking(self) -> None:
        bench = self.bench()
        process = bench.start()
        self.running_search(bench)
        os.killpg(process.pid, signal.SIGKILL)
        self.finish(process)
        self.cluster.ask("scancel", "--user=" + self.cluster.ask("id", "-un").strip())
        self.cluster.wait_for(lambda: not self.cluster.ask("squeue", "--noheader"), "no job is left", 60)
        left = self.files_left(bench)
        self.assertIn("--unlock", bench.run()[1])
        self.assertEqual(bench.run("--unlock")[0], 0)
        self.assert_second_start_did_what_was_missing(bench, left)

    def test_a_malformed_genome_among_fifty_is_named_with_its_line_and_the_others_end(self) -> None:
        names = [f"genome{number}" for number in range(51)]
        genomes = self.genomes(names, 600)
        whole = genomes["genome30"].read_text()
        genomes["genome30"].write_text(whole.replace("\n>genome301", "\nACGT7\n>genome301"))
        bench = Workbench(self.folder / self._testMethodName, genomes, self.cluster, batch_genomes=17)
        status, said = bench.run()
        self.assertEqual(status, 1, said)
        self.assertEqual(said.count(" failed: "), 1)
        self.assertIn("genome30 failed: vorlan-workflow: genome30: genomes/genome30.fa: line 3: this is no FASTA record",
                      said)
        self.assertEqual(bench.differing(), [])
        left = self.files_left(bench)
        self.assertEqual(sum(file.name == "report.txt" for file in left), 50)
        genomes["genome30"].write_text(whole)
        (bench.folder / "genomes/genome30.fa").write_text(whole)
        self.assert_second_start_did_what_was_missing(bench, left)

    def test_a_full_scratch_folder_fails_the_searches_and_more_room_lets_them_end(self) -> None:
        # The report of a record has 80 kB: not one fits.
        bench = self.bench(VORLAN, bases=100_000)
        scratch = bench.folder / "work"
        scratch.mkdir()
        mount = ["mount", "-t", "tmpfs", "-o", "size=64k", "tmpfs", str(scratch)]
        if subprocess.run(mount, check=False, stderr=subprocess.DEVNULL).returncode != 0:
            self.skipTest("a small file system cannot be mounted here")
        try:
            status, said = bench.run()
            self.assertEqual(status, 1, said)
            self.assertRegex(said, r"(one|two) failed: vorlan-workflow: .* piece \d: vorlan ended with status 154")
            left = self.files_left(bench)
            subprocess.run(["mount", "-o", "remount,size=64m", str(scratch)], check=True)
            self.assert_second_start_did_what_was_missing(bench, left)
        finally:
            with contextlib.suppress(subprocess.CalledProcessError):
                subprocess.run(["umount", "--lazy", str(scratch)], check=True)


if __name__ == "__main__":
    unittest.main()
