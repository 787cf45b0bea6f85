# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""What `run` writes is what one vorlan process writes, byte by byte."""

from __future__ import annotations

import gzip
import pathlib
import random
import re
import subprocess
import unittest

from parts.nasty_inputs import INPUTS, MALFORMED_INPUTS, SETTINGS, record_starts
from parts.programs import MALFORMED, TOOLS, VORLAN, ProgramTest

SEED = 12


def without_console(messages: bytes) -> bytes:
    """What vorlan says of a malformed record, without what it says before."""
    begin = messages.rindex(b"\n\nAn error occurred")
    return messages[begin:]


class RunTest(ProgramTest):
    def assert_same_report(self, *arguments: str, slice_size: int = 1, jobs: int = 2) -> None:
        plain = self.vorlan(*arguments)
        masked = self.take("in.fa.masked")
        self.assertEqual(plain.returncode, 0)
        outcome = self.run_tool(*arguments, slice_size=slice_size, jobs=jobs, flags=("--quiet",))
        self.assertEqual((outcome.returncode, outcome.stderr), (0, b""))
        self.assertEqual(outcome.stdout, plain.stdout)
        self.assertEqual(self.take("in.fa.masked"), masked)
        if "--maskX" in arguments:
            self.assertIsNotNone(masked)


class SameReport(RunTest):
    def test_every_input_with_all_formats(self) -> None:
        for name, text in INPUTS.items():
            self.write("in.fa", text)
            for settings in SETTINGS:
                with self.subTest(input=name, settings=settings):
                    self.assert_same_report(*settings, "in.fa")
        self.assert_nothing_is_left()

    def test_every_input_masked(self) -> None:
        for name, text in INPUTS.items():
            self.write("in.fa", text)
            for settings in (["--outputFormat", "4"], ["--outputFormat", "1"]):
                with self.subTest(input=name, settings=settings):
                    self.assert_same_report(*settings, "--maskX", "in.fa")
        self.assert_nothing_is_left()

    def test_every_range_of_records(self) -> None:
        for name in ("names like the lines of a report", "a lone greater sign at the end", "empty records"):
            self.write("in.fa", INPUTS[name])
            count = len(record_starts(INPUTS[name]))
            bounds = [None, "-2", "-1", "0", *map(str, range(1, count + 2)), "2147483647"]
            for first in bounds:
                for last in bounds:
                    arguments = [*(["--firstSeq", first] if first else []), *(["--lastSeq", last] if last else [])]
                    with self.subTest(input=name, range=arguments):
                        self.assert_same_report("--outputFormat", "3", "--sequenceInfoAsComment", "--maskX",
                                                *arguments, "in.fa", slice_size=150)

    def test_random_inputs_and_slice_sizes(self) -> None:
        source = random.Random(SEED)
        pieces = [b">", b">a", b"\n", b"\r", b"\r\n", b"#", b"ACACACACACAC", b"ACG" * 7, b" ", b"N", b"\n>", b"\r>b c\n"]
        well_formed = 0
        for _ in range(300):
            text = source.choice([b">s\n", b"", b"#c\n>x"]) + b"".join(source.choices(pieces, k=source.randrange(25)))
            self.write("in.fa", text)
            with self.subTest(text=text):
                plain = self.vorlan("--outputFormat", "1", "in.fa")
                outcome = self.run_tool("--outputFormat", "1", "in.fa", slice_size=source.choice([1, 1, 10, 60]),
                                        flags=("-q",))
                self.assertEqual(outcome.stdout, plain.stdout)
                self.assertEqual(outcome.returncode, plain.returncode)
                if plain.returncode == MALFORMED:
                    self.assertEqual(outcome.stderr, without_console(plain.stderr))
                else:
                    well_formed += 1
        self.assertGreater(well_formed, 50)
        self.assertLess(well_formed, 250)

    def test_a_report_file(self) -> None:
        self.write("in.fa", INPUTS["two records"])
        self.vorlan("in.fa", "out.txt")
        expected = self.take("out.txt")
        outcome = self.run_tool("in.fa", "out.txt")
        self.assertEqual((outcome.returncode, outcome.stdout), (0, b""))
        self.assertEqual(self.take("out.txt"), expected)
        self.assertEqual(self.names(), {"in.fa", "tmp"})

    def test_an_earlier_report_is_replaced_also_behind_a_link(self) -> None:
        self.write("in.fa", INPUTS["two records"])
        self.vorlan("in.fa", "link")
        expected = self.take("link")
        self.write("out.txt", b"# Results computed with:\nearlier\n" * 10_000)
        (self.folder / "link").symlink_to("out.txt")
        self.assertEqual(self.run_tool("in.fa", "link").returncode, 0)
        self.assertTrue((self.folder / "link").is_symlink())
        self.assertEqual(self.read("out.txt"), expected)

    def test_a_device_is_written_and_stays_a_device(self) -> None:
        self.write("in.fa", INPUTS["two records"])
        outcome = self.run_tool("in.fa", "/dev/stdout", flags=("-q",))
        self.assertEqual(outcome.stdout, self.vorlan("in.fa", "/dev/stdout").stdout)
        self.assertEqual(self.run_tool("in.fa", "/dev/null").returncode, 0)
        self.assertTrue(pathlib.Path("/dev/null").is_char_device())

    def test_a_compressed_report_by_its_name(self) -> None:
        self.write("in.fa", INPUTS["names like the lines of a report"])
        self.vorlan("in.fa", "out.txt.gz")
        expected = self.take("out.txt.gz")
        self.assertEqual(self.run_tool("in.fa", "out.txt.gz").returncode, 0)
        compressed = self.read("out.txt.gz")
        self.assertEqual(gzip.decompress(compressed), expected)
        self.assertEqual(compressed[12:14], b"BC")  # the extra field of bgzip
        self.assertEqual(self.run_tool("in.fa", "out.txt.gz", jobs=1).returncode, 0)
        self.assertEqual(self.read("out.txt.gz"), compressed)

    def test_compressed_input(self) -> None:
        text = INPUTS["names like the lines of a report"]
        self.write("in.fa", text)
        expected = self.vorlan("--maskX", "in.fa").stdout
        masked = self.take("in.fa.masked")
        (self.folder / "in.fa").unlink()
        bgzip = subprocess.run(["bgzip", "-c"], input=text, stdout=subprocess.PIPE, check=True).stdout
        for compressed in (gzip.compress(text), gzip.compress(text[:50]) + gzip.compress(text[50:]), bgzip):
            self.write("in.fa", compressed)
            outcome = self.run_tool("--maskX", "in.fa", flags=("-q",))
            self.assertEqual((outcome.returncode, outcome.stderr), (0, b""))
            self.assertEqual(outcome.stdout, expected)
            self.assertEqual(self.take("in.fa.masked"), masked)

    def test_standard_input(self) -> None:
        text = INPUTS["two records"]
        self.write("-", text)
        expected = self.vorlan("--", "-").stdout
        for data in (text, gzip.compress(text)):
            outcome = self.run_tool("-", input=data, flags=("-q",))
            self.assertEqual((outcome.returncode, outcome.stderr), (0, b""))
            self.assertEqual(outcome.stdout, expected)

    def test_a_pipe_with_a_name(self) -> None:
        self.write("in.fa", INPUTS["two records"])
        expected = self.vorlan("in.fa").stdout.replace(b"in.fa\n", b"/dev/stdin\n", 1)
        self.assertEqual(self.run_tool("/dev/stdin", input=INPUTS["two records"]).stdout, expected)

    def test_odd_file_names(self) -> None:
        for name in ("-in.fa", "a b.fa", "%s.fa", "http:x", "{}", "[a,b]", "in\n.fa", "ä.fa", "#"):
            with self.subTest(name=name):
                self.write(name, INPUTS["two records"])
                self.vorlan("--maskX", "--", name, "out " + name)
                expected = self.take("out " + name)
                masked = self.take(name + ".masked")
                outcome = self.run_tool("--maskX", "--", name, "out " + name)
                self.assertEqual(outcome.returncode, 0, outcome.stderr)
                self.assertEqual(self.take("out " + name), expected)
                self.assertEqual(self.take(name + ".masked"), masked)

    def test_long_blocks_of_input(self) -> None:
        # Cuts and line ends around the edges of the blocks in which the input is read.
        block = 1024 * 1024
        for shift in range(-3, 4):
            for end in (b"\n", b"\r", b"\r\n"):
                name = b"x" * (block + shift - 1)
                text = b">" + name + end + b">b" + end + b"ACACACACACAC" + end + b">c" + end + b"A!" + end
                self.write("in.fa", text)
                with self.subTest(shift=shift, end=end):
                    plain = self.vorlan("in.fa")
                    outcome = self.run_tool("in.fa", slice_size=1)
                    self.assertEqual(outcome.stdout, plain.stdout)
                    self.assertEqual(outcome.stderr, without_console(plain.stderr))


class MalformedInput(RunTest):
    def assert_same_failure(self, *arguments: str, slice_size: int = 1) -> None:
        plain = self.vorlan(*arguments)
        masked = self.take("in.fa.masked")
        outcome = self.run_tool(*arguments, slice_size=slice_size, flags=("-q",))
        self.assertEqual(outcome.returncode, plain.returncode)
        self.assertEqual(outcome.stdout, plain.stdout)
        if plain.returncode == MALFORMED:
            self.assertEqual(outcome.stderr, without_console(plain.stderr))
        self.assertEqual(self.take("in.fa.masked"), masked)

    def test_every_malformed_input(self) -> None:
        for name, text in MALFORMED_INPUTS.items():
            self.write("in.fa", text)
            for settings in (["--outputFormat", "1"], ["--outputFormat", "4"], ["--maskX"], ["--firstSeq", "2"],
                             ["--lastSeq", "1"]):
                with self.subTest(input=name, settings=settings):
                    self.assert_same_failure(*settings, "in.fa")
                    self.assert_same_failure(*settings, "in.fa", slice_size=40)
        self.assert_nothing_is_left()

    def test_the_report_file_holds_what_comes_before(self) -> None:
        self.write("in.fa", MALFORMED_INPUTS["a digit in a record in the middle"])
        self.assertEqual(self.vorlan("in.fa", "out.txt").returncode, MALFORMED)
        expected = self.take("out.txt")
        self.assertEqual(self.run_tool("in.fa", "out.txt").returncode, MALFORMED)
        self.assertEqual(self.take("out.txt"), expected)
        self.assert_nothing_is_left()

    def test_an_earlier_report_stays(self) -> None:
        self.write("in.fa", MALFORMED_INPUTS["a digit in a record in the middle"])
        self.vorlan("in.fa", "out.txt")
        expected = self.take("out.txt")
        self.write("out.txt", b"# Results computed with:\n")
        outcome = self.run_tool("in.fa", "out.txt")
        self.assertEqual(outcome.returncode, MALFORMED)
        self.assertIn(b"out.txt.partial", outcome.stderr)
        self.assertEqual(self.read("out.txt"), b"# Results computed with:\n")
        self.assertEqual(self.read("out.txt.partial"), expected)

    def test_a_folder_is_an_empty_input(self) -> None:
        (self.folder / "in.fa").mkdir()
        self.assert_same_failure("in.fa")

    def test_the_first_of_several_malformed_records_counts(self) -> None:
        # The first one is in a slice that takes long, those behind it in slices that take no time.
        long_record = b">long\n" + b"ACGTTGCA" * 20_000 + b"!\n"
        self.write("in.fa", long_record + b">bad\n!\n" * 5)
        self.assert_same_failure("in.fa")

    def test_damaged_compressed_input_makes_no_report(self) -> None:
        # Random residues: they do not compress away.
        source = random.Random(SEED)
        text = b"".join(b">%d\n%s\n" % (n, bytes(source.choices(b"ACGT", k=5000))) for n in range(60))
        plain = gzip.compress(text)
        blocks = subprocess.run(["bgzip", "-c"], input=text, stdout=subprocess.PIPE, check=True).stdout
        second = int.from_bytes(blocks[16:18], "little") + 1
        for name, damaged in {"cut": plain[:-3000], "cut blocks": blocks[:-3000], "no last block": blocks[:-28],
                              "one block": blocks[:second], "garbled": plain[:20_000] + b"x" + plain[20_001:]}.items():
            with self.subTest(name):
                self.write("in.fa", damaged)
                outcome = self.run_tool("-M", "exact", "in.fa", "out.txt", slice_size=20_000, flags=("-q",))
                self.assertEqual(outcome.returncode, 1)
                self.assertIn(b"cut short", outcome.stderr)
                self.assertNotIn("out.txt", self.names())


class SeveralInputs(RunTest):
    def test_one_report_each(self) -> None:
        (self.folder / "reports").mkdir()
        (self.folder / "b").mkdir()
        self.write("a.fa", INPUTS["two records"])
        self.write("b/c.fna.gz", gzip.compress(INPUTS["empty records"]))
        outcome = self.run_tool("-l", "5", "a.fa", "b/c.fna.gz", flags=("--reports", "reports", "--ending", ".vorlan"))
        self.assertEqual(outcome.returncode, 0, outcome.stderr)
        written = {path.name: path.read_bytes() for path in (self.folder / "reports").iterdir()}
        self.assertEqual(set(written), {"a.vorlan", "c.vorlan"})
        self.vorlan("-l", "5", "a.fa", "reports/a.vorlan")
        self.assertEqual(written["a.vorlan"], self.read("reports/a.vorlan"))
        self.assertIn(b'# Analysis of sequence "e" completed.\n## Finished', written["c.vorlan"])

    def test_the_others_are_searched_when_one_is_malformed(self) -> None:
        self.write("a.fa", MALFORMED_INPUTS["no header"])
        self.write("b.fa", INPUTS["two records"])
        outcome = self.run_tool("a.fa", "b.fa", flags=("--reports", "."))
        self.assertEqual(outcome.returncode, MALFORMED)
        self.assertTrue(self.read("b.txt").endswith(b"## Finished successfully. ##\n"))


class FindingVorlan(RunTest):
    def test_beside_the_program_in_the_path_or_by_name(self) -> None:
        self.write("in.fa", INPUTS["two records"])
        expected = self.vorlan("in.fa").stdout
        binaries = self.folder / "bin"
        binaries.mkdir()
        (binaries / "vorlan").symlink_to(VORLAN)
        for arguments, environment in ((["--vorlan", "bin/vorlan"], {}), ([], {"PATH": f"{binaries}:/nowhere"}),
                                       (["--vorlan", "vorlan"], {"PATH": f"/nowhere:{binaries}"})):
            outcome = subprocess.run([TOOLS, "run", "-q", *arguments, "--", "in.fa"], cwd=self.folder, check=True,
                                     stdout=subprocess.PIPE, env={**self.environment(), **environment})
            self.assertEqual(outcome.stdout, expected)
        (binaries / "vorlan-tools").hardlink_to(TOOLS)
        outcome = subprocess.run([binaries / "vorlan-tools", "run", "-q", "--", "in.fa"], cwd=self.folder, check=True,
                                 stdout=subprocess.PIPE, env={**self.environment(), "PATH": "/nowhere"})
        self.assertEqual(outcome.stdout, expected)

    def test_no_vorlan_at_all(self) -> None:
        self.write("in.fa", INPUTS["two records"])
        for arguments in (["--vorlan", "/nowhere/vorlan"], ["--vorlan", "no-such-program"], ["--vorlan", "./in.fa"]):
            self.assertEqual(self.tools("run", *arguments, "--", "in.fa").returncode, 2)

    def test_another_program_is_refused(self) -> None:
        self.write("in.fa", INPUTS["two records"])
        for program in ("/bin/true", "/bin/false", "/bin/cat"):
            outcome = self.tools("run", "--vorlan", program, "--", "in.fa", "out.txt")
            self.assertEqual(outcome.returncode, 1, program)
            self.assertNotIn("out.txt", self.names())


class Arguments(RunTest):
    def test_what_vorlan_refuses_it_refuses_in_its_own_words(self) -> None:
        self.write("in.fa", INPUTS["two records"])
        for arguments in (["-s", "1"], ["--outputFormat", "7"], ["-U", "x"], ["-M", "fast"], ["-u", "3", "-u", "4"]):
            with self.subTest(arguments=arguments):
                plain = self.vorlan(*arguments, "in.fa", "out.txt")
                outcome = self.run_tool(*arguments, "in.fa", "out.txt")
                self.assertNotEqual(plain.returncode, 0)
                self.assertEqual(outcome.returncode, plain.returncode)
                self.assertEqual(outcome.stderr, plain.stderr)
                self.assertEqual(self.names(), {"in.fa", "tmp"})

    def test_help_and_version_are_those_of_vorlan(self) -> None:
        for option in ("--version", "--help", "-h"):
            self.assertEqual(self.run_tool(option).stdout, self.vorlan(option).stdout)

    def test_every_option_is_known_with_its_kind(self) -> None:
        # The help lists "-N <int>,  --succN <int>" for an option with a value, "-D,  --dont..." for a switch.
        text = self.vorlan("--help").stdout.decode()
        options = re.findall(r"^   (?:(-\w)( <\S+>)?,  )?(--\w+)( <[^\n]+)?$", text, re.MULTILINE)
        self.assertEqual(len(options), 28 + len(["--version", "--help"]), options)
        for short, _, name, value in options:
            for spelling in filter(None, [short, name]):
                with self.subTest(option=spelling):
                    outcome = self.run_tool(spelling)
                    needs_value = b"needs a value" in outcome.stderr
                    self.assertEqual(needs_value, bool(value), outcome.stderr)
                    self.assertNotIn(b"has no option", outcome.stderr)

    def test_unknown_options_and_missing_names(self) -> None:
        self.write("in.fa", INPUTS["two records"])
        self.assert_refused(self.run_tool("--fast", "in.fa"), 2, "no option --fast")
        self.assert_refused(self.run_tool("-l", "5"), 2, "needs an input")
        self.assert_refused(self.run_tool("in.fa", "a", "b"), 2, "--reports")
        self.assert_refused(self.run_tool("--maskX", "-", input=b">a\n"), 2, "needs one with a name")
        self.assert_refused(self.run_tool("missing.fa"), 1, "Cannot open missing.fa")
        self.assert_refused(self.run_tool("missing.fa", "no/such/folder/out"), 1, "no/such/folder")
        self.assertEqual(self.names(), {"in.fa", "tmp"})
        self.assert_nothing_is_left()


if __name__ == "__main__":
    unittest.main()
