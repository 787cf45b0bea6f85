# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""Where output goes, in which order, and what is left when something goes wrong."""

from __future__ import annotations

import gzip
import os
import random
import stat
import struct
import subprocess
import tempfile
import unittest
from pathlib import Path

from random_runs import TOOLS, complaint, run_vorlan, tools

ALL_TARGETS = ["bed", "gff3", "jsonl", "sam", "bam", "paf", "tsv"]
END_OF_BGZIP = bytes.fromhex("1f8b08040000000000ff0600424302001b0003000000000000000000")
REPEAT = "ACACACACACACACACACAC"


def stored_blocks(packed: bytes) -> list[bytes]:
    """What the blocks of a bgzip file hold, if each is a single stored one; the last is that of the end of the file.

    A header of 18 bytes ends with the size of the block less 1. The first byte of the compressed data is 1 for a last
    block that is stored; its length and the complement of that follow, then the bytes. CRC and length end the block."""
    blocks = []
    while packed:
        size = struct.unpack_from("<H", packed, 16)[0] + 1
        block, packed = packed[:size], packed[size:]
        if not packed:
            assert block == END_OF_BGZIP
            break
        kind, length, complement = struct.unpack_from("<BHH", block, 18)
        assert (kind, length ^ complement, size) == (1, 0xFFFF, length + 18 + 5 + 8)
        blocks.append(block[23:-8])
    return blocks


class OutputTest(unittest.TestCase):
    """One small report, and a folder in which nothing else lies."""

    def setUp(self) -> None:
        temporary = tempfile.TemporaryDirectory(prefix="vorlan-tools-outputs-")
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name)
        self.fasta = self.folder / "in.fa"
        self.report = self.folder / "report.txt"
        self.write_report(f">b\n{REPEAT}\n>a\nTT{REPEAT}\n")

    def write_report(self, fasta: str) -> None:
        self.fasta.write_text(fasta, encoding="latin-1")
        self.report.write_bytes(run_vorlan(self.fasta))

    def files(self) -> set[str]:
        return {path.name for path in self.folder.iterdir()} - {"in.fa", "report.txt"}

    # --- ways in and out ---

    def test_standard_streams_files_and_compressed_input_give_the_same_bytes(self) -> None:
        packed = self.folder / "report.bgz"
        for target in ALL_TARGETS:
            path = self.folder / f"out.{target}"
            tools("convert", "-t", target, self.report, "-o", path)
            expected = path.read_bytes()
            self.assertEqual(tools("convert", "-t", target, self.report), expected)
            self.assertEqual(tools("convert", "-t", target, "-", given=self.report.read_bytes()), expected)
            for program in ("gzip", "bgzip"):
                packed.write_bytes(subprocess.run([program, "-c", self.report], stdout=subprocess.PIPE,
                                                  check=True).stdout)
                self.assertEqual(tools("convert", "-t", target, packed), expected)
                self.assertEqual(tools("convert", "-t", target, "-", given=packed.read_bytes()), expected)

    def test_a_pipe_by_name_is_read(self) -> None:
        for target in ALL_TARGETS:
            script = f'"$1" convert -t {target} <(cat "$2")'
            done = subprocess.run(["bash", "-c", script, "-", TOOLS, self.report], capture_output=True, check=True)
            self.assertEqual(done.stdout, tools("convert", "-t", target, self.report))

    def test_bgzip_by_option_and_by_name(self) -> None:
        plain = tools("convert", "-t", "bed", self.report)
        for options, name in [(["-O", "z"], "x"), ([], "x.bed.gz"), ([], "x.bed.bgz"), ([], "x.bgzf")]:
            path = self.folder / name
            tools("convert", "-t", "bed", *options, self.report, "-o", path)
            self.assertEqual(path.read_bytes()[:4], b"\x1f\x8b\x08\x04")
            done = subprocess.run(["bgzip", "-dc", path], stdout=subprocess.PIPE, check=True)
            self.assertEqual(done.stdout, plain)
        for options, name in [(["-O", "u"], "x.gz"), ([], "x.bedgz"), ([], "x.gz.bed")]:
            tools("convert", "-t", "bed", *options, self.report, "-o", self.folder / name)
            self.assertEqual((self.folder / name).read_bytes(), plain)

    def test_bam_is_compressed_unless_asked_not_to_be(self) -> None:
        """With records for a dozen blocks. Bases repeat within every record, so that it can become smaller."""
        self.write_report("".join(f">s{i}\n{REPEAT * 20}\n" for i in range(2000)))
        packed = tools("convert", "-t", "bam", self.report)
        bam = gzip.decompress(packed)
        self.assertLess(len(packed), len(bam) // 2)
        self.assertGreater(len(bam), 500_000)
        for options, name in [(["-O", "z"], "z.bam"), ([], "x.gz"), ([], "x.bam")]:
            path = self.folder / name
            tools("convert", "-t", "bam", *options, self.report, "-o", path)
            self.assertEqual(path.read_bytes(), packed, options)
        for threads in ("1", "2"):
            for name in ("u.bam", "u.gz"):
                path = self.folder / name
                tools("convert", "-t", "bam", "-O", "u", "-@", threads, self.report, "-o", path)
                self.assertEqual(b"".join(stored_blocks(path.read_bytes())), bam, (threads, name))

    def test_threads_do_not_change_a_byte(self) -> None:
        """With rows for many blocks of 64 kB, which is what each thread compresses at once."""
        bases = "".join(random.Random(7).choices("ACGT", k=400_000))
        self.write_report(f">s\n{bases}\n>t\n{bases[::-1]}\n")
        for target, kind in (("bam", "z"), ("bam", "u"), ("bed", "z"), ("jsonl", "z")):
            command = ("convert", "-t", target, "-O", kind)
            alone = tools(*command, self.report)
            self.assertGreater(len(alone), 10_000)
            for threads in ("1", "2", "5"):
                self.assertEqual(tools(*command, "-@", threads, self.report), alone, (target, kind, threads))

    def test_a_full_disk_with_threads(self) -> None:
        for target, kind in (("bam", "z"), ("bam", "u"), ("bed", "z")):
            with open("/dev/full", "wb") as full:
                done = subprocess.run([TOOLS, "convert", "-t", target, "-@", "3", "-O", kind, self.report],
                                      stdout=full, stderr=subprocess.PIPE, check=False)
            self.assertEqual(done.returncode, 1)
            self.assertRegex(done.stderr, b"Cannot write standard output: (No space left on device|the disk may be full)")

    def test_a_report_without_repeats_is_converted(self) -> None:
        self.write_report(">s\nACGTT\n>t\n\n")
        self.assertEqual(tools("convert", "-t", "bed", self.report), b"")
        self.assertIn(b"@SQ\tSN:s\tLN:5\n@PG", tools("convert", "-t", "sam", self.report))
        for target in ALL_TARGETS:
            tools("convert", "-t", target, self.report, "-o", self.folder / target)

    # --- order ---

    def test_order_of_the_report_and_of_the_names(self) -> None:
        def rows(*options: str) -> list[str]:
            return tools("convert", "-t", "bed", *options, self.report).decode().split("\n")[:-1]

        self.assertEqual([row[:6] for row in rows()], ["b\t0\t20", "a\t2\t22"])
        self.assertEqual([row[:6] for row in rows("--sort")], ["a\t2\t22", "b\t0\t20"])

    def test_sequences_of_one_name_need_sorting_for_an_index(self) -> None:
        self.write_report(f">s\nTT{REPEAT}\n>t\n{REPEAT}\n>s\n{REPEAT}\n")
        path = self.folder / "x.bed.gz"
        self.assertIn("--sort", complaint("convert", "-t", "bed", "--write-index", self.report, "-o", path))
        self.write_report(f">s\nTT{REPEAT}\n>s\n{REPEAT}\n")
        self.assertIn("--sort", complaint("convert", "-t", "bed", "--write-index", self.report, "-o", path))
        self.assertEqual(self.files(), set())
        tools("convert", "-t", "bed", "--write-index", "--sort", self.report, "-o", path)
        self.assertEqual(self.files(), {"x.bed.gz", "x.bed.gz.tbi"})
        done = subprocess.run(["tabix", path, "s:1-2"], stdout=subprocess.PIPE, check=True)
        self.assertTrue(done.stdout.startswith(b"s\t0\t20\t"))

    # --- what is left ---

    def test_an_earlier_output_stays_until_the_new_one_is_whole(self) -> None:
        path = self.folder / "out"
        whole = self.report.read_bytes()
        for target in ALL_TARGETS:
            path.write_text("earlier")
            self.report.write_bytes(whole[:-40])
            complaint("convert", "-t", target, self.report, "-o", path)
            self.assertEqual(path.read_text(), "earlier")
            self.assertEqual(self.files(), {"out"})
            self.report.write_bytes(whole)
            tools("convert", "-t", target, self.report, "-o", path)
            self.assertNotEqual(path.read_bytes(), b"earlier")
            self.assertEqual(self.files(), {"out"})

    def test_every_cut_of_a_report_is_told(self) -> None:
        whole = self.report.read_bytes()
        for form in "0123":
            whole = run_vorlan("--outputFormat", form, "--sequenceInfoAsComment", self.fasta)
            tools("convert", "-t", "tsv", "-", given=whole)
            for size in range(0, len(whole), 7):
                complaint("convert", "-t", "tsv", "-", given=whole[:size])
            complaint("convert", "-t", "tsv", "-", given=whole[:-1])
            complaint("convert", "-t", "tsv", "-", given=whole + b"\n")

    def test_damaged_compressed_input_is_told(self) -> None:
        packed = subprocess.run(["bgzip", "-c", self.report], stdout=subprocess.PIPE, check=True).stdout
        for size in (20, len(packed) // 2, len(packed) - 30):
            complaint("convert", "-t", "bed", "-", given=packed[:size])
        damaged = bytearray(packed)
        damaged[len(packed) // 2] ^= 0xFF
        complaint("convert", "-t", "bed", "-", given=bytes(damaged))

    def test_a_full_disk_is_told(self) -> None:
        for target in ALL_TARGETS:
            with open("/dev/full", "wb") as full:
                done = subprocess.run([TOOLS, "convert", "-t", target, self.report], stdout=full,
                                      stderr=subprocess.PIPE, check=False)
            self.assertEqual(done.returncode, 1, target)
            self.assertEqual(done.stderr.count(b"\n"), 1)
            complaint("convert", "-t", target, self.report, "-o", "/dev/full")
        self.assertTrue(stat.S_ISCHR(os.stat("/dev/full").st_mode))

    def test_devices_are_written_and_not_replaced(self) -> None:
        tools("convert", "-t", "bam", self.report, "-o", "/dev/null")
        self.assertTrue(stat.S_ISCHR(os.stat("/dev/null").st_mode))

    def test_a_link_is_followed(self) -> None:
        (self.folder / "real").write_text("earlier")
        (self.folder / "link").symlink_to("real")
        tools("convert", "-t", "bed", self.report, "-o", self.folder / "link")
        self.assertTrue((self.folder / "link").is_symlink())
        self.assertEqual((self.folder / "real").read_bytes(), tools("convert", "-t", "bed", self.report))

    def test_permissions_follow_the_mask_of_the_user(self) -> None:
        script = 'umask 027; "$1" convert -t bed "$2" -o "$3"'
        path = self.folder / "x"
        subprocess.run(["bash", "-c", script, "-", TOOLS, self.report, path], check=True)
        self.assertEqual(path.stat().st_mode & 0o777, 0o640)

    def test_the_report_is_not_overwritten(self) -> None:
        before = self.report.read_bytes()
        (self.folder / "link").symlink_to("report.txt")
        for name in ("report.txt", "link"):
            complaint("convert", "-t", "bed", self.report, "-o", self.folder / name, status=2)
        for name in (self.report, "-"):
            with open(self.report, "rb") as source, open(self.report, "ab") as target:
                outcome = subprocess.run([TOOLS, "convert", "-t", "bed", name], stdin=source, stdout=target,
                                         stderr=subprocess.PIPE, check=False)
            self.assertEqual(outcome.returncode, 2)
            self.assertIn(b"is the report itself", outcome.stderr)
        self.assertEqual(self.report.read_bytes(), before)

    # --- requests ---

    def test_requests_that_make_no_sense(self) -> None:
        for words in [["-t", "vcf"], [], ["-t", "bed", "--write-index"], ["-t", "bed", "-o", "x", "--write-index"],
                      ["-t", "bam", "--write-index"], ["-t", "bam", "--sort"], ["-t", "bed", "--unit-length", "6-2"],
                      ["-t", "bed", "--unit-length", "a"], ["-t", "bed", "--unit-length", "0"],
                      ["-t", "bed", "--min-perfection", "101"], ["-t", "bed", "--min-copies", "-1"],
                      ["-t", "tsv", "-O", "z", "--write-index", "-o", "x"], ["-t", "bed", "-@", "0"]]:
            complaint("convert", *words, self.report, status=2)
        complaint("convert", "-t", "bed", status=2)
        self.assertEqual(self.files(), set())

    def test_inputs_that_are_no_reports(self) -> None:
        for path in (self.fasta, self.folder, self.folder / "missing", "/dev/null"):
            complaint("convert", "-t", "bed", path)

    def test_alignments_are_asked_for_where_they_are_needed(self) -> None:
        for options in (["--outputFormat", "3"], ["--printRepeatSeqMode", "1"], ["--outputFormat", "2"]):
            report = run_vorlan(*options, self.fasta)
            for target in ("sam", "bam", "paf"):
                self.assertIn("alignments", complaint("convert", "-t", target, "-", given=report))


if __name__ == "__main__":
    unittest.main()
